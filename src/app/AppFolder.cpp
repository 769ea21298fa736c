#include "app/AppFolder.h"

#include "platform/Database.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace AppFolder {

namespace {

QString withoutTrailingSeparator(QString dir)
{
    dir = QDir::cleanPath(QDir(dir).absolutePath());
    while (dir.size() > 1 && (dir.endsWith(u'/') || dir.endsWith(u'\\')))
        dir.chop(1);
    return dir;
}

bool holdsDatabase(const QString& dir)
{
    return !dir.isEmpty() && QFileInfo(dir + QLatin1String("/tb2.mdb")).isFile();
}

// The reason a folder could not be made: what stops writing in the nearest folder that exists.
QString creationProblem(const QString& folder)
{
    const QFileInfo info(folder);
    if (info.exists() && !info.isDir())
        return QStringLiteral("a file of that name is in the way");
    QString existing = info.absoluteFilePath();
    while (!QFileInfo::exists(existing) && QFileInfo(existing).absolutePath() != existing)
        existing = QFileInfo(existing).absolutePath();
    const QString problem = writeProblem(existing);
    return problem.isEmpty() ? QStringLiteral("the folder could not be created") : problem;
}

// Copies through a temporary name, so a copy cut short never passes for a whole file.
QString copyFile(const QString& from, const QString& to)
{
    const QString part = to + QLatin1String(".part");
    QFile::remove(part);
    QFile source(from);
    if (!source.copy(part))
        return source.errorString();
    // The user's own copy: writable by the user (the Ad Studio saves into the themeset) even
    // when the shipped file is read-only, and private like the folder.
    QFile::setPermissions(part, QFile::ReadOwner | QFile::WriteOwner);
    if (!QFile::rename(part, to)) {
        QFile::remove(part);
        return QStringLiteral("could not move %1 into place").arg(part);
    }
    return {};
}

} // namespace

QString optionValue(const QStringList& arguments, const QString& name)
{
    const qsizetype i = arguments.indexOf(name);
    if (i >= 0 && i + 1 < arguments.size())
        return arguments.at(i + 1);
    const QString prefix = name + u'=';
    for (const QString& a : arguments)
        if (a.startsWith(prefix))
            return a.mid(prefix.size());
    return {};
}

Choice choose(const QStringList& arguments, const QString& executableDir)
{
    if (const QString named = optionValue(arguments, QStringLiteral("--appdir")); !named.isEmpty())
        return {withoutTrailingSeparator(named), Kind::Named};
    if (holdsDatabase(executableDir))
        return {withoutTrailingSeparator(executableDir), Kind::Portable};
    return {withoutTrailingSeparator(userDataFolder()), Kind::UserData};
}

QString userDataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u'/' +
           QLatin1String(kFolderName);
}

QString shippedFolder(const QString& executableDir)
{
    if (executableDir.isEmpty())
        return {};
    const QString dir =
        QDir::cleanPath(executableDir + u'/' + QLatin1String(TALLYBID_SHARE_FROM_BIN));
    return QFileInfo(dir).isDir() ? dir : QString();
}

QString lockFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
}

QString cacheFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           QLatin1String("/tallybid");
}

QString setUp(const QString& folder, const QString& shipped, const QString& schemaScript)
{
    if (!QFileInfo(folder).isDir()) {
        // Made by the user alone: the items hold buyers' names and addresses.
        const QString parent = QFileInfo(folder).absolutePath();
        if (!QDir().mkpath(parent) ||
            !QDir().mkdir(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
            return cannotSetUpMessage(folder, creationProblem(folder));
    }
    if (!shipped.isEmpty()) {
        const QDir from(shipped);
        QDirIterator it(shipped, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QFileInfo entry(it.next());
            const QString relative = from.relativeFilePath(entry.filePath());
            // The schema is built into the program; the copy in share/ is for other tools.
            if (relative == QLatin1String("schema.sql"))
                continue;
            const QString target = folder + u'/' + relative;
            if (entry.isDir()) {
                if (!QDir().mkpath(target))
                    return cannotSetUpMessage(target, creationProblem(target));
            } else if (!QFileInfo::exists(target)) {
                if (const QString problem = copyFile(entry.filePath(), target); !problem.isEmpty())
                    return cannotSetUpMessage(folder, problem);
            }
        }
    }
    const QString problem =
        createDatabaseIfMissing(folder + QLatin1String("/tb2.mdb"), schemaScript);
    return problem.isEmpty() ? QString() : cannotSetUpMessage(folder, problem);
}

QString writeProblem(const QString& folder)
{
    const QFileInfo info(folder);
    if (!info.exists())
        return QStringLiteral("it does not exist");
    if (!info.isDir())
        return QStringLiteral("it is not a folder");
    QTemporaryFile probe(folder + QLatin1String("/.tallybid-XXXXXX"));
    if (probe.open())
        return {};
    const QString reason = probe.errorString();
    return reason.isEmpty() ? QStringLiteral("no file can be created in it") : reason;
}

QString cannotSetUpMessage(const QString& folder, const QString& reason)
{
    return QStringLiteral("Tallybid could not set up its folder %1 (%2).").arg(folder, reason);
}

QString cannotWriteMessage(const QString& folder, const QString& reason)
{
    return QStringLiteral("Tallybid cannot write in its folder %1 (%2). The items cannot be "
                          "saved there. Give yourself write permission on the folder, or choose "
                          "another one with --appdir.")
        .arg(folder, reason);
}

QString cannotLockMessage(const QString& folder, const QString& reason)
{
    return QStringLiteral("Tallybid cannot keep its lock file in %1 (%2), so it cannot tell "
                          "whether another copy is running.")
        .arg(folder, reason);
}

QString builtInSchema()
{
    QFile schema(QStringLiteral(":/tallybid/schema.sql"));
    if (!schema.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(schema.readAll());
}

} // namespace AppFolder
