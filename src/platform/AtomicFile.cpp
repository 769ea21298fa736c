#include "platform/AtomicFile.h"

#include "platform/PosixFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QThread>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using PosixFile::Descriptor;
using PosixFile::reasonOf;
using PosixFile::stillNamed;
using PosixFile::tryLock;

namespace {

// How long a writer waits for a scratch file another copy holds before it gives up.
constexpr int kLockWaitMs = 10000;
constexpr int kLockPollMs = 20;
constexpr int kAttempts = 100;

QByteArray nativePath(const QString& path)
{
    return QFile::encodeName(path);
}

bool lockWithin(int fd, int milliseconds)
{
    for (int waited = 0;; waited += kLockPollMs) {
        if (tryLock(fd))
            return true;
        if (errno != EWOULDBLOCK || waited >= milliseconds)
            return false;
        QThread::msleep(kLockPollMs);
    }
}

bool writeAll(int fd, const QByteArray& data)
{
    const char* at = data.constData();
    qsizetype left = data.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, at, size_t(left));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        at += n;
        left -= n;
    }
    return true;
}

// A rename is only on disk once the folder that holds the names is.
void syncFolder(const QString& folder)
{
    const Descriptor fd(::open(nativePath(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.valid())
        ::fsync(fd.get());
}

std::optional<mode_t> modeOf(const QString& path)
{
    struct stat info
    {
    };
    if (::stat(nativePath(path).constData(), &info) != 0)
        return std::nullopt;
    return info.st_mode & 07777;
}

// Six letters and digits with a capital and a digit at random places.
QString randomSuffix()
{
    static const char kChars[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    QRandomGenerator* random = QRandomGenerator::global();
    QString suffix;
    for (int i = 0; i < 6; ++i)
        suffix += QLatin1Char(kChars[random->bounded(62)]);
    const int capital = random->bounded(6);
    const int digit = (capital + 1 + random->bounded(5)) % 6;
    suffix[capital] = QLatin1Char(char('A' + random->bounded(26)));
    suffix[digit] = QLatin1Char(char('0' + random->bounded(10)));
    return suffix;
}

// The file a write of path replaces: a link's target, so the link itself stays.
QString resolved(const QString& path)
{
    const QFileInfo info(path);
    if (info.isSymLink()) {
        const QString target = info.symLinkTarget();
        if (!target.isEmpty())
            return target;
    }
    return path;
}

// Finishes a locked scratch file: content, permissions, flushed to disk unless told otherwise.
// Errors leave errno.
bool fill(int fd, const QByteArray& content, std::optional<mode_t> mode,
          AtomicFile::Flush flush = AtomicFile::Flush::ToDisk)
{
    return ::ftruncate(fd, 0) == 0 && writeAll(fd, content) &&
           (!mode || ::fchmod(fd, *mode) == 0) &&
           (flush == AtomicFile::Flush::No || ::fsync(fd) == 0);
}

} // namespace

namespace AtomicFile {

Outcome write(const QString& path, const QByteArray& content, std::optional<mode_t> mode,
              Flush flush)
{
    const QString target = resolved(path);
    removeStaleScratchFiles(target);
    const QFileInfo info(target);
    const QString prefix = info.absolutePath() + u'/' + info.fileName() + u'.';
    Descriptor fd;
    QByteArray scratch;
    for (int attempt = 0; attempt < kAttempts && !fd.valid(); ++attempt) {
        scratch = nativePath(prefix + randomSuffix());
        fd.reset(::open(scratch.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        if (!fd.valid()) {
            if (errno == EEXIST)
                continue;
            return Failure{target, reasonOf(errno)};
        }
        // Another copy's clean-up may have taken the new file before it was locked.
        if (!lockWithin(fd.get(), kLockWaitMs) || !stillNamed(fd.get(), scratch))
            fd.reset();
    }
    if (!fd.valid())
        return Failure{target, reasonOf(EEXIST)};
    if (!mode)
        mode = modeOf(target);
    if (!fill(fd.get(), content, mode, flush) ||
        ::rename(scratch.constData(), nativePath(target).constData()) != 0) {
        const int error = errno;
        ::unlink(scratch.constData());
        return Failure{target, reasonOf(error)};
    }
    if (flush == Flush::ToDisk)
        syncFolder(info.absolutePath());
    return {};
}

Outcome writeThrough(const QString& scratch, const QString& target, const QByteArray& content)
{
    const QString finalTarget = resolved(target);
    const QByteArray scratchPath = nativePath(scratch);
    Descriptor fd;
    for (int attempt = 0; attempt < kAttempts && !fd.valid(); ++attempt) {
        fd.reset(::open(scratchPath.constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0666));
        if (!fd.valid())
            return Failure{scratch, reasonOf(errno)};
        if (!lockWithin(fd.get(), kLockWaitMs))
            return Failure{scratch, QStringLiteral("another running copy is writing it")};
        // The copy that held it has renamed it into place meanwhile: start on a new one.
        if (!stillNamed(fd.get(), scratchPath))
            fd.reset();
    }
    if (!fd.valid())
        return Failure{scratch, reasonOf(EBUSY)};
    if (!fill(fd.get(), content, modeOf(finalTarget))) {
        const int error = errno;
        ::unlink(scratchPath.constData());
        return Failure{scratch, reasonOf(error)};
    }
    if (::rename(scratchPath.constData(), nativePath(finalTarget).constData()) == 0) {
        syncFolder(QFileInfo(finalTarget).absolutePath());
        return {};
    }
    const int error = errno;
    if (error != EXDEV) {
        ::unlink(scratchPath.constData());
        return Failure{finalTarget, reasonOf(error)};
    }
    // A rename cannot cross file systems: the content goes into place beside the target.
    Outcome outcome = write(finalTarget, content);
    ::unlink(scratchPath.constData());
    return outcome;
}

bool removeIfStale(const QString& path)
{
    const QByteArray name = nativePath(path);
    struct stat named
    {
    };
    if (::lstat(name.constData(), &named) != 0 || !S_ISREG(named.st_mode))
        return false; // only plain files are scratch copies; nothing else is even opened
    constexpr int flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    Descriptor fd(::open(name.constData(), O_RDWR | flags));
    if (!fd.valid())
        fd.reset(::open(name.constData(), O_RDONLY | flags));
    struct stat info
    {
    };
    if (!fd.valid() || ::fstat(fd.get(), &info) != 0 || !S_ISREG(info.st_mode))
        return false;
    return tryLock(fd.get()) && stillNamed(fd.get(), name) && ::unlink(name.constData()) == 0;
}

int removeStaleScratchFiles(const QString& path)
{
    const QFileInfo info(resolved(path));
    const QDir folder = info.absoluteDir();
    int removed = 0;
    const QStringList names =
        folder.entryList(QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        if (isScratchName(name, info.fileName()) && removeIfStale(folder.filePath(name)))
            ++removed;
    }
    return removed;
}

bool isScratchName(const QString& fileName, const QString& targetName)
{
    if (fileName.size() != targetName.size() + 7 || !fileName.startsWith(targetName) ||
        fileName.at(targetName.size()) != u'.')
        return false;
    bool capital = false;
    bool digit = false;
    for (const QChar c : QStringView(fileName).last(6)) {
        const char16_t u = c.unicode();
        capital = capital || (u >= u'A' && u <= u'Z');
        digit = digit || (u >= u'0' && u <= u'9');
        if (!(u < 0x80 && c.isLetterOrNumber()))
            return false;
    }
    return capital && digit;
}

} // namespace AtomicFile
