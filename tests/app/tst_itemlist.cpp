// The item list beside the item window, driven as a user would: choosing rows, moving with the
// window's own commands, sorting, searching and what the list remembers.
#include "ItemWindowFixture.h"

#include "app/ItemListPanel.h"
#include "db/ItemListModel.h"

namespace {

// An item window with the list's controls at hand.
struct ListWindow : ItemWindow
{
    using ItemWindow::ItemWindow;
    QTableView* table() const { return child<QTableView>(u"lvwItems"_s); }
    QLineEdit* search() const { return child<QLineEdit>(u"txtItemSearch"_s); }
    QDockWidget* dock() const { return child<QDockWidget>(u"dockItemList"_s); }
    QAction* viewMenu() const { return menu(u"mnuViewItemList"_s); }
    ItemListModel& model() const { return *static_cast<ItemListModel*>(table()->model()); }
    int rowsShown() const { return model().rowCount(); }
    QString titleAt(int row) const
    {
        return model().index(row, ItemListModel::Title).data().toString();
    }
    bool settle() const
    {
        QSignalSpy applied(&model(), &ItemListModel::keysApplied);
        return !model().isBusy() || applied.wait(5000);
    }
    void clickRow(int row, Qt::KeyboardModifiers keys = {}) const
    {
        const QModelIndex at = model().index(row, ItemListModel::Title);
        table()->scrollTo(at);
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, keys,
                          table()->visualRect(at).center());
    }
    void clickTitleHeader() const
    {
        QHeaderView* h = table()->horizontalHeader();
        QTest::mouseClick(
            h->viewport(), Qt::LeftButton, {},
            QPoint(h->sectionViewportPosition(ItemListModel::Title) + 5, h->height() / 2));
    }
    int selectedRow() const
    {
        const QModelIndexList rows = table()->selectionModel()->selectedRows();
        return rows.size() == 1 ? rows.first().row() : -1;
    }
};

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
        ListWindow w(env);
        w->mnuAll_Click();
        QCOMPARE(w.rowsShown(), 9);
        QCOMPARE(w.titleAt(8), u"Item 9"_s);
        QCOMPARE(w.selectedRow(), 0);
        w.clickRow(6);
        QCOMPARE(w.counters(), u"7/9"_s);
        QCOMPARE(w.field(3)->text(), u"Item 7"_s);
        QCOMPARE(w.navigation(), u"11111"_s);
        w->mnuNext_Click();
        QCOMPARE(w.selectedRow(), 7);
        w->mnuLast_Click();
        QCOMPARE(w.selectedRow(), 8);
        QCOMPARE(w.navigation(), u"11011"_s);
        w->mnuFirst_Click();
        QCOMPARE(w.selectedRow(), 0);
        w->mnuOpen_Click();
        QCOMPARE(w.rowsShown(), 6);
        QCOMPARE(w.titleAt(2), u"Item 4"_s);
        w->mnuAll_Click();
        w->mnuAdd_Click();
        QCOMPARE(w.rowsShown(), 10);
        QCOMPARE(w.selectedRow(), 9);
    }

    // The view reopened at start-up fills the list, on the window's item, with no command run.
    void reopenedViewFillsIt()
    {
        TestEnvironment env;
        env.addNumberedItems(9);
        env.store().save(u"Tallybid"_s, u"System"_s, u"ItemsViewed"_s, u"Open"_s);
        ListWindow w(env);
        QTRY_COMPARE(w.rowsShown(), 6);
        QCOMPARE(w.titleAt(2), u"Item 4"_s);
        QCOMPARE(w.selectedRow(), 0);
        QCOMPARE(w.counters(), u"1/6"_s);
    }

    // Leaving an item through the list writes what was typed, and the list shows it. Rows are
    // added to the choice with Ctrl, in the list's order, for Export.
    void choosingRows()
    {
        TestEnvironment env;
        const QList<qint64> ids = env.addNumberedItems(6);
        ListWindow w(env);
        w->mnuAll_Click();
        w.field(3)->selectAll();
        QTest::keyClicks(w.field(3), u"Teapot"_s);
        w.clickRow(2);
        QCOMPARE(env.storedValue(ids.first(), u"ShortDescription"_s).toString(), u"Teapot"_s);
        QCOMPARE(w.titleAt(0), u"Teapot"_s);
        QCOMPARE(w.field(3)->text(), u"Item 3"_s);
        auto* panel = w.child<ItemListPanel>(u"ItemListPanel"_s);
        w.clickRow(4);
        QCOMPARE(panel->selectedKeys(), QList<qint64>{ids.at(4)});
        w.clickRow(1, Qt::ControlModifier);
        QCOMPARE(panel->selectedKeys(), (QList<qint64>{ids.at(1), ids.at(4)}));
        w->mnuNext_Click();
        QCOMPARE(panel->selectedKeys().size(), 1);
    }

    // Sorting is the list's own: the window's order and counters stay.
    void sortingLeavesTheViewAlone()
    {
        TestEnvironment env;
        env.addNumberedItems(12);
        ListWindow w(env);
        w->mnuAll_Click();
        const QList<qint64> order = w->data().keys();
        w.clickTitleHeader();
        QVERIFY(w.settle());
        QCOMPARE(w.titleAt(1), u"Item 10"_s);
        w.clickTitleHeader();
        QVERIFY(w.settle());
        QCOMPARE(w.titleAt(0), u"Item 9"_s);
        QCOMPARE(w->data().keys(), order);
        QCOMPARE(w.current(), u"1"_s);
        QCOMPARE(w.selectedRow(), 11); // Item 1 is last now
        w.clickRow(0);
        QCOMPARE(w.current(), u"9"_s);
        w->mnuNext_Click();
        QCOMPARE(w.field(3)->text(), u"Item 10"_s);
        QCOMPARE(w.titleAt(w.selectedRow()), u"Item 10"_s);
    }

    // Typing narrows the list; Escape brings every row back. Ctrl+F in the list goes to the box.
    void searchNarrowsAndEscapeClears()
    {
        TestEnvironment env;
        env.addNumberedItems(30);
        ListWindow w(env);
        w->mnuAll_Click();
        QCOMPARE(w.search()->placeholderText(), u"Search items"_s);
        w.table()->setFocus();
        QTest::keyClick(w.table(), Qt::Key_F, Qt::ControlModifier);
        QVERIFY(w.search()->hasFocus());
        QTest::keyClicks(w.search(), u"ITEM 2"_s);
        QVERIFY(w.settle());
        QCOMPARE(w.rowsShown(), 11);
        QCOMPARE(w.total(), u"30"_s);
        w.clickRow(1);
        QCOMPARE(w.current(), u"20"_s);
        QTest::keyClick(w.search(), Qt::Key_Escape);
        QVERIFY(w.search()->text().isEmpty());
        QCOMPARE(w.rowsShown(), 30);
        QCOMPARE(w.selectedRow(), 19);
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
        TestEnvironment env;
        env.addNumberedItems(3);
        ListWindow w(env, screen);
        QTEST(w.dock()->isVisible(), "shown");
        QTEST(w.viewMenu()->isChecked(), "shown");
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
        ListWindow w(env);
        w->mnuLast_Click();
        QCOMPARE(w.counters(), u"1000/1000"_s);
        QVERIFY(w.dock()->isVisible());
        QCOMPARE(w->width(), 786);
        for (const auto& name :
             {u"txtCurItem"_s, u"txtTotItem"_s, u"txtFields_0"_s, u"txtFields_8"_s,
              u"txtFields_9"_s, u"txtFields_10"_s, u"txtFields_11"_s}) {
            const QLineEdit* box = w.child<QLineEdit>(name);
            QStyleOptionFrame frame;
            frame.initFrom(box);
            const int border = box->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &frame, box);
            QVERIFY2(box->fontMetrics().horizontalAdvance(box->text()) <=
                         box->width() - 2 * border - 4,
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
            ListWindow w(env);
            w.table()->horizontalHeader()->resizeSection(ItemListModel::Title, 211);
            w->resizeDocks({w.dock()}, {150}, Qt::Horizontal);
            QTRY_COMPARE(w.dock()->width(), 150);
            w.viewMenu()->trigger();
            QVERIFY(!w.dock()->isVisible());
        }
        for (const bool hidden : {true, false}) {
            ListWindow w(env);
            QCOMPARE(w.dock()->isVisible(), !hidden);
            QCOMPARE(w.viewMenu()->isChecked(), !hidden);
            if (hidden) {
                QCOMPARE(w.table()->horizontalHeader()->sectionSize(ItemListModel::Title), 211);
                w.viewMenu()->trigger();
                QVERIFY(w.dock()->isVisible());
            }
            QTRY_COMPARE(w.dock()->width(), 150);
        }
    }
};

QTEST_MAIN(TestItemList)
#include "tst_itemlist.moc"
