#pragma once

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <functional>

// Copies of the item database made with SQLite's online backup, so a copy taken while the
// program writes items is a consistent snapshot, never a torn file.

// Called between steps with the pages copied so far and the pages in all; returning false
// stops the copy (nothing is written then).
using BackupProgress = std::function<bool(int done, int total)>;

// Pages copied per step: about 4 MB, a short enough pause between progress reports.
inline constexpr int kBackupPagesPerStep = 1000;

struct BackupOutcome
{
    QString error;          // empty on success
    bool cancelled = false; // stopped through the progress callback
    bool ok() const { return error.isEmpty() && !cancelled; }
};

// Writes a copy of the database at sourcePath to targetPath. The copy goes to a temporary file
// beside the target and replaces the target only once complete, so a failure or a cancel
// leaves an existing target as it was. The copy is a single file (no write-ahead log).
BackupOutcome backupDatabaseFile(const QString& sourcePath, const QString& targetPath,
                                 const BackupProgress& progress = {},
                                 int pagesPerStep = kBackupPagesPerStep);

struct sqlite3;

// The same copy in two steps: made, it holds the database as it stands (one read transaction
// on a connection of its own); run() then writes it to the target, later and on any thread, and
// what was committed in between is not in it. Run once.
class SnapshotCopy
{
public:
    SnapshotCopy(const QString& sourcePath, const QString& targetPath);
    ~SnapshotCopy();
    SnapshotCopy(const SnapshotCopy&) = delete;
    SnapshotCopy& operator=(const SnapshotCopy&) = delete;

    BackupOutcome run(const BackupProgress& progress = {}, int pagesPerStep = kBackupPagesPerStep);

private:
    sqlite3* m_source = nullptr; // owned; the snapshot's read transaction is open on it
    QString m_targetPath;
    QString m_error; // why the snapshot could not be taken
};

// What a file offered for restoring holds: empty problem when it may be restored.
struct BackupCheck
{
    QString problem;
    qint64 itemCount = 0;
    bool ok() const { return problem.isEmpty(); }
};

// Opens the file read-only and checks it with PRAGMA integrity_check; it must hold an Items
// table with every one of the given columns.
BackupCheck checkBackupFile(const QString& path, const QStringList& requiredColumns);

// The column names of the Items table of an open database.
QStringList itemColumns(const QSqlDatabase& db);

// Replaces the contents of the open database with the backup file, through the open
// connection, so the connection stays valid. The file is checked first (against the live
// Items columns); a bad file, a failure or a cancel leave the database as it was.
BackupOutcome restoreDatabaseFrom(const QSqlDatabase& live, const QString& backupPath,
                                  const BackupProgress& progress = {},
                                  int pagesPerStep = kBackupPagesPerStep);
