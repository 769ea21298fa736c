#include "FileBytes.h"
#include "listing/ListingGenerator.h"

#include <QTemporaryDir>
#include <QtTest>

#include <sys/file.h>

using namespace Qt::StringLiterals;

// Listings are compared with the expected files under tests/data/listing character for
// character; "@APP@" there stands for the test's application folder.

namespace {

// A listing to make: the expected file under tests/data/listing, theme, placement and reserve;
// remote, escaped, role texts blank; which pictures are set (bit n for picture n+1) and the
// media (0 none, 1 every flag on, 2 mixed flags).
// clang-format off
struct Listing { const char *expected, *theme, *placement, *reserve; bool remote, escape, blankTexts; int pictures, media; };
// clang-format on

} // namespace

Q_DECLARE_METATYPE(Listing)

class TestListingGenerator : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Default and "Styled", which exercises the conversions: colours of one and two hex digits,
        // every point size rule, bold and italic alone and together, a centred cell and no border.
        QVERIFY(QFile::copy(TB_LISTING_DATA "/listing.tbt", app(u"shop.tbt"_s)));
        for (const char* name : {"empty.tbt", "pics/lamp 1.jpg", "pics/lamp2.jpg",
                                 "pics/lamp#3.gif", "Backgr/back ground.jpg", "Sounds/tune.wav",
                                 "Images/rule.gif", "Images/title.gif", "Images/inline.gif"})
            QVERIFY(writeAll(app(QString::fromLatin1(name)), name[0] == 'e' ? "" : "x"));

        ListingRequest& r = m_base;
        r.themeSetPath = app(u"shop.tbt"_s);
        r.themeName = u"Default"_s;
        r.roleTexts = {u" Mint condition "_s, u"Pay by check."_s, u"CA residents add 8% tax."_s,
                       u"NO RESERVE!"_s, u"See my other auctions"_s};
        r.shortDescription = u"  Brass lamp  "_s;
        r.description = u"A <b>fine</b> lamp.\r\nWorks & shines. "_s;
        r.imageLoc = u"http://example.com/pics"_s;
        r.ebaySellerReport = QStringLiteral(
            "/aw-cgi/eBayISAPI.dll?MfcISAPICommand=ViewListedItemsWithEmails&rows=0&userid=");
        r.userEmail = u" seller@example.com "_s;
        r.appPath = m_dir.path();
    }
    void listings_data()
    {
        QTest::addColumn<Listing>("listing");
        // The expected file's name tells theme, placement and where the pictures are.
        // clang-format off
        const Listing rows[] = {
            {"plain_left_local.htm",            "Default", "Left",   "",     false, false, false, 0, 0},
            {"plain_top_local_pictures.htm",    "Default", "Top",    "0",    false, false, false, 7, 0},
            {"plain_left_remote.htm",           "Default", "Left",   "50",   true,  false, false, 5, 0},
            {"styled_right_remote_media.htm",   "Styled",  "Right",  "-5",   true,  false, false, 2, 1},
            {"styled_bottom_local_media.htm",   "Styled",  "Bottom", "12.5", false, false, true,  3, 2},
            {"styled_top_local_media.htm",      "Styled",  "Top",    "0.00", false, false, false, 1, 1},
            {"plain_bottom_remote_escaped.htm", "Default", "Bottom", " 0 ",  true,  true,  false, 6, 1},
            {"styled_none_local.htm",           "Styled",  "",       "abc",  false, false, true,  7, 0},
        };
        // clang-format on
        for (const Listing& listing : rows)
            QTest::newRow(listing.expected) << listing;
    }
    void listings()
    {
        QFETCH(Listing, listing);
        ListingRequest r = m_base;
        r.themeName = QString::fromLatin1(listing.theme);
        r.placement = QString::fromLatin1(listing.placement);
        r.remote = listing.remote;
        r.escape = listing.escape;
        r.reserve = QString::fromLatin1(listing.reserve);
        r.picture1Path = listing.pictures & 1 ? app(u"pics/lamp 1.jpg"_s) + u' ' : u"  "_s;
        r.picture2Path = listing.pictures & 2 ? app(u"pics/lamp2.jpg"_s) : QString();
        r.picture3Path = listing.pictures & 4 ? app(u"pics/lamp#3.gif"_s) : QString();
        // clang-format off
        QString* media[] = {&r.media.backgroundImage, &r.media.soundFile, &r.media.borderImage, &r.media.titleImage, &r.media.inlineImage};
        const char* files[] = {"Backgr/back ground.jpg", "Sounds/tune.wav", "Images/rule.gif", "Images/title.gif", "Images/inline.gif"};
        // clang-format on
        for (int i = 0; listing.media && i < 5; ++i)
            *media[i] = app(QString::fromLatin1(files[i]));
        if (listing.media == 2)
            r.media.loop = r.media.borderImgTop = r.media.titleImgLeft = r.media.inlineImg = false;
        if (listing.blankTexts)
            r.roleTexts = {QString(), u"  "_s, QString(), u"NO RESERVE!"_s, u"   "_s};

        const ListingResult result = generateListing(r);
        QVERIFY(result.ok() && result.messages.isEmpty());
        QCOMPARE(readAll(listingFilePath(m_dir.path())), (result.html + "\r\n").toUtf8());

        const QString expected = QStringLiteral(TB_TEST_DATA_DIR "/listing/") + listing.expected;
        QCOMPARE(QString(result.html).replace(m_dir.path(), u"@APP@"_s),
                 QString::fromUtf8(readAll(expected)));
    }
    void refusals_data()
    {
        // The field set wrong, its value ("@APP@" for the application folder), the title and text.
        QTest::addColumn<QStringList>("refusal");
        const QString missing = "File: @APP@/gone.gif not found.";
        // clang-format off
        QTest::newRow("no themeset") << QStringList{"themeset", "@APP@/none.tbt", "Missing Themeset",
            "The requested Themeset file does not exist.  Request aborted."};
        QTest::newRow("themeset is a folder") << QStringList{"themeset", "@APP@/pics", "Missing Themeset",
            "The requested Themeset file does not exist.  Request aborted."};
        QTest::newRow("empty themeset") << QStringList{"themeset", "@APP@/empty.tbt", "Invalid Themeset File",
            "Your Themeset file is either empty or not complete.  Please check it."};
        QTest::newRow("no such theme") << QStringList{"theme", "default", "Missing Theme",
            "Theme: default does not exist in Themeset: @APP@/shop.tbt.  Request aborted."};
        QTest::newRow("blank short") << QStringList{"short", "   ", "Missing Information", "A short description is required. Please supply."};
        QTest::newRow("blank description") << QStringList{"description", " ", "Missing Information", "A long description is required. Please supply."};
        QTest::newRow("missing picture") << QStringList{"picture3", "@APP@/gone.gif", missing,
            "Can't find a graphic file. \r\nA full valid path name to an image file must be provided.\r\nYou cannot put a URL "
            "in as an image path. It must be a path to an image on the hard drive."};
        QTest::newRow("picture as a web address") << QStringList{"picture1", "http://example.com/lamp.jpg", "Missing file",
            "A file is bad or missing. Please ensure the drive with any referenced graphic files is available.\r\nThis "
            "includes any images in the Picture X boxes, or any of the media files chosen for the current theme."};
        QTest::newRow("no application folder") << QStringList{"appPath", "@APP@/gone", "Invalid directory",
            "You have entered an invalid path for listing files. \r\nPlease enter a correct path under the Directories tab "
            "on the Options panel."};
        // clang-format on
        // Media are checked whatever their flags say (title and inline ones are off).
        for (const QString what :
             {"background image", "sound file", "border image", "Title image", "Inline image"})
            QTest::newRow(qPrintable(what)) << QStringList{
                what.section(u' ', 0, 0).toLower(), "@APP@/gone.gif", missing,
                "Could not find the " + what + " @APP@/gone.gif specified in Ad Studio."};
    }
    void refusals()
    {
        QFETCH(QStringList, refusal);
        refusal.replaceInStrings(u"@APP@"_s, m_dir.path());
        const QString& field = refusal[0];
        QFile::remove(listingFilePath(m_dir.path()));

        // A request that would succeed, with one thing wrong.
        ListingRequest r = m_base;
        r.picture2Path = app(u"pics/lamp2.jpg"_s);
        r.media.titleImgLeft = r.media.titleImgRight = r.media.inlineImg = false;
        // clang-format off
        const QStringList fields{"themeset", "theme", "short", "description", "picture1", "picture3", "background", "sound", "border", "title", "inline", "appPath"};
        QString* const targets[] = {&r.themeSetPath, &r.themeName, &r.shortDescription, &r.description, &r.picture1Path, &r.picture3Path,
            &r.media.backgroundImage, &r.media.soundFile, &r.media.borderImage, &r.media.titleImage, &r.media.inlineImage, &r.appPath};
        // clang-format on
        const qsizetype index = fields.indexOf(field);
        // A missing sound behind the fields checked before it shows the first refusal ends the run,
        // as does the long description behind the short one.
        if (index < fields.indexOf(u"sound"_s))
            r.media.soundFile = app(u"Sounds/gone.wav"_s);
        if (field == QLatin1String("short"))
            r.description.clear();
        *targets[index] = refusal[1];

        const ListingResult result = generateListing(r);
        QVERIFY(!result.ok() && !QFile::exists(listingFilePath(m_dir.path())));
        QCOMPARE(result.messages,
                 QList<ThemeSetMessage>({{refusal[3], refusal[2], PromptIcon::Exclamation}}));
        // The item window puts the cursor where the missing text goes.
        QCOMPARE(result.focus, field == "short"         ? ListingFocus::ShortDescription
                               : field == "description" ? ListingFocus::Description
                                                        : ListingFocus::None);
    }

    // A listing write that was stopped leaves its scratch copy; the next write removes it, but not
    // one another running copy is still writing, nor a file that only looks alike.
    void staleScratchFiles_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("held"); // locked by a writer that is still running
        QTest::addColumn<bool>("removed");
        QTest::newRow("left by a stopped run") << "listing.htm.Xy3abc" << false << true;
        QTest::newRow("being written by another copy") << "listing.htm.Qw7Ert" << true << false;
        QTest::newRow("the user's backup") << "listing.htm.backup" << false << false;
        QTest::newRow("another file's scratch copy") << "temp.htm.Xy3abc" << false << false;
    }
    void staleScratchFiles()
    {
        QFETCH(QString, name);
        QFETCH(bool, held);
        QFETCH(bool, removed);
        QVERIFY(writeAll(app(name), QByteArray(4096, 'x')));
        QFile other(app(name));
        QVERIFY(other.open(QIODevice::ReadWrite));
        QVERIFY(!held || ::flock(other.handle(), LOCK_EX | LOCK_NB) == 0);

        const ListingResult result = generateListing(m_base);
        QVERIFY(result.ok());
        QCOMPARE(readAll(listingFilePath(m_dir.path())), (result.html + "\r\n").toUtf8());
        QCOMPARE(QFile::exists(app(name)), !removed);
    }

private:
    QString app(const QString& name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
    ListingRequest m_base; // one that goes through
};

QTEST_GUILESS_MAIN(TestListingGenerator)
#include "tst_listinggenerator.moc"
