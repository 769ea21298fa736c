// The auction-site commands run from the real item window against a real HTTP server on
// 127.0.0.1: what each asks for, what it stores, what it leaves in temp.htm for the browser, and
// the view menu's check marks; then the links and pages the item window hands to the desktop.
#include "../app/ItemWindowFixture.h"
#include "../support/WebFixture.h"

#include "settings/SettingsCatalogue.h"
#include "web/frmLoadWebPage.h"

#include <QDirIterator>
#include <QSqlQuery>

namespace {

const QString kItemPath = QStringLiteral("/aw-cgi/eBayISAPI.dll?ViewItem&item=");
const QString kReportPath = QStringLiteral(
    "/aw-cgi/eBayISAPI.dll?MfcISAPICommand=ViewListedItemsWithEmails&rows=0&userid=");
const QString kStartPath = QStringLiteral("/aw-cgi/eBayISAPI.dll?ListItemForSale");
const QStringList kSiteViews{QStringLiteral("mnuListing"), QStringLiteral("mnuStart"),
                             QStringLiteral("mnuEbayList"), QStringLiteral("mnuAllOpenRep")};

QByteArray fixture(const QString& name)
{
    QFile f(QStringLiteral(TB_TEST_DATA_DIR "/web/") + name);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// A page as the download hands it on: every line ended by CR LF.
QString withCrLf(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes)
        .replace(QStringLiteral("\r\n"), QStringLiteral("\n"))
        .replace(u'\n', QStringLiteral("\r\n"));
}

QString fileText(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QStringLiteral("<none>");
}

void copyTree(const QString& from, const QString& to)
{
    QDir().mkpath(to);
    QDirIterator it(from, QDir::Files);
    while (it.hasNext()) {
        it.next();
        QFile::copy(it.filePath(), to + u'/' + it.fileName());
    }
}

// A server, an application folder whose auction-site addresses point at it, and settings.
struct Site
{
    Site()
    {
        setOption("EbayListing", web.url(kItemPath));
        setOption("EbaySellerReport", web.url(kReportPath));
        setOption("EbayStartPage", web.url(kStartPath));
        setOption("UserEmail", "seller@example.com");
        setOption("eBayPassword", "pw");
    }
    void setOption(const char* key, const QString& value)
    {
        env.store().save(Settings::kApp, Settings::kOptions, QString::fromLatin1(key), value);
        env.context().state.options = OptionsRecord::load(env.store());
    }
    // Which of the four view menu items are checked, as "1"/"0" in menu order.
    static QString checks(const ItemWindow& w)
    {
        QString out;
        for (const QString& name : kSiteViews)
            out += w.menu(name)->isChecked() ? u'1' : u'0';
        return out;
    }
    QString shownPage() const { return fileText(env.path(QStringLiteral("temp.htm"))); }

    WebServer web;
    TestEnvironment env;
};

} // namespace

class TestWebCommands : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void itemPage_data();
    void itemPage();
    void sellerReportChecks_data();
    void sellerReportChecks();
    void sellerReport();
    void startForm_data();
    void startForm();
    void browserPages_data();
    void browserPages();
};

void TestWebCommands::initTestCase()
{
    frmLoadWebPage::setWaits(10, 0.01);
}

void TestWebCommands::cleanupTestCase()
{
    frmLoadWebPage::restoreWaits();
}

void TestWebCommands::itemPage_data()
{
    QTest::addColumn<QString>("target"); // what the server answers the item's address with
    QTest::addColumn<bool>("stored");    // the page was read into the record
    QTest::addColumn<QString>("checks"); // view menu check marks afterwards
    QTest::newRow("running auction") << QString() << true << "0010";
    QTest::newRow("page not found") << WebServer::status(404) << false << "1000";
}

void TestWebCommands::itemPage()
{
    QFETCH(QString, target);
    QFETCH(bool, stored);
    QFETCH(QString, checks);
    Site site;
    const QByteArray page = fixture(QStringLiteral("item_running.htm"));
    QVERIFY(!page.isEmpty());
    if (target.isEmpty())
        site.web.writePage(kItemPath + QStringLiteral("100234"), page);
    else
        site.setOption("EbayListing", site.web.url(target + QStringLiteral("?item=")));
    const qint64 id = site.env
                          .addItems({{{QStringLiteral("EbayID"), QStringLiteral("100234")},
                                      {QStringLiteral("Category"), QStringLiteral("Old")},
                                      {QStringLiteral("LastPrice"), 10000}}})
                          .first();
    ItemWindow w(site.env);
    w.menu(QStringLiteral("mnuListing"))->setChecked(true);
    QVERIFY(w->toolButton(QStringLiteral("EList"))->isEnabled());

    w->toolButton(QStringLiteral("EList"))->trigger();

    QCOMPARE(site.web.requests().size(), 1);
    QCOMPARE(Site::checks(w), checks);
    QVERIFY(site.env.prompts().shown().isEmpty());
    if (!stored) {
        QCOMPARE(site.env.storedValue(id, QStringLiteral("Category")).toString(), "Old");
        QVERIFY(site.env.shell().opened.isEmpty());
        QVERIFY(!QFile::exists(site.env.path(QStringLiteral("temp.htm"))));
        return;
    }
    QCOMPARE(site.web.requests().first(), kItemPath + QStringLiteral("100234"));
    QCOMPARE(site.env.storedValue(id, QStringLiteral("LastPrice")).toLongLong(), 12125000);
    QCOMPARE(site.env.storedValue(id, QStringLiteral("Category")).toString(),
             "Pottery:Glass:Vases");
    // the window shows what was stored, and the browser gets the page from the title on
    QCOMPARE(w.field(2)->text(), "Pottery:Glass:Vases");
    const QString normalised = withCrLf(page);
    const QString marker = QStringLiteral("<TITLE>eBay item ");
    QCOMPARE(site.shownPage(),
             normalised.mid(normalised.indexOf(marker) + marker.size()) + QStringLiteral("\r\n"));
    QCOMPARE(site.env.shell().opened.size(), 1);
    QCOMPARE(site.env.shell().opened.first().target, site.env.path(QStringLiteral("temp.htm")));
}

void TestWebCommands::sellerReportChecks_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("report");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");
    QTest::newRow("no user id")
        << " " << kReportPath
        << "Your eBay/Email address is required before viewing this report. Please supply on "
           "the Options panel under the Automated Entry tab."
        << "Missing Information";
    QTest::newRow("report without e-mails")
        << "seller@example.com"
        << "/aw-cgi/eBayISAPI.dll?ViewListedItems&userid="
        << "Version 2.1.4 and later requires an update to the Web Page Location for eBay Sellers "
           "Report.  You have not updated that setting on the Options panel.  Please go there "
           "now and read about how to update this setting."
        << "Outdated Web Page Location";
}

void TestWebCommands::sellerReportChecks()
{
    QFETCH(QString, user);
    QFETCH(QString, report);
    QFETCH(QString, text);
    QFETCH(QString, title);
    Site site;
    site.setOption("UserEmail", user);
    site.setOption("EbaySellerReport", site.web.url(report));
    site.env.addItems({{{QStringLiteral("EbayID"), QStringLiteral("100301")}}});
    ItemWindow w(site.env);
    w->toolButton(QStringLiteral("EAll"))->trigger();
    QCOMPARE(site.env.prompts().shown().size(), 1);
    QCOMPARE(site.env.prompts().shown().first().text, text);
    QCOMPARE(site.env.prompts().shown().first().title, title);
    QCOMPARE(site.env.prompts().shown().first().icon, PromptIcon::Exclamation);
    // the Options dialog is left open beside the item window
    QWidget* options = nullptr;
    for (QWidget* top : QApplication::topLevelWidgets())
        if (top->objectName() == QLatin1String("frmOptions") && top->isVisible())
            options = top;
    QVERIFY(options);
    QVERIFY(!options->isModal());
    options->close();
    QVERIFY(site.web.requests().isEmpty());
    QCOMPARE(Site::checks(w), "0000");
}

void TestWebCommands::sellerReport()
{
    Site site;
    site.setOption("PastDays", "3");
    const QString target =
        kReportPath + QStringLiteral("seller@example.com&since=3&sort=2&requested="
                                     "seller@example.com&pass=pw");
    site.web.writePage(target, fixture(QStringLiteral("report_items.htm")));
    const QList<qint64> ids =
        site.env.addItems({{{QStringLiteral("EbayID"), QStringLiteral("999")}},
                           {{QStringLiteral("EbayID"), QStringLiteral("100301")}},
                           {{QStringLiteral("EbayID"), QStringLiteral("100304")}}});
    ItemWindow w(site.env);
    w->mnuLast_Click();
    QCOMPARE(w.current(), "3");

    w->toolButton(QStringLiteral("EAll"))->trigger();

    QCOMPARE(site.web.requests(), QStringList{target});
    QVERIFY(site.env.prompts().shown().isEmpty());
    // ended auctions carry their buyer, apostrophe and all; the unlisted item is untouched
    QCOMPARE(site.env.storedValue(ids[1], QStringLiteral("BuyerEmail")).toString(),
             "ann@example.com");
    QCOMPARE(site.env.storedValue(ids[1], QStringLiteral("LastPrice")).toLongLong(), 10125000);
    QCOMPARE(site.env.storedValue(ids[2], QStringLiteral("BuyerEmail")).toString(),
             "o'neil@example.com");
    QVERIFY(site.env.storedValue(ids[0], QStringLiteral("LastPrice")).isNull());
    // the view is read again from its first item
    QCOMPARE(w.current(), "1");
    QCOMPARE(w.field(1)->text(), "999");
    QCOMPARE(Site::checks(w), "0001");
    QCOMPARE(site.shownPage(),
             withCrLf(fixture(QStringLiteral("report_items.htm"))) + QStringLiteral("\r\n"));
}

void TestWebCommands::startForm_data()
{
    QTest::addColumn<bool>("cached");
    QTest::addColumn<bool>("everyTime");
    QTest::addColumn<int>("requests");
    QTest::newRow("form cached") << true << false << 0;
    QTest::newRow("cached, retrieved every time") << true << true << 1;
    QTest::newRow("first use") << false << false << 1;
}

void TestWebCommands::startForm()
{
    QFETCH(bool, cached);
    QFETCH(bool, everyTime);
    QFETCH(int, requests);
    Site site;
    const QString resources = qEnvironmentVariable("TB_SOURCE_DIR") + QLatin1String("/resources");
    QFile::copy(resources + QLatin1String("/standard.tbt"),
                site.env.path(QStringLiteral("standard.tbt")));
    for (const char* d : {"Backgr", "Images", "Sounds"})
        copyTree(resources + u'/' + QLatin1String(d), site.env.path(QString::fromLatin1(d)));
    const QByteArray form = fixture(QStringLiteral("startform/form.htm"));
    site.web.writePage(kStartPath, form);
    if (cached)
        site.env.writeFile(QStringLiteral("Start.htm"), form);
    site.setOption("RetrieveEveryTime", everyTime ? "True" : "False");
    site.env.addItems({{{QStringLiteral("ShortDescription"), QStringLiteral("Blue vase")},
                        {QStringLiteral("Description"), QStringLiteral("Hand blown.")},
                        {QStringLiteral("MinBid"), 50000}}});
    ItemWindow w(site.env);

    w->toolButton(QStringLiteral("EAdd"))->trigger();

    QCOMPARE(site.web.requests().size(), requests);
    QVERIFY2(site.env.prompts().shown().isEmpty(),
             qPrintable(site.env.prompts().shown().value(0).text));
    QCOMPARE(Site::checks(w), "0100");
    const QString shown = site.shownPage();
    QVERIFY(shown.contains(
        QStringLiteral("name=\"userid\" size=\"24\" maxlength=64 value=\"seller@example.com\">")));
    QVERIFY(
        shown.contains(QStringLiteral("name=\"title\" size=45 maxlength=45 value=\"Blue vase\">")));
    QVERIFY(shown.contains(QStringLiteral("name=\"startprice\" size=11 value=\"5\"")));
    // the advertisement goes in escaped, so the form stays one form
    QVERIFY(shown.contains(QStringLiteral("rows=\"8\">&lt;")));
    QCOMPARE(site.env.shell().opened.size(), 1);
    // a cache is written once, and a page retrieved every time is not kept
    const QString cache = fileText(site.env.path(QStringLiteral("Start.htm")));
    if (!cached)
        QCOMPARE(cache, withCrLf(form) + QStringLiteral("\r\n"));
    else
        QCOMPARE(cache, QString::fromUtf8(form));
}

void TestWebCommands::browserPages_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("folder"); // Pulsewatch's folder: "" none, "-" = not installed there
    QTest::addColumn<QString>("opened");
    QTest::addColumn<QString>("message");
    QTest::newRow("home page") << "mnuTBHome"
                               << ""
                               << "https://tallybid.org/"
                               << "";
    QTest::newRow("Pulsewatch missing") << "mnuPulsewatch"
                                        << "-"
                                        << ""
                                        << "Can't find Pulsewatch at %1/Pulsewatch.  Aborting.";
    QTest::newRow("Pulsewatch present") << "mnuPulsewatch"
                                        << "pw"
                                        << ""
                                        << "";
}

void TestWebCommands::browserPages()
{
    QFETCH(QString, command);
    QFETCH(QString, folder);
    QFETCH(QString, opened);
    QFETCH(QString, message);
    Site site;
    QString sibling;
    if (!folder.isEmpty()) {
        sibling = site.env.path(QStringLiteral("sibling"));
        QDir().mkpath(sibling);
        if (folder != QLatin1String("-"))
            site.env.writeFile(QStringLiteral("sibling/Pulsewatch"), "#!/bin/sh\n");
        site.env.store().save(Settings::kSiblingApp, Settings::kSystemData,
                              QStringLiteral("AppPath"), sibling);
    }
    site.env.addItems({{{QStringLiteral("ShortDescription"), QStringLiteral("Vase")}}});
    ItemWindow w(site.env);
    w.menu(command)->trigger();
    if (message.isEmpty()) {
        QVERIFY(site.env.prompts().shown().isEmpty());
    } else {
        QCOMPARE(site.env.prompts().shown().size(), 1);
        QCOMPARE(site.env.prompts().shown().first().text, message.arg(sibling));
        QCOMPARE(site.env.prompts().shown().first().icon, PromptIcon::None);
    }
    QCOMPARE(site.env.shell().opened.size(), opened.isEmpty() ? 0 : 1);
    if (!opened.isEmpty())
        QCOMPARE(site.env.shell().opened.first().target, opened);
    const bool started = command == QLatin1String("mnuPulsewatch") && message.isEmpty();
    QCOMPARE(site.env.shell().started.size(), started ? 1 : 0);
    if (started)
        QCOMPARE(site.env.shell().started.first().target, sibling + QStringLiteral("/Pulsewatch"));
}

QTEST_MAIN(TestWebCommands)
#include "tst_webcommands.moc"
