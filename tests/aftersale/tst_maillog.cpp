// The mail log: a note edited in the note window and sent to a real SMTP server on 127.0.0.1 is
// kept exactly as the server received it, a log that cannot be written leaves the note sent, and
// the ending-auction window lists the item's notes and opens one read-only. That a failed send
// keeps nothing is checked in tst_frmnote.
#include "AfterSaleDesk.h"

#include "aftersale/frmNote.h"
#include "aftersale/frmSentNote.h"

#include <QPlainTextEdit>
#include <QSqlQuery>
#include <QTextEdit>
#include <QTreeWidget>

namespace {

// Two sold items, the ending-auction window on the second, mail going to `port`.
struct LogDesk : Desk
{
    LogDesk(TestEnvironment& env, int port)
        : Desk(env, {{{"EbayID", "111"}}, {{"EbayID", "222"}}}, 1, port)
    {
    }
    // A note window holding the note, edited as the seller would, then sent.
    frmNote* send(NoteKind kind, const QString& cc, const QString& subject, const QString& body)
    {
        auto* note = new frmNote(env.context(), ending, &owner);
        note->setAttribute(Qt::WA_DeleteOnClose);
        note->showNote({kind, u"Caption"_s, u" pat@example.com "_s, QString(), u"today"_s,
                        u"composed subject"_s, u"composed body"_s});
        auto* subjectBox = child<QLineEdit>(note, u"txtSubject"_s);
        subjectBox->selectAll();
        subjectBox->insert(subject); // typed over the selection; keyClicks takes Latin-1 only
        child<QLineEdit>(note, u"txtCarbon"_s)->setText(cc);
        child<QTextEdit>(note, u"rtbNote"_s)->setPlainText(body);
        note->cmdSend_Click();
        return note;
    }
    QStringList listed() const
    {
        QStringList rows;
        QTreeWidget& list = ending->sentNotes();
        for (int i = 0; i < list.topLevelItemCount(); ++i)
            rows << list.topLevelItem(i)->text(1) + u'|' + list.topLevelItem(i)->text(2);
        return rows;
    }
};

// clang-format off
struct Mail { NoteKind kind; QString cc, subject, body; }; // typed over the composed note
// clang-format on

} // namespace

class TestMailLog : public QObject
{
    Q_OBJECT
private slots:
    void keepsWhatTheServerReceived_data()
    {
        QTest::addColumn<Mail>("row");
        // clang-format off
        QTest::newRow("plain, lone LF and a dot line")
            << Mail{NoteKind::WinningConfirmation, "", " Edited subject ", "Dear Pat,\n.\nline two\r\n   Total: $1.00\n"};
        QTest::newRow("cc, no final break") << Mail{NoteKind::PaymentReceived, " me@example.com ", "Paid", "Thanks"};
        QTest::newRow("non-ASCII subject and body")
            << Mail{NoteKind::ItemShipped, "", "Grüße – verschickt", "Schöne Grüße\n\n€ 5,00"};
        // clang-format on
    }
    void keepsWhatTheServerReceived()
    {
        QFETCH(Mail, row);
        MailServer server;
        QVERIFY(server.isRunning());
        TestEnvironment env;
        LogDesk desk(env, server.port());
        QVERIFY(desk.send(row.kind, row.cc, row.subject, row.body)->lastOutcome().sent);
        QCOMPARE(env.prompts().shown().size(), 0);

        const QList<ReceivedMail> mails = server.messages();
        QCOMPARE(mails.size(), 1);
        const ReceivedMail& got = mails.at(0);
        QSqlQuery q(env.context().itemDatabase);
        QVERIFY(
            q.exec(u"SELECT ItemID, Kind, Recipients, Subject, Body FROM MailLog ORDER BY ID"_s));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toLongLong(), desk.ids.at(1));
        QCOMPARE(q.value(1).toString(), noteKindName(row.kind));
        QCOMPARE(q.value(2).toString(), got.to.join(u'\n'));
        QCOMPARE(q.value(3).toString(), got.subject);
        // The body as it came over the wire: everything after the header's empty line.
        const qsizetype headerEnd = got.data.indexOf("\r\n\r\n");
        QVERIFY(headerEnd > 0);
        QCOMPARE(q.value(4).toString().toUtf8(), got.data.mid(headerEnd + 4));
        // The seller's edits, not the composed note, went out.
        QVERIFY(got.subject.contains(row.subject.trimmed()));
        QVERIFY(!q.next()); // one row
    }

    void logFailureLeavesTheNoteSent()
    {
        MailServer server;
        QVERIFY(server.isRunning());
        TestEnvironment env;
        // A table of that name the log cannot write to.
        QSqlQuery(env.context().itemDatabase)
            .exec(u"CREATE TABLE MailLog (ID INTEGER PRIMARY KEY, Other TEXT)"_s);
        LogDesk desk(env, server.port());
        const QPointer<frmNote> note = desk.send(NoteKind::WinningConfirmation, "", "Hi", "Body");
        QVERIFY(note->lastOutcome().sent);
        QCOMPARE(server.messages().size(), 1);
        QCOMPARE(note->statusText(), u"Message sent..."_s);
        QVERIFY(!desk.ending->fieldText(14).isEmpty()); // Date Contacted stamped all the same
        QCOMPARE(shownTexts(env).size(), 1);
        QVERIFY(shownTexts(env).at(0).startsWith(
            kMailLogTitle + u"|The note was sent, but it could not be kept in the mail log"_s));
        // The list says the log cannot be read, without a box of its own.
        QCOMPARE(desk.listed().size(), 1);
        QVERIFY(desk.listed().at(0).startsWith(kMailLogTitle + u'|'));
    }

    void endingWindowListsAndOpensNotes()
    {
        MailServer server;
        QVERIFY(server.isRunning());
        TestEnvironment env;
        LogDesk desk(env, server.port());
        desk.send(NoteKind::WinningConfirmation, "", "You won", "Dear Pat,\nyou won.");
        desk.send(NoteKind::ItemShipped, "me@example.com", "On its way", "Shipped\ntoday.");
        const QStringList both{"Notify Winner|You won", "Item Shipped|On its way"};
        QCOMPARE(desk.listed(), both);

        // The list follows the record: the other item has none, coming back shows them again.
        desk.ending->data().findFirst(u"ID = %1"_s.arg(desk.ids.at(0)));
        QCOMPARE(desk.listed(), QStringList());
        desk.ending->data().findFirst(u"ID = %1"_s.arg(desk.ids.at(1)));
        QCOMPARE(desk.listed(), both);

        // Enter on the second row opens it, read-only, with its body as sent.
        QTreeWidget& list = desk.ending->sentNotes();
        list.setFocus();
        list.setCurrentItem(list.topLevelItem(1));
        QTest::keyClick(list.viewport(), Qt::Key_Return);
        auto* viewer = child<frmSentNote>(desk.ending, u"frmSentNote"_s);
        QVERIFY(viewer);
        const auto line = [&](const char* name) { return child<QLineEdit>(viewer, name); };
        QCOMPARE(line("txtTo")->text(), u"pat@example.com, me@example.com"_s);
        QCOMPARE(line("txtSubject")->text(), u"On its way"_s);
        auto* body = child<QPlainTextEdit>(viewer, u"txtBody"_s);
        QCOMPARE(body->toPlainText(), u"Shipped\ntoday.\n"_s); // as the server got it
        QVERIFY(body->isReadOnly() && line("txtTo")->isReadOnly() &&
                line("txtSubject")->isReadOnly() && line("txtDate")->isReadOnly());
        QVERIFY(!line("txtDate")->text().isEmpty());
        const QPointer<frmSentNote> closed = viewer;
        click(viewer, u"cmdClose"_s);
        QTRY_VERIFY(!closed);

        // A double-click opens the first.
        const QRect first = list.visualItemRect(list.topLevelItem(0));
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, first.center());
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, first.center());
        viewer = child<frmSentNote>(desk.ending, u"frmSentNote"_s);
        QVERIFY(viewer);
        QCOMPARE(child<QLineEdit>(viewer, u"txtSubject"_s)->text(), u"You won"_s);
    }
};

QTEST_MAIN(TestMailLog)
#include "tst_maillog.moc"
