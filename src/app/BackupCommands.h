#pragma once

#include <functional>

class QWidget;
struct AppContext;

// The File menu's backup commands. Both run with a modal progress dialog, so nothing else
// reads or writes items while pages are copied.
namespace BackupCommands {

// Back Up Now...: a copy of tb2.mdb under a name the user chooses (Backups/ and a dated name
// offered).
void backUpNow(AppContext& ctx, QWidget* owner);

// Restore from Backup...: checks the chosen file, asks, backs the current items up into
// Backups/, then copies the file into the open database and runs `reopen` so the window shows
// the restored items. Returns true when the items were replaced.
bool restoreBackup(AppContext& ctx, QWidget* owner, const std::function<void()>& reopen);

} // namespace BackupCommands
