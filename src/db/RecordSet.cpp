#include "db/RecordSet.h"

#include "db/ItemColumns.h"
#include "platform/JetSql.h"

#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

RecordSet::RecordSet(QSqlDatabase database, QObject* parent)
    : QObject(parent), m_db(std::move(database))
{
}

QString RecordSet::sourceSql() const
{
    QString source = m_source.trimmed();
    while (source.endsWith(u';'))
        source.chop(1);
    // A bare name is a table or view: its rows in key order.
    if (!source.contains(u' '))
        return QLatin1String("SELECT * FROM ") + source + QLatin1String(" ORDER BY ID");
    const JetTranslation t = translateJet(source);
    return t.ok() ? t.sql : QString();
}

bool RecordSet::refresh()
{
    m_ids.clear();
    m_columns.clear();
    m_values.clear();
    m_dirty.clear();
    m_deletedCurrent = false;
    m_noMatch = false;
    m_lastError.clear();
    const QString sql = sourceSql();
    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    if (sql.isEmpty() || !q.exec(sql)) {
        m_lastError = sql.isEmpty() ? QStringLiteral("The record source cannot be read.")
                                    : q.lastError().text();
        m_pos = 0;
        if (m_binding)
            m_binding->showRecord(*this);
        emit repositioned();
        return false;
    }
    const QSqlRecord rec = q.record();
    int idField = -1;
    for (int i = 0; i < rec.count(); ++i) {
        m_columns << rec.fieldName(i);
        if (rec.fieldName(i).compare(QLatin1String("ID"), Qt::CaseInsensitive) == 0)
            idField = i;
    }
    while (q.next())
        m_ids << q.value(idField).toLongLong();
    m_rowQuery = QSqlQuery(m_db);
    m_rowQuery.prepare(QLatin1String("SELECT ") + m_columns.join(QLatin1String(", ")) +
                       QLatin1String(" FROM Items WHERE ID = ?"));
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
    m_rowQuery.bindValue(0, m_ids.at(m_pos));
    if (m_rowQuery.exec() && m_rowQuery.next()) {
        for (int i = 0; i < m_columns.size(); ++i)
            m_values.insert(m_columns.at(i).toLower(), m_rowQuery.value(i));
    }
    m_rowQuery.finish();
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
    for (auto it = m_dirty.cbegin(); it != m_dirty.cend(); ++it)
        m_values.insert(it.key().toLower(), it.value());
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
    const qsizetype i = m_ids.indexOf(bookmark);
    if (i >= 0)
        moveTo(i);
}

RecordSet::FindResult RecordSet::find(const QString& criteria, qsizetype from)
{
    // A criteria that cannot be read is refused before the row is left: nothing is written.
    const JetTranslation t = translateJet(criteria);
    if (!t.ok()) {
        m_noMatch = true;
        m_lastError = t.error;
        return FindResult::Invalid;
    }
    leave(DataAction::Find);
    m_noMatch = true;
    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    if (!q.exec(QLatin1String("SELECT ID FROM (") + sourceSql() + QLatin1String(") WHERE ") +
                t.sql)) {
        m_lastError = q.lastError().databaseText();
        return FindResult::Invalid;
    }
    QSet<qint64> matches;
    while (q.next())
        matches.insert(q.value(0).toLongLong());
    for (qsizetype i = std::max<qsizetype>(from, 0); i < m_ids.size(); ++i) {
        if (matches.contains(m_ids.at(i))) {
            m_noMatch = false;
            moveTo(i);
            return FindResult::Found;
        }
    }
    return FindResult::NoMatch;
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
    if (!hasCurrent())
        return;
    if (m_validate)
        m_validate(action);
    if (m_binding)
        m_binding->collectEdits(*this);
    save();
}

QVariant RecordSet::storedValue(const QString& column) const
{
    const auto d = m_dirty.constFind(column.toLower());
    if (d != m_dirty.cend())
        return *d;
    return m_values.value(column.toLower());
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
    const QVariant current = m_values.value(column.toLower());
    // Setting the kept value again withdraws an earlier edit instead of leaving it pending.
    if ((stored.isNull() && current.isNull()) ||
        (!stored.isNull() && !current.isNull() && stored.toString() == current.toString())) {
        m_dirty.remove(column.toLower());
        return;
    }
    m_dirty.insert(column.toLower(), stored);
}
