#include "../support/WebFixture.h"
#include "settings/SettingsCatalogue.h"
#include "web/FetchPage.h"
#include "web/frmLoadWebPage.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

namespace {
// clang-format off
struct Fetch { QString useProxy, target; QByteArray page; QStringList lines; QString lastProgress, text; };
struct Abort { QString when; bool stall; double pause; QStringList lines; };
struct Cache { int kind; QByteArray cached; bool everyTime, abort; QString result, cacheAfter; int requests; };
// clang-format on
const QString kAttempting = QStringLiteral("Attempting to make connection, please wait...");
const QString kConnecting = QStringLiteral("Connecting to page...");
const QString kAborting = QStringLiteral("Aborting connection...");
const QRegularExpression kProgress(
    QStringLiteral(R"(^Retrieving page\.\.\.\. \( bytes read \d+( of \d+ \(\d+%\)|\))$)"));

struct Rig
{
    Rig()
    {
        set("ProxyServer", "127.0.0.1");
        set("ProxyPort", QString::number(proxy.port()));
    }
    void set(const char* key, const QString& value)
    {
        env.store().save(Settings::kApp, Settings::kOptions, QString::fromLatin1(key), value);
    }
    WebServer web;
    WebProxy proxy;
    TestEnvironment env;
    AppContext& ctx = env.context();
};

// Runs `act` on the download window inside its own event loop once its status list shows
// `line` ("" = at once) and `ready` holds; returns the moment it acted.
std::shared_ptr<QElapsedTimer> whenShown(
    const QString& line, const std::function<void(frmLoadWebPage&)>& act,
    const std::function<bool()>& ready = [] { return true; })
{
    auto acted = std::make_shared<QElapsedTimer>();
    auto* poll = new QTimer;
    QObject::connect(poll, &QTimer::timeout, [=] {
        auto* w = qobject_cast<frmLoadWebPage*>(QApplication::activeModalWidget());
        if (w && (line.isEmpty() || w->statusLines().contains(line)) && ready()) {
            poll->deleteLater();
            acted->start();
            act(*w);
        }
    });
    poll->start(5);
    return acted;
}

void clickAbort(frmLoadWebPage& w)
{
    QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("cmdAbort")), Qt::LeftButton);
}

} // namespace

class TestFetchPage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { frmLoadWebPage::setWaits(10, 0.05); }
    void cleanupTestCase() { frmLoadWebPage::restoreWaits(); }

    // What the window lists and hands back; the downloaded file is gone afterwards.
    void fetch_data()
    {
        QTest::addColumn<Fetch>("row");
        const QByteArray lines = QByteArray("line of the page\n").repeated(50);
        const QString proxyLine = QStringLiteral("Using Proxy 127.0.0.1...");
        const QStringList done{kAttempting, kConnecting, "Done."};
        // clang-format off
        QTest::newRow("in pieces") << Fetch{"0", WebServer::slow("/p.htm"), lines, done,
            "Retrieving page.... ( bytes read 850 of 850 (100%)", QString(lines).replace("\n", "\r\n")};
        QTest::newRow("no length") << Fetch{"0", WebServer::unsized("/p.htm"), QByteArray(512, 'a'), done,
            "Retrieving page.... ( bytes read 512)", QString(512, 'a') + "\r\n"};
        QTest::newRow("proxy") << Fetch{"1", "/p.htm", "a\nb\n", QStringList{proxyLine} + done, "", "a\r\nb\r\n"};
        QTest::newRow("UseProxy 2 is direct") << Fetch{"2", "/p.htm", "a\r\nb", done, "", "a\r\nb\r\n"};
        QTest::newRow("404") << Fetch{"0", WebServer::status(404), {}, {kAttempting, kConnecting, "Disconnected."}, "", ""};
        // clang-format on
    }
    void fetch()
    {
        QFETCH(Fetch, row);
        Rig rig;
        rig.set("UseProxy", row.useProxy);
        QVERIFY(rig.web.writePage("/p.htm", row.page));
        rig.ctx.state.pageUrl = rig.web.url(row.target);
        frmLoadWebPage window(rig.ctx);
        window.exec();

        QStringList fixed, progress;
        for (const QString& line : window.statusLines())
            (line.startsWith("Retrieving") ? progress : fixed) << line;
        QCOMPARE(fixed, row.lines);
        for (const QString& line : progress)
            QVERIFY2(kProgress.match(line).hasMatch(), qPrintable(line));
        if (!row.lastProgress.isEmpty())
            QCOMPARE(progress.last(), row.lastProgress);
        QCOMPARE(rig.ctx.state.pageText, row.text);
        QCOMPARE(window.pageFile().isEmpty(), row.text.isEmpty());
        QVERIFY(!QFile::exists(window.pageFile()));
        QCOMPARE(rig.proxy.requests().size(), row.useProxy == "1" ? 1 : 0);
    }

    void agent_data()
    {
        QTest::addColumn<QString>("newCat");
        QTest::addColumn<QString>("agent"); // the header line sent, "" for none
        // clang-format off
        QTest::newRow("new style") << "True" << "User-Agent: Mozilla/4.0\r\n";
        QTest::newRow("old style") << "False" << "";
        // clang-format on
    }
    void agent()
    {
        QFETCH(QString, newCat);
        QFETCH(QString, agent);
        Rig rig;
        rig.set("NewCat", newCat);
        const QString page = FetchPage(rig.ctx, rig.web.url(WebServer::kHeaders), 3);
        QVERIFY(page.contains("Host: ") && page.contains(agent));
        QCOMPARE(page.contains("User-Agent"), !agent.isEmpty());
    }

    // Abort (button, title bar or Escape) at any stage: the window lists the abort, waits its
    // pause, and goes with an empty result; nothing is fetched after it.
    void abort_data()
    {
        QTest::addColumn<Abort>("row");
        const QStringList stalled{kAttempting, kConnecting, kAborting, "Connection cancelled..."};
        // clang-format off
        QTest::newRow("button, stalled") << Abort{kConnecting, true, 1.5, stalled};
        QTest::newRow("title bar, stalled") << Abort{kConnecting, true, 1.5, stalled};
        QTest::newRow("button, first pause") << Abort{kAttempting, false, 0.5, {kAttempting, kAborting}};
        QTest::newRow("Escape, before start") << Abort{"", false, 0.3, {kAborting}};
        // clang-format on
    }
    void abort()
    {
        QFETCH(Abort, row);
        frmLoadWebPage::setWaits(row.when.isEmpty() ? 2000 : 10, row.pause);
        Rig rig;
        QVERIFY(rig.web.writePage("/p.htm", "page"));
        rig.ctx.state.pageText = "left over";
        const QString tag = QTest::currentDataTag();
        const auto acted = whenShown(
            row.when,
            [&](frmLoadWebPage& w) {
                if (tag.startsWith("title bar"))
                    w.close();
                else if (tag.startsWith("Escape"))
                    QTest::keyClick(&w, Qt::Key_Escape);
                else
                    clickAbort(w);
            },
            [&] { return !row.stall || !rig.web.requests().isEmpty(); });
        frmLoadWebPage window(rig.ctx);
        rig.ctx.state.pageUrl = rig.web.url(row.stall ? WebServer::kStall : "/p.htm");
        window.exec();
        const qint64 took = acted->elapsed();
        frmLoadWebPage::setWaits(10, 0.05);

        QVERIFY2(took >= row.pause * 1000 - 20 && took < row.pause * 1000 + 1000,
                 qPrintable(QString::number(took)));
        QCOMPARE(window.statusLines(), row.lines);
        QVERIFY(window.downloadAborted());
        QCOMPARE(rig.ctx.state.pageText, QString());
        QTest::qWait(200);
        QCOMPARE(rig.web.requests().size(), row.stall ? 1 : 0);
    }

    // Kinds 1 and 2 keep their form in a cache file; 3 and 4 never do; other kinds do nothing.
    void cache_data()
    {
        QTest::addColumn<Cache>("row");
        // clang-format off
        QTest::newRow("start form cached") << Cache{1, "cached\n", false, false, "cached\r\n", "cached\n", 0};
        QTest::newRow("start form fetched") << Cache{1, {}, false, false, "page\r\n", "page\r\n\r\n", 1};
        QTest::newRow("feedback every time") << Cache{2, "old", true, false, "page\r\n", "old", 1};
        QTest::newRow("aborted") << Cache{1, {}, false, true, "", "<none>", 1};
        QTest::newRow("aborted, every time") << Cache{1, "old", true, true, "", "old", 1};
        QTest::newRow("item page") << Cache{3, {}, false, false, "page\r\n", "<none>", 1};
        QTest::newRow("seller report") << Cache{4, {}, false, false, "page\r\n", "<none>", 1};
        QTest::newRow("kind 0") << Cache{0, {}, false, false, "", "<none>", 0};
        QTest::newRow("kind 5") << Cache{5, "cached", false, false, "", "cached", 0};
        // clang-format on
    }
    void cache()
    {
        QFETCH(Cache, row);
        Rig rig;
        rig.set("RetrieveEveryTime", row.everyTime ? "True" : "False");
        QVERIFY(rig.web.writePage("/p.htm", "page"));
        const QString cacheName = row.kind == 2 ? "Leave.htm" : "Start.htm";
        if (!row.cached.isEmpty())
            rig.env.writeFile(cacheName, row.cached);
        if (row.abort)
            whenShown(kConnecting, clickAbort, [&] { return !rig.web.requests().isEmpty(); });
        const QString url = rig.web.url(row.abort ? WebServer::kStall : "/p.htm");

        QCOMPARE(FetchPage(rig.ctx, url, row.kind), row.result);
        QFile cache(rig.env.path(cacheName));
        QCOMPARE(cache.open(QIODevice::ReadOnly) ? QString::fromUtf8(cache.readAll()) : "<none>",
                 row.cacheAfter);
        QCOMPARE(rig.web.requests().size(), row.requests);
        QCOMPARE(rig.ctx.state.pageUrl, row.requests ? url : QString());
        // nothing else is left behind
        QCOMPARE(QDir(rig.env.appPath()).entryList({"*.htm"}, QDir::Files),
                 row.cacheAfter == "<none>" ? QStringList() : QStringList{cacheName});
    }
};

QTEST_MAIN(TestFetchPage)
#include "tst_fetchpage.moc"
