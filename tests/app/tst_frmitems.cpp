// The item window as a user meets it: views, counters, moves, enabling, the saved view and size,
// the bars, the links menu, and how it looks.
#include "ItemWindowFixture.h"
#include "../support/LayoutCheck.h"

#include "app/Launcher.h"
#include "app/texts.h"
#include "settings/SettingsCatalogue.h"

#include <QComboBox>
#include <QLabel>
#include <QLockFile>
#include <QMenu>
#include <QStatusBar>
#include <QToolBar>

class TestItemWindow : public QObject
{
    Q_OBJECT
private slots:
    void emptyTable_data();
    void emptyTable();
    void views_data();
    void views();
    void navigationAndBeeps();
    void savedViewReopens();
    void lengthFromDates_data();
    void lengthFromDates();
    void barsToggleAndPersist();
    void linksMenuFollowsSettings();
    void helpOpensGuide();
    void windowSizeSavedInTwips();
    void smallScreenHidesViewButtons_data();
    void smallScreenHidesViewButtons();
    void looksRightAtDefaultSize();
    void launcherRefusesMissingDatabase();
    void launcherRefusesSecondCopy();
    void launcherStartsFreshFolderWithOneItem();
};

void TestItemWindow::emptyTable_data()
{
    QTest::addColumn<QString>("saved");
    QTest::addColumn<QString>("counters");
    QTest::addColumn<int>("rows");
    QTest::newRow("All adds one new item") << "All" << "1 of 1" << 1;
    QTest::newRow("Active shows nothing") << "Open" << "0 of 0" << 0;
    QTest::newRow("Inactive shows nothing") << "Closed" << "0 of 0" << 0;
}

void TestItemWindow::emptyTable()
{
    QFETCH(QString, saved);
    TestEnvironment env;
    env.store().save(Settings::kApp, Settings::kSystem, QStringLiteral("ItemsViewed"), saved);
    ItemWindow w(env);
    QFETCH(QString, counters);
    QCOMPARE(w.current() + QLatin1String(" of ") + w.total(), counters);
    QFETCH(int, rows);
    QCOMPARE(env.itemCount(), rows);
    QCOMPARE(w.navigation(), QStringLiteral("00000"));
}

void TestItemWindow::views_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<int>("total");
    QTest::addColumn<QString>("saved");
    // 30 items, every third inactive
    QTest::newRow("All") << "mnuAll" << Texts::kCaptionAll << 30 << "All";
    QTest::newRow("Active") << "mnuOpen" << Texts::kCaptionActive << 20 << "Open";
    QTest::newRow("Inactive") << "mnuClosed" << Texts::kCaptionInactive << 10 << "Closed";
}

void TestItemWindow::views()
{
    TestEnvironment env;
    env.addNumberedItems(30);
    ItemWindow w(env);
    QFETCH(QString, command);
    w.menu(command)->trigger();
    QFETCH(QString, caption);
    QCOMPARE(w->windowTitle(), caption);
    QFETCH(int, total);
    QCOMPARE(w.total(), QString::number(total));
    QCOMPARE(w.current(), QStringLiteral("1"));
    for (const char* m : {"mnuAll", "mnuOpen", "mnuClosed"})
        QCOMPARE(w.menu(QString::fromLatin1(m))->isChecked(), command == QLatin1String(m));
    QFETCH(QString, saved);
    QCOMPARE(env.store().get(Settings::kApp, Settings::kSystem, QStringLiteral("ItemsViewed")),
             saved);
    QCOMPARE(w.navigation(), QStringLiteral("10111"));
    // the Inactive view shows only inactive items, the first being "Item 3"
    if (command == QLatin1String("mnuClosed"))
        QCOMPARE(w.field(3)->text(), QStringLiteral("Item 3"));
}

void TestItemWindow::navigationAndBeeps()
{
    TestEnvironment env;
    env.addNumberedItems(5);
    ItemWindow w(env);
    w.menu(QStringLiteral("mnuNext"))->trigger();
    QCOMPARE(w.current(), QStringLiteral("2"));
    QCOMPARE(w.field(3)->text(), QStringLiteral("Item 2"));
    QCOMPARE(w.navigation(), QStringLiteral("11111"));
    w.menu(QStringLiteral("mnuLast"))->trigger();
    QCOMPARE(w.current(), QStringLiteral("5"));
    QCOMPARE(w.navigation(), QStringLiteral("11011"));
    // Next on the last item beeps and stays
    w->mnuNext_Click();
    QCOMPARE(w->beepCount(), 1);
    QCOMPARE(w.current(), QStringLiteral("5"));
    QCOMPARE(w.field(3)->text(), QStringLiteral("Item 5"));
    w.menu(QStringLiteral("mnuFirst"))->trigger();
    QCOMPARE(w.current(), QStringLiteral("1"));
    QCOMPARE(w.navigation(), QStringLiteral("10111"));
    w->mnuPrevious_Click();
    QCOMPARE(w->beepCount(), 2);
    QCOMPARE(w.current(), QStringLiteral("1"));
    QCOMPARE(w.field(3)->text(), QStringLiteral("Item 1"));
    // the toolbar runs the same commands
    w->toolButton(QStringLiteral("Next"))->trigger();
    QCOMPARE(w.current(), QStringLiteral("2"));
}

void TestItemWindow::savedViewReopens()
{
    TestEnvironment env;
    env.addNumberedItems(6);
    {
        ItemWindow w(env);
        w.menu(QStringLiteral("mnuClosed"))->trigger();
    }
    ItemWindow again(env);
    QCOMPARE(again->currentView(), frmItems::View::Inactive);
    QCOMPARE(again.total(), QStringLiteral("2"));
}

void TestItemWindow::lengthFromDates_data()
{
    QTest::addColumn<QString>("ends");
    QTest::addColumn<QString>("length");
    QTest::newRow("7 days") << "1999-06-08 10:00:00" << "7";
    QTest::newRow("14 days shows 7") << "1999-06-15 10:00:00" << "7";
    QTest::newRow("2 days shows 7") << "1999-06-03 10:00:00" << "7";
    QTest::newRow("4 days shown as it is") << "1999-06-05 09:00:00" << "4";
    QTest::newRow("10 days") << "1999-06-11 10:00:00" << "10";
}

void TestItemWindow::lengthFromDates()
{
    QFETCH(QString, ends);
    TestEnvironment env;
    env.addItems({{{QStringLiteral("DateAuctionStarted"), QStringLiteral("1999-06-01 10:00:00")},
                   {QStringLiteral("DateAuctionEnds"), ends}}});
    ItemWindow w(env);
    QFETCH(QString, length);
    QCOMPARE(w.child<QComboBox>(QStringLiteral("comboLength"))->currentText(), length);
}

void TestItemWindow::barsToggleAndPersist()
{
    TestEnvironment env;
    {
        ItemWindow w(env);
        QVERIFY(w.child<QToolBar>(QStringLiteral("Toolbar1"))->isVisible());
        w.menu(QStringLiteral("mnuViewToolbar"))->trigger();
        QVERIFY(!w.child<QToolBar>(QStringLiteral("Toolbar1"))->isVisible());
        QVERIFY(!w.menu(QStringLiteral("mnuViewToolbar"))->isChecked());
        w.menu(QStringLiteral("mnuViewStatusBar"))->trigger();
        QVERIFY(!w.child<QStatusBar>(QStringLiteral("sbStatus"))->isVisible());
    }
    // written under "ToolBar"/"StatusBar", read back under "Toolbar"/"Statusbar"
    QCOMPARE(env.store().get(Settings::kApp, Settings::kOptions, QStringLiteral("Toolbar")),
             QStringLiteral("False"));
    ItemWindow again(env);
    QVERIFY(!again.child<QToolBar>(QStringLiteral("Toolbar1"))->isVisible());
    QVERIFY(!again.child<QStatusBar>(QStringLiteral("sbStatus"))->isVisible());
    QVERIFY(!again.menu(QStringLiteral("mnuViewStatusBar"))->isChecked());
}

void TestItemWindow::linksMenuFollowsSettings()
{
    TestEnvironment env;
    SettingsStore& s = env.store();
    s.save(Settings::kApp, Settings::kOptions, QStringLiteral("LinkName 2"), QStringLiteral("Mine"));
    s.save(Settings::kApp, Settings::kOptions, QStringLiteral("LinkURL 2"), QStringLiteral("http://example.com/"));
    s.save(Settings::kApp, Settings::kOptions, QStringLiteral("LinkURL 4"), QStringLiteral("http://example.com/4"));
    seedDefaultLinks(s);
    ItemWindow w(env);
    w->rebuildLinksMenu();
    QStringList shown;
    for (int i = 0; i < 10; ++i) {
        QAction* a = w.menu(QStringLiteral("mnuLinks_%1").arg(i));
        if (a->isVisible())
            shown << a->text();
    }
    QCOMPARE(shown, (QStringList{QStringLiteral("USPS Tracking"), QStringLiteral("Mine"),
                                 QStringLiteral("UPS Tracking")}));
    w.menu(QStringLiteral("mnuLinks_1"))->trigger();
    QCOMPARE(env.shell().opened.last().target, QStringLiteral("http://example.com/"));
}

void TestItemWindow::helpOpensGuide()
{
    TestEnvironment env;
    ItemWindow w(env);
    w.menu(QStringLiteral("mnuHelpDoc"))->trigger();
    QCOMPARE(env.shell().opened.size(), 1);
    QCOMPARE(env.shell().opened.first().target, env.path(QStringLiteral("tb2ug.htm")));
    QCOMPARE(env.shell().opened.first().workingDir, env.appPath());
}

void TestItemWindow::windowSizeSavedInTwips()
{
    TestEnvironment env;
    {
        ItemWindow w(env);
        w->resize(900, 640);
        w->close();
    }
    QCOMPARE(env.store().get(Settings::kApp, Settings::kOptions, QStringLiteral("MainFormWidth")),
             QStringLiteral("13500"));
    QCOMPARE(env.store().get(Settings::kApp, Settings::kOptions, QStringLiteral("MainFormHeight")),
             QStringLiteral("9600"));
    ItemWindow again(env);
    QCOMPARE(again->size(), QSize(900, 640));
}

void TestItemWindow::smallScreenHidesViewButtons_data()
{
    QTest::addColumn<QSize>("screen");
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<int>("width");
    QTest::newRow("640x480") << QSize(640, 480) << true << (640 * 15 - 150) / 15;
    QTest::newRow("800x600") << QSize(800, 600) << false << 11800 / 15;
}

void TestItemWindow::smallScreenHidesViewButtons()
{
    QFETCH(QSize, screen);
    TestEnvironment env;
    ItemWindow w(env, screen);
    QFETCH(bool, hidden);
    for (const char* key : {"All", "Open", "Closed", "Find"})
        QCOMPARE(w->toolButton(QString::fromLatin1(key))->isVisible(), !hidden);
    QFETCH(int, width);
    QCOMPARE(w->width(), width);
}

void TestItemWindow::looksRightAtDefaultSize()
{
    TestEnvironment env;
    env.addItems({{{QStringLiteral("ShortDescription"), QStringLiteral("Blue glass vase")},
                   {QStringLiteral("Description"), QStringLiteral("A hand-blown vase.")},
                   {QStringLiteral("EbayID"), QStringLiteral("123456789")},
                   {QStringLiteral("Reserve"), 250000},
                   {QStringLiteral("MinBid"), 10000}}});
    ItemWindow w(env);
    QTest::qWait(50);
    const QStringList problems = layoutProblems(w.child<QWidget>(QStringLiteral("centralwidget")));
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
    const QString shot = QDir::temp().filePath(QStringLiteral("tallybid-frmItems.png"));
    QVERIFY(w->grab().save(shot));
    qInfo("screenshot: %s", qPrintable(shot));
}

void TestItemWindow::launcherRefusesMissingDatabase()
{
    TestEnvironment env;
    QTemporaryDir empty;
    Launcher launcher(env.prompts(), env.shell(), env.store(), env.context().timeZone);
    QVERIFY(!launcher.start({QStringLiteral("tallybid"), QStringLiteral("--appdir"), empty.path()},
                            {}, QSize(1280, 1024)));
    QCOMPARE(launcher.exitCode(), 1);
    QCOMPARE(env.prompts().shown().size(), 1);
    QCOMPARE(env.prompts().shown().first().text, Texts::kDbMissing);
    QCOMPARE(env.prompts().shown().first().title, kDefaultTitle);
    QVERIFY(!QFile::exists(empty.filePath(QStringLiteral("tb2.mdb"))));
    QVERIFY(launcher.window() == nullptr);
}

void TestItemWindow::launcherRefusesSecondCopy()
{
    TestEnvironment env;
    QLockFile other(env.path(QStringLiteral("tallybid.lock")));
    QVERIFY(other.tryLock());
    Launcher launcher(env.prompts(), env.shell(), env.store(), env.context().timeZone);
    QVERIFY(!launcher.start({QStringLiteral("tallybid"), QStringLiteral("--appdir"), env.appPath()},
                            {}, QSize(1280, 1024)));
    QCOMPARE(env.prompts().shown().last().text, Texts::kAlreadyRunning);
    QVERIFY(launcher.window() == nullptr);
}

void TestItemWindow::launcherStartsFreshFolderWithOneItem()
{
    TestEnvironment env;
    env.writeFile(QStringLiteral("Start.htm"), "cached");
    Launcher launcher(env.prompts(), env.shell(), env.store(), env.context().timeZone);
    QVERIFY(launcher.start({QStringLiteral("tallybid"), QStringLiteral("--appdir"), env.appPath()},
                           {}, QSize(1280, 1024)));
    QVERIFY(launcher.window()->isVisible());
    QCOMPARE(launcher.window()->windowTitle(), Texts::kCaptionAll);
    QCOMPARE(launcher.window()->findChild<QLineEdit*>(QStringLiteral("txtTotItem"))->text(),
             QStringLiteral("1"));
    QVERIFY(!QFile::exists(env.path(QStringLiteral("Start.htm"))));
    QCOMPARE(env.store().get(Settings::kApp, Settings::kSystemData, QStringLiteral("AppPath")),
             env.appPath());
    QCOMPARE(env.store().get(Settings::kApp, Settings::kOptions, QStringLiteral("LinkName 1")),
             QStringLiteral("USPS Tracking"));
}

QTEST_MAIN(TestItemWindow)
#include "tst_frmitems.moc"
