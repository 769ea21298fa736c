#include "platform/DatabaseBackup.h"

#include "platform/Database.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QThread>
#include <QUrl>
#include <QUuid>
#include <filesystem>
#include <memory>
#include <sqlite3.h>
#include <utility>

namespace {

struct CloseConnection
{
    void operator()(sqlite3* h) const { sqlite3_close_v2(h); }
};
using Connection = std::unique_ptr<sqlite3, CloseConnection>;

// Finishing a backup that has not reached its end rolls the destination back.
struct FinishBackup
{
    void operator()(sqlite3_backup* b) const { sqlite3_backup_finish(b); }
};
using BackupHandle = std::unique_ptr<sqlite3_backup, FinishBackup>;

struct FinalizeStatement
{
    void operator()(sqlite3_stmt* s) const { sqlite3_finalize(s); }
};
using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

QString errorOf(sqlite3* h)
{
    return QString::fromUtf8(sqlite3_errmsg(h));
}

// Opens an existing file; never creates one. Read-only through the URI form, which also keeps
// a file named like a URI from being taken for one.
Connection openFile(const QString& path, bool readOnly, QString* error)
{
    sqlite3* raw = nullptr;
    const QByteArray uri =
        (QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toString(QUrl::FullyEncoded) +
         (readOnly ? QLatin1String("?mode=ro") : QLatin1String("?mode=rwc")))
            .toUtf8();
    const int flags =
        (readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE) |
        SQLITE_OPEN_URI;
    const int rc = sqlite3_open_v2(uri.constData(), &raw, flags, nullptr);
    Connection h(raw);
    if (rc != SQLITE_OK) {
        *error = raw ? errorOf(raw) : QStringLiteral("out of memory");
        return {};
    }
    sqlite3_busy_timeout(raw, 5000);
    return h;
}

// Every row of the first column, as text; false with the error when the statement fails.
bool columnTexts(sqlite3* h, const char* sql, QStringList* out, QString* error)
{
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(h, sql, -1, &raw, nullptr) != SQLITE_OK) {
        *error = errorOf(h);
        return false;
    }
    const Statement statement(raw);
    int rc;
    while ((rc = sqlite3_step(raw)) == SQLITE_ROW)
        *out << QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(raw, 0)));
    if (rc != SQLITE_DONE) {
        *error = errorOf(h);
        return false;
    }
    return true;
}

// Copies source into destination step by step. A busy or locked step is tried again after a
// short wait; the copy stays one transaction on the destination until it is complete.
BackupOutcome copyPages(sqlite3* destination, sqlite3* source, const BackupProgress& progress,
                        int pagesPerStep)
{
    BackupOutcome outcome;
    BackupHandle backup(sqlite3_backup_init(destination, "main", source, "main"));
    if (!backup) {
        outcome.error = errorOf(destination);
        return outcome;
    }
    for (;;) {
        const int rc = sqlite3_backup_step(backup.get(), std::max(pagesPerStep, 1));
        if (rc == SQLITE_DONE)
            break;
        if (rc != SQLITE_OK && rc != SQLITE_BUSY && rc != SQLITE_LOCKED) {
            outcome.error = QString::fromUtf8(sqlite3_errstr(rc));
            return outcome;
        }
        const int total = sqlite3_backup_pagecount(backup.get());
        if (progress && !progress(total - sqlite3_backup_remaining(backup.get()), total)) {
            outcome.cancelled = true;
            return outcome;
        }
        if (rc != SQLITE_OK)
            QThread::msleep(20);
    }
    const int rc = sqlite3_backup_finish(backup.release());
    if (rc != SQLITE_OK)
        outcome.error = errorOf(destination);
    else if (progress) {
        // The last step: everything is copied.
        progress(1, 1);
    }
    return outcome;
}

// Opens the source and holds one read transaction on it for the whole copy: in write-ahead
// mode the steps then all read the same snapshot while writers go on, instead of starting over
// whenever another connection commits.
Connection openSnapshot(const QString& path, QString* error)
{
    Connection h = openFile(path, true, error);
    if (!h)
        return {};
    QStringList ignored;
    if (sqlite3_exec(h.get(), "BEGIN", nullptr, nullptr, nullptr) != SQLITE_OK ||
        !columnTexts(h.get(), "SELECT count(*) FROM sqlite_master", &ignored, error)) {
        if (error->isEmpty())
            *error = errorOf(h.get());
        return {};
    }
    return h;
}

// Removes the temporary copy unless it was handed on.
struct PartialFile
{
    QString path;
    bool keep = false;
    ~PartialFile()
    {
        if (!keep) {
            QFile::remove(path);
            QFile::remove(path + QLatin1String("-journal"));
            QFile::remove(path + QLatin1String("-wal"));
            QFile::remove(path + QLatin1String("-shm"));
        }
    }
};

} // namespace

BackupOutcome backupDatabaseFile(const QString& sourcePath, const QString& targetPath,
                                 const BackupProgress& progress, int pagesPerStep)
{
    return SnapshotCopy(sourcePath, targetPath).run(progress, pagesPerStep);
}

SnapshotCopy::SnapshotCopy(const QString& sourcePath, const QString& targetPath)
    : m_targetPath(targetPath)
{
    if (!QFileInfo(sourcePath).isFile()) {
        m_error = QStringLiteral("the database %1 does not exist").arg(sourcePath);
        return;
    }
    const QFileInfo target(targetPath);
    if (!target.absoluteDir().exists()) {
        m_error = QStringLiteral("the folder %1 does not exist").arg(target.absolutePath());
        return;
    }
    m_source = openSnapshot(sourcePath, &m_error).release();
}

SnapshotCopy::~SnapshotCopy()
{
    const Connection closed(m_source);
}

BackupOutcome SnapshotCopy::run(const BackupProgress& progress, int pagesPerStep)
{
    BackupOutcome outcome;
    const Connection source(std::exchange(m_source, nullptr));
    if (!source) {
        outcome.error = m_error.isEmpty() ? QStringLiteral("the copy was made already") : m_error;
        return outcome;
    }
    const QFileInfo target(m_targetPath);
    PartialFile partial{target.absolutePath() + QLatin1String("/.") + target.fileName() + u'.' +
                        QUuid::createUuid().toString(QUuid::Id128) + QLatin1String(".partial")};
    {
        Connection destination = openFile(partial.path, false, &outcome.error);
        if (!destination)
            return outcome;
        outcome = copyPages(destination.get(), source.get(), progress, pagesPerStep);
        if (!outcome.ok())
            return outcome;
        // The pages came with the source's write-ahead flag; a backup is one plain file.
        if (sqlite3_exec(destination.get(), "PRAGMA journal_mode=DELETE", nullptr, nullptr,
                         nullptr) != SQLITE_OK) {
            outcome.error = errorOf(destination.get());
            return outcome;
        }
        if (sqlite3_close(destination.release()) != SQLITE_OK) {
            outcome.error = QStringLiteral("the copy could not be closed");
            return outcome;
        }
    }
    std::error_code failed;
    std::filesystem::rename(QFile::encodeName(partial.path).toStdString(),
                            QFile::encodeName(target.absoluteFilePath()).toStdString(), failed);
    if (failed) {
        outcome.error = QString::fromStdString(failed.message());
        return outcome;
    }
    partial.keep = true;
    return outcome;
}

QStringList itemColumns(const QSqlDatabase& db)
{
    QStringList columns;
    QString error;
    if (sqlite3* h = sqliteHandle(db))
        columnTexts(h, "SELECT name FROM pragma_table_info('Items')", &columns, &error);
    return columns;
}

BackupCheck checkBackupFile(const QString& path, const QStringList& requiredColumns)
{
    BackupCheck check;
    const QString name = QDir::toNativeSeparators(path);
    if (!QFileInfo(path).isFile()) {
        check.problem = QStringLiteral("The file %1 does not exist.").arg(name);
        return check;
    }
    QString error;
    const Connection h = openFile(path, true, &error);
    QStringList rows;
    if (!h || !columnTexts(h.get(), "PRAGMA integrity_check", &rows, &error)) {
        check.problem = QStringLiteral("The file %1 is not a database Tallybid can read (%2).")
                            .arg(name, error);
        return check;
    }
    if (rows != QStringList{QStringLiteral("ok")}) {
        check.problem = QStringLiteral("The file %1 is damaged: the database check reports \"%2\".")
                            .arg(name, rows.value(0));
        return check;
    }
    QStringList tables;
    QStringList columns;
    columnTexts(h.get(), "SELECT name FROM sqlite_master WHERE type = 'table' AND name = 'Items'",
                &tables, &error);
    columnTexts(h.get(), "SELECT name FROM pragma_table_info('Items')", &columns, &error);
    if (tables.isEmpty() || columns.isEmpty()) {
        check.problem =
            QStringLiteral("The file %1 holds no Items table: it is not a backup of your items.")
                .arg(name);
        return check;
    }
    for (const QString& column : requiredColumns) {
        if (!columns.contains(column, Qt::CaseInsensitive)) {
            check.problem = QStringLiteral("The Items table of %1 has no column %2: it is not a "
                                           "backup of this program's items.")
                                .arg(name, column);
            return check;
        }
    }
    // The Inactive view reads the items through it.
    QStringList views;
    columnTexts(h.get(),
                "SELECT name FROM sqlite_master WHERE type = 'view' AND name = 'ClosedItems'",
                &views, &error);
    if (views.isEmpty()) {
        check.problem = QStringLiteral("The file %1 has no ClosedItems view: it is not a backup of "
                                       "this program's items.")
                            .arg(name);
        return check;
    }
    QStringList count;
    if (!columnTexts(h.get(), "SELECT count(*) FROM Items", &count, &error)) {
        check.problem = QStringLiteral("The items of %1 cannot be read (%2).").arg(name, error);
        return check;
    }
    check.itemCount = count.value(0).toLongLong();
    return check;
}

BackupOutcome restoreDatabaseFrom(const QSqlDatabase& live, const QString& backupPath,
                                  const BackupProgress& progress, int pagesPerStep)
{
    BackupOutcome outcome;
    sqlite3* h = sqliteHandle(live);
    if (!h) {
        outcome.error = QStringLiteral("the item database is not open");
        return outcome;
    }
    const QString livePath = QString::fromUtf8(sqlite3_db_filename(h, "main"));
    if (!livePath.isEmpty() &&
        QFileInfo(livePath).canonicalFilePath() == QFileInfo(backupPath).canonicalFilePath()) {
        outcome.error = QStringLiteral("The file %1 is the database in use.")
                            .arg(QDir::toNativeSeparators(backupPath));
        return outcome;
    }
    const BackupCheck check = checkBackupFile(backupPath, itemColumns(live));
    if (!check.ok()) {
        outcome.error = check.problem;
        return outcome;
    }
    const Connection source = openSnapshot(backupPath, &outcome.error);
    if (!source)
        return outcome;
    return copyPages(h, source.get(), progress, pagesPerStep);
}
