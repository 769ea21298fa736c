#include "app/Launcher.h"

#include "app/AppFolder.h"
#include "app/Backups.h"
#include "app/Startup.h"
#include "app/frmItems.h"
#include "app/frmSplash.h"
#include "app/texts.h"
#include "platform/Database.h"
#include "platform/DeferredIconStyle.h"
#include "platform/FontWarmUp.h"
#include "platform/InstanceLock.h"
#include "platform/KeyCache.h"
#include "platform/Prompts.h"
#include "platform/TimeZone.h"
#include "settings/AppContext.h"

#include <QApplication>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QUuid>
#include <cstdio>

namespace {

// How the keys of the view the next window reopens are read; nothing when it reopens none.
std::optional<RecordSet::KeyRead> savedViewKeys(const SettingsStore& store)
{
    const auto view = frmItems::savedView(store);
    if (!view)
        return std::nullopt;
    RecordSet::KeyRead keys = RecordSet::keyRead(frmItems::viewSource(*view));
    return keys.sql.isEmpty() ? std::nullopt : std::optional(std::move(keys));
}

// Where the keys of the view reopened over a database are kept between runs.
QString keptKeysFile(const QString& databasePath)
{
    return KeyCache::keptFileFor(AppFolder::cacheFolder(), databasePath);
}

} // namespace

Launcher::Launcher(Prompts& prompts, Shell& shell, SettingsStore& store, TimeZone& timeZone)
    : m_prompts(prompts), m_shell(shell), m_store(store), m_timeZone(timeZone)
{
}

Launcher::~Launcher()
{
    FontWarmUp::finish(); // its thread uses Qt, which ends with the application object
    const bool ran = m_window != nullptr;
    m_window.reset();
    // A start-up backup still being copied is finished: it is the copy of the day. What it has
    // to say has no window left to say it in.
    m_backup.reset();
    m_backupReports.reset();
    if (m_context) {
        m_context->itemDatabase.close();
        m_context.reset();
    }
    if (!m_connection.isEmpty())
        QSqlDatabase::removeDatabase(m_connection);
    m_startupKeys.reset();
    // The keys of the view the next start reopens, read now that the database is closed (and
    // its log copied in) unless they are kept already.
    if (const auto keys = ran ? savedViewKeys(m_store) : std::nullopt)
        keepKeysForNextStart(m_databasePath, keys->sql, keys->order, keptKeysFile(m_databasePath));
}

void Launcher::waitForStartupBackup()
{
    if (m_backup)
        m_backup->wait();
}

bool Launcher::refuse(const QString& text, const QString& title, int exitCode)
{
    // Also on standard error, so a start from a terminal or a script shows why it ended.
    std::fprintf(stderr, "tallybid: %s\n", qPrintable(text));
    std::fflush(stderr);
    FontWarmUp::wait(); // the message lays out text
    if (title.isEmpty())
        m_prompts.message(text);
    else
        m_prompts.message(text, title, PromptIcon::Critical);
    m_exitCode = exitCode;
    return false;
}

bool Launcher::start(const QStringList& arguments, const QString& executableDir, QSize screenPixels)
{
    // Before any widget exists, so every widget is made with the style's deferred icons.
    DeferredIconStyle::install();
    FontWarmUp::prepare(); // while the database opens and the splash shows
    const AppFolder::Choice folder = AppFolder::choose(arguments, executableDir);
    const QString& appPath = folder.path;
    const QString databasePath = appPath + QLatin1String("/tb2.mdb");
    if (folder.kind == AppFolder::Kind::UserData) {
        const QString problem = AppFolder::setUp(appPath, AppFolder::shippedFolder(executableDir),
                                                 AppFolder::builtInSchema());
        if (!problem.isEmpty())
            return refuse(problem, Texts::kErrorTitle, 1);
    }
    // A folder that holds the database but cannot be written would fail later and obscurely
    // (SQLite keeps its journal beside the file); say so now.
    if (QFileInfo::exists(databasePath)) {
        if (const QString problem = AppFolder::writeProblem(appPath); !problem.isEmpty())
            return refuse(AppFolder::cannotWriteMessage(appPath, problem), Texts::kErrorTitle, 1);
    }
    m_connection = QStringLiteral("ItemDatabase-") + QUuid::createUuid().toString();
    const DatabaseOpenResult opened = openDatabase(databasePath, m_connection);
    if (!opened.ok()) {
        const Startup::OpenFailure failure = Startup::describeOpenFailure(opened);
        return refuse(failure.text, failure.title, 1);
    }
    // The keys of the view the window will reopen, read on a thread of their own from here on
    // while the rest of the start runs: over many items they are its longest single step.
    // From the file the last run kept them in when the database is as that run left it.
    m_databasePath = databasePath;
    if (const auto keys = savedViewKeys(m_store))
        m_startupKeys = std::make_shared<KeyPrefetch>(opened.database, keys->sql, keys->order,
                                                      keptKeysFile(databasePath));

    // One copy per user, whatever its folder: the settings are the user's, not the folder's.
    // Checked before anything is saved, so a refused copy leaves the settings as they were.
    const QString lockFolder = m_lockFolder.isNull() ? AppFolder::lockFolder() : m_lockFolder;
    m_lock = std::make_unique<InstanceLock>(lockFolder + QLatin1String("/tallybid.lock"));
    const InstanceLock::Outcome locked =
        lockFolder.isEmpty() ? InstanceLock::Outcome::Failed : m_lock->tryLock();
    if (locked == InstanceLock::Outcome::HeldByAnother)
        return refuse(Texts::kAlreadyRunning, {}, 0);
    if (locked == InstanceLock::Outcome::Failed) {
        QString reason = lockFolder.isEmpty() ? QStringLiteral("the system names no runtime folder")
                                              : AppFolder::writeProblem(lockFolder);
        if (reason.isEmpty())
            reason = m_lock->errorString();
        return refuse(AppFolder::cannotLockMessage(lockFolder, reason), Texts::kErrorTitle, 1);
    }

    m_context = std::unique_ptr<AppContext>(
        new AppContext{m_prompts, m_shell, m_store, m_timeZone, opened.database, {}});
    AppState& state = m_context->state;
    state.appPath = appPath;
    state.databasePath = databasePath;
    state.themeSetFN = appPath + QLatin1String("/standard.tbt");
    Startup::prepareSettings(m_store, appPath);
    state.startupKeys = m_startupKeys;
    state.timeZoneBias = m_timeZone.bias();

    frmSplash splash;
    splash.show();
    QCoreApplication::processEvents();

    // A copy of the items at most a day old. Its snapshot is taken now, before this run can
    // change them; the copying goes on beside the window, and a failure is said once known.
    m_backupReports = std::make_unique<QObject>();
    const QString backupFolder = Backups::folderOf(appPath);
    m_backup = std::make_unique<Backups::StartupBackup>(
        appPath, databasePath, Backups::keptCount(m_store), QDateTime::currentDateTime(),
        [this, reports = m_backupReports.get(),
         folder = backupFolder](const Backups::StartupResult& backup) {
            if (backup.error.isEmpty())
                return;
            QMetaObject::invokeMethod(
                reports,
                [this, text = Texts::startupBackupFailed(folder, backup.error)] {
                    m_prompts.message(text, Texts::kErrorTitle, PromptIcon::Exclamation);
                },
                Qt::QueuedConnection);
        });
    state.waitForStartupBackup = [backup = m_backup.get()] { backup->wait(); };

    state.options = OptionsRecord::load(m_store);
    // Kept keys are read here while the fonts still are (this thread would only wait), or
    // beside the window once they are in: a thread of their own started earlier took the core
    // the font reading was on.
    if (m_startupKeys)
        FontWarmUp::ready() ? m_startupKeys->readKeptAside() : m_startupKeys->readKeptHere();
    FontWarmUp::wait(); // the window's first box lays out text
    m_window = std::make_unique<frmItems>(*m_context, screenPixels);
    Startup::deletePageCache(appPath);
    m_window->show();
    splash.closeWhenShown(*m_window);
    return true;
}
