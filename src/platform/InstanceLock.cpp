#include "platform/InstanceLock.h"

#include <QCoreApplication>
#include <QFile>
#include <QSysInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString systemError(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

bool sameFile(int fd, const QByteArray& path)
{
    struct stat opened;
    struct stat named;
    return ::fstat(fd, &opened) == 0 && ::stat(path.constData(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

} // namespace

InstanceLock::InstanceLock(QString path) : m_path(std::move(path)) {}

InstanceLock::~InstanceLock()
{
    if (m_fd < 0)
        return;
    // Removed while still held, so no other copy can lock the file on its way out.
    ::unlink(QFile::encodeName(m_path).constData());
    ::close(m_fd);
}

InstanceLock::Outcome InstanceLock::tryLock()
{
    if (m_fd >= 0)
        return Outcome::Taken;
    const QByteArray path = QFile::encodeName(m_path);
    // A holder that ends removes the file: the one locked must be the one the name still gives.
    for (int attempt = 0; attempt < 5; ++attempt) {
        const int fd = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
        if (fd < 0) {
            m_error = systemError(errno);
            return Outcome::Failed;
        }
        if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
            const int error = errno;
            ::close(fd);
            if (error == EWOULDBLOCK)
                return Outcome::HeldByAnother;
            m_error = systemError(error);
            return Outcome::Failed;
        }
        if (!sameFile(fd, path)) {
            ::close(fd);
            continue;
        }
        const QByteArray holder = QByteArray::number(QCoreApplication::applicationPid()) + '\n' +
                                  QCoreApplication::applicationName().toUtf8() + '\n' +
                                  QSysInfo::machineHostName().toUtf8() + '\n';
        if (::ftruncate(fd, 0) != 0 ||
            ::pwrite(fd, holder.constData(), size_t(holder.size()), 0) != holder.size()) {
            m_error = systemError(errno);
            ::unlink(path.constData());
            ::close(fd);
            return Outcome::Failed;
        }
        m_fd = fd;
        return Outcome::Taken;
    }
    m_error = QStringLiteral("the lock file kept being replaced");
    return Outcome::Failed;
}
