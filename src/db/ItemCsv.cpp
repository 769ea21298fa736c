#include "db/ItemCsv.h"

#include "db/ItemColumns.h"
#include "platform/Database.h"
#include "platform/DateText.h"
#include "platform/Money.h"
#include "platform/TextCodec.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringDecoder>

#include <algorithm>

namespace ItemCsv {

namespace {

constexpr int kBatch = 500;

// A closed connection fails without saying why; the outcome must still read as a failure.
QString errorText(const QSqlError& error)
{
    const QString text = error.text().trimmed();
    return text.isEmpty() ? QStringLiteral("the item database is not open") : text;
}

QString stripBom(QStringView text)
{
    return (text.startsWith(QChar(0xFEFF)) ? text.mid(1) : text).toString();
}

// "$1,234.50" -> "1234.50": one leading currency sign and thousands separators in groups of
// three are allowed; a comma anywhere else makes the text unreadable (never a decimal comma,
// which would read "1,234" as one and a quarter).
std::optional<Money> parseMoney(const QString& input)
{
    QString text = input.trimmed();
    bool negative = false;
    if (text.startsWith(u'-')) {
        negative = true;
        text = text.mid(1).trimmed();
    }
    static const QString signs = QStringLiteral("$\u20AC\u00A3\u00A5");
    if (!text.isEmpty() && signs.contains(text.at(0)))
        text = text.mid(1).trimmed();
    if (text.contains(u',')) {
        const qsizetype point = text.indexOf(u'.');
        const QString whole = point < 0 ? text : text.left(point);
        const QStringList groups = whole.split(u',');
        if (groups.first().isEmpty() || groups.first().size() > 3)
            return std::nullopt;
        for (qsizetype i = 1; i < groups.size(); ++i)
            if (groups.at(i).size() != 3)
                return std::nullopt;
        text = groups.join(QString()) + (point < 0 ? QString() : text.mid(point));
    }
    if (text.startsWith(u'-') || text.startsWith(u'+'))
        return std::nullopt;
    const auto money = Money::parse(text);
    if (!money)
        return std::nullopt;
    return negative ? Money::fromUnits(-money->units()) : *money;
}

QDateTime parseDate(const QString& text)
{
    const QString t = text.trimmed();
    QDateTime dt = DateText::fromStorage(t);
    if (!dt.isValid())
        dt = QDateTime::fromString(t, QStringLiteral("yyyy-MM-ddTHH:mm"));
    if (!dt.isValid())
        dt = QDateTime::fromString(t, QStringLiteral("yyyy-MM-dd HH:mm"));
    if (!dt.isValid())
        dt = DateText::fromDisplay(t);
    // "…Z" or "…+01:00" names another zone's clock; items keep the local one.
    if (dt.isValid() && dt.timeSpec() != Qt::LocalTime)
        dt = dt.toLocalTime();
    return dt;
}

// What the item window accepts as an eBay number: digits only, blanks around them aside.
bool isEbayNumber(const QString& text)
{
    const QString t = text.trimmed();
    return !t.isEmpty() &&
           std::all_of(t.cbegin(), t.cend(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

// A spreadsheet's empty rows come out as separators alone; they are no item.
bool allBlank(const QStringList& fields)
{
    return std::all_of(fields.cbegin(), fields.cend(),
                       [](const QString& f) { return f.trimmed().isEmpty(); });
}

// UTF-16 files start with their byte-order mark; anything else is UTF-8 or, when it is not
// well-formed UTF-8, Windows-1252.
QString decodeFile(const QByteArray& bytes)
{
    const auto utf16 = [&](QStringConverter::Encoding encoding) {
        QStringDecoder decode(encoding);
        return QString(decode(bytes));
    };
    if (bytes.startsWith("\xFF\xFE"))
        return utf16(QStringConverter::Utf16LE);
    if (bytes.startsWith("\xFE\xFF"))
        return utf16(QStringConverter::Utf16BE);
    return TextCodec::decodeUtf8OrWindows1252(bytes);
}

} // namespace

int lengthLimit(const QString& column)
{
    return column.compare(QLatin1String("Description"), Qt::CaseInsensitive) == 0 ||
                   column.compare(QLatin1String("TransNotes"), Qt::CaseInsensitive) == 0
               ? kLongTextLimit
               : kTextLimit;
}

QChar detectSeparator(QStringView text)
{
    int commas = 0;
    int semicolons = 0;
    bool quoted = false;
    // The header is the first line that is not blank, as the reader takes it.
    qsizetype start = 0;
    while (start < text.size() &&
           (text.at(start) == u'\r' || text.at(start) == u'\n' || text.at(start) == QChar(0xFEFF)))
        ++start;
    for (const QChar c : text.mid(start)) {
        if (c == u'"')
            quoted = !quoted;
        else if (!quoted && (c == u'\n' || c == u'\r'))
            break;
        else if (!quoted && c == u',')
            ++commas;
        else if (!quoted && c == u';')
            ++semicolons;
    }
    return semicolons > commas ? u';' : u',';
}

QList<Record> parse(QStringView input, QChar separator)
{
    const QString owned = stripBom(input);
    const QStringView text(owned);
    QList<Record> records;
    Record record;
    QString field;
    bool quoted = false;      // inside a quoted field
    bool fieldQuoted = false; // the current field began with a quote
    int line = 1;
    record.line = 1;
    const auto endRecord = [&] {
        const bool blank = record.fields.isEmpty() && field.isEmpty() && !fieldQuoted;
        record.fields << field;
        field.clear();
        fieldQuoted = false;
        if (!blank) // a blank line is no record
            records << record;
        record = Record();
    };
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = text.at(i);
        if (quoted) {
            if (c == u'"') {
                if (i + 1 < n && text.at(i + 1) == u'"') {
                    field += u'"';
                    ++i;
                } else {
                    quoted = false;
                }
            } else {
                if (c == u'\n')
                    ++line;
                field += c;
            }
            continue;
        }
        if (c == u'"' && field.isEmpty() && !fieldQuoted) {
            quoted = true;
            fieldQuoted = true;
        } else if (c == separator) {
            record.fields << field;
            field.clear();
            fieldQuoted = false;
        } else if (c == u'\r' || c == u'\n') {
            if (c == u'\r' && i + 1 < n && text.at(i + 1) == u'\n')
                ++i;
            endRecord();
            ++line;
            record.line = line;
        } else {
            // A stray quote inside an unquoted field is kept as written.
            field += c;
        }
    }
    if (quoted) {
        record.problem = QStringLiteral("a quoted field is not closed");
        record.fields << field;
        records << record;
    } else if (!field.isEmpty() || !record.fields.isEmpty() || fieldQuoted) {
        endRecord();
    }
    return records;
}

QString formatRecord(const QStringList& fields, QChar separator)
{
    QString out;
    for (qsizetype i = 0; i < fields.size(); ++i) {
        if (i)
            out += separator;
        const QString& f = fields.at(i);
        if (f.contains(separator) || f.contains(u'"') || f.contains(u'\n') || f.contains(u'\r')) {
            QString escaped = f;
            escaped.replace(QLatin1String("\""), QLatin1String("\"\""));
            out += u'"' + escaped + u'"';
        } else {
            out += f;
        }
    }
    return out + QLatin1String("\r\n");
}

QString exportText(const QString& column, const QVariant& stored)
{
    if (stored.isNull())
        return {};
    switch (ItemColumns::kind(column)) {
    case ColumnKind::Money:
        if (stored.typeId() == QMetaType::LongLong || stored.typeId() == QMetaType::Int)
            return Money::fromUnits(stored.toLongLong()).toPlainText();
        break;
    case ColumnKind::DateTime:
    case ColumnKind::Date: {
        const QDateTime dt = DateText::fromStorage(stored.toString());
        if (dt.isValid())
            return DateText::toStorage(dt);
        break;
    }
    case ColumnKind::YesNo:
        return stored.toLongLong() ? QStringLiteral("1") : QStringLiteral("0");
    case ColumnKind::Id:
    case ColumnKind::Text:
        break;
    }
    return stored.toString();
}

QVariant importValue(const QString& column, const QString& text, QString* problem)
{
    const auto refuse = [&](const QString& why) {
        if (problem)
            *problem = QStringLiteral("%1: %2").arg(column, why);
        return QVariant();
    };
    const int limit = lengthLimit(column);
    if (text.size() > limit)
        return refuse(
            QStringLiteral("too long (%1 characters, at most %2)").arg(text.size()).arg(limit));
    const bool blank = text.trimmed().isEmpty();
    switch (ItemColumns::kind(column)) {
    case ColumnKind::Money: {
        if (blank)
            return QVariant(QMetaType(QMetaType::LongLong));
        const auto money = parseMoney(text);
        if (!money)
            return refuse(QStringLiteral("\"%1\" is not an amount").arg(text));
        return QVariant(money->units());
    }
    case ColumnKind::DateTime:
    case ColumnKind::Date: {
        if (blank)
            return QVariant(QMetaType(QMetaType::QString));
        const QDateTime dt = parseDate(text);
        if (!dt.isValid())
            return refuse(QStringLiteral("\"%1\" is not a date").arg(text));
        return QVariant(DateText::toStorage(dt));
    }
    case ColumnKind::YesNo: {
        const QString t = text.trimmed().toLower();
        if (t.isEmpty()) // the table's default
            return QVariant(qlonglong(
                column.compare(QLatin1String("Active"), Qt::CaseInsensitive) == 0 ? 1 : 0));
        static const QStringList yes{QStringLiteral("1"), QStringLiteral("yes"),
                                     QStringLiteral("true"), QStringLiteral("-1")};
        static const QStringList no{QStringLiteral("0"), QStringLiteral("no"),
                                    QStringLiteral("false")};
        if (yes.contains(t))
            return QVariant(qlonglong(1));
        if (no.contains(t))
            return QVariant(qlonglong(0));
        return refuse(QStringLiteral("\"%1\" is not Yes or No").arg(text));
    }
    case ColumnKind::Id:
    case ColumnKind::Text:
        break;
    }
    if (column.compare(QLatin1String("EbayID"), Qt::CaseInsensitive) == 0) {
        // The auction-site commands put the number into their statements as it stands.
        if (blank)
            return QVariant(QMetaType(QMetaType::QString));
        if (!isEbayNumber(text))
            return refuse(QStringLiteral("\"%1\" is not an eBay number (digits only)").arg(text));
    }
    return text.isEmpty() ? QVariant(QMetaType(QMetaType::QString)) : QVariant(text);
}

ImportPlan planImport(QStringView input)
{
    ImportPlan plan;
    const QString owned = stripBom(input);
    const QChar separator = detectSeparator(owned);
    const QList<Record> records = parse(owned, separator);
    if (records.isEmpty()) {
        plan.error = QStringLiteral("The file is empty.");
        return plan;
    }
    plan.header = records.first().fields;
    QHash<QString, QString> known; // lower case -> the column's own spelling
    for (const QString& c : ItemColumns::names())
        known.insert(c.toLower(), c);
    for (qsizetype i = 0; i < plan.header.size(); ++i) {
        const QString name = plan.header.at(i).trimmed();
        const QString column = known.value(name.toLower());
        if (column == QLatin1String("ID"))
            continue; // imports add new items; their keys are the table's to give
        if (column.isEmpty() || plan.columns.contains(column)) {
            if (!name.isEmpty()) // a trailing separator names nothing worth listing
                plan.unknownColumns << name;
            continue;
        }
        plan.columns << column;
        plan.fieldOfColumn << int(i);
    }
    if (plan.columns.isEmpty()) {
        plan.error = QStringLiteral("The first line names no column of the items table, such as "
                                    "ShortDescription or SalePrice.");
        return plan;
    }
    const qsizetype width = plan.header.size();
    for (qsizetype r = 1; r < records.size(); ++r) {
        const Record& rec = records.at(r);
        if (rec.problem.isEmpty() && allBlank(rec.fields))
            continue;
        ImportRow row;
        row.line = rec.line;
        row.problem = rec.problem;
        if (row.problem.isEmpty() && rec.fields.size() != width)
            row.problem = QStringLiteral("%1 fields where the header has %2")
                              .arg(rec.fields.size())
                              .arg(width);
        for (qsizetype c = 0; row.problem.isEmpty() && c < plan.columns.size(); ++c)
            row.values << importValue(plan.columns.at(c), rec.fields.at(plan.fieldOfColumn.at(c)),
                                      &row.problem);
        if (!row.problem.isEmpty()) {
            row.values.clear();
            ++plan.badRows;
        } else {
            ++plan.goodRows;
        }
        if (!row.problem.isEmpty() || r <= kPreviewRows)
            row.fields = rec.fields;
        plan.rows << row;
    }
    return plan;
}

ImportPlan planImportFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        ImportPlan plan;
        plan.error = QStringLiteral("The file cannot be read: %1").arg(file.errorString());
        return plan;
    }
    return planImport(decodeFile(file.readAll()));
}

Outcome exportItems(const QSqlDatabase& db, const QList<qint64>& ids, const QString& path,
                    const Progress& progress)
{
    Outcome out;
    // Replacing the database file under its open connection would lose every item at the next
    // start; its journal files are no better.
    const QString live = QFileInfo(fileOfConnection(db)).canonicalFilePath();
    const QString target = QFileInfo(path).canonicalFilePath();
    if (!live.isEmpty() && !target.isEmpty() &&
        (target == live || target == live + QLatin1String("-wal") ||
         target == live + QLatin1String("-shm") || target == live + QLatin1String("-journal"))) {
        out.error = QStringLiteral("%1 is the item database in use.").arg(path);
        return out;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        out.error = file.errorString();
        return out;
    }
    const QStringList& columns = ItemColumns::names();
    const auto write = [&](const QString& text) {
        const QByteArray bytes = text.toUtf8();
        if (file.write(bytes) != bytes.size() && out.error.isEmpty())
            out.error = file.errorString();
    };
    write(formatRecord(columns));
    for (qsizetype start = 0; start < ids.size() && out.error.isEmpty(); start += kBatch) {
        if (progress && !progress(start, ids.size())) {
            out.cancelled = true;
            file.cancelWriting();
            return out;
        }
        const QList<qint64> batch = ids.mid(start, kBatch);
        QStringList marks;
        marks.fill(QStringLiteral("?"), batch.size());
        QSqlQuery q(db);
        q.setForwardOnly(true);
        if (!q.prepare(QStringLiteral("SELECT %1 FROM Items WHERE ID IN (%2)")
                           .arg(columns.join(u','), marks.join(u',')))) {
            out.error = errorText(q.lastError());
            break;
        }
        for (qsizetype i = 0; i < batch.size(); ++i)
            q.bindValue(int(i), batch.at(i));
        if (!q.exec()) {
            out.error = errorText(q.lastError());
            break;
        }
        QHash<qint64, QString> lines; // by key, written in the order asked for
        while (q.next()) {
            QStringList fields;
            for (qsizetype c = 0; c < columns.size(); ++c)
                fields << exportText(columns.at(c), q.value(int(c)));
            lines.insert(q.value(0).toLongLong(), formatRecord(fields));
        }
        for (const qint64 id : batch) {
            const auto it = lines.constFind(id);
            if (it != lines.cend()) { // a key deleted meanwhile is no row
                write(*it);
                ++out.count;
            }
        }
    }
    if (out.error.isEmpty() && !file.commit())
        out.error = file.errorString();
    if (!out.error.isEmpty())
        file.cancelWriting();
    return out;
}

Outcome importItems(QSqlDatabase db, const ImportPlan& plan, const Progress& progress)
{
    Outcome out;
    if (!plan.ok()) {
        out.error = plan.error;
        return out;
    }
    if (!db.isOpen() || !db.transaction()) {
        out.error = errorText(db.lastError());
        return out;
    }
    const auto fail = [&](const QString& error) {
        db.rollback();
        out.count = 0;
        out.error = error;
        return out;
    };
    {
        QSqlQuery q(db);
        QStringList marks;
        marks.fill(QStringLiteral("?"), plan.columns.size());
        if (!q.prepare(QStringLiteral("INSERT INTO Items (%1) VALUES (%2)")
                           .arg(plan.columns.join(u','), marks.join(u','))))
            return fail(errorText(q.lastError()));
        qsizetype done = 0;
        for (const ImportRow& row : plan.rows) {
            if (!row.problem.isEmpty())
                continue;
            if (progress && done % kBatch == 0 && !progress(done, plan.goodRows)) {
                db.rollback();
                out.count = 0;
                out.cancelled = true;
                return out;
            }
            for (qsizetype c = 0; c < row.values.size(); ++c)
                q.bindValue(int(c), row.values.at(c));
            if (!q.exec())
                return fail(
                    QStringLiteral("line %1: %2").arg(row.line).arg(errorText(q.lastError())));
            ++done;
        }
        out.count = done;
    }
    if (!db.commit())
        return fail(errorText(db.lastError()));
    return out;
}

} // namespace ItemCsv
