#pragma once

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QVariantList>

#include <array>
#include <future>
#include <memory>
#include <optional>
#include <thread>

struct sqlite3;
struct sqlite3_stmt;

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

// The first column of every row of a statement, read straight from SQLite: for lists of many
// item keys, where going through a QSqlQuery row by row costs more than the search itself.
// With a time limit the statement is stopped once it runs longer.
struct IdScan
{
    QList<qint64> ids;
    QString error;
    bool timedOut = false;
    bool ok() const { return error.isEmpty(); }
};
IdScan scanIds(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {},
               int timeLimitMs = 0);

// How a list of keys is read: in the order the statement lists them, or ascending whatever
// the statement's order (then gathered inside SQLite in one step, about a third faster).
enum class KeyOrder
{
    Listed,
    Ascending
};

// Reads the keys of a statement (as SourceReader::keys does) on a connection of its own and on
// another thread, while the caller goes on building what will need them. With a kept-keys file
// (KeyCache) the keys come from it when it holds them for the database as it is; otherwise they
// are read and, the database file unchanged meanwhile, kept in it for the next start.
//
// Keys the kept file holds take a fraction of a millisecond: that reading is left for the
// caller to start, since a new thread would share a core with whatever else the caller has
// running beside it. readKeptHere() reads them on the calling thread (where it would otherwise
// wait), readKeptAside() on a thread of their own (once a core is free); take() reads them if
// neither was asked for.
class KeyPrefetch
{
public:
    KeyPrefetch(const QSqlDatabase& db, const QString& sql, KeyOrder order,
                const QString& keptFile = {});
    ~KeyPrefetch(); // waits for the reading (and the keeping) to end
    KeyPrefetch(const KeyPrefetch&) = delete;
    KeyPrefetch& operator=(const KeyPrefetch&) = delete;

    // The keys, once (waiting for them): only when sql is the statement read and nothing was
    // committed to the database since the reading was asked for; otherwise nothing, and the
    // caller reads them itself.
    std::optional<QList<qint64>> take(const QSqlDatabase& db, const QString& sql);

    // Start the reading left for the caller, if any (see above); nothing otherwise.
    void readKeptHere();
    void readKeptAside();

private:
    struct Reading;
    bool startAside(const std::shared_ptr<Reading>& reading);

    QString m_sql;
    QString m_version;
    std::future<IdScan> m_keys;
    std::shared_ptr<Reading> m_deferred; // a reading the kept file serves, not yet started
    std::thread m_worker;
};

// Leaves in keptFile the keys sql lists in the database file as it is now (closed by this
// program), reading them only when the file does not hold them already. For the end of a run,
// so the next start finds them.
void keepKeysForNextStart(const QString& databaseFile, const QString& sql, KeyOrder order,
                          const QString& keptFile);

// A statement kept prepared between runs of the same SQL on the same connection (preparing
// can cost more than running it). A connection closed while a statement is kept cannot
// finish closing: keep these no longer than the windows that use the connection.
class KeptStatement
{
public:
    KeptStatement() = default;
    ~KeptStatement();
    KeptStatement(const KeptStatement&) = delete;
    KeptStatement& operator=(const KeptStatement&) = delete;

    // The statement for sql on h, prepared now unless it is the one kept; null (with the
    // reason in error) when it cannot be prepared.
    sqlite3_stmt* prepare(sqlite3* h, const QString& sql, QString* error = nullptr);
    void release();
    bool holds(const sqlite3* h, const QString& sql) const
    {
        return m_statement && h == m_handle && sql == m_sql;
    }

private:
    sqlite3* m_handle = nullptr;
    sqlite3_stmt* m_statement = nullptr;
    QString m_sql;
};

// scanIds with the statement kept prepared: for the same search run again and again.
class KeyScanner
{
public:
    IdScan scan(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {},
                int timeLimitMs = 0);

private:
    KeptStatement m_statement;
};

// What a record set reads on every refresh of its source, the names of the columns and the
// keys of the rows, with the statements kept prepared for the few sources it moves between:
// preparing them cost more than reading a thousand keys.
class SourceReader
{
public:
    // The names of the columns of sql's rows; nothing (the reason in error) when sql cannot
    // be run.
    std::optional<QStringList> columns(const QSqlDatabase& db, const QString& sql, QString& error);
    // The keys sql lists ("SELECT ID FROM ..."), read as the order allows.
    IdScan keys(const QSqlDatabase& db, const QString& sql, KeyOrder order);

private:
    sqlite3_stmt* statement(sqlite3* h, const QString& sql, QString& error);

    std::array<KeptStatement, 8> m_kept; // reused oldest first
    std::size_t m_next = 0;
};

// Reads one row of a statement with a single key parameter straight from SQLite, each value of
// the type a QSqlQuery on the connection would give it: for the row shown on every move, where
// Qt SQL costs several times the read. The statement is kept prepared and is reset after each
// read, so it holds no lock.
class RowReader
{
public:
    // Fills values (cleared first; left empty when there is no such row or the statement
    // fails). Returns whether the row was read.
    bool read(const QSqlDatabase& db, const QString& sql, qint64 key, QVariantList& values);

private:
    KeptStatement m_statement;
};

// The file behind a connection, whose name may be a "file:" URI with options.
QString fileOfConnection(const QSqlDatabase& db);

// Changes whenever rows of the database may have changed, by this connection or another one:
// lets a window keep what it read until then.
QString dataVersion(const QSqlDatabase& db);

// The SQLite connection behind an open Qt connection, for what Qt SQL does not offer (backups,
// progress handlers, user functions); null when it is not an open SQLite connection.
sqlite3* sqliteHandle(const QSqlDatabase& db);
