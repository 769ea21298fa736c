#pragma once

#include <QSize>
#include <QStringList>
#include <memory>

class Prompts;
class Shell;
class SettingsStore;
class TimeZone;
class InstanceLock;
class frmItems;
class KeyPrefetch;
class QObject;
struct AppContext;
namespace Backups {
class StartupBackup;
}

// Start-up in order: application folder (set up on first use), tb2.mdb, settings, splash, one
// copy per user, the item window with its last view. Kept apart from main() so tests run it
// with their seams.
class Launcher
{
public:
    Launcher(Prompts& prompts, Shell& shell, SettingsStore& store, TimeZone& timeZone);
    ~Launcher();

    // False when the program must end now (its message has been shown); exitCode() then says
    // how. On success the item window is shown.
    bool start(const QStringList& arguments, const QString& executableDir, QSize screenPixels);
    int exitCode() const { return m_exitCode; }
    // Where the one-copy lock is kept; the user's runtime folder unless set.
    void setLockFolder(const QString& folder) { m_lockFolder = folder; }
    frmItems* window() const { return m_window.get(); }
    AppContext* context() const { return m_context.get(); }
    // Returns once the start-up backup, if one is being made, is written.
    void waitForStartupBackup();

private:
    bool refuse(const QString& text, const QString& title, int exitCode);

    Prompts& m_prompts;
    Shell& m_shell;
    SettingsStore& m_store;
    TimeZone& m_timeZone;
    std::unique_ptr<AppContext> m_context;
    std::unique_ptr<InstanceLock> m_lock;
    std::unique_ptr<frmItems> m_window;
    // The keys read ahead for the window, kept till the end so their keeping for the next start
    // (KeyCache) never holds up the window.
    std::shared_ptr<KeyPrefetch> m_startupKeys;
    std::unique_ptr<Backups::StartupBackup> m_backup;
    std::unique_ptr<QObject> m_backupReports; // where the backup's failure is said from
    QString m_databasePath;
    QString m_connection;
    QString m_lockFolder;
    int m_exitCode = 0;
};
