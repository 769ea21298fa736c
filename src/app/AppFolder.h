#pragma once

#include <QString>
#include <QStringList>

// Where the application folder is and how it comes to exist: the folder named on the command
// line, the program's own folder when it holds tb2.mdb (a portable copy such as build/app/),
// or else the user's data folder, which is set up from the shipped files on first use.
namespace AppFolder {

enum class Kind
{
    Named,    // --appdir DIR
    Portable, // the program's folder, which holds tb2.mdb
    UserData, // $XDG_DATA_HOME/tallybid
};

struct Choice
{
    QString path; // no trailing separator; a root folder keeps its single "/"
    Kind kind = Kind::Named;
};

// The folder's name inside the user's data location, and the installed program's own name.
inline constexpr char kFolderName[] = "tallybid";
// The desktop entry's id; the window system matches windows to it, so both must agree.
inline constexpr char kDesktopId[] = "org.tallybid.Tallybid";

// The value of "--name VALUE" or "--name=VALUE", or "" when the option is absent.
QString optionValue(const QStringList& arguments, const QString& name);

Choice choose(const QStringList& arguments, const QString& executableDir);
// $XDG_DATA_HOME/tallybid (by default ~/.local/share/tallybid).
QString userDataFolder();
// The read-only files an installed copy ships (themes, media, pages) beside its bin/ folder,
// or "" when the program is not installed that way.
QString shippedFolder(const QString& executableDir);
// The user's runtime folder, where the lock that allows one running copy per user lives; ""
// when the system offers none.
QString lockFolder();
// The user's cache folder for this program (~/.cache/tallybid), where what can be worked out
// again is kept between runs.
QString cacheFolder();

// Completes a user data folder: creates it readable by the user alone, copies each shipped file
// that is missing and makes an empty tb2.mdb from the schema when there is none. Files already
// present are never replaced, so an interrupted first start is finished by the next one.
// Returns "" on success, else the message to show.
QString setUp(const QString& folder, const QString& shipped, const QString& schemaScript);

// Why no file can be created in the folder ("" when one can), in the system's words.
QString writeProblem(const QString& folder);

// The messages of the start-ups that cannot go on; each names the folder and the reason.
QString cannotSetUpMessage(const QString& folder, const QString& reason);
QString cannotWriteMessage(const QString& folder, const QString& reason);
QString cannotLockMessage(const QString& folder, const QString& reason);

// The item database's layout, built into the program so a new data folder needs no other file.
QString builtInSchema();

} // namespace AppFolder
