// Backups of tb2.mdb: dated names, when one is due, which old ones go, the start-up backup, and
// the File menu's Back Up Now and Restore from Backup driven in the item window. And File >
// Export Items and Import Items: where the commands sit, what the export holds, and the import
// preview with Import and Cancel.
#include "ItemWindowFixture.h"
#include "app/Backups.h"
#include "app/frmImport.h"
#include "db/ItemColumns.h"
#include "settings/SettingsCatalogue.h"

namespace {

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

// The ShortDescription of item 9 in a database file.
QString ninthIn(const QString& file)
{
    return sqlValue(file, u"SELECT ShortDescription FROM Items WHERE ID = 9"_s).toString();
}

// Runs `act` on the import dialog once it is shown modal; the command that opened it waits.
class WhenImportShown : public QObject
{
public:
    explicit WhenImportShown(std::function<void(frmImport&)> act) : m_act(std::move(act))
    {
        QTimer::singleShot(0, this, &WhenImportShown::poll);
    }
    bool ran = false;

private:
    void poll()
    {
        if (auto* d = qobject_cast<frmImport*>(QApplication::activeModalWidget())) {
            ran = true;
            m_act(*d);
        } else if (++m_tries < 300) {
            QTimer::singleShot(10, this, &WhenImportShown::poll);
        }
    }
    std::function<void(frmImport&)> m_act;
    int m_tries = 0;
};

QStringList column(const QTableWidget* table, int c)
{
    QStringList out;
    for (int r = 0; r < table->rowCount(); ++r)
        out << (table->item(r, c) ? table->item(r, c)->text() : QString());
    return out;
}
} // namespace

class TestBackups : public QObject
{
    Q_OBJECT
private slots:
    void rotation_data()
    {
        // names: the Backups folder at 2026-11-23 12:00; removed: oldest last
        addColumns<QStringList, bool, int, QStringList>("names", "due", "kept", "removed");
        using L = QStringList;
        // clang-format off
        QTest::newRow("none yet") << L() << true << 7 << L();
        // Only names of dated backups count; a copy being written or the user's files never do.
        QTest::newRow("no dated backup") << L{"mine.mdb", "tb2.mdb", "tb2-2026-13-01-000000.mdb", ".tb2-2026-11-23-110000.mdb.1f.partial", "TB2-2026-11-23-110000.MDB", "tb2-2026-11-23-11000.mdb", "tb2-2026-11-23-110000-.mdb", "tb2-2026-11-23-110000-2a.mdb", "tb2-2026-11-23 110000.mdb", "tb2-2026-11-23-110000.mdb.bak", "tb2-2026-02-30-120000.mdb", "tb2-2026-11-23-116000.mdb"} << true << 0 << L();
        QTest::newRow("23 hours old") << L{"tb2-2026-11-22-130000.mdb"} << false << 7 << L();
        QTest::newRow("a day old") << L{"tb2-2026-11-22-120000.mdb"} << true << 1 << L();
        QTest::newRow("newest decides") << L{"tb2-2026-11-01-120000.mdb", "tb2-2026-11-23-110000.mdb"} << false << 1 << L{"tb2-2026-11-01-120000.mdb"};
        QTest::newRow("dated in the future") << L{"tb2-2026-11-24-120000.mdb"} << true << 7 << L();
        QTest::newRow("dated in the future, one kept") << L{"tb2-2026-11-24-120000.mdb"} << true << 1 << L();
        QTest::newRow("same second: -10 after -9 after the plain name")
            << L{"tb2-2026-11-01-080000.mdb", "tb2-2026-11-01-080000-10.mdb", "tb2-2026-11-01-080000-9.mdb"} << true << 1
            << L{"tb2-2026-11-01-080000-9.mdb", "tb2-2026-11-01-080000.mdb"};
        // clang-format on
    }
    void rotation()
    {
        QFETCH(QStringList, names);
        QFETCH(int, kept);
        const QDateTime now(QDate(2026, 11, 23), QTime(12, 0));
        QTEST(Backups::isDue(names, now), "due");
        QTEST(Backups::surplus(names, kept), "removed");
        if (kept < 1 || !Backups::isDue(names, now))
            return;
        // A backup made at start is never the one rotated away.
        TestEnvironment env;
        QVERIFY(QDir().mkpath(env.path(Backups::kFolder)));
        for (const QString& name : names)
            env.writeFile(Backups::kFolder + u'/' + name, "old");
        const Backups::StartupResult made =
            Backups::backUpIfDue(env.appPath(), env.path(u"tb2.mdb"_s), kept, now);
        QVERIFY2(made.made && QFileInfo::exists(made.path), qPrintable(made.error));
    }

    void launcherBacksUp_data()
    {
        // stored: the number of backups kept as saved; "-" = never; kept: dated backups in the
        // folder afterwards
        addColumns<QString, int>("stored", "kept");
        QTest::newRow("never set: seven") << "-" << 7;
        QTest::newRow("three") << "3" << 3;
        QTest::newRow("off") << "0" << 8;
        QTest::newRow("not a number: seven") << "seven" << 7;
    }
    // Started beside eight old backups: a new one of the items, the oldest ones beyond the number
    // kept removed, the user's own file left, and nothing said.
    void launcherBacksUp()
    {
        QFETCH(QString, stored);
        QFETCH(int, kept);
        TestEnvironment env;
        env.addNumberedItems(2);
        if (stored != "-"_L1)
            env.store().save(Settings::kApp, Backups::kSection, Backups::kKeptKey, stored);
        const QString folder = env.path(Backups::kFolder);
        const auto old = [](int day) {
            return u"tb2-2020-10-%1-090000.mdb"_s.arg(day, 2, 10, QChar(u'0'));
        };
        QVERIFY(QDir().mkpath(folder));
        for (int d = 1; d <= 8; ++d)
            env.writeFile(Backups::kFolder + u'/' + old(d), "old");
        env.writeFile(Backups::kFolder + u"/mine.mdb"_s, "the user's");
        QTemporaryDir runtime;
        const Started run(env, appdirArguments(env.appPath()), runtime.path());
        QVERIFY(run.ok);
        const bool made = stored != "0"_L1;
        const QStringList dated = datedIn(folder);
        QCOMPARE(dated.size(), kept);
        QCOMPARE(dated.first(), old(made ? 10 - kept : 1));
        QCOMPARE(itemsIn(folder + u'/' + dated.last()), made ? 2 : -1);
        QVERIFY(QFileInfo::exists(folder + u"/mine.mdb"_s));
        QVERIFY(env.prompts().shown().isEmpty());
    }

    // The start-up backup is written beside the window: it holds the items as the last run left
    // them, and a failure is said once known, with the window open.
    void startupBackupBesideTheWindow_data()
    {
        addColumns<QString, int, QString>("before", "backedUp", "said");
        QTest::newRow("an item added as the window opens is not in it") << "add" << 2 << "";
        QTest::newRow("a folder that cannot be made is said")
            << "blocked" << -1 << "could not back up your items";
    }
    void startupBackupBesideTheWindow()
    {
        QFETCH(QString, before);
        QFETCH(int, backedUp);
        QFETCH(QString, said);
        TestEnvironment env;
        env.addNumberedItems(2);
        if (before == "blocked"_L1)
            env.writeFile(Backups::kFolder, "a file where the folder goes");
        QTemporaryDir runtime;
        Launcher launcher(env.prompts(), env.shell(), env.store(), env.context().timeZone);
        launcher.setLockFolder(runtime.path());
        QVERIFY(launcher.start(appdirArguments(env.appPath()), {}, QSize(1280, 1024)));
        if (before == "add"_L1)
            QVERIFY(QSqlQuery(launcher.context()->itemDatabase)
                        .exec(u"INSERT INTO Items (ShortDescription) VALUES ('new')"_s));
        launcher.waitForStartupBackup();
        QCoreApplication::processEvents();
        const QString folder = env.path(Backups::kFolder);
        const QStringList dated = datedIn(folder);
        QCOMPARE(dated.isEmpty() ? -1 : itemsIn(folder + u'/' + dated.last()), backedUp);
        const auto shown = env.prompts().shown();
        QCOMPARE(shown.size(), said.isEmpty() ? 0 : 1);
        if (!said.isEmpty()) {
            QVERIFY2(shown.first().text.contains(said), qPrintable(shown.first().text));
            QCOMPARE(shown.first().icon, PromptIcon::Exclamation);
            QVERIFY(launcher.window()->isVisible());
        }
    }

    void commands_data()
    {
        // command: the File menu item. chosen: "five.mdb" a backup of five items, "text.mdb" a
        // text file, others not there yet; "tb2.mdb" the database in use; "" = the dialog
        // cancelled. messages: how each prompt after the file dialog starts. yes: the answer to
        // "Replace all your items".
        addColumns<QString, QString, QStringList, bool>("command", "chosen", "messages", "yes");
        const QString backUp = u"mnuBackUpNow"_s, restore = u"mnuRestoreBackup"_s;
        const QString ask = u"Replace all your items with the 5 items"_s;
        // clang-format off
        QTest::newRow("backed up") << backUp << "copy.mdb" << QStringList{"Your items were backed up to"} << false;
        QTest::newRow("back-up cancelled") << backUp << "" << QStringList() << false;
        QTest::newRow("back-up over the database") << backUp << "tb2.mdb" << QStringList{"That file is the database"} << false;
        QTest::newRow("back-up folder missing") << backUp << "no/such/copy.mdb" << QStringList{"The backup could not be made"} << false;
        QTest::newRow("restored") << restore << "five.mdb" << QStringList{ask, "5 items were restored."} << true;
        QTest::newRow("restore of a text file") << restore << "text.mdb" << QStringList{"The file "} << false;
        QTest::newRow("restore answered No") << restore << "five.mdb" << QStringList{ask} << false;
        QTest::newRow("restore cancelled") << restore << "" << QStringList() << false;
        // clang-format on
    }
    // Back Up Now and Restore from Backup in the item window. What was typed into the current
    // item is written first; only a restore answered Yes changes the items, keeping the ones it
    // replaced in Backups/, and the window then shows the restored items.
    void commands()
    {
        QFETCH(QString, command);
        QFETCH(QString, chosen);
        QFETCH(QStringList, messages);
        QFETCH(bool, yes);
        TestEnvironment env;
        env.addNumberedItems(5);
        QTemporaryDir out;
        QVERIFY(backupDatabaseFile(env.path(u"tb2.mdb"_s), out.filePath(u"five.mdb"_s)).ok());
        QFile text(out.filePath(u"text.mdb"_s));
        QVERIFY(text.open(QIODevice::WriteOnly) &&
                text.write("EbayID;ShortDescription\n1;a lamp\n"));
        text.close();
        env.addNumberedItems(4);
        ItemWindow w(env);
        w->mnuLast_Click();
        w.field(3)->setFocus();
        w.field(3)->selectAll();
        QTest::keyClicks(w.field(3), u"typed"_s);
        const QString path = chosen.isEmpty()         ? QString()
                             : chosen == "tb2.mdb"_L1 ? env.path(chosen)
                                                      : out.filePath(chosen);
        env.prompts().queueFile(path);
        if (chosen == "five.mdb"_L1)
            env.prompts().queueAnswer(yes ? PromptAnswer::Yes : PromptAnswer::No);
        w.menu(command)->trigger();
        QVERIFY(env.prompts().unexpected().isEmpty());
        const auto shown = env.prompts().shown();
        QCOMPARE(shown.size(), 1 + messages.size());
        const bool backUp = command == "mnuBackUpNow"_L1;
        QCOMPARE(shown.first().kind, backUp ? u"save"_s : u"open"_s);
        // Offered in Backups/, a back-up under a dated name.
        QVERIFY(shown.first().extra.contains(env.path(Backups::kFolder) + (backUp ? "/tb2-" : "")));
        for (qsizetype i = 0; i < messages.size(); ++i)
            QVERIFY2(shown.at(i + 1).text.startsWith(messages.at(i)),
                     qPrintable(shown.at(i + 1).text));
        if (chosen == "five.mdb"_L1)
            QCOMPARE(shown.at(1).buttons, PromptButtons::YesNo);
        if (chosen == "text.mdb"_L1) {
            QVERIFY(
                shown.last().text.endsWith(u"Nothing was restored; your items are unchanged."_s));
            QCOMPARE(shown.last().icon, PromptIcon::Exclamation);
        }
        if (chosen == "copy.mdb"_L1) {
            QCOMPARE(shown.last().icon, PromptIcon::Information);
            QCOMPARE(itemsIn(path), 9);
            QCOMPARE(ninthIn(path), u"typed"_s);
        }
        const QString folder = env.path(Backups::kFolder);
        const QStringList safety = datedIn(folder);
        QCOMPARE(safety.size(), yes ? 1 : 0);
        QCOMPARE(env.itemCount(), yes ? 5 : 9);
        QCOMPARE(env.storedValue(9, u"ShortDescription"_s).toString(),
                 yes ? QString() : u"typed"_s);
        QCOMPARE(w.counters(), yes ? u"1/5"_s : u"9/9"_s);
        if (!yes)
            return;
        // The window stands on the first restored item of its view; what was there before is kept.
        QCOMPARE(w.field(3)->text(), u"Item 1"_s);
        QCOMPARE(w.navigation(), u"10111"_s);
        w->mnuLast_Click();
        QCOMPARE(w.field(3)->text(), u"Item 5"_s);
        QCOMPARE(itemsIn(folder + u'/' + safety.first()), 9);
        QCOMPARE(ninthIn(folder + u'/' + safety.first()), u"typed"_s);
        QVERIFY(shown.at(2).text.endsWith(safety.first()));
    }

    // Export and Import sit just above the backup commands, which stay next to Exit's separator.
    // Export writes the Active view's items, in its order, with what was typed into the current.
    void exportsTheView()
    {
        TestEnvironment env;
        env.addNumberedItems(6); // 3 and 6 are inactive
        ItemWindow w(env);
        const QList<QAction*> file = w.child<QMenu>(u"mnuFile"_s)->actions();
        const qsizetype exportAt = file.indexOf(w.menu(u"mnuExportItems"_s));
        QCOMPARE(file.at(exportAt + 1), w.menu(u"mnuImportItems"_s));
        QCOMPARE(file.at(exportAt + 2), w.menu(u"mnuBackUpNow"_s));
        QCOMPARE(file.at(exportAt + 3), w.menu(u"mnuRestoreBackup"_s));
        QVERIFY(file.at(exportAt + 4)->isSeparator());
        QCOMPARE(file.at(exportAt + 5), w.menu(u"mnuExit"_s));
        QCOMPARE(w.menu(u"mnuExportItems"_s)->text(), Texts::kExportItemsMenu);
        w->mnuOpen_Click();
        w.field(3)->setText(u"Item 1, edited"_s);
        const QString path = env.path(u"active.csv"_s);
        env.prompts().queueFile(path);
        w.menu(u"mnuExportItems"_s)->trigger();
        QCOMPARE(env.prompts().unexpected(), QStringList());
        QCOMPARE(env.prompts().shown().last().text,
                 Texts::exportDone(4, QDir::toNativeSeparators(path)));
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const auto records = ItemCsv::parse(QString::fromUtf8(f.readAll()), u',');
        const qsizetype sd = ItemColumns::names().indexOf(u"ShortDescription"_s);
        QStringList names;
        for (qsizetype r = 1; r < records.size(); ++r)
            names << records.at(r).fields.at(sd);
        QCOMPARE(names, (QStringList{"Item 1, edited", "Item 2", "Item 4", "Item 5"}));
        QCOMPARE(w.total(), u"4"_s); // the view is as it was
    }

    void import_data()
    {
        QTest::addColumn<bool>("import");
        QTest::newRow("Import") << true;
        QTest::newRow("Cancel") << false;
    }
    // The preview shows the first rows and the row that cannot be read; Import adds the good
    // rows, reports, and the window counts them. Cancel adds nothing and says nothing.
    void import()
    {
        QFETCH(bool, import);
        TestEnvironment env;
        env.addNumberedItems(2);
        ItemWindow w(env);
        QCOMPARE(w.total(), u"2"_s);
        env.prompts().queueFile(env.writeFile(u"in.csv"_s,
                                              "\xEF\xBB\xBFshortdescription;Cost;Colour\r\n"
                                              "\"Lamp; brass\";12.50;red\r\n"
                                              "Vase;ten;blue\r\n"
                                              "Clock;;\r\n"));
        QStringList preview, problems, unknown;
        bool canImport = false;
        WhenImportShown watch([&](frmImport& d) {
            const auto* grid = d.findChild<QTableWidget*>(u"grdPreview"_s);
            preview = column(grid, 1) + column(grid, 2);
            problems = column(d.findChild<QTableWidget*>(u"grdProblems"_s), 1);
            unknown << d.findChild<QLabel*>(u"lblUnknown"_s)->text();
            auto* button = d.findChild<QPushButton*>(import ? u"cmdImport"_s : u"cmdCancel"_s);
            canImport = d.findChild<QPushButton*>(u"cmdImport"_s)->isEnabled();
            QTest::mouseClick(button, Qt::LeftButton);
        });
        w.menu(u"mnuImportItems"_s)->trigger();
        QVERIFY(watch.ran);
        QCOMPARE(preview, (QStringList{"Lamp; brass", "Vase", "Clock", "12.50", "ten", ""}));
        QCOMPARE(problems, QStringList{u"Cost: \"ten\" is not an amount"_s});
        QCOMPARE(unknown, QStringList{Texts::importUnknown({u"Colour"_s})});
        QVERIFY(canImport);
        QCOMPARE(env.prompts().unexpected(), QStringList());
        QCOMPARE(env.itemCount(), import ? 4 : 2);
        QCOMPARE(w.total(), import ? u"4"_s : u"2"_s);
        if (!import) {
            QCOMPARE(env.prompts().shown().size(), 1); // the file dialog only
            return;
        }
        QCOMPARE(env.prompts().shown().last().text, Texts::importDone(2, 1));
        QCOMPARE(env.storedValue(3, u"ShortDescription"_s).toString(), u"Lamp; brass"_s);
        QCOMPARE(env.storedValue(3, u"Cost"_s).toLongLong(), 125000);
    }
};

QTEST_MAIN(TestBackups)
#include "tst_backups.moc"
