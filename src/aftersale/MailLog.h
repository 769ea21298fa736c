#pragma once

#include "aftersale/NoteComposer.h"

#include <QDateTime>
#include <QList>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

#include <optional>

// One note as it went out: when, which of the four notes, and what the server was handed.
struct LoggedNote
{
    qint64 id = 0; // the row's key; 0 until stored
    qint64 itemId = 0;
    QDateTime sentAt;
    NoteKind kind = NoteKind::WinningConfirmation;
    QString recipients; // the envelope recipients, one per line
    QString subject;
    QString body; // CR LF line breaks, as sent
};

// The notes sent for each item, kept in tb2.mdb's MailLog table beside Items. The table and its
// index are made on first use, so a database made before the log existed simply gains them.
// Rows stay when their item is deleted: item IDs are never reused, and what was written to a
// buyer is worth keeping.
class MailLog
{
public:
    explicit MailLog(QSqlDatabase db) : m_db(std::move(db)) {}

    // Stores the note and returns its new id, or nothing with the reason in error().
    std::optional<qint64> add(const LoggedNote& note);
    // The item's notes, oldest first, without their bodies (the list shows the rest).
    std::optional<QList<LoggedNote>> forItem(qint64 itemId);
    // One note in full; nothing when there is no such row or it could not be read.
    std::optional<LoggedNote> note(qint64 id);

    QString error() const { return m_error; }

private:
    bool ensureTable();
    bool exists();
    bool fail(const QString& why);
    // Runs a read with one key; false with the reason in error() when it fails.
    bool read(QSqlQuery& q, const QString& sql, qint64 key);

    QSqlDatabase m_db;
    QString m_error;
};

// The note's kind as the ending-auction window's Email menu names it ("Notify Winner", ...).
QString noteKindLabel(NoteKind kind);
