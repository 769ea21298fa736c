#pragma once

#include "platform/ScriptedPrompts.h"
#include "platform/SettingsStore.h"
#include "platform/Shell.h"
#include "platform/TimeZone.h"
#include "settings/AppContext.h"

#include <QTemporaryDir>
#include <memory>

// A fresh application folder for one test: an empty tb2.mdb made from the schema, a private
// settings folder, scripted prompts, a recording shell and a fixed time zone, all wired into an
// AppContext as start-up would.
class TestEnvironment
{
public:
    TestEnvironment();
    ~TestEnvironment();
    TestEnvironment(const TestEnvironment&) = delete;
    TestEnvironment& operator=(const TestEnvironment&) = delete;

    QString appPath() const { return m_dir.path(); }
    QString path(const QString& name) const { return m_dir.filePath(name); }
    AppContext& context() { return *m_context; }
    ScriptedPrompts& prompts() { return m_prompts; }
    RecordingShell& shell() { return m_shell; }
    SettingsStore& store() { return *m_store; }

    // Inserts items; each map holds column -> stored value. Returns the new IDs.
    QList<qint64> addItems(const QList<QVariantMap>& rows);
    // n items with ShortDescription "Item 1".."Item n"; every third one inactive.
    QList<qint64> addNumberedItems(int n);
    int itemCount() const;
    QVariant storedValue(qint64 id, const QString& column) const;

    // Copies a file into the application folder (media, pictures).
    QString writeFile(const QString& name, const QByteArray& content);

private:
    QTemporaryDir m_dir;
    ScriptedPrompts m_prompts;
    RecordingShell m_shell;
    std::unique_ptr<SettingsStore> m_store;
    FixedTimeZone m_timeZone{300};
    std::unique_ptr<AppContext> m_context;
    QString m_connection;
};

// Starts /usr/bin/python3 with a script of tests/support and returns once it printed its
// first line (the port it listens on). The process is killed when the object goes.
class PythonServer
{
public:
    explicit PythonServer(const QString& script, const QStringList& arguments = {});
    ~PythonServer();
    int port() const { return m_port; }
    bool isRunning() const { return m_port > 0; }
    QString output() const;

private:
    std::unique_ptr<class QProcess> m_process;
    int m_port = 0;
};
