// Backups of tb2.mdb: dated names, when one is due, which old ones go, the start-up backup, and
// the File menu's Back Up Now and Restore from Backup driven in the item window.
#include "ItemWindowFixture.h"
#include "app/Backups.h"
#include "app/Launcher.h"
#include "settings/SettingsCatalogue.h"

#include <QSqlQuery>

namespace {

QDateTime at(const char* text)
{
    return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate);
}

QStringList datedIn(const QString& folder)
{
    QStringList out;
    for (const QString& name : QDir(folder).entryList(QDir::Files, QDir::Name))
        if (Backups::timeOf(name))
            out << name;
    return out;
}

qint64 itemsIn(const QString& file)
{
    const BackupCheck check = checkBackupFile(file, {});
    return check.ok() ? check.itemCount : -1;
}

// The ShortDescription of one item in a database file.
QString nameIn(const QString& file, qint64 id)
{
    QString name;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), "peek");
        db.setDatabaseName(file);
        const bool open = db.open();
        QSqlQuery q(db);
        if (open &&
            q.exec(QStringLiteral("SELECT ShortDescription FROM Items WHERE ID = %1").arg(id)) &&
            q.next())
            name = q.value(0).toString();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("peek"));
    return name;
}

} // namespace

class TestBackups : public QObject
{
    Q_OBJECT
private slots:
    void rotation_data();
    void rotation();
    void launcherBacksUp_data();
    void launcherBacksUp();
    void commands_data();
    void commands();
};

void TestBackups::rotation_data()
{
    QTest::addColumn<QStringList>("names"); // the Backups folder at 2026-11-23 12:00
    QTest::addColumn<bool>("due");
    QTest::addColumn<int>("kept");
    QTest::addColumn<QStringList>("removed"); // oldest last
    const auto add = [](const char* tag, const QStringList& names, bool due, int kept,
                        const QStringList& removed) {
        QTest::newRow(tag) << names << due << kept << removed;
    };
    add("none yet", {}, true, 7, {});
    // Only names of dated backups count; a copy being written or the user's files never do.
    add("no dated backup",
        {"mine.mdb", "tb2.mdb", "tb2-2026-13-01-000000.mdb",
         ".tb2-2026-11-23-110000.mdb.1f.partial"},
        true, 0, {});
    add("23 hours old", {"tb2-2026-11-22-130000.mdb"}, false, 7, {});
    add("a day old", {"tb2-2026-11-22-120000.mdb"}, true, 1, {});
    add("newest decides", {"tb2-2026-11-01-120000.mdb", "tb2-2026-11-23-110000.mdb"}, false, 1,
        {"tb2-2026-11-01-120000.mdb"});
    add("dated in the future", {"tb2-2026-11-24-120000.mdb"}, true, 7, {});
    add("same second: -10 after -9 after the plain name",
        {"tb2-2026-11-01-080000.mdb", "tb2-2026-11-01-080000-10.mdb",
         "tb2-2026-11-01-080000-9.mdb"},
        true, 1, {"tb2-2026-11-01-080000-9.mdb", "tb2-2026-11-01-080000.mdb"});
}

void TestBackups::rotation()
{
    QFETCH(QStringList, names);
    QFETCH(int, kept);
    QTEST(Backups::isDue(names, at("2026-11-23T12:00:00")), "due");
    QTEST(Backups::surplus(names, kept), "removed");
}

void TestBackups::launcherBacksUp_data()
{
    QTest::addColumn<QString>("stored"); // the number of backups kept as saved; "-" = never
    QTest::addColumn<int>("kept");       // dated backups in the folder afterwards
    QTest::newRow("never set: seven") << "-" << 7;
    QTest::newRow("three") << "3" << 3;
    QTest::newRow("off") << "0" << 8;
    QTest::newRow("not a number: seven") << "seven" << 7;
}

// Started beside eight old backups: a new one of the items, the oldest ones beyond the number
// kept removed, the user's own file left, and nothing said.
void TestBackups::launcherBacksUp()
{
    QFETCH(QString, stored);
    QFETCH(int, kept);
    TestEnvironment env;
    env.addNumberedItems(2);
    if (stored != QLatin1String("-"))
        env.store().save(Settings::kApp, Backups::kSection, Backups::kKeptKey, stored);
    const QString folder = env.path(Backups::kFolder);
    const auto old = [](int day) {
        return QStringLiteral("tb2-2020-10-%1-090000.mdb").arg(day, 2, 10, QChar(u'0'));
    };
    QVERIFY(QDir().mkpath(folder));
    for (int d = 1; d <= 8; ++d)
        env.writeFile(Backups::kFolder + u'/' + old(d), "old");
    env.writeFile(Backups::kFolder + QStringLiteral("/mine.mdb"), "the user's");
    QTemporaryDir runtime;
    Launcher launcher(env.prompts(), env.shell(), env.store(), env.context().timeZone);
    launcher.setLockFolder(runtime.path());
    QVERIFY(launcher.start({QStringLiteral("tallybid"), QStringLiteral("--appdir"), env.appPath()},
                           {}, QSize(1280, 1024)));
    const bool made = stored != QLatin1String("0");
    const QStringList dated = datedIn(folder);
    QCOMPARE(dated.size(), kept);
    QCOMPARE(dated.first(), old(made ? 10 - kept : 1));
    QCOMPARE(itemsIn(folder + u'/' + dated.last()), made ? 2 : -1);
    QVERIFY(QFileInfo::exists(folder + QStringLiteral("/mine.mdb")));
    QVERIFY(env.prompts().shown().isEmpty());
}

void TestBackups::commands_data()
{
    QTest::addColumn<QString>("command"); // the File menu item
    // The file chosen: "five.mdb" a backup of five items, "text.mdb" a text file, others not
    // there yet; "tb2.mdb" the database in use; "" = the dialog cancelled.
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QStringList>("messages"); // how each prompt after the file dialog starts
    QTest::addColumn<bool>("yes");             // the answer to "Replace all your items"
    const auto add = [](const char* tag, const char* command, const char* chosen,
                        const QStringList& messages, bool yes = false) {
        QTest::newRow(tag) << QString::fromLatin1(command) << QString::fromLatin1(chosen)
                           << messages << yes;
    };
    const char* backUp = "mnuBackUpNow";
    const char* restore = "mnuRestoreBackup";
    const QString ask = QStringLiteral("Replace all your items with the 5 items");
    add("backed up", backUp, "copy.mdb", {"Your items were backed up to"});
    add("back-up cancelled", backUp, "", {});
    add("back-up over the database", backUp, "tb2.mdb", {"That file is the database"});
    add("back-up folder missing", backUp, "no/such/copy.mdb", {"The backup could not be made"});
    add("restored", restore, "five.mdb", {ask, "5 items were restored."}, true);
    add("restore of a text file", restore, "text.mdb", {"The file "});
    add("restore answered No", restore, "five.mdb", {ask});
    add("restore cancelled", restore, "", {});
}

// Back Up Now and Restore from Backup in the item window. What was typed into the current
// item is written first; only a restore answered Yes changes the items, keeping the ones it
// replaced in Backups/, and the window then shows the restored items.
void TestBackups::commands()
{
    QFETCH(QString, command);
    QFETCH(QString, chosen);
    QFETCH(QStringList, messages);
    QFETCH(bool, yes);
    TestEnvironment env;
    env.addNumberedItems(5);
    QTemporaryDir out;
    QVERIFY(backupDatabaseFile(env.path("tb2.mdb"), out.filePath("five.mdb")).ok());
    QFile text(out.filePath(QStringLiteral("text.mdb")));
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write("EbayID;ShortDescription\n1;a lamp\n"));
    text.close();
    env.addNumberedItems(4);
    ItemWindow w(env);
    w->mnuLast_Click();
    w.field(3)->setFocus();
    w.field(3)->selectAll();
    QTest::keyClicks(w.field(3), QStringLiteral("typed"));
    const QString path = chosen.isEmpty()                     ? QString()
                         : chosen == QLatin1String("tb2.mdb") ? env.path(chosen)
                                                              : out.filePath(chosen);
    env.prompts().queueFile(path);
    if (chosen == QLatin1String("five.mdb"))
        env.prompts().queueAnswer(yes ? PromptAnswer::Yes : PromptAnswer::No);
    w.menu(command)->trigger();
    QVERIFY(env.prompts().unexpected().isEmpty());
    const auto shown = env.prompts().shown();
    QCOMPARE(shown.size(), 1 + messages.size());
    const bool backUp = command == QLatin1String("mnuBackUpNow");
    QCOMPARE(shown.first().kind, backUp ? QStringLiteral("save") : QStringLiteral("open"));
    // Offered in Backups/, a back-up under a dated name.
    QVERIFY(shown.first().extra.contains(env.path(Backups::kFolder) + (backUp ? "/tb2-" : "")));
    for (qsizetype i = 0; i < messages.size(); ++i)
        QVERIFY2(shown.at(i + 1).text.startsWith(messages.at(i)), qPrintable(shown.at(i + 1).text));
    if (chosen == QLatin1String("five.mdb"))
        QCOMPARE(shown.at(1).buttons, PromptButtons::YesNo);
    if (chosen == QLatin1String("text.mdb")) {
        QVERIFY(shown.last().text.endsWith(
            QStringLiteral("Nothing was restored; your items are unchanged.")));
        QCOMPARE(shown.last().icon, PromptIcon::Exclamation);
    }
    if (chosen == QLatin1String("copy.mdb")) {
        QCOMPARE(shown.last().icon, PromptIcon::Information);
        QCOMPARE(itemsIn(path), 9);
        QCOMPARE(nameIn(path, 9), QStringLiteral("typed"));
    }
    const QString folder = env.path(Backups::kFolder);
    const QStringList safety = datedIn(folder);
    QCOMPARE(safety.size(), yes ? 1 : 0);
    QCOMPARE(env.itemCount(), yes ? 5 : 9);
    QCOMPARE(env.storedValue(9, QStringLiteral("ShortDescription")).toString(),
             yes ? QString() : QStringLiteral("typed"));
    QCOMPARE(w.total(), yes ? QStringLiteral("5") : QStringLiteral("9"));
    QCOMPARE(w.current(), yes ? QStringLiteral("1") : QStringLiteral("9"));
    if (!yes)
        return;
    // The window stands on the first restored item of its view; what was there before is kept.
    QCOMPARE(w.field(3)->text(), QStringLiteral("Item 1"));
    QCOMPARE(w.navigation(), QStringLiteral("10111"));
    w->mnuLast_Click();
    QCOMPARE(w.field(3)->text(), QStringLiteral("Item 5"));
    QCOMPARE(itemsIn(folder + u'/' + safety.first()), 9);
    QCOMPARE(nameIn(folder + u'/' + safety.first(), 9), QStringLiteral("typed"));
    QVERIFY(shown.at(2).text.endsWith(safety.first()));
}

QTEST_MAIN(TestBackups)
#include "tst_backups.moc"
