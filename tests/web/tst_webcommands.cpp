// The auction-site commands run from the real item window against a real HTTP server on
// 127.0.0.1: what each asks for, what it stores, what it leaves in temp.htm for the browser, and
// the view menu's check marks; then the links and pages the item window hands to the desktop.
// Which pages are cached, and when, is FetchPage's and is checked in tst_fetchpage.
#include "../app/ItemWindowFixture.h"
#include "../support/WebFixture.h"

#include "settings/SettingsCatalogue.h"
#include "web/frmLoadWebPage.h"

#include <QDirIterator>

using namespace Qt::StringLiterals;

namespace {

const QString kItemPath = u"/aw-cgi/eBayISAPI.dll?ViewItem&item="_s;
const QString kReportPath =
    u"/aw-cgi/eBayISAPI.dll?MfcISAPICommand=ViewListedItemsWithEmails&rows=0&userid="_s;
const QString kStartPath = u"/aw-cgi/eBayISAPI.dll?ListItemForSale"_s;

QByteArray fixture(const QString& name)
{
    QFile f(TB_TEST_DATA_DIR "/web/"_L1 + name);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// A page as the download hands it on: every line ended by CR LF, one more at the end.
QString withCrLf(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes).replace(u"\r\n"_s, u"\n"_s).replace(u'\n', u"\r\n"_s) +
           u"\r\n"_s;
}

QString box(PromptIcon icon, const QString& title, const QString& text)
{
    return u"%1|%2|%3"_s.arg(int(icon)).arg(title, text);
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
        for (const char* name : {"mnuListing", "mnuStart", "mnuEbayList", "mnuAllOpenRep"})
            out += w.menu(QString::fromLatin1(name))->isChecked() ? u'1' : u'0';
        return out;
    }
    QString shownPage() const
    {
        QFile f(env.path(u"temp.htm"_s));
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : u"<none>"_s;
    }
    // The targets handed to the desktop: opened documents, or started programs.
    QStringList targets(bool started = false)
    {
        QStringList out;
        for (const auto& call : started ? env.shell().started : env.shell().opened)
            out << call.target;
        return out;
    }
    // The message boxes shown, one "icon|title|text" a line.
    QString boxes()
    {
        QStringList out;
        for (const auto& shown : env.prompts().shown())
            out << box(shown.icon, shown.title, shown.text);
        return out.join(u'\n');
    }

    WebServer web;
    TestEnvironment env;
};

} // namespace

class TestWebCommands : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { frmLoadWebPage::setWaits(10, 0.01); }
    void cleanupTestCase() { frmLoadWebPage::restoreWaits(); }

    void itemPage_data()
    {
        QTest::addColumn<QString>("listing");  // the item page address setting
        QTest::addColumn<QString>("category"); // stored and shown afterwards
        QTest::addColumn<QString>("checks");   // view menu check marks afterwards
        // clang-format off
        QTest::newRow("running auction") << kItemPath << "Pottery:Glass:Vases" << "0010";
        QTest::newRow("page not found") << WebServer::status(404) + u"?item="_s << "Old" << "1000";
        // clang-format on
    }
    void itemPage()
    {
        QFETCH(QString, listing);
        QFETCH(QString, category);
        QFETCH(QString, checks);
        const bool found = listing == kItemPath;
        Site site;
        site.setOption("EbayListing", site.web.url(listing));
        const QByteArray page = fixture(u"item_running.htm"_s);
        site.web.writePage(kItemPath + u"100234"_s, page);
        const qint64 id = site.env
                              .addItems({{{u"EbayID"_s, u"100234"_s},
                                          {u"Category"_s, u"Old"_s},
                                          {u"LastPrice"_s, 10000}}})
                              .first();
        ItemWindow w(site.env);
        w.menu(u"mnuListing"_s)->setChecked(true);

        w->toolButton(u"EList"_s)->trigger();

        QCOMPARE(site.web.requests(), QStringList{listing + u"100234"_s});
        QCOMPARE(Site::checks(w), checks);
        QCOMPARE(site.boxes(), QString());
        QCOMPARE(site.env.storedValue(id, u"LastPrice"_s).toLongLong(), found ? 12125000 : 10000);
        QCOMPARE(site.env.storedValue(id, u"Category"_s).toString(), category);
        QCOMPARE(w.field(2)->text(), category); // the window shows what was stored
        // the browser gets the page from the title on
        const QString normalised = withCrLf(page), marker = u"<TITLE>eBay item "_s;
        QCOMPARE(site.shownPage(),
                 found ? normalised.mid(normalised.indexOf(marker) + marker.size()) : u"<none>"_s);
        QCOMPARE(site.targets(), found ? QStringList{site.env.path(u"temp.htm"_s)} : QStringList());
    }

    // The report is read into the items and shown. A missing user id or an outdated report
    // address stops it before any request and leaves the Options dialog open, modeless.
    void sellerReport_data()
    {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("title"); // of the box that stops the report, "" for none
        QTest::addColumn<QString>("text");
        // clang-format off
        QTest::newRow("read") << "seller@example.com" << kReportPath << "" << "";
        QTest::newRow("no user id") << " " << kReportPath << "Missing Information"
            << "Your eBay/Email address is required before viewing this report. Please supply on the Options panel under the Automated Entry tab.";
        QTest::newRow("report without e-mails") << "seller@example.com" << "/aw-cgi/eBayISAPI.dll?ViewListedItems&userid=" << "Outdated Web Page Location"
            << "Version 2.1.4 and later requires an update to the Web Page Location for eBay Sellers Report.  You have not updated that setting on the Options panel.  Please go there now and read about how to update this setting.";
        // clang-format on
    }
    void sellerReport()
    {
        QFETCH(QString, user);
        QFETCH(QString, report);
        QFETCH(QString, title);
        QFETCH(QString, text);
        const bool read = title.isEmpty();
        Site site;
        site.setOption("UserEmail", user);
        site.setOption("EbaySellerReport", site.web.url(report));
        site.setOption("PastDays", "3");
        const QString target = kReportPath + u"seller@example.com&since=3&sort=2&requested="
                                             u"seller@example.com&pass=pw"_s;
        site.web.writePage(target, fixture(u"report_items.htm"_s));
        const QList<qint64> ids = site.env.addItems({{{u"EbayID"_s, u"999"_s}},
                                                     {{u"EbayID"_s, u"100301"_s}},
                                                     {{u"EbayID"_s, u"100304"_s}}});
        ItemWindow w(site.env);
        w->mnuLast_Click();
        QCOMPARE(w.current(), "3");

        w->toolButton(u"EAll"_s)->trigger();

        QCOMPARE(site.web.requests(), read ? QStringList{target} : QStringList());
        QCOMPARE(site.boxes(), read ? QString() : box(PromptIcon::Exclamation, title, text));
        QCOMPARE(Site::checks(w), read ? "0001" : "0000");
        if (!read) {
            QWidget* options = nullptr;
            for (QWidget* top : QApplication::topLevelWidgets())
                if (top->objectName() == "frmOptions"_L1 && top->isVisible())
                    options = top;
            QVERIFY(options && !options->isModal());
            options->close();
            return;
        }
        // ended auctions carry their buyer, apostrophe and all; the unlisted item is untouched
        QCOMPARE(site.env.storedValue(ids[1], u"BuyerEmail"_s).toString(), "ann@example.com");
        QCOMPARE(site.env.storedValue(ids[1], u"LastPrice"_s).toLongLong(), 10125000);
        QCOMPARE(site.env.storedValue(ids[2], u"BuyerEmail"_s).toString(), "o'neil@example.com");
        QVERIFY(site.env.storedValue(ids[0], u"LastPrice"_s).isNull());
        // the view is read again from its first item
        QCOMPARE(w.current(), "1");
        QCOMPARE(w.field(1)->text(), "999");
        QCOMPARE(site.shownPage(), withCrLf(fixture(u"report_items.htm"_s)));
    }

    // The start form is fetched, filled from the settings and the item (the advertisement
    // escaped, so the form stays one form; the first picture with a path, at the address the
    // advertisement gives it) and shown; a temp.htm that cannot be written is reported instead.
    void startForm_data()
    {
        QTest::addColumn<bool>("writable");
        QTest::newRow("shown") << true;
        QTest::newRow("temp.htm not writable") << false;
    }
    void startForm()
    {
        QFETCH(bool, writable);
        Site site;
        const QString resources = qEnvironmentVariable("TB_SOURCE_DIR") + "/resources/"_L1;
        QFile::copy(resources + "standard.tbt"_L1, site.env.path(u"standard.tbt"_s));
        for (const QString dir : {"Backgr", "Images", "Sounds"}) {
            QDir().mkpath(site.env.path(dir));
            for (QDirIterator it(resources + dir, QDir::Files); it.hasNext();)
                QFile::copy(it.next(), site.env.path(dir + u'/' + it.fileName()));
        }
        site.web.writePage(kStartPath, fixture(u"startform/form.htm"_s));
        site.setOption("ImageLoc", u"http://example.com/pics"_s);
        site.env.addItems({{{u"ShortDescription"_s, u"Blue vase"_s},
                            {u"Description"_s, u"Hand blown."_s},
                            {u"Picture1Path"_s, u"   "_s},
                            {u"Picture2Path"_s, site.env.writeFile(u"vase #2.jpg"_s, "JPEG")},
                            {u"MinBid"_s, 50000}}});
        if (!writable)
            QVERIFY(QDir().mkpath(site.env.path(u"temp.htm"_s)));
        ItemWindow w(site.env);

        w->toolButton(u"EAdd"_s)->trigger();

        const QString temp = site.env.path(u"temp.htm"_s);
        QCOMPARE(site.web.requests(), QStringList{kStartPath});
        QCOMPARE(Site::checks(w), "0100");
        QCOMPARE(site.targets(), writable ? QStringList{temp} : QStringList());
        QCOMPARE(site.boxes(),
                 writable ? QString()
                          : box(PromptIcon::Exclamation, u"Error"_s,
                                u"The page could not be written to %1, so it was not opened."_s.arg(
                                    temp)));
        if (!writable)
            return;
        const QString shown = site.shownPage();
        for (const QString& piece :
             {u"name=\"userid\" size=\"24\" maxlength=64 value=\"seller@example.com\">"_s,
              u"name=\"title\" size=45 maxlength=45 value=\"Blue vase\">"_s,
              u"name=\"startprice\" size=11 value=\"5\""_s, u"rows=\"8\">&lt;"_s,
              u"value=\"http://example.com/pics/vase%20%232.jpg\">"_s})
            QVERIFY2(shown.contains(piece), qPrintable(piece));
    }

    void browserPages_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("folder"); // Pulsewatch's folder: "" none, "-" not installed
        QTest::addColumn<QString>("opened");
        QTest::addColumn<QString>("message");
        // clang-format off
        QTest::newRow("home page")          << u"mnuTBHome"_s     << u""_s   << u"https://tallybid.org/"_s << u""_s;
        QTest::newRow("Pulsewatch missing") << u"mnuPulsewatch"_s << u"-"_s  << u""_s << u"Can't find Pulsewatch at %1/Pulsewatch.  Aborting."_s;
        QTest::newRow("Pulsewatch present") << u"mnuPulsewatch"_s << u"pw"_s << u""_s << u""_s;
        // clang-format on
    }
    void browserPages()
    {
        QFETCH(QString, command);
        QFETCH(QString, folder);
        QFETCH(QString, opened);
        QFETCH(QString, message);
        Site site;
        const QString sibling = site.env.path(u"sibling"_s);
        if (!folder.isEmpty()) {
            QDir().mkpath(sibling);
            if (folder != "-"_L1)
                site.env.writeFile(u"sibling/Pulsewatch"_s, "#!/bin/sh\n");
            site.env.store().save(Settings::kSiblingApp, Settings::kSystemData, u"AppPath"_s,
                                  sibling);
        }
        site.env.addItems({{{u"ShortDescription"_s, u"Vase"_s}}});
        ItemWindow w(site.env);
        w.menu(command)->trigger();
        QCOMPARE(site.boxes(), message.isEmpty()
                                   ? QString()
                                   : box(PromptIcon::None, kDefaultTitle, message.arg(sibling)));
        QCOMPARE(site.targets(), opened.isEmpty() ? QStringList() : QStringList{opened});
        const bool started = command == "mnuPulsewatch"_L1 && message.isEmpty();
        QCOMPARE(site.targets(true),
                 started ? QStringList{sibling + u"/Pulsewatch"_s} : QStringList());
    }
};

QTEST_MAIN(TestWebCommands)
#include "tst_webcommands.moc"
