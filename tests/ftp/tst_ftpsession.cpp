#include "ftp/FtpSession.h"
#include "ftp/UploadCommand.h"
#include "platform/FtpErrors.h"
#include "platform/ScriptedPrompts.h"
#include "settings/OptionsRecord.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestFtpSession : public QObject
{
    Q_OBJECT
private slots:
    void errorMessage_data();
    void errorMessage();
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
    QTest::newRow("joined causes") << 22008
                                   << lead + "Cannot connect to server.Possible causes:\r\n\r\n"
                                             "1. You may not be connected to your ISP. Check your "
                                             "connection.";
    QTest::newRow("above the table") << 22100 << lead + "Error #22100";
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

void TestFtpSession::errorState_data()
{
    QTest::addColumn<QString>("uploadMode");
    QTest::addColumn<QList<int>>("codes");
    QTest::addColumn<QList<int>>("reported");
    QTest::addColumn<int>("errorCode");

    QTest::newRow("last one kept")
        << "" << QList<int>{22049, 22036} << QList<int>{22049, 22036} << 22036;
    QTest::newRow("25751 passed over") << "" << QList<int>{25751} << QList<int>{} << 0;
    QTest::newRow("25751 keeps the earlier code")
        << "" << QList<int>{22029, 25751} << QList<int>{22029} << 22029;
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
    QTest::newRow("blanks around a path") << false << QStringList{"", " {ok}b.jpg ", ""} << ""
                                          << "" << QStringList{"", " {ok}b.jpg ", "", "", ""};
    QTest::newRow("second missing")
        << false << QStringList{"{ok}a.jpg", "{no}b.jpg", "{ok}c.jpg"} << ""
        << find.arg(QStringLiteral("{no}b.jpg")) << QStringList{"{ok}a.jpg", "", "", "", ""};
    QTest::newRow("missing file before missing setting")
        << false << QStringList{"{no}a.jpg", "", ""} << "remoteHost"
        << find.arg(QStringLiteral("{no}a.jpg")) << QStringList{"", "", "", "", ""};
    QTest::newRow("host") << false << QStringList{"{ok}a.jpg", "", ""} << "remoteHost"
                          << "A Remote Host must be specified on the options screen" + img
                          << QStringList{"{ok}a.jpg", "", "", "", ""};
    QTest::newRow("web root") << false << QStringList{} << "imageLoc"
                              << "A Web Root Location must be specified" + img + supply
                              << QStringList{"", "", "", "", ""};

    const QString files = QStringLiteral(" before uploading files.");
    QTest::newRow("media missing")
        << true << QStringList{"{ok}bg.gif", "", "", "", "{no}i.gif"} << ""
        << QStringLiteral("Can't find file: {no}i.gif. Upload not performed.")
        << QStringList{"{ok}bg.gif", "", "", "", ""};
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
