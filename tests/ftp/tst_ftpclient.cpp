#include "FtpTestServer.h"

#include "platform/FtpClient.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

namespace {
const QString kUser = QStringLiteral("seller");
const QString kPassword = QStringLiteral("secret");
const QString kLocalHost = QStringLiteral("127.0.0.1");
} // namespace

class TestFtpClient : public QObject
{
    Q_OBJECT
private slots:
    void putLandsInDirectory_data();
    void putLandsInDirectory();
    void deleteRemovesRemoteCopy();
    void failures_data();
    void failures();
    void abortStopsTransferAndSessionGoesOn();

private:
    QString writeLocal(const QString& name, const QByteArray& bytes)
    {
        const QString path = m_local.filePath(name);
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
            return {};
        return path;
    }
    QTemporaryDir m_local;
};

void TestFtpClient::putLandsInDirectory_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QString>("landsIn");
    QTest::addColumn<QString>("cwd"); // the directory command the server must see once

    QTest::newRow("relative") << "./pics"
                              << "/www/pics"
                              << "CWD ./pics";
    QTest::newRow("absolute") << "/pics"
                              << "/pics"
                              << "CWD /pics";
    QTest::newRow("relative nested") << "./a/b"
                                     << "/www/a/b"
                                     << "CWD ./a/b";
    QTest::newRow("absolute nested") << "/a/b"
                                     << "/a/b"
                                     << "CWD /a/b";
    QTest::newRow("blank in name") << "./my pics"
                                   << "/www/my pics"
                                   << "CWD ./my pics";
    QTest::newRow("backslashes") << ".\\a\\b\\"
                                 << "/www/a/b"
                                 << "CWD ./a/b";
    QTest::newRow("login directory") << ""
                                     << "/www"
                                     << "";
    QTest::newRow("missing directory stays put") << "./gone"
                                                 << "/www"
                                                 << "CWD ./gone";
}

void TestFtpClient::putLandsInDirectory()
{
    QFETCH(QString, directory);
    QFETCH(QString, landsIn);
    QFETCH(QString, cwd);

    FtpTestServer server;
    QVERIFY(server.port() > 0);
    for (const char* dir : {"/www/pics", "/pics", "/www/a/b", "/a/b", "/www/my pics"})
        server.makeDir(QString::fromUtf8(dir));
    const QList<QPair<QString, QByteArray>> pictures = {
        {QStringLiteral("front.jpg"), binarySample(300000, 1)},
        {QStringLiteral("back side.gif"), binarySample(4099, 2)},
        {QStringLiteral("empty.jpg"), QByteArray()},
    };

    FtpClient client;
    QSignalSpy progress(&client, &FtpClient::progress);
    QVERIFY(client.connectToHost(kLocalHost, server.port(), kUser, kPassword).ok());
    client.changeDirectory(directory);
    for (const auto& [name, bytes] : pictures) {
        const FtpClient::Result r = client.putFile(writeLocal(name, bytes), name);
        QVERIFY2(r.ok(), qPrintable(QString::number(r.code) + u' ' + r.detail));
    }
    QVERIFY(client.disconnectFromHost().ok());

    for (const auto& [name, bytes] : pictures) {
        QVERIFY2(server.exists(landsIn + u'/' + name), qPrintable(landsIn + u'/' + name));
        QCOMPARE(server.content(landsIn + u'/' + name), bytes);
    }
    QCOMPARE(server.count(QStringLiteral("USER")), 1);
    QCOMPARE(server.count(QStringLiteral("STOR")), 3);
    QCOMPARE(server.count(QStringLiteral("QUIT")), 1);
    if (!cwd.isEmpty())
        QCOMPARE(server.commands().count(cwd), 1);
    else
        QCOMPARE(server.count(QStringLiteral("CWD")), 0);

    // Each non-empty file counts up to 100; the empty one reports nothing.
    QList<int> values;
    for (const QList<QVariant>& args : progress)
        values << args.at(0).toInt();
    QCOMPARE(values.count(100), 2);
    QCOMPARE(values.last(), 100);
}

void TestFtpClient::deleteRemovesRemoteCopy()
{
    FtpTestServer server;
    server.makeDir(QStringLiteral("/pics"));
    for (const char* name : {"/pics/a.jpg", "/pics/b.jpg", "/www/a.jpg"}) {
        QFile f(server.local(QString::fromUtf8(name)));
        QVERIFY(f.open(QIODevice::WriteOnly));
    }

    FtpClient client;
    QVERIFY(client.connectToHost(kLocalHost, server.port(), kUser, kPassword).ok());
    QVERIFY(client.changeDirectory(QStringLiteral("/pics")).ok());
    QVERIFY(client.deleteFile(QStringLiteral("a.jpg")).ok());
    QCOMPARE(client.deleteFile(QStringLiteral("never.jpg")).code, 22041);
    QVERIFY(client.deleteFile(QStringLiteral("b.jpg")).ok());
    QVERIFY(client.disconnectFromHost().ok());

    QVERIFY(!server.exists(QStringLiteral("/pics/a.jpg")));
    QVERIFY(!server.exists(QStringLiteral("/pics/b.jpg")));
    QVERIFY(server.exists(QStringLiteral("/www/a.jpg"))); // same name, other folder
    QCOMPARE(server.count(QStringLiteral("USER")), 1);
}

void TestFtpClient::failures_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port"); // 0 = the server's, -1 = a closed port
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("step"); // where it fails: connect, put, putMissing, delete
    QTest::addColumn<int>("code");

    const QString ok = kPassword;
    const QString normal = QStringLiteral("normal");
    const QString host = kLocalHost;
    QTest::newRow("wrong password") << normal << host << 0 << "wrong"
                                    << "connect" << 22039;
    QTest::newRow("refused port") << normal << host << -1 << ok << "connect" << 22008;
    QTest::newRow("unknown host") << normal << "ftp.tallybid.invalid" << 0 << ok << "connect"
                                  << 22005;
    QTest::newRow("port out of range") << normal << host << 70000 << ok << "connect" << 22014;
    QTest::newRow("hung server") << "hang" << host << 0 << ok << "connect" << 22020;
    QTest::newRow("no permission") << "readonly" << host << 0 << ok << "put" << 22049;
    QTest::newRow("web space full") << "full" << host << 0 << ok << "put" << 22042;
    QTest::newRow("local file missing") << normal << host << 0 << ok << "putMissing" << 22036;
    QTest::newRow("remote file missing") << normal << host << 0 << ok << "delete" << 22041;
}

void TestFtpClient::failures()
{
    QFETCH(QString, mode);
    QFETCH(QString, host);
    QFETCH(int, port);
    QFETCH(QString, password);
    QFETCH(QString, step);
    QFETCH(int, code);

    FtpTestServer server(mode);
    QVERIFY(server.port() > 0);
    const int usePort = port == 0 ? server.port() : port == -1 ? unusedPort() : port;

    FtpClient client;
    client.setTimeoutSeconds(mode == u"hang" ? 2 : 10);
    QElapsedTimer clock;
    clock.start();
    FtpClient::Result r = client.connectToHost(host, usePort, kUser, password);
    if (step != u"connect") {
        QVERIFY2(r.ok(), qPrintable(r.detail));
        if (step == u"put")
            r = client.putFile(writeLocal(QStringLiteral("p.jpg"), "picture"),
                               QStringLiteral("p.jpg"));
        else if (step == u"putMissing")
            r = client.putFile(m_local.filePath(QStringLiteral("nothing.jpg")),
                               QStringLiteral("nothing.jpg"));
        else
            r = client.deleteFile(QStringLiteral("absent.jpg"));
    }
    QVERIFY2(r.code == code, qPrintable(QString::number(r.code) + u' ' + r.detail));
    QVERIFY(clock.elapsed() < 15000); // a silent server costs one time-out, not a hang
    QVERIFY(!client.isBusy());
    QVERIFY(client.disconnectFromHost().ok());
}

void TestFtpClient::abortStopsTransferAndSessionGoesOn()
{
    // Uploads are read at 64 KB a second: 24 MB would take minutes.
    FtpTestServer server(QStringLiteral("throttle"), {QStringLiteral("--rate"), "65536"});
    server.makeDir(QStringLiteral("/www/pics"));
    const QByteArray big = binarySample(24 * 1024 * 1024, 3);
    const QString bigPath = writeLocal(QStringLiteral("big.jpg"), big);
    const QString smallPath = writeLocal(QStringLiteral("small.jpg"), "small picture");

    FtpClient client;
    QVERIFY(client.connectToHost(kLocalHost, server.port(), kUser, kPassword).ok());
    client.changeDirectory(QStringLiteral("./pics"));
    int lastPercent = -1;
    bool abortClicked = false;
    connect(&client, &FtpClient::progress, this, [&](int percent) {
        lastPercent = percent;
        if (percent >= 1 && !abortClicked) {
            abortClicked = true;
            client.cancel(); // as the Abort button does, from the window's thread
        }
    });
    QElapsedTimer clock;
    clock.start();
    const FtpClient::Result aborted = client.putFile(bigPath, QStringLiteral("big.jpg"));
    QCOMPARE(aborted.code, 22029);
    QVERIFY(clock.elapsed() < 20000);
    QVERIFY(lastPercent < 100);
    QVERIFY(server.content(QStringLiteral("/www/pics/big.jpg")).size() < big.size());

    // The run goes on in the same directory, and the session still logs off.
    const FtpClient::Result next = client.putFile(smallPath, QStringLiteral("small.jpg"));
    QVERIFY2(next.ok(), qPrintable(next.detail));
    QCOMPARE(server.content(QStringLiteral("/www/pics/small.jpg")), QByteArray("small picture"));
    QVERIFY(client.disconnectFromHost().ok());
    QTRY_COMPARE(server.count(QStringLiteral("QUIT")), 1);
}

QTEST_GUILESS_MAIN(TestFtpClient)
#include "tst_ftpclient.moc"
