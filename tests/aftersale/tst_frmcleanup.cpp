// The clean-up dialog driven offscreen: which pictures are erased on disk and, through the FTP
// window, on a real FTP server on 127.0.0.1; the checks that keep it open; the remembered boxes.
#include "../support/LayoutCheck.h"
#include "../support/ModalWatch.h"
#include "../support/TestEnvironment.h"

#include "aftersale/frmCleanup.h"
#include "aftersale/texts.h"
#include "ftp/frmFTP.h"
#include "settings/SettingsCatalogue.h"

#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

namespace {

const QStringList kBoxes = {"chkEraseHDImgs", "chkEraseWebImgs", "chkLeaveFeedback"};
const QStringList kKeys = {"EraseHDImgs", "EraseWebImgs", "LeaveFeedbackNow"};

// The dialog over a stand-in item window, with pictures a.jpg and b.jpg in slots 1 and 3 and a
// picture that is gone in slot 2. `ticked` holds the box names to tick; the others are cleared.
struct Cleanup
{
    Cleanup(TestEnvironment& env, const QStringList& ticked) : env(env)
    {
        AppState& s = env.context().state;
        s.uploadFiles[1] = env.writeFile(QStringLiteral("a.jpg"), "a");
        s.uploadFiles[2] = env.path(QStringLiteral("gone.jpg"));
        s.uploadFiles[3] = QLatin1Char(' ') + env.writeFile(QStringLiteral("b.jpg"), "b");
        dialog = new frmCleanup(
            env.context(), [this] { calls << QStringLiteral("release"); },
            [this]() -> frmEndingAuction* {
                calls << QStringLiteral("ending");
                return nullptr;
            },
            &owner);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->show();
        for (const QString& name : kBoxes)
            if (box(name)->isChecked() != ticked.contains(name))
                QTest::mouseClick(box(name), Qt::LeftButton, {},
                                  QPoint(4, box(name)->height() / 2));
    }
    QCheckBox* box(const QString& name) const { return dialog->findChild<QCheckBox*>(name); }
    QStringList remaining() const
    {
        return QDir(env.appPath()).entryList({QStringLiteral("*.jpg")}, QDir::Files, QDir::Name);
    }
    void clickOk() const
    {
        QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("cmdOk")), Qt::LeftButton);
    }

    TestEnvironment& env;
    QWidget owner; // stands for the item window
    QPointer<frmCleanup> dialog;
    QStringList calls;
};

} // namespace

class TestCleanup : public QObject
{
    Q_OBJECT
private slots:
    void ok_data();
    void ok();
    void erasesHereAndOnTheWebSpace();
    void remembersTheBoxes_data();
    void remembersTheBoxes();
};

void TestCleanup::ok_data()
{
    QTest::addColumn<QStringList>("ticked");
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("port");
    QTest::addColumn<QStringList>("remaining");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QStringList>("calls");
    const QStringList both = {"a.jpg", "b.jpg"};
    const QString noHost = QStringLiteral("A Remote Host must be specified on the options screen "
                                          "before sending messages. Message not sent.");
    const QString noPort = QStringLiteral("A Remote Port must be specified on the options screen "
                                          "before sending messages. Message not sent.");
    // clang-format off
    QTest::newRow("nothing ticked") << QStringList{"chkFlagInactive"} << "" << "" << both << "" << QStringList{};
    QTest::newRow("local pictures") << QStringList{"chkEraseHDImgs"} << "" << "" << QStringList{} << ""
                                    << QStringList{"release", "release"};
    QTest::newRow("feedback") << QStringList{"chkLeaveFeedback"} << "" << "" << both << "" << QStringList{"ending"};
    QTest::newRow("web, no host") << QStringList{"chkEraseHDImgs", "chkEraseWebImgs", "chkLeaveFeedback"}
                                  << " " << "21" << QStringList{} << noHost << QStringList{"release", "release"};
    QTest::newRow("web, no port") << QStringList{"chkEraseWebImgs", "chkLeaveFeedback"}
                                  << "127.0.0.1" << " " << both << noPort << QStringList{};
    // clang-format on
}

void TestCleanup::ok()
{
    QFETCH(QStringList, ticked);
    QFETCH(QString, message);
    TestEnvironment env;
    OptionsRecord& o = env.context().state.options;
    QFETCH(QString, host);
    QFETCH(QString, port);
    o.remoteHost = host;
    o.remotePort = port;
    Cleanup c(env, ticked);
    QVERIFY(layoutProblems(c.dialog).isEmpty());
    ModalWatch options;
    c.clickOk();

    QTEST(c.remaining(), "remaining");
    QTEST(c.calls, "calls");
    QStringList shown;
    for (const auto& p : env.prompts().shown())
        shown << p.title + u'|' + p.text;
    // A missing FTP setting sends the seller to Options and keeps the dialog for another try.
    QCOMPARE(shown, message.isEmpty()
                        ? QStringList()
                        : QStringList{AfterSaleTexts::kMissingInformationTitle + u'|' + message});
    QCOMPARE(options.shown, message.isEmpty() ? QString() : QStringLiteral("frmOptions"));
    QCOMPARE(!c.dialog.isNull() && c.dialog->isVisible(), !message.isEmpty());
    QVERIFY(c.owner.findChildren<frmFTP*>().isEmpty());
}

void TestCleanup::erasesHereAndOnTheWebSpace()
{
    QTemporaryDir root;
    QVERIFY(QDir(root.path()).mkpath(QStringLiteral("www/pics")));
    for (const char* name : {"a.jpg", "b.jpg", "keep.jpg"})
        QVERIFY(QFile(root.filePath(QStringLiteral("www/pics/") + QLatin1String(name)))
                    .open(QIODevice::WriteOnly));
    PythonServer server(QStringLiteral("ftp_server.py"), {root.path(), QString()});
    QVERIFY(server.isRunning());
    TestEnvironment env;
    AppState& s = env.context().state;
    s.options.remoteHost = QStringLiteral("127.0.0.1");
    s.options.remotePort = QString::number(server.port());
    s.options.ftpUserid = QStringLiteral("seller");
    s.options.ftpPassword = QStringLiteral("secret");
    s.options.auctionDir = QStringLiteral("pics/");
    s.uploadFiles[4] = QStringLiteral("keep.jpg"); // not a picture of this item
    Cleanup c(env, {"chkEraseHDImgs", "chkEraseWebImgs"});
    c.clickOk();

    // The local files went first; the web space is cleaned from the slot names alone.
    QCOMPARE(c.remaining(), QStringList());
    QVERIFY(c.dialog.isNull() || !c.dialog->isVisible());
    QCOMPARE(s.ftpAction, QStringLiteral("RemoveImages"));
    auto* ftp = c.owner.findChild<frmFTP*>();
    QVERIFY(ftp);
    QSignalSpy done(ftp, &frmFTP::finished);
    QVERIFY(done.wait(60000));
    QCOMPARE(QDir(root.filePath(QStringLiteral("www/pics"))).entryList(QDir::Files),
             QStringList{"keep.jpg"});
    QCOMPARE(env.prompts().shown().size(), 0);
}

void TestCleanup::remembersTheBoxes_data()
{
    QTest::addColumn<QStringList>("stored");
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<QStringList>("afterClick");
    QTest::newRow("never stored") << QStringList{"", "", ""} << QStringList{"1", "1", "1"}
                                  << QStringList{"0", "0", "0"};
    QTest::newRow("mixed") << QStringList{"0", "1", "0"} << QStringList{"0", "1", "0"}
                           << QStringList{"1", "0", "1"};
}

void TestCleanup::remembersTheBoxes()
{
    QFETCH(QStringList, stored);
    TestEnvironment env;
    for (int i = 0; i < kKeys.size(); ++i)
        if (!stored.at(i).isEmpty())
            env.store().save(Settings::kApp, Settings::kOptions, kKeys.at(i), stored.at(i));
    frmCleanup dialog(env.context(), {}, {});
    dialog.show();
    QVERIFY(layoutProblems(&dialog).isEmpty());
    QStringList shown, afterClick;
    for (int i = 0; i < kBoxes.size(); ++i) {
        auto* box = dialog.findChild<QCheckBox*>(kBoxes.at(i));
        shown << QString::number(int(box->isChecked()));
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(4, box->height() / 2));
        afterClick << env.store().get(Settings::kApp, Settings::kOptions, kKeys.at(i));
    }
    QTEST(shown, "shown");
    QTEST(afterClick, "afterClick");
    // The flag box is not remembered.
    QVERIFY(dialog.findChild<QCheckBox*>(QStringLiteral("chkFlagInactive"))->isChecked() == false);
}

QTEST_MAIN(TestCleanup)
#include "tst_frmcleanup.moc"
