#include "platform/PosixFile.h"

#include <cerrno>
#include <cstring>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace PosixFile {

void Descriptor::reset(int fd)
{
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = fd;
}

bool tryLock(int fd)
{
    int result = 0;
    do {
        result = ::flock(fd, LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

bool stillNamed(int fd, const QByteArray& path)
{
    struct stat open
    {
    };
    struct stat named
    {
    };
    return ::fstat(fd, &open) == 0 && open.st_nlink > 0 && ::lstat(path.constData(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

QString reasonOf(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace PosixFile
