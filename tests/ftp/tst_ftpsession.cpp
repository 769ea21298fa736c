#include "ftp/FtpSession.h"
#include "ftp/UploadCommand.h"
#include "platform/FtpErrors.h"
#include "platform/ScriptedPrompts.h"
#include "settings/OptionsRecord.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {
// clang-format off
struct Failures { QString uploadMode; QList<int> codes; QStringList boxes; int errorCode; };
// Paths name files of the working folder, where those without "gone" in the name exist.
// Settings from blankFrom on (host, port, userid, password, web root) hold only blanks.
struct Check { bool media; QStringList paths; int blankFrom; QString message; QStringList filled; };
// clang-format on
} // namespace

class TestFtpSession : public QObject
{
    Q_OBJECT
private slots:
    // Failures as a session reports them: what it remembers and which boxes the user sees.
    void failures_data()
    {
        QTest::addColumn<Failures>("row");
        // clang-format off
        QTest::newRow("last one kept") << Failures{"", {22041, 22100, 22036}, {"Remote file unavailable.", "Error #22100", "Cannot open local file."}, 22036};
        QTest::newRow("25751 passed over") << Failures{"", {22029, 25751}, {"File transfer aborted."}, 22029};
        QTest::newRow("silenced") << Failures{"UploadDummy", {22039}, {}, 0};
        // clang-format on
    }
    void failures()
    {
        QFETCH(Failures, row);
        ScriptedPrompts prompts;
        FtpErrorState state;
        state.uploadMode = row.uploadMode;
        for (int code : row.codes)
            if (state.report(code))
                ShowFtpError(prompts, code);
        QCOMPARE(state.errorCode, row.errorCode);
        QCOMPARE(prompts.shown().size(), row.boxes.size());
        for (qsizetype i = 0; i < row.boxes.size(); ++i) {
            QCOMPARE(prompts.shown().at(i).text,
                     "The attempt to connect failed with the following message:\r\n\r\n" +
                         row.boxes.at(i));
            QCOMPARE(prompts.shown().at(i).title, QStringLiteral("Connection failed"));
            QCOMPARE(prompts.shown().at(i).icon, PromptIcon::Exclamation);
            QCOMPARE(prompts.shown().at(i).buttons, PromptButtons::Ok);
        }
    }

    // Files first, then the settings in order: host, port, userid, password, web root.
    void uploadChecks_data()
    {
        QTest::addColumn<Check>("row");
        const QString img = " before uploading images.", files = " before uploading files.";
        const QString supply = "  Please supply on the Options panel under the ISP Properties tab.";
        const QString host = "A Remote Host must be specified on the options screen";
        const QStringList a{"a.jpg"};
        // clang-format off
        QTest::newRow("three pictures") << Check{false, {"a.jpg", "b.jpg", "c.jpg"}, 5, "", {"a.jpg", "b.jpg", "c.jpg"}};
        QTest::newRow("blanks kept")    << Check{false, {"", " b.jpg ", ""}, 5, "", {"", " b.jpg "}};
        QTest::newRow("three at most")  << Check{false, {"a.jpg", "", "", "gone.jpg"}, 5, "", a};
        QTest::newRow("second missing") << Check{false, {"a.jpg", "gone.jpg", "c.jpg"}, 5, "Can't find graphic file: gone.jpg. Upload not performed.", a};
        QTest::newRow("files first")    << Check{false, {"gone.jpg"}, 0, "Can't find graphic file: gone.jpg. Upload not performed.", {}};
        QTest::newRow("host")           << Check{false, a, 0, host + img, a};
        QTest::newRow("port")           << Check{false, a, 1, "A Remote Port must be specified on the options screen" + img, a};
        QTest::newRow("userid")         << Check{false, a, 2, "An FTP Userid must be specified" + img + supply, a};
        QTest::newRow("password")       << Check{false, a, 3, "An FTP Password must be specified" + img + supply, a};
        QTest::newRow("web root")       << Check{false, a, 4, "A Web Root Location must be specified" + img + supply, a};
        QTest::newRow("media missing")  << Check{true, {"bg.gif", "", "", "", "gone.gif"}, 5, "Can't find file: gone.gif. Upload not performed.", {"bg.gif"}};
        QTest::newRow("media host")     << Check{true, {}, 0, host + files, {}};
        // clang-format on
    }
    void uploadChecks()
    {
        QFETCH(Check, row);
        QTemporaryDir dir;
        QDir::setCurrent(dir.path());
        for (const QString& p : row.paths)
            if (!p.trimmed().isEmpty() && !p.contains(u"gone"))
                QVERIFY(QFile(p.trimmed()).open(QIODevice::WriteOnly));
        OptionsRecord options;
        QString* settings[] = {&options.remoteHost, &options.remotePort, &options.ftpUserid,
                               &options.ftpPassword, &options.imageLoc};
        for (int i = 0; i < 5; ++i)
            *settings[i] = i < row.blankFrom ? QStringLiteral("set") : QStringLiteral("   ");

        const UploadCheck check =
            checkUpload(row.media ? UploadSource::AdStudioMedia : UploadSource::ItemPictures,
                        row.paths, options);
        QCOMPARE(check.proceed, row.message.isEmpty());
        QCOMPARE(check.message, row.message);
        const bool setting = row.message.startsWith(u'A');
        QCOMPARE(check.openOptions, setting);
        QCOMPARE(check.title, setting ? QStringLiteral("Missing Information") : kDefaultTitle);
        QCOMPARE(check.icon, setting ? PromptIcon::Exclamation : PromptIcon::None);
        for (int slot = 0; slot < 6; ++slot)
            QCOMPARE(check.files[std::size_t(slot)], row.filled.value(slot - 1));
    }
};

QTEST_GUILESS_MAIN(TestFtpSession)
#include "tst_ftpsession.moc"
