#include "listing/ListingGenerator.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

// Listings are compared with the expected files under tests/data/listing character for
// character; "@APP@" there stands for the test's application folder. Run with
// TB_WRITE_EXPECTED=1 to write them anew (then read every change before keeping it).

namespace {

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(bytes);
}

// A theme that exercises the conversions: colours of one and two hex digits, every point size
// rule, bold and italic alone and together, a centred cell and no border.
Theme styledTheme()
{
    Theme t = Theme::newTheme(QStringLiteral("Styled"), 0xE0F0FF);
    t.borderWidth = 0;
    t.cellAlign = QStringLiteral("Center");
    t.fonts = {{{QStringLiteral("Georgia"), 0x0000FF, 16, true, true},
                {QStringLiteral("Verdana"), 5, 11, false, true},
                {QStringLiteral("Times New Roman"), 0x123456, 13, false, false},
                {QStringLiteral("Verdana"), 0x00FF00, 7, true, false},
                {QStringLiteral("Verdana"), 0xFF0000, 9, false, false},
                {QStringLiteral("Arial"), 255, 24, true, false},
                {QStringLiteral("Arial"), 0xABCDEF, 18, false, true}}};
    return t;
}

} // namespace

class TestListingGenerator : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void listings_data();
    void listings();
    void refusals_data();
    void refusals();
    void htmlSizes_data();
    void htmlSizes();
    void smallRoutines();

private:
    QString app(const QString& name) const { return m_dir->filePath(name); }
    ListingRequest baseRequest() const;
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestListingGenerator::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    QVERIFY(!CreateThemeSet(app(QStringLiteral("shop.tbt")), QDate(2024, 3, 9)));
    QVERIFY(!appendTheme(app(QStringLiteral("shop.tbt")), styledTheme()));
    for (const char* name :
         {"pics/lamp 1.jpg", "pics/lamp2.jpg", "pics/lamp#3.gif", "Backgr/back ground.jpg",
          "Sounds/tune.wav", "Images/rule.gif", "Images/title.gif", "Images/inline.gif"})
        writeAll(app(QString::fromLatin1(name)), "x");
}

ListingRequest TestListingGenerator::baseRequest() const
{
    ListingRequest r;
    r.themeSetPath = app(QStringLiteral("shop.tbt"));
    r.themeName = QStringLiteral("Default");
    r.roleTexts = {QStringLiteral(" Mint condition "), QStringLiteral("Pay by check."),
                   QStringLiteral("CA residents add 8% tax."), QStringLiteral("NO RESERVE!"),
                   QStringLiteral("See my other auctions")};
    r.shortDescription = QStringLiteral("  Brass lamp  ");
    r.description = QStringLiteral("A <b>fine</b> lamp.\r\nWorks & shines. ");
    r.imageLoc = QStringLiteral("http://example.com/pics");
    r.ebaySellerReport = QStringLiteral(
        "/aw-cgi/eBayISAPI.dll?MfcISAPICommand=ViewListedItemsWithEmails&rows=0&userid=");
    r.userEmail = QStringLiteral(" seller@example.com ");
    r.appPath = m_dir->path();
    return r;
}

void TestListingGenerator::listings_data()
{
    QTest::addColumn<QString>("expected"); // file under tests/data/listing
    QTest::addColumn<QString>("theme");
    QTest::addColumn<QString>("placement");
    QTest::addColumn<bool>("remote");
    QTest::addColumn<bool>("escape");
    QTest::addColumn<int>("pictures"); // bit n: picture n+1 is set
    QTest::addColumn<int>("media");    // 0 none, 1 every flag on, 2 mixed flags
    QTest::addColumn<QString>("reserve");
    QTest::addColumn<bool>("emptyTexts");

    QTest::newRow("no pictures") << "plain_left_local.htm"
                                 << "Default"
                                 << "Left" << false << false << 0 << 0 << "" << false;
    QTest::newRow("top, three pictures") << "plain_top_local_pictures.htm"
                                         << "Default"
                                         << "Top" << false << false << 7 << 0 << "0" << false;
    QTest::newRow("left, remote") << "plain_left_remote.htm"
                                  << "Default"
                                  << "Left" << true << false << 5 << 0 << "50" << false;
    QTest::newRow("right, remote media") << "styled_right_remote_media.htm"
                                         << "Styled"
                                         << "Right" << true << false << 2 << 1 << "-5" << false;
    QTest::newRow("bottom, local media, empty texts")
        << "styled_bottom_local_media.htm"
        << "Styled"
        << "Bottom" << false << false << 3 << 2 << "12.5" << true;
    QTest::newRow("top, local media") << "styled_top_local_media.htm"
                                      << "Styled"
                                      << "Top" << false << false << 1 << 1 << "0.00" << false;
    QTest::newRow("escaped for the start form")
        << "plain_bottom_remote_escaped.htm"
        << "Default"
        << "Bottom" << true << true << 6 << 1 << " 0 " << false;
    QTest::newRow("no placement: no picture cell")
        << "styled_none_local.htm"
        << "Styled"
        << "" << false << false << 7 << 0 << "abc" << true;
}

void TestListingGenerator::listings()
{
    QFETCH(QString, expected);
    QFETCH(QString, theme);
    QFETCH(QString, placement);
    QFETCH(bool, remote);
    QFETCH(bool, escape);
    QFETCH(int, pictures);
    QFETCH(int, media);
    QFETCH(QString, reserve);
    QFETCH(bool, emptyTexts);

    ListingRequest r = baseRequest();
    r.themeName = theme;
    r.placement = placement;
    r.remote = remote;
    r.escape = escape;
    r.reserve = reserve;
    const QString paths[3] = {app(QStringLiteral("pics/lamp 1.jpg")) + u' ',
                              app(QStringLiteral("pics/lamp2.jpg")),
                              app(QStringLiteral("pics/lamp#3.gif"))};
    r.picture1Path = pictures & 1 ? paths[0] : QStringLiteral("  ");
    r.picture2Path = pictures & 2 ? paths[1] : QString();
    r.picture3Path = pictures & 4 ? paths[2] : QString();
    if (media) {
        r.media.backgroundImage = app(QStringLiteral("Backgr/back ground.jpg"));
        r.media.soundFile = app(QStringLiteral("Sounds/tune.wav"));
        r.media.borderImage = app(QStringLiteral("Images/rule.gif"));
        r.media.titleImage = app(QStringLiteral("Images/title.gif"));
        r.media.inlineImage = app(QStringLiteral("Images/inline.gif"));
    }
    if (media == 2) {
        r.media.loop = false;
        r.media.borderImgTop = false;
        r.media.titleImgLeft = false;
        r.media.inlineImg = false;
    }
    if (emptyTexts)
        r.roleTexts = {QString(), QStringLiteral("  "), QString(), QStringLiteral("NO RESERVE!"),
                       QStringLiteral("   ")};

    const ListingResult result = generateListing(r);
    QVERIFY2(result.messages.isEmpty(),
             qPrintable(result.messages.isEmpty() ? QString() : result.messages.first().title));
    QVERIFY(result.ok());
    QCOMPARE(readAll(listingFilePath(m_dir->path())), (result.html + "\r\n").toUtf8());

    QString html = result.html;
    html.replace(m_dir->path(), QStringLiteral("@APP@"));
    const QString expectedPath =
        QStringLiteral(TB_TEST_DATA_DIR) + QStringLiteral("/listing/") + expected;
    if (qEnvironmentVariableIsSet("TB_WRITE_EXPECTED"))
        writeAll(expectedPath, html.toUtf8());
    QCOMPARE(html, QString::fromUtf8(readAll(expectedPath)));
}

void TestListingGenerator::refusals_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("value"); // "@APP@" stands for the application folder
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("focus");

    const QString graphic = QStringLiteral(
        "Can't find a graphic file. \r\nA full valid path name to an image file must be "
        "provided.\r\nYou cannot put a URL in as an image path. It must be a path to an image on "
        "the hard drive.");
    const auto media = [](const char* what) {
        return QStringLiteral("Could not find the %1 @APP@/gone.gif specified in Ad Studio.")
            .arg(QLatin1String(what));
    };
    QTest::newRow("no themeset") << "themeset"
                                 << "@APP@/none.tbt"
                                 << "Missing Themeset"
                                 << "The requested Themeset file does not exist.  Request aborted."
                                 << 0;
    QTest::newRow("empty themeset")
        << "themeset"
        << "@APP@/empty.tbt"
        << "Invalid Themeset File"
        << "Your Themeset file is either empty or not complete.  Please check it." << 0;
    QTest::newRow("no such theme") << "theme"
                                   << "default"
                                   << "Missing Theme"
                                   << "Theme: default does not exist in Themeset: @APP@/shop.tbt."
                                      "  Request aborted."
                                   << 0;
    QTest::newRow("blank short description")
        << "short"
        << "   "
        << "Missing Information"
        << "A short description is required. Please supply." << 1;
    QTest::newRow("blank description") << "description"
                                       << " "
                                       << "Missing Information"
                                       << "A long description is required. Please supply." << 2;
    QTest::newRow("missing picture") << "picture3"
                                     << "@APP@/gone.gif"
                                     << "File: @APP@/gone.gif not found." << graphic << 0;
    QTest::newRow("picture as a web address")
        << "picture1"
        << "http://example.com/lamp.jpg"
        << "Missing file"
        << "A file is bad or missing. Please ensure the drive with any referenced graphic files "
           "is available.\r\nThis includes any images in the Picture X boxes, or any of the "
           "media files chosen for the current theme."
        << 0;
    QTest::newRow("background") << "background"
                                << "@APP@/gone.gif"
                                << "File: @APP@/gone.gif not found." << media("background image")
                                << 0;
    QTest::newRow("sound") << "sound"
                           << "@APP@/gone.gif"
                           << "File: @APP@/gone.gif not found." << media("sound file") << 0;
    QTest::newRow("border") << "border"
                            << "@APP@/gone.gif"
                            << "File: @APP@/gone.gif not found." << media("border image") << 0;
    // Media are checked whatever their flags say.
    QTest::newRow("title, flags off")
        << "title"
        << "@APP@/gone.gif"
        << "File: @APP@/gone.gif not found." << media("Title image") << 0;
    QTest::newRow("inline, flag off")
        << "inline"
        << "@APP@/gone.gif"
        << "File: @APP@/gone.gif not found." << media("Inline image") << 0;
    QTest::newRow("no application folder")
        << "appPath"
        << "@APP@/gone"
        << "Invalid directory"
        << "You have entered an invalid path for listing files. \r\nPlease enter a correct path "
           "under the Directories tab on the Options panel."
        << 0;
}

void TestListingGenerator::refusals()
{
    QFETCH(QString, field);
    QFETCH(QString, value);
    QFETCH(QString, title);
    QFETCH(QString, text);
    QFETCH(int, focus);
    value.replace(QStringLiteral("@APP@"), m_dir->path());
    writeAll(app(QStringLiteral("empty.tbt")), {});

    // A request that would succeed, with one thing wrong (and a missing background behind it,
    // to show the checks stop at the first refusal).
    ListingRequest r = baseRequest();
    r.picture2Path = app(QStringLiteral("pics/lamp2.jpg"));
    r.media.titleImgLeft = r.media.titleImgRight = r.media.inlineImg = false;
    if (field != QLatin1String("background"))
        r.media.soundFile = app(QStringLiteral("Sounds/gone.wav"));
    if (field == QLatin1String("themeset"))
        r.themeSetPath = value;
    else if (field == QLatin1String("theme"))
        r.themeName = value;
    else if (field == QLatin1String("short"))
        r.shortDescription = value, r.description = QString();
    else if (field == QLatin1String("description"))
        r.description = value;
    else if (field == QLatin1String("picture1"))
        r.picture1Path = value;
    else if (field == QLatin1String("picture3"))
        r.picture3Path = value;
    else if (field == QLatin1String("background"))
        r.media.backgroundImage = value;
    else if (field == QLatin1String("sound"))
        r.media.soundFile = value;
    else if (field == QLatin1String("border"))
        r.media.borderImage = value, r.media.soundFile = QString();
    else if (field == QLatin1String("title"))
        r.media.titleImage = value, r.media.soundFile = QString();
    else if (field == QLatin1String("inline"))
        r.media.inlineImage = value, r.media.soundFile = QString();
    else if (field == QLatin1String("appPath"))
        r.appPath = value, r.media.soundFile = QString();

    const ListingResult result = generateListing(r);
    QVERIFY(!result.ok());
    QCOMPARE(result.messages.size(), 1);
    const ThemeSetMessage& shown = result.messages.first();
    QCOMPARE(shown.title, title.replace(QStringLiteral("@APP@"), m_dir->path()));
    QCOMPARE(shown.text, text.replace(QStringLiteral("@APP@"), m_dir->path()));
    QCOMPARE(shown.icon, PromptIcon::Exclamation);
    QCOMPARE(int(result.focus), focus);
    QVERIFY(!QFile::exists(listingFilePath(m_dir->path())));
}

void TestListingGenerator::htmlSizes_data()
{
    QTest::addColumn<int>("points");
    QTest::addColumn<int>("html");
    const int table[][2] = {{4, -1}, {5, 0},  {7, 0},  {8, 1},  {9, 2},  {10, 2}, {11, 2}, {12, 3},
                            {13, 4}, {14, 5}, {17, 5}, {18, 6}, {23, 6}, {24, 7}, {72, 7}};
    for (const auto& row : table)
        QTest::addRow("%d points", row[0]) << row[0] << row[1];
}

void TestListingGenerator::htmlSizes()
{
    QFETCH(int, points);
    QFETCH(int, html);
    QCOMPARE(PointSizeToHtmlSize(points), html);
}

void TestListingGenerator::smallRoutines()
{
    QCOMPARE(UrlPathEscape(QStringLiteral("C:\\My Pictures\\#1 lamp.jpg")),
             QStringLiteral("C:/My%20Pictures/%231%20lamp.jpg"));

    QString text = QStringLiteral("one\r\ntwo\nthree");
    QCOMPARE(FirstLine(text), QStringLiteral("one\r\n"));
    QCOMPARE(FirstLine(text), QStringLiteral("two\n"));
    QCOMPARE(FirstLine(text), QString());
    QCOMPARE(text, QStringLiteral("three"));

    const QString escaped = QStringLiteral("Tom&#39;s &lt;b&gt; &quot;x&quot;");
    QCOMPARE(HtmlUnescape(escaped), escaped);
}

QTEST_GUILESS_MAIN(TestListingGenerator)
#include "tst_listinggenerator.moc"
