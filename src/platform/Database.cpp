#include "platform/Database.h"

#include "platform/JetSql.h"
#include "platform/KeyCache.h"
#include "platform/SideThread.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QUrl>
#include <QUuid>
#include <algorithm>
#include <future>
#include <memory>
#include <optional>
#include <sqlite3.h>
#include <system_error>

namespace {

void freePattern(void* pattern)
{
    delete static_cast<JetLikePattern*>(pattern);
}

// like(pattern, value): the pattern is compiled once per statement and kept with it, since a
// search asks the same pattern of every row.
void likeFunction(sqlite3_context* ctx, int argc, sqlite3_value** argv)
{
    if (argc < 2 || sqlite3_value_type(argv[0]) == SQLITE_NULL ||
        sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    auto* pattern = static_cast<JetLikePattern*>(sqlite3_get_auxdata(ctx, 0));
    std::optional<JetLikePattern> once; // for a pattern SQLite will not keep (not a constant)
    if (!pattern) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
        const QString source = QString::fromUtf8(text, sqlite3_value_bytes(argv[0]));
        sqlite3_set_auxdata(ctx, 0, new JetLikePattern(source), freePattern);
        pattern = static_cast<JetLikePattern*>(sqlite3_get_auxdata(ctx, 0));
        if (!pattern)
            pattern = &once.emplace(source);
    }
    const auto* value = reinterpret_cast<const char*>(sqlite3_value_text(argv[1]));
    sqlite3_result_int(ctx, pattern->matches(value, sqlite3_value_bytes(argv[1])) ? 1 : 0);
}

// tb_keys(key, list): appends every key to the list bound as a pointer. One step of SQLite
// then gathers a whole key list, where stepping out for each row costs about half again.
constexpr char kKeyListType[] = "tb_key_list"; // the pointer type SQLite checks
constexpr char kCollectKeys[] = "tb_keys";

void collectKey(sqlite3_context*, int argc, sqlite3_value** argv)
{
    auto* keys = argc == 2
                     ? static_cast<QList<qint64>*>(sqlite3_value_pointer(argv[1], kKeyListType))
                     : nullptr;
    if (keys)
        keys->append(sqlite3_value_int64(argv[0])); // NULL as 0, as a row by row read gives it
}

void keysCollected(sqlite3_context* ctx)
{
    sqlite3_result_null(ctx);
}

bool installKeyCollector(sqlite3* h)
{
    return sqlite3_create_function_v2(h, kCollectKeys, 2, SQLITE_UTF8, nullptr, nullptr, collectKey,
                                      keysCollected, nullptr) == SQLITE_OK;
}

} // namespace

sqlite3* sqliteHandle(const QSqlDatabase& db)
{
    if (!db.isOpen())
        return nullptr;
    const QVariant v = db.driver()->handle();
    if (!v.isValid() || qstrcmp(v.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(v.constData());
}

namespace {

int stopAfterDeadline(void* deadline)
{
    return static_cast<QDeadlineTimer*>(deadline)->hasExpired() ? 1 : 0;
}

} // namespace

namespace {

IdScan notOpen()
{
    IdScan result;
    result.error = QStringLiteral("the item database is not open");
    return result;
}

using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>;

// A statement prepared on h, finalized when it goes; null (the reason in h's error) when the
// SQL cannot be prepared.
Statement prepared(sqlite3* h, const QByteArray& sql)
{
    sqlite3_stmt* raw = nullptr;
    sqlite3_prepare_v2(h, sql.constData(), int(sql.size()), &raw, nullptr);
    return Statement(raw, sqlite3_finalize);
}

// Binds the values to a prepared statement and collects the first column of its rows.
IdScan stepIds(sqlite3* h, sqlite3_stmt* raw, const QVariantList& values, int timeLimitMs)
{
    IdScan result;
    for (int i = 0; i < values.size(); ++i) {
        const QVariant& v = values.at(i);
        int rc = SQLITE_OK;
        switch (v.typeId()) {
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::UInt:
        case QMetaType::Bool:
            rc = sqlite3_bind_int64(raw, i + 1, v.toLongLong());
            break;
        case QMetaType::Double:
            rc = sqlite3_bind_double(raw, i + 1, v.toDouble());
            break;
        default:
            if (v.isNull()) {
                rc = sqlite3_bind_null(raw, i + 1);
            } else {
                const QByteArray utf8 = v.toString().toUtf8();
                rc = sqlite3_bind_text(raw, i + 1, utf8.constData(), int(utf8.size()),
                                       SQLITE_TRANSIENT);
            }
        }
        if (rc != SQLITE_OK) {
            result.error = QString::fromUtf8(sqlite3_errmsg(h));
            return result;
        }
    }
    // A search over a text that never ends must not hang the window.
    QDeadlineTimer deadline(timeLimitMs > 0 ? timeLimitMs : QDeadlineTimer::Forever);
    if (timeLimitMs > 0)
        sqlite3_progress_handler(h, 10000, stopAfterDeadline, &deadline);
    int rc;
    while ((rc = sqlite3_step(raw)) == SQLITE_ROW)
        result.ids.append(sqlite3_column_int64(raw, 0));
    if (timeLimitMs > 0)
        sqlite3_progress_handler(h, 0, nullptr, nullptr);
    if (rc == SQLITE_INTERRUPT && deadline.hasExpired()) {
        result.timedOut = true;
        result.error = QStringLiteral("the search ran longer than %1 seconds and was stopped")
                           .arg(timeLimitMs / 1000);
    } else if (rc != SQLITE_DONE) {
        result.error = QString::fromUtf8(sqlite3_errmsg(h));
    }
    if (!result.ok())
        result.ids.clear();
    return result;
}

// stepIds on a statement kept between runs: reset after, so it holds no lock and no bound text
// until the next.
IdScan stepKept(sqlite3* h, sqlite3_stmt* statement, const QVariantList& values, int timeLimitMs)
{
    IdScan result = stepIds(h, statement, values, timeLimitMs);
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    return result;
}

IdScan scanIdsOn(sqlite3* h, const QString& sql, const QVariantList& values, int timeLimitMs)
{
    const Statement statement = prepared(h, sql.toUtf8());
    if (!statement) {
        IdScan failed;
        failed.error = QString::fromUtf8(sqlite3_errmsg(h));
        return failed;
    }
    return stepIds(h, statement.get(), values, timeLimitMs);
}

// The statement gathering the keys sql lists with tb_keys, in one step.
QString collectingSql(const QString& sql)
{
    return QLatin1String("SELECT tb_keys(ID, ?1) FROM (") + sql + u')';
}

// Runs a prepared collectingSql statement; reset after, so it may be kept.
IdScan collectWith(sqlite3* h, sqlite3_stmt* statement)
{
    IdScan result;
    sqlite3_bind_pointer(statement, 1, &result.ids, kKeyListType, nullptr);
    if (sqlite3_step(statement) != SQLITE_ROW) {
        result.ids.clear();
        result.error = QString::fromUtf8(sqlite3_errmsg(h));
    }
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    return result;
}

// The keys of sql in any order, gathered by tb_keys; the row by row scan where the connection
// lacks the function.
IdScan collectIdsOn(sqlite3* h, const QString& sql)
{
    const Statement statement = prepared(h, collectingSql(sql).toUtf8());
    return statement ? collectWith(h, statement.get()) : scanIdsOn(h, sql, {}, 0);
}

// Keys read through an index come as a few ascending runs (the views' keys one per Active
// value): merging the runs is linear, where sorting afresh is not.
void sortAscending(QList<qint64>& keys)
{
    QList<qsizetype> runStarts;
    for (qsizetype i = 1; i < keys.size(); ++i) {
        if (keys.at(i) < keys.at(i - 1))
            runStarts << i;
    }
    if (runStarts.size() > 8) {
        std::sort(keys.begin(), keys.end());
        return;
    }
    // Each run in turn merged into the sorted keys before it.
    for (qsizetype r = 0; r < runStarts.size(); ++r) {
        const qsizetype end = r + 1 < runStarts.size() ? runStarts.at(r + 1) : keys.size();
        std::inplace_merge(keys.begin(), keys.begin() + runStarts.at(r), keys.begin() + end);
    }
}

IdScan readIdsOn(sqlite3* h, const QString& sql, KeyOrder order)
{
    if (order == KeyOrder::Listed)
        return scanIdsOn(h, sql, {}, 0);
    IdScan keys = collectIdsOn(h, sql);
    sortAscending(keys.ids);
    return keys;
}

// The keys of sql on a connection of its own to the database file name (a plain path or a URI);
// opening never creates the file.
IdScan readIdsFrom(const QString& name, const QString& sql, KeyOrder order)
{
    IdScan result;
    sqlite3* h = nullptr;
    const QByteArray file = QFile::encodeName(name);
    // The name may be a URI that asks for a file opened for writing; nothing is written.
    if (sqlite3_open_v2(file.constData(), &h, SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI, nullptr) ==
            SQLITE_OK &&
        installKeyCollector(h))
        result = readIdsOn(h, sql, order);
    else
        result.error = QString::fromUtf8(sqlite3_errmsg(h));
    sqlite3_close(h); // a no-op on null
    return result;
}

// The keys of sql read on a connection of its own (name: a path or a URI), with the state of
// the database file to keep them under: none when the file changed while they were read, or
// cannot show that it did not.
struct KeysRead
{
    IdScan keys;
    std::optional<KeyCache::FileState> state;
};
KeysRead readKeysToKeep(const QString& name, const QString& file, const QString& sql,
                        KeyOrder order)
{
    const std::optional<KeyCache::FileState> before = KeyCache::stateOf(file);
    KeysRead read{readIdsFrom(name, sql, order), std::nullopt};
    if (read.keys.ok() && before && before == KeyCache::stateOf(file))
        read.state = before;
    return read;
}

} // namespace

KeptStatement::~KeptStatement()
{
    release();
}

void KeptStatement::release()
{
    sqlite3_finalize(m_statement); // a no-op on null
    m_statement = nullptr;
    m_handle = nullptr;
    m_sql.clear();
}

sqlite3_stmt* KeptStatement::prepare(sqlite3* h, const QString& sql, QString* error)
{
    if (!holds(h, sql)) {
        release();
        const QByteArray text = sql.toUtf8();
        if (sqlite3_prepare_v3(h, text.constData(), int(text.size()), SQLITE_PREPARE_PERSISTENT,
                               &m_statement, nullptr) != SQLITE_OK) {
            if (error)
                *error = QString::fromUtf8(sqlite3_errmsg(h));
            release();
            return nullptr;
        }
        m_handle = h;
        m_sql = sql;
    }
    return m_statement;
}

IdScan KeyScanner::scan(const QSqlDatabase& db, const QString& sql, const QVariantList& values,
                        int timeLimitMs)
{
    sqlite3* h = sqliteHandle(db);
    if (!h) {
        m_statement.release();
        return notOpen();
    }
    IdScan result;
    sqlite3_stmt* s = m_statement.prepare(h, sql, &result.error);
    if (!s) {
        m_statement.release();
        return result;
    }
    return stepKept(h, s, values, timeLimitMs);
}

sqlite3_stmt* SourceReader::statement(sqlite3* h, const QString& sql, QString& error)
{
    for (KeptStatement& kept : m_kept) {
        if (kept.holds(h, sql))
            return kept.prepare(h, sql, &error);
    }
    KeptStatement& oldest = m_kept.at(m_next);
    m_next = (m_next + 1) % m_kept.size();
    return oldest.prepare(h, sql, &error);
}

std::optional<QStringList> SourceReader::columns(const QSqlDatabase& db, const QString& sql,
                                                 QString& error)
{
    sqlite3* h = sqliteHandle(db);
    if (!h) {
        error = notOpen().error;
        return std::nullopt;
    }
    sqlite3_stmt* s =
        statement(h, QLatin1String("SELECT * FROM (") + sql + QLatin1String(") LIMIT 0"), error);
    if (!s)
        return std::nullopt;
    // Run, so a statement kept from before the tables changed is prepared again first.
    const int rc = sqlite3_step(s);
    const bool ran = rc == SQLITE_DONE || rc == SQLITE_ROW;
    if (!ran)
        error = QString::fromUtf8(sqlite3_errmsg(h));
    sqlite3_reset(s);
    if (!ran)
        return std::nullopt;
    QStringList names;
    for (int i = 0, count = sqlite3_column_count(s); i < count; ++i)
        names << QString::fromUtf8(sqlite3_column_name(s, i)).remove(u'"'); // as Qt SQL names them
    return names;
}

IdScan SourceReader::keys(const QSqlDatabase& db, const QString& sql, KeyOrder order)
{
    sqlite3* h = sqliteHandle(db);
    if (!h)
        return notOpen();
    IdScan result;
    if (order == KeyOrder::Listed) {
        sqlite3_stmt* s = statement(h, sql, result.error);
        return s ? stepKept(h, s, {}, 0) : result;
    }
    // Without tb_keys on the connection, row by row (as collectIdsOn).
    sqlite3_stmt* s = statement(h, collectingSql(sql), result.error);
    result = s ? collectWith(h, s) : scanIdsOn(h, sql, {}, 0);
    sortAscending(result.ids);
    return result;
}

IdScan scanIds(const QSqlDatabase& db, const QString& sql, const QVariantList& values,
               int timeLimitMs)
{
    sqlite3* h = sqliteHandle(db);
    return h ? scanIdsOn(h, sql, values, timeLimitMs) : notOpen();
}

// One reading of a statement's keys: from the kept file when it holds them, else from the
// database, keeping them for the next start.
struct KeyPrefetch::Reading
{
    std::promise<IdScan> promise;
    QString uri;
    QString file;
    QString sql;
    KeyOrder order;
    QString keptFile;

    void operator()()
    {
        if (std::optional<QList<qint64>> kept = KeyCache::load(keptFile, file, sql)) {
            IdScan result;
            result.ids = std::move(*kept);
            promise.set_value(std::move(result));
            return;
        }
        KeysRead read = readKeysToKeep(uri, file, sql, order);
        const QList<qint64> keys = read.keys.ids; // shared, not copied
        // The caller may be waiting: the keys first, the keeping after.
        promise.set_value(std::move(read.keys));
        if (read.state)
            KeyCache::save(keptFile, *read.state, sql, keys);
    }
};

KeyPrefetch::KeyPrefetch(const QSqlDatabase& db, const QString& sql, KeyOrder order,
                         const QString& keptFile)
    : m_sql(sql), m_version(dataVersion(db))
{
    const QString file = fileOfConnection(db);
    auto reading =
        std::make_shared<Reading>(Reading{{}, db.databaseName(), file, sql, order, keptFile});
    m_keys = reading->promise.get_future();
    if (KeyCache::holds(keptFile, file, sql))
        m_deferred = std::move(reading);
    else if (!startAside(reading))
        m_keys = {}; // no thread to be had: take() gives nothing, the window reads them itself
}

bool KeyPrefetch::startAside(const std::shared_ptr<Reading>& reading)
{
    try {
        m_worker = startSideThread([reading] { (*reading)(); });
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

void KeyPrefetch::readKeptHere()
{
    if (const std::shared_ptr<Reading> reading = std::exchange(m_deferred, nullptr))
        (*reading)();
}

void KeyPrefetch::readKeptAside()
{
    if (const std::shared_ptr<Reading> reading = std::exchange(m_deferred, nullptr);
        reading && !startAside(reading))
        (*reading)();
}

KeyPrefetch::~KeyPrefetch()
{
    if (m_worker.joinable())
        m_worker.join();
}

std::optional<QList<qint64>> KeyPrefetch::take(const QSqlDatabase& db, const QString& sql)
{
    readKeptHere(); // a reading left to the caller that nobody started
    if (!m_keys.valid())
        return std::nullopt;
    IdScan keys = m_keys.get();
    if (sql != m_sql)
        return std::nullopt;
    // A commit since the keys were asked for may have added or removed rows.
    if (!keys.ok() || dataVersion(db) != m_version)
        return std::nullopt;
    return std::move(keys.ids);
}

void keepKeysForNextStart(const QString& databaseFile, const QString& sql, KeyOrder order,
                          const QString& keptFile)
{
    if (!KeyCache::stateOf(databaseFile) || KeyCache::load(keptFile, databaseFile, sql))
        return;
    // Written by another program while they were read: the next start reads them itself.
    const KeysRead read = readKeysToKeep(databaseFile, databaseFile, sql, order);
    if (read.state)
        KeyCache::save(keptFile, *read.state, sql, read.keys.ids);
}

bool RowReader::read(const QSqlDatabase& db, const QString& sql, qint64 key, QVariantList& values)
{
    values.clear();
    sqlite3* h = sqliteHandle(db);
    if (!h) {
        m_statement.release();
        return false;
    }
    sqlite3_stmt* s = m_statement.prepare(h, sql);
    if (!s)
        return false;
    const auto reset = qScopeGuard([s] { sqlite3_reset(s); });
    sqlite3_bind_int64(s, 1, key);
    if (sqlite3_step(s) != SQLITE_ROW)
        return false;
    const int count = sqlite3_column_count(s);
    values.reserve(count);
    for (int c = 0; c < count; ++c) {
        switch (sqlite3_column_type(s, c)) {
        case SQLITE_INTEGER:
            values.append(QVariant(qint64(sqlite3_column_int64(s, c))));
            break;
        case SQLITE_BLOB:
            values.append(QByteArray(static_cast<const char*>(sqlite3_column_blob(s, c)),
                                     sqlite3_column_bytes(s, c)));
            break;
        case SQLITE_FLOAT:
            values.append(QVariant(sqlite3_column_double(s, c)));
            break;
        case SQLITE_NULL:
            values.append(QVariant(QMetaType::fromType<QString>()));
            break;
        default: // text
            values.append(
                QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(s, c)),
                                  sqlite3_column_bytes(s, c)));
        }
    }
    return true;
}

QString dataVersion(const QSqlDatabase& db)
{
    sqlite3* h = sqliteHandle(db);
    if (!h)
        return {};
    const IdScan other = scanIds(db, QStringLiteral("PRAGMA data_version"));
    return QString::number(sqlite3_total_changes64(h)) + u'.' +
           QString::number(other.ids.value(0, -1));
}

bool installJetLike(const QSqlDatabase& db)
{
    sqlite3* h = sqliteHandle(db);
    if (!h)
        return false;
    return sqlite3_create_function_v2(h, "like", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                                      likeFunction, nullptr, nullptr, nullptr) == SQLITE_OK;
}

DatabaseOpenResult openDatabase(const QString& path, const QString& connectionName)
{
    DatabaseOpenResult result;
    const QFileInfo info(path);
    if (!info.exists() || !info.isFile()) {
        result.errorNumber = kErrFileNotFound;
        result.source = QStringLiteral("DAO.Workspace");
        result.description = QStringLiteral("Could not find file '%1'.").arg(path);
        return result;
    }
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName);
    // The URI form with mode=rw refuses to create a file that vanished in the meantime.
    db.setDatabaseName(QUrl::fromLocalFile(info.absoluteFilePath()).toString() +
                       QLatin1String("?mode=rw"));
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=5000"));
    if (!db.open()) {
        result.errorNumber = kErrNotADatabase;
        result.source = QStringLiteral("DAO.Workspace");
        result.description = db.lastError().text();
        return result;
    }
    // Installed before any statement runs: SQLite refuses to replace a function while a
    // statement is still pending, and finds would then fall back to its own LIKE.
    if (!installJetLike(db) || !installKeyCollector(sqliteHandle(db))) {
        result.errorNumber = kErrNotADatabase;
        result.source = QStringLiteral("DAO.Workspace");
        result.description = QStringLiteral("Unrecognized database format '%1'.").arg(path);
        db.close();
        return result;
    }
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT count(*) FROM sqlite_master"))) {
        result.errorNumber = kErrNotADatabase;
        result.source = QStringLiteral("DAO.Workspace");
        result.description = QStringLiteral("Unrecognized database format '%1'.").arg(path);
        db.close();
        return result;
    }
    if (!q.exec(QStringLiteral("SELECT 1 FROM Items LIMIT 1"))) {
        result.errorNumber = kErrNoItemsTable;
        result.source = QStringLiteral("DAO.Database");
        result.description = QStringLiteral("The database engine cannot find the input table or "
                                            "query 'Items'.  Make sure it exists and that its "
                                            "name is spelled correctly.");
        db.close();
        return result;
    }
    q.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
    // The views are lists of keys chosen by Active: an index on it lets them be read without
    // touching the rows (descriptions run to several KB). Databases made before it get it on
    // their first open; a file that cannot be written simply goes without.
    q.exec(QStringLiteral("CREATE INDEX IF NOT EXISTS ItemsByActive ON Items (Active)"));
    // Reports choose items by end date, and the item list sorts by it under the same name.
    q.exec(QStringLiteral("CREATE INDEX IF NOT EXISTS ItemListByDateAuctionEnds ON Items "
                          "(DateAuctionEnds, Active)"));
    q.finish();
    result.database = db;
    return result;
}

QString createDatabaseIfMissing(const QString& path, const QString& schemaScript)
{
    if (QFileInfo::exists(path))
        return {};
    const QString temp = path + QLatin1String(".new");
    QFile::remove(temp);
    const QString name = QUuid::createUuid().toString();
    QString error;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(temp);
        if (!db.open()) {
            error = db.lastError().text();
        } else {
            QSqlQuery q(db);
            // Statements are separated by lines holding only ";;" so triggers may contain ';'.
            for (const QString& statement : schemaScript.split(QStringLiteral("\n;;\n"))) {
                if (statement.trimmed().isEmpty())
                    continue;
                if (!q.exec(statement)) {
                    error = q.lastError().text() + QLatin1String(": ") + statement.left(80);
                    break;
                }
            }
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    if (!error.isEmpty()) {
        QFile::remove(temp);
        return error;
    }
    if (!QFile::rename(temp, path))
        return QStringLiteral("could not move %1 into place").arg(temp);
    return {};
}

QString fileOfConnection(const QSqlDatabase& db)
{
    const QString name = db.databaseName();
    return name.startsWith(QLatin1String("file:")) ? QUrl(name).toLocalFile() : name;
}
