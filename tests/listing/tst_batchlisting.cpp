#include "../support/TestEnvironment.h"
#include "FileBytes.h"
#include "listing/BatchListing.h"
#include "listing/ListingGenerator.h"
#include "settings/SettingsCatalogue.h"

#include <QDirIterator>
#include <QtTest>

using namespace Qt::StringLiterals;

// The command-line listing against a real application folder: the shipped themeset and media,
// a tb2.mdb with an item, a settings folder.
class TestBatchListing : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void sameAsTheGenerator();
    void refusals_data();
    void refusals();

private:
    // Runs the command on the test's folders for the item with that ID (0: the stored item);
    // returns the exit code, then what was printed on the output and on the error stream.
    std::tuple<int, QString, QString> listing(const QStringList& options, qint64 id = 0)
    {
        QString out, err;
        QTextStream outStream(&out), errStream(&err);
        const int code = runBatchListing(
            QStringList{"tallybid", "--appdir", m_env.appPath(), "--configdir",
                        m_env.store().folder(), "--listing", QString::number(id ? id : m_item)} +
                options,
            outStream, errStream);
        return {code, out, err};
    }
    TestEnvironment m_env;
    qint64 m_item = 0;
};

void TestBatchListing::initTestCase()
{
    const QString resources = qEnvironmentVariable("TB_SOURCE_DIR") + u"/resources"_s;
    for (QDirIterator it(resources, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString source = it.next();
        QVERIFY(writeAll(m_env.path(source.mid(resources.size() + 1)), readAll(source)));
    }
    QVERIFY(writeAll(m_env.path("pics/lamp 1.jpg"), "x") &&
            writeAll(m_env.path("pics/2.jpg"), "x"));
    for (const char* key : {"ImageLoc", "UserEmail", "SubHeading", "TaxMsg"})
        m_env.store().save(Settings::kApp, Settings::kOptions, QString::fromLatin1(key),
                           u"my %1"_s.arg(QLatin1String(key)));
    m_item = m_env
                 .addItems({{{"ShortDescription", "Solid brass desk lamp"},
                             {"Description", "Heavy brass lamp.\r\nRewired, works perfectly."},
                             {"Picture1Path", m_env.path("pics/lamp 1.jpg")},
                             {"Picture2Path", m_env.path("pics/2.jpg")},
                             {"Reserve", 0}}})
                 .value(0);
}

void TestBatchListing::sameAsTheGenerator()
{
    const auto [code, out, err] =
        listing({"--theme", "Ocean Breeze", "--placement=Top", "--remote", "--escape"});
    QVERIFY2(code == 0 && err.isEmpty(), qPrintable(err));
    QCOMPARE(out.toUtf8(), readAll(listingFilePath(m_env.appPath())));

    // What the item window asks for with the Ad Studio showing the same theme.
    ListingRequest r;
    r.themeSetPath = m_env.path(u"standard.tbt"_s);
    r.themeName = u"Ocean Breeze"_s;
    r.media =
        ListingMedia::fromTheme(*loadTheme(r.themeSetPath, r.themeName, m_env.appPath()).theme);
    r.roleTexts = loadRoleTexts(m_env.store());
    r.shortDescription = u"Solid brass desk lamp"_s;
    r.description = u"Heavy brass lamp.\r\nRewired, works perfectly."_s;
    r.picture1Path = m_env.path(u"pics/lamp 1.jpg"_s);
    r.picture2Path = m_env.path(u"pics/2.jpg"_s);
    r.reserve = u"0"_s;
    r.placement = u"Top"_s;
    r.imageLoc = u"my ImageLoc"_s;
    r.ebaySellerReport = settingDefault(Settings::kOptions, u"EbaySellerReport"_s);
    r.userEmail = u"my UserEmail"_s;
    r.remote = r.escape = true;
    r.appPath = m_env.appPath();
    const ListingResult direct = generateListing(r);
    QVERIFY(direct.ok() && direct.html.contains(u"my SubHeading"_s));
    QCOMPARE(out, direct.html + u"\r\n"_s);
}

void TestBatchListing::refusals_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("printed"); // start of the error stream; "@APP@" for the folder
    QTest::newRow("no such item") << 999 << QStringList() << 1
                                  << "Missing Item: There is no item with ID 999 in @APP@/tb2.mdb.";
    QTest::newRow("wrong placement") << 0 << QStringList{"--placement", "left"} << 2
                                     << "tallybid: --placement must be Left, Right, Top or "
                                        "Bottom\nUsage:";
}

void TestBatchListing::refusals()
{
    QFETCH(int, id);
    QFETCH(QStringList, options);
    QFETCH(int, code);
    QFETCH(QString, printed);
    QFile::remove(listingFilePath(m_env.appPath()));
    const auto [exit, out, err] = listing(options, id);
    QCOMPARE(exit, code);
    QVERIFY2(err.startsWith(printed.replace("@APP@", m_env.appPath())), qPrintable(err));
    QVERIFY(out.isEmpty() && !QFile::exists(listingFilePath(m_env.appPath())));
}

QTEST_GUILESS_MAIN(TestBatchListing)
#include "tst_batchlisting.moc"
