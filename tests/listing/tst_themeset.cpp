#include "listing/ThemeSet.h"

#include "platform/SettingsStore.h"
#include "settings/SettingsCatalogue.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

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

// A record as a person might have edited it by hand: booleans as numbers, a fractional size,
// a non-ASCII name, odd blanks. Reading it must not change a byte when it is copied.
const QByteArray kHandMade =
    "\"Flohmarkt \xc3\xa4\xc3\xb6\",  255,\"AppBackgrPath\\paper.jpg\",\"\",2,\"Center\",0,"
    "\"AppImagePath\\frame.gif\",#FALSE#,1,\"\",#TRUE#,#FALSE#,\"\",#FALSE#,"
    "\"Georgia\",128,10.5,#TRUE#,#FALSE#,\"Georgia\",0,11.5,#FALSE#,#TRUE#,"
    "\"Georgia\",0,12,#FALSE#,#FALSE#,\"Georgia\",0,8,#FALSE#,#FALSE#,"
    "\"Georgia\",0,8,#FALSE#,#FALSE#,\"Georgia\",0,10,#FALSE#,#FALSE#,"
    "\"Georgia\",0,10,#FALSE#,#FALSE#\r\n";
// The same record after a copy: only the sizes became whole points (half to even).
const QByteArray kHandMadeCopied =
    QByteArray(kHandMade).replace("128,10.5,", "128,10,").replace(",0,11.5,", ",0,12,");

Theme editedTheme(const QString& name)
{
    Theme t = Theme::newTheme(name, 0x00DDEEFF);
    t.backgroundImage = QStringLiteral("/srv/media/back ground.jpg");
    t.soundFile = QStringLiteral("/srv/media/chime.wav");
    t.borderWidth = 7;
    t.cellAlign = QStringLiteral("Right");
    t.loop = false;
    t.borderImage = QStringLiteral("/srv/media/rule.gif");
    t.borderImgBot = false;
    t.titleImage = QStringLiteral("/srv/media/title.gif");
    t.titleImgLeft = false;
    t.inlineImage = QStringLiteral("/srv/media/inline.gif");
    t.inlineImg = false;
    t.fonts[0] = {QStringLiteral("Times New Roman"), 0x0000FF, 18, true, true};
    t.fonts[6] = {QStringLiteral("Verdana"), 0x123456, 9, false, true};
    return t;
}

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<unreadable>");
}

void writeAll(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

} // namespace

class TestThemeSet : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void newThemeSetHasHeaderAndDefault();
    void appendedThemesReadBack();
    void savingOneThemeKeepsTheOthers_data();
    void savingOneThemeKeepsTheOthers();
    void savingAnUnknownThemeChangesNothing();
    void deleting_data();
    void deleting();
    void interruptedRewriteLosesNothing();
    void quoteInThemeIsRefused();
    void pathTokens_data();
    void pathTokens();
    void malformedFiles_data();
    void malformedFiles();
    void missingFile();
    void roleTexts();
    void shippedThemesLoad();

private:
    QString file() const { return m_dir->filePath(QStringLiteral("shop.tbt")); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestThemeSet::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void TestThemeSet::newThemeSetHasHeaderAndDefault()
{
    QVERIFY(!CreateThemeSet(file(), QDate(2024, 3, 9)));
    QCOMPARE(readAll(file()), kHeader + kNewDefault);

    const ThemeLoadResult loaded = loadTheme(file(), QStringLiteral("Default"), m_dir->path());
    QVERIFY(!loaded.message);
    QCOMPARE(*loaded.theme, Theme::newTheme(QStringLiteral("Default")));
    QCOMPARE(listThemeNames(file()).names, QStringList{QStringLiteral("Default")});
}

void TestThemeSet::appendedThemesReadBack()
{
    QVERIFY(!CreateThemeSet(file(), QDate(2024, 3, 9)));
    Theme fractional = editedTheme(QStringLiteral("Fractional"));
    fractional.fonts[2].size = 10.5;
    QVERIFY(!appendTheme(file(), editedTheme(QStringLiteral("Wide"))));
    QVERIFY(!appendTheme(file(), fractional));
    QVERIFY(!appendNewTheme(file(), QStringLiteral("Wide"), 0xC0C0C0));

    // The editor writes what it holds, fractions included; duplicates are not checked.
    QVERIFY(readAll(file()).contains(",0,10.5,#FALSE#,#FALSE#,"));
    QCOMPARE(listThemeNames(file()).names, (QStringList{"Default", "Wide", "Fractional", "Wide"}));

    // Every lookup finds the first record of a name; sizes come back as whole points.
    QCOMPARE(*loadTheme(file(), QStringLiteral("Wide"), m_dir->path()).theme,
             editedTheme(QStringLiteral("Wide")));
    fractional.fonts[2].size = 10;
    QCOMPARE(*loadTheme(file(), QStringLiteral("Fractional"), m_dir->path()).theme, fractional);
    QCOMPARE(*readThemeForListing(file(), QStringLiteral("Fractional")).theme, fractional);

    const ThemeLoadResult absent = loadTheme(file(), QStringLiteral("wide"), m_dir->path());
    QVERIFY(!absent.theme);
    QCOMPARE(absent.message->title, QStringLiteral("Invalid Theme"));
    QCOMPARE(absent.message->text, QStringLiteral("The theme wide was not found in the Themeset ") +
                                       file() + QStringLiteral(". Aborted"));
}

void TestThemeSet::savingOneThemeKeepsTheOthers_data()
{
    QTest::addColumn<QString>("saved");
    QTest::addColumn<int>("position"); // which record of the four it was
    QTest::newRow("first") << QStringLiteral("Default") << 0;
    QTest::newRow("middle") << QStringLiteral("Plain") << 2;
    QTest::newRow("last") << QStringLiteral("Last") << 3;
}

void TestThemeSet::savingOneThemeKeepsTheOthers()
{
    QFETCH(QString, saved);
    QFETCH(int, position);
    const QByteArray plain = QByteArray(kNewDefault).replace("\"Default\"", "\"Plain\"");
    const QByteArray last = QByteArray(kNewDefault).replace("\"Default\"", "\"Last\"");
    QList<QByteArray> records{kNewDefault, kHandMade, plain, last};
    writeAll(file(), kHeader + records.join());

    const Theme theme = editedTheme(saved);
    QVERIFY(!replaceTheme(file(), theme, m_dir->path()));

    records[1] = kHandMadeCopied;
    records[position] = "<edited>";
    const QList<QByteArray> after = readAll(file()).split('\n');
    QCOMPARE(after.size(), 4 + 4 + 1);
    QByteArray expected = kHeader;
    for (const QByteArray& r : records)
        expected += r == "<edited>" ? after.at(4 + position) + '\n' : r;
    QCOMPARE(readAll(file()), expected);
    QCOMPARE(*loadTheme(file(), saved, m_dir->path()).theme, theme);
    QVERIFY(!QFile::exists(m_dir->filePath(QStringLiteral("Temp.tbt"))));
}

void TestThemeSet::savingAnUnknownThemeChangesNothing()
{
    writeAll(file(), kHeader + kNewDefault + kNewDefault);
    QVERIFY(!replaceTheme(file(), editedTheme(QStringLiteral("Nowhere")), m_dir->path()));
    QCOMPARE(readAll(file()), kHeader + kNewDefault + kNewDefault);
}

void TestThemeSet::deleting_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("namesAfter");
    QTest::addColumn<QString>("refusal");
    QTest::newRow("every record of a name")
        << QStringLiteral("Twice") << QStringList{"Default", "Flohmarkt \u00e4\u00f6"} << QString();
    QTest::newRow("unknown name") << QStringLiteral("None")
                                  << QStringList{"Default", "Twice", "Flohmarkt \u00e4\u00f6",
                                                 "Twice"}
                                  << QString();
    QTest::newRow("Default is refused")
        << QStringLiteral("Default")
        << QStringList{"Default", "Twice", "Flohmarkt \u00e4\u00f6", "Twice"}
        << QStringLiteral("Cannot Delete");
}

void TestThemeSet::deleting()
{
    QFETCH(QString, name);
    QFETCH(QStringList, namesAfter);
    QFETCH(QString, refusal);
    const QByteArray twice = QByteArray(kNewDefault).replace("\"Default\"", "\"Twice\"");
    const QByteArray before = kHeader + kNewDefault + twice + kHandMade + twice;
    writeAll(file(), before);

    const MaybeMessage message = deleteTheme(file(), name, m_dir->path());
    QCOMPARE(listThemeNames(file()).names, namesAfter);
    if (refusal.isEmpty()) {
        QVERIFY(!message);
        QVERIFY(readAll(file()).contains(kHandMadeCopied));
    } else {
        QCOMPARE(message->title, refusal);
        QCOMPARE(message->text,
                 QStringLiteral("You cannot delete the Default Theme.  You can only modify it."));
        QCOMPARE(message->icon, PromptIcon::Information);
        QCOMPARE(readAll(file()), before);
    }
}

void TestThemeSet::interruptedRewriteLosesNothing()
{
    const QByteArray before = kHeader + kNewDefault + kHandMade;
    writeAll(file(), before);
    const QString temp = m_dir->filePath(QStringLiteral("Temp.tbt"));

    // A scratch file left half written by a stopped save does not get in the way.
    writeAll(temp, kHeader.left(30));
    QVERIFY(!replaceTheme(file(), editedTheme(QStringLiteral("Default")), m_dir->path()));
    QVERIFY(!QFile::exists(temp));
    QCOMPARE(listThemeNames(file()).names.size(), 2);

    // A scratch file that cannot be written stops the save before the themeset is touched.
    writeAll(file(), before);
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("Temp.tbt")));
    const MaybeMessage blocked =
        replaceTheme(file(), editedTheme(QStringLiteral("Default")), m_dir->path());
    QVERIFY(blocked);
    QCOMPARE(blocked->title, QStringLiteral("Error"));
    QVERIFY(blocked->text.startsWith(QStringLiteral("Error # 75 was generated by Tallybid\r\n")));
    QVERIFY(deleteTheme(file(), QStringLiteral("Flohmarkt \u00e4\u00f6"), m_dir->path()));
    QCOMPARE(readAll(file()), before);

    // So does a record that cannot be copied: nothing is half replaced.
    QVERIFY(QDir(m_dir->path()).rmdir(QStringLiteral("Temp.tbt")));
    writeAll(file(), before + QByteArray(kNewDefault)
                                  .replace(",0,16,", ",0,big,")
                                  .replace("\"Default\"", "\"Broken\""));
    QVERIFY(replaceTheme(file(), editedTheme(QStringLiteral("Default")), m_dir->path()));
    QVERIFY(readAll(file()).startsWith(before));
    QVERIFY(!QFile::exists(temp));
}

void TestThemeSet::quoteInThemeIsRefused()
{
    writeAll(file(), kHeader + kNewDefault);
    Theme quoted = editedTheme(QStringLiteral("Default"));
    quoted.titleImage = QStringLiteral("/srv/\"best\".gif");
    QCOMPARE(replaceTheme(file(), quoted, m_dir->path())->title, QStringLiteral("Theme Not Saved"));
    QVERIFY(appendTheme(file(), quoted));
    QVERIFY(appendNewTheme(file(), QStringLiteral("say \"hi\"")));
    QCOMPARE(readAll(file()), kHeader + kNewDefault);
}

void TestThemeSet::pathTokens_data()
{
    QTest::addColumn<QByteArray>("background");
    QTest::addColumn<QByteArray>("border");
    QTest::addColumn<QString>("loadedBackground");
    QTest::addColumn<QString>("loadedBorder");
    QTest::newRow("tokens") << QByteArray("AppBackgrPath\\paper.jpg")
                            << QByteArray("AppImagePath\\frame.gif") << "@/Backgr/paper.jpg"
                            << "@/Images/frame.gif";
    QTest::newRow("letter case counts")
        << QByteArray("appbackgrpath\\paper.jpg") << QByteArray("appimagepath\\frame.gif")
        << "appbackgrpath\\paper.jpg"
        << "appimagepath\\frame.gif";
    QTest::newRow("token of another field")
        << QByteArray("AppImagePath\\x.jpg") << QByteArray("AppBackgrPath\\x.gif")
        << "AppImagePath\\x.jpg"
        << "AppBackgrPath\\x.gif";
    QTest::newRow("deeper folders")
        << QByteArray("AppBackgrPath/a b/c.jpg") << QByteArray("AppImagePath\\sub\\d.gif")
        << "@/Backgr/a b/c.jpg"
        << "@/Images/sub/d.gif";
}

void TestThemeSet::pathTokens()
{
    QFETCH(QByteArray, background);
    QFETCH(QByteArray, border);
    QFETCH(QString, loadedBackground);
    QFETCH(QString, loadedBorder);
    QByteArray record = kNewDefault;
    record.replace("16777215,\"\",\"\"",
                   QByteArray("16777215,\"" + background + "\",\"AppSoundPath\\s.wav\""));
    record.replace("1,\"\",#TRUE#", QByteArray("1,\"" + border + "\",#TRUE#"));
    writeAll(file(), kHeader + record);

    const QString app = QStringLiteral("/opt/tally bid");
    const Theme t = *loadTheme(file(), QStringLiteral("Default"), app).theme;
    QCOMPARE(t.backgroundImage, loadedBackground.replace(u'@', app));
    QCOMPARE(t.borderImage, loadedBorder.replace(u'@', app));
    QCOMPARE(t.soundFile, app + QStringLiteral("/Sounds/s.wav"));
    // The listing reads the record's fonts only; its paths stay as written.
    QCOMPARE(readThemeForListing(file(), QStringLiteral("Default")).theme->backgroundImage,
             QString::fromLatin1(background));
}

void TestThemeSet::malformedFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("listingTitle"); // what the listing generator's lookup says
    QTest::addColumn<QString>("editorText");   // start of what the editor's operations say
    QTest::addColumn<bool>("copyFails");       // whether rewriting the file trips over it

    const QString pastEnd =
        QStringLiteral("Error # 62 was generated by Tallybid\r\nInput past end");
    QTest::newRow("empty") << QByteArray() << "Invalid Themeset File" << pastEnd << true;
    QTest::newRow("subject only") << kHeader.left(kHeader.indexOf('\n') + 1)
                                  << "Invalid Themeset File" << pastEnd << true;
    QTest::newRow("header cut") << kHeader.left(60) << "Error" << pastEnd << true;
    QTest::newRow("record cut short")
        << kHeader + kNewDefault.left(120) << "Error" << pastEnd << true;
    QTest::newRow("open quote") << kHeader + "\"Default,1,2\r\n"
                                << "Error" << pastEnd << true;
    QTest::newRow("text for a colour")
        << kHeader + QByteArray(kNewDefault).replace("\"Default\",16777215", "\"Default\",white")
        << "Error"
        << "Error # 13 was generated by Tallybid\r\nType mismatch" << false;
    QTest::newRow("size beyond a whole number")
        << kHeader + QByteArray(kNewDefault).replace(",0,16,", ",0,40000,") << "Error"
        << "Error # 6 was generated by Tallybid\r\nOverflow" << true;
    QTest::newRow("date for a flag")
        << kHeader + QByteArray(kNewDefault).replace("1,\"\",#TRUE#", "#2001-01-01#,\"\",#TRUE#")
        << "Error"
        << "Error # 13 was generated by Tallybid\r\nType mismatch" << false;
}

void TestThemeSet::malformedFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, listingTitle);
    QFETCH(QString, editorText);
    QFETCH(bool, copyFails);
    writeAll(file(), content);

    const ThemeLoadResult listing = readThemeForListing(file(), QStringLiteral("Default"));
    QVERIFY(!listing.theme);
    QCOMPARE(listing.message->title, listingTitle);
    if (listingTitle == QLatin1String("Invalid Themeset File"))
        QCOMPARE(listing.message->text,
                 QStringLiteral(
                     "Your Themeset file is either empty or not complete.  Please check it."));
    else
        QVERIFY2(listing.message->text.startsWith(editorText), qPrintable(listing.message->text));

    const ThemeLoadResult loaded = loadTheme(file(), QStringLiteral("Default"), m_dir->path());
    QVERIFY(!loaded.theme);
    QVERIFY2(loaded.message->text.startsWith(editorText), qPrintable(loaded.message->text));
    QCOMPARE(loaded.message->icon, PromptIcon::Exclamation);
    // The file's name is part of the explanation.
    QVERIFY(loaded.message->text.contains(file()));

    // Fields before the fonts are copied as they stand, so only a broken structure or font
    // group stops a rewrite; either way the file keeps every byte.
    QCOMPARE(bool(replaceTheme(file(), editedTheme(QStringLiteral("Other")), m_dir->path())),
             copyFails);
    QCOMPARE(bool(deleteTheme(file(), QStringLiteral("Other"), m_dir->path())), copyFails);
    QCOMPARE(readAll(file()), content);
}

void TestThemeSet::missingFile()
{
    const QString missing = m_dir->filePath(QStringLiteral("gone.tbt"));
    const ThemeSetMessage editor{
        QStringLiteral(
            "The requested Themeset file is not in your Tallybid directory.  Request aborted."),
        QStringLiteral("Missing Themeset"), PromptIcon::Exclamation};
    QCOMPARE(*listThemeNames(missing).message, editor);
    QCOMPARE(*loadTheme(missing, QStringLiteral("Default"), m_dir->path()).message, editor);
    QVERIFY(!QFile::exists(missing));
    QCOMPARE(readThemeForListing(missing, QStringLiteral("Default")).message->text,
             QStringLiteral("The requested Themeset file does not exist.  Request aborted."));
}

void TestThemeSet::roleTexts()
{
    SettingsStore store(m_dir->filePath(QStringLiteral("config")));
    const RoleTexts defaults = loadRoleTexts(store);
    QCOMPARE(defaults.payOptions,
             QStringLiteral("Buyer to pay shipping and insurance if desired. Please allow time for "
                            "personal check to clear or send m.o. for quick shipping."));
    QVERIFY(defaults.payOptions !=
            settingDefault(Settings::kOptions, QStringLiteral("PayOptions")));
    QCOMPARE(defaults.noReserve, QStringLiteral("NO RESERVE!"));
    QCOMPARE(defaults.seeOther, QStringLiteral("Please check out the other auctions we currently "
                                               "have running on eBay."));
    QVERIFY(defaults.subHeading.isEmpty() && defaults.taxMsg.isEmpty());

    RoleTexts mine;
    for (int role : {1, 3, 4, 5, 6})
        mine.setText(role, QStringLiteral("text %1").arg(role));
    QVERIFY(saveRoleTexts(store, mine));
    QCOMPARE(store.get(Settings::kApp, Settings::kOptions, QStringLiteral("TaxMsg")),
             QStringLiteral("text 4"));
    QCOMPARE(loadRoleTexts(SettingsStore(store.folder())), mine);
    QCOMPARE(mine.text(Role::Heading), QString());
}

void TestThemeSet::shippedThemesLoad()
{
    const QString resources = qEnvironmentVariable("TB_SOURCE_DIR") + QStringLiteral("/resources");
    const QString shipped = resources + QStringLiteral("/standard.tbt");
    const ThemeNamesResult names = listThemeNames(shipped);
    QVERIFY(!names.message);
    QVERIFY(names.names.size() >= 4);
    QCOMPARE(names.names.first(), QStringLiteral("Default"));
    QCOMPARE(QSet<QString>(names.names.begin(), names.names.end()).size(), names.names.size());
    for (const QString& name : names.names) {
        const ThemeLoadResult loaded = loadTheme(shipped, name, resources);
        QVERIFY2(!loaded.message, qPrintable(name));
        const Theme& t = *loaded.theme;
        for (const QString& media :
             {t.backgroundImage, t.soundFile, t.borderImage, t.titleImage, t.inlineImage}) {
            QVERIFY2(media.isEmpty() || media.startsWith(resources + u'/'), qPrintable(media));
            QVERIFY2(media.isEmpty() || QFileInfo(media).isFile(), qPrintable(media));
        }
    }
    // Tokens keep the file usable wherever the program is installed.
    QVERIFY(!readAll(shipped).contains(resources.toUtf8()));
}

QTEST_GUILESS_MAIN(TestThemeSet)
#include "tst_themeset.moc"
