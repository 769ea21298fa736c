// The item list beside the item window, driven as a user would: choosing rows, moving with the
// window's own commands, sorting, searching and what the list remembers.
#include "ItemWindowFixture.h"

#include "app/ItemListPanel.h"
#include "db/ItemListModel.h"

namespace {

QTableView* table(const ItemWindow& w)
{
    return w.child<QTableView>(u"lvwItems"_s);
}
QLineEdit* search(const ItemWindow& w)
{
    return w.child<QLineEdit>(u"txtItemSearch"_s);
}
QDockWidget* dock(const ItemWindow& w)
{
    return w.child<QDockWidget>(u"dockItemList"_s);
}
QAction* viewMenu(const ItemWindow& w)
{
    return w.menu(u"mnuViewItemList"_s);
}
int rowsShown(const ItemWindow& w)
{
    return table(w)->model()->rowCount();
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
void clickRow(const ItemWindow& w, int row, Qt::KeyboardModifiers keys = {})
{
    QTableView* t = table(w);
    const QModelIndex at = t->model()->index(row, ItemListModel::Title);
    t->scrollTo(at);
    QTest::mouseClick(t->viewport(), Qt::LeftButton, keys, t->visualRect(at).center());
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
    // The view's rows in its order. A row chosen becomes the current item, as Find would make
    // it; the window's own moves take the list along.
    void rowAndItemGoTogether()
    {
        TestEnvironment env;
        env.addNumberedItems(9);
        ItemWindow w(env);
        w->mnuAll_Click();
        QCOMPARE(rowsShown(w), 9);
        QCOMPARE(titleAt(w, 8), u"Item 9"_s);
        QCOMPARE(selectedRow(w), 0);
        clickRow(w, 6);
        QCOMPARE(w.counters(), u"7/9"_s);
        QCOMPARE(w.field(3)->text(), u"Item 7"_s);
        QCOMPARE(w.navigation(), u"11111"_s);
        w->mnuNext_Click();
        QCOMPARE(selectedRow(w), 7);
        w->mnuLast_Click();
        QCOMPARE(selectedRow(w), 8);
        QCOMPARE(w.navigation(), u"11011"_s);
        w->mnuFirst_Click();
        QCOMPARE(selectedRow(w), 0);
        w->mnuOpen_Click();
        QCOMPARE(rowsShown(w), 6);
        QCOMPARE(titleAt(w, 2), u"Item 4"_s);
        w->mnuAll_Click();
        w->mnuAdd_Click();
        QCOMPARE(rowsShown(w), 10);
        QCOMPARE(selectedRow(w), 9);
    }

    // Leaving an item through the list writes what was typed, and the list shows it. Rows are
    // added to the choice with Ctrl, in the list's order, for Export.
    void choosingRows()
    {
        TestEnvironment env;
        const QList<qint64> ids = env.addNumberedItems(6);
        ItemWindow w(env);
        w->mnuAll_Click();
        w.field(3)->selectAll();
        QTest::keyClicks(w.field(3), u"Teapot"_s);
        clickRow(w, 2);
        QCOMPARE(env.storedValue(ids.first(), u"ShortDescription"_s).toString(), u"Teapot"_s);
        QCOMPARE(titleAt(w, 0), u"Teapot"_s);
        QCOMPARE(w.field(3)->text(), u"Item 3"_s);
        auto* panel = w.child<ItemListPanel>(u"ItemListPanel"_s);
        clickRow(w, 4);
        QCOMPARE(panel->selectedKeys(), QList<qint64>{ids.at(4)});
        clickRow(w, 1, Qt::ControlModifier);
        QCOMPARE(panel->selectedKeys(), (QList<qint64>{ids.at(1), ids.at(4)}));
        w->mnuNext_Click();
        QCOMPARE(panel->selectedKeys().size(), 1);
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
        QCOMPARE(titleAt(w, 1), u"Item 10"_s);
        clickHeader(w, ItemListModel::Title);
        QVERIFY(settle(w));
        QCOMPARE(titleAt(w, 0), u"Item 9"_s);
        QCOMPARE(w->data().keys(), order);
        QCOMPARE(w.current(), u"1"_s);
        QCOMPARE(selectedRow(w), 11); // Item 1 is last now
        clickRow(w, 0);
        QCOMPARE(w.current(), u"9"_s);
        w->mnuNext_Click();
        QCOMPARE(w.field(3)->text(), u"Item 10"_s);
        QCOMPARE(titleAt(w, selectedRow(w)), u"Item 10"_s);
    }

    // Typing narrows the list; Escape brings every row back. Ctrl+F in the list goes to the box.
    void searchNarrowsAndEscapeClears()
    {
        TestEnvironment env;
        env.addNumberedItems(30);
        ItemWindow w(env);
        w->mnuAll_Click();
        QCOMPARE(search(w)->placeholderText(), u"Search items"_s);
        table(w)->setFocus();
        QTest::keyClick(table(w), Qt::Key_F, Qt::ControlModifier);
        QVERIFY(search(w)->hasFocus());
        QTest::keyClicks(search(w), u"ITEM 2"_s);
        QVERIFY(settle(w));
        QCOMPARE(rowsShown(w), 11);
        QCOMPARE(w.total(), u"30"_s);
        clickRow(w, 1);
        QCOMPARE(w.current(), u"20"_s);
        QTest::keyClick(search(w), Qt::Key_Escape);
        QVERIFY(search(w)->text().isEmpty());
        QCOMPARE(rowsShown(w), 30);
        QCOMPARE(selectedRow(w), 19);
    }

    void narrowWindowStartsWithoutIt_data()
    {
        addColumns<QSize, bool>("screen", "shown");
        QTest::newRow("640x480") << QSize(640, 480) << false;
        QTest::newRow("1280x1024") << QSize(1280, 1024) << true;
    }
    // Shown by default beside the item; the item keeps all of a narrow window. The user's choice
    // is not overwritten by it.
    void narrowWindowStartsWithoutIt()
    {
        QFETCH(QSize, screen);
        QFETCH(bool, shown);
        TestEnvironment env;
        env.addNumberedItems(3);
        ItemWindow w(env, screen);
        QCOMPARE(dock(w)->isVisible(), shown);
        QCOMPARE(viewMenu(w)->isChecked(), shown);
        QVERIFY(env.store().get(u"Tallybid"_s, u"System"_s, u"ItemListVisible"_s).isEmpty());
    }

    // Beside the list the item keeps the window's documented width, and every number in it is
    // shown whole: a count of 1000 cut to "000" or 12345.67 cut to "12345.6" reads as another
    // number.
    void numbersStayWholeBesideIt()
    {
        TestEnvironment env;
        env.addNumberedItems(999);
        env.addItems({{{u"ShortDescription"_s, u"Dear"_s},
                       {u"Reserve"_s, 12345.67},
                       {u"MinBid"_s, 23456.78},
                       {u"Cost"_s, 34567.89},
                       {u"LastPrice"_s, 45678.91},
                       {u"Active"_s, true}}});
        ItemWindow w(env);
        w->mnuLast_Click();
        QCOMPARE(w.counters(), u"1000/1000"_s);
        QVERIFY(dock(w)->isVisible());
        QCOMPARE(w->width(), 786);
        for (const auto& name :
             {u"txtCurItem"_s, u"txtTotItem"_s, u"txtFields_0"_s, u"txtFields_8"_s,
              u"txtFields_9"_s, u"txtFields_10"_s, u"txtFields_11"_s}) {
            const QLineEdit* box = w.child<QLineEdit>(name);
            QStyleOptionFrame frame;
            frame.initFrom(box);
            const int border = box->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &frame, box);
            const int room = box->width() - 2 * border - 4;
            QVERIFY2(box->fontMetrics().horizontalAdvance(box->text()) <= room,
                     qPrintable(name + u" cuts "_s + box->text()));
        }
        // Anything longer than an amount scrolls in its box, as text does.
        w.field(10)->setText(QString(200, u'9'));
        QCoreApplication::processEvents();
        QVERIFY(w->minimumSizeHint().width() <= 786);
    }

    // Hidden, its column widths and its width come back in a new window.
    void settingsAreRemembered()
    {
        TestEnvironment env;
        env.addNumberedItems(3);
        {
            ItemWindow w(env);
            table(w)->horizontalHeader()->resizeSection(ItemListModel::Title, 211);
            w->resizeDocks({dock(w)}, {150}, Qt::Horizontal);
            QTRY_COMPARE(dock(w)->width(), 150);
            viewMenu(w)->trigger();
            QVERIFY(!dock(w)->isVisible());
        }
        {
            ItemWindow w(env);
            QVERIFY(!dock(w)->isVisible());
            QVERIFY(!viewMenu(w)->isChecked());
            QCOMPARE(table(w)->horizontalHeader()->sectionSize(ItemListModel::Title), 211);
            viewMenu(w)->trigger();
            QVERIFY(dock(w)->isVisible());
            QTRY_COMPARE(dock(w)->width(), 150);
        }
        ItemWindow w(env);
        QVERIFY(dock(w)->isVisible());
        QTRY_COMPARE(dock(w)->width(), 150);
    }
};

QTEST_MAIN(TestItemList)
#include "tst_itemlist.moc"
