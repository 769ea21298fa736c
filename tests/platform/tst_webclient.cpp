#include "../support/WebFixture.h"
#include "platform/WebClient.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace {

// Everything one get() reported, in order.
struct Run
{
    QStringList events; // "connecting", "progress", then "complete", "disconnected" or "cancelled"
    QList<std::array<qint64, 3>> progress;
    QString fileName;
    QByteArray body;
    QString final() const { return events.isEmpty() ? QString() : events.last(); }
};

class Recorder
{
public:
    explicit Recorder(WebClient& client)
    {
        QObject::connect(&client, &WebClient::connecting, [this] { run.events << "connecting"; });
        QObject::connect(&client, &WebClient::progress, [this](qint64 b, qint64 t, int p) {
            run.events << "progress";
            run.progress.append({b, t, p});
        });
        QObject::connect(&client, &WebClient::transferComplete, [this](const QString& f) {
            run.fileName = f;
            QFile file(f);
            if (file.open(QIODevice::ReadOnly))
                run.body = file.readAll();
            finish("complete");
        });
        QObject::connect(&client, &WebClient::disconnected, [this] { finish("disconnected"); });
        QObject::connect(&client, &WebClient::cancelled, [this] { finish("cancelled"); });
    }
    bool waitForEnd(int ms = 20000)
    {
        return QTest::qWaitFor([this] { return finals > 0; }, ms);
    }
    Run run;
    int finals = 0;

private:
    void finish(const char* what)
    {
        run.events << what;
        ++finals;
    }
};

// Every byte value and both kinds of line end: the file must hold exactly what was sent.
QByteArray samplePage(int size)
{
    QByteArray bytes = "<html>\nbare\nlf\r\ncr lf\rcr\n";
    for (int i = 0; bytes.size() < size; ++i)
        bytes += char((i * 7) & 0xff);
    return bytes.left(size);
}

Run fetch(WebClient& client, const QString& url)
{
    Recorder recorder(client);
    client.get(url);
    if (!recorder.waitForEnd())
        return {};
    QTest::qWait(50); // nothing may follow the final signal
    return recorder.run;
}

} // namespace

class TestWebClient : public QObject
{
    Q_OBJECT
private slots:
    // The page arrives whole and unchanged however it was sent; progress counts what arrived,
    // with the total when the server gave one.
    void downloads_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("knownTotal");
        QTest::addColumn<int>("minSteps");
        QTest::newRow("plain") << "/aw-cgi/eBayISAPI.dll?ViewItem&item=123" << 40000 << true << 1;
        QTest::newRow("in pieces") << WebServer::slow("/p.htm") << 8000 << true << 4;
        QTest::newRow("no length") << WebServer::unsized("/p.htm") << 3000 << false << 1;
        QTest::newRow("redirected") << WebServer::redirect("/p.htm") << 500 << true << 1;
        QTest::newRow("empty page") << "/empty.htm" << 0 << true << 0;
    }
    void downloads()
    {
        QFETCH(QString, target);
        QFETCH(int, size);
        QFETCH(bool, knownTotal);
        QFETCH(int, minSteps);
        WebServer web;
        QVERIFY(web.isRunning());
        const QByteArray page = samplePage(size);
        QVERIFY(web.writePage(target.contains("/p.htm") ? "/p.htm" : target, page));

        WebClient client;
        const Run run = fetch(client, web.url(target));
        QCOMPARE(run.final(), "complete");
        QCOMPARE(run.events.first(), "connecting");
        QCOMPARE(run.body, page);
        QCOMPARE(QFileInfo(run.fileName).fileName().endsWith(".htm"), true);
        QVERIFY(run.progress.size() >= minSteps);
        qint64 last = 0;
        for (const auto& [bytes, total, percent] : run.progress) {
            QVERIFY(bytes > last);
            last = bytes;
            QCOMPARE(total, knownTotal ? qint64(size) : 0);
            QCOMPARE(percent, knownTotal ? int(bytes * 100 / size) : 0);
        }
        if (size > 0)
            QCOMPARE(last, qint64(size));
        QVERIFY(!client.isBusy());
    }

    // Every failure ends in disconnected() with no file; a cancel ends in cancelled().
    void failures_data()
    {
        QTest::addColumn<QString>("url"); // "{port}": the test server's, "{dead}": a closed one
        QTest::addColumn<bool>("cancelAfterConnect");
        QTest::addColumn<QString>("final");
        const QString local = "http://127.0.0.1:{port}";
        QTest::newRow("stall, cancelled") << local + WebServer::kStall << true << "cancelled";
        QTest::newRow("body cut short") << local + WebServer::cut(20000) << false << "disconnected";
        QTest::newRow("404") << local + WebServer::status(404) << false << "disconnected";
        QTest::newRow("500") << local + WebServer::status(500) << false << "disconnected";
        QTest::newRow("missing page") << local + "/none.htm" << false << "disconnected";
        QTest::newRow("refused") << "http://127.0.0.1:{dead}/" << false << "disconnected";
        QTest::newRow("invalid host") << "http://www.auction.invalid/" << false << "disconnected";
        QTest::newRow("other scheme") << "file:///etc/hostname" << false << "disconnected";
    }
    void failures()
    {
        QFETCH(QString, url);
        QFETCH(bool, cancelAfterConnect);
        QFETCH(QString, final);
        WebServer web;
        QVERIFY(web.isRunning());
        const int refused = WebServer().port(); // nobody listens there any more

        WebClient client;
        Recorder recorder(client);
        QElapsedTimer clock;
        clock.start();
        client.get(QString(url)
                       .replace("{port}", QString::number(web.port()))
                       .replace("{dead}", QString::number(refused)));
        QVERIFY(client.isBusy());
        if (cancelAfterConnect) {
            QTRY_COMPARE(web.requests().size(), 1);
            QTest::qWait(300);
            QVERIFY(recorder.finals == 0);
            clock.restart();
            client.cancel();
        }
        QVERIFY(recorder.waitForEnd());
        QVERIFY2(clock.elapsed() < 2500, "the client did not end promptly");
        QTest::qWait(50);
        QCOMPARE(recorder.run.events.first(), "connecting");
        QCOMPARE(recorder.run.final(), final);
        QCOMPARE(recorder.finals, 1);
        QVERIFY(!client.isBusy());
        if (url.contains(".invalid"))
            QVERIFY(web.requests().isEmpty());
    }

    void agentString_data()
    {
        QTest::addColumn<QString>("agent");
        QTest::addColumn<QString>("header"); // "": no User-Agent line at all
        QTest::newRow("new style") << "Mozilla/4.0"
                                   << "User-Agent: Mozilla/4.0";
        QTest::newRow("none") << ""
                              << "";
    }
    void agentString()
    {
        QFETCH(QString, agent);
        QFETCH(QString, header);
        WebServer web;
        WebClient client;
        client.setAgent(agent);
        const Run run = fetch(client, web.url(WebServer::kHeaders));
        QCOMPARE(run.final(), "complete");
        QStringList sent;
        for (const QString& line : QString::fromLatin1(run.body).split("\n"))
            if (line.startsWith("User-Agent", Qt::CaseInsensitive))
                sent << line.trimmed();
        QCOMPARE(sent, header.isEmpty() ? QStringList() : QStringList{header});
    }

    // Pages go through the proxy (https ones as a CONNECT tunnel); switched off, nothing does.
    void proxy_data()
    {
        QTest::addColumn<bool>("on");
        QTest::addColumn<QString>("scheme");
        QTest::addColumn<QString>("final");
        QTest::newRow("http through proxy") << true << "http"
                                            << "complete";
        QTest::newRow("https tunnelled") << true << "https"
                                         << "disconnected";
        QTest::newRow("proxy off") << false << "http"
                                   << "complete";
    }
    void proxy()
    {
        QFETCH(bool, on);
        QFETCH(QString, scheme);
        QFETCH(QString, final);
        WebServer web;
        WebProxy proxy;
        QVERIFY(web.isRunning() && proxy.isRunning());
        QVERIFY(web.writePage("/p.htm", "page\n"));
        WebClient client;
        client.setProxy(on, "127.0.0.1", proxy.port());
        QCOMPARE(client.proxyOn(), on);
        QCOMPARE(client.proxyPort(), proxy.port());
        const QString url = web.url("/p.htm").replace("http:", scheme + ":");
        const Run run = fetch(client, url);
        QCOMPARE(run.final(), final);
        const QString host = QStringLiteral("127.0.0.1:%1").arg(web.port());
        const QStringList logged = !on ? QStringList()
                                   : scheme == "http"
                                       ? QStringList{"GET " + url + " HTTP/1.1"}
                                       : QStringList{"CONNECT " + host + " HTTP/1.1"};
        QCOMPARE(proxy.requests(), logged);
        if (final == "complete")
            QCOMPARE(run.body, QByteArray("page\n"));
    }

    // A second get() while one runs is ignored; a cancel when idle reports nothing; the
    // client can be dropped in the middle of a stalled transfer without waiting for it.
    void lifecycle()
    {
        WebServer web;
        QVERIFY(web.writePage("/p.htm", "x"));
        auto client = std::make_unique<WebClient>();
        Recorder recorder(*client);
        client->cancel();
        client->get(web.url(WebServer::kStall));
        client->get(web.url("/p.htm"));
        QTRY_COMPARE(web.requests(), QStringList{WebServer::kStall});
        QElapsedTimer clock;
        clock.start();
        client.reset();
        QVERIFY(clock.elapsed() < 2500);
        QCOMPARE(recorder.run.events, QStringList{"connecting"});
    }

    // Pages fetched one after another on the same client, across a connection reset.
    void sequence()
    {
        WebServer web;
        WebClient client;
        for (int i = 0; i < 3; ++i) {
            const QByteArray page = "page " + QByteArray::number(i);
            QVERIFY(web.writePage("/p.htm", page));
            if (i == 2)
                client.resetConnection();
            const Run run = fetch(client, web.url("/p.htm"));
            QCOMPARE(run.body, page);
            QVERIFY(QFile::remove(run.fileName));
        }
    }
};

QTEST_GUILESS_MAIN(TestWebClient)
#include "tst_webclient.moc"
