#include "ItemListModel.h"

#include "ItemColumns.h"
#include "ItemSql.h"
#include "platform/Database.h"

#include <QSet>
#include <QSqlQuery>
#include <QStringList>
#include <QThread>
#include <algorithm>
#include <functional>

namespace {

struct ColumnDef
{
    const char* name;
    const char* header;
};
constexpr ColumnDef kColumns[ItemListModel::ColumnCount] = {
    {"ID", "ID"},
    {"EbayID", "eBay Number"},
    {"ShortDescription", "Short Description"},
    {"Active", "Active"},
    {"LastPrice", "Last Price"},
    {"SalePrice", "Sale Price"},
    {"DateAuctionEnds", "Auction Ends"},
    {"BuyerName", "Buyer"},
};

QString columnName(int column)
{
    return QString::fromLatin1(kColumns[column].name);
}

// The typed text as a LIKE pattern matching it anywhere: the pattern's own characters are
// taken literally.
QString containsPattern(const QString& text)
{
    QString out = QStringLiteral("*");
    for (const QChar c : text) {
        if (c == u'[' || c == u'*' || c == u'?' || c == u'#')
            out += u'[' + QString(c) + u']';
        else
            out += c;
    }
    return out + u'*';
}

// Without an index SQLite must read every row, descriptions and all, to sort by a column:
// hundreds of milliseconds at 100,000 items. The index is made the first time the list is
// sorted by the column; it holds the key too, so the sort never reads the rows at all.
QString sortIndexSql(int column)
{
    if (column == ItemListModel::EbayId || column == ItemListModel::Active)
        return {}; // the database has these already
    const QString name = columnName(column);
    return QStringLiteral("CREATE INDEX IF NOT EXISTS ItemListBy%1 ON Items (%1, Active)")
        .arg(name);
}

// The view's rows among the keys a query found: in the view's order when the query only
// matched, in the query's order when it sorted.
QList<qint64> keepViewRows(const QList<qint64>& found, const QList<qint64>& view, bool inViewOrder)
{
    QList<qint64> out;
    if (inViewOrder) {
        const QSet<qint64> matched(found.cbegin(), found.cend());
        for (const qint64 key : view)
            if (matched.contains(key))
                out << key;
    } else {
        const QSet<qint64> shown(view.cbegin(), view.cend());
        out.reserve(std::min(found.size(), view.size()));
        for (const qint64 key : found)
            if (shown.contains(key))
                out << key;
    }
    return out;
}

// Runs a key query on a connection of the calling thread to the same file.
IdScan scanOnOwnConnection(const QString& file, const QString& options,
                           const ItemListModel::Query& q)
{
    const QString name = QStringLiteral("itemlist-%1").arg(quintptr(QThread::currentThreadId()));
    IdScan scan;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        db.setConnectOptions(options);
        if (!db.open() || !installJetLike(db))
            scan.error = QStringLiteral("the item database could not be opened");
        else {
            if (!q.index.isEmpty())
                QSqlQuery(db).exec(q.index);
            scan = scanIds(db, q.sql, q.values);
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return scan;
}

} // namespace

ItemListModel::ItemListModel(QSqlDatabase database, QObject* parent)
    : QAbstractTableModel(parent), m_db(std::move(database))
{
    // One query at a time: a newer one makes the waiting ones pointless.
    m_worker.setMaxThreadCount(1);
}

ItemListModel::~ItemListModel()
{
    m_latest->store(~quint64(0));
    m_worker.waitForDone();
}

void ItemListModel::setView(const QList<qint64>& keys)
{
    m_viewKeys = keys;
    m_cache.clear(); // a new view may be new rows altogether (a restored backup)
    requery();
}

void ItemListModel::setFilterText(const QString& text)
{
    if (text == m_filter)
        return;
    m_filter = text;
    requery();
}

void ItemListModel::sort(int column, Qt::SortOrder order)
{
    m_sortColumn = column >= 0 && column < ColumnCount ? column : -1;
    m_sortOrder = order;
    requery();
}

ItemListModel::Query ItemListModel::keyQuery() const
{
    Query q;
    // Not narrowed by the view's condition: an item whose Active box changed stays in the view
    // until it is opened again, and so in the list. The view's keys pick the rows afterwards.
    q.sql = QStringLiteral("SELECT ID FROM Items");
    if (!m_filter.isEmpty()) {
        QStringList any;
        for (const char* c :
             {"EbayID", "ShortDescription", "Description", "BuyerName", "BuyerEmail"})
            any << QLatin1String(c) + QLatin1String(" LIKE ?1");
        q.sql += QLatin1String(" WHERE ") + any.join(QLatin1String(" OR "));
        q.values << containsPattern(m_filter);
    }
    // The views list their rows by key, so the key order is the view's own, read backwards
    // for a descending sort.
    if (m_sortColumn == Id || m_sortColumn < 0) {
        q.inViewOrder = true;
    } else {
        const QLatin1String dir(m_sortOrder == Qt::DescendingOrder ? " DESC" : "");
        q.sql += QLatin1String(" ORDER BY ") + columnName(m_sortColumn) + dir +
                 QLatin1String(", ID") + dir;
        q.index = sortIndexSql(m_sortColumn);
    }
    return q;
}

void ItemListModel::requery()
{
    const quint64 ticket = ++*m_latest;
    if (m_filter.isEmpty() && (m_sortColumn < 0 || m_sortColumn == Id)) {
        m_pending = 0;
        applyKeys(m_viewKeys);
        return;
    }
    const Query q = keyQuery();
    const QString file = m_db.databaseName();
    if (file.isEmpty() || file == QLatin1String(":memory:")) {
        // No file a second connection could open: the query runs here.
        m_pending = 0;
        if (!q.index.isEmpty())
            QSqlQuery(m_db).exec(q.index);
        applyKeys(keepViewRows(scanIds(m_db, q.sql, q.values).ids, m_viewKeys, q.inViewOrder));
        return;
    }
    ++m_pending;
    const QString options = m_db.connectOptions();
    const std::shared_ptr<std::atomic<quint64>> latest = m_latest;
    m_worker.start([this, latest, ticket, file, options, q, view = m_viewKeys] {
        if (latest->load() != ticket)
            return;
        IdScan scan = scanOnOwnConnection(file, options, q);
        QList<qint64> ids = keepViewRows(scan.ids, view, q.inViewOrder);
        QMetaObject::invokeMethod(this, [this, ticket, ids = std::move(ids)]() mutable {
            m_pending = std::max(0, m_pending - 1);
            if (m_latest->load() == ticket) {
                m_pending = 0;
                applyKeys(std::move(ids));
            }
        });
    });
}

void ItemListModel::applyKeys(QList<qint64> keys)
{
    if (m_sortColumn == Id && m_sortOrder == Qt::DescendingOrder)
        std::reverse(keys.begin(), keys.end());
    beginResetModel();
    m_keys = std::move(keys);
    m_keyRun = KeyRun::Unknown;
    m_lastRow = -1;
    endResetModel();
    emit keysApplied();
}

int ItemListModel::rowOf(qint64 key) const
{
    // The list follows the item window a move at a time: the row found last or a neighbour,
    // or an end of the list (First and Last, and the view command's own moves).
    const int last = int(m_keys.size()) - 1;
    for (const int row : {m_lastRow, m_lastRow + 1, m_lastRow - 1, 0, last})
        if (row >= 0 && row < m_keys.size() && m_keys.at(row) == key)
            return m_lastRow = row;
    // A view and the list sorted by number hold their keys in order, so a far move (the last
    // item of 100,000) is a search, not a walk through the list.
    if (m_keyRun == KeyRun::Unknown)
        m_keyRun = std::is_sorted(m_keys.cbegin(), m_keys.cend())     ? KeyRun::Ascending
                   : std::is_sorted(m_keys.crbegin(), m_keys.crend()) ? KeyRun::Descending
                                                                      : KeyRun::Mixed;
    qsizetype row = -1;
    if (m_keyRun == KeyRun::Mixed) {
        row = m_keys.indexOf(key);
    } else {
        const auto found =
            m_keyRun == KeyRun::Ascending
                ? std::lower_bound(m_keys.cbegin(), m_keys.cend(), key)
                : std::lower_bound(m_keys.cbegin(), m_keys.cend(), key, std::greater<qint64>());
        if (found != m_keys.cend() && *found == key)
            row = found - m_keys.cbegin();
    }
    if (row >= 0)
        m_lastRow = int(row);
    return int(row);
}

void ItemListModel::forgetItem(qint64 key)
{
    if (!m_cache.remove(key))
        return;
    const int row = rowOf(key);
    if (row >= 0)
        emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

const QVariantList* ItemListModel::rowValues(int row) const
{
    const qint64 key = keyAt(row);
    if (auto it = m_cache.constFind(key); it != m_cache.cend())
        return &*it;
    if (m_cache.size() + kBlockRows > kCacheRows)
        m_cache.clear();
    // The block around the row: a list scrolls on, so its neighbours come next.
    const int first = row - row % kBlockRows;
    const int last = std::min(int(m_keys.size()), first + kBlockRows);
    QStringList keys;
    for (int r = first; r < last; ++r)
        if (!m_cache.contains(m_keys.at(r)))
            keys << QString::number(m_keys.at(r));
    QStringList columns;
    for (const ColumnDef& c : kColumns)
        columns << QLatin1String(c.name);
    QSqlQuery query(m_db);
    query.setForwardOnly(true);
    if (query.exec(QLatin1String("SELECT ") + columns.join(u',') +
                   QLatin1String(" FROM Items WHERE ID IN (") + keys.join(u',') + u')')) {
        while (query.next()) {
            QVariantList values;
            values.reserve(ColumnCount);
            for (int c = 0; c < ColumnCount; ++c)
                values << query.value(c);
            m_cache.insert(query.value(0).toLongLong(), values);
            ++m_rowsRead;
        }
    }
    // A key no longer in the table shows as an empty row rather than being asked for again.
    if (!m_cache.contains(key))
        m_cache.insert(key, QVariantList(ColumnCount));
    return &*m_cache.constFind(key);
}

int ItemListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_keys.size());
}

int ItemListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ItemListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_keys.size())
        return {};
    if (role == Qt::TextAlignmentRole) {
        const int c = index.column();
        return c == Id || c == LastPrice || c == SalePrice
                   ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                   : QVariant();
    }
    if (role != Qt::DisplayRole)
        return {};
    if (index.column() == Id)
        return QString::number(keyAt(index.row()));
    const QVariant& stored = rowValues(index.row())->at(index.column());
    if (index.column() == Active)
        return stored.isNull() ? QString() : stored.toBool() ? tr("Yes") : tr("No");
    const QString name = columnName(index.column());
    return ItemColumns::toText(ItemColumns::kind(name), stored);
}

QVariant ItemListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= ColumnCount)
        return QAbstractTableModel::headerData(section, orientation, role);
    return tr(kColumns[section].header);
}
