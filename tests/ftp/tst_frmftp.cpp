#include "FtpTestServer.h"

#include "ftp/UploadCommandUi.h"
#include "ftp/frmFTP.h"
#include "platform/FtpClient.h"
#include "platform/FtpErrors.h"
#include "support/LayoutCheck.h"

#include <QFrame>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>

namespace {
const QString kHost = QStringLiteral("127.0.0.1");
const QString kLoggingOff = QStringLiteral("Logging off.  Bye!");

QString transferLine(const QString& path, const QString& kind, const QString& dir,
                     const QString& name)
{
    return QStringLiteral("Transferring Image file ") + path + " to FTP Host: " + kHost + " into " +
           kind + " path " + dir + name;
}

void setConnection(AppContext& ctx, int port, const QString& password = "secret")
{
    OptionsRecord& o = ctx.state.options;
    o.remoteHost = kHost;
    o.remotePort = QString::number(port);
    o.ftpUserid = QStringLiteral("seller");
    o.ftpPassword = password;
    o.imageLoc = QStringLiteral("http://www.example.net/pics/");
    o.auctionDir = QStringLiteral("pics");
    o.uploadRelative = true;
}

QStringList boxTexts(const ScriptedPrompts& prompts)
{
    QStringList texts;
    for (const ScriptedPrompts::Shown& s : prompts.shown())
        texts << s.text;
    return texts;
}

// Opens the window as a caller does and waits until its session has logged off.
bool runSession(frmFTP& window)
{
    QSignalSpy done(&window, &frmFTP::finished);
    window.show();
    return done.wait(120000);
}
} // namespace

class TestFrmFtp : public QObject
{
    Q_OBJECT
private slots:
    void uploadRun_data();
    void uploadRun();
    void removeRunIsSilent();
    void connectFailures_data();
    void connectFailures();
    void uploadGoesOnAfterFailure_data();
    void uploadGoesOnAfterFailure();
    void abortDuringTransfer();
    void uploadCommand_data();
    void uploadCommand();
};

void TestFrmFtp::uploadRun_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("auctionDir");
    QTest::addColumn<bool>("relative");
    QTest::addColumn<QString>("landsIn");
    QTest::addColumn<QString>("kind");

    const QString up = QStringLiteral("UploadImages");
    QTest::newRow("relative") << up << "pics" << true << "/www/pics"
                              << "Relative";
    QTest::newRow("absolute") << up << "pics" << false << "/pics"
                              << "Absolute";
    QTest::newRow("nested relative") << up << "a/b c" << true << "/www/a/b c"
                                     << "Relative";
    QTest::newRow("default .\\") << up << ".\\" << true << "/www"
                                 << "Relative";
    QTest::newRow("no directory") << up << "" << true << "/www"
                                  << "";
    QTest::newRow("directory missing: login folder") << up << "gone" << true << "/www"
                                                     << "Relative";
    QTest::newRow("connect only") << "Test"
                                  << "pics" << true << ""
                                  << "";
}

void TestFrmFtp::uploadRun()
{
    QFETCH(QString, action);
    QFETCH(QString, auctionDir);
    QFETCH(bool, relative);
    QFETCH(QString, landsIn);
    QFETCH(QString, kind);

    FtpTestServer server;
    for (const char* dir : {"/www/pics", "/pics", "/www/a/b c"})
        server.makeDir(QString::fromUtf8(dir));
    TestEnvironment env;
    AppContext& ctx = env.context();
    setConnection(ctx, server.port());
    ctx.state.options.auctionDir = auctionDir;
    ctx.state.options.uploadRelative = relative;
    ctx.state.ftpAction = action;
    // Slots 1, 3 and 5; slot 0 is never used; a blank after a path is not part of the name.
    ctx.state.uploadFiles[0] = env.writeFile(QStringLiteral("zero.jpg"), "slot 0");
    const QList<QPair<QString, QByteArray>> pictures = {
        {QStringLiteral("front.jpg"), binarySample(400000, 7)},
        {QStringLiteral("side.jpg"), binarySample(5000, 8)},
        {QStringLiteral("back.jpg"), binarySample(1, 9)},
    };
    QStringList expected{QStringLiteral("Connecting to ") + kHost, QStringLiteral("Connected.")};
    for (int i = 0; i < pictures.size(); ++i) {
        QString& slot = ctx.state.uploadFiles[2 * i + 1];
        slot = env.writeFile(pictures[i].first, pictures[i].second) + (i == 1 ? " " : "");
        if (action == u"UploadImages")
            expected << transferLine(slot, kind, auctionDir, pictures[i].first);
    }
    expected << kLoggingOff;

    frmFTP window(ctx);
    QCOMPARE(window.windowTitle(), QStringLiteral("FTP"));
    // What the meter shows at the first report of each file, seen as the window drew it.
    QStringList meterSeen;
    connect(&window.client(), &FtpClient::progress, this, [&](int percent) {
        auto* gauge = window.findChild<QFrame*>(QStringLiteral("Gauge"));
        auto* meter = window.findChild<QFrame*>(QStringLiteral("Meter"));
        auto* pct = window.findChild<QLabel*>(QStringLiteral("Pct"));
        auto* abort = window.findChild<QPushButton*>(QStringLiteral("CancelBtn"));
        auto* close = window.findChild<QPushButton*>(QStringLiteral("cmdClose"));
        if (percent < 100 && gauge->isVisible() && abort->isVisible() && abort->isEnabled() &&
            !close->isEnabled() && pct->text() == QString::number(percent) + u'%' &&
            meter->width() == percent * gauge->contentsRect().width() / 100)
            meterSeen << QStringLiteral("ok");
        if (percent == 100 && !gauge->isVisible() && !abort->isVisible())
            meterSeen << QStringLiteral("done");
    });
    QVERIFY(runSession(window));

    QCOMPARE(window.statusLines(), expected);
    QVERIFY(env.prompts().shown().isEmpty());
    QCOMPARE(window.errorState().errorCode, 0);
    QVERIFY(window.findChild<QPushButton*>(QStringLiteral("cmdClose"))->isEnabled());
    QVERIFY(!window.findChild<QFrame*>(QStringLiteral("Gauge"))->isVisible());
    QVERIFY(!window.findChild<QPushButton*>(QStringLiteral("CancelBtn"))->isVisible());
    QCOMPARE(server.count(QStringLiteral("USER")), 1);
    QCOMPARE(server.count(QStringLiteral("QUIT")), 1);
    if (action == u"UploadImages") {
        for (const auto& [name, bytes] : pictures)
            QCOMPARE(server.content(landsIn + u'/' + name), bytes);
        QVERIFY(!server.exists(landsIn + QStringLiteral("/zero.jpg")));
        QVERIFY(meterSeen.contains(QStringLiteral("ok")));
        QCOMPARE(meterSeen.count(QStringLiteral("done")), 3);
    } else {
        QCOMPARE(server.count(QStringLiteral("STOR")), 0);
        QCOMPARE(server.count(QStringLiteral("CWD")), 0);
    }
    QCOMPARE(layoutProblems(&window), QStringList());
    window.grab().save(QStringLiteral("/tmp/tst_frmftp_done.png"));

    QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdClose")), Qt::LeftButton);
    QVERIFY(!window.isVisible());
}

void TestFrmFtp::removeRunIsSilent()
{
    FtpTestServer server;
    server.makeDir(QStringLiteral("/www/pics"));
    for (const char* name : {"/www/pics/a.jpg", "/www/pics/b c.jpg", "/www/a.jpg"}) {
        QFile f(server.local(QString::fromUtf8(name)));
        QVERIFY(f.open(QIODevice::WriteOnly));
    }
    TestEnvironment env;
    AppContext& ctx = env.context();
    setConnection(ctx, server.port());
    ctx.state.ftpAction = QStringLiteral("RemoveImages");
    // Removal works from the slot names alone: the local files are long gone.
    ctx.state.uploadFiles[1] = QStringLiteral("C:\\Auction\\a.jpg");
    ctx.state.uploadFiles[2] = QStringLiteral("/home/s/never there.jpg");
    ctx.state.uploadFiles[3] = QStringLiteral("/home/s/b c.jpg ");

    frmFTP window(ctx);
    QVERIFY(runSession(window));

    QCOMPARE(
        window.statusLines(),
        QStringList({"Connecting to 127.0.0.1", "Connected.",
                     "Deleting Image file picsa.jpg from FTP Host 127.0.0.1",
                     "Deleting Image file picsnever there.jpg from FTP Host 127.0.0.1",
                     "Deleting Image file picsb c.jpg  from FTP Host 127.0.0.1", kLoggingOff}));
    QVERIFY(!server.exists(QStringLiteral("/www/pics/a.jpg")));
    QVERIFY(!server.exists(QStringLiteral("/www/pics/b c.jpg")));
    QVERIFY(server.exists(QStringLiteral("/www/a.jpg")));
    QVERIFY(env.prompts().shown().isEmpty());
    QCOMPARE(window.errorState().errorCode, 22041); // the missing file, recorded not shown
    QVERIFY(window.findChild<QPushButton*>(QStringLiteral("cmdClose"))->isEnabled());
}

void TestFrmFtp::connectFailures_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port"); // 0 = the server's, -1 = a closed port, -2 = not a number
    QTest::addColumn<QString>("password");
    QTest::addColumn<int>("code");

    const QString up = QStringLiteral("UploadImages");
    QTest::newRow("server never answers") << up << kHost << 0 << "secret" << 22020;
    QTest::newRow("wrong password") << up << kHost << 0 << "guess" << 22039;
    QTest::newRow("refused port") << up << kHost << -1 << "secret" << 22008;
    QTest::newRow("unknown host") << up << "ftp.seller.invalid" << 0 << "secret" << 22005;
    QTest::newRow("port not a number") << up << kHost << -2 << "secret" << 22014;
    QTest::newRow("removing stays silent") << "RemoveImages" << kHost << 0 << "guess" << 22039;
}

void TestFrmFtp::connectFailures()
{
    QFETCH(QString, action);
    QFETCH(QString, host);
    QFETCH(int, port);
    QFETCH(QString, password);
    QFETCH(int, code);

    FtpTestServer server(code == 22020 ? QStringLiteral("hang") : QStringLiteral("normal"));
    TestEnvironment env;
    AppContext& ctx = env.context();
    setConnection(ctx, port == 0 ? server.port() : unusedPort(), password);
    if (port == -2)
        ctx.state.options.remotePort = QStringLiteral("ftp");
    ctx.state.options.remoteHost = host;
    ctx.state.ftpAction = action;
    ctx.state.uploadFiles[1] = env.writeFile(QStringLiteral("a.jpg"), "picture");

    frmFTP window(ctx);
    window.client().setTimeoutSeconds(2);
    QVERIFY(runSession(window));

    // No "Connected.", no run, no logging off; Close is enabled all the same.
    QCOMPARE(window.statusLines(), QStringList{QStringLiteral("Connecting to ") + host});
    QCOMPARE(window.errorState().errorCode, code);
    QVERIFY(window.findChild<QPushButton*>(QStringLiteral("cmdClose"))->isEnabled());
    if (action == u"RemoveImages") {
        QVERIFY(env.prompts().shown().isEmpty());
    } else {
        QCOMPARE(env.prompts().shown().size(), 1);
        const ScriptedPrompts::Shown& box = env.prompts().shown().first();
        QCOMPARE(box.text, ftpErrorMessage(code));
        QCOMPARE(box.title, QStringLiteral("Connection failed"));
        QCOMPARE(box.icon, PromptIcon::Exclamation);
    }
    QCOMPARE(server.count(QStringLiteral("STOR")), 0);
}

void TestFrmFtp::uploadGoesOnAfterFailure_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QList<int>>("boxes");
    QTest::addColumn<bool>("secondUploaded");

    QTest::newRow("local file gone") << "normal" << QList<int>{22036} << true;
    QTest::newRow("web space full") << "full" << QList<int>{22036, 22042} << false;
    QTest::newRow("no permission") << "readonly" << QList<int>{22036, 22049} << false;
}

void TestFrmFtp::uploadGoesOnAfterFailure()
{
    QFETCH(QString, mode);
    QFETCH(QList<int>, boxes);
    QFETCH(bool, secondUploaded);

    FtpTestServer server(mode);
    server.makeDir(QStringLiteral("/www/pics"));
    TestEnvironment env;
    AppContext& ctx = env.context();
    setConnection(ctx, server.port());
    ctx.state.ftpAction = QStringLiteral("UploadImages");
    ctx.state.uploadFiles[1] = env.path(QStringLiteral("deleted meanwhile.jpg"));
    ctx.state.uploadFiles[4] = env.writeFile(QStringLiteral("d.jpg"), "fourth picture");

    frmFTP window(ctx);
    QVERIFY(runSession(window));

    QStringList expected;
    for (int code : boxes)
        expected << ftpErrorMessage(code);
    QCOMPARE(boxTexts(env.prompts()), expected);
    QCOMPARE(window.errorState().errorCode, boxes.last());
    QCOMPARE(window.statusLines().size(), 5);
    QCOMPARE(window.statusLines().last(), kLoggingOff);
    QCOMPARE(server.exists(QStringLiteral("/www/pics/d.jpg")), secondUploaded);
}

void TestFrmFtp::abortDuringTransfer()
{
    // Uploads are read at 64 KB a second, so the big picture is still going when Abort is hit.
    FtpTestServer server(QStringLiteral("throttle"), {QStringLiteral("--rate"), "65536"});
    server.makeDir(QStringLiteral("/www/pics"));
    TestEnvironment env;
    AppContext& ctx = env.context();
    setConnection(ctx, server.port());
    ctx.state.ftpAction = QStringLiteral("UploadImages");
    const QByteArray big = binarySample(24 * 1024 * 1024, 5);
    ctx.state.uploadFiles[1] = env.writeFile(QStringLiteral("big.jpg"), big);
    ctx.state.uploadFiles[2] = env.writeFile(QStringLiteral("small.jpg"), "small picture");

    frmFTP window(ctx);
    auto* abort = window.findChild<QPushButton*>(QStringLiteral("CancelBtn"));
    auto* close = window.findChild<QPushButton*>(QStringLiteral("cmdClose"));
    auto* gauge = window.findChild<QFrame*>(QStringLiteral("Gauge"));
    QVERIFY(abort && close && gauge);
    QVERIFY(abort->isHidden() && gauge->isHidden()); // until the first progress report

    bool clicked = false;
    bool stayedOpen = false;
    QStringList layoutDuring;
    QTimer poll;
    connect(&poll, &QTimer::timeout, this, [&] {
        if (clicked || !abort->isVisible() || !abort->isEnabled())
            return;
        layoutDuring = layoutProblems(&window);
        window.grab().save(QStringLiteral("/tmp/tst_frmftp_progress.png"));
        window.close(); // a running session keeps its window
        stayedOpen = window.isVisible();
        clicked = true;
        QTest::mouseClick(abort, Qt::LeftButton);
        QVERIFY(!close->isEnabled());
        QVERIFY(abort->isHidden() && gauge->isHidden());
    });
    poll.start(20);
    QVERIFY(runSession(window));
    poll.stop();

    QVERIFY(clicked);
    QVERIFY(stayedOpen);
    QCOMPARE(layoutDuring, QStringList());
    QCOMPARE(boxTexts(env.prompts()), QStringList{ftpErrorMessage(22029)});
    QCOMPARE(window.statusLines().last(), kLoggingOff);
    QVERIFY(server.content(QStringLiteral("/www/pics/big.jpg")).size() < big.size());
    QCOMPARE(server.content(QStringLiteral("/www/pics/small.jpg")), QByteArray("small picture"));
    QVERIFY(close->isEnabled());
    QVERIFY(abort->isHidden());
}

void TestFrmFtp::uploadCommand_data()
{
    QTest::addColumn<QStringList>("names"); // pictures written into the app folder
    QTest::addColumn<bool>("hostSet");
    QTest::addColumn<QString>("message"); // "" = the FTP window runs

    QTest::newRow("pictures uploaded") << QStringList{"a.jpg", "", "c.jpg"} << true << "";
    QTest::newRow("no pictures: connect and log off") << QStringList{"", " ", ""} << true << "";
    QTest::newRow("host missing")
        << QStringList{"a.jpg"} << false
        << "A Remote Host must be specified on the options screen before uploading images.";
}

void TestFrmFtp::uploadCommand()
{
    QFETCH(QStringList, names);
    QFETCH(bool, hostSet);
    QFETCH(QString, message);

    FtpTestServer server;
    server.makeDir(QStringLiteral("/www/pics"));
    TestEnvironment env;
    AppContext& ctx = env.context();
    setConnection(ctx, server.port());
    if (!hostSet)
        ctx.state.options.remoteHost = QStringLiteral(" ");
    ctx.state.ftpAction = QStringLiteral("RemoveImages"); // left over from a clean-up
    QStringList paths, uploaded;
    for (const QString& name : names) {
        paths << (name.trimmed().isEmpty() ? name : env.writeFile(name, name.toUtf8()));
        if (!name.trimmed().isEmpty())
            uploaded << name;
    }

    QWidget itemWindow;
    int optionsOpened = 0;
    QPointer<frmFTP> window = runUploadCommand(ctx, UploadSource::ItemPictures, paths, &itemWindow,
                                               [&] { ++optionsOpened; });
    QCOMPARE(optionsOpened, hostSet ? 0 : 1);
    if (!message.isEmpty()) {
        QVERIFY(window.isNull());
        QCOMPARE(boxTexts(env.prompts()), QStringList{message});
        QCOMPARE(ctx.state.ftpAction, QStringLiteral("RemoveImages"));
        return;
    }

    QVERIFY(!window.isNull());
    QCOMPARE(ctx.state.ftpAction, QStringLiteral("UploadImages"));
    QVERIFY(window->isVisible() && !window->isModal());
    QCOMPARE(window->parentWidget(), &itemWindow);
    QSignalSpy done(window.data(), &frmFTP::finished);
    QVERIFY(done.wait(60000));
    QVERIFY(env.prompts().shown().isEmpty());
    QCOMPARE(window->statusLines().size(), 3 + uploaded.size());
    for (const QString& name : uploaded)
        QCOMPARE(server.content("/www/pics/" + name), name.toUtf8());

    QTest::mouseClick(window->findChild<QPushButton*>(QStringLiteral("cmdClose")), Qt::LeftButton);
    QTRY_VERIFY(window.isNull()); // closing unloads it
}

QTEST_MAIN(TestFrmFtp)
#include "tst_frmftp.moc"
