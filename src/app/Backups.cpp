#include "app/Backups.h"

#include "platform/SettingsStore.h"
#include "settings/SettingsCatalogue.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

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

QStringList backupNames(const QString& folder)
{
    return QDir(folder).entryList({QStringLiteral("tb2-*.mdb")}, QDir::Files);
}

} // namespace

QString fileName(const QDateTime& when)
{
    return QLatin1String("tb2-") + when.toString(kFormat) + QLatin1String(".mdb");
}

std::optional<QDateTime> timeOf(const QString& fileName)
{
    // A second copy made within the same second gets "-2", "-3"... after the time.
    static const QRegularExpression pattern(
        QStringLiteral("^tb2-(\\d{4}-\\d\\d-\\d\\d-\\d{6})(?:-\\d+)?\\.mdb$"));
    const QRegularExpressionMatch m = pattern.match(fileName);
    if (!m.hasMatch())
        return std::nullopt;
    const QDateTime when = QDateTime::fromString(m.captured(1), kFormat);
    if (!when.isValid())
        return std::nullopt;
    return when;
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

StartupResult backUpIfDue(const QString& appPath, const QString& databasePath, int kept,
                          const QDateTime& now, const BackupProgress& progress)
{
    StartupResult result;
    const QString folder = appPath + u'/' + kFolder;
    if (kept < 1 || !isDue(backupNames(folder), now))
        return result;
    if (!QDir().mkpath(folder)) {
        result.error = QStringLiteral("the folder %1 cannot be made").arg(folder);
        return result;
    }
    result.path = newPath(folder, now);
    const BackupOutcome outcome = backupDatabaseFile(databasePath, result.path, progress);
    if (!outcome.ok()) {
        result.error = outcome.cancelled ? QStringLiteral("stopped") : outcome.error;
        return result;
    }
    result.made = true;
    // Only after a good copy: old backups never go for one that failed. The new one stays
    // whatever the names say: one dated in the future (the clock was set back) would otherwise
    // outrank it.
    QStringList others = backupNames(folder);
    others.removeAll(QFileInfo(result.path).fileName());
    for (const QString& old : surplus(others, kept - 1))
        QFile::remove(folder + u'/' + old);
    return result;
}

} // namespace Backups
