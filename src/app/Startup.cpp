#include "app/Startup.h"

#include "app/AppFolder.h"
#include "app/texts.h"
#include "platform/Database.h"
#include "platform/SettingsStore.h"
#include "settings/SettingsCatalogue.h"

#include <QFile>

namespace Startup {

using AppFolder::optionValue;

QString appPath(const QStringList& arguments, const QString& executableDir)
{
    return AppFolder::choose(arguments, executableDir).path;
}

QString configFolder(const QStringList& arguments)
{
    QString dir = optionValue(arguments, QStringLiteral("--configdir"));
    if (dir.isEmpty())
        dir = qEnvironmentVariable("TALLYBID_CONFIG_DIR");
    return dir.isEmpty() ? SettingsStore::defaultFolder() : dir;
}

namespace {

// The options QApplication takes for itself, with one dash or two; true when a value follows.
bool qtOption(const QString& name, bool& takesValue)
{
    static const QStringList withValue{
        QStringLiteral("platform"),        QStringLiteral("platformpluginpath"),
        QStringLiteral("platformtheme"),   QStringLiteral("plugin"),
        QStringLiteral("qwindowgeometry"), QStringLiteral("qwindowicon"),
        QStringLiteral("qwindowtitle"),    QStringLiteral("session"),
        QStringLiteral("style"),           QStringLiteral("stylesheet"),
        QStringLiteral("display"),         QStringLiteral("geometry")};
    static const QStringList flags{QStringLiteral("reverse"), QStringLiteral("widgetcount"),
                                   QStringLiteral("nograb"), QStringLiteral("dograb"),
                                   QStringLiteral("sync")};
    QString bare = name;
    while (bare.startsWith(u'-'))
        bare.remove(0, 1);
    takesValue = withValue.contains(bare);
    return takesValue || flags.contains(bare);
}

} // namespace

CommandLine parseCommandLine(const QStringList& arguments)
{
    static const QStringList ownWithValue{QStringLiteral("--appdir"),
                                          QStringLiteral("--configdir")};
    CommandLine result;
    bool help = false;
    bool version = false;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        if (argument == QLatin1String("--listing") ||
            argument.startsWith(QLatin1String("--listing="))) {
            // The batch listing reads every argument itself and has its own usage.
            return {CommandLine::Action::BatchListing, {}};
        }
    }
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        const qsizetype eq = argument.indexOf(u'=');
        const QString name = eq > 0 ? argument.left(eq) : argument;
        bool takesValue = false;
        if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            help = true;
        } else if (argument == QLatin1String("--version")) {
            version = true;
        } else if (ownWithValue.contains(name) ||
                   (argument.startsWith(u'-') && qtOption(name, takesValue) && takesValue)) {
            if (eq > 0)
                continue;
            if (i + 1 >= arguments.size())
                return {CommandLine::Action::Wrong, name + QLatin1String(" needs a value")};
            ++i;
        } else if (argument.startsWith(u'-') && qtOption(name, takesValue)) {
            continue;
        } else if (argument.startsWith(u'-')) {
            return {CommandLine::Action::Wrong, QLatin1String("unknown option ") + name};
        } else {
            return {CommandLine::Action::Wrong, QLatin1String("unexpected argument ") + argument};
        }
    }
    if (help)
        result.action = CommandLine::Action::Help;
    else if (version)
        result.action = CommandLine::Action::Version;
    return result;
}

QString usage()
{
    return QStringLiteral(
        "Usage: tallybid [--appdir DIR] [--configdir DIR]\n"
        "       tallybid --version | --help\n"
        "  --appdir DIR     the application folder holding tb2.mdb (default: the program's\n"
        "                   folder when it holds tb2.mdb, else $XDG_DATA_HOME/tallybid, that is\n"
        "                   ~/.local/share/tallybid, made on the first start)\n"
        "  --configdir DIR  where the settings are kept (default: $TALLYBID_CONFIG_DIR or\n"
        "                   ~/.config/tallybid)\n"
        "  --version        print the program's name and version\n"
        "  --help           show this text\n"
        "Only one copy runs per user.\n");
}

QString versionText()
{
    return QStringLiteral("Tallybid " TALLYBID_VERSION "\n");
}

ScreenRule screenRule(QSize screenPixels)
{
    ScreenRule rule;
    if (screenPixels.width() < 800 || screenPixels.height() < 600) {
        rule.hideViewButtons = true;
        rule.defaultWidthTwips = screenPixels.width() * kTwipsPerPixel - 150;
    }
    return rule;
}

OpenFailure describeOpenFailure(const DatabaseOpenResult& result)
{
    if (result.errorNumber == kErrFileNotFound)
        return {Texts::kDbMissing, QString()};
    return {QLatin1String("Error # ") + QString::number(result.errorNumber) +
                QLatin1String(" was generated by ") + result.source + u'\n' + result.description,
            Texts::kErrorTitle};
}

void prepareSettings(SettingsStore& store, const QString& appPath)
{
    store.save(Settings::kApp, Settings::kSystemData, QStringLiteral("AppPath"), appPath);
    seedDefaultLinks(store);
    migrateSettings(store);
}

void deletePageCache(const QString& appPath)
{
    QFile::remove(appPath + QLatin1String("/Start.htm"));
    QFile::remove(appPath + QLatin1String("/Leave.htm"));
}

} // namespace Startup
