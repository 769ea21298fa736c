#pragma once

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>

// Items to and from CSV files (RFC 4180): a header row of column names, fields separated by
// commas (or semicolons, told from the header line), quoted when they hold a separator, a quote
// or a line break. Money is written as plain decimals, dates as ISO text; see docs/csv.md.
namespace ItemCsv {

// Longest field read into a column: Description and TransNotes hold pages of text, the other
// columns a line.
constexpr int kLongTextLimit = 65536;
constexpr int kTextLimit = 255;
int lengthLimit(const QString& column);

// How many rows the preview shows before the rows that cannot be read.
constexpr int kPreviewRows = 20;

// One record of a CSV text and the line it starts on (1-based).
struct Record
{
    int line = 0;
    QStringList fields;
    QString problem; // set when the record itself is broken (a quote left open)
};

// Splits CSV text into records. A byte-order mark is dropped; a blank line is no record.
QList<Record> parse(QStringView text, QChar separator);
// ';' when the header line holds more semicolons than commas outside quotes, else ','.
QChar detectSeparator(QStringView text);
// One record as a CSV line with CRLF, fields quoted only when they must be.
QString formatRecord(const QStringList& fields, QChar separator = u',');

// The field text of a stored value as exported: money plain, dates ISO, Yes/No as 1/0. A
// value kept as typed (not a readable amount or date) is written as it was kept.
QString exportText(const QString& column, const QVariant& stored);
// A field text -> the value to store, or the reason it cannot be read (in `problem`).
QVariant importValue(const QString& column, const QString& text, QString* problem);

struct ImportRow
{
    int line = 0;
    QStringList fields;  // as read, kept for the preview rows and the rows that cannot be read
    QVariantList values; // one per matched column, for rows that can be imported
    QString problem;     // why the row cannot be read; empty when it can
};

// What a CSV file would add: which of its columns go where, every row that can be read and
// every row that cannot, with the reason.
struct ImportPlan
{
    QString error;              // the file cannot be used at all
    QStringList header;         // as written in the file
    QStringList columns;        // the Items columns matched, in file order
    QList<int> fieldOfColumn;   // index in the record of each matched column
    QStringList unknownColumns; // not in Items (or repeated), skipped
    QList<ImportRow> rows;      // good rows and bad rows, in file order
    int goodRows = 0;
    int badRows = 0;

    bool ok() const { return error.isEmpty(); }
};

ImportPlan planImport(QStringView text);
// Reads the file as UTF-8 (or Windows-1252 when it is not well-formed UTF-8).
ImportPlan planImportFile(const QString& path);

// Progress of a long run: returns false to cancel.
using Progress = std::function<bool(qsizetype done, qsizetype total)>;

struct Outcome
{
    qsizetype count = 0; // rows written or items added
    bool cancelled = false;
    QString error;
    bool ok() const { return error.isEmpty() && !cancelled; }
};

// Writes the items with the given keys, in that order, to path (replaced whole only when
// everything was written). Rows are read in batches, so memory does not grow with the table.
Outcome exportItems(const QSqlDatabase& db, const QList<qint64>& ids, const QString& path,
                    const Progress& progress = {});
// Adds the plan's good rows as new items in one transaction: a failure or a cancel leaves the
// table as it was.
Outcome importItems(QSqlDatabase db, const ImportPlan& plan, const Progress& progress = {});

} // namespace ItemCsv
