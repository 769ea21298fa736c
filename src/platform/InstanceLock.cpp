#include "platform/InstanceLock.h"

#include <QCoreApplication>
#include <QFile>
#include <QSysInfo>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

InstanceLock::InstanceLock(QString path) : m_path(std::move(path)) {}

InstanceLock::~InstanceLock()
{
    if (!m_file.valid())
        return;
    // Removed while still held, so no other copy can lock the file on its way out.
    ::unlink(QFile::encodeName(m_path).constData());
}

InstanceLock::Outcome InstanceLock::tryLock()
{
    if (m_file.valid())
        return Outcome::Taken;
    const QByteArray path = QFile::encodeName(m_path);
    // A holder that ends removes the file: the one locked must be the one the name still gives.
    for (int attempt = 0; attempt < 5; ++attempt) {
        m_file.reset(::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
        if (!m_file.valid()) {
            m_error = PosixFile::reasonOf(errno);
            return Outcome::Failed;
        }
        if (!PosixFile::tryLock(m_file.get())) {
            const int error = errno;
            m_file.reset();
            if (error == EWOULDBLOCK)
                return Outcome::HeldByAnother;
            m_error = PosixFile::reasonOf(error);
            return Outcome::Failed;
        }
        if (!PosixFile::stillNamed(m_file.get(), path)) {
            m_file.reset();
            continue;
        }
        const QByteArray holder = QByteArray::number(QCoreApplication::applicationPid()) + '\n' +
                                  QCoreApplication::applicationName().toUtf8() + '\n' +
                                  QSysInfo::machineHostName().toUtf8() + '\n';
        if (::ftruncate(m_file.get(), 0) != 0 ||
            ::pwrite(m_file.get(), holder.constData(), size_t(holder.size()), 0) != holder.size()) {
            m_error = PosixFile::reasonOf(errno);
            ::unlink(path.constData());
            m_file.reset();
            return Outcome::Failed;
        }
        return Outcome::Taken;
    }
    m_error = QStringLiteral("the lock file kept being replaced");
    return Outcome::Failed;
}
