// Tallybid: the program's entry. Reads the command line, checks for a display, then hands over
// to the Launcher with the real dialogs, desktop shell, settings folder and time zone.
#include "app/AppFolder.h"
#include "app/Launcher.h"
#include "app/Startup.h"
#include "listing/BatchListing.h"
#include "platform/AppImages.h"
#include "platform/FontWarmUp.h"
#include "platform/QtPrompts.h"
#include "platform/SettingsStore.h"
#include "platform/Shell.h"
#include "platform/StartupHeap.h"
#include "platform/TimeZone.h"

#include <QApplication>
#include <QIcon>
#include <QScreen>
#include <QTextStream>
#include <cstdio>
#include <string_view>

namespace {

bool displayAvailable()
{
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return true;
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#else
    return true;
#endif
}

constexpr const char* kNoDisplay =
    "Tallybid is a desktop program and needs a graphical display, but none was found\n"
    "(DISPLAY and WAYLAND_DISPLAY are not set). To run it without a screen, start it under a\n"
    "virtual display:\n"
    "    xvfb-run -a tallybid [--appdir DIR]\n";

// Runs before the libraries' own start-up code, so the font reading overlaps that too; only
// for a command line that opens a window (a wrong one is rare enough to pay for the reading).
void readFontsBeforeMain(int argc, char** argv, char** environment)
{
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--help" || argument == "-h" || argument == "--version" ||
            argument.starts_with("--listing"))
            return;
    }
    FontWarmUp::startBeforeMain(environment);
}
[[gnu::used, gnu::section(".preinit_array")]] FontWarmUp::BeforeMainHook gReadFontsBeforeMain =
    readFontsBeforeMain;

} // namespace

int main(int argc, char* argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const Startup::CommandLine commandLine = Startup::parseCommandLine(arguments);
    switch (commandLine.action) {
    case Startup::CommandLine::Action::Wrong:
        std::fprintf(stderr, "tallybid: %s\n\n%s", qPrintable(commandLine.error),
                     qPrintable(Startup::usage()));
        return 2;
    case Startup::CommandLine::Action::Help:
        std::fputs(Startup::usage().toLocal8Bit().constData(), stdout);
        std::fputs("\n", stdout);
        std::fputs(batchListingHelp().toLocal8Bit().constData(), stdout);
        return 0;
    case Startup::CommandLine::Action::Version:
        std::fputs(Startup::versionText().toLocal8Bit().constData(), stdout);
        return 0;
    case Startup::CommandLine::Action::BatchListing: {
        // One advertisement, written and printed without any window or display.
        QCoreApplication app(argc, argv);
        QStringList batchArguments = QCoreApplication::arguments();
        // The same folder a window start would use, but never set up: a batch run only reads.
        if (AppFolder::optionValue(batchArguments, QStringLiteral("--appdir")).isEmpty())
            batchArguments << QStringLiteral("--appdir")
                           << Startup::appPath(batchArguments,
                                               QCoreApplication::applicationDirPath());
        QTextStream out(stdout);
        QTextStream err(stderr);
        const int code = runBatchListing(batchArguments, out, err);
        out.flush();
        err.flush();
        return code;
    }
    case Startup::CommandLine::Action::Run:
        break;
    }
    if (!displayAvailable()) {
        std::fputs(kNoDisplay, stderr);
        return 2;
    }

    reserveStartupHeap(); // the window to come takes its memory from large pages
    FontWarmUp fonts;     // the launcher extends its work (prepare) and waits for it
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tallybid"));
    QApplication::setApplicationVersion(QStringLiteral(TALLYBID_VERSION));
    // Lets the desktop match the windows to the installed entry and its icon.
    QGuiApplication::setDesktopFileName(QLatin1String(AppFolder::kDesktopId));
    QApplication::setWindowIcon(
        QIcon::fromTheme(QLatin1String(AppFolder::kDesktopId),
                         AppImages::pngIcon(QStringLiteral(":/icons/tallybid.png"))));

    QtPrompts prompts;
    DesktopShell shell;
    SystemTimeZone timeZone;
    SettingsStore store(Startup::configFolder(arguments));
    const QScreen* screen = QGuiApplication::primaryScreen();

    Launcher launcher(prompts, shell, store, timeZone);
    if (!launcher.start(arguments, QCoreApplication::applicationDirPath(),
                        screen ? screen->size() : QSize(1024, 768)))
        return launcher.exitCode();
    return app.exec();
}
