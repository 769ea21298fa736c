#pragma once

#include <QWidget>

class ItemListModel;
class QLineEdit;
class QMainWindow;
class QMenu;
class QTableView;
class RecordSet;
class SettingsStore;

// The item list beside the item window: every row of the window's view in a table that can be
// sorted and narrowed by a search text, kept on the window's current item. Choosing a row asks
// the window to move there (itemChosen); the list never moves the record set itself.
class ItemListPanel : public QWidget
{
    Q_OBJECT
public:
    ItemListPanel(RecordSet& records, SettingsStore& store, QWidget* parent = nullptr);
    ~ItemListPanel() override;

    // Docks a new list into the window with its View menu entry, shown or hidden and as wide as
    // the user left it.
    static ItemListPanel* dockInto(QMainWindow& window, QMenu& viewMenu, RecordSet& records,
                                   SettingsStore& store);

    ItemListModel& model() const { return *m_model; }
    QTableView& table() const { return *m_table; }
    QLineEdit& searchBox() const { return *m_search; }
    void focusSearch();
    // The keys of the selected rows in the list's order: what Export takes when there are two
    // or more.
    QList<qint64> selectedKeys() const;

signals:
    void itemChosen(qint64 key);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void followRecords();
    void selectCurrent();

    RecordSet& m_records;
    SettingsStore& m_store;
    ItemListModel* m_model;
    QLineEdit* m_search;
    QTableView* m_table;
    qint64 m_shownKey = -1; // the item the list last stood on
    bool m_selecting = false;
    bool m_choosing = false; // the window is moving to the row the user chose
    bool m_scrollQueued = false;
    int m_width = 0;
    QString m_columnWidths;
};
