// Start-up: the command line, where the application folder is and how a new one is set up, the
// refusals and failure texts, what a start leaves behind; and the find requests and the calculator.
// The installed program itself, first start and second copy included, is tested in tests/install.
#include "ItemWindowFixture.h"
#include "app/AppFolder.h"
#include "app/Calculator.h"
#include "app/FindCriteria.h"
#include "app/Startup.h"
#include "platform/Database.h"
#include "platform/KeyCache.h"
#include "settings/SettingsCatalogue.h"

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

} // namespace

class TestStartup : public QObject
{
    Q_OBJECT
private slots:
    void commandLine_data()
    {
        using Action = Startup::CommandLine::Action;
        addColumns<QStringList, int, QString>("arguments", "action", "error");
        const auto row = [](const char* name, const QStringList& args, Action a,
                            const char* e = "") {
            QTest::newRow(name) << (QStringList{u"tallybid"_s} + args) << int(a)
                                << QString::fromUtf8(e);
        };
        // --version, an unknown option and a stray word are run by the installed program's test
        // clang-format off
        row("nothing", {}, Action::Run);
        row("folders", {"--appdir", "/a", "--configdir=/c"}, Action::Run);
        row("Qt's own options", {"-style", "fusion", "--platform=offscreen", "-reverse"}, Action::Run);
        row("help wins over version", {"--version", "-h"}, Action::Help);
        row("unknown option with a value", {"--colour=red"}, Action::Wrong, "unknown option --colour");
        row("an error beats version", {"--version", "-x"}, Action::Wrong, "unknown option -x");
        row("value missing", {"--appdir"}, Action::Wrong, "--appdir needs a value");
        row("Qt option's value missing", {"-style"}, Action::Wrong, "-style needs a value");
        row("folder that looks like an option", {"--appdir", "--version"}, Action::Run);
        row("batch listing checks its own", {"--listing", "3", "--frobnicate"}, Action::BatchListing);
        // clang-format on
    }
    void commandLine()
    {
        QFETCH(QStringList, arguments);
        const Startup::CommandLine parsed = Startup::parseCommandLine(arguments);
        QTEST(int(parsed.action), "action");
        QTEST(parsed.error, "error");
    }

    void chooseFolder_data()
    {
        using enum AppFolder::Kind;
        // appdir "" for none; in expected BIN and DATA are the program's and the user's folders
        addColumns<QString, bool, QString, int>("appdir", "databaseBesideProgram", "expected",
                                                "kind");
        // clang-format off
        QTest::newRow("named folder, trailing slash dropped") << "/srv/auctions/" << true << "/srv/auctions" << int(Named);
        QTest::newRow("root folder keeps its slash") << "/" << false << "/" << int(Named);
        QTest::newRow("portable copy") << "" << true << "BIN" << int(Portable);
        QTest::newRow("installed copy") << "" << false << "DATA/tallybid" << int(UserData);
        // clang-format on
    }
    void chooseFolder()
    {
        QFETCH(QString, appdir);
        QFETCH(QString, expected);
        QFETCH(bool, databaseBesideProgram);
        QTemporaryDir bin, data;
        qputenv("XDG_DATA_HOME", data.path().toLocal8Bit());
        if (databaseBesideProgram)
            writeFile(bin.filePath(u"tb2.mdb"_s), "");
        QStringList arguments{u"tallybid"_s};
        if (!appdir.isEmpty())
            arguments << u"--appdir"_s << appdir;
        const AppFolder::Choice choice = AppFolder::choose(arguments, bin.path());
        expected.replace("BIN"_L1, bin.path()).replace("DATA"_L1, data.path());
        QCOMPARE(choice.path, expected);
        QTEST(int(choice.kind), "kind");
        QCOMPARE(Startup::appPath(arguments, bin.path()), expected);
    }

    void setUpDataFolder_data()
    {
        QTest::addColumn<bool>("existing"); // the folder was set up before and then changed
        QTest::newRow("first start") << false;
        QTest::newRow("folder in use keeps its files") << true;
    }
    void setUpDataFolder()
    {
        QFETCH(bool, existing);
        QTemporaryDir prefix; // what an installed copy ships in share/tallybid
        const QString shipped = prefix.filePath(u"share/tallybid"_s);
        writeFile(shipped + u"/standard.tbt"_s, "themes");
        writeFile(shipped + u"/Backgr/linen.jpg"_s, "jpeg");
        writeFile(shipped + u"/schema.sql"_s, "not for the data folder");
        QTemporaryDir home;
        const QString folder = home.filePath(u".local/share/tallybid"_s);
        const QString db = folder + u"/tb2.mdb"_s;
        if (existing) {
            writeFile(folder + u"/standard.tbt"_s, "my own themes");
            QVERIFY(AppFolder::setUp(folder, {}, AppFolder::builtInSchema()).isEmpty());
            QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner |
                                                      QFile::ExeOwner | QFile::ReadGroup |
                                                      QFile::ExeGroup));
            QCOMPARE(sqlValue(db, u"INSERT INTO Items DEFAULT VALUES"_s), QVariant());
        }

        QCOMPARE(AppFolder::setUp(folder, shipped, AppFolder::builtInSchema()), QString());

        QCOMPARE(rowCount(db), existing ? 1 : 0);
        QCOMPARE(readFile(folder + u"/standard.tbt"_s),
                 existing ? QByteArray("my own themes") : QByteArray("themes"));
        QCOMPARE(readFile(folder + u"/Backgr/linen.jpg"_s), QByteArray("jpeg"));
        QVERIFY(!QFile::exists(folder + u"/schema.sql"_s));
        const QFile::Permissions others = QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther;
        // A new folder is the user's alone; one the user opened up is left as the user set it.
        QCOMPARE(bool(QFileInfo(folder).permissions() & QFile::ReadGroup), existing);
        QVERIFY(!(QFileInfo(folder).permissions() & (others & ~QFile::ReadGroup)));
    }

    // What start-up says when it cannot go on (FOLDER is replaced; a message ending in "(" goes
    // on with the system's reason), and what it does when it can.
    void launcher_data()
    {
        addColumns<QString, QString, QString>("problem", "message", "title");
        // clang-format off
        QTest::newRow("no lock folder") << "lock" << "Tallybid cannot keep its lock file in FOLDER (" << Texts::kErrorTitle;
        QTest::newRow("read-only application folder") << "read-only" << "Tallybid cannot write in its folder FOLDER (" << Texts::kErrorTitle;
        QTest::newRow("data folder cannot be made") << "data" << "Tallybid could not set up its folder FOLDER (" << Texts::kErrorTitle;
        QTest::newRow("no database") << "missing" << Texts::kDbMissing << kDefaultTitle;
        QTest::newRow("second copy") << "locked" << Texts::kAlreadyRunning << kDefaultTitle;
        QTest::newRow("fresh folder") << "none" << QString() << QString();
        // clang-format on
    }
    void launcher()
    {
        QFETCH(QString, problem);
        QFETCH(QString, message);
        TestEnvironment env;
        QTemporaryDir runtime, empty;
        QLockFile other(env.path(u"tallybid.lock"_s));
        env.writeFile(u"Start.htm"_s, "cached");
        QString lockFolder = runtime.path();
        QStringList arguments = appdirArguments(env.appPath());
        QString folder = env.appPath();
        if (problem == "lock"_L1) {
            lockFolder = folder = u"/proc/tallybid-runtime"_s;
        } else if (problem == "read-only"_L1) {
            if (::geteuid() == 0)
                QSKIP("root writes in any folder");
            QVERIFY(QFile::setPermissions(env.appPath(), QFile::ReadOwner | QFile::ExeOwner));
        } else if (problem == "data"_L1) {
            arguments.resize(1);
            qputenv("XDG_DATA_HOME", "/proc/tallybid-data");
            folder = u"/proc/tallybid-data/tallybid"_s;
        } else if (problem == "locked"_L1) {
            lockFolder = env.appPath();
            QVERIFY(other.tryLock());
        } else if (problem == "missing"_L1) {
            arguments = appdirArguments(empty.path()); // no tb2.mdb
        }
        Started run(env, arguments, lockFolder);
        QFile::setPermissions(env.appPath(),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(run.ok, message.isEmpty());
        QCOMPARE(env.prompts().shown().size(), message.isEmpty() ? 0 : 1);
        const auto shown = env.prompts().shown().value(0);
        message.replace("FOLDER"_L1, folder);
        QCOMPARE(message.endsWith(u'(') ? shown.text.left(message.size()) : shown.text, message);
        QTEST(shown.title, "title");
        QVERIFY(!QFile::exists(empty.filePath(u"tb2.mdb"_s))); // never created
        if (message.endsWith(u'('))
            QCOMPARE(run.launcher.exitCode(), 1);
        if (!run.ok) {
            QVERIFY(run.launcher.window() == nullptr);
            return;
        }
        QCOMPARE(run.launcher.window()->windowTitle(), Texts::kCaptionAll);
        QCOMPARE(env.itemCount(), 1);
        QVERIFY(!QFile::exists(env.path(u"Start.htm"_s)));
        QCOMPARE(env.store().get(Settings::kApp, Settings::kSystemData, u"AppPath"_s),
                 env.appPath());
    }

    // The keys a run keeps for the next start never outlive a change made between the runs.
    void restartAfterChange_data()
    {
        // change: run on a connection of its own between the runs
        addColumns<QString, int>("change", "total");
        // clang-format off
        QTest::newRow("nothing") << QString() << 7;
        QTest::newRow("an item added") << "INSERT INTO Items (ShortDescription) VALUES ('new')" << 8;
        QTest::newRow("an item deleted") << "DELETE FROM Items WHERE ID = 1" << 6;
        // clang-format on
    }
    void restartAfterChange()
    {
        QFETCH(QString, change);
        TestEnvironment env;
        env.addNumberedItems(7);
        env.context().itemDatabase.close(); // the runs alone have the database open
        const QString database = env.context().state.databasePath;
        const auto run = [&] {
            Started s(env, appdirArguments(env.appPath()), env.appPath());
            return s.ok ? s.launcher.window()->findChild<QLineEdit*>(u"txtTotItem"_s)->text()
                        : u"not started"_s;
        };
        QCOMPARE(run(), u"7"_s);
        QVERIFY(QFileInfo::exists(KeyCache::keptFileFor(AppFolder::cacheFolder(), database)));
        if (!change.isEmpty())
            QCOMPARE(sqlValue(database, change), QVariant());
        QTEST(run().toInt(), "total");
        QTEST(rowCount(database), "total");
    }

    void openFailureMessages()
    {
        DatabaseOpenResult r;
        r.errorNumber = kErrNotADatabase;
        r.source = u"DAO.Workspace"_s;
        r.description = u"Unrecognized database format 'x'."_s;
        const Startup::OpenFailure f = Startup::describeOpenFailure(r);
        QCOMPARE(
            f.text,
            u"Error # 3343 was generated by DAO.Workspace\nUnrecognized database format 'x'."_s);
        QCOMPARE(f.title, u"Error"_s);
    }

    void textSearch_data()
    {
        // boxes: eBay number, description, e-mail, name
        addColumns<QStringList, QString>("boxes", "criteria");
        // clang-format off
        QTest::newRow("nothing") << QStringList{"", " ", "", ""} << "";
        QTest::newRow("number and name joined") << QStringList{"42", "", "", "Ann*"} << "EbayID LIKE '42' And BuyerName LIKE 'Ann*' ";
        QTest::newRow("all four") << QStringList{"1", "x", "*aol.com", "Bo"}
            << "EbayID LIKE '1' And (([ShortDescription] LIKE \"*x*\") OR ([Description] LIKE \"*x*\")) "
               "And BuyerEmail LIKE '*aol.com' And BuyerName LIKE 'Bo' ";
        // clang-format on
    }
    void textSearch()
    {
        QFETCH(QStringList, boxes);
        QTEST(FindCriteria::textSearch(boxes.at(0), boxes.at(1), boxes.at(2), boxes.at(3)),
              "criteria");
    }

    void calculator_data()
    {
        addColumns<QString, QString>("keys", "display"); // keys: < backspace, ~ change sign
        // clang-format off
        QTest::newRow("decimals without binary noise") << "0.1+0.2=" << "0.3";
        QTest::newRow("chained operations") << "12*3-6=" << "30";
        QTest::newRow("one point only") << "1..5*2=" << "3";
        QTest::newRow("division by zero") << "5/0=" << "Error";
        QTest::newRow("typing after an error starts afresh") << "5/0=7" << "7";
        QTest::newRow("backspace and sign") << "123<~" << "-12";
        // clang-format on
    }
    void calculator()
    {
        QFETCH(QString, keys);
        Calculator c;
        for (const QChar k : keys)
            c.press(k == u'<' ? QChar(0x2190) : k == u'~' ? QChar(0x00b1) : k);
        QTEST(c.display(), "display");
    }
};

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
