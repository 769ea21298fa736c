// The clean-up dialog driven offscreen: which pictures are erased on disk and, through the FTP
// window, on a real FTP server on 127.0.0.1; the checks that keep it open; the remembered boxes.
#include "AfterSaleDesk.h"

#include "aftersale/frmCleanup.h"
#include "ftp/frmFTP.h"

#include <QCheckBox>

namespace {

const QStringList kBoxes = {"chkEraseHDImgs", "chkEraseWebImgs", "chkLeaveFeedback"};
const QStringList kKeys = {"EraseHDImgs", "EraseWebImgs", "LeaveFeedbackNow"};

void tick(QCheckBox* box)
{
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(4, box->height() / 2));
}

// The dialog over a stand-in item window, with pictures a.jpg and b.jpg in slots 1 and 3 and a
// picture that is gone in slot 2. `ticked` holds the box names to tick; the others are cleared.
// The feedback form comes from an empty cache, so there is no page to fill.
struct Cleanup
{
    Cleanup(TestEnvironment& env, const QStringList& ticked) : env(env)
    {
        AppState& s = env.context().state;
        s.uploadFiles[1] = env.writeFile(u"a.jpg"_s, "a");
        s.uploadFiles[2] = env.path(u"gone.jpg"_s);
        s.uploadFiles[3] = u' ' + env.writeFile(u"b.jpg"_s, "b");
        env.writeFile(u"Leave.htm"_s, "");
        dialog = new frmCleanup(
            env.context(), [this] { calls << u"release"_s; },
            [this]() -> frmEndingAuction* {
                calls << u"ending"_s;
                if (!ending)
                    ending = new frmEndingAuction(this->env.context(), &owner);
                return ending;
            },
            &owner);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->show();
        for (const QString& name : kBoxes)
            if (child<QCheckBox>(dialog, name)->isChecked() != ticked.contains(name))
                tick(child<QCheckBox>(dialog, name));
    }
    QStringList remaining() const
    {
        return QDir(env.appPath()).entryList({u"*.jpg"_s}, QDir::Files, QDir::Name);
    }

    TestEnvironment& env;
    QWidget owner; // stands for the item window
    QPointer<frmCleanup> dialog;
    QPointer<frmEndingAuction> ending;
    QStringList calls;
};

// The boxes ticked and the FTP host and port; the pictures left, the message ("" for none) and
// the calls made to the item window ("release") and for the ending-auction window ("ending").
// clang-format off
struct Ok { QStringList ticked; QString host, port; QStringList remaining; QString message; QStringList calls; };
// clang-format on

} // namespace

class TestCleanup : public QObject
{
    Q_OBJECT
private slots:
    void ok_data()
    {
        QTest::addColumn<Ok>("row");
        const QStringList both = {"a.jpg", "b.jpg"}, twice = {"release", "release"};
        const QString missing = u"A Remote %1 must be specified on the options screen before "
                                "sending messages. Message not sent."_s;
        // clang-format off
        QTest::newRow("nothing ticked") << Ok{{"chkFlagInactive"}, "", "", both, "", {}};
        QTest::newRow("local pictures") << Ok{{"chkEraseHDImgs"}, "", "", {}, "", twice};
        QTest::newRow("feedback") << Ok{{"chkLeaveFeedback"}, "", "", both, "", {"ending"}};
        QTest::newRow("web, no host") << Ok{kBoxes, " ", "21", {}, missing.arg("Host"), twice};
        QTest::newRow("web, no port") << Ok{{"chkEraseWebImgs", "chkLeaveFeedback"}, "127.0.0.1", " ", both, missing.arg("Port"), {}};
        // clang-format on
    }
    void ok()
    {
        QFETCH(Ok, row);
        TestEnvironment env;
        env.context().state.options.remoteHost = row.host;
        env.context().state.options.remotePort = row.port;
        Cleanup c(env, row.ticked);
        ModalWatch options;
        click(c.dialog, u"cmdOk"_s);

        QCOMPARE(c.remaining(), row.remaining);
        QCOMPARE(c.calls, row.calls);
        // Feedback left counts as done, page or not.
        QCOMPARE(c.ending && child<QCheckBox>(c.ending, u"chkFeedbackComplete"_s)->isChecked(),
                 row.calls.contains(u"ending"_s));
        // A missing FTP setting sends the seller to Options and keeps the dialog for another try.
        const bool kept = !row.message.isEmpty();
        QCOMPARE(shownTexts(env),
                 kept ? QStringList{kMissingInformationTitle + u'|' + row.message} : QStringList());
        QCOMPARE(options.shown, kept ? u"frmOptions"_s : QString());
        QCOMPARE(!c.dialog.isNull() && c.dialog->isVisible(), kept);
        QVERIFY(c.owner.findChildren<frmFTP*>().isEmpty());
    }

    void erasesHereAndOnTheWebSpace()
    {
        QTemporaryDir root;
        QVERIFY(QDir(root.path()).mkpath(u"www/pics"_s));
        for (const char* name : {"a.jpg", "b.jpg", "keep.jpg"})
            QVERIFY(QFile(root.filePath("www/pics/"_L1 + name)).open(QIODevice::WriteOnly));
        PythonServer server(u"ftp_server.py"_s, {root.path(), QString()});
        QVERIFY(server.isRunning());
        TestEnvironment env;
        AppState& s = env.context().state;
        s.options.remoteHost = u"127.0.0.1"_s;
        s.options.remotePort = QString::number(server.port());
        s.options.ftpUserid = u"seller"_s;
        s.options.ftpPassword = u"secret"_s;
        s.options.auctionDir = u"pics/"_s;
        s.uploadFiles[4] = u"keep.jpg"_s; // not a picture of this item
        Cleanup c(env, {"chkEraseHDImgs", "chkEraseWebImgs"});
        click(c.dialog, u"cmdOk"_s);

        // The local files went first; the web space is cleaned from the slot names alone.
        QCOMPARE(c.remaining(), QStringList());
        QVERIFY(c.dialog.isNull() || !c.dialog->isVisible());
        QCOMPARE(s.ftpAction, u"RemoveImages"_s);
        auto* ftp = c.owner.findChild<frmFTP*>();
        QVERIFY(ftp);
        QSignalSpy done(ftp, &frmFTP::finished);
        QVERIFY(done.wait(60000));
        QCOMPARE(QDir(root.filePath(u"www/pics"_s)).entryList(QDir::Files),
                 QStringList{"keep.jpg"});
        QCOMPARE(env.prompts().shown().size(), 0);
    }

    void remembersTheBoxes_data()
    {
        QTest::addColumn<QStringList>("stored");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<QStringList>("afterClick");
        // clang-format off
        QTest::newRow("never stored") << QStringList{"", "", ""} << QStringList{"1", "1", "1"} << QStringList{"0", "0", "0"};
        QTest::newRow("mixed") << QStringList{"0", "1", "0"} << QStringList{"0", "1", "0"} << QStringList{"1", "0", "1"};
        // clang-format on
    }
    void remembersTheBoxes()
    {
        QFETCH(QStringList, stored);
        TestEnvironment env;
        for (int i = 0; i < kKeys.size(); ++i)
            if (!stored.at(i).isEmpty())
                env.store().save(Settings::kApp, Settings::kOptions, kKeys.at(i), stored.at(i));
        frmCleanup dialog(env.context(), {}, {});
        dialog.show();
        QStringList shown, afterClick;
        for (int i = 0; i < kBoxes.size(); ++i) {
            auto* box = child<QCheckBox>(&dialog, kBoxes.at(i));
            shown << QString::number(int(box->isChecked()));
            tick(box);
            afterClick << env.store().get(Settings::kApp, Settings::kOptions, kKeys.at(i));
        }
        QTEST(shown, "shown");
        QTEST(afterClick, "afterClick");
        // The flag box is not remembered.
        QVERIFY(!child<QCheckBox>(&dialog, u"chkFlagInactive"_s)->isChecked());
    }
};

QTEST_MAIN(TestCleanup)
#include "tst_frmcleanup.moc"
