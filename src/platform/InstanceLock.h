#pragma once

#include "platform/PosixFile.h"

#include <QString>

// One running copy per user: an advisory lock (flock) on a file in the user's runtime folder,
// held while the object lives. The system drops it when the process ends, however it ends, so a
// copy that crashed leaves nothing to clear away. The file names the holder in the first lines
// QLockFile writes (process id, program, host), and QLockFile takes the same kind of lock, so a
// copy locking either way sees the other. Nothing is flushed to disk: the lock means nothing
// once the process is gone, and a runtime folder that is not in memory made every start wait
// for the disk.
class InstanceLock
{
public:
    enum class Outcome
    {
        Taken,
        HeldByAnother,
        Failed
    };

    explicit InstanceLock(QString path);
    ~InstanceLock(); // removes the file and lets go
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    Outcome tryLock();
    // Why the last tryLock failed, in the system's words.
    QString errorString() const { return m_error; }

private:
    QString m_path;
    PosixFile::Descriptor m_file; // open, and locked, while held
    QString m_error;
};
