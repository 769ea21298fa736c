#include "aftersale/MailLog.h"

#include <QSqlError>
#include <QSqlQuery>

namespace {

const QString kCreateTable = QStringLiteral("CREATE TABLE IF NOT EXISTS MailLog ("
                                            " ID INTEGER PRIMARY KEY AUTOINCREMENT,"
                                            " ItemID INTEGER NOT NULL,"
                                            " SentAt TEXT NOT NULL,"
                                            " Kind TEXT NOT NULL,"
                                            " Recipients TEXT NOT NULL,"
                                            " Subject TEXT NOT NULL,"
                                            " Body TEXT NOT NULL)");
const QString kCreateIndex =
    QStringLiteral("CREATE INDEX IF NOT EXISTS MailLogItem ON MailLog (ItemID, SentAt)");
// Dates are kept as the database keeps all dates: ISO text, local time.
const QString kDateForm = QStringLiteral("yyyy-MM-dd HH:mm:ss");

} // namespace

QString noteKindLabel(NoteKind kind)
{
    switch (kind) {
    case NoteKind::WinningConfirmation:
        return QStringLiteral("Notify Winner");
    case NoteKind::PaymentReceived:
        return QStringLiteral("Payment Received");
    case NoteKind::ItemShipped:
        return QStringLiteral("Item Shipped");
    case NoteKind::DidntMakeReserve:
        return QStringLiteral("Didn't Make Reserve");
    }
    return {};
}

bool MailLog::fail(const QString& why)
{
    m_error = why;
    return false;
}

bool MailLog::ensureTable()
{
    m_error.clear();
    QSqlQuery q(m_db);
    if (!q.exec(kCreateTable) || !q.exec(kCreateIndex))
        return fail(q.lastError().text());
    return true;
}

std::optional<qint64> MailLog::add(const LoggedNote& note)
{
    if (!ensureTable())
        return std::nullopt;
    QSqlQuery q(m_db);
    q.prepare(QStringLiteral("INSERT INTO MailLog (ItemID, SentAt, Kind, Recipients, Subject, "
                             "Body) VALUES (?, ?, ?, ?, ?, ?)"));
    q.addBindValue(note.itemId);
    q.addBindValue(note.sentAt.toString(kDateForm));
    q.addBindValue(noteKindName(note.kind));
    q.addBindValue(note.recipients);
    q.addBindValue(note.subject);
    q.addBindValue(note.body);
    if (!q.exec()) {
        fail(q.lastError().text());
        return std::nullopt;
    }
    return q.lastInsertId().toLongLong();
}

bool MailLog::exists()
{
    m_error.clear();
    return m_db.tables().contains(QStringLiteral("MailLog"), Qt::CaseInsensitive);
}

namespace {

// The columns every read asks for, in this order; the body only when shown in full.
const QString kColumns = QStringLiteral("ID, ItemID, SentAt, Kind, Recipients, Subject");

LoggedNote noteFromRow(const QSqlQuery& q, bool withBody)
{
    LoggedNote n;
    n.id = q.value(0).toLongLong();
    n.itemId = q.value(1).toLongLong();
    n.sentAt = QDateTime::fromString(q.value(2).toString(), kDateForm);
    n.kind = noteKindFromName(q.value(3).toString()).value_or(NoteKind::WinningConfirmation);
    n.recipients = q.value(4).toString();
    n.subject = q.value(5).toString();
    if (withBody)
        n.body = q.value(6).toString();
    return n;
}

} // namespace

bool MailLog::read(QSqlQuery& q, const QString& sql, qint64 key)
{
    m_error.clear();
    q.setForwardOnly(true);
    if (q.prepare(sql)) {
        q.addBindValue(key);
        if (q.exec())
            return true;
    }
    return fail(q.lastError().text());
}

std::optional<QList<LoggedNote>> MailLog::forItem(qint64 itemId)
{
    QSqlQuery q(m_db);
    if (!read(q,
              QLatin1String("SELECT ") + kColumns +
                  QLatin1String(" FROM MailLog WHERE ItemID = ? ORDER BY SentAt, ID"),
              itemId)) {
        // Reading leaves the database as it is: no table yet is no notes yet.
        const QString why = m_error;
        if (m_db.isOpen() && !exists())
            return QList<LoggedNote>();
        fail(m_db.isOpen() ? why : QStringLiteral("The database is not open."));
        return std::nullopt;
    }
    QList<LoggedNote> notes;
    while (q.next())
        notes << noteFromRow(q, false);
    return notes;
}

std::optional<LoggedNote> MailLog::note(qint64 id)
{
    QSqlQuery q(m_db);
    if (!read(q,
              QLatin1String("SELECT ") + kColumns +
                  QLatin1String(", Body FROM MailLog WHERE ID = ?"),
              id)) {
        if (!exists())
            fail(QStringLiteral("There is no mail log in the database."));
        return std::nullopt;
    }
    if (!q.next()) {
        fail(QStringLiteral("The note is no longer in the mail log."));
        return std::nullopt;
    }
    return noteFromRow(q, true);
}
