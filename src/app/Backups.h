#pragma once

#include "platform/DatabaseBackup.h"

#include <QDateTime>
#include <QStringList>
#include <functional>
#include <optional>
#include <thread>

class SettingsStore;

// The backups of tb2.mdb in the Backups folder of the application folder: how they are named,
// when the next one is due and which old ones go.
namespace Backups {

inline const QString kFolder = QStringLiteral("Backups");
// The Backups folder of an application folder.
inline QString folderOf(const QString& appPath)
{
    return appPath + u'/' + kFolder;
}
// Section and key of the number of dated backups kept; below 1 switches start-up backups off.
inline const QString kSection = QStringLiteral("Options");
inline const QString kKeptKey = QStringLiteral("BackupsKept");
inline constexpr int kDefaultKept = 7;
// A start-up backup is made when the newest dated one is at least this old.
inline constexpr qint64 kIntervalSecs = 24 * 60 * 60;

// "tb2-2026-11-23-204501.mdb": local date and time, so the names sort by age.
QString fileName(const QDateTime& when);
// The time a dated backup's name gives; nothing for any other name.
std::optional<QDateTime> timeOf(const QString& fileName);
// Due when there is no dated backup, when the newest is a day old or more, or when it lies in
// the future (the clock was set back).
bool isDue(const QStringList& fileNames, const QDateTime& now);
// The dated backups beyond the newest `kept`, oldest last; other files are never named.
QStringList surplus(const QStringList& fileNames, int kept);
// A name for a new dated backup in the folder that no file has yet.
QString newPath(const QString& folder, const QDateTime& now);

// The stored number of backups to keep; the default for a missing or unreadable value.
int keptCount(const SettingsStore& store);

struct StartupResult
{
    bool made = false;
    QString path;  // the new backup
    QString error; // why none could be made
};

// At start: when a backup is due, copies the database into appPath/Backups (made if missing)
// and removes the dated backups beyond `kept`. Nothing happens when kept is below 1.
StartupResult backUpIfDue(const QString& appPath, const QString& databasePath, int kept,
                          const QDateTime& now, const BackupProgress& progress = {});

// The same backup made beside the running program. Made, it decides whether a backup is due
// and if so takes the database's snapshot at once, before the item window can change anything,
// so the copy holds the items as the last run left them. The pages are then copied, and the
// dated backups beyond `kept` removed, on a thread of its own at a low priority: over many
// items the copy takes a second or more, which a start used to wait for once a day.
// `finished` is called on that thread when it is done; never when no backup was due.
class StartupBackup
{
public:
    StartupBackup(const QString& appPath, const QString& databasePath, int kept,
                  const QDateTime& now, std::function<void(const StartupResult&)> finished);
    ~StartupBackup();
    StartupBackup(const StartupBackup&) = delete;
    StartupBackup& operator=(const StartupBackup&) = delete;

    // Returns once the copy is done (at once when none is being made), so that a copy or a
    // restore the user asks for never runs beside it.
    void wait();

private:
    std::thread m_thread;
};

} // namespace Backups
