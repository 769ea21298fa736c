#include "app/Launcher.h"

#include "app/Startup.h"
#include "app/frmItems.h"
#include "app/frmSplash.h"
#include "app/texts.h"
#include "platform/Database.h"
#include "platform/Prompts.h"
#include "platform/TimeZone.h"
#include "settings/AppContext.h"

#include <QApplication>
#include <QLockFile>
#include <QSqlDatabase>
#include <QUuid>

Launcher::Launcher(Prompts& prompts, Shell& shell, SettingsStore& store, TimeZone& timeZone)
    : m_prompts(prompts), m_shell(shell), m_store(store), m_timeZone(timeZone)
{
}

Launcher::~Launcher()
{
    m_window.reset();
    if (m_context) {
        m_context->itemDatabase.close();
        m_context.reset();
    }
    if (!m_connection.isEmpty())
        QSqlDatabase::removeDatabase(m_connection);
}

bool Launcher::start(const QStringList& arguments, const QString& executableDir, QSize screenPixels)
{
    const QString appPath = Startup::appPath(arguments, executableDir);
    const QString databasePath = appPath + QLatin1String("/tb2.mdb");
    m_connection = QStringLiteral("ItemDatabase-") + QUuid::createUuid().toString();
    const DatabaseOpenResult opened = openDatabase(databasePath, m_connection);
    if (!opened.ok()) {
        const Startup::OpenFailure failure = Startup::describeOpenFailure(opened);
        if (failure.title.isEmpty())
            m_prompts.message(failure.text);
        else
            m_prompts.message(failure.text, failure.title, PromptIcon::Critical);
        m_exitCode = 1;
        return false;
    }

    m_context = std::unique_ptr<AppContext>(
        new AppContext{m_prompts, m_shell, m_store, m_timeZone, opened.database, {}});
    AppState& state = m_context->state;
    state.appPath = appPath;
    state.databasePath = databasePath;
    state.themeSetFN = appPath + QLatin1String("/standard.tbt");
    Startup::prepareSettings(m_store, appPath);
    state.timeZoneBias = m_timeZone.bias();

    frmSplash splash;
    splash.show();
    QCoreApplication::processEvents();

    // One copy per application folder: a second one would share tb2.mdb with the first.
    m_lock = std::make_unique<QLockFile>(appPath + QLatin1String("/tallybid.lock"));
    if (!m_lock->tryLock(0)) {
        splash.close();
        m_prompts.message(Texts::kAlreadyRunning);
        m_exitCode = 0;
        return false;
    }

    state.options = OptionsRecord::load(m_store);
    m_window = std::make_unique<frmItems>(*m_context, screenPixels);
    Startup::deletePageCache(appPath);
    m_window->show();
    splash.finish(m_window.get());
    return true;
}
