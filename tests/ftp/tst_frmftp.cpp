#include "../support/CameraPicture.h"
#include "../support/LayoutCheck.h"
#include "../support/TestEnvironment.h"
#include "ftp/UploadCommandUi.h"
#include "ftp/frmFTP.h"
#include "platform/FtpClient.h"
#include "platform/FtpErrors.h"

#include <QDir>
#include <QFrame>
#include <QImageReader>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace {
// clang-format off
struct Upload { UploadSource source; bool relative, resize; QString host; QSize received; QString message; }; // message "": it runs
struct Failure { QString host, port, password, mode; int code; }; // port "": the server's
// clang-format on
const QString kHost = QStringLiteral("127.0.0.1");
const QString kLoggingOff = QStringLiteral("Logging off.  Bye!");

QByteArray fileBytes(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

// A server over a fresh folder ("seller" lands in /www, where pics/ waits; /pics sits at the
// top for absolute paths) and an application set up to upload there. mode: "" (ordinary),
// "hang", or upload bytes a second.
struct Rig
{
    explicit Rig(const QString& mode = {})
        : server(QStringLiteral("ftp_server.py"), {root.path(), mode})
    {
        QDir(root.path()).mkpath(QStringLiteral("www/pics"));
        QDir(root.path()).mkpath(QStringLiteral("pics"));
        OptionsRecord& o = ctx.state.options;
        o.remoteHost = kHost;
        o.remotePort = QString::number(server.port());
        o.ftpUserid = QStringLiteral("seller");
        o.ftpPassword = QStringLiteral("secret");
        o.imageLoc = QStringLiteral("http://www.example.net/pics/");
        o.auctionDir = QStringLiteral("pics");
        ctx.state.ftpAction = QStringLiteral("UploadImages");
    }
    QString local(const QString& remote) const { return root.path() + remote; }
    QStringList boxes() // the texts of the message boxes shown
    {
        QStringList texts;
        for (const ScriptedPrompts::Shown& box : env.prompts().shown())
            texts << box.text;
        return texts;
    }
    QByteArray content(const QString& remote) const { return fileBytes(local(remote)); }
    QTemporaryDir root;
    PythonServer server;
    TestEnvironment env;
    AppContext& ctx = env.context();
};

// Every byte value, so a text-mode transfer or a lost byte shows up.
QByteArray sample(int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        bytes[i] = char((i * 7 + size) & 0xff);
    return bytes;
}

// Waits until the window's session has logged off, first opening it as a caller does.
bool runSession(frmFTP* window)
{
    QSignalSpy done(window, &frmFTP::finished);
    window->show();
    return done.wait(120000);
}

// The status lines of a session that connects, does `work` and logs off.
QStringList session(const QStringList& work)
{
    return QStringList{"Connecting to 127.0.0.1", "Connected."} + work + QStringList{kLoggingOff};
}

} // namespace

class TestFrmFtp : public QObject
{
    Q_OBJECT
private slots:
    // A missing setting opens Options instead; otherwise a modeless window over the item window
    // uploads, and goes away when closed. A phone photo stored on its side goes up upright at the
    // configured size, made in a temporary folder that is cleared; the seller's file is untouched.
    // With resizing off, for theme media, and for non-pictures the bytes go as they are.
    void upload_data()
    {
        QTest::addColumn<Upload>("row");
        const auto item = UploadSource::ItemPictures;
        // clang-format off
        QTest::newRow("relative, resized")      << Upload{item, true,  true,  kHost, QSize(600, 800), ""};
        QTest::newRow("absolute, resizing off") << Upload{item, false, false, kHost, QSize(), ""};
        QTest::newRow("theme media")            << Upload{UploadSource::AdStudioMedia, true, true, kHost, QSize(), ""};
        QTest::newRow("host missing")           << Upload{item, true,  true,  " ",   QSize(),
            "A Remote Host must be specified on the options screen before uploading images."};
        // clang-format on
    }
    void upload()
    {
        QFETCH(Upload, row);
        Rig rig;
        QTemporaryDir temp;
        const QByteArray tmpdir = qgetenv("TMPDIR");
        qputenv("TMPDIR", temp.path().toLocal8Bit());
        const auto restore = qScopeGuard([&] { qputenv("TMPDIR", tmpdir); });
        AppContext& ctx = rig.ctx;
        ctx.state.options.uploadRelative = row.relative;
        ctx.state.options.remoteHost = row.host;
        ctx.state.options.resizeForWeb = row.resize;
        ctx.state.options.resizeLongestSide = 800;
        ctx.state.ftpAction = QStringLiteral("RemoveImages"); // left over from a clean-up
        const QByteArray photo =
            CameraPicture::jpegWithOrientation(CameraPicture::quarters(4000, 3000), 6);
        const QString names[] = {"phone photo.jpg", "p1.jpg", "p2.jpg"};
        const QByteArray bytes[] = {photo, sample(400000), sample(1)};
        QStringList paths, expected;
        for (int i = 0; i < 3; ++i) { // a blank after a path is not part of the file's name
            paths << rig.env.writeFile(names[i], bytes[i]) + (i == 1 ? " " : "");
            expected << "Transferring Image file " + paths.last() +
                            " to FTP Host: 127.0.0.1 into " +
                            (row.relative ? "Relative" : "Absolute") + " path pics" + names[i];
        }

        QWidget itemWindow;
        int optionsOpened = 0;
        const QPointer<frmFTP> window =
            runUploadCommand(ctx, row.source, paths, &itemWindow, [&] { ++optionsOpened; });
        QCOMPARE(optionsOpened, row.message.isEmpty() ? 0 : 1);
        QCOMPARE(ctx.state.ftpAction, row.message.isEmpty() ? "UploadImages" : "RemoveImages");
        QCOMPARE(rig.boxes(), row.message.isEmpty() ? QStringList() : QStringList{row.message});
        QCOMPARE(window.isNull(), !row.message.isEmpty());
        if (window.isNull())
            return;
        QVERIFY(window->isVisible() && !window->isModal());
        QCOMPARE(window->parentWidget(), &itemWindow);
        QVERIFY(runSession(window));
        QCOMPARE(window->statusLines(), session(expected));
        QVERIFY(rig.boxes().isEmpty());
        const QString landsIn = row.relative ? "/www/pics/" : "/pics/";
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(fileBytes(paths[i].trimmed()), bytes[i]);
            if (i > 0 || !row.received.isValid())
                QCOMPARE(rig.content(landsIn + names[i]), bytes[i]);
        }
        QCOMPARE(QDir(temp.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
                 QStringList());
        QTest::mouseClick(window->findChild<QPushButton*>(QStringLiteral("cmdClose")),
                          Qt::LeftButton);
        QTRY_VERIFY(window.isNull());
        if (!row.received.isValid())
            return;
        const QString received = rig.local(landsIn + names[0]);
        QImageReader back(received);
        QCOMPARE(back.format(), QByteArray("jpeg"));
        QCOMPARE(back.size(), row.received); // the web copy; how it is turned is PictureTools'
        QVERIFY(QFileInfo(received).size() < photo.size() / 2);
    }

    void removeRunIsSilent()
    {
        Rig rig;
        for (const char* name : {"/www/pics/a.jpg", "/www/pics/b c.jpg", "/www/a.jpg"})
            QVERIFY(QFile(rig.local(QString::fromUtf8(name))).open(QIODevice::WriteOnly));
        rig.ctx.state.ftpAction = QStringLiteral("RemoveImages");
        // Removal goes by the slots' names alone: the local files are long gone.
        rig.ctx.state.uploadFiles[1] = QStringLiteral("C:\\Auction\\a.jpg");
        rig.ctx.state.uploadFiles[2] = QStringLiteral("/home/s/never there.jpg");
        rig.ctx.state.uploadFiles[3] = QStringLiteral("/home/s/b c.jpg ");

        frmFTP window(rig.ctx);
        QVERIFY(runSession(&window));
        // clang-format off
        QCOMPARE(window.statusLines(), session({
            "Deleting Image file picsa.jpg from FTP Host 127.0.0.1",
            "Deleting Image file picsnever there.jpg from FTP Host 127.0.0.1",
            "Deleting Image file picsb c.jpg  from FTP Host 127.0.0.1"}));
        // clang-format on
        QVERIFY(!QFile::exists(rig.local("/www/pics/a.jpg")) &&
                QFile::exists(rig.local("/www/a.jpg")));
        QVERIFY(!QFile::exists(rig.local(QStringLiteral("/www/pics/b c.jpg"))));
        QVERIFY(rig.boxes().isEmpty());
        QCOMPARE(window.errorState().errorCode, 22041); // the missing file, recorded not shown
    }

    void connectFailures_data()
    {
        QTest::addColumn<Failure>("row");
        // clang-format off
        QTest::newRow("wrong password")    << Failure{kHost,                "",    "guess",  "",     22039};
        QTest::newRow("refused port")      << Failure{kHost,                "1",   "secret", "",     22008};
        QTest::newRow("unknown host")      << Failure{"ftp.seller.invalid", "",    "secret", "",     22005};
        QTest::newRow("port not a number") << Failure{kHost,                "ftp", "secret", "",     22014};
        QTest::newRow("never answers")     << Failure{kHost,                "",    "secret", "hang", 22020};
        // clang-format on
    }
    void connectFailures()
    {
        QFETCH(Failure, row);
        Rig rig(row.mode);
        rig.ctx.state.options.ftpPassword = row.password;
        rig.ctx.state.options.remoteHost = row.host;
        if (!row.port.isEmpty())
            rig.ctx.state.options.remotePort = row.port;
        rig.ctx.state.uploadFiles[1] = rig.env.writeFile(QStringLiteral("a.jpg"), "picture");

        frmFTP window(rig.ctx);
        window.client().setTimeoutSeconds(1);
        QVERIFY(runSession(&window));
        // No "Connected.", no transfer, no logging off; Close is enabled all the same.
        QCOMPARE(window.statusLines(), QStringList{"Connecting to " + row.host});
        QCOMPARE(window.errorState().errorCode, row.code);
        QVERIFY(window.findChild<QPushButton*>(QStringLiteral("cmdClose"))->isEnabled());
        QCOMPARE(rig.boxes(), QStringList{ftpErrorMessage(row.code)});
        QCOMPARE(rig.content(QStringLiteral("/www/pics/a.jpg")), QByteArray("<missing>"));

        // Closed and shown again, the window runs a session of its own.
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdClose")),
                          Qt::LeftButton);
        QVERIFY(window.isHidden());
        QVERIFY(runSession(&window));
        QCOMPARE(window.statusLines(), QStringList{"Connecting to " + row.host});
        QCOMPARE(rig.boxes().size(), 2);
    }

    void abortDuringTransfer()
    {
        Rig rig(QStringLiteral("65536")); // the big picture is still going when Abort hits
        const QByteArray big = sample(24 * 1024 * 1024);
        rig.ctx.state.uploadFiles[1] = rig.env.writeFile(QStringLiteral("big.jpg"), big);
        rig.ctx.state.uploadFiles[2] =
            rig.env.writeFile(QStringLiteral("small.jpg"), "small picture");

        frmFTP window(rig.ctx);
        QPushButton* abort = window.findChild<QPushButton*>(QStringLiteral("CancelBtn"));
        QPushButton* close = window.findChild<QPushButton*>(QStringLiteral("cmdClose"));
        auto* gauge = window.findChild<QFrame*>(QStringLiteral("Gauge"));
        auto* meter = window.findChild<QFrame*>(QStringLiteral("Meter"));
        QVERIFY(abort->isHidden() && gauge->isHidden()); // until the first progress report
        bool clicked = false;
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            if (clicked || !abort->isVisible() || !abort->isEnabled())
                return;
            clicked = true;
            QCOMPARE(layoutProblems(&window), QStringList());
            emit window.client().progress(37); // the bar is 37% of the gauge's width
            QCOMPARE(meter->width(), 37 * gauge->width() / 100);
            window.close(); // a running session keeps its window
            QVERIFY(window.isVisible());
            QTest::mouseClick(abort, Qt::LeftButton);
            QVERIFY(!close->isEnabled() && abort->isHidden() && gauge->isHidden());
            emit window.client().progress(38); // queued by the client before it saw the Abort
            QVERIFY(abort->isHidden() && !abort->isEnabled() && gauge->isHidden());
        });
        poll.start(20);
        QVERIFY(runSession(&window));

        QVERIFY(clicked);
        QCOMPARE(rig.boxes(), QStringList{ftpErrorMessage(22029)});
        QCOMPARE(window.statusLines().last(), kLoggingOff);
        QVERIFY(rig.content(QStringLiteral("/www/pics/big.jpg")).size() < big.size());
        QCOMPARE(rig.content(QStringLiteral("/www/pics/small.jpg")), "small picture");
        QVERIFY(close->isEnabled() && abort->isHidden());
    }
};

QTEST_MAIN(TestFrmFtp)
#include "tst_frmftp.moc"
