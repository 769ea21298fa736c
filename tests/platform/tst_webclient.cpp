#include "../support/WebFixture.h"
#include "platform/WebClient.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

namespace {

// Everything a client reported, in order: "connecting", "progress", then "complete",
// "disconnected" or "cancelled".
struct Recorder
{
    explicit Recorder(WebClient& client)
    {
        QObject::connect(&client, &WebClient::connecting, [this] { events << "connecting"; });
        QObject::connect(&client, &WebClient::progress, [this](qint64 b, qint64 t, int p) {
            events << "progress";
            progress.append({b, t, p});
        });
        QObject::connect(&client, &WebClient::transferComplete, [this](const QString& f) {
            fileName = f;
            QFile file(f);
            body = file.open(QIODevice::ReadOnly) ? file.readAll() : "<unreadable>";
            events << "complete";
        });
        QObject::connect(&client, &WebClient::disconnected, [this] { events << "disconnected"; });
        QObject::connect(&client, &WebClient::cancelled, [this] { events << "cancelled"; });
    }
    int finals() const
    {
        return int(events.count("complete") + events.count("disconnected") +
                   events.count("cancelled"));
    }
    // Waits for the final signal, then a little longer: nothing may follow it.
    bool waitForEnd()
    {
        const bool ended = QTest::qWaitFor([this] { return finals() > 0; }, 20000);
        QTest::qWait(50);
        return ended;
    }
    QString final() const { return events.isEmpty() ? QString() : events.last(); }

    QStringList events;
    QList<std::array<qint64, 3>> progress;
    QString fileName;
    QByteArray body;
};

// Every byte value and both kinds of line end: the file must hold exactly what was sent.
QByteArray samplePage(int size)
{
    QByteArray bytes = "<html>\nbare\nlf\r\ncr lf\rcr\n";
    for (int i = 0; bytes.size() < size; ++i)
        bytes += char((i * 7) & 0xff);
    return bytes.left(size);
}

// A page served at the target, its size, whether the server tells it, and the fewest progress
// reports it may come in.
// A request sent straight or through the proxy with the agent set, and what the proxy then
// logs ("{url}", "{host}": of the page asked for).
// clang-format off
struct Download { QString target; int size; bool knownTotal; int minSteps; };
struct Request { bool proxyOn; QString scheme, agent, proxyLog; };
// clang-format on

} // namespace

class TestWebClient : public QObject
{
    Q_OBJECT
private slots:
    // The page arrives whole and unchanged however it was sent; progress counts what arrived,
    // with the total when the server gave one.
    void downloads_data()
    {
        QTest::addColumn<Download>("row");
        // clang-format off
        QTest::newRow("plain")      << Download{"/aw-cgi/eBayISAPI.dll?ViewItem&item=123", 40000, true, 1};
        QTest::newRow("in pieces")  << Download{WebServer::slow("/p.htm"), 8000, true, 4};
        QTest::newRow("no length")  << Download{WebServer::unsized("/p.htm"), 3000, false, 1};
        QTest::newRow("redirected") << Download{WebServer::redirect("/p.htm"), 500, true, 1};
        QTest::newRow("empty page") << Download{"/empty.htm", 0, true, 0};
        // clang-format on
    }
    void downloads()
    {
        QFETCH(Download, row);
        const auto& [target, size, knownTotal, minSteps] = row;
        WebServer web;
        const QByteArray page = samplePage(size);
        QVERIFY(web.writePage(target.contains("/p.htm") ? "/p.htm" : target, page));
        WebClient client;
        Recorder run(client);
        client.get(web.url(target));
        QVERIFY(run.waitForEnd());
        QCOMPARE(run.events.first(), "connecting");
        QCOMPARE(run.final(), "complete");
        QCOMPARE(run.body, page);
        QVERIFY(run.progress.size() >= minSteps);
        qint64 last = 0;
        for (const auto& [bytes, total, percent] : run.progress) {
            QVERIFY(bytes > last);
            last = bytes;
            QCOMPARE(total, knownTotal ? qint64(size) : 0);
            QCOMPARE(percent, knownTotal ? int(bytes * 100 / size) : 0);
        }
        QCOMPARE(last, qint64(size));
        QVERIFY(!client.isBusy());
    }

    // Every failure ends in disconnected() with no file, promptly.
    void failures_data()
    {
        QTest::addColumn<QString>("url"); // "{port}": the test server's, "{dead}": a closed one
        const QString local = "http://127.0.0.1:{port}";
        QTest::newRow("body cut short") << local + WebServer::cut(20000);
        QTest::newRow("404") << local + WebServer::status(404);
        QTest::newRow("500") << local + WebServer::status(500);
        QTest::newRow("refused") << "http://127.0.0.1:{dead}/";
        QTest::newRow("invalid host") << "http://www.auction.invalid/";
        QTest::newRow("other scheme") << "file:///etc/hostname";
    }
    void failures()
    {
        QFETCH(QString, url);
        WebServer web;
        const int dead = WebServer().port(); // nobody listens there any more
        WebClient client;
        Recorder run(client);
        QElapsedTimer clock;
        clock.start();
        client.get(url.replace("{port}", QString::number(web.port()))
                       .replace("{dead}", QString::number(dead)));
        QVERIFY(client.isBusy());
        QVERIFY(run.waitForEnd());
        QVERIFY2(clock.elapsed() < 2500, "the client did not end promptly");
        QCOMPARE(run.events.first(), "connecting");
        QCOMPARE(run.final(), "disconnected");
        QCOMPARE(run.finals(), 1);
        QVERIFY(!client.isBusy());
        QCOMPARE(web.requests().size(), url.contains(QString::number(web.port())) ? 1 : 0);
    }

    // The agent string reaches the server or no User-Agent line does; through the proxy,
    // pages are asked for by their whole address and https goes through a CONNECT tunnel.
    void requests_data()
    {
        QTest::addColumn<Request>("row");
        // clang-format off
        QTest::newRow("agent")           << Request{false, "http", "Mozilla/4.0", ""};
        QTest::newRow("no agent")        << Request{false, "http", "", ""};
        QTest::newRow("through proxy")   << Request{true, "http", "Mozilla/4.0", "GET {url} HTTP/1.1"};
        QTest::newRow("https tunnelled") << Request{true, "https", "", "CONNECT {host} HTTP/1.1"};
        // clang-format on
    }
    void requests()
    {
        QFETCH(Request, row);
        auto [proxyOn, scheme, agent, proxyLog] = row;
        WebServer web;
        WebProxy proxy;
        WebClient client;
        client.setProxy(proxyOn, "127.0.0.1", proxy.port());
        client.setAgent(agent);
        const QString url = web.url(WebServer::kHeaders).replace("http:", scheme + ":");
        Recorder run(client);
        client.get(url);
        QVERIFY(run.waitForEnd());
        const QString host = QStringLiteral("127.0.0.1:%1").arg(web.port());
        QCOMPARE(proxy.requests().join(""), proxyLog.replace("{url}", url).replace("{host}", host));
        if (scheme == "https") {
            QCOMPARE(run.final(), "disconnected"); // the test server speaks no TLS
            return;
        }
        QCOMPARE(run.final(), "complete");
        const QStringList sent = QString::fromLatin1(run.body).split(u'\n');
        QCOMPARE(sent.filter("User-Agent", Qt::CaseInsensitive),
                 agent.isEmpty() ? QStringList() : QStringList{"User-Agent: " + agent});
    }

    // A cancel when idle reports nothing, a second get() while one runs is ignored, a stall is
    // waited on until cancelled, which ends it promptly, a client fetches again after a cancel,
    // and it can be dropped in the middle of a stalled transfer.
    void lifecycle()
    {
        WebServer web;
        QVERIFY(web.writePage("/p.htm", "x"));
        auto client = std::make_unique<WebClient>();
        Recorder run(*client);
        client->cancel();
        client->get(web.url(WebServer::kStall));
        client->get(web.url("/p.htm"));
        QTRY_COMPARE(web.requests(), QStringList{WebServer::kStall});
        QTest::qWait(300);
        QCOMPARE(run.finals(), 0);
        QElapsedTimer clock;
        clock.start();
        client->cancel();
        QVERIFY(run.waitForEnd());
        QVERIFY(clock.elapsed() < 2500);
        client->resetConnection();
        client->get(web.url("/p.htm"));
        QTRY_COMPARE(run.finals(), 2);
        QCOMPARE(run.body, "x");
        QVERIFY(QFile::remove(run.fileName));

        client->get(web.url(WebServer::kStall));
        QTRY_COMPARE(web.requests().size(), 3);
        clock.restart();
        client.reset();
        QVERIFY(clock.elapsed() < 2500);
        QCOMPARE(run.events, QStringList({"connecting", "cancelled", "connecting", "progress",
                                          "complete", "connecting"}));
    }
};

QTEST_GUILESS_MAIN(TestWebClient)
#include "tst_webclient.moc"
