#include "app/Backups.h"

#include "platform/SettingsStore.h"
#include "platform/SideThread.h"
#include "settings/SettingsCatalogue.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <memory>
#include <system_error>

#if defined(__linux__)
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace Backups {

namespace {

const QString kFormat = QStringLiteral("yyyy-MM-dd-HHmmss");

// The dated backups among the names with their times, newest first.
QList<std::pair<QDateTime, QString>> dated(const QStringList& fileNames)
{
    QList<std::pair<QDateTime, QString>> out;
    for (const QString& name : fileNames)
        if (const auto when = timeOf(name))
            out.append({*when, name});
    std::sort(out.begin(), out.end(), [](const auto& a, const auto& b) {
        // Within one second "-2" follows the plain name, "-10" follows "-9".
        if (a.first != b.first)
            return a.first > b.first;
        if (a.second.size() != b.second.size())
            return a.second.size() > b.second.size();
        return a.second > b.second;
    });
    return out;
}

// Every file in the folder: which are backups is for timeOf to say (a name filter here would
// compile a pattern of its own).
QStringList backupNames(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files);
}

} // namespace

QString fileName(const QDateTime& when)
{
    return QLatin1String("tb2-") + when.toString(kFormat) + QLatin1String(".mdb");
}

std::optional<QDateTime> timeOf(const QString& fileName)
{
    // "tb2-", the time, then "-2", "-3"... for a second copy made within the same second, ".mdb".
    // Read by hand: a pattern compiled on its first use cost a tenth of a millisecond of every
    // start, which asks whether a backup is due.
    constexpr QLatin1StringView kPrefix("tb2-");
    constexpr QLatin1StringView kSuffix(".mdb");
    constexpr qsizetype kTimeLength = 17; // yyyy-MM-dd-HHmmss
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    if (!fileName.startsWith(kPrefix) || !fileName.endsWith(kSuffix) ||
        fileName.size() < kPrefix.size() + kTimeLength + kSuffix.size())
        return std::nullopt;
    const QStringView time = QStringView(fileName).sliced(kPrefix.size(), kTimeLength);
    for (qsizetype i = 0; i < kTimeLength; ++i) {
        const bool dash = i == 4 || i == 7 || i == 10;
        if (dash ? time[i] != u'-' : !isDigit(time[i]))
            return std::nullopt;
    }
    const QStringView copy =
        QStringView(fileName).sliced(kPrefix.size() + kTimeLength).chopped(kSuffix.size());
    if (!copy.isEmpty() &&
        (copy.size() < 2 || copy[0] != u'-' || !std::all_of(copy.begin() + 1, copy.end(), isDigit)))
        return std::nullopt;
    const auto number = [time](qsizetype from, qsizetype length) {
        return time.sliced(from, length).toInt();
    };
    const QDate day(number(0, 4), number(5, 2), number(8, 2));
    const QTime at(number(11, 2), number(13, 2), number(15, 2));
    if (!day.isValid() || !at.isValid())
        return std::nullopt;
    return QDateTime(day, at);
}

bool isDue(const QStringList& fileNames, const QDateTime& now)
{
    const auto backups = dated(fileNames);
    if (backups.isEmpty())
        return true;
    const qint64 age = backups.first().first.secsTo(now);
    return age >= kIntervalSecs || age < 0;
}

QStringList surplus(const QStringList& fileNames, int kept)
{
    QStringList out;
    const auto backups = dated(fileNames);
    for (qsizetype i = std::max(kept, 0); i < backups.size(); ++i)
        out << backups.at(i).second;
    return out;
}

QString newPath(const QString& folder, const QDateTime& now)
{
    const QString base = fileName(now);
    QString path = folder + u'/' + base;
    for (int n = 2; QFileInfo::exists(path); ++n)
        path = folder + u'/' + base.chopped(4) + u'-' + QString::number(n) + QLatin1String(".mdb");
    return path;
}

int keptCount(const SettingsStore& store)
{
    bool ok = false;
    const int n = readSetting(store, kSection, kKeptKey).trimmed().toInt(&ok);
    return ok ? n : kDefaultKept;
}

namespace {

// A backup found due, with its snapshot taken, waiting to be written.
struct DueBackup
{
    QString folder;
    StartupResult result; // its path, or why it cannot be made
    std::unique_ptr<SnapshotCopy> copy;
};

std::optional<DueBackup> snapshotIfDue(const QString& appPath, const QString& databasePath,
                                       int kept, const QDateTime& now)
{
    DueBackup due;
    due.folder = folderOf(appPath);
    if (kept < 1 || !isDue(backupNames(due.folder), now))
        return std::nullopt;
    if (!QDir().mkpath(due.folder)) {
        due.result.error = QStringLiteral("the folder %1 cannot be made").arg(due.folder);
        return due;
    }
    due.result.path = newPath(due.folder, now);
    due.copy = std::make_unique<SnapshotCopy>(databasePath, due.result.path);
    return due;
}

StartupResult writeDue(DueBackup& due, int kept, const BackupProgress& progress)
{
    StartupResult result = due.result;
    if (!due.copy)
        return result;
    const BackupOutcome outcome = due.copy->run(progress);
    due.copy.reset();
    if (!outcome.ok()) {
        result.error = outcome.cancelled ? QStringLiteral("stopped") : outcome.error;
        return result;
    }
    result.made = true;
    // Only after a good copy: old backups never go for one that failed. The new one stays
    // whatever the names say: one dated in the future (the clock was set back) would otherwise
    // outrank it.
    QStringList others = backupNames(due.folder);
    others.removeAll(QFileInfo(result.path).fileName());
    for (const QString& old : surplus(others, kept - 1))
        QFile::remove(due.folder + u'/' + old);
    return result;
}

// On a busy machine the copy gives way to the window, which the user is waiting for.
void lowerThisThreadsPriority()
{
#if defined(__linux__)
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 10);
#endif
}

} // namespace

StartupResult backUpIfDue(const QString& appPath, const QString& databasePath, int kept,
                          const QDateTime& now, const BackupProgress& progress)
{
    std::optional<DueBackup> due = snapshotIfDue(appPath, databasePath, kept, now);
    return due ? writeDue(*due, kept, progress) : StartupResult{};
}

StartupBackup::StartupBackup(const QString& appPath, const QString& databasePath, int kept,
                             const QDateTime& now,
                             std::function<void(const StartupResult&)> finished)
{
    std::optional<DueBackup> found = snapshotIfDue(appPath, databasePath, kept, now);
    if (!found)
        return;
    auto due = std::make_shared<DueBackup>(std::move(*found));
    const auto write = [due, kept, finished] { finished(writeDue(*due, kept, {})); };
    try {
        // Started like the other start-up threads, off the window's core.
        m_thread = startSideThread([write] {
            lowerThisThreadsPriority();
            write();
        });
    } catch (const std::system_error&) {
        write(); // no thread to be had: the copy is made now, as the start goes on
    }
}

StartupBackup::~StartupBackup()
{
    wait();
}

void StartupBackup::wait()
{
    if (m_thread.joinable())
        m_thread.join();
}

} // namespace Backups
