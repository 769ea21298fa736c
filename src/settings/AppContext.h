#pragma once

#include "settings/OptionsRecord.h"

#include <QSqlDatabase>
#include <QString>

#include <functional>
#include <memory>

class KeyPrefetch;
class Prompts;
class Shell;
class SettingsStore;
class TimeZone;

// Requests and results that pass between the item window and the windows it opens, plus the
// values start-up fixes for the whole run. One object, so tests can start from a clean slate.
struct AppState
{
    QString appPath;      // application folder, no trailing separator
    QString databasePath; // appPath + "/tb2.mdb"
    OptionsRecord options;
    int timeZoneBias = 0;

    // The item the item window shows, for the windows it opens (set when the record changes).
    qint64 currentItemId = 0;
    QString currentEbayId, currentShortDescription;

    QString findCriteria; // "ITEM SEARCH", a criteria text, or empty
    QString pageUrl, pageText;
    QString ftpAction;
    QString uploadFiles[6]; // slots 1 to 5 are used
    QString noteKind;
    QString themeSetFN;

    // The keys of the view the item window reopens, read by start-up while the window is built.
    std::shared_ptr<KeyPrefetch> startupKeys;
    // Returns once the backup that start-up makes beside the window is written; empty when none.
    std::function<void()> waitForStartupBackup;
};

// Everything a window needs from outside itself: the platform seams, the open item database
// and the shared state. Owned by main() (or by a test) and outlives every window.
struct AppContext
{
    Prompts& prompts;
    Shell& shell;
    SettingsStore& store;
    TimeZone& timeZone;
    QSqlDatabase itemDatabase;
    AppState state;

    QString appFile(const QString& name) const { return state.appPath + u'/' + name; }
};
