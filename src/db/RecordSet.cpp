#include "db/RecordSet.h"

#include "db/ItemColumns.h"
#include "platform/Database.h"
#include "platform/JetSql.h"

#include <algorithm>
#include <utility>

#include <QSet>
#include <QSqlError>
#include <QSqlQuery>

RecordSet::RecordSet(QSqlDatabase database, QObject* parent)
    : QObject(parent), m_db(std::move(database)), m_rowReader(std::make_unique<RowReader>()),
      m_sourceReader(std::make_unique<SourceReader>()),
      m_findScanner(std::make_unique<KeyScanner>())
{
}

RecordSet::~RecordSet() = default;

namespace {

// Reads a statement backwards, a word or sign at a time, as its end is matched.
class BackwardReader
{
public:
    explicit BackwardReader(QStringView text) : m_text(text), m_at(text.size()) {}

    qsizetype at() const { return m_at; }
    // Blanks (space, tab, line and page breaks) just before; how many were passed.
    qsizetype skipBlanks()
    {
        const qsizetype from = m_at;
        while (m_at > 0 && isBlank(m_text[m_at - 1]))
            --m_at;
        return from - m_at;
    }
    bool take(char16_t sign)
    {
        if (m_at == 0 || m_text[m_at - 1] != sign)
            return false;
        --m_at;
        return true;
    }
    // A word in lower case, matched as its case folding (the long s is an s).
    bool takeWord(QLatin1StringView word)
    {
        if (m_at < word.size())
            return false;
        const qsizetype from = m_at - word.size();
        for (qsizetype i = 0; i < word.size(); ++i)
            if (m_text[from + i].toCaseFolded() != word[i])
                return false;
        m_at = from;
        return true;
    }

private:
    static bool isBlank(QChar c)
    {
        const char16_t u = c.unicode();
        return u == u' ' || (u >= u'\t' && u <= u'\r');
    }
    QStringView m_text;
    qsizetype m_at;
};

// The rows of a record source as SQL, without an ORDER BY ID at its end (keyOrder then says
// the keys come in key order); empty SQL when the source cannot be read.
struct SourceRows
{
    QString sql;
    bool keyOrder = false;
};

SourceRows sourceRows(const QString& recordSource)
{
    QString source = recordSource.trimmed();
    while (source.endsWith(u';'))
        source.chop(1);
    SourceRows rows;
    // A bare name is a table or view: its rows in key order.
    if (!source.contains(u' ')) {
        rows.sql = QLatin1String("SELECT * FROM ") + source;
        rows.keyOrder = true;
        return rows;
    }
    const JetTranslation t = translateJet(source);
    if (!t.ok())
        return rows;
    rows.sql = t.sql;
    const qsizetype order = RecordSet::keyOrderClauseStart(rows.sql);
    rows.keyOrder = order >= 0;
    if (rows.keyOrder)
        rows.sql.truncate(order);
    return rows;
}

// The statement listing the keys of a source's rows, read in key order when the rows are
// (sorted where they are read), else in the order the rows come.
RecordSet::KeyRead keyReadOf(const SourceRows& rows)
{
    return {rows.sql.isEmpty() ? QString() : QLatin1String("SELECT ID FROM (") + rows.sql + u')',
            rows.keyOrder ? KeyOrder::Ascending : KeyOrder::Listed};
}

} // namespace

// "… ORDER BY ID" at the end of a record source: its rows come in key order, so the keys
// can be read in whatever order an index gives them and sorted here, and a find can ask for
// the first match past a key.
qsizetype RecordSet::keyOrderClauseStart(QStringView sql)
{
    // Read from the end: [;] [ASC] ID, maybe quoted, maybe after Items., then BY and ORDER,
    // each after at least one blank.
    BackwardReader r(sql);
    r.skipBlanks();
    r.take(u';');
    r.skipBlanks();
    if (r.takeWord(QLatin1StringView("asc")))
        r.skipBlanks();
    r.take(u'"');
    if (!r.takeWord(QLatin1StringView("id")))
        return -1;
    r.take(u'"');
    if (r.take(u'.')) {
        r.take(u'"');
        if (!r.takeWord(QLatin1StringView("items")))
            return -1;
        r.take(u'"');
    }
    if (r.skipBlanks() == 0 || !r.takeWord(QLatin1StringView("by")) || r.skipBlanks() == 0 ||
        !r.takeWord(QLatin1StringView("order")) || r.skipBlanks() == 0)
        return -1;
    return r.at();
}

RecordSet::KeyRead RecordSet::keyRead(const QString& recordSource)
{
    return keyReadOf(sourceRows(recordSource));
}

bool RecordSet::refresh()
{
    m_ids.clear();
    m_values.clear();
    m_dirty.clear();
    m_deletedCurrent = false;
    m_noMatch = false;
    m_lastError.clear();
    // Keys read ahead serve this refresh alone, whatever becomes of it.
    const std::shared_ptr<KeyPrefetch> prefetch = std::exchange(m_prefetch, nullptr);
    const SourceRows rows = sourceRows(m_source);
    const QString& sql = rows.sql;
    m_keyOrder = rows.keyOrder;
    m_rowsSql = sql;
    // The names of the columns (no row is read), then the keys alone.
    IdScan keys;
    const QStringList previousColumns = std::exchange(m_columns, {});
    if (sql.isEmpty()) {
        keys.error = QStringLiteral("The record source cannot be read.");
    } else if (std::optional<QStringList> columns =
                   m_sourceReader->columns(m_db, sql, keys.error)) {
        m_columns = std::move(*columns);
        const KeyRead read = keyReadOf(rows);
        if (auto ahead = prefetch ? prefetch->take(m_db, read.sql) : std::nullopt)
            keys.ids = std::move(*ahead);
        else
            keys = m_sourceReader->keys(m_db, read.sql, read.order);
    }
    if (!keys.ok()) {
        m_lastError = keys.error;
        m_columns.clear();
        m_pos = 0;
        if (m_binding)
            m_binding->showRecord(*this);
        emit repositioned();
        return false;
    }
    m_ids = std::move(keys.ids);
    if (m_columns != previousColumns || m_rowSql.isEmpty()) {
        m_rowSql = QLatin1String("SELECT ") + m_columns.join(QLatin1String(", ")) +
                   QLatin1String(" FROM Items WHERE ID = ?");
        m_columnIndex.clear();
        for (int i = 0; i < m_columns.size(); ++i) {
            m_columnIndex.insert(m_columns.at(i).toLower(), i);
            m_columnIndex.insert(m_columns.at(i), i);
        }
    }
    m_pos = 0; // BOF and EOF together when there are no rows
    loadCurrent();
    if (m_binding)
        m_binding->showRecord(*this);
    emit repositioned();
    return true;
}

void RecordSet::loadCurrent()
{
    m_values.clear();
    m_dirty.clear();
    if (!hasCurrent())
        return;
    // Straight from SQLite: a QSqlQuery costs several times the read itself on every move.
    m_rowReader->read(m_db, m_rowSql, m_ids.at(m_pos), m_values);
}

int RecordSet::columnIndex(const QString& column) const
{
    // The names bound boxes use are the table's own, so the lower-case copy is rarely made.
    auto it = m_columnIndex.constFind(column);
    if (it == m_columnIndex.cend())
        it = m_columnIndex.constFind(column.toLower());
    return it == m_columnIndex.cend() ? -1 : *it;
}

void RecordSet::rereadCurrent()
{
    if (!hasCurrent())
        return;
    loadCurrent();
    if (m_binding)
        m_binding->showRecord(*this);
    emit repositioned();
}

bool RecordSet::save()
{
    if (m_dirty.isEmpty() || !hasCurrent())
        return true;
    QStringList assignments;
    QVariantList values;
    for (auto it = m_dirty.cbegin(); it != m_dirty.cend(); ++it) {
        assignments << it.key() + QLatin1String(" = ?");
        values << it.value();
    }
    QSqlQuery q(m_db);
    q.prepare(QLatin1String("UPDATE Items SET ") + assignments.join(QLatin1String(", ")) +
              QLatin1String(" WHERE ID = ?"));
    for (const QVariant& v : values)
        q.addBindValue(v);
    q.addBindValue(m_ids.at(m_pos));
    if (!q.exec()) {
        m_lastError = q.lastError().text();
        emit writeFailed(m_lastError);
        return false;
    }
    for (auto it = m_dirty.cbegin(); it != m_dirty.cend(); ++it) {
        const int i = columnIndex(it.key());
        if (i >= 0 && i < m_values.size())
            m_values[i] = it.value();
    }
    m_dirty.clear();
    return true;
}

void RecordSet::leave(DataAction action)
{
    if (!hasCurrent())
        return;
    if (m_validate)
        m_validate(action);
    if (m_binding)
        m_binding->collectEdits(*this);
    save();
}

void RecordSet::moveTo(qsizetype position)
{
    m_deletedCurrent = false;
    m_pos = std::clamp<qsizetype>(position, -1, m_ids.size());
    loadCurrent();
    if (!hasCurrent())
        return; // standing before the first or after the last row shows nothing new
    if (m_binding)
        m_binding->showRecord(*this);
    emit repositioned();
}

void RecordSet::moveFirst()
{
    leave(DataAction::MoveFirst);
    moveTo(0);
}

void RecordSet::movePrevious()
{
    leave(DataAction::MovePrevious);
    if (bof())
        return;
    moveTo(m_pos - 1);
}

void RecordSet::moveNext()
{
    leave(DataAction::MoveNext);
    if (eof())
        return;
    // After a delete the next row already sits at the deleted row's place.
    moveTo(m_deletedCurrent ? m_pos : m_pos + 1);
}

void RecordSet::moveLast()
{
    leave(DataAction::MoveLast);
    moveTo(m_ids.isEmpty() ? 0 : m_ids.size() - 1);
}

void RecordSet::setAbsolutePosition(int position)
{
    leave(DataAction::Bookmark);
    moveTo(std::clamp<qsizetype>(position, 0, std::max<qsizetype>(m_ids.size() - 1, 0)));
}

void RecordSet::setBookmark(qint64 bookmark)
{
    leave(DataAction::Bookmark);
    const qsizetype i = positionOf(bookmark);
    if (i >= 0)
        moveTo(i);
}

qsizetype RecordSet::positionOf(qint64 key) const
{
    // Rows in key order stay so as rows are added: a new key is larger than any before it.
    if (!m_keyOrder)
        return m_ids.indexOf(key);
    const auto at = std::lower_bound(m_ids.cbegin(), m_ids.cend(), key);
    return at != m_ids.cend() && *at == key ? at - m_ids.cbegin() : -1;
}

RecordSet::FindResult RecordSet::find(const QString& criteria, qsizetype from)
{
    // A criteria that cannot be read is refused before the row is left: nothing is written.
    // One that reads but names no column or makes no condition fails after the row is left,
    // as a search the engine refuses.
    const JetCriteria condition = parseJetCriteria(criteria, ItemColumns::names());
    if (condition.unreadable) {
        m_noMatch = true;
        m_lastError = condition.error;
        return FindResult::Invalid;
    }
    leave(DataAction::Find);
    m_noMatch = true;
    if (!condition.ok()) {
        m_lastError = condition.error;
        return FindResult::Invalid;
    }
    from = std::max<qsizetype>(from, 0);
    if (from >= m_ids.size() || m_rowsSql.isEmpty())
        return FindResult::NoMatch;
    const QString rows = QLatin1String("SELECT ID FROM (") + m_rowsSql +
                         QLatin1String(") WHERE (") + condition.sql + u')';
    qsizetype found = -1;
    if (m_keyOrder) {
        // The first match at or past the key the search starts from, in key order.
        const QString first = rows + QLatin1String(" AND ID >= ? ORDER BY ID LIMIT 1");
        qint64 key = m_ids.at(from);
        while (found < 0) {
            const IdScan hit = m_findScanner->scan(
                m_db, first, condition.values + QVariantList{key}, kFindTimeLimitMs);
            if (!hit.ok()) {
                m_lastError = hit.error;
                return FindResult::Invalid;
            }
            if (hit.ids.isEmpty())
                break;
            found = positionOf(hit.ids.first());
            if (found < 0)
                key = hit.ids.first() + 1; // a row this list does not hold: look further on
        }
    } else {
        const IdScan matches = scanIds(m_db, rows, condition.values, kFindTimeLimitMs);
        if (!matches.ok()) {
            m_lastError = matches.error;
            return FindResult::Invalid;
        }
        const QSet<qint64> set(matches.ids.cbegin(), matches.ids.cend());
        for (qsizetype i = from; i < m_ids.size() && found < 0; ++i) {
            if (set.contains(m_ids.at(i)))
                found = i;
        }
    }
    if (found < 0)
        return FindResult::NoMatch;
    m_noMatch = false;
    moveTo(found);
    return FindResult::Found;
}

RecordSet::FindResult RecordSet::findFirst(const QString& criteria)
{
    return find(criteria, 0);
}

RecordSet::FindResult RecordSet::findNext(const QString& criteria)
{
    return find(criteria, m_deletedCurrent ? m_pos : m_pos + 1);
}

qint64 RecordSet::addNewAndUpdate()
{
    leave(DataAction::AddNew);
    QSqlQuery q(m_db);
    if (!q.exec(QStringLiteral("INSERT INTO Items DEFAULT VALUES"))) {
        m_lastError = q.lastError().text();
        emit writeFailed(m_lastError);
        return -1;
    }
    const bool wasAfterLast = !m_deletedCurrent && m_pos >= m_ids.size();
    const qint64 id = q.lastInsertId().toLongLong();
    m_ids << id;
    if (wasAfterLast)
        m_pos = m_ids.size(); // still after the last row: the new row is not current yet
    return id;
}

bool RecordSet::update()
{
    if (!hasCurrent())
        return false;
    if (m_validate)
        m_validate(DataAction::Update);
    if (m_binding)
        m_binding->collectEdits(*this);
    return save();
}

bool RecordSet::deleteCurrent()
{
    if (!hasCurrent())
        return false;
    if (m_validate)
        m_validate(DataAction::Delete);
    QSqlQuery q(m_db);
    q.prepare(QStringLiteral("DELETE FROM Items WHERE ID = ?"));
    q.addBindValue(m_ids.at(m_pos));
    if (!q.exec()) {
        m_lastError = q.lastError().text();
        emit writeFailed(m_lastError);
        return false;
    }
    m_ids.removeAt(m_pos);
    m_values.clear();
    m_dirty.clear();
    m_deletedCurrent = true;
    return true;
}

void RecordSet::close(DataAction action)
{
    leave(action); // closing leaves the record as a move does
}

QVariant RecordSet::storedValue(const QString& column) const
{
    if (!m_dirty.isEmpty()) {
        const auto d = m_dirty.constFind(column.toLower());
        if (d != m_dirty.cend())
            return *d;
    }
    return m_values.value(columnIndex(column));
}

QString RecordSet::text(const QString& column) const
{
    if (!hasCurrent())
        return {};
    return ItemColumns::toText(ItemColumns::kind(column), storedValue(column));
}

void RecordSet::setText(const QString& column, const QString& text)
{
    if (!hasCurrent())
        return;
    const ColumnKind kind = ItemColumns::kind(column);
    if (kind == ColumnKind::Id)
        return;
    const QVariant stored = ItemColumns::fromText(kind, text);
    const QVariant current = m_values.value(columnIndex(column));
    // Setting the kept value again withdraws an earlier edit instead of leaving it pending.
    if ((stored.isNull() && current.isNull()) ||
        (!stored.isNull() && !current.isNull() && stored.toString() == current.toString())) {
        m_dirty.remove(column.toLower());
        return;
    }
    m_dirty.insert(column.toLower(), stored);
}
