#include "FileBytes.h"
#include "platform/SettingsStore.h"

#include <QtTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

static const QString kApp = QStringLiteral("Tallybid");
static const QString kOptions = QStringLiteral("Options");

namespace {
// A file written elsewhere, one value read from it, and the file once "Other" is saved under
// "Options".
// clang-format off
struct Foreign { QByteArray file; QString section, key, value; QByteArray saved; };
// clang-format on
} // namespace

class TestSettingsStore : public QObject
{
    Q_OBJECT
private slots:
    void valuesRoundTrip_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("flag"); // read as a boolean; empty: the default is kept
        const auto row = [](const char* name, const char* value, const char* flag = "") {
            QTest::newRow(name) << QString::fromUtf8(value) << QString::fromLatin1(flag);
        };
        row("line breaks", "Dear buyer,\r\n\r\nThanks!\nBye");
        row("backslashes", "C:\\Tallybid\\Images\\n\\");
        row("equals and semicolon", "a=b; c==d");
        row("quoted", "\"hi\"");
        row("non-ASCII", "Grüße €");
        row("empty", "");
        row("false any case", "fALSE", "False");
        row("minus one", "-1", "True");
        row("outer blanks", " True ", "True");
    }
    void valuesRoundTrip()
    {
        QFETCH(QString, value);
        QFETCH(QString, flag);
        QTemporaryDir dir;
        SettingsStore store(dir.path());
        QVERIFY(store.save(kApp, kOptions, "Note", value) &&
                store.save(kApp, kOptions, "After", "x"));
        const SettingsStore reread(dir.path()); // a fresh store reads the file, not the memory
        QCOMPARE(reread.get(kApp, kOptions, "Note", "dflt"), value);
        QCOMPARE(reread.get(kApp, kOptions, "After"), "x");
        for (const bool dflt : {false, true})
            QCOMPARE(reread.getBool(kApp, kOptions, "Note", dflt),
                     flag.isEmpty() ? dflt : flag == "True");
    }

    void namesApplicationsAndWrites()
    {
        QTemporaryDir dir;
        SettingsStore store(dir.filePath("not/yet/there"));
        store.save(kApp, kOptions, "ToolBar", "x");
        store.saveBool(kApp, "OPTIONS", "toolbar", true);
        store.saveBool(kApp, "System", "Sound", false);
        store.save("Pulsewatch", kOptions, "ToolBar", "/b");
        QCOMPARE(store.get(kApp, "options", "Toolbar"), "True");
        // The spelling first written is kept, once; other applications have files of their own.
        QCOMPARE(readBytes(store.filePath(kApp)),
                 "[Options]\nToolBar=True\n\n[System]\nSound=False\n\n");
        // Every save replaced the file whole: no temporary files are left beside it.
        QCOMPARE(QDir(store.folder()).entryList(QDir::Files | QDir::Hidden, QDir::Name),
                 (QStringList{"Pulsewatch.ini", "Tallybid.ini"}));
        SettingsStore blocked(store.filePath(kApp)); // the folder is a file: nothing can be written
        QVERIFY(!blocked.save(kApp, kOptions, "Key", "kept"));
        QCOMPARE(blocked.get(kApp, kOptions, "Key"), "kept");
    }

    void damagedFileStillReads()
    {
        QTemporaryDir dir;
        QVERIFY(writeBytes(
            SettingsStore(dir.path()).filePath(kApp),
            "Orphan=before any section\n\x01\x02 garbage \xff\xfe\n[Options]\n=no key\n"
            "no equals sign\nMailServer = smtp.example.com\n[\n[System]\nItemsViewed=Open\n"
            "[options]\nImageLoc=shop/\nHalf="));
        // Read it, save over it, and read the rewritten file: what could be read is kept.
        for (int pass = 0; pass < 2; ++pass) {
            SettingsStore s(dir.path());
            QCOMPARE(s.get(kApp, kOptions, "MailServer"), "smtp.example.com");
            QCOMPARE(s.get(kApp, "System", "ItemsViewed"), "Open");
            QCOMPARE(s.get(kApp, kOptions, "ImageLoc") + s.get(kApp, kOptions, "Half", "d"),
                     "shop/");
            QCOMPARE(s.get(kApp, kOptions, "Orphan", "d"), "d");
            QVERIFY(s.save(kApp, kOptions, "New", "1"));
        }
    }

    // Files written elsewhere: 8-bit text from another system and lines ended by CR, LF or
    // CR LF. What is read stays where it was read, byte for byte, through an unrelated save.
    void foreignFilesRoundTrip_data()
    {
        QTest::addColumn<Foreign>("row");
        // clang-format off
        QTest::newRow("Latin-1 password") << Foreign{"[Options]\r\nFTPPassword=p\xe4ss\r\n",
            "Options", "FTPPassword", u"p\u00e4ss"_s, "[Options]\nFTPPassword=p\xe4ss\nOther=1\n\n"};
        QTest::newRow("Windows-1252 only") << Foreign{"[Options]\nPayMsg=\x80 5, \x93quoted\x94 \x81\x9d\\n\n",
            "Options", "PayMsg", u"\u20ac 5, \u201cquoted\u201d \u0081\u009d\n"_s,
            "[Options]\nPayMsg=\x80 5, \x93quoted\x94 \x81\x9d\\n\nOther=1\n\n"};
        QTest::newRow("8-bit names") << Foreign{"[Opci\xf3n]\nCl\xe1ve = \" v \"\n",
            u"Opci\u00f3n"_s, u"Cl\u00e1ve"_s, " v ", "[Opci\xf3n]\nCl\xe1ve=\" v \"\n\n[Options]\nOther=1\n\n"};
        QTest::newRow("lone CR in a section name") << Foreign{"[System]\nItemsViewed=Open\n[Optio\rns]\nImageLoc=shop/\n",
            "System", "ImageLoc", "shop/", "[System]\nItemsViewed=Open\nImageLoc=shop/\n\n[Options]\nOther=1\n\n"};
        QTest::newRow("CR line ends") << Foreign{"[Options]\rNote=a\\rb\rOther=0\r",
            "Options", "Note", "a\rb", "[Options]\nNote=a\\rb\nOther=1\n\n"};
        QTest::newRow("mixed line ends") << Foreign{"[System]\r\n\rItemsViewed=Closed\n\r\n[Options]\rA=1",
            "System", "ItemsViewed", "Closed", "[System]\nItemsViewed=Closed\n\n[Options]\nA=1\nOther=1\n\n"};
        // clang-format on
    }
    void foreignFilesRoundTrip()
    {
        QFETCH(Foreign, row);
        const auto& [file, section, key, value, saved] = row;
        QTemporaryDir dir;
        const QString path = SettingsStore(dir.path()).filePath(kApp);
        QVERIFY(writeBytes(path, file));

        SettingsStore store(dir.path());
        QCOMPARE(store.get(kApp, section, key, "absent"), value);
        QVERIFY(store.save(kApp, kOptions, "Other", "1"));
        QCOMPARE(readBytes(path), saved);
        QCOMPARE(SettingsStore(dir.path()).get(kApp, section, key, "absent"), value);
        // Saving the same value again keeps its bytes; a changed one reads back as it was saved.
        QVERIFY(store.save(kApp, section, key, value));
        QCOMPARE(readBytes(path), saved);
        for (const QString& changed : QStringList{value + u"\u00e9"_s, value + u"\u2605"_s}) {
            QVERIFY(store.save(kApp, section, key, changed));
            QCOMPARE(SettingsStore(dir.path()).get(kApp, section, key), changed);
        }
    }

    // The file holds passwords: it and the folder made for it are for the user alone, and a
    // file made readable by others before is tightened by the next save.
    void ownerOnly()
    {
        QTemporaryDir dir;
        SettingsStore store(dir.filePath("config/tallybid"));
        QVERIFY(store.save(kApp, kOptions, "FTPPassword", "secret"));
        QCOMPARE(modeOf(store.folder()), 0700);
        QCOMPARE(modeOf(store.filePath(kApp)), 0600);
        QVERIFY(::chmod(QFile::encodeName(store.filePath(kApp)).constData(), 0644) == 0);
        QVERIFY(SettingsStore(store.folder()).save(kApp, kOptions, "RemoteHost", "ftp.example"));
        QCOMPARE(modeOf(store.filePath(kApp)), 0600);
    }

private:
    static int modeOf(const QString& path)
    {
        struct stat info
        {
        };
        return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? int(info.st_mode & 0777)
                                                                       : -1;
    }
};

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
