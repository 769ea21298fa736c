// The note window against a real SMTP server on 127.0.0.1: what arrives, what the status bar
// shows on the way, which date the ending-auction window gets, and the checks before sending.
#include "AfterSaleDesk.h"

#include "aftersale/frmNote.h"
#include "platform/DateText.h"
#include "platform/SmtpErrors.h"

#include <QRegularExpression>
#include <QStatusBar>
#include <QTextEdit>
#include <QTreeWidget>

namespace {

const int kDateFields[] = {14, 25, 27}; // Date Contacted, Payment Rec'd, Item Shipped

// A sold item, its ending-auction window and a note window in front of it, mailing to `port`.
struct NoteDesk : Desk
{
    NoteDesk(TestEnvironment& env, int port)
        : Desk(env, {{{"EbayID", "123456789"}}}, 0, port),
          note(new frmNote(env.context(), ending, &owner))
    {
        QObject::connect(child<QStatusBar>(note, u"status"_s), &QStatusBar::messageChanged,
                         [this](const QString& text) {
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
    bool show(NoteKind kind, const QString& cc = {}) const
    {
        return note->showNote({kind, u"Item Shipped Notification"_s, u"  pat@example.com "_s, cc,
                               u"6/10/1999 10:00:00 AM"_s,
                               u" eBay Item: 123456789 - Item shipped for eBay Auction. "_s,
                               u"Dear Pat,\r\n.\r\nThanks again!"_s});
    }

    QPointer<frmNote> note;
    QStringList statuses;
};

// clang-format off
struct Sent { NoteKind kind; QString cc; QStringList recipients; int stamped; }; // the date stamped
// clang-format on
// The mail settings a note is tried with, the message shown and whether the note window opens.
// clang-format off
struct Missing { QString host, port, sendFrom, message; bool opens; };
// clang-format on

} // namespace

class TestNote : public QObject
{
    Q_OBJECT
private slots:
    void sendsTheNote_data()
    {
        QTest::addColumn<Sent>("row");
        const QString pat = u"pat@example.com"_s;
        QTest::newRow("winner, no cc") << Sent{NoteKind::WinningConfirmation, "", {pat}, 14};
        QTest::newRow("reserve, blank cc") << Sent{NoteKind::DidntMakeReserve, "   ", {pat}, 14};
        QTest::newRow("payment, cc")
            << Sent{NoteKind::PaymentReceived, " me@example.com ", {pat, "me@example.com"}, 25};
        QTest::newRow("shipped") << Sent{NoteKind::ItemShipped, "", {pat}, 27};
    }
    void sendsTheNote()
    {
        QFETCH(Sent, row);
        MailServer server;
        QVERIFY(server.isRunning());
        TestEnvironment env;
        NoteDesk desk(env, server.port());
        const QStringList before = desk.dates();
        QVERIFY(desk.show(row.kind, row.cc));
        QCOMPARE(env.context().state.noteKind, noteKindName(row.kind));
        QCOMPARE(child<QLineEdit>(desk.note, u"txtDate"_s)->text(), u"6/10/1999 10:00:00 AM"_s);

        // What the seller changes is what goes out.
        child<QTextEdit>(desk.note, u"rtbNote"_s)->append(u"Bye"_s);
        click(desk.note, u"cmdSend"_s);

        QCOMPARE(shownTexts(env), QStringList());
        QCOMPARE(desk.statuses,
                 (QStringList{"Connecting...", "Address...", "Header 0...", "Header 1...",
                              "Header 2...", "Header 3...", "Header 4...", "Message...",
                              "Disconnecting...", "Message sent..."}));
        QCOMPARE(desk.note->beepCount(), 1);
        QVERIFY(desk.note->isVisible());
        const QList<ReceivedMail> mails = server.messages();
        QCOMPARE(mails.size(), 1);
        QCOMPARE(mails.first().from, u"seller@example.com"_s);
        QCOMPARE(mails.first().to, row.recipients);
        // Exactly as typed, with the trimmed To and Subject and the sender as stored (the
        // envelope above has it trimmed); the dotted line arrives whole.
        QString data = QString::fromUtf8(mails.first().data);
        data.replace(QRegularExpression(u"\nDate: [^\r]+\r"_s), u"\nDate: *\r"_s);
        QCOMPARE(data, u"From:  seller@example.com \r\nTo: pat@example.com\r\nDate: *\r\n"
                       "Subject: eBay Item: 123456789 - Item shipped for eBay Auction.\r\n"
                       "\r\nDear Pat,\r\n.\r\nThanks again!\r\nBye\r\n"_s);

        // Only the kind's own date moved, to today.
        const QStringList after = desk.dates();
        for (int i = 0; i < 3; ++i) {
            const bool mine = kDateFields[i] == row.stamped;
            QCOMPARE(after.at(i) != before.at(i), mine);
            if (mine)
                QCOMPARE(DateText::fromDisplay(after.at(i)).date(), QDate::currentDate());
        }
    }

    // A send that fails, or that the seller stops by closing the window, stamps no date, logs
    // nothing and lists nothing; a failure says why in a box. Every failure takes the same way
    // through the window: the mail session tells them apart.
    void failedSendStampsNothing_data()
    {
        QTest::addColumn<QStringList>("serverOptions");
        QTest::addColumn<int>("code");
        QTest::newRow("refused buyer") << QStringList{"--reject-rcpt", "pat@example.com"} << 22215;
        QTest::newRow("closed during the send") << QStringList{"--hang"} << 22219;
    }
    void failedSendStampsNothing()
    {
        QFETCH(QStringList, serverOptions);
        QFETCH(int, code);
        const bool closed = serverOptions == QStringList{"--hang"};
        MailServer server(serverOptions);
        TestEnvironment env;
        NoteDesk desk(env, server.port());
        const QStringList before = desk.dates();
        QVERIFY(desk.show(closed ? NoteKind::ItemShipped : NoteKind::PaymentReceived));
        if (closed)
            QTimer::singleShot(300, desk.note, [&] {
                QVERIFY(!child<QPushButton>(desk.note, u"cmdSend"_s)->isEnabled());
                QVERIFY(!child<QPushButton>(desk.note, u"cmdClose"_s)->isEnabled());
                desk.note->close();
            });
        QElapsedTimer clock;
        clock.start();
        desk.note->cmdSend_Click();
        QVERIFY(clock.elapsed() < 10000);

        QCOMPARE(desk.dates(), before);
        QCOMPARE(desk.note->isVisible(), !closed);
        const MailOutcome& outcome = desk.note->lastOutcome();
        QVERIFY(!outcome.sent);
        QCOMPARE(outcome.code, code);
        if (!closed) {
            QCOMPARE(desk.note->statusText(), u"Address..."_s);
            QCOMPARE(desk.note->beepCount(), 0);
        }
        QCOMPARE(shownTexts(env), closed ? QStringList()
                                         : QStringList{"Connection failed|"_L1 +
                                                       smtpErrorMessage(code, outcome.notice)});
        QCOMPARE(server.messages().size(), 0);
        QCOMPARE(desk.ending->sentNotes().topLevelItemCount(), 0);
        // The database stays as it was until a note goes out: no mail log table.
        QVERIFY(!env.context().itemDatabase.tables().contains(u"MailLog"_s));
    }

    void missingSettings_data()
    {
        QTest::addColumn<Missing>("row");
        // clang-format off
        QTest::newRow("no host") << Missing{" ", "25", "a@b.c", kNoSmtpHost, false};
        QTest::newRow("port 0") << Missing{"127.0.0.1", "0", "a@b.c", kNoSmtpPort, false};
        QTest::newRow("no port") << Missing{"127.0.0.1", " ", "a@b.c", kNoSmtpPort, false};
        QTest::newRow("no sender") << Missing{"127.0.0.1", "25", "  ",
            "A Send From Email Address must be specified before sending messages.  Please supply "
            "on the Options panel under the Email tab.", true};
        // clang-format on
    }
    void missingSettings()
    {
        QFETCH(Missing, row);
        TestEnvironment env;
        NoteDesk desk(env, 25);
        env.context().state.options.remoteSmtpHost = row.host;
        env.context().state.options.remoteSmtpPort = row.port;
        env.store().save(Settings::kApp, Settings::kOptions, u"SendFrom"_s, row.sendFrom);
        ModalWatch options;
        // The server checks stop the window before it shows; the sender check stops the send.
        QCOMPARE(desk.show(NoteKind::ItemShipped), row.opens);
        if (row.opens)
            desk.note->cmdSend_Click();

        QCOMPARE(shownTexts(env), QStringList{kMissingInformationTitle + u'|' + row.message});
        QCOMPARE(env.prompts().shown().first().icon, PromptIcon::Exclamation);
        QCOMPARE(options.shown, u"frmOptions"_s);
        QCOMPARE(desk.note->isVisible(), row.opens);
        QCOMPARE(desk.statuses, QStringList());
    }
};

QTEST_MAIN(TestNote)
#include "tst_frmnote.moc"
