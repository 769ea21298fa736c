#include "FileBytes.h"
#include "listing/ThemeSet.h"

#include <QTemporaryDir>
#include <QtTest>

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
        QCOMPARE(*load(u"New"_s).theme, Theme::newTheme(u"New"_s));
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

private:
    QString file() const { return m_dir.filePath(u"shop.tbt"_s); }
    MaybeMessage replace(const Theme& t) const { return replaceTheme(file(), t, m_dir.path()); }
    ThemeLoadResult load(const QString& n) const { return loadTheme(file(), n, m_dir.path()); }
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestThemeSet)
#include "tst_themeset.moc"
