#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QList>
#include <QSqlDatabase>
#include <QThreadPool>
#include <QVariantList>
#include <atomic>
#include <memory>

// The rows of an item view as a table: the view's keys in its order (or in the order of a sorted
// column, or narrowed by a search text), with the few short columns of each row read from Items
// only when a row is shown, in blocks, into a small cache. The whole table is never read.
//
// Sorting and searching ask SQLite for keys only. Those queries may scan every row (a search on
// the description text does), so they run on a worker thread with a connection of its own; the
// list keeps its rows until the new keys arrive and keysApplied() is emitted.
class ItemListModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column
    {
        Id,
        EbayId,
        Title,
        Active,
        LastPrice,
        SalePrice,
        Ends,
        Buyer,
        ColumnCount
    };
    static constexpr int kBlockRows = 64;
    static constexpr int kCacheRows = 2048;

    explicit ItemListModel(QSqlDatabase database, QObject* parent = nullptr);
    ~ItemListModel() override;

    // The view: its keys in order. The condition that picked them is not asked again: an
    // item whose Active box changed since stays in the view, and so in the list.
    void setView(const QList<qint64>& keys);
    // Whether these are the keys the list already shows (the same list, not a copy).
    bool showsView(const QList<qint64>& keys) const { return keys.isSharedWith(m_viewKeys); }

    void setFilterText(const QString& text);
    QString filterText() const { return m_filter; }
    // -1: the view's own order.
    int sortColumn() const { return m_sortColumn; }
    Qt::SortOrder sortOrder() const { return m_sortOrder; }
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    // A sort or search whose keys have not arrived yet.
    bool isBusy() const { return m_pending != 0; }

    qint64 keyAt(int row) const { return m_keys.value(row, -1); }
    // -1 when the list does not show the key.
    int rowOf(qint64 key) const;
    // Drops what was read of one item, so the list shows what was just stored.
    void forgetItem(qint64 key);
    // Rows read from the database so far: how lazily the list reads.
    qint64 rowsRead() const { return m_rowsRead; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

signals:
    void keysApplied();

public:
    // A key query as handed to the worker.
    struct Query
    {
        QString sql;
        QVariantList values;
        QString index;            // made first when missing: what makes the sort fast
        bool inViewOrder = false; // the result is a set; the view's order is kept
    };

private:
    Query keyQuery() const;
    void requery();
    void applyKeys(QList<qint64> keys);
    const QVariantList* rowValues(int row) const;

    QSqlDatabase m_db;
    QList<qint64> m_viewKeys;
    QList<qint64> m_keys; // what the list shows, in its order
    // How m_keys run, found out the first time a key is looked for away from the last one.
    enum class KeyRun
    {
        Unknown,
        Ascending,
        Descending,
        Mixed
    };
    mutable KeyRun m_keyRun = KeyRun::Unknown;
    mutable int m_lastRow = -1; // where rowOf last found a key
    QString m_filter;
    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    mutable QHash<qint64, QVariantList> m_cache;
    mutable qint64 m_rowsRead = 0;
    int m_pending = 0;
    std::shared_ptr<std::atomic<quint64>> m_latest = std::make_shared<std::atomic<quint64>>(0);
    QThreadPool m_worker;
};
