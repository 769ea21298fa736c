// How the item window keeps up as the item database grows: start-up, the three views, Find
// and moving one item, each timed alternately with SQLite doing the same work on a second
// connection to the same file, at 1,000, 10,000 and 100,000 generated items (scripts/make-items).
// Prints every figure with its ratio and goal; exits 1 when a ratio at the largest size misses
// its goal, or when the window ends any operation elsewhere than SQLite says it should (its
// counters and the key it shows).
//
//     bench_scale [--sizes 1000,10000,100000] [--data DIR] [--runs 7] [--start-platform offscreen]
//                 [--deleted PERCENT]
//
// --deleted measures databases whose keys have gaps (that share of the items deleted).
// --start-platform names the Qt platform the start-up children run on ("xcb" under xvfb-run, say);
// the window's own operations always run offscreen.
#include "BenchTiming.h"
#include "GeneratedItems.h"
#include "RawSqlite.h"
#include "app/FindCriteria.h"
#include "app/Launcher.h"
#include "app/frmItems.h"
#include "platform/Database.h"
#include "platform/FontWarmUp.h"
#include "platform/ScriptedPrompts.h"
#include "platform/SettingsStore.h"
#include "platform/Shell.h"
#include "platform/StartupHeap.h"
#include "platform/TimeZone.h"
#include "settings/AppContext.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QProcess>
#include <QSqlDatabase>
#include <QTemporaryDir>
#include <QTimer>
#include <string_view>

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

namespace {

QElapsedTimer gSinceStart;
QString gChildPlatform = QStringLiteral("offscreen");
int gDeleted = 0; // percent of the generated items deleted again
int gMisplaced = 0;

// ---------------------------------------------------------------- measuring

// Runs ours and the reference alternately, so both meet the same machine; median ms of each.
// setUp runs untimed before each run of ours.
std::pair<double, double> timeBoth(int runs, const std::function<void()>& ours,
                                   const std::function<void()>& reference, int repeat = 1,
                                   const std::function<void()>& setUp = {})
{
    std::vector<double> a, b;
    for (int i = 0; i < runs; ++i) {
        if (setUp)
            setUp();
        QElapsedTimer t;
        t.start();
        for (int r = 0; r < repeat; ++r)
            ours();
        a.push_back(t.nsecsElapsed() / 1e6 / repeat);
        t.start();
        for (int r = 0; r < repeat; ++r)
            reference();
        b.push_back(t.nsecsElapsed() / 1e6 / repeat);
    }
    return {medianOf(a), medianOf(b)};
}

struct Row
{
    int items;
    QString operation;
    double ours, reference, goal;
    bool judged; // held against the goal (the largest size)
};
std::vector<Row> gRows;

void report(int items, const QString& operation, std::pair<double, double> times, double goal,
            bool judged)
{
    gRows.push_back({items, operation, times.first, times.second, goal, judged});
    const double ratio = times.second > 0 ? times.first / times.second : 0;
    const char* unit = operation.contains(QLatin1String("(KB")) ? "KB" : "ms";
    std::printf("%7d  %-34s %10.3f %s %10.3f %s %8.2fx  goal <= %.1fx  %s\n", items,
                qPrintable(operation), times.first, unit, times.second, unit, ratio, goal,
                !judged         ? ""
                : ratio <= goal ? "ok"
                                : "MISSED");
    std::fflush(stdout);
}

// ---------------------------------------------------------------- start-up, in a child process

long peakKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    }
    return 0;
}

// Reports the time from main() to the first paint of a main window and the peak memory, then
// quits. Watches the whole application: the window paints before start-up returns it.
class FirstPaint : public QObject
{
public:
    FirstPaint() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        auto* widget = qobject_cast<QWidget*>(receiver);
        if (event->type() == QEvent::Paint && !m_done && widget &&
            qobject_cast<QMainWindow*>(widget->window())) {
            m_done = true;
            std::printf("%.3f %ld\n", gSinceStart.nsecsElapsed() / 1e6, peakKilobytes());
            std::fflush(stdout);
        }
        return false;
    }
    // Start-up may paint (and run the report) inside its own event processing, before the
    // application's loop exists to be ended.
    int exec()
    {
        while (!m_done)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return 0;
    }

private:
    bool m_done = false;
};

// As the program does before main(), for the children that start it.
void readFontsBeforeMain(int argc, char** argv, char** environment)
{
    if (argc >= 2 && std::string_view(argv[1]) == "--child-start")
        FontWarmUp::startBeforeMain(environment);
}
[[gnu::used, gnu::section(".preinit_array")]] FontWarmUp::BeforeMainHook gReadFontsBeforeMain =
    readFontsBeforeMain;

int childStart(int argc, char** argv, const QString& appDir, const QString& configDir)
{
    reserveStartupHeap(); // as the program's main() does
    FontWarmUp fonts;
    QApplication app(argc, argv);
    ScriptedPrompts prompts;
    RecordingShell shell;
    SettingsStore store(configDir);
    FixedTimeZone timeZone(300);
    Launcher launcher(prompts, shell, store, timeZone);
    FirstPaint watch;
    if (!launcher.start({QStringLiteral("tallybid"), QStringLiteral("--appdir"), appDir}, appDir,
                        QSize(1280, 1024)))
        return 3;
    return watch.exec();
}

int childBare(int argc, char** argv)
{
    QApplication app(argc, argv);
    FirstPaint watch;
    QMainWindow window;
    window.setCentralWidget(new QLabel(QStringLiteral("Item 1 of 1"), &window));
    window.resize(630, 600);
    window.show();
    return watch.exec();
}

// Every start-up child runs on the chosen platform.
QProcessEnvironment childEnvironment()
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), gChildPlatform);
    return env;
}

// Milliseconds to first paint and peak kilobytes of one child.
std::pair<double, long> runChild(const QStringList& arguments)
{
    QProcess child;
    child.setProcessEnvironment(childEnvironment());
    child.start(QCoreApplication::applicationFilePath(), arguments);
    child.waitForFinished(120000);
    const QList<QByteArray> parts = child.readAllStandardOutput().trimmed().split(' ');
    if (parts.size() != 2)
        qFatal("start-up child failed: %s", child.readAllStandardError().constData());
    return {parts.at(0).toDouble(), parts.at(1).toLong()};
}

// ---------------------------------------------------------------- one database size

QString makeDatabase(const QString& dataDir, int items)
{
    return generatedItemsFolder(dataDir, items, 0, gDeleted);
}

// ---------------------------------------------------------------- where the window stands

// The counters and the key the window shows, as "current/total key".
QString shownPosition(const frmItems& window)
{
    const auto text = [&](const char* name) {
        const auto* box = window.findChild<QLineEdit*>(QLatin1String(name));
        return box ? box->text() : QStringLiteral("?");
    };
    return QStringLiteral("%1/%2 %3")
        .arg(text("txtCurItem"), text("txtTotItem"), text("txtFields_0"));
}

// The same as SQLite has it: the row at `position` (from 1) of the view's keys.
QString expectedPosition(const RawSqlite& raw, const char* where, qint64 position)
{
    const qint64 total = raw.run(QStringLiteral("SELECT count(*) FROM Items %1").arg(where)).first;
    const qint64 key = raw.run(QStringLiteral("SELECT ID FROM Items %1 ORDER BY ID LIMIT 1 "
                                              "OFFSET ?")
                                   .arg(where),
                               position - 1)
                           .first;
    return QStringLiteral("%1/%2 %3").arg(position).arg(total).arg(key);
}

void checkPosition(int items, const QString& operation, const frmItems& window,
                   const QString& expected)
{
    const QString shown = shownPosition(window);
    if (shown == expected)
        return;
    ++gMisplaced;
    std::printf("%7d  %-34s MISPLACED: shows %s, SQLite has %s\n", items, qPrintable(operation),
                qPrintable(shown), qPrintable(expected));
}

// Milliseconds from starting a program to its first paint, as the preloaded probe reports it.
double launchToPaint(const QString& program, const QStringList& arguments,
                     const QString& runtimeDir)
{
    QProcess child;
    QProcessEnvironment env = childEnvironment();
    env.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FIRST_PAINT_PROBE));
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeDir); // the program's lock file
    child.setProcessEnvironment(env);
    const auto started = std::chrono::steady_clock::now().time_since_epoch();
    child.start(program, arguments);
    child.waitForFinished(120000);
    const qint64 painted = child.readAllStandardOutput().trimmed().split('\n').last().toLongLong();
    if (painted <= 0)
        qFatal("%s did not paint: %s", qPrintable(program),
               child.readAllStandardError().constData());
    return (painted - std::chrono::duration_cast<std::chrono::nanoseconds>(started).count()) / 1e6;
}

void measureStartup(const QString& folder, int items, int runs, bool judged)
{
    QTemporaryDir config;
    std::vector<double> ours, bare;
    for (int i = 0; i < runs; ++i) {
        ours.push_back(runChild({QStringLiteral("--child-start"), folder, config.path()}).first);
        bare.push_back(runChild({QStringLiteral("--child-bare")}).first);
    }
    report(items, QStringLiteral("start-up to first paint (vs bare)"),
           {medianOf(ours), medianOf(bare)}, 1.5, judged);

    // The same, from starting the process: the program as installed, with every library it
    // loads, against a program that shows one label.
    QTemporaryDir runtime;
    const QStringList program{QStringLiteral("--appdir"), folder, QStringLiteral("--configdir"),
                              config.path()};
    ours.clear();
    bare.clear();
    for (int i = 0; i < runs; ++i) {
        ours.push_back(launchToPaint(QStringLiteral(TALLYBID_PROGRAM), program, runtime.path()));
        bare.push_back(launchToPaint(QStringLiteral(BARE_WINDOW_PROGRAM), {}, runtime.path()));
    }
    report(items, QStringLiteral("launch to first paint (vs bare)"),
           {medianOf(ours), medianOf(bare)}, 1.5, judged);
}

void measureWindow(const QString& folder, int items, int runs, bool judged)
{
    const QString path = folder + QStringLiteral("/tb2.mdb");
    QTemporaryDir config;
    ScriptedPrompts prompts;
    RecordingShell shell;
    SettingsStore store(config.path());
    FixedTimeZone timeZone(300);
    const QString connection = QStringLiteral("bench-%1").arg(items);
    {
        // Every handle on the connection, this one included, is gone before it is removed.
        const DatabaseOpenResult opened = openDatabase(path, connection);
        if (!opened.ok())
            qFatal("cannot open %s", qPrintable(path));
        AppContext ctx{prompts, shell, store, timeZone, opened.database, {}};
        ctx.state.appPath = folder;
        ctx.state.databasePath = path;
        ctx.state.themeSetFN = folder + QStringLiteral("/standard.tbt");
        auto window = std::make_unique<frmItems>(ctx, QSize(1280, 1024));
        window->show();
        QCoreApplication::processEvents();
        const RawSqlite raw(path);
        const char* all = "";
        // Each view against selecting its keys, then where the window stands on it.
        const auto view = [&](const char* name, void (frmItems::*command)(), const char* where) {
            const QString operation = QStringLiteral("open the %1 view").arg(QLatin1String(name));
            const QByteArray keys =
                QStringLiteral("SELECT ID FROM Items %1 ORDER BY ID").arg(where).toUtf8();
            report(
                items, operation,
                timeBoth(
                    runs, [&] { (window.get()->*command)(); }, [&] { raw.run(keys.constData()); }),
                2, judged);
            checkPosition(items, operation, *window, expectedPosition(raw, where, 1));
        };
        view("All", &frmItems::mnuAll_Click, all);
        view("Active", &frmItems::mnuOpen_Click, "WHERE Active = 1");
        view("Inactive", &frmItems::mnuClosed_Click, "WHERE Active = 0");

        // Find Again runs the request without the dialog, each time from the first item.
        window->mnuAll_Click();
        const auto find = [&](const QString& text, const char* reference) {
            ctx.state.findCriteria = FindCriteria::textSearch({}, text, {}, {});
            return timeBoth(
                runs, [&] { window->mnuFindAgain_Click(); }, [&] { raw.run(reference); }, 1,
                [&] { window->mnuFirst_Click(); });
        };
        // The 26th item's own lot number: with keys that have gaps it need not be 26.
        const int near = std::min(26, items);
        const qint64 lot =
            raw.run("SELECT ID FROM Items ORDER BY ID LIMIT 1 OFFSET ?", near - 1).first;
        const QString nearText = QStringLiteral("Lot %1.").arg(lot);
        report(items, QStringLiteral("Find, first match is item %1").arg(near),
               find(nearText,
                    qPrintable(QStringLiteral("SELECT ID FROM Items WHERE ShortDescription LIKE "
                                              "'%%1%' OR Description LIKE '%%1%' "
                                              "ORDER BY ID LIMIT 1")
                                   .arg(nearText))),
               2, judged);
        checkPosition(items, QStringLiteral("Find, first match is item %1").arg(near), *window,
                      expectedPosition(raw, all, near));
        report(items, QStringLiteral("Find with no match"),
               find(QStringLiteral("zqxjv"),
                    "SELECT ID FROM Items WHERE ShortDescription LIKE '%zqxjv%' OR "
                    "Description LIKE '%zqxjv%' ORDER BY ID"),
               2, judged);
        checkPosition(items, QStringLiteral("Find with no match"), *window,
                      expectedPosition(raw, all, 1));

        // SQLite's next and previous row by key, so gaps in the keys cost it what they cost us.
        qint64 key = 0;
        const auto next = [&] {
            key = raw.run("SELECT * FROM Items WHERE ID > ? ORDER BY ID LIMIT 1", key).first;
        };
        const auto previous = [&] {
            key = raw.run("SELECT * FROM Items WHERE ID < ? ORDER BY ID DESC LIMIT 1", key).first;
        };
        const int steps = runs * 50;
        const qint64 total = raw.run("SELECT count(*) FROM Items").first;
        const auto checkMoves = [&](const QString& operation, qint64 position) {
            if (position >= 1 && position <= total)
                checkPosition(items, operation, *window, expectedPosition(raw, all, position));
        };
        window->mnuFirst_Click();
        key = window->data().bookmark();
        report(items, QStringLiteral("next item"),
               timeBoth(
                   runs, [&] { window->mnuNext_Click(); }, next, 50),
               5, judged);
        checkMoves(QStringLiteral("next item"), 1 + steps);
        report(items, QStringLiteral("previous item"),
               timeBoth(
                   runs, [&] { window->mnuPrevious_Click(); }, previous, 50),
               5, judged);
        checkMoves(QStringLiteral("previous item"), 1);
        // The same far down the list, where finding the item's row in the item list once took
        // a walk through every row before it: back from the last item, then forward to it.
        window->mnuLast_Click();
        key = window->data().bookmark();
        report(items, QStringLiteral("previous item, from the last"),
               timeBoth(
                   runs, [&] { window->mnuPrevious_Click(); }, previous, 50),
               5, judged);
        checkMoves(QStringLiteral("previous item, from the last"), total - steps);
        report(items, QStringLiteral("next item, up to the last"),
               timeBoth(
                   runs, [&] { window->mnuNext_Click(); }, next, 50),
               5, judged);
        checkMoves(QStringLiteral("next item, up to the last"), total);
        window->close();
    }
    QSqlDatabase::removeDatabase(connection);
}

} // namespace

int main(int argc, char** argv)
{
    gSinceStart.start();
    if (argc >= 4 && qstrcmp(argv[1], "--child-start") == 0)
        return childStart(argc, argv, QString::fromLocal8Bit(argv[2]),
                          QString::fromLocal8Bit(argv[3]));
    if (argc >= 2 && qstrcmp(argv[1], "--child-bare") == 0)
        return childBare(argc, argv);

    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QList<int> sizes{1000, 10000, 100000};
    QString dataDir = QDir::tempPath() + QStringLiteral("/tallybid-bench");
    int runs = 7;
    const QStringList args = app.arguments();
    for (int i = 1; i + 1 < args.size(); ++i) {
        if (args.at(i) == QLatin1String("--sizes")) {
            sizes.clear();
            for (const QString& s : args.at(i + 1).split(u','))
                sizes << s.toInt();
        } else if (args.at(i) == QLatin1String("--data")) {
            dataDir = args.at(i + 1);
        } else if (args.at(i) == QLatin1String("--start-platform")) {
            gChildPlatform = args.at(i + 1);
        } else if (args.at(i) == QLatin1String("--deleted")) {
            gDeleted = args.at(i + 1).toInt();
        } else if (args.at(i) == QLatin1String("--runs")) {
            runs = args.at(i + 1).toInt();
        }
    }
    const int largest = *std::max_element(sizes.cbegin(), sizes.cend());

    std::printf("%7s  %-34s %13s %13s %9s\n", "items", "operation", "Tallybid", "reference",
                "ratio");
    for (const int items : std::as_const(sizes)) {
        const QString folder = makeDatabase(dataDir, items);
        measureStartup(folder, items, runs, items == largest);
        measureWindow(folder, items, runs, items == largest);
    }
    // Peak memory of a start-up over the largest database against one over an empty one.
    const QString empty = makeDatabase(dataDir, 0);
    QTemporaryDir config;
    const long emptyPeak = runChild({QStringLiteral("--child-start"), empty, config.path()}).second;
    const long largePeak =
        runChild({QStringLiteral("--child-start"), makeDatabase(dataDir, largest), config.path()})
            .second;
    report(largest, QStringLiteral("peak memory (KB, vs empty database)"),
           {double(largePeak), double(emptyPeak)}, 1.3, true);

    const bool missed = std::any_of(gRows.cbegin(), gRows.cend(), [](const Row& r) {
        return r.judged && r.reference > 0 && r.ours / r.reference > r.goal;
    });
    std::printf(missed ? "\nSome goals were missed.\n" : "\nEvery goal was met.\n");
    if (gMisplaced > 0)
        std::printf("The window ended %d operations elsewhere than SQLite.\n", gMisplaced);
    return missed || gMisplaced > 0 ? 1 : 0;
}
