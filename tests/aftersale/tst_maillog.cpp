// The mail log: a note edited in the note window and sent to a real SMTP server on 127.0.0.1 is
// kept exactly as the server received it, a failed send keeps nothing, a log that cannot be
// written leaves the note sent, and the ending-auction window lists the item's notes and opens
// one read-only.
#include "../support/LayoutCheck.h"
#include "../support/SmtpFixture.h"
#include "../support/TestEnvironment.h"

#include "aftersale/MailLog.h"
#include "aftersale/frmEndingAuction.h"
#include "aftersale/frmNote.h"
#include "aftersale/frmSentNote.h"
#include "aftersale/texts.h"
#include "settings/SettingsCatalogue.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QSqlQuery>
#include <QStatusBar>
#include <QTextEdit>
#include <QTreeWidget>
#include <QtTest>

using namespace AfterSaleTexts;

namespace {

struct Row
{
    qint64 itemId;
    QString kind, recipients, subject;
    QByteArray body;
};

QList<Row> loggedRows(const QSqlDatabase& db)
{
    QList<Row> rows;
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral(
            "SELECT ItemID, Kind, Recipients, Subject, Body FROM MailLog ORDER BY ID")))
        return rows;
    while (q.next())
        rows << Row{q.value(0).toLongLong(), q.value(1).toString(), q.value(2).toString(),
                    q.value(3).toString(), q.value(4).toString().toUtf8()};
    return rows;
}

// Two sold items, the ending-auction window on the second, mail going to `port`.
struct Desk
{
    Desk(TestEnvironment& env, int port) : env(env)
    {
        ids = env.addItems({{{"EbayID", "111"}}, {{"EbayID", "222"}}});
        AppState& s = env.context().state;
        s.currentItemId = ids.at(1);
        s.options.remoteSmtpHost = QStringLiteral("127.0.0.1");
        s.options.remoteSmtpPort = QString::number(port);
        env.store().save(Settings::kApp, Settings::kOptions, QStringLiteral("SendFrom"),
                         QStringLiteral("seller@example.com"));
        ending = frmEndingAuction::openEndingAuction(env.context(), {}, owner);
    }
    // A note window holding the note, edited as the seller would, then sent.
    frmNote* send(NoteKind kind, const QString& cc, const QString& subject, const QString& body)
    {
        auto* note = new frmNote(env.context(), ending, &owner);
        note->setAttribute(Qt::WA_DeleteOnClose);
        note->showNote({kind, QStringLiteral("Caption"), QStringLiteral(" pat@example.com "),
                        QString(), QStringLiteral("today"), QStringLiteral("composed subject"),
                        QStringLiteral("composed body")});
        auto* subjectBox = note->findChild<QLineEdit*>(QStringLiteral("txtSubject"));
        subjectBox->selectAll();
        subjectBox->insert(subject); // typed over the selection; keyClicks takes Latin-1 only
        note->findChild<QLineEdit*>(QStringLiteral("txtCarbon"))->setText(cc);
        note->findChild<QTextEdit*>(QStringLiteral("rtbNote"))->setPlainText(body);
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

    TestEnvironment& env;
    QWidget owner;
    QPointer<frmEndingAuction> ending;
    QList<qint64> ids;
};

} // namespace

class TestMailLog : public QObject
{
    Q_OBJECT
private slots:
    void keepsWhatTheServerReceived_data();
    void keepsWhatTheServerReceived();
    void failedSendKeepsNothing();
    void logFailureLeavesTheNoteSent();
    void endingWindowListsAndOpensNotes();
};

void TestMailLog::keepsWhatTheServerReceived_data()
{
    QTest::addColumn<NoteKind>("kind");
    QTest::addColumn<QString>("cc");
    QTest::addColumn<QString>("subject");
    QTest::addColumn<QString>("body");
    // clang-format off
    QTest::newRow("plain, lone LF and a dot line") << NoteKind::WinningConfirmation << ""
        << " Edited subject " << "Dear Pat,\n.\nline two\r\n   Total: $1.00\n";
    QTest::newRow("cc, no final break") << NoteKind::PaymentReceived << " me@example.com "
        << "Paid" << "Thanks";
    QTest::newRow("non-ASCII subject and body") << NoteKind::ItemShipped << ""
        << "Grüße – verschickt" << "Schöne Grüße\n\n€ 5,00";
    // clang-format on
}

void TestMailLog::keepsWhatTheServerReceived()
{
    MailServer server;
    QVERIFY(server.isRunning());
    TestEnvironment env;
    Desk desk(env, server.port());
    QFETCH(NoteKind, kind);
    QFETCH(QString, cc);
    QFETCH(QString, subject);
    QFETCH(QString, body);
    const QPointer<frmNote> note = desk.send(kind, cc, subject, body);
    QVERIFY(note->lastOutcome().sent);
    QCOMPARE(env.prompts().shown().size(), 0);

    const QList<ReceivedMail> mails = server.messages();
    QCOMPARE(mails.size(), 1);
    const ReceivedMail& got = mails.at(0);
    const QList<Row> rows = loggedRows(env.context().itemDatabase);
    QCOMPARE(rows.size(), 1);
    const Row& row = rows.at(0);
    QCOMPARE(row.itemId, desk.ids.at(1));
    QCOMPARE(row.kind, noteKindName(kind));
    QCOMPARE(row.recipients, got.to.join(u'\n'));
    QCOMPARE(row.subject, got.subject);
    // The body as it came over the wire: everything after the header's empty line.
    const qsizetype headerEnd = got.data.indexOf("\r\n\r\n");
    QVERIFY(headerEnd > 0);
    QCOMPARE(row.body, got.data.mid(headerEnd + 4));
    // The seller's edits, not the composed note, went out.
    QVERIFY(row.subject.contains(subject.trimmed()));
}

void TestMailLog::failedSendKeepsNothing()
{
    MailServer server({"--reject-rcpt", "pat@example.com"});
    QVERIFY(server.isRunning());
    TestEnvironment env;
    Desk desk(env, server.port());
    const QPointer<frmNote> note = desk.send(NoteKind::WinningConfirmation, "", "Hi", "Body");
    QVERIFY(!note->lastOutcome().sent); // nothing arrived: tst_frmnote
    QCOMPARE(desk.listed(), QStringList());
    // Reading the list made no table: the database stays as it was until a note goes out.
    QVERIFY(!env.context().itemDatabase.tables().contains(QStringLiteral("MailLog")));
}

void TestMailLog::logFailureLeavesTheNoteSent()
{
    MailServer server;
    QVERIFY(server.isRunning());
    TestEnvironment env;
    // A table of that name the log cannot write to.
    QSqlQuery(env.context().itemDatabase)
        .exec(QStringLiteral("CREATE TABLE MailLog (ID INTEGER PRIMARY KEY, Other TEXT)"));
    Desk desk(env, server.port());
    const QPointer<frmNote> note = desk.send(NoteKind::WinningConfirmation, "", "Hi", "Body");
    QVERIFY(note->lastOutcome().sent);
    QCOMPARE(server.messages().size(), 1);
    QCOMPARE(note->statusText(), QStringLiteral("Message sent..."));
    QVERIFY(!desk.ending->fieldText(14).isEmpty()); // Date Contacted stamped all the same
    QCOMPARE(env.prompts().shown().size(), 1);
    // The list says the log cannot be read, without a box of its own.
    QCOMPARE(desk.listed().size(), 1);
    QVERIFY(desk.listed().at(0).startsWith(kMailLogTitle + u'|'));
    QCOMPARE(env.prompts().shown().at(0).title, kMailLogTitle);
    QVERIFY(env.prompts().shown().at(0).text.startsWith(
        QStringLiteral("The note was sent, but it could not be kept in the mail log")));
}

void TestMailLog::endingWindowListsAndOpensNotes()
{
    MailServer server;
    QVERIFY(server.isRunning());
    TestEnvironment env;
    Desk desk(env, server.port());
    desk.send(NoteKind::WinningConfirmation, "", "You won", "Dear Pat,\nyou won.");
    desk.send(NoteKind::ItemShipped, "me@example.com", "On its way", "Shipped\ntoday.");
    const QStringList both{"Notify Winner|You won", "Item Shipped|On its way"};
    QCOMPARE(desk.listed(), both);

    // The list follows the record: the other item has none, coming back shows them again.
    desk.ending->data().findFirst(QStringLiteral("ID = %1").arg(desk.ids.at(0)));
    QCOMPARE(desk.listed(), QStringList());
    desk.ending->data().findFirst(QStringLiteral("ID = %1").arg(desk.ids.at(1)));
    QCOMPARE(desk.listed(), both);

    QTreeWidget& list = desk.ending->sentNotes();
    const QStringList problems = layoutProblems(desk.ending->centralWidget());
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
    QVERIFY(
        desk.ending->grab().save(QDir::temp().filePath(QStringLiteral("tallybid-maillog.png"))));

    // Enter on the second row opens it, read-only, with its body as sent.
    list.setFocus();
    list.setCurrentItem(list.topLevelItem(1));
    QTest::keyClick(list.viewport(), Qt::Key_Return);
    auto* viewer = desk.ending->findChild<frmSentNote*>(QStringLiteral("frmSentNote"));
    QVERIFY(viewer);
    const auto line = [&](const char* name) {
        return viewer->findChild<QLineEdit*>(QLatin1String(name));
    };
    QCOMPARE(line("txtTo")->text(), QStringLiteral("pat@example.com, me@example.com"));
    QCOMPARE(line("txtSubject")->text(), QStringLiteral("On its way"));
    auto* body = viewer->findChild<QPlainTextEdit*>(QStringLiteral("txtBody"));
    QCOMPARE(body->toPlainText(), QStringLiteral("Shipped\ntoday.\n")); // as the server got it
    QVERIFY(body->isReadOnly() && line("txtTo")->isReadOnly() && line("txtSubject")->isReadOnly() &&
            line("txtDate")->isReadOnly());
    QVERIFY(!line("txtDate")->text().isEmpty());
    QVERIFY(viewer->grab().save(QDir::temp().filePath(QStringLiteral("tallybid-sentnote.png"))));
    const QPointer<frmSentNote> closed = viewer;
    QTest::mouseClick(viewer->findChild<QPushButton*>(QStringLiteral("cmdClose")), Qt::LeftButton);
    QTRY_VERIFY(!closed);

    // A double-click opens the first.
    const QRect first = list.visualItemRect(list.topLevelItem(0));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, first.center());
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, first.center());
    viewer = desk.ending->findChild<frmSentNote*>(QStringLiteral("frmSentNote"));
    QVERIFY(viewer);
    QCOMPARE(viewer->findChild<QLineEdit*>(QStringLiteral("txtSubject"))->text(),
             QStringLiteral("You won"));
}

QTEST_MAIN(TestMailLog)
#include "tst_maillog.moc"
