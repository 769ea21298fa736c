#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>

class RecordSet;
class KeyPrefetch;
enum class KeyOrder;
class KeyScanner;
class RowReader;
class SourceReader;

// What the record set is asked to do; the validate hook sees it before the record is left.
enum class DataAction
{
    MoveFirst,
    MovePrevious,
    MoveNext,
    MoveLast,
    AddNew,
    Update,
    Delete,
    Find,
    Bookmark,
    Close,
    Unload
};

// The boxes of a window bound to columns: shows the current record and hands back what the
// user changed. Implemented by the windows layer.
class RecordBinding
{
public:
    virtual ~RecordBinding() = default;
    virtual void showRecord(const RecordSet& records) = 0;
    virtual void collectEdits(RecordSet& records) = 0;
};

// The data control behind every item window: a record source (table name or SELECT in the Jet
// dialect), the ordered row keys it yields, a current position with BOF/EOF, moves, finds, and
// add/update/delete. Edits of the current row are buffered and written when the row is left.
class RecordSet : public QObject
{
    Q_OBJECT
public:
    enum class FindResult
    {
        Found,
        NoMatch,
        Invalid
    };

    explicit RecordSet(QSqlDatabase database, QObject* parent = nullptr);
    ~RecordSet() override;

    void setDatabase(QSqlDatabase database) { m_db = std::move(database); }
    QSqlDatabase database() const { return m_db; }
    void setRecordSource(const QString& source) { m_source = source; }
    QString recordSource() const { return m_source; }
    void setBinding(RecordBinding* binding) { m_binding = binding; }
    // Runs before the current record is left, with the action that leaves it.
    void setValidateHook(std::function<void(DataAction)> hook) { m_validate = std::move(hook); }

    // Runs the record source again and stands on its first row (BOF and EOF when it has none).
    bool refresh();
    // How a record source's keys are read (the statement listing them and its order), for
    // reading them ahead on a KeyPrefetch; the next refresh takes them from it when they are
    // still what the source holds, and lets go of it either way.
    struct KeyRead
    {
        QString sql; // empty when the source cannot be read
        KeyOrder order;
    };
    static KeyRead keyRead(const QString& recordSource);
    // Where a closing "ORDER BY ID" (or Items.ID, quoted or not, ASC or not, a semicolon after)
    // begins in a statement, the blanks before it included; -1 when it does not end so. The
    // rows then come in key order without it.
    static qsizetype keyOrderClauseStart(QStringView sql);
    void usePrefetchedKeys(std::shared_ptr<KeyPrefetch> keys) { m_prefetch = std::move(keys); }
    // Reads the current row again, dropping unwritten edits, and shows it: for values another
    // statement has just stored.
    void rereadCurrent();
    QString lastError() const { return m_lastError; }

    // An empty record set stands before the first and after the last row at once.
    bool bof() const { return (m_pos < 0 || m_ids.isEmpty()) && !m_deletedCurrent; }
    bool eof() const { return (m_pos >= m_ids.size() || m_ids.isEmpty()) && !m_deletedCurrent; }
    bool hasCurrent() const { return !m_deletedCurrent && m_pos >= 0 && m_pos < m_ids.size(); }
    int recordCount() const { return int(m_ids.size()); }
    // 0-based place of the current row; -1 when there is none.
    int absolutePosition() const { return hasCurrent() ? int(m_pos) : -1; }
    void setAbsolutePosition(int position);
    qint64 bookmark() const { return hasCurrent() ? m_ids.at(m_pos) : -1; }
    void setBookmark(qint64 bookmark);
    QStringList columns() const { return m_columns; }
    // The row keys of the record source, in its order.
    const QList<qint64>& keys() const { return m_ids; }

    void moveFirst();
    void movePrevious();
    void moveNext();
    void moveLast();

    // How long one find may search before it gives up with Invalid.
    static constexpr int kFindTimeLimitMs = 5000;

    FindResult findFirst(const QString& criteria);
    FindResult findNext(const QString& criteria);
    bool noMatch() const { return m_noMatch; }

    // AddNew followed at once by Update with no column set: a new row with the table's
    // defaults, placed last; the current row stays where it was.
    qint64 addNewAndUpdate();
    // Writes the buffered edits of the current row (the Update action).
    bool update();
    // Deletes the current row; there is no current row until the next move.
    bool deleteCurrent();
    // Writes pending edits before the window goes: Close when the control closes, Unload when
    // the whole window is unloaded (the validate hook tells the two apart).
    void close(DataAction action = DataAction::Close);

    // The current row's value in the form a bound box shows; "" without a current row.
    QString text(const QString& column) const;
    QVariant storedValue(const QString& column) const;
    // Buffers an edit of the current row; written when the row is left.
    void setText(const QString& column, const QString& text);
    bool isDirty() const { return !m_dirty.isEmpty(); }

signals:
    // The current row changed (or the source was reloaded).
    void repositioned();
    // Writing an edit failed; the text says why.
    void writeFailed(const QString& message);

private:
    void leave(DataAction action);
    bool save();
    void moveTo(qsizetype position);
    // Where the key sits in the rows, or -1.
    qsizetype positionOf(qint64 key) const;
    void loadCurrent();
    int columnIndex(const QString& column) const;
    FindResult find(const QString& criteria, qsizetype from);

    QSqlDatabase m_db;
    QString m_source;
    RecordBinding* m_binding = nullptr;
    std::function<void(DataAction)> m_validate;
    QStringList m_columns;
    QList<qint64> m_ids;
    qsizetype m_pos = -1;
    bool m_deletedCurrent = false;
    bool m_noMatch = false;
    QString m_rowsSql;       // the record source without its key order
    bool m_keyOrder = false; // the source lists its rows in key order
    QString m_rowSql;        // reads one row of the source's columns by key
    std::unique_ptr<RowReader> m_rowReader;
    std::unique_ptr<SourceReader> m_sourceReader; // columns and keys of each source refreshed
    std::unique_ptr<KeyScanner> m_findScanner;    // Find Again runs the same search each time
    std::shared_ptr<KeyPrefetch> m_prefetch;
    QHash<QString, int> m_columnIndex; // place of each column, by its name and lower-case name
    QVariantList m_values;             // current row, in the order of m_columns
    QHash<QString, QVariant> m_dirty;  // edits not yet written, by lower-case column name
    QString m_lastError;
};
