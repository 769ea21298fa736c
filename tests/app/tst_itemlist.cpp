// The item list beside the item window, driven as a user would: choosing rows, moving with the
// window's own commands, sorting, searching and what the list remembers.
#include "ItemWindowFixture.h"

#include "app/ItemListPanel.h"
#include "db/ItemListModel.h"

#include <QDockWidget>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTableView>

namespace {

QTableView* table(const ItemWindow& w)
{
    return w.child<QTableView>(QStringLiteral("lvwItems"));
}
QLineEdit* search(const ItemWindow& w)
{
    return w.child<QLineEdit>(QStringLiteral("txtItemSearch"));
}
ItemListModel& model(const ItemWindow& w)
{
    return *static_cast<ItemListModel*>(table(w)->model());
}
bool settle(const ItemWindow& w)
{
    QSignalSpy applied(&model(w), &ItemListModel::keysApplied);
    return !model(w).isBusy() || applied.wait(5000);
}
void clickRow(const ItemWindow& w, int row)
{
    QTableView* t = table(w);
    const QModelIndex at = t->model()->index(row, ItemListModel::Title);
    t->scrollTo(at);
    QTest::mouseClick(t->viewport(), Qt::LeftButton, {}, t->visualRect(at).center());
}
void clickHeader(const ItemWindow& w, int column)
{
    QHeaderView* h = table(w)->horizontalHeader();
    QTest::mouseClick(h->viewport(), Qt::LeftButton, {},
                      QPoint(h->sectionViewportPosition(column) + 5, h->height() / 2));
}
int selectedRow(const ItemWindow& w)
{
    const QModelIndexList rows = table(w)->selectionModel()->selectedRows();
    return rows.size() == 1 ? rows.first().row() : -1;
}
QString titleAt(const ItemWindow& w, int row)
{
    return model(w).data(model(w).index(row, ItemListModel::Title)).toString();
}

} // namespace

class TestItemList : public QObject
{
    Q_OBJECT
private slots:
    // Shown by default beside the item, with the view's rows in its order.
    void showsTheView()
    {
        TestEnvironment env;
        env.addNumberedItems(9);
        ItemWindow w(env);
        w->mnuAll_Click();
        QVERIFY(w.child<QDockWidget>(QStringLiteral("dockItemList"))->isVisible());
        QVERIFY(w.menu(QStringLiteral("mnuViewItemList"))->isChecked());
        QCOMPARE(table(w)->model()->rowCount(), 9);
        QCOMPARE(titleAt(w, 8), QStringLiteral("Item 9"));
        QCOMPARE(selectedRow(w), 0);
        w->mnuOpen_Click();
        QCOMPARE(table(w)->model()->rowCount(), 6);
        QCOMPARE(titleAt(w, 2), QStringLiteral("Item 4"));
    }

    // A row chosen becomes the current item, as Find would make it; the window's own moves
    // take the list along.
    void rowAndItemGoTogether()
    {
        TestEnvironment env;
        env.addNumberedItems(9);
        ItemWindow w(env);
        w->mnuAll_Click();
        clickRow(w, 6);
        QCOMPARE(w.current(), QStringLiteral("7"));
        QCOMPARE(w.total(), QStringLiteral("9"));
        QCOMPARE(w.field(3)->text(), QStringLiteral("Item 7"));
        QCOMPARE(w.navigation(), QStringLiteral("11111"));
        w->mnuNext_Click();
        QCOMPARE(selectedRow(w), 7);
        w->mnuLast_Click();
        QCOMPARE(selectedRow(w), 8);
        QCOMPARE(w.navigation(), QStringLiteral("11011"));
        w->mnuFirst_Click();
        QCOMPARE(selectedRow(w), 0);
        w->mnuAdd_Click();
        QCOMPARE(table(w)->model()->rowCount(), 10);
        QCOMPARE(selectedRow(w), 9);
    }

    // Rows added to the choice with Ctrl, in the list's order, for Export.
    void choosesSeveralRows()
    {
        TestEnvironment env;
        const QList<qint64> ids = env.addNumberedItems(6);
        ItemWindow w(env);
        w->mnuAll_Click();
        auto* panel = w.child<ItemListPanel>(QStringLiteral("ItemListPanel"));
        clickRow(w, 4);
        QCOMPARE(panel->selectedKeys(), QList<qint64>{ids.at(4)});
        QTableView* t = table(w);
        QTest::mouseClick(t->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          t->visualRect(t->model()->index(1, 0)).center());
        QCOMPARE(panel->selectedKeys(), (QList<qint64>{ids.at(1), ids.at(4)}));
        w->mnuNext_Click();
        QCOMPARE(panel->selectedKeys().size(), 1);
    }

    // Leaving an item through the list writes what was typed, and the list shows it.
    void editsAreWrittenOnLeaving()
    {
        TestEnvironment env;
        const QList<qint64> ids = env.addNumberedItems(4);
        ItemWindow w(env);
        w->mnuAll_Click();
        w.field(3)->selectAll();
        QTest::keyClicks(w.field(3), QStringLiteral("Teapot"));
        clickRow(w, 2);
        QCOMPARE(env.storedValue(ids.first(), QStringLiteral("ShortDescription")).toString(),
                 QStringLiteral("Teapot"));
        QCOMPARE(titleAt(w, 0), QStringLiteral("Teapot"));
        QCOMPARE(w.field(3)->text(), QStringLiteral("Item 3"));
    }

    // Sorting is the list's own: the window's order and counters stay.
    void sortingLeavesTheViewAlone()
    {
        TestEnvironment env;
        env.addNumberedItems(12);
        ItemWindow w(env);
        w->mnuAll_Click();
        const QList<qint64> order = w->data().keys();
        clickHeader(w, ItemListModel::Title);
        QVERIFY(settle(w));
        QCOMPARE(titleAt(w, 1), QStringLiteral("Item 10"));
        clickHeader(w, ItemListModel::Title);
        QVERIFY(settle(w));
        QCOMPARE(titleAt(w, 0), QStringLiteral("Item 9"));
        QCOMPARE(w->data().keys(), order);
        QCOMPARE(w.current(), QStringLiteral("1"));
        QCOMPARE(selectedRow(w), 11); // Item 1 is last now
        clickRow(w, 0);
        QCOMPARE(w.current(), QStringLiteral("9"));
        w->mnuNext_Click();
        QCOMPARE(w.field(3)->text(), QStringLiteral("Item 10"));
        QCOMPARE(titleAt(w, selectedRow(w)), QStringLiteral("Item 10"));
    }

    // Typing narrows the list; Escape brings every row back. Ctrl+F in the list goes to the box.
    void searchNarrowsAndEscapeClears()
    {
        TestEnvironment env;
        env.addNumberedItems(30);
        ItemWindow w(env);
        w->mnuAll_Click();
        QCOMPARE(search(w)->placeholderText(), QStringLiteral("Search items"));
        table(w)->setFocus();
        QTest::keyClick(table(w), Qt::Key_F, Qt::ControlModifier);
        QVERIFY(search(w)->hasFocus());
        QTest::keyClicks(search(w), QStringLiteral("ITEM 2"));
        QVERIFY(settle(w));
        QCOMPARE(table(w)->model()->rowCount(), 11);
        QCOMPARE(w.total(), QStringLiteral("30"));
        clickRow(w, 1);
        QCOMPARE(w.current(), QStringLiteral("20"));
        QTest::keyClick(search(w), Qt::Key_Escape);
        QVERIFY(search(w)->text().isEmpty());
        QCOMPARE(table(w)->model()->rowCount(), 30);
        QCOMPARE(selectedRow(w), 19);
    }

    void narrowWindowStartsWithoutIt_data()
    {
        QTest::addColumn<QSize>("screen");
        QTest::addColumn<bool>("shown");
        QTest::newRow("640x480") << QSize(640, 480) << false;
        QTest::newRow("1280x1024") << QSize(1280, 1024) << true;
    }
    // The item keeps all of a narrow window; the user's choice is not overwritten by it.
    void narrowWindowStartsWithoutIt()
    {
        QFETCH(QSize, screen);
        QFETCH(bool, shown);
        TestEnvironment env;
        env.addNumberedItems(3);
        ItemWindow w(env, screen);
        QCOMPARE(w.child<QDockWidget>(QStringLiteral("dockItemList"))->isVisible(), shown);
        QCOMPARE(w.menu(QStringLiteral("mnuViewItemList"))->isChecked(), shown);
        QVERIFY(env.store()
                    .get(QStringLiteral("Tallybid"), QStringLiteral("System"),
                         QStringLiteral("ItemListVisible"))
                    .isEmpty());
    }

    // Hidden, its column widths and its width come back in a new window.
    void settingsAreRemembered()
    {
        TestEnvironment env;
        env.addNumberedItems(3);
        {
            ItemWindow w(env);
            table(w)->horizontalHeader()->resizeSection(ItemListModel::Title, 211);
            auto* dock = w.child<QDockWidget>(QStringLiteral("dockItemList"));
            w->resizeDocks({dock}, {150}, Qt::Horizontal);
            QTRY_COMPARE(dock->width(), 150);
            w.menu(QStringLiteral("mnuViewItemList"))->trigger();
            QVERIFY(!w.child<QDockWidget>(QStringLiteral("dockItemList"))->isVisible());
        }
        {
            ItemWindow w(env);
            QVERIFY(!w.child<QDockWidget>(QStringLiteral("dockItemList"))->isVisible());
            QVERIFY(!w.menu(QStringLiteral("mnuViewItemList"))->isChecked());
            QCOMPARE(table(w)->horizontalHeader()->sectionSize(ItemListModel::Title), 211);
            w.menu(QStringLiteral("mnuViewItemList"))->trigger();
            auto* dock = w.child<QDockWidget>(QStringLiteral("dockItemList"));
            QVERIFY(dock->isVisible());
            QTRY_COMPARE(dock->width(), 150);
        }
        ItemWindow w(env);
        QVERIFY(w.child<QDockWidget>(QStringLiteral("dockItemList"))->isVisible());
        QTRY_COMPARE(w.child<QDockWidget>(QStringLiteral("dockItemList"))->width(), 150);
    }
};

QTEST_MAIN(TestItemList)
#include "tst_itemlist.moc"
