#pragma once

#include <QSqlDatabase>
#include <QString>

// Result of opening the item database; errorNumber follows the numbering the program has
// always reported (3024: file not found).
struct DatabaseOpenResult
{
    QSqlDatabase database;
    int errorNumber = 0;
    QString source;
    QString description;
    bool ok() const { return errorNumber == 0; }
};

inline constexpr int kErrFileNotFound = 3024;
inline constexpr int kErrNotADatabase = 3343;
inline constexpr int kErrNoItemsTable = 3078;

// Opens an existing database file (never creates one) under the given connection name, with the
// Jet LIKE installed and write-ahead logging on.
DatabaseOpenResult openDatabase(const QString& path, const QString& connectionName);

// Creates a database from a schema script when the file does not exist yet; an existing file is
// left alone. Returns an empty text on success, otherwise what went wrong.
QString createDatabaseIfMissing(const QString& path, const QString& schemaScript);

// Replaces like() on an already open SQLite connection with the Jet LIKE. Fails while a
// statement of the connection is still pending, so call it before running any.
bool installJetLike(const QSqlDatabase& db);
