#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

class SettingsStore;
struct DatabaseOpenResult;

// Start-up rules that need no window.
namespace Startup {

// The application folder: "--appdir DIR" when given, else the executable's folder when it holds
// tb2.mdb, else the user's data folder (see AppFolder); never with a trailing separator (a root
// folder keeps its single "/").
QString appPath(const QStringList& arguments, const QString& executableDir);
// The settings folder: "--configdir DIR", else $TALLYBID_CONFIG_DIR, else the user's default.
QString configFolder(const QStringList& arguments);

// What the screen size means for the main window: on a screen below 800 by 600 pixels the
// default width is the screen width less 150 twips and the view and find buttons are hidden.
struct ScreenRule
{
    bool hideViewButtons = false;
    int defaultWidthTwips = 11800;
};
ScreenRule screenRule(QSize screenPixels);

inline constexpr int kTwipsPerPixel = 15;

// What the command line asks for. Options of Qt's own (-style, -platform...) pass through.
struct CommandLine
{
    enum class Action
    {
        Run,
        Help,
        Version,
        BatchListing,
        Wrong
    };
    Action action = Action::Run;
    QString error; // for Wrong: "unknown option --x", "--appdir needs a value"...
};
CommandLine parseCommandLine(const QStringList& arguments);
// "tallybid --help": the window options; the batch listing adds its own text after it.
QString usage();
QString versionText();

// The message shown when tb2.mdb cannot be opened, and its title.
struct OpenFailure
{
    QString text;
    QString title;
};
OpenFailure describeOpenFailure(const DatabaseOpenResult& result);

// Records the application folder for sibling programs, seeds the default links and carries
// old settings over.
void prepareSettings(SettingsStore& store, const QString& appPath);
// Removes the cached start and feedback forms so each run reads them afresh.
void deletePageCache(const QString& appPath);

} // namespace Startup
