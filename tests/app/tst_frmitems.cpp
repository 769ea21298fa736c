// The item window as a user meets it: views, counters, moves, enabling, what it remembers
// across a restart, the links menu, start-up refusals and how it looks.
#include "../support/LayoutCheck.h"
#include "ItemWindowFixture.h"

#include "app/Launcher.h"
#include "app/texts.h"
#include "settings/SettingsCatalogue.h"

#include <QDialog>
#include <QLockFile>
#include <QPlainTextEdit>
#include <QSqlQuery>
#include <QStatusBar>
#include <QToolBar>

namespace {
QString viewed(TestEnvironment& env)
{
    return env.store().get(Settings::kApp, Settings::kSystem, QStringLiteral("ItemsViewed"));
}
} // namespace

class TestItemWindow : public QObject
{
    Q_OBJECT
private slots:
    void views_data();
    void views();
    void navigationAndBeeps();
    void descriptionLooksAsIfSetDirectly();
    void lengthFromDates_data();
    void lengthFromDates();
    void restartRemembersViewBarsAndSize();
    void linksMenuFollowsSettings();
    void smallScreenHidesViewButtons_data();
    void smallScreenHidesViewButtons();
    void looksRightAtDefaultSize();
    void launcher_data();
    void launcher();
};

void TestItemWindow::views_data()
{
    QTest::addColumn<int>("items"); // every third one inactive
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("counters");
    QTest::addColumn<QString>("navigation"); // First Prev Next Last Del
    QTest::addColumn<int>("rows");
    QTest::newRow("empty All adds an item") << 0 << "mnuAll" << Texts::kCaptionAll << "1/1"
                                            << "00000" << 1;
    QTest::newRow("empty Active") << 0 << "mnuOpen" << Texts::kCaptionActive << "0/0"
                                  << "00000" << 0;
    QTest::newRow("empty Inactive") << 0 << "mnuClosed" << Texts::kCaptionInactive << "0/0"
                                    << "00000" << 0;
    QTest::newRow("All") << 30 << "mnuAll" << Texts::kCaptionAll << "1/30"
                         << "10111" << 30;
    QTest::newRow("Active") << 30 << "mnuOpen" << Texts::kCaptionActive << "1/20"
                            << "10111" << 30;
    QTest::newRow("Inactive") << 30 << "mnuClosed" << Texts::kCaptionInactive << "1/10"
                              << "10111" << 30;
    QTest::newRow("one item") << 1 << "mnuAll" << Texts::kCaptionAll << "1/1"
                              << "00000" << 1;
}

void TestItemWindow::views()
{
    QFETCH(int, items);
    QFETCH(QString, command);
    TestEnvironment env;
    env.addNumberedItems(items);
    env.store().save(Settings::kApp, Settings::kSystem, QStringLiteral("ItemsViewed"),
                     QStringLiteral("none"));
    ItemWindow w(env);
    w.menu(command)->trigger();
    QTEST(w->windowTitle(), "caption");
    QTEST(QString(w.current() + u'/' + w.total()), "counters");
    QTEST(w.navigation(), "navigation");
    QTEST(env.itemCount(), "rows");
    for (const char* m : {"mnuAll", "mnuOpen", "mnuClosed"})
        QCOMPARE(w.menu(QString::fromLatin1(m))->isChecked(), command == QLatin1String(m));
    const QStringList saved{QStringLiteral("All"), QStringLiteral("Open"),
                            QStringLiteral("Closed")};
    QCOMPARE(viewed(env), saved.at(QStringList{"mnuAll", "mnuOpen", "mnuClosed"}.indexOf(command)));
    if (items == 30 && command == QLatin1String("mnuClosed"))
        QCOMPARE(w.field(3)->text(), QStringLiteral("Item 3"));
}

void TestItemWindow::navigationAndBeeps()
{
    TestEnvironment env;
    env.addNumberedItems(5);
    ItemWindow w(env);
    // The handlers run directly: at the ends their menu items are disabled, so only another
    // command can ask for a move past the end.
    const auto step = [&](void (frmItems::*command)(), const char* at, const char* nav, int beeps) {
        (w.window.get()->*command)();
        QCOMPARE(w.current(), QString::fromLatin1(at));
        QCOMPARE(w.field(3)->text(), QLatin1String("Item ") + QLatin1String(at));
        QCOMPARE(w.navigation(), QString::fromLatin1(nav));
        QCOMPARE(w->beepCount(), beeps);
    };
    step(&frmItems::mnuNext_Click, "2", "11111", 0);
    step(&frmItems::mnuLast_Click, "5", "11011", 0);
    step(&frmItems::mnuNext_Click, "5", "11011", 1); // past the end: beep, stay
    step(&frmItems::mnuFirst_Click, "1", "10111", 1);
    step(&frmItems::mnuPrevious_Click, "1", "10111", 2);
    w->toolButton(QStringLiteral("Next"))->trigger(); // the toolbar runs the same command
    QCOMPARE(w.current(), QStringLiteral("2"));
}

// Moving fills the description box without laying it out until it is painted; what the user sees
// (text, scroll bar, scroll position) must be what setting the text the ordinary way shows, both
// when the box is painted at once and after the event loop has run.
void TestItemWindow::descriptionLooksAsIfSetDirectly()
{
    QStringList paragraphs;
    for (int i = 0; i < 40; ++i)
        paragraphs << QStringLiteral("<p>Paragraph %1 of a long description that wraps over more "
                                     "than one line in the box.</p>")
                          .arg(i);
    const QString longText = paragraphs.join(QLatin1String("\r\n"));
    TestEnvironment env;
    QList<QVariantMap> rows;
    for (const QString& d :
         {longText, QStringLiteral("short"), QString(), longText.left(900), longText})
        rows << QVariantMap{{QStringLiteral("Description"), d}};
    env.addItems(rows);
    ItemWindow w(env);
    auto* box = w.child<QPlainTextEdit>(QStringLiteral("txtFields_4"));
    // The text, whether the box scrolls, where it stands. Not the scroll bar's range: the box
    // counts lines of paragraphs not yet laid out as one, so the range depends on what was
    // painted before it was asked, whichever way the text was set.
    const auto text = [&] { return box->viewport()->grab().toImage(); };
    const auto look = [&] {
        const QImage shown = text();
        const QScrollBar* bar = box->verticalScrollBar();
        return std::make_tuple(shown, bar->isVisible(), bar->value(), box->textCursor().position());
    };
    QScrollBar* bar = box->verticalScrollBar();
    for (int item = 2; item <= rows.size(); ++item) {
        const QString before = rows.at(item - 2).value(QStringLiteral("Description")).toString();
        const QString after = rows.at(item - 1).value(QStringLiteral("Description")).toString();
        // The box as the previous item left it, scrolled to its end.
        const auto fromPrevious = [&] {
            box->setPlainText(before);
            QTest::qWait(0);
            bar->setValue(bar->maximum());
            QTest::qWait(0);
        };
        fromPrevious();
        box->setPlainText(after);
        const QImage directAtOnce = text();
        QTest::qWait(0);
        const auto direct = look();
        fromPrevious();
        w->mnuNext_Click();
        QCOMPARE(box->toPlainText(),
                 QString(after).replace(QLatin1String("\r\n"), QLatin1String("\n")));
        const QImage movedAtOnce = text();
        QTest::qWait(0);
        const auto moved = look();
        QVERIFY2(movedAtOnce == directAtOnce, qPrintable(QString::number(item)));
        QVERIFY2(moved == direct, qPrintable(QString::number(item)));
    }
    // Browsing never rewrites a description, though the box shows its CR LF line ends as LF;
    // an edit keeps them.
    const auto stored = [&](int id) {
        QSqlQuery q(env.context().itemDatabase);
        q.exec(QStringLiteral("SELECT Description FROM Items WHERE ID = %1").arg(id));
        return q.next() ? q.value(0).toString() : QStringLiteral("(none)");
    };
    w->mnuFirst_Click();
    QCOMPARE(stored(1), longText);
    box->setFocus();
    box->moveCursor(QTextCursor::Start);
    QTest::keyClicks(box, QStringLiteral("New. "));
    w->mnuNext_Click();
    QCOMPARE(stored(1), QLatin1String("New. ") + longText);
    // Typed and taken back is no edit; text put in by a command is one.
    box->setFocus();
    QTest::keyClicks(box, QStringLiteral("x"));
    QTest::keyClick(box, Qt::Key_Backspace);
    w->mnuPrevious_Click();
    QCOMPARE(stored(2), QStringLiteral("short"));
    w->setFieldText(4, QStringLiteral("Set by a command"));
    w->mnuNext_Click();
    QCOMPARE(stored(1), QStringLiteral("Set by a command"));
}

void TestItemWindow::lengthFromDates_data()
{
    QTest::addColumn<QString>("ends");
    QTest::addColumn<QString>("length");
    QTest::newRow("7 days") << "1999-06-08 10:00:00"
                            << "7";
    QTest::newRow("14 days shows 7") << "1999-06-15 10:00:00"
                                     << "7";
    QTest::newRow("2 days shows 7") << "1999-06-03 10:00:00"
                                    << "7";
    QTest::newRow("4 days shown as it is") << "1999-06-05 09:00:00"
                                           << "4";
}

void TestItemWindow::lengthFromDates()
{
    QFETCH(QString, ends);
    TestEnvironment env;
    env.addItems({{{QStringLiteral("DateAuctionStarted"), QStringLiteral("1999-06-01 10:00:00")},
                   {QStringLiteral("DateAuctionEnds"), ends}}});
    ItemWindow w(env);
    QTEST(w.child<QComboBox>(QStringLiteral("comboLength"))->currentText(), "length");
}

void TestItemWindow::restartRemembersViewBarsAndSize()
{
    TestEnvironment env;
    env.addNumberedItems(6);
    {
        ItemWindow w(env);
        w.menu(QStringLiteral("mnuClosed"))->trigger();
        w.menu(QStringLiteral("mnuViewToolbar"))->trigger();
        w.menu(QStringLiteral("mnuViewStatusBar"))->trigger();
        QVERIFY(!w.child<QToolBar>(QStringLiteral("Toolbar1"))->isVisible());
        w->resize(900, 640);
        w->close();
    }
    const auto option = [&](const char* key) {
        return env.store().get(Settings::kApp, Settings::kOptions, QString::fromLatin1(key));
    };
    // written as "ToolBar", read back as "Toolbar"; the size in twips
    QCOMPARE(option("Toolbar"), QStringLiteral("False"));
    QCOMPARE(option("MainFormWidth") + u' ' + option("MainFormHeight"),
             QStringLiteral("13500 9600"));
    ItemWindow again(env);
    QCOMPARE(again->currentView(), frmItems::View::Inactive);
    QCOMPARE(again.total(), QStringLiteral("2"));
    QVERIFY(!again.child<QToolBar>(QStringLiteral("Toolbar1"))->isVisible());
    QVERIFY(!again.child<QStatusBar>(QStringLiteral("sbStatus"))->isVisible());
    QVERIFY(!again.menu(QStringLiteral("mnuViewToolbar"))->isChecked());
    QCOMPARE(again->size(), QSize(900, 640));
}

void TestItemWindow::linksMenuFollowsSettings()
{
    TestEnvironment env;
    const auto set = [&](const char* key, const char* value) {
        env.store().save(Settings::kApp, Settings::kOptions, QString::fromLatin1(key),
                         QString::fromLatin1(value));
    };
    set("LinkName 2", "Mine");
    set("LinkURL 2", "http://example.com/");
    set("LinkURL 4", "http://example.com/4"); // an address without a name stays hidden
    seedDefaultLinks(env.store());
    ItemWindow w(env);
    w->rebuildLinksMenu();
    QStringList shown;
    for (int i = 0; i < 10; ++i)
        if (QAction* a = w.menu(QStringLiteral("mnuLinks_%1").arg(i)); a->isVisible())
            shown << a->text();
    QCOMPARE(shown, (QStringList{QStringLiteral("USPS Tracking"), QStringLiteral("Mine"),
                                 QStringLiteral("UPS Tracking")}));
    w.menu(QStringLiteral("mnuLinks_1"))->trigger();
    w.menu(QStringLiteral("mnuHelpDoc"))->trigger();
    QCOMPARE(env.shell().opened.at(0).target, QStringLiteral("http://example.com/"));
    QCOMPARE(env.shell().opened.at(1).target, env.path(QStringLiteral("tb2ug.htm")));
    QCOMPARE(env.shell().opened.at(1).workingDir, env.appPath());
}

void TestItemWindow::smallScreenHidesViewButtons_data()
{
    QTest::addColumn<QSize>("screen");
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<int>("width");
    QTest::newRow("640x480") << QSize(640, 480) << true << (640 * 15 - 150) / 15;
    QTest::newRow("799x600") << QSize(799, 600) << true << (799 * 15 - 150) / 15;
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
    QTEST(w->width(), "width");
}

void TestItemWindow::looksRightAtDefaultSize()
{
    TestEnvironment env;
    env.addItems({{{QStringLiteral("ShortDescription"), QStringLiteral("Blue glass vase")},
                   {QStringLiteral("EbayID"), QStringLiteral("123456789")}}});
    ItemWindow w(env);
    const QStringList problems = layoutProblems(w.child<QWidget>(QStringLiteral("centralwidget")));
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
    QVERIFY(w->grab().save(QDir::temp().filePath(QStringLiteral("tallybid-frmItems.png"))));
    // the tool windows too
    for (const char* tool : {"mnuToolsCalculator", "mnu_Calendar"}) {
        w.menu(QString::fromLatin1(tool))->trigger();
        QWidget* shown = w->findChildren<QDialog*>().last();
        QVERIFY(shown && shown->isVisible());
        QVERIFY2(layoutProblems(shown).isEmpty(), qPrintable(layoutProblems(shown).join(u'\n')));
        shown->grab().save(
            QDir::temp().filePath(QString::fromLatin1(tool) + QLatin1String(".png")));
        shown->close();
    }
}

void TestItemWindow::launcher_data()
{
    QTest::addColumn<QString>("folder"); // "missing": no tb2.mdb; "locked": another copy runs
    QTest::addColumn<bool>("started");
    QTest::addColumn<QString>("message");
    QTest::newRow("no database") << "missing" << false << Texts::kDbMissing;
    QTest::newRow("second copy") << "locked" << false << Texts::kAlreadyRunning;
    QTest::newRow("fresh folder") << "fresh" << true << QString();
}

void TestItemWindow::launcher()
{
    QFETCH(QString, folder);
    TestEnvironment env;
    QTemporaryDir empty;
    QLockFile other(env.path(QStringLiteral("tallybid.lock")));
    if (folder == QLatin1String("locked"))
        QVERIFY(other.tryLock());
    env.writeFile(QStringLiteral("Start.htm"), "cached");
    const QString dir = folder == QLatin1String("missing") ? empty.path() : env.appPath();
    Launcher launcher(env.prompts(), env.shell(), env.store(), env.context().timeZone);
    launcher.setLockFolder(env.appPath());
    QTEST(launcher.start({QStringLiteral("tallybid"), QStringLiteral("--appdir"), dir}, {},
                         QSize(1280, 1024)),
          "started");
    QFETCH(QString, message);
    QCOMPARE(env.prompts().shown().value(0).text, message);
    QCOMPARE(env.prompts().shown().value(0).title, message.isEmpty() ? QString() : kDefaultTitle);
    QVERIFY(!QFile::exists(empty.filePath(QStringLiteral("tb2.mdb")))); // never created
    if (folder != QLatin1String("fresh")) {
        QVERIFY(launcher.window() == nullptr);
        return;
    }
    QCOMPARE(launcher.window()->windowTitle(), Texts::kCaptionAll);
    QCOMPARE(env.itemCount(), 1);
    QVERIFY(!QFile::exists(env.path(QStringLiteral("Start.htm"))));
    QCOMPARE(env.store().get(Settings::kApp, Settings::kSystemData, QStringLiteral("AppPath")),
             env.appPath());
}

QTEST_MAIN(TestItemWindow)
#include "tst_frmitems.moc"
