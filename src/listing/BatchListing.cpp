#include "listing/BatchListing.h"

#include "db/ItemColumns.h"
#include "listing/ListingGenerator.h"
#include "platform/Database.h"
#include "platform/SettingsStore.h"
#include "settings/SettingsCatalogue.h"

#include <QCoreApplication>
#include <QDir>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QUuid>

namespace {

struct Options
{
    QString appDir;
    QString itemId;
    QString theme = QStringLiteral("Default");
    QString themeSet;
    QString placement = QStringLiteral("Left");
    QString configDir;
    bool remote = false;
    bool escape = false;
    bool help = false;
};

// Reads the arguments; returns what is wrong with them, or "" when they make sense.
QString parse(const QStringList& arguments, Options& o)
{
    QStringList args = arguments;
    if (!args.isEmpty() && !args.first().startsWith(u'-'))
        args.removeFirst();
    bool sawListing = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        QString name = args.at(i);
        QString value;
        bool hasValue = false;
        if (const qsizetype eq = name.indexOf(u'=');
            name.startsWith(QLatin1String("--")) && eq > 0) {
            value = name.mid(eq + 1);
            name = name.left(eq);
            hasValue = true;
        }
        const auto take = [&](QString& into) -> bool {
            if (!hasValue) {
                if (i + 1 >= args.size())
                    return false;
                value = args.at(++i);
            }
            into = value;
            return true;
        };
        bool ok = true;
        if (name == QLatin1String("--help") || name == QLatin1String("-h"))
            o.help = true;
        else if (name == QLatin1String("--remote"))
            o.remote = true;
        else if (name == QLatin1String("--escape"))
            o.escape = true;
        else if (name == QLatin1String("--appdir"))
            ok = take(o.appDir);
        else if (name == QLatin1String("--listing"))
            ok = sawListing = take(o.itemId);
        else if (name == QLatin1String("--theme"))
            ok = take(o.theme);
        else if (name == QLatin1String("--themeset"))
            ok = take(o.themeSet);
        else if (name == QLatin1String("--placement"))
            ok = take(o.placement);
        else if (name == QLatin1String("--configdir"))
            ok = take(o.configDir);
        else
            return QStringLiteral("unknown argument ") + name;
        if (!ok)
            return name + QStringLiteral(" needs a value");
    }
    if (o.help)
        return {};
    if (!sawListing)
        return QStringLiteral("--listing ID is required");
    static const QStringList placements{QStringLiteral("Left"), QStringLiteral("Right"),
                                        QStringLiteral("Top"), QStringLiteral("Bottom")};
    if (!placements.contains(o.placement))
        return QStringLiteral("--placement must be Left, Right, Top or Bottom");
    return {};
}

void report(QTextStream& err, const ThemeSetMessage& message)
{
    QString text = message.text;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    err << message.title << ": " << text << '\n';
}

QString defaultAppDir()
{
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath();
    return QDir::currentPath();
}

QString configFolder(const Options& o)
{
    if (!o.configDir.isEmpty())
        return o.configDir;
    const QString fromEnvironment = qEnvironmentVariable("TALLYBID_CONFIG_DIR");
    return fromEnvironment.isEmpty() ? SettingsStore::defaultFolder() : fromEnvironment;
}

// Closes and forgets the private connection however the run ends.
class Connection
{
public:
    Connection() : m_name(QStringLiteral("batch-listing-") + QUuid::createUuid().toString()) {}
    ~Connection()
    {
        if (QSqlDatabase::contains(m_name)) {
            QSqlDatabase::database(m_name, false).close();
            QSqlDatabase::removeDatabase(m_name);
        }
    }
    const QString& name() const { return m_name; }

private:
    QString m_name;
};

// Fills the item's values into the request, as the item window's boxes would show them.
std::optional<ThemeSetMessage> readItem(const QString& databasePath, const QString& id,
                                        ListingRequest& request)
{
    bool numeric = false;
    const qint64 itemId = id.toLongLong(&numeric);
    const ThemeSetMessage missing{QStringLiteral("There is no item with ID ") + id +
                                      QStringLiteral(" in ") + databasePath + u'.',
                                  QStringLiteral("Missing Item"), PromptIcon::Exclamation};
    if (!numeric)
        return missing;
    Connection connection;
    {
        const DatabaseOpenResult opened = openDatabase(databasePath, connection.name());
        if (!opened.ok())
            return ThemeSetMessage{QStringLiteral("Error # ") +
                                       QString::number(opened.errorNumber) +
                                       QStringLiteral(" was generated by ") + opened.source +
                                       QStringLiteral("\r\n") + opened.description,
                                   QStringLiteral("Error"), PromptIcon::Exclamation};
        QSqlQuery query(opened.database);
        query.prepare(
            QStringLiteral("SELECT ShortDescription, Description, Picture1Path, "
                           "Picture2Path, Picture3Path, Reserve FROM Items WHERE ID = ?"));
        query.addBindValue(itemId);
        if (!query.exec() || !query.next())
            return missing;
        const auto text = [&](int column) {
            return ItemColumns::toText(ColumnKind::Text, query.value(column));
        };
        request.shortDescription = text(0);
        request.description = text(1);
        request.picture1Path = text(2);
        request.picture2Path = text(3);
        request.picture3Path = text(4);
        request.reserve = ItemColumns::toText(ColumnKind::Money, query.value(5));
    }
    return {};
}

} // namespace

QString batchListingHelp()
{
    return QStringLiteral(
        "Usage: tallybid --appdir DIR --listing ID [options]\n"
        "Writes the advertisement of one item to DIR/listing.htm and prints it, without\n"
        "opening a window.\n"
        "\n"
        "  --appdir DIR          application folder holding tb2.mdb (default: the program's\n"
        "                        folder when it holds tb2.mdb, else the user's data folder)\n"
        "  --listing ID          the item's ID number in the item database\n"
        "  --theme NAME          theme to style the listing with (default: Default)\n"
        "  --themeset FILE       themeset file holding the theme (default: DIR/standard.tbt)\n"
        "  --placement WHERE     Left, Right, Top or Bottom: where the pictures go\n"
        "                        (default: Left)\n"
        "  --remote              refer to pictures and media by their names under the web\n"
        "                        images URL, as the published listing does (default: files on\n"
        "                        this computer)\n"
        "  --escape              escape the markup, as it goes into the start-auction form\n"
        "  --configdir DIR       settings folder (default: $TALLYBID_CONFIG_DIR, else\n"
        "                        ~/.config/tallybid)\n"
        "  --help                show this text\n"
        "\n"
        "The texts of the listing (sub heading, payment options, tax and reserve messages,\n"
        "link to other auctions) and the web images URL come from the settings, as the Ad\n"
        "Studio shows them. The theme's media files are those named in the themeset.\n"
        "\n"
        "Exit status: 0 listing written; 1 refused, with the reason printed as \"title: text\";\n"
        "2 wrong arguments.\n");
}

int runBatchListing(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    Options o;
    if (const QString wrong = parse(arguments, o); !wrong.isEmpty()) {
        err << "tallybid: " << wrong << "\n" << batchListingHelp();
        err.flush();
        return 2;
    }
    if (o.help) {
        out << batchListingHelp();
        out.flush();
        return 0;
    }

    ListingRequest request;
    request.appPath = o.appDir.isEmpty() ? defaultAppDir() : o.appDir;
    while (request.appPath.size() > 1 && request.appPath.endsWith(u'/'))
        request.appPath.chop(1);
    request.themeSetPath =
        o.themeSet.isEmpty() ? request.appPath + u'/' + ThemeSetText::kStandardFile : o.themeSet;
    request.themeName = o.theme;
    request.placement = o.placement;
    request.remote = o.remote;
    request.escape = o.escape;

    if (auto failure = readItem(request.appPath + QStringLiteral("/tb2.mdb"), o.itemId, request)) {
        report(err, *failure);
        err.flush();
        return 1;
    }

    // The media as the Ad Studio holds them right after loading the theme. When the theme
    // cannot be loaded, the generator's own lookup explains why.
    const ThemeLoadResult loaded = loadTheme(request.themeSetPath, o.theme, request.appPath);
    if (loaded.theme)
        request.media = ListingMedia::fromTheme(*loaded.theme);

    const SettingsStore store(configFolder(o));
    request.roleTexts = loadRoleTexts(store);
    request.imageLoc = readSetting(store, Settings::kOptions, QStringLiteral("ImageLoc"));
    request.ebaySellerReport =
        readSetting(store, Settings::kOptions, QStringLiteral("EbaySellerReport"));
    request.userEmail = readSetting(store, Settings::kOptions, QStringLiteral("UserEmail"));

    const ListingResult result = generateListing(request);
    for (const ThemeSetMessage& message : result.messages)
        report(err, message);
    err.flush();
    if (!result.ok())
        return 1;
    out << result.html << "\r\n";
    out.flush();
    return 0;
}
