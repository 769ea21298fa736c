// Start-up: the command line, where the application folder is and how a new one is set up, the
// refusals and failure texts; and the find requests and the calculator. The installed program
// itself, first start and second copy included, is tested in tests/install.
#include "../support/TestEnvironment.h"
#include "app/AppFolder.h"
#include "app/Calculator.h"
#include "app/FindCriteria.h"
#include "app/Launcher.h"
#include "app/Startup.h"
#include "app/frmItems.h"
#include "app/texts.h"
#include "platform/Database.h"
#include "platform/KeyCache.h"

#include <QLineEdit>
#include <QSqlQuery>
#include <QtTest>
#include <unistd.h>

namespace {

void writeFile(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(content);
}

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("(missing)");
}

int rowCount(const QString& database)
{
    const QString name = QStringLiteral("count-") + database;
    int count = -1;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(database);
        if (db.open()) {
            QSqlQuery q(db);
            if (q.exec(QStringLiteral("SELECT count(*) FROM Items")) && q.next())
                count = q.value(0).toInt();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return count;
}

// What an installed copy ships in share/tallybid, in a temporary folder.
struct ShippedFiles
{
    ShippedFiles()
    {
        writeFile(path() + QStringLiteral("/standard.tbt"), "themes");
        writeFile(path() + QStringLiteral("/Backgr/linen.jpg"), "jpeg");
        writeFile(path() + QStringLiteral("/schema.sql"), "not for the data folder");
    }
    QString path() const { return prefix.filePath(QStringLiteral("share/tallybid")); }
    QTemporaryDir prefix;
};

} // namespace

class TestStartup : public QObject
{
    Q_OBJECT
private slots:
    void commandLine_data();
    void commandLine();
    void chooseFolder_data();
    void chooseFolder();
    void setUpDataFolder_data();
    void setUpDataFolder();
    void refusals_data();
    void refusals();
    void restartAfterChange_data();
    void restartAfterChange();
    void openFailureMessages_data();
    void openFailureMessages();
    void textSearch_data();
    void textSearch();
    void calculator_data();
    void calculator();
};

void TestStartup::commandLine_data()
{
    using Action = Startup::CommandLine::Action;
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("action");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, const QStringList& args, Action a, const char* e = "") {
        QTest::newRow(name) << (QStringList{QStringLiteral("tallybid")} + args) << int(a)
                            << QString::fromUtf8(e);
    };
    row("nothing", {}, Action::Run);
    row("folders", {"--appdir", "/a", "--configdir=/c"}, Action::Run);
    row("Qt's own options", {"-style", "fusion", "--platform=offscreen", "-reverse"}, Action::Run);
    row("version", {"--version"}, Action::Version);
    row("help wins over version", {"--version", "-h"}, Action::Help);
    row("unknown option", {"--appdir", "/a", "--frobnicate"}, Action::Wrong,
        "unknown option --frobnicate");
    row("unknown option with a value", {"--colour=red"}, Action::Wrong, "unknown option --colour");
    row("an error beats version", {"--version", "-x"}, Action::Wrong, "unknown option -x");
    row("value missing", {"--appdir"}, Action::Wrong, "--appdir needs a value");
    row("Qt option's value missing", {"-style"}, Action::Wrong, "-style needs a value");
    row("stray word", {"items.mdb"}, Action::Wrong, "unexpected argument items.mdb");
    row("folder that looks like an option", {"--appdir", "--version"}, Action::Run);
    row("batch listing checks its own", {"--listing", "3", "--frobnicate"}, Action::BatchListing);
}

void TestStartup::commandLine()
{
    QFETCH(QStringList, arguments);
    const Startup::CommandLine parsed = Startup::parseCommandLine(arguments);
    QTEST(int(parsed.action), "action");
    QTEST(parsed.error, "error");
}

void TestStartup::chooseFolder_data()
{
    QTest::addColumn<QString>("appdir"); // "" for none
    QTest::addColumn<bool>("databaseBesideProgram");
    QTest::addColumn<QString>("expected"); // BIN, DATA: the program's and the user's folders
    QTest::addColumn<int>("kind");
    QTest::newRow("named folder, trailing slash dropped")
        << "/srv/auctions/" << true << "/srv/auctions" << int(AppFolder::Kind::Named);
    QTest::newRow("root folder keeps its slash")
        << "/" << false << "/" << int(AppFolder::Kind::Named);
    QTest::newRow("portable copy") << "" << true << "BIN" << int(AppFolder::Kind::Portable);
    QTest::newRow("installed copy")
        << "" << false << "DATA/tallybid" << int(AppFolder::Kind::UserData);
}

void TestStartup::chooseFolder()
{
    QFETCH(QString, appdir);
    QFETCH(bool, databaseBesideProgram);
    QTemporaryDir bin;
    QTemporaryDir data;
    qputenv("XDG_DATA_HOME", data.path().toLocal8Bit());
    if (databaseBesideProgram)
        writeFile(bin.filePath(QStringLiteral("tb2.mdb")), "");
    QStringList arguments{QStringLiteral("tallybid")};
    if (!appdir.isEmpty())
        arguments << QStringLiteral("--appdir") << appdir;
    const AppFolder::Choice choice = AppFolder::choose(arguments, bin.path());
    QFETCH(QString, expected);
    expected.replace(QLatin1String("BIN"), bin.path()).replace(QLatin1String("DATA"), data.path());
    QCOMPARE(choice.path, expected);
    QTEST(int(choice.kind), "kind");
    QCOMPARE(Startup::appPath(arguments, bin.path()), expected);
}

void TestStartup::setUpDataFolder_data()
{
    QTest::addColumn<bool>("existing"); // the folder was set up before and then changed
    QTest::newRow("first start") << false;
    QTest::newRow("folder in use keeps its files") << true;
}

void TestStartup::setUpDataFolder()
{
    QFETCH(bool, existing);
    const ShippedFiles shipped;
    QTemporaryDir home;
    const QString folder = home.filePath(QStringLiteral(".local/share/tallybid"));
    if (existing) {
        writeFile(folder + QStringLiteral("/standard.tbt"), "my own themes");
        QVERIFY(AppFolder::setUp(folder, {}, AppFolder::builtInSchema()).isEmpty());
        QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner |
                                                  QFile::ExeOwner | QFile::ReadGroup |
                                                  QFile::ExeGroup));
        const QString db = folder + QStringLiteral("/tb2.mdb");
        {
            QSqlDatabase c =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("seed"));
            c.setDatabaseName(db);
            QVERIFY(c.open());
            QSqlQuery(c).exec(QStringLiteral("INSERT INTO Items DEFAULT VALUES"));
        }
        QSqlDatabase::removeDatabase(QStringLiteral("seed"));
    }

    QCOMPARE(AppFolder::setUp(folder, shipped.path(), AppFolder::builtInSchema()), QString());

    QCOMPARE(rowCount(folder + QStringLiteral("/tb2.mdb")), existing ? 1 : 0);
    QCOMPARE(readFile(folder + QStringLiteral("/standard.tbt")),
             existing ? QByteArray("my own themes") : QByteArray("themes"));
    QCOMPARE(readFile(folder + QStringLiteral("/Backgr/linen.jpg")), QByteArray("jpeg"));
    QVERIFY(!QFile::exists(folder + QStringLiteral("/schema.sql")));
    const QFile::Permissions others = QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther;
    // A new folder is the user's alone; one the user opened up is left as the user set it.
    QCOMPARE(bool(QFileInfo(folder).permissions() & QFile::ReadGroup), existing);
    QVERIFY(!(QFileInfo(folder).permissions() & (others & ~QFile::ReadGroup)));
}

void TestStartup::refusals_data()
{
    QTest::addColumn<QString>("problem"); // what is wrong
    QTest::addColumn<QString>("start");   // what the message starts with; FOLDER is replaced
    QTest::newRow("no lock folder") << "lock"
                                    << "Tallybid cannot keep its lock file in FOLDER (";
    QTest::newRow("read-only application folder") << "read-only"
                                                  << "Tallybid cannot write in its folder FOLDER (";
    QTest::newRow("data folder cannot be made") << "data"
                                                << "Tallybid could not set up its folder FOLDER (";
}

void TestStartup::refusals()
{
    QFETCH(QString, problem);
    TestEnvironment env;
    QTemporaryDir runtime;
    QString lockFolder = runtime.path();
    QStringList arguments{QStringLiteral("tallybid"), QStringLiteral("--appdir"), env.appPath()};
    QString folder = env.appPath();
    if (problem == QLatin1String("lock")) {
        lockFolder = folder = QStringLiteral("/proc/tallybid-runtime");
    } else if (problem == QLatin1String("read-only")) {
        if (::geteuid() == 0)
            QSKIP("root writes in any folder");
        QVERIFY(QFile::setPermissions(env.appPath(), QFile::ReadOwner | QFile::ExeOwner));
    } else {
        arguments.resize(1);
        qputenv("XDG_DATA_HOME", "/proc/tallybid-data");
        folder = QStringLiteral("/proc/tallybid-data/tallybid");
    }
    Launcher launcher(env.prompts(), env.shell(), env.store(), env.context().timeZone);
    launcher.setLockFolder(lockFolder);
    const bool started = launcher.start(arguments, {}, QSize(1280, 1024));
    QFile::setPermissions(env.appPath(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QVERIFY(!started);
    QCOMPARE(launcher.exitCode(), 1);
    QCOMPARE(env.prompts().shown().size(), 1);
    QFETCH(QString, start);
    start.replace(QLatin1String("FOLDER"), folder);
    QVERIFY2(env.prompts().shown().at(0).text.startsWith(start),
             qPrintable(env.prompts().shown().at(0).text));
    QCOMPARE(env.prompts().shown().at(0).title, Texts::kErrorTitle);
    QVERIFY(launcher.window() == nullptr);
}

// The keys a run keeps for the next start never outlive a change made between the runs.
void TestStartup::restartAfterChange_data()
{
    QTest::addColumn<QString>("change"); // run on a connection of its own between the runs
    QTest::addColumn<int>("total");
    QTest::newRow("nothing") << QString() << 7;
    QTest::newRow("an item added") << "INSERT INTO Items (ShortDescription) VALUES ('new')" << 8;
    QTest::newRow("an item deleted") << "DELETE FROM Items WHERE ID = 1" << 6;
}

void TestStartup::restartAfterChange()
{
    QFETCH(QString, change);
    TestEnvironment env;
    env.addNumberedItems(7);
    env.context().itemDatabase.close(); // the runs alone have the database open
    const QString database = env.context().state.databasePath;
    const QStringList arguments{QStringLiteral("tallybid"), QStringLiteral("--appdir"),
                                env.appPath()};
    const auto run = [&] {
        Launcher launcher(env.prompts(), env.shell(), env.store(), env.context().timeZone);
        launcher.setLockFolder(env.appPath());
        if (!launcher.start(arguments, {}, QSize(1280, 1024)))
            return QStringLiteral("not started");
        return launcher.window()->findChild<QLineEdit*>(QStringLiteral("txtTotItem"))->text();
    };
    QCOMPARE(run(), QStringLiteral("7"));
    const QString kept = KeyCache::keptFileFor(AppFolder::cacheFolder(), database);
    QVERIFY(QFileInfo::exists(kept));
    if (!change.isEmpty()) {
        {
            QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), "other");
            other.setDatabaseName(database);
            QVERIFY(other.open());
            QVERIFY(QSqlQuery(other).exec(change));
        }
        QSqlDatabase::removeDatabase(QStringLiteral("other"));
    }
    QTEST(run().toInt(), "total");
    QTEST(rowCount(database), "total");
}

void TestStartup::openFailureMessages_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");
    QTest::newRow("missing file") << kErrFileNotFound << Texts::kDbMissing << QString();
    QTest::newRow("other error") << kErrNotADatabase
                                 << QStringLiteral("Error # 3343 was generated by DAO.Workspace\n"
                                                   "Unrecognized database format 'x'.")
                                 << QStringLiteral("Error");
}

void TestStartup::openFailureMessages()
{
    QFETCH(int, number);
    DatabaseOpenResult r;
    r.errorNumber = number;
    r.source = QStringLiteral("DAO.Workspace");
    r.description = QStringLiteral("Unrecognized database format 'x'.");
    const Startup::OpenFailure f = Startup::describeOpenFailure(r);
    QTEST(f.text, "text");
    QTEST(f.title, "title");
}

void TestStartup::textSearch_data()
{
    QTest::addColumn<QStringList>("boxes"); // eBay number, description, e-mail, name
    QTest::addColumn<QString>("criteria");
    QTest::newRow("nothing") << QStringList{"", " ", "", ""} << "";
    QTest::newRow("eBay number") << QStringList{"123", "", "", ""} << "EbayID LIKE '123' ";
    QTest::newRow("description anywhere")
        << QStringList{"", "Beanie", "", ""}
        << "(([ShortDescription] LIKE \"*Beanie*\") OR ([Description] LIKE \"*Beanie*\")) ";
    QTest::newRow("number and name joined")
        << QStringList{"42", "", "", "Ann*"} << "EbayID LIKE '42' And BuyerName LIKE 'Ann*' ";
    QTest::newRow("all four")
        << QStringList{"1", "x", "*aol.com", "Bo"}
        << "EbayID LIKE '1' And (([ShortDescription] LIKE \"*x*\") OR ([Description] LIKE "
           "\"*x*\")) And BuyerEmail LIKE '*aol.com' And BuyerName LIKE 'Bo' ";
}

void TestStartup::textSearch()
{
    QFETCH(QStringList, boxes);
    QTEST(FindCriteria::textSearch(boxes.at(0), boxes.at(1), boxes.at(2), boxes.at(3)), "criteria");
}

void TestStartup::calculator_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("display");
    QTest::newRow("decimals without binary noise") << "0.1+0.2="
                                                   << "0.3";
    QTest::newRow("chained operations") << "12*3-6="
                                        << "30";
    QTest::newRow("one point only") << "1..5*2="
                                    << "3";
    QTest::newRow("division by zero") << "5/0="
                                      << "Error";
    QTest::newRow("typing after an error starts afresh") << "5/0=7"
                                                         << "7";
    QTest::newRow("backspace and sign") << "123<~"
                                        << "-12";
}

void TestStartup::calculator()
{
    QFETCH(QString, keys);
    Calculator c;
    for (const QChar k : keys) {
        if (k.isDigit())
            c.digit(k.digitValue());
        else if (k == u'.')
            c.point();
        else if (k == u'=')
            c.equals();
        else if (k == u'<')
            c.backspace();
        else if (k == u'~')
            c.changeSign();
        else
            c.operation(k);
    }
    QTEST(c.display(), "display");
}

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
