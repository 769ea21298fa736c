#include "platform/SettingsStore.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

static const QString kApp = QStringLiteral("Tallybid");
static const QString kOptions = QStringLiteral("Options");

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
        QFile file(store.filePath(kApp));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), "[Options]\nToolBar=True\n\n[System]\nSound=False\n\n");
        // Every save replaced the file whole: no temporary files are left beside it.
        QCOMPARE(QDir(store.folder()).entryList(QDir::Files | QDir::Hidden, QDir::Name),
                 (QStringList{"Pulsewatch.ini", "Tallybid.ini"}));
        SettingsStore blocked(file.fileName()); // the folder is a file: nothing can be written
        QVERIFY(!blocked.save(kApp, kOptions, "Key", "kept"));
        QCOMPARE(blocked.get(kApp, kOptions, "Key"), "kept");
    }

    void damagedFileStillReads()
    {
        QTemporaryDir dir;
        if (QFile file(SettingsStore(dir.path()).filePath(kApp)); file.open(QIODevice::WriteOnly))
            file.write(
                "Orphan=before any section\n\x01\x02 garbage \xff\xfe\n[Options]\n=no key\n"
                "no equals sign\nMailServer = smtp.example.com\n[\n[System]\nItemsViewed=Open\n"
                "[options]\nImageLoc=shop/\nHalf=");
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
};

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
