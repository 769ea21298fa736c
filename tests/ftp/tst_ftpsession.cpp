#include "ftp/FtpSession.h"
#include "ftp/UploadCommand.h"
#include "platform/FtpErrors.h"
#include "platform/ScriptedPrompts.h"
#include "settings/OptionsRecord.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using Files = std::array<QString, 6>;
Q_DECLARE_METATYPE(Files)

class TestFtpSession : public QObject
{
    Q_OBJECT
private slots:
    void errorMessage_data();
    void errorMessage();
    void errorBoxSilentWhileRemoving();
    void statusLines_data();
    void statusLines();
    void errorState_data();
    void errorState();
    void uploadChecks_data();
    void uploadChecks();
};

void TestFtpSession::errorMessage_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");

    const QString lead =
        QStringLiteral("The attempt to connect failed with the following message:\r\n\r\n");
    QTest::newRow("first") << 22001 << lead + "No free handles.";
    QTest::newRow("last") << 22052 << lead + "Unexpected server error.";
    QTest::newRow("no full stop") << 22003 << lead + "Not session owner";
    QTest::newRow("joined causes") << 22008
                                   << lead + "Cannot connect to server.Possible causes:\r\n\r\n"
                                             "1. You may not be connected to your ISP. Check your "
                                             "connection.";
    QTest::newRow("trailing blank kept")
        << 22014
        << lead + "Cannot select socket.  \r\n\r\nPossible causes:\r\n\r\n"
                  "1. Incorrect FTP Port, check with your ISP.";
    QTest::newRow("host with single break")
        << 22005
        << lead +
               "Invalid host name.  \r\n\r\nPossible causes:\r\n\r\n"
               "1. The server name could not be found.  Double check your Remote FTP Host "
               "setting with your ISP. \r\n\r\n"
               "2. If you are using AOL, this error can occur if you are connected at too high a "
               "speed for AOL's upload process.  Attempt to connect with another phone number, or "
               "contact AOL Support.\r\n"
               "3. You may not be connected to your ISP. Check your connection.";
    QTest::newRow("indented lines")
        << 22049
        << lead + "Cannot access file on server.Possible causes:\r\n\r\n"
                  "1. Your Web Images URL, or Host Upload Dir are not "
                  "set correctly.\r\n"
                  "2. This error is also known to be reported "
                  "incorrectly when connecting\r\n"
                  "   to some ISP's.  Please click OK, and check to see "
                  "if your file uploaded, and\r\n"
                  "   ignore this error if so.";
    QTest::newRow("login") << 22039
                           << lead + "Cannot login to remote server. The server was found, but a "
                                     "login could not be performed.  Possible causes are an "
                                     "incorrect userid, or incorrect password";
    QTest::newRow("above the table") << 22100 << lead + "Error #22100";
    QTest::newRow("below the table") << 22000 << lead + "Error #22000";
    QTest::newRow("passed-over code") << 25751 << lead + "Error #25751";
}

void TestFtpSession::errorMessage()
{
    QFETCH(int, code);
    QFETCH(QString, text);

    ScriptedPrompts prompts;
    ShowFtpError(prompts, code, QStringLiteral("UploadImages"));
    QCOMPARE(prompts.shown().size(), 1);
    const ScriptedPrompts::Shown& box = prompts.shown().first();
    QCOMPARE(box.text, text);
    QCOMPARE(box.title, QStringLiteral("Connection failed"));
    QCOMPARE(box.icon, PromptIcon::Exclamation);
    QCOMPARE(box.buttons, PromptButtons::Ok);
    QVERIFY(prompts.unexpected().isEmpty());
}

void TestFtpSession::errorBoxSilentWhileRemoving()
{
    ScriptedPrompts prompts;
    ShowFtpError(prompts, 22039, QStringLiteral("RemoveImages"));
    QVERIFY(prompts.shown().isEmpty());
    ShowFtpError(prompts, 22039, QStringLiteral("removeimages")); // the action is matched exactly
    ShowFtpError(prompts, 22039);
    QCOMPARE(prompts.shown().size(), 2);
}

void TestFtpSession::statusLines_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<Files>("files");
    QTest::addColumn<QString>("auctionDir");
    QTest::addColumn<bool>("relative");
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QStringList>("remoteNames");

    const QString up = QStringLiteral("UploadImages");
    const QString rm = QStringLiteral("RemoveImages");
    const Files three = {"", "/home/s/a.jpg", "/home/s/b.gif", "/home/s/c.png", "", ""};
    QTest::newRow("upload relative")
        << up << three << "pics" << true << "./pics"
        << QStringList{"Transferring Image file /home/s/a.jpg to FTP Host: ftp.example.net into "
                       "Relative path picsa.jpg",
                       "Transferring Image file /home/s/b.gif to FTP Host: ftp.example.net into "
                       "Relative path picsb.gif",
                       "Transferring Image file /home/s/c.png to FTP Host: ftp.example.net into "
                       "Relative path picsc.png"}
        << QStringList{"a.jpg", "b.gif", "c.png"};
    QTest::newRow("upload absolute, gaps and slot 0 skipped")
        << up << Files{"/home/s/zero.jpg", "", "/home/s/b.gif", "", "", "/home/s/e.wav"}
        << "www/pics/" << false << "/www/pics/"
        << QStringList{"Transferring Image file /home/s/b.gif to FTP Host: ftp.example.net into "
                       "Absolute path www/pics/b.gif",
                       "Transferring Image file /home/s/e.wav to FTP Host: ftp.example.net into "
                       "Absolute path www/pics/e.wav"}
        << QStringList{"b.gif", "e.wav"};
    QTest::newRow("upload without directory: two blanks")
        << up << Files{"", "/home/s/a.jpg", "", "", "", ""} << "" << true << ""
        << QStringList{"Transferring Image file /home/s/a.jpg to FTP Host: ftp.example.net into  "
                       "path a.jpg"}
        << QStringList{"a.jpg"};
    QTest::newRow("blanks around the name, Windows path")
        << up << Files{"", "C:\\My Pictures\\ vase 1.jpg ", "", "", "", ""} << ".\\" << true
        << "./.\\"
        << QStringList{"Transferring Image file C:\\My Pictures\\ vase 1.jpg  to FTP Host: "
                       "ftp.example.net into Relative path .\\vase 1.jpg"}
        << QStringList{"vase 1.jpg"};
    QTest::newRow("remove")
        << rm << three << "pics/" << true << "./pics/"
        << QStringList{"Deleting Image file pics/a.jpg from FTP Host ftp.example.net",
                       "Deleting Image file pics/b.gif from FTP Host ftp.example.net",
                       "Deleting Image file pics/c.png from FTP Host ftp.example.net"}
        << QStringList{"a.jpg", "b.gif", "c.png"};
    QTest::newRow("all slots empty")
        << up << Files{} << "pics" << true << "./pics" << QStringList{} << QStringList{};
    QTest::newRow("other action connects only")
        << "Test" << three << "pics" << true << "" << QStringList{} << QStringList{};
}

void TestFtpSession::statusLines()
{
    QFETCH(QString, action);
    QFETCH(Files, files);
    QFETCH(QString, auctionDir);
    QFETCH(bool, relative);
    QFETCH(QString, directory);
    QFETCH(QStringList, lines);
    QFETCH(QStringList, remoteNames);

    const FtpPlan plan =
        planFtpSession({action, files, QStringLiteral("ftp.example.net"), auctionDir, relative});
    QCOMPARE(plan.directory, directory);
    QStringList gotLines, gotNames;
    for (const FtpStep& step : plan.steps) {
        gotLines << step.statusLine;
        gotNames << step.remoteName;
        QCOMPARE(step.kind, action == u"RemoveImages" ? FtpStep::Kind::Delete : FtpStep::Kind::Put);
        if (step.kind == FtpStep::Kind::Put)
            QVERIFY(!step.localPath.startsWith(u' ') && !step.localPath.endsWith(u' '));
    }
    QCOMPARE(gotLines, lines);
    QCOMPARE(gotNames, remoteNames);
}

void TestFtpSession::errorState_data()
{
    QTest::addColumn<QString>("uploadMode");
    QTest::addColumn<QList<int>>("codes");
    QTest::addColumn<QList<int>>("reported");
    QTest::addColumn<int>("errorCode");

    QTest::newRow("none") << "" << QList<int>{} << QList<int>{} << 0;
    QTest::newRow("last one kept")
        << "" << QList<int>{22049, 22036} << QList<int>{22049, 22036} << 22036;
    QTest::newRow("25751 passed over") << "" << QList<int>{25751} << QList<int>{} << 0;
    QTest::newRow("25751 keeps the earlier code")
        << "" << QList<int>{22029, 25751} << QList<int>{22029} << 22029;
    QTest::newRow("outside the table still counts")
        << "" << QList<int>{22100} << QList<int>{22100} << 22100;
    QTest::newRow("silenced") << "UploadDummy" << QList<int>{22039} << QList<int>{} << 0;
}

void TestFtpSession::errorState()
{
    QFETCH(QString, uploadMode);
    QFETCH(QList<int>, codes);
    QFETCH(QList<int>, reported);
    QFETCH(int, errorCode);

    FtpErrorState state;
    state.uploadMode = uploadMode;
    QList<int> told;
    for (int code : codes)
        if (state.report(code))
            told << code;
    QCOMPARE(told, reported);
    QCOMPARE(state.errorCode, errorCode);
}

void TestFtpSession::uploadChecks_data()
{
    // Paths name files of a temp folder: "{ok}name" exists there, "{no}name" does not.
    QTest::addColumn<bool>("media");
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QString>("blankSetting"); // a setting left blank (or holding only blanks)
    QTest::addColumn<QString>("message");      // "" = goes on to the FTP window
    QTest::addColumn<QStringList>("filled");   // slots 1..5 afterwards

    const QString find = QStringLiteral("Can't find graphic file: %1. Upload not performed.");
    const QString img = QStringLiteral(" before uploading images.");
    const QString supply =
        QStringLiteral("  Please supply on the Options panel under the ISP Properties tab.");

    QTest::newRow("three pictures")
        << false << QStringList{"{ok}a.jpg", "{ok}b.jpg", "{ok}c.jpg"} << ""
        << "" << QStringList{"{ok}a.jpg", "{ok}b.jpg", "{ok}c.jpg", "", ""};
    QTest::newRow("no pictures") << false << QStringList{"", "  ", ""} << ""
                                 << "" << QStringList{"", "", "", "", ""};
    QTest::newRow("blanks around a path") << false << QStringList{"", " {ok}b.jpg ", ""} << ""
                                          << "" << QStringList{"", " {ok}b.jpg ", "", "", ""};
    QTest::newRow("second missing")
        << false << QStringList{"{ok}a.jpg", "{no}b.jpg", "{ok}c.jpg"} << ""
        << find.arg(QStringLiteral("{no}b.jpg")) << QStringList{"{ok}a.jpg", "", "", "", ""};
    QTest::newRow("missing file before missing setting")
        << false << QStringList{"{no}a.jpg", "", ""} << "remoteHost"
        << find.arg(QStringLiteral("{no}a.jpg")) << QStringList{"", "", "", "", ""};
    QTest::newRow("a folder is not a picture")
        << false << QStringList{"", "", "/"} << "" << find.arg(QStringLiteral("/"))
        << QStringList{"", "", "", "", ""};
    QTest::newRow("host") << false << QStringList{"{ok}a.jpg", "", ""} << "remoteHost"
                          << "A Remote Host must be specified on the options screen" + img
                          << QStringList{"{ok}a.jpg", "", "", "", ""};
    QTest::newRow("port") << false << QStringList{} << "remotePort"
                          << "A Remote Port must be specified on the options screen" + img
                          << QStringList{"", "", "", "", ""};
    QTest::newRow("userid") << false << QStringList{} << "ftpUserid"
                            << "An FTP Userid must be specified" + img + supply
                            << QStringList{"", "", "", "", ""};
    QTest::newRow("password") << false << QStringList{} << "ftpPassword"
                              << "An FTP Password must be specified" + img + supply
                              << QStringList{"", "", "", "", ""};
    QTest::newRow("web root") << false << QStringList{} << "imageLoc"
                              << "A Web Root Location must be specified" + img + supply
                              << QStringList{"", "", "", "", ""};

    const QString files = QStringLiteral(" before uploading files.");
    QTest::newRow("media, five slots")
        << true << QStringList{"{ok}bg.gif", "{ok}s.wav", "", "{ok}t.gif", "{ok}i.gif"} << ""
        << "" << QStringList{"{ok}bg.gif", "{ok}s.wav", "", "{ok}t.gif", "{ok}i.gif"};
    QTest::newRow("media missing")
        << true << QStringList{"{ok}bg.gif", "", "", "", "{no}i.gif"} << ""
        << QStringLiteral("Can't find file: {no}i.gif. Upload not performed.")
        << QStringList{"{ok}bg.gif", "", "", "", ""};
    QTest::newRow("media host") << true << QStringList{} << "remoteHost"
                                << "A Remote Host must be specified on the options screen" + files
                                << QStringList{"", "", "", "", ""};
    QTest::newRow("media userid") << true << QStringList{} << "ftpUserid"
                                  << "An FTP Userid must be specified" + files + supply
                                  << QStringList{"", "", "", "", ""};
    QTest::newRow("media web root") << true << QStringList{} << "imageLoc"
                                    << "A Web Root Location must be specified" + files + supply
                                    << QStringList{"", "", "", "", ""};
}

void TestFtpSession::uploadChecks()
{
    QFETCH(bool, media);
    QFETCH(QStringList, paths);
    QFETCH(QString, blankSetting);
    QFETCH(QString, message);
    QFETCH(QStringList, filled);

    QTemporaryDir dir;
    const auto real = [&](QString text) {
        return text.replace(QLatin1String("{ok}"), dir.path() + u'/')
            .replace(QLatin1String("{no}"), dir.path() + u'/');
    };
    QStringList realPaths;
    for (const QString& p : paths) {
        realPaths << real(p);
        if (p.contains(QLatin1String("{ok}"))) {
            QFile f(real(p).trimmed());
            QVERIFY(f.open(QIODevice::WriteOnly));
        }
    }

    OptionsRecord options;
    options.remoteHost = QStringLiteral("ftp.example.net");
    options.remotePort = QStringLiteral("21");
    options.ftpUserid = QStringLiteral("seller");
    options.ftpPassword = QStringLiteral("secret");
    options.imageLoc = QStringLiteral("http://www.example.net/pics/");
    QString* blank = blankSetting == u"remoteHost"    ? &options.remoteHost
                     : blankSetting == u"remotePort"  ? &options.remotePort
                     : blankSetting == u"ftpUserid"   ? &options.ftpUserid
                     : blankSetting == u"ftpPassword" ? &options.ftpPassword
                     : blankSetting == u"imageLoc"    ? &options.imageLoc
                                                      : nullptr;
    if (blank)
        *blank = QStringLiteral("   ");

    const UploadCheck check = checkUpload(
        media ? UploadSource::AdStudioMedia : UploadSource::ItemPictures, realPaths, options);
    QCOMPARE(check.proceed, message.isEmpty());
    QCOMPARE(check.message, message.isEmpty() ? QString() : real(message));
    const bool setting = message.startsWith(u'A');
    QCOMPARE(check.openOptions, setting);
    QCOMPARE(check.title, setting ? QStringLiteral("Missing Information") : kDefaultTitle);
    QCOMPARE(check.icon, setting ? PromptIcon::Exclamation : PromptIcon::None);
    QVERIFY(check.files[0].isEmpty());
    for (int slot = 1; slot <= 5; ++slot)
        QCOMPARE(check.files[std::size_t(slot)], real(filled.at(slot - 1)));
}

QTEST_GUILESS_MAIN(TestFtpSession)
#include "tst_ftpsession.moc"
