// The note window against a real SMTP server on 127.0.0.1: what arrives, what the status bar
// shows on the way, which date the ending-auction window gets, and the checks before sending.
#include "../support/LayoutCheck.h"
#include "../support/ModalWatch.h"
#include "../support/SmtpFixture.h"
#include "../support/TestEnvironment.h"

#include "aftersale/frmEndingAuction.h"
#include "aftersale/frmNote.h"
#include "aftersale/texts.h"
#include "platform/DateText.h"
#include "platform/SmtpErrors.h"
#include "settings/SettingsCatalogue.h"

#include <QDialog>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTextEdit>
#include <QtTest>

#include <optional>

using namespace AfterSaleTexts;

namespace {

const int kDateFields[] = {14, 25, 27}; // Date Contacted, Payment Rec'd, Item Shipped

// An ending-auction window on a sold item and a note window in front of it, mailing to `port`.
struct NoteDesk
{
    NoteDesk(TestEnvironment& env, int port) : env(env)
    {
        const QList<qint64> ids = env.addItems({{{"EbayID", "123456789"}}});
        AppState& s = env.context().state;
        s.currentItemId = ids.at(0);
        s.currentEbayId = QStringLiteral("123456789");
        s.options.remoteSmtpHost = QStringLiteral("127.0.0.1");
        s.options.remoteSmtpPort = QString::number(port);
        env.store().save(Settings::kApp, Settings::kOptions, QStringLiteral("SendFrom"),
                         QStringLiteral(" seller@example.com "));
        ending = frmEndingAuction::openEndingAuction(env.context(), {}, owner);
        note = new frmNote(env.context(), ending, &owner);
        QObject::connect(note->findChild<QStatusBar*>(QStringLiteral("status")),
                         &QStatusBar::messageChanged, [this](const QString& text) {
                             if (!text.isEmpty())
                                 statuses << text;
                         });
    }
    QStringList dates() const
    {
        QStringList texts;
        for (int index : kDateFields)
            texts << ending->fieldText(index);
        return texts;
    }
    QLineEdit* edit(const char* name) const
    {
        return note->findChild<QLineEdit*>(QString::fromLatin1(name));
    }

    TestEnvironment& env;
    QWidget owner; // stands for the item window
    QPointer<frmEndingAuction> ending;
    QPointer<frmNote> note;
    QStringList statuses;
};

ComposedNote shippedNote(NoteKind kind, const QString& cc)
{
    return {kind,
            QStringLiteral("Item Shipped Notification"),
            QStringLiteral("  pat@example.com "),
            cc,
            QStringLiteral("6/10/1999 10:00:00 AM"),
            QStringLiteral(" eBay Item: 123456789 - Item shipped for eBay Auction. "),
            QStringLiteral("Dear Pat,\r\n.\r\nThanks again!")};
}

QStringList shownTexts(TestEnvironment& env)
{
    QStringList texts;
    for (const auto& p : env.prompts().shown())
        texts << p.title + u'|' + p.text;
    return texts;
}

} // namespace

class TestNote : public QObject
{
    Q_OBJECT
private slots:
    void sendsTheNote_data();
    void sendsTheNote();
    void failedSendStampsNothing_data();
    void failedSendStampsNothing();
    void closingDuringSendCancels();
    void missingSettings_data();
    void missingSettings();
};

void TestNote::sendsTheNote_data()
{
    QTest::addColumn<NoteKind>("kind");
    QTest::addColumn<QString>("cc");
    QTest::addColumn<QStringList>("recipients");
    QTest::addColumn<int>("stamped");
    const QString pat = QStringLiteral("pat@example.com");
    QTest::newRow("winner, no cc") << NoteKind::WinningConfirmation << "" << QStringList{pat} << 14;
    QTest::newRow("reserve, blank cc")
        << NoteKind::DidntMakeReserve << "   " << QStringList{pat} << 14;
    QTest::newRow("payment, cc") << NoteKind::PaymentReceived << " me@example.com "
                                 << QStringList{pat, "me@example.com"} << 25;
    QTest::newRow("shipped") << NoteKind::ItemShipped << "" << QStringList{pat} << 27;
}

void TestNote::sendsTheNote()
{
    QFETCH(NoteKind, kind);
    QFETCH(QString, cc);
    MailServer server;
    QVERIFY(server.isRunning());
    TestEnvironment env;
    NoteDesk desk(env, server.port());
    const QStringList before = desk.dates();
    QVERIFY(desk.note->showNote(shippedNote(kind, cc)));
    QCOMPARE(env.context().state.noteKind, noteKindName(kind));
    QCOMPARE(desk.edit("txtDate")->text(), QStringLiteral("6/10/1999 10:00:00 AM"));
    QVERIFY(layoutProblems(desk.note).isEmpty());

    // What the seller changes is what goes out.
    desk.note->findChild<QTextEdit*>(QStringLiteral("rtbNote"))->append(QStringLiteral("Bye"));
    QTest::mouseClick(desk.note->findChild<QPushButton*>(QStringLiteral("cmdSend")),
                      Qt::LeftButton);

    QCOMPARE(shownTexts(env), QStringList());
    QCOMPARE(desk.statuses, (QStringList{"Connecting...", "Address...", "Header 0...",
                                         "Header 1...", "Header 2...", "Header 3...", "Header 4...",
                                         "Message...", "Disconnecting...", "Message sent..."}));
    QCOMPARE(desk.note->beepCount(), 1);
    QVERIFY(desk.note->isVisible());
    const QList<ReceivedMail> mails = server.messages();
    QCOMPARE(mails.size(), 1);
    QCOMPARE(mails.first().from, QStringLiteral("seller@example.com"));
    QTEST(mails.first().to, "recipients");
    // Exactly as typed, with the trimmed To and Subject; the dotted line arrives whole.
    QString data = QString::fromUtf8(mails.first().data);
    data.replace(QRegularExpression(QStringLiteral("\nDate: [^\r]+\r")),
                 QStringLiteral("\nDate: *\r"));
    QCOMPARE(data,
             QStringLiteral("From: seller@example.com\r\nTo: pat@example.com\r\nDate: *\r\n"
                            "Subject: eBay Item: 123456789 - Item shipped for eBay Auction.\r\n"
                            "\r\nDear Pat,\r\n.\r\nThanks again!\r\nBye\r\n"));

    // Only the kind's own date moved, to today.
    QFETCH(int, stamped);
    const QStringList after = desk.dates();
    for (int i = 0; i < 3; ++i) {
        const bool mine = kDateFields[i] == stamped;
        QCOMPARE(after.at(i) != before.at(i), mine);
        if (mine)
            QCOMPARE(DateText::fromDisplay(after.at(i)).date(), QDate::currentDate());
    }
}

void TestNote::failedSendStampsNothing_data()
{
    QTest::addColumn<QStringList>("serverOptions");
    QTest::addColumn<QString>("lastStatus");
    QTest::addColumn<int>("code");
    QTest::newRow("refused connection") << QStringList{"refused"} << "Connecting..." << 22207;
    QTest::newRow("refused buyer")
        << QStringList{"--reject-rcpt", "pat@example.com"} << "Address..." << 0;
}

void TestNote::failedSendStampsNothing()
{
    QFETCH(QStringList, serverOptions);
    const bool refused = serverOptions == QStringList{"refused"};
    std::optional<MailServer> server(std::in_place, refused ? QStringList() : serverOptions);
    const int port = server->port();
    if (refused)
        server.reset(); // nobody listens there any more
    TestEnvironment env;
    NoteDesk desk(env, port);
    const QStringList before = desk.dates();
    QVERIFY(desk.note->showNote(shippedNote(NoteKind::PaymentReceived, {})));
    desk.note->cmdSend_Click();

    QTEST(desk.note->statusText(), "lastStatus");
    QCOMPARE(desk.dates(), before);
    QCOMPARE(desk.note->beepCount(), 0);
    QVERIFY(desk.note->isVisible());
    QFETCH(int, code);
    const int shownCode = code ? code : desk.note->lastOutcome().code;
    QCOMPARE(shownTexts(env),
             QStringList{QStringLiteral("Connection failed|") +
                         smtpErrorMessage(shownCode, desk.note->lastOutcome().notice)});
    if (server)
        QCOMPARE(server->messages().size(), 0);
}

void TestNote::closingDuringSendCancels()
{
    MailServer server({QStringLiteral("--hang")});
    TestEnvironment env;
    NoteDesk desk(env, server.port());
    QVERIFY(desk.note->showNote(shippedNote(NoteKind::ItemShipped, {})));
    const QStringList before = desk.dates();
    QTimer::singleShot(300, desk.note, [&] {
        QVERIFY(!desk.note->findChild<QPushButton*>(QStringLiteral("cmdSend"))->isEnabled());
        QVERIFY(!desk.note->findChild<QPushButton*>(QStringLiteral("cmdClose"))->isEnabled());
        desk.note->close();
    });
    QElapsedTimer clock;
    clock.start();
    desk.note->cmdSend_Click();
    QVERIFY(clock.elapsed() < 10000);
    QVERIFY(!desk.note->isVisible());
    QCOMPARE(desk.note->lastOutcome().code, 22219);
    QCOMPARE(shownTexts(env), QStringList());
    QCOMPARE(desk.dates(), before);
}

void TestNote::missingSettings_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("sendFrom");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("opens");
    // clang-format off
    QTest::newRow("no host") << " " << "25" << "a@b.c" << kNoSmtpHost << false;
    QTest::newRow("port 0") << "127.0.0.1" << "0" << "a@b.c" << kNoSmtpPort << false;
    QTest::newRow("no port") << "127.0.0.1" << " " << "a@b.c" << kNoSmtpPort << false;
    QTest::newRow("no sender") << "127.0.0.1" << "25" << "  "
        << "A Send From Email Address must be specified before sending messages.  Please supply "
           "on the Options panel under the Email tab." << true;
    // clang-format on
}

void TestNote::missingSettings()
{
    QFETCH(QString, host);
    QFETCH(QString, port);
    QFETCH(QString, sendFrom);
    QFETCH(bool, opens);
    TestEnvironment env;
    NoteDesk desk(env, 25);
    env.context().state.options.remoteSmtpHost = host;
    env.context().state.options.remoteSmtpPort = port;
    env.store().save(Settings::kApp, Settings::kOptions, QStringLiteral("SendFrom"), sendFrom);
    QFETCH(QString, message);
    ModalWatch options;
    // The server checks stop the window before it shows; the sender check stops the send.
    QCOMPARE(desk.note->showNote(shippedNote(NoteKind::ItemShipped, {})), opens);
    if (opens)
        desk.note->cmdSend_Click();

    QCOMPARE(shownTexts(env), QStringList{kMissingInformationTitle + u'|' + message});
    QCOMPARE(env.prompts().shown().first().icon, PromptIcon::Exclamation);
    QCOMPARE(options.shown, QStringLiteral("frmOptions"));
    QCOMPARE(desk.note->isVisible(), opens);
    QCOMPARE(desk.statuses, QStringList());
}

QTEST_MAIN(TestNote)
#include "tst_frmnote.moc"
