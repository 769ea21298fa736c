// Backups of tb2.mdb: dated names, when one is due, which old ones go, the start-up backup, and
// the File menu's Back Up Now and Restore from Backup driven in the item window.
#include "ItemWindowFixture.h"
#include "app/Backups.h"
#include "app/Launcher.h"
#include "app/texts.h"
#include "settings/SettingsCatalogue.h"

#include <QMenu>
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

} // namespace

class TestBackups : public QObject
{
    Q_OBJECT
private slots:
    void names_data();
    void names();
    void due_data();
    void due();
    void surplus_data();
    void surplus();
    void keptCount_data();
    void keptCount();
    void startupBackup();
    void launcherBacksUp();
    void menuItems();
    void backUpNow_data();
    void backUpNow();
    void restore();
    void restoreRefused_data();
    void restoreRefused();
};

void TestBackups::names_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("time"); // ISO, "" when the name is not a dated backup
    QTest::newRow("dated") << "tb2-2026-11-23-204501.mdb"
                           << "2026-11-23T20:45:01";
    QTest::newRow("second in the same second") << "tb2-2026-11-23-204501-2.mdb"
                                               << "2026-11-23T20:45:01";
    QTest::newRow("the database") << "tb2.mdb"
                                  << "";
    QTest::newRow("no such month") << "tb2-2026-13-01-000000.mdb"
                                   << "";
    QTest::newRow("copy being written") << ".tb2-2026-11-23-204501.mdb.1f.partial"
                                        << "";
    QTest::newRow("user's own name") << "before the sale.mdb"
                                     << "";
    QTest::newRow("other letter case") << "TB2-2026-11-23-204501.MDB"
                                       << "";
}

void TestBackups::names()
{
    QFETCH(QString, name);
    QFETCH(QString, time);
    const auto when = Backups::timeOf(name);
    QCOMPARE(when.has_value(), !time.isEmpty());
    if (when)
        QCOMPARE(*when, QDateTime::fromString(time, Qt::ISODate));
    const QDateTime now = at("2026-02-03T04:05:06");
    QCOMPARE(Backups::timeOf(Backups::fileName(now)), std::optional<QDateTime>(now));
}

void TestBackups::due_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<bool>("due");
    QTest::newRow("none yet") << QStringList{} << true;
    QTest::newRow("only the user's own") << QStringList{"mine.mdb", "tb2.mdb"} << true;
    QTest::newRow("23 hours old") << QStringList{"tb2-2026-11-22-130000.mdb"} << false;
    QTest::newRow("a day old") << QStringList{"tb2-2026-11-22-120000.mdb"} << true;
    QTest::newRow("newest decides")
        << QStringList{"tb2-2026-11-01-120000.mdb", "tb2-2026-11-23-110000.mdb"} << false;
    QTest::newRow("dated in the future") << QStringList{"tb2-2026-11-24-120000.mdb"} << true;
}

void TestBackups::due()
{
    QFETCH(QStringList, names);
    QTEST(Backups::isDue(names, at("2026-11-23T12:00:00")), "due");
}

void TestBackups::surplus_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<int>("kept");
    QTest::addColumn<QStringList>("removed");
    QStringList nine;
    for (int d = 1; d <= 9; ++d)
        nine << QStringLiteral("tb2-2026-11-%1-080000.mdb").arg(d, 2, 10, QChar(u'0'));
    QTest::newRow("nine, seven kept")
        << (nine + QStringList{"mine.mdb"}) << 7
        << QStringList{"tb2-2026-11-02-080000.mdb", "tb2-2026-11-01-080000.mdb"};
    QTest::newRow("fewer than kept") << nine.mid(0, 3) << 7 << QStringList{};
    QTest::newRow("same second") << QStringList{"tb2-2026-11-01-080000.mdb",
                                                "tb2-2026-11-01-080000-2.mdb"}
                                 << 1 << QStringList{"tb2-2026-11-01-080000.mdb"};
    QTest::newRow("user's files stay") << QStringList{"a.mdb", "tb2.mdb"} << 0 << QStringList{};
}

void TestBackups::surplus()
{
    QFETCH(QStringList, names);
    QFETCH(int, kept);
    QTEST(Backups::surplus(names, kept), "removed");
}

void TestBackups::keptCount_data()
{
    QTest::addColumn<QString>("stored"); // "-" = never written
    QTest::addColumn<int>("kept");
    QTest::newRow("never set") << "-" << 7;
    QTest::newRow("three") << "3" << 3;
    QTest::newRow("off") << "0" << 0;
    QTest::newRow("not a number") << "seven" << 7;
}

void TestBackups::keptCount()
{
    QFETCH(QString, stored);
    TestEnvironment env;
    if (stored != QLatin1String("-"))
        env.store().save(Settings::kApp, Backups::kSection, Backups::kKeptKey, stored);
    QTEST(Backups::keptCount(env.store()), "kept");
}

void TestBackups::startupBackup()
{
    TestEnvironment env;
    env.addNumberedItems(4);
    const QString folder = env.path(Backups::kFolder);
    const QDateTime now = at("2026-11-23T12:00:00");
    // Off: nothing made, not even the folder.
    QVERIFY(!Backups::backUpIfDue(env.appPath(), env.path("tb2.mdb"), 0, now).made);
    QVERIFY(!QFileInfo::exists(folder));

    QVERIFY(QDir().mkpath(folder));
    for (int d = 1; d <= 8; ++d)
        env.writeFile(Backups::kFolder +
                          QStringLiteral("/tb2-2026-10-%1-090000.mdb").arg(d, 2, 10, QChar(u'0')),
                      "old");
    env.writeFile(Backups::kFolder + QStringLiteral("/mine.mdb"), "the user's");
    const Backups::StartupResult first =
        Backups::backUpIfDue(env.appPath(), env.path("tb2.mdb"), 7, now);
    QVERIFY2(first.made, qPrintable(first.error));
    QCOMPARE(first.path, folder + QStringLiteral("/tb2-2026-11-23-120000.mdb"));
    QCOMPARE(itemsIn(first.path), 4);
    const QStringList kept = datedIn(folder);
    QCOMPARE(kept.size(), 7);
    QCOMPARE(kept.first(), QStringLiteral("tb2-2026-10-03-090000.mdb"));
    QVERIFY(QFileInfo::exists(folder + QStringLiteral("/mine.mdb")));

    // Not due again within the day.
    QVERIFY(!Backups::backUpIfDue(env.appPath(), env.path("tb2.mdb"), 7, now.addSecs(3600)).made);
    QCOMPARE(datedIn(folder), kept);
}

void TestBackups::launcherBacksUp()
{
    TestEnvironment env;
    env.addNumberedItems(2);
    QTemporaryDir runtime;
    Launcher launcher(env.prompts(), env.shell(), env.store(), env.context().timeZone);
    launcher.setLockFolder(runtime.path());
    QVERIFY(launcher.start({QStringLiteral("tallybid"), QStringLiteral("--appdir"), env.appPath()},
                           {}, QSize(1280, 1024)));
    const QStringList made = datedIn(env.path(Backups::kFolder));
    QCOMPARE(made.size(), 1);
    QCOMPARE(itemsIn(env.path(Backups::kFolder) + u'/' + made.first()), 2);
    QVERIFY(env.prompts().shown().isEmpty());
}

void TestBackups::menuItems()
{
    TestEnvironment env;
    ItemWindow w(env);
    const QList<QAction*> file = w.child<QMenu>(QStringLiteral("mnuFile"))->actions();
    const qsizetype exit = file.indexOf(w.menu(QStringLiteral("mnuExit")));
    QVERIFY(exit >= 3);
    QVERIFY(file.at(exit - 1)->isSeparator());
    QCOMPARE(file.at(exit - 3)->objectName(), QStringLiteral("mnuBackUpNow"));
    QCOMPARE(file.at(exit - 2)->objectName(), QStringLiteral("mnuRestoreBackup"));
    QCOMPARE(file.at(exit - 3)->text(), QStringLiteral("Back Up Now\u2026"));
    QCOMPARE(file.at(exit - 2)->text(), QStringLiteral("Restore from Backup\u2026"));
}

void TestBackups::backUpNow_data()
{
    QTest::addColumn<QString>("chosen");  // relative to a temporary folder; "" = cancelled
    QTest::addColumn<QString>("message"); // what the message starts with; "" = none
    QTest::newRow("chosen file") << "mine.mdb"
                                 << "Your items were backed up to";
    QTest::newRow("cancelled") << ""
                               << "";
    QTest::newRow("the database itself") << "tb2.mdb"
                                         << "That file is the database";
    QTest::newRow("folder missing") << "no/such/mine.mdb"
                                    << "The backup could not be made";
}

void TestBackups::backUpNow()
{
    QFETCH(QString, chosen);
    QFETCH(QString, message);
    TestEnvironment env;
    env.addNumberedItems(6);
    ItemWindow w(env);
    // Typed into the current item and not yet written: the copy holds it.
    w.field(3)->setFocus();
    w.field(3)->selectAll();
    QTest::keyClicks(w.field(3), QStringLiteral("typed"));
    QTemporaryDir out;
    const QString path = chosen.isEmpty()                     ? QString()
                         : chosen == QLatin1String("tb2.mdb") ? env.path(chosen)
                                                              : out.filePath(chosen);
    env.prompts().queueFile(path);
    w.menu(QStringLiteral("mnuBackUpNow"))->trigger();
    const auto shown = env.prompts().shown();
    QCOMPARE(shown.first().kind, QStringLiteral("save"));
    QVERIFY(shown.first().extra.contains(env.path(Backups::kFolder) + QStringLiteral("/tb2-")));
    QCOMPARE(shown.size(), message.isEmpty() ? 1 : 2);
    if (!message.isEmpty())
        QVERIFY2(shown.last().text.startsWith(message), qPrintable(shown.last().text));
    if (chosen == QLatin1String("mine.mdb")) {
        QCOMPARE(itemsIn(path), 6);
        QCOMPARE(shown.last().icon, PromptIcon::Information);
        const QString name = QStringLiteral("peek");
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setDatabaseName(path);
            QVERIFY(db.open());
            QSqlQuery q(db);
            QVERIFY(q.exec(QStringLiteral("SELECT ShortDescription FROM Items WHERE ID = 1")));
            QVERIFY(q.next());
            QCOMPARE(q.value(0).toString(), QStringLiteral("typed"));
        }
        QSqlDatabase::removeDatabase(name);
    }
    QCOMPARE(env.itemCount(), 6);
    QVERIFY(env.prompts().unexpected().isEmpty());
}

void TestBackups::restore()
{
    TestEnvironment env;
    env.addNumberedItems(5);
    QTemporaryDir out;
    const QString backup = out.filePath(QStringLiteral("five.mdb"));
    QVERIFY(backupDatabaseFile(env.path("tb2.mdb"), backup).ok());
    env.addNumberedItems(4);
    ItemWindow w(env);
    QCOMPARE(w.total(), QStringLiteral("9"));
    w->mnuLast_Click();
    QCOMPARE(w.current(), QStringLiteral("9"));

    env.prompts().queueFile(backup);
    env.prompts().queueAnswer(PromptAnswer::Yes);
    w.menu(QStringLiteral("mnuRestoreBackup"))->trigger();
    QVERIFY(env.prompts().unexpected().isEmpty());
    const auto shown = env.prompts().shown();
    QCOMPARE(shown.size(), 3);
    QCOMPARE(shown.at(0).kind, QStringLiteral("open"));
    QVERIFY(shown.at(1).text.startsWith(QStringLiteral("Replace all your items with the 5 items")));
    QCOMPARE(shown.at(1).buttons, PromptButtons::YesNo);
    QVERIFY(shown.at(2).text.startsWith(QStringLiteral("5 items were restored.")));

    // The window stands on the first restored item of its view.
    QCOMPARE(w.total(), QStringLiteral("5"));
    QCOMPARE(w.current(), QStringLiteral("1"));
    QCOMPARE(w.field(3)->text(), QStringLiteral("Item 1"));
    QCOMPARE(w.navigation(), QStringLiteral("10111"));
    w->mnuLast_Click();
    QCOMPARE(w.field(3)->text(), QStringLiteral("Item 5"));
    QCOMPARE(env.itemCount(), 5);
    // What was there before is kept in Backups/.
    const QStringList safety = datedIn(env.path(Backups::kFolder));
    QCOMPARE(safety.size(), 1);
    QCOMPARE(itemsIn(env.path(Backups::kFolder) + u'/' + safety.first()), 9);
    QVERIFY(shown.at(2).text.endsWith(safety.first()));
}

void TestBackups::restoreRefused_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("message"); // the second prompt starts with it
    QTest::newRow("not a database") << "text"
                                    << "The file ";
    QTest::newRow("answered No") << "no"
                                 << "Replace all your items with the 9 items";
    QTest::newRow("cancelled") << "cancel"
                               << "";
}

void TestBackups::restoreRefused()
{
    QFETCH(QString, kind);
    QFETCH(QString, message);
    TestEnvironment env;
    env.addNumberedItems(9);
    QTemporaryDir out;
    QString file = out.filePath(QStringLiteral("candidate.mdb"));
    if (kind == QLatin1String("text")) {
        QFile f(file);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("EbayID;ShortDescription\n1;a lamp\n");
    } else if (kind == QLatin1String("no")) {
        QVERIFY(backupDatabaseFile(env.path("tb2.mdb"), file).ok());
    } else {
        file.clear();
    }
    ItemWindow w(env);
    QSqlQuery(env.context().itemDatabase)
        .exec(QStringLiteral("UPDATE Items SET ShortDescription = 'kept' WHERE ID = 4"));
    env.prompts().queueFile(file);
    if (kind == QLatin1String("no"))
        env.prompts().queueAnswer(PromptAnswer::No);
    w.menu(QStringLiteral("mnuRestoreBackup"))->trigger();
    const auto shown = env.prompts().shown();
    QCOMPARE(shown.size(), message.isEmpty() ? 1 : 2);
    if (!message.isEmpty())
        QVERIFY2(shown.last().text.startsWith(message), qPrintable(shown.last().text));
    if (kind == QLatin1String("text")) {
        QVERIFY(shown.last().text.endsWith(
            QStringLiteral("Nothing was restored; your items are unchanged.")));
        QCOMPARE(shown.last().icon, PromptIcon::Exclamation);
    }
    QCOMPARE(env.itemCount(), 9);
    QCOMPARE(env.storedValue(4, QStringLiteral("ShortDescription")).toString(),
             QStringLiteral("kept"));
    QCOMPARE(w.total(), QStringLiteral("9"));
    QVERIFY(!QFileInfo::exists(env.path(Backups::kFolder)) ||
            datedIn(env.path(Backups::kFolder)).isEmpty());
    QVERIFY(env.prompts().unexpected().isEmpty());
}

QTEST_MAIN(TestBackups)
#include "tst_backups.moc"
