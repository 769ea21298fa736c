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

    TestEnvironment m_env;
    ListingRequest m_item; // what the item window asks for, the Ad Studio showing the same theme
    qint64 m_id = 0;

private slots:
    void initTestCase()
    {
        const QString resources = qEnvironmentVariable("TB_SOURCE_DIR") + u"/resources"_s;
        for (QDirIterator it(resources, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
            const QString source = it.next();
            QVERIFY(writeAll(m_env.path(source.mid(resources.size() + 1)), readAll(source)));
        }
        for (const char* key : {"ImageLoc", "UserEmail", "SubHeading", "TaxMsg"})
            m_env.store().save(Settings::kApp, Settings::kOptions, QString::fromLatin1(key),
                               u"my %1"_s.arg(QLatin1String(key)));
        ListingRequest& r = m_item;
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
        QVERIFY(writeAll(r.picture1Path, "x") && writeAll(r.picture2Path, "x"));
        m_id = m_env
                   .addItems({{{"ShortDescription", r.shortDescription},
                               {"Description", r.description},
                               {"Picture1Path", r.picture1Path},
                               {"Picture2Path", r.picture2Path},
                               {"Reserve", 0}}})
                   .value(0);
    }

    void runs_data()
    {
        // The options separated by "|" ("@ID@" for the stored item's ID); the exit code and the
        // start of the error stream ("@APP@" for the application folder).
        QTest::addColumn<QString>("options");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("printed");
        // clang-format off
        QTest::newRow("listed")          << "--listing|@ID@|--theme|Ocean Breeze|--placement=Top|--remote|--escape" << 0 << "";
        QTest::newRow("no such item")    << "--listing|999" << 1 << "Missing Item: There is no item with ID 999 in @APP@/tb2.mdb.";
        QTest::newRow("wrong placement") << "--listing|@ID@|--placement|left" << 2 << "tallybid: --placement must be Left, Right, Top or Bottom\nUsage:";
        // clang-format on
    }
    void runs()
    {
        QFETCH(QString, options);
        QFETCH(int, code);
        QFETCH(QString, printed);
        const QString listing = listingFilePath(m_env.appPath());
        QFile::remove(listing);
        QString out, err;
        QTextStream outStream(&out), errStream(&err);
        const QStringList arguments{"tallybid", "--appdir", m_env.appPath(), "--configdir",
                                    m_env.store().folder()};
        options.replace(u"@ID@"_s, QString::number(m_id));
        QCOMPARE(runBatchListing(arguments + options.split(u'|'), outStream, errStream), code);
        QVERIFY2(code == 0 ? err.isEmpty()
                           : err.startsWith(printed.replace("@APP@", m_env.appPath())),
                 qPrintable(err));
        // What is printed is what listing.htm holds, the generator's own listing; a refused
        // run writes neither.
        QCOMPARE(QFile::exists(listing), code == 0);
        QCOMPARE(out.toUtf8(), readAll(listing));
        if (code == 0) {
            const QString html = generateListing(m_item).html;
            QVERIFY(html.contains(u"my SubHeading"_s));
            QCOMPARE(out, html + u"\r\n"_s);
        }
    }
};

QTEST_GUILESS_MAIN(TestBatchListing)
#include "tst_batchlisting.moc"
