#pragma once

#include <QByteArray>
#include <QString>

// The few POSIX file pieces the lock and whole-file replacement share.
namespace PosixFile {

// An open file descriptor, closed (and so unlocked) when it goes out of scope.
class Descriptor
{
public:
    explicit Descriptor(int fd = -1) : m_fd(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { reset(); }

    int get() const { return m_fd; }
    bool valid() const { return m_fd >= 0; }
    void reset(int fd = -1);

private:
    int m_fd;
};

// An exclusive advisory lock (flock) taken without waiting; false with errno set otherwise
// (EWOULDBLOCK: another holds it).
bool tryLock(int fd);

// The open file still goes by that name: no one removed or renamed it before it was locked.
bool stillNamed(int fd, const QByteArray& path);

// The system's words for an error number.
QString reasonOf(int error);

} // namespace PosixFile
