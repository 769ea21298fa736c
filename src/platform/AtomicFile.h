#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <sys/types.h>

// Whole-file replacement that leaves either the old file or the new one, never a mix, and the
// removal of scratch files that a stopped writer left behind.
//
// A writer holds its scratch file under an advisory lock (flock) from creating it until it has
// been renamed into place. The lock goes away with the process, so a scratch file nobody holds
// was left by a writer that was stopped and can be removed; a file that another running copy of
// the program is still writing is never touched.
namespace AtomicFile {

struct Failure
{
    QString path;   // the file that could not be written
    QString reason; // the system's words for why
};
using Outcome = std::optional<Failure>; // nothing when the file was written

// Whether a replacement is flushed to disk before it is renamed into place. Files that can be
// worked out again, and check themselves when read, need not wait for the disk.
enum class Flush
{
    ToDisk,
    No
};

// Replaces path by content through a scratch file "name.XXXXXX" beside it, flushed to disk
// before the rename unless told otherwise. Leftover scratch files of path are removed first.
// The new file gets mode when given, else the permissions of the file it replaces, else the
// usual ones of a new file. A symbolic link at path stays a link: the file it points to is
// replaced.
Outcome write(const QString& path, const QByteArray& content,
              std::optional<mode_t> mode = std::nullopt, Flush flush = Flush::ToDisk);

// Replaces target by content through the scratch file of the fixed name scratch (in a folder
// of the caller's choice), waiting while another running copy writes that same scratch file.
// When the two lie on different file systems the content is put in place by write() instead.
Outcome writeThrough(const QString& scratch, const QString& target, const QByteArray& content);

// Removes path when it is a file no running writer holds; true when it was removed.
bool removeIfStale(const QString& path);
// Removes the leftover "name.XXXXXX" scratch files of path; returns how many went.
int removeStaleScratchFiles(const QString& path);

// Whether fileName has the form of the scratch files of a file called targetName: the name, a
// dot and six letters and digits, among them at least one capital and one digit. The names
// people give their own copies ("listing.htm.backup", "standard.tbt.old") do not have it.
bool isScratchName(const QString& fileName, const QString& targetName);

} // namespace AtomicFile
