#include "FileBytes.h"
#include "listing/ThemeSet.h"

#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <sys/file.h>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

const QByteArray kHeader = "\"Subject\",\"Tallybid Ad Themes\"\r\n"
                           "\"Name\",\"shop.tbt\"\r\n"
                           "\"Created by\",\"The Tallybid Workshop\"\r\n"
                           "\"Time\",#2024-03-09#\r\n";

const QByteArray kNewDefault =
    "\"Default\",16777215,\"\",\"\",4,\"Left\",1,\"\",#TRUE#,#TRUE#,\"\",#TRUE#,#TRUE#,\"\",#TRUE#,"
    "\"MS Sans Serif\",0,16,#FALSE#,#FALSE#,\"MS Sans Serif\",0,10,#FALSE#,#FALSE#,"
    "\"MS Sans Serif\",0,12,#FALSE#,#FALSE#,\"MS Sans Serif\",0,8,#FALSE#,#FALSE#,"
    "\"MS Sans Serif\",0,8,#FALSE#,#FALSE#,\"MS Sans Serif\",0,10,#FALSE#,#FALSE#,"
    "\"MS Sans Serif\",0,10,#FALSE#,#FALSE#\r\n";

// editedTheme() as the editor writes it.
const QByteArray kEdited =
    "\"Edited\",14544639,\"/srv/media/back ground.jpg\",\"/srv/media/chime.wav\",7,\"Right\","
    "#FALSE#,\"/srv/media/rule.gif\",#TRUE#,#FALSE#,\"/srv/media/title.gif\",#FALSE#,#TRUE#,"
    "\"/srv/media/inline.gif\",#FALSE#,\"Times New Roman\",255,18,#TRUE#,#TRUE#,"
    "\"MS Sans Serif\",0,10,#FALSE#,#FALSE#,\"MS Sans Serif\",0,12,#FALSE#,#FALSE#,"
    "\"MS Sans Serif\",0,8,#FALSE#,#FALSE#,\"MS Sans Serif\",0,8,#FALSE#,#FALSE#,"
    "\"MS Sans Serif\",0,10,#FALSE#,#FALSE#,\"Verdana\",1193046,9,#FALSE#,#TRUE#\r\n";

// A record as a person might have edited it by hand: booleans as numbers, fractional sizes,
// a non-ASCII name, odd blanks. Copying it must keep every byte but the sizes.
const QByteArray kHandMade =
    "\"Flohmarkt \xc3\xa4\xc3\xb6\",  255,\"AppBackgrPath\\paper.jpg\",\"\",2,\"Center\",0,"
    "\"AppImagePath\\frame.gif\",#FALSE#,1,\"\",#TRUE#,#FALSE#,\"\",#FALSE#,"
    "\"Georgia\",128,10.5,#TRUE#,#FALSE#,\"Georgia\",0,11.5,#FALSE#,#TRUE#,"
    "\"Georgia\",0,12,#FALSE#,#FALSE#,\"Georgia\",0,8,#FALSE#,#FALSE#,"
    "\"Georgia\",0,8,#FALSE#,#FALSE#,\"Georgia\",0,10,#FALSE#,#FALSE#,"
    "\"Georgia\",0,10,#FALSE#,#FALSE#\r\n";
const QByteArray kHandMadeCopied =
    QByteArray(kHandMade).replace("128,10.5,", "128,10,").replace(",0,11.5,", ",0,12,");

QByteArray renamed(QByteArray record, const QString& name)
{
    return record.replace(0, record.indexOf(','), QByteArray('"' + name.toUtf8() + '"'));
}

// Values away from a new theme's, flags mixed, so a field read or written in the wrong place shows.
Theme editedTheme(const QString& name)
{
    Theme t(name, 0xDDEEFF, "/srv/media/back ground.jpg", "/srv/media/chime.wav", 7, "Right", false,
            "/srv/media/rule.gif", true, false, "/srv/media/title.gif", false, true,
            "/srv/media/inline.gif", false);
    t.fonts[0] = {u"Times New Roman"_s, 0x0000FF, 18, true, true};
    t.fonts[6] = {u"Verdana"_s, 0x123456, 9, false, true};
    return t;
}

} // namespace

class TestThemeSet : public QObject
{
    Q_OBJECT

private slots:
    void createAppendAndLoad()
    {
        QVERIFY(!CreateThemeSet(file(), QDate(2024, 3, 9)));
        QCOMPARE(readAll(file()), kHeader + kNewDefault);
        // The editor writes what it holds, fractions included; duplicates are not checked.
        Theme wide = editedTheme(u"Wide"_s);
        wide.fonts[2].size = 10.5;
        QVERIFY(!appendTheme(file(), wide) && !appendTheme(file(), editedTheme(u"Wide"_s)));
        QVERIFY(!appendNewTheme(file(), u"New"_s));
        QCOMPARE(readAll(file()), kHeader + kNewDefault +
                                      renamed(kEdited, "Wide").replace(",0,12,", ",0,10.5,") +
                                      renamed(kEdited, "Wide") + renamed(kNewDefault, "New"));

        // A lookup finds the first record of a name; sizes come back as whole points, half to even.
        wide.fonts[2].size = 10;
        QCOMPARE(*load(u"Wide"_s).theme, wide);
        QCOMPARE(
            *load(u"wide"_s).message,
            ThemeSetMessage("The theme wide was not found in the Themeset " + file() + ". Aborted",
                            u"Invalid Theme"_s, PromptIcon::Exclamation));

        // A double quote cannot be stored, so it is refused before the file is touched.
        wide.titleImage = u"/srv/\"best\".gif"_s;
        const QByteArray before = readAll(file());
        QCOMPARE(replace(wide)->title, u"Theme Not Saved"_s);
        QVERIFY(appendTheme(file(), wide) && appendNewTheme(file(), u"say \"hi\""_s));
        QCOMPARE(readAll(file()), before);
    }
    void rewriting_data()
    {
        // Records before and after: D a new Default, h hand-made and H its copy, P and L new themes
        // "Plain" and "Last", E the edited theme under the name used.
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("replacing"); // or deleting
        QTest::addColumn<QString>("after");
        QTest::newRow("replace first") << "Default" << true << "EHPLP";
        QTest::newRow("replace every record of a name") << "Plain" << true << "DHELE";
        QTest::newRow("replace unknown name") << "Nowhere" << true << "DHPLP";
        QTest::newRow("delete every record of a name") << "Plain" << false << "DHL";
        QTest::newRow("delete unknown name") << "Nowhere" << false << "DHPLP";
        QTest::newRow("delete Default is refused") << "Default" << false << "DhPLP";
    }
    void rewriting()
    {
        QFETCH(bool, replacing);
        QFETCH(QString, name);
        QFETCH(QString, after);
        const QByteArrayList records = QByteArrayList()
                                       << kNewDefault << kHandMade << kHandMadeCopied
                                       << renamed(kNewDefault, "Plain")
                                       << renamed(kNewDefault, "Last") << renamed(kEdited, name);
        const auto bytes = [&](const QString& letters) {
            QByteArray all = kHeader;
            for (const QChar r : letters)
                all += records[u"DhHPLE"_s.indexOf(r)];
            return all;
        };
        QVERIFY(writeAll(file(), bytes(u"DhPLP"_s)));
        // A scratch file left half written by a stopped save does not get in the way.
        QVERIFY(writeAll(m_dir.filePath(u"Temp.tbt"_s), kHeader.left(30)));

        const MaybeMessage message =
            replacing ? replace(editedTheme(name)) : deleteTheme(file(), name, m_dir.path());
        QCOMPARE(readAll(file()), bytes(after));
        // A refused delete leaves the folder alone; every rewrite clears the scratch file.
        QCOMPARE(QFile::remove(m_dir.filePath(u"Temp.tbt"_s)), after.contains(u'h'));
        const ThemeSetMessage refused{
            "You cannot delete the Default Theme.  You can only modify it.", "Cannot Delete",
            PromptIcon::Information};
        QCOMPARE(message.value_or(ThemeSetMessage()),
                 after.contains(u'h') ? refused : ThemeSetMessage());
    }
    // A scratch file that cannot be written stops the save before the themeset is touched.
    void blockedScratchFileLosesNothing()
    {
        const QByteArray before = kHeader + kNewDefault + kHandMade;
        writeAll(file(), before);
        QVERIFY(QDir(m_dir.path()).mkdir(u"Temp.tbt"_s));
        const MaybeMessage blocked = replace(editedTheme(u"Default"_s));
        QCOMPARE(blocked->title, u"Error"_s);
        QVERIFY(blocked->text.startsWith(u"Error # 75 was generated by Tallybid\r\n"_s));
        QVERIFY(deleteTheme(file(), u"Other"_s, m_dir.path()));
        QVERIFY(QDir(m_dir.path()).rmdir(u"Temp.tbt"_s));
        QCOMPARE(readAll(file()), before);
    }
    void damagedFiles_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("text");   // start of the explanation
        QTest::addColumn<bool>("copyFails"); // whether rewriting the file trips over it
        const QString error = u"Error # %1 was generated by Tallybid\r\n%2"_s;
        const QByteArray theme = kHeader + kNewDefault;
        // clang-format off
        QTest::newRow("empty")             << QByteArray() << error.arg(62).arg("Input past end") << true;
        QTest::newRow("text for a colour") << QByteArray(theme).replace(",16777215,", ",white,") << error.arg(13).arg("Type mismatch") << false;
        QTest::newRow("size past a whole") << QByteArray(theme).replace(",0,16,", ",0,40000,") << error.arg(6).arg("Overflow") << true;
        // clang-format on
    }
    void damagedFiles()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, text);
        QFETCH(bool, copyFails);
        writeAll(file(), content);

        const MaybeMessage editor = load(u"Default"_s).message;
        QVERIFY2(editor->text.startsWith(text), qPrintable(editor->text));
        QVERIFY(editor->text.contains(file())); // the damaged file is named
        QCOMPARE(editor->title, u"Error"_s);
        QCOMPARE(editor->icon, PromptIcon::Exclamation);
        // The listing's stricter lookup says the same, but calls an empty file incomplete.
        QCOMPARE(readThemeForListing(file(), u"Default"_s).message == editor, !content.isEmpty());
        // Fields before the fonts are copied as they stand, so only a broken structure or font
        // group stops a rewrite; either way the file keeps every byte.
        QCOMPARE(bool(replace(editedTheme(u"Other"_s))), copyFails);
        QCOMPARE(bool(deleteTheme(file(), u"Other"_s, m_dir.path())), copyFails);
        QCOMPARE(readAll(file()), content);
    }

    // A themeset made on an older system is Windows-1252 text; one made here is UTF-8. Either way
    // names, font faces and paths with accents are found, loaded and written in the file's own
    // encoding, while the other records keep every byte.
    void encodings_data()
    {
        // The bytes of "Café", "Crème “Sans”", "€uro" and "Noël" in the file's encoding.
        QTest::addColumn<QByteArrayList>("texts");
        QTest::addColumn<bool>("eightBit");
        // clang-format off
        QTest::newRow("UTF-8")        << QByteArrayList{"Caf\xc3\xa9", "Cr\xc3\xa8me \xe2\x80\x9cSans\xe2\x80\x9d", "\xe2\x82\xac" "uro", "No\xc3\xabl"} << false;
        QTest::newRow("Windows-1252") << QByteArrayList{"Caf\xe9", "Cr\xe8me \x93Sans\x94", "\x80uro", "No\xebl"} << true;
        // clang-format on
    }
    void encodings()
    {
        QFETCH(QByteArrayList, texts);
        QFETCH(bool, eightBit);
        const QByteArray cafe = renamed(kEdited, u"Edited"_s)
                                    .replace("Edited", texts[0])
                                    .replace("Times New Roman", texts[1])
                                    .replace("back ground", texts[2]);
        const QByteArray plain = renamed(kNewDefault, u"Plain"_s);
        QVERIFY(writeAll(file(), kHeader + kNewDefault + cafe + plain));

        Theme theme = editedTheme(u"Café"_s);
        theme.fonts[0].face = u"Crème “Sans”"_s;
        theme.backgroundImage = u"/srv/media/€uro.jpg"_s;
        QCOMPARE(listThemeNames(file()).names, QStringList({u"Default"_s, u"Café"_s, u"Plain"_s}));
        QCOMPARE(*load(u"Café"_s).theme, theme);
        QCOMPARE(readThemeForListing(file(), u"Café"_s).theme->fonts[0].face, theme.fonts[0].face);

        // Saved and added in the file's encoding, deleted by its name.
        theme.fonts[6].face = u"Noël"_s;
        const QByteArray saved = QByteArray(cafe).replace("Verdana", texts[3]);
        QVERIFY(!replace(theme));
        QCOMPARE(readAll(file()), kHeader + kNewDefault + saved + plain);
        theme.name = u"Noël"_s;
        QVERIFY(!appendTheme(file(), theme));
        const QByteArray added = QByteArray(saved).replace(1, texts[0].size(), texts[3]);
        QCOMPARE(readAll(file()), kHeader + kNewDefault + saved + plain + added);
        QVERIFY(!deleteTheme(file(), u"Café"_s, m_dir.path()));
        QCOMPARE(readAll(file()), kHeader + kNewDefault + plain + added);

        // A character the code page lacks cannot go into an 8-bit file; nothing is written.
        const MaybeMessage star = appendNewTheme(file(), u"Star ★"_s);
        QCOMPARE(bool(star), eightBit);
        if (eightBit) {
            QCOMPARE(star->title, u"Theme Not Saved"_s);
            QCOMPARE(readAll(file()), kHeader + kNewDefault + plain + added);
        }
    }

    // An added theme must read back whole whatever the file ends in, as long as the file read
    // before: the reproduction is a last record ending in "#TRUE#," instead of a line end.
    void appendKeepsFileReadable_data()
    {
        QTest::addColumn<QByteArray>("content");
        const QByteArray two = kHeader + kNewDefault + kEdited;
        const QByteArray body = two.chopped(2); // ends in #TRUE#
        QTest::newRow("trailing comma") << body + ',';
        QTest::newRow("trailing comma and line end") << body + ",\r\n";
        QTest::newRow("blank lines at the end") << two + "\r\n \r\n";
        QTest::newRow("last string never closed") << body.chopped(6) + "\"True\r\n";
        QTest::newRow("no line end at the end") << body;
        QTest::newRow("header only, trailing comma") << kHeader.chopped(2) + ',';
    }
    void appendKeepsFileReadable()
    {
        QFETCH(QByteArray, content);
        QVERIFY(writeAll(file(), content));
        const ThemeNamesResult before = listThemeNames(file());
        QVERIFY(!before.message);
        const std::optional<Theme> last =
            before.names.isEmpty() ? std::nullopt : load(before.names.last()).theme;

        QVERIFY(!appendNewTheme(file(), u"Added"_s));
        const ThemeNamesResult after = listThemeNames(file());
        QCOMPARE(after.message, MaybeMessage());
        QCOMPARE(after.names, before.names + QStringList{u"Added"_s});
        QCOMPARE(*load(u"Added"_s).theme, Theme::newTheme(u"Added"_s));
        if (last)
            QCOMPARE(*load(last->name).theme, *last);
    }

    // Another running copy that is writing the scratch file is waited for, not overwritten; a
    // scratch copy of an add that was stopped goes with the next write.
    void scratchFileOfAnotherCopy()
    {
        QVERIFY(writeAll(file(), kHeader + kNewDefault));
        QVERIFY(writeAll(file() + u".Ab3def"_s, kHeader));
        const QByteArray theirs = kHeader + kHandMade;
        QFile temp(m_dir.filePath(u"Temp.tbt"_s));
        QVERIFY(temp.open(QIODevice::ReadWrite | QIODevice::Truncate) &&
                temp.write(theirs) == theirs.size() && temp.flush());
        QVERIFY(::flock(temp.handle(), LOCK_EX | LOCK_NB) == 0);
        std::atomic<bool> intact = false;
        std::thread holder([&] {
            QThread::msleep(300);
            intact = readAll(temp.fileName()) == theirs;
            temp.close();
        });
        const MaybeMessage message = replace(editedTheme(u"Default"_s));
        holder.join();
        QVERIFY(intact);
        QCOMPARE(message, MaybeMessage());
        QCOMPARE(readAll(file()), kHeader + renamed(kEdited, u"Default"_s));
        QVERIFY(!QFile::exists(temp.fileName()) && !QFile::exists(file() + u".Ab3def"_s));
    }

private:
    QString file() const { return m_dir.filePath(u"shop.tbt"_s); }
    MaybeMessage replace(const Theme& t) const { return replaceTheme(file(), t, m_dir.path()); }
    ThemeLoadResult load(const QString& n) const { return loadTheme(file(), n, m_dir.path()); }
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestThemeSet)
#include "tst_themeset.moc"
