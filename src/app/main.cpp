// Tallybid: the program's entry. Checks for a display, then hands over to the Launcher with
// the real dialogs, desktop shell, settings folder and time zone.
#include "app/Launcher.h"
#include "app/Startup.h"
#include "listing/BatchListing.h"
#include "platform/QtPrompts.h"
#include "platform/SettingsStore.h"
#include "platform/Shell.h"
#include "platform/TimeZone.h"

#include <QApplication>
#include <QIcon>
#include <QScreen>
#include <QTextStream>
#include <algorithm>
#include <cstdio>

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

constexpr const char* kUsage =
    "Usage: tallybid [--appdir DIR] [--configdir DIR]\n"
    "  --appdir DIR     the application folder holding tb2.mdb (default: the program's folder)\n"
    "  --configdir DIR  where the settings are kept (default: $TALLYBID_CONFIG_DIR or\n"
    "                   ~/.config/tallybid)\n";

constexpr const char* kNoDisplay =
    "Tallybid is a desktop program and needs a graphical display, but none was found\n"
    "(DISPLAY and WAYLAND_DISPLAY are not set). To run it without a screen, start it under a\n"
    "virtual display:\n"
    "    xvfb-run -a tallybid [--appdir DIR]\n";

} // namespace

int main(int argc, char* argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const bool batchListing =
        std::any_of(arguments.cbegin(), arguments.cend(), [](const QString& a) {
            return a == QLatin1String("--listing") || a.startsWith(QLatin1String("--listing="));
        });
    if (arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"))) {
        std::fputs(kUsage, stdout);
        std::fputs("\n", stdout);
        std::fputs(batchListingHelp().toLocal8Bit().constData(), stdout);
        return 0;
    }
    if (batchListing) {
        // One advertisement, written and printed without any window or display.
        QCoreApplication app(argc, argv);
        QTextStream out(stdout);
        QTextStream err(stderr);
        const int code = runBatchListing(QCoreApplication::arguments(), out, err);
        out.flush();
        err.flush();
        return code;
    }
    if (!displayAvailable()) {
        std::fputs(kNoDisplay, stderr);
        return 2;
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tallybid"));
    QApplication::setApplicationVersion(QStringLiteral(TALLYBID_VERSION));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/tallybid.png")));

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
