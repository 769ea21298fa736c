#pragma once

#include <QList>
#include <QString>

#include <optional>

// The keys of the view a start reopens, kept in a file from one run for the next. SQLite needs
// several milliseconds to read 100,000 keys even from its smallest index; the kept file hands
// them over in a fraction of that.
//
// The file names the state of the database file the keys were read from: device, inode, size,
// and the modification and status-change times to the nanosecond, with its write-ahead log
// empty. Every write to the database, by this program or another, reaches the file (at the
// latest when the log is checkpointed) and changes its status-change time, which no program can
// set back; until then the log is not empty. So kept keys are used only for the very file they
// were read from, and a kept file that is damaged, short or for another statement is ignored.
namespace KeyCache {

// What identifies the content of a database file; nothing while its write-ahead log holds
// writes not yet copied into it, when its times are kept to the second only, or when the file
// cannot be examined.
struct FileState
{
    qint64 device = 0;
    qint64 inode = 0;
    qint64 size = 0;
    qint64 modifiedNs = 0;
    qint64 changedNs = 0;
    bool operator==(const FileState&) const = default;
};
std::optional<FileState> stateOf(const QString& databaseFile);

// The kept file for a database file in the given folder (one per database).
QString keptFileFor(const QString& folder, const QString& databaseFile);

// Whether keptFile was kept for sql and databaseFile as it is now, from its first few bytes:
// a quick look that says whether load() is worth its time, not that it will succeed.
bool holds(const QString& keptFile, const QString& databaseFile, const QString& sql);

// The keys sql lists, when keptFile holds them for databaseFile as it is now.
std::optional<QList<qint64>> load(const QString& keptFile, const QString& databaseFile,
                                  const QString& sql);

// Keeps the keys sql listed in a database file in the given state, replacing the kept file
// whole (AtomicFile); not flushed to disk, since a file cut short by a crash fails its check
// and the keys are read afresh.
bool save(const QString& keptFile, const FileState& state, const QString& sql,
          const QList<qint64>& keys);

} // namespace KeyCache
