#include "listing/ThemeSet.h"

#include "listing/ListingTexts.h"
#include "platform/AtomicFile.h"
#include "platform/SettingsStore.h"
#include "platform/TextCodec.h"
#include "settings/SettingsCatalogue.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cmath>

using namespace ListingText;

namespace {

// ---------------------------------------------------------------------------------------------
// Failures while reading or writing a themeset travel as this exception inside this file and
// leave it as a message; nothing outside sees it.
struct ThemeFileError
{
    int number;
    QString description;
};

[[noreturn]] void fail(int number, const QString& description)
{
    throw ThemeFileError{number, description};
}

// A theme the file cannot hold is refused with a message of its own, before anything is written.
struct ThemeRefusal
{
    ThemeSetMessage message;
};

ThemeSetMessage errorMessage(const ThemeFileError& error)
{
    return {errorText(error.number, error.description), kErrorTitle, PromptIcon::Exclamation};
}

// A themeset is 8-bit text. Files this program writes are UTF-8; a file that is not valid
// UTF-8 was written on an older system in its Windows-1252 code page, and keeps that encoding
// when themes are added or saved into it.
enum class TextEncoding
{
    Utf8,
    Windows1252
};

// ---------------------------------------------------------------------------------------------
// One field as the reader found it. raw holds a string's characters (without quotes) or an
// unquoted field's text (without surrounding blanks), as bytes, so a copied record is written
// back exactly as it was read.
enum class FieldKind
{
    Empty,
    String,
    Number,
    Boolean,
    Date,
    Bare
};

struct Field
{
    FieldKind kind = FieldKind::Empty;
    QByteArray raw;
    qsizetype start = 0;
    qsizetype end = 0;     // after the value (a string's closing quote)
    qsizetype stop = 0;    // where its separator begins, after anything that trails the value
    bool unclosed = false; // a string whose closing quote is missing runs to the end of the file
};

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool isLineEnd(char c)
{
    return c == '\r' || c == '\n';
}

FieldKind classify(const QByteArray& token)
{
    static const QRegularExpression number(
        QStringLiteral("^[+-]?(\\d+\\.?\\d*|\\.\\d+)([eE][+-]?\\d+)?$"));
    static const QRegularExpression date(QStringLiteral("^#(\\d{4})-(\\d{1,2})-(\\d{1,2})#$"));
    if (token.isEmpty())
        return FieldKind::Empty;
    const QString text = QString::fromLatin1(token);
    if (text.compare(QLatin1String("#TRUE#"), Qt::CaseInsensitive) == 0 ||
        text.compare(QLatin1String("#FALSE#"), Qt::CaseInsensitive) == 0)
        return FieldKind::Boolean;
    if (number.match(text).hasMatch())
        return FieldKind::Number;
    if (const auto m = date.match(text); m.hasMatch()) {
        if (QDate(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt()).isValid())
            return FieldKind::Date;
    }
    return FieldKind::Bare;
}

// Reads fields one after another, taking commas and line ends alike as separators.
class FieldReader
{
public:
    FieldReader(QByteArray data, QString path)
        : m_data(std::move(data)), m_path(std::move(path)),
          m_encoding(TextCodec::isUtf8(m_data) ? TextEncoding::Utf8 : TextEncoding::Windows1252)
    {
    }

    // End of file by position, as a sequential reader sees it.
    bool atEnd() const { return m_pos >= m_data.size(); }
    // True when only blanks and empty lines are left: a hand-edited file often ends so, and
    // that tail holds no record.
    bool atEndOfRecords() const
    {
        for (qsizetype i = m_pos; i < m_data.size(); ++i) {
            if (!isBlank(m_data.at(i)) && !isLineEnd(m_data.at(i)))
                return false;
        }
        return true;
    }

    Field next()
    {
        if (atEnd())
            fail(kErrPastEndOfFile, QStringLiteral("Input past end of file") + kCrLf +
                                        QStringLiteral("The themeset file ") + m_path +
                                        QStringLiteral(" ends in the middle of a record."));
        const qsizetype n = m_data.size();
        while (m_pos < n && isBlank(m_data.at(m_pos)))
            ++m_pos;
        Field field;
        field.start = m_pos;
        if (m_pos < n && m_data.at(m_pos) == '"') {
            const qsizetype close = m_data.indexOf('"', m_pos + 1);
            const qsizetype end = close < 0 ? n : close;
            field.kind = FieldKind::String;
            field.raw = m_data.mid(m_pos + 1, end - m_pos - 1);
            m_pos = close < 0 ? n : close + 1;
            field.end = m_pos;
            field.unclosed = close < 0;
            // Anything between the closing quote and the separator is not part of the value.
            while (m_pos < n && m_data.at(m_pos) != ',' && !isLineEnd(m_data.at(m_pos)))
                ++m_pos;
        } else {
            const qsizetype start = m_pos;
            while (m_pos < n && m_data.at(m_pos) != ',' && !isLineEnd(m_data.at(m_pos)))
                ++m_pos;
            field.raw = m_data.mid(start, m_pos - start);
            while (!field.raw.isEmpty() && isBlank(field.raw.back()))
                field.raw.chop(1);
            field.end = start + field.raw.size();
            field.kind = classify(field.raw);
        }
        field.stop = m_pos;
        skipSeparator();
        return field;
    }

    QList<Field> next(int count)
    {
        QList<Field> fields;
        fields.reserve(count);
        for (int i = 0; i < count; ++i)
            fields.append(next());
        return fields;
    }

    const QString& path() const { return m_path; }
    TextEncoding encoding() const { return m_encoding; }
    QString text(const QByteArray& bytes) const
    {
        return m_encoding == TextEncoding::Utf8 ? QString::fromUtf8(bytes)
                                                : TextCodec::fromWindows1252(bytes);
    }
    qsizetype pos() const { return m_pos; }
    qsizetype size() const { return m_data.size(); }
    QByteArray bytes(qsizetype from, qsizetype to) const { return m_data.mid(from, to - from); }

private:
    void skipSeparator()
    {
        const qsizetype n = m_data.size();
        if (m_pos >= n)
            return;
        if (m_data.at(m_pos) == ',') {
            ++m_pos;
        } else if (m_data.at(m_pos) == '\r') {
            ++m_pos;
            if (m_pos < n && m_data.at(m_pos) == '\n')
                ++m_pos;
        } else if (m_data.at(m_pos) == '\n') {
            ++m_pos;
        }
    }

    QByteArray m_data;
    QString m_path;
    TextEncoding m_encoding;
    qsizetype m_pos = 0;
};

// ---------------------------------------------------------------------------------------------
// Conversions of a field to the types of the theme record.

QString typeMismatch(const FieldReader& reader, int fieldNumber, const char* wanted)
{
    return QStringLiteral("Type mismatch") + kCrLf + QStringLiteral("Field ") +
           QString::number(fieldNumber) + QStringLiteral(" of a theme in the themeset file ") +
           reader.path() + QStringLiteral(" is not ") + QLatin1String(wanted) + u'.';
}

QString toText(const Field& field, const FieldReader& reader)
{
    switch (field.kind) {
    case FieldKind::Empty:
        return {};
    case FieldKind::Boolean:
        return field.raw.toUpper() == "#TRUE#" ? QStringLiteral("True") : QStringLiteral("False");
    case FieldKind::Date:
        return QString::fromLatin1(field.raw.mid(1, field.raw.size() - 2));
    case FieldKind::String:
    case FieldKind::Number:
    case FieldKind::Bare:
        break;
    }
    return reader.text(field.raw);
}

double roundHalfEven(double value)
{
    const double floorValue = std::floor(value);
    const double fraction = value - floorValue;
    if (fraction > 0.5)
        return floorValue + 1;
    if (fraction < 0.5)
        return floorValue;
    return std::fmod(floorValue, 2.0) == 0 ? floorValue : floorValue + 1;
}

// A whole number within [low, high], rounded half to even as numeric conversions do.
qint64 toWhole(const Field& field, qint64 low, qint64 high, const FieldReader& reader,
               int fieldNumber)
{
    double value = 0;
    switch (field.kind) {
    case FieldKind::Empty:
        return 0;
    case FieldKind::Boolean:
        return field.raw.toUpper() == "#TRUE#" ? -1 : 0;
    case FieldKind::Number:
    case FieldKind::String:
    case FieldKind::Bare: {
        bool ok = false;
        value = QString::fromUtf8(field.raw).trimmed().toDouble(&ok);
        if (!ok || !std::isfinite(value))
            fail(kErrTypeMismatch, typeMismatch(reader, fieldNumber, "a number"));
        break;
    }
    case FieldKind::Date:
        fail(kErrTypeMismatch, typeMismatch(reader, fieldNumber, "a number"));
    }
    const double rounded = roundHalfEven(value);
    if (rounded < double(low) || rounded > double(high))
        fail(kErrOverflow, QStringLiteral("Overflow") + kCrLf + QStringLiteral("Field ") +
                               QString::number(fieldNumber) +
                               QStringLiteral(" of a theme in the themeset file ") + reader.path() +
                               QStringLiteral(" is out of range."));
    return qint64(rounded);
}

qint64 toLong(const Field& field, const FieldReader& reader, int fieldNumber)
{
    return toWhole(field, -2147483648LL, 2147483647LL, reader, fieldNumber);
}

qint64 toInteger(const Field& field, const FieldReader& reader, int fieldNumber)
{
    return toWhole(field, -32768, 32767, reader, fieldNumber);
}

bool toBoolean(const Field& field, const FieldReader& reader, int fieldNumber)
{
    if (field.kind == FieldKind::Boolean)
        return field.raw.toUpper() == "#TRUE#";
    if (field.kind == FieldKind::String || field.kind == FieldKind::Bare) {
        const QString text = QString::fromUtf8(field.raw).trimmed();
        if (text.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
            return true;
        if (text.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
            return false;
    }
    if (field.kind == FieldKind::Date)
        fail(kErrTypeMismatch, typeMismatch(reader, fieldNumber, "True or False"));
    if (field.kind == FieldKind::Empty)
        return false;
    bool ok = false;
    const double value = QString::fromUtf8(field.raw).trimmed().toDouble(&ok);
    if (!ok)
        fail(kErrTypeMismatch, typeMismatch(reader, fieldNumber, "True or False"));
    return value != 0;
}

// ---------------------------------------------------------------------------------------------
// Writing.

QByteArray quoted(const QString& text, TextEncoding encoding = TextEncoding::Utf8)
{
    if (encoding == TextEncoding::Utf8)
        return '"' + text.toUtf8() + '"';
    const std::optional<QByteArray> bytes = TextCodec::toWindows1252(text);
    if (!bytes)
        throw ThemeRefusal{{kUnstorableInTheme, kQuoteInThemeTitle, PromptIcon::Exclamation}};
    return '"' + *bytes + '"';
}

QByteArray booleanText(bool value)
{
    return value ? QByteArrayLiteral("#TRUE#") : QByteArrayLiteral("#FALSE#");
}

// A point size as a fixed-point number of four decimals, without trailing zeros.
QByteArray sizeText(double size)
{
    QByteArray text = QByteArray::number(size, 'f', 4);
    while (text.endsWith('0'))
        text.chop(1);
    if (text.endsWith('.'))
        text.chop(1);
    return text == "-0" ? QByteArrayLiteral("0") : text;
}

QByteArray record(const QList<QByteArray>& fields)
{
    QByteArray line;
    for (qsizetype i = 0; i < fields.size(); ++i) {
        if (i)
            line += ',';
        line += fields.at(i);
    }
    return line + "\r\n";
}

// The record as the editor writes it; a new theme's record carries its sound loop as 1.
// The texts go in the encoding of the file the record is written to; a text that encoding
// cannot hold refuses the record.
QByteArray themeRecord(const Theme& t, bool newRecord, TextEncoding encoding = TextEncoding::Utf8)
{
    const auto q = [encoding](const QString& text) { return quoted(text, encoding); };
    QList<QByteArray> f{q(t.name),
                        QByteArray::number(t.tableColor),
                        q(t.backgroundImage),
                        q(t.soundFile),
                        QByteArray::number(t.borderWidth),
                        q(t.cellAlign),
                        newRecord ? QByteArray::number(t.loop ? 1 : 0) : booleanText(t.loop),
                        q(t.borderImage),
                        booleanText(t.borderImgTop),
                        booleanText(t.borderImgBot),
                        q(t.titleImage),
                        booleanText(t.titleImgLeft),
                        booleanText(t.titleImgRight),
                        q(t.inlineImage),
                        booleanText(t.inlineImg)};
    for (const FontGroup& g : t.fonts) {
        f << q(g.face) << QByteArray::number(g.color) << sizeText(g.size) << booleanText(g.bold)
          << booleanText(g.italic);
    }
    return record(f);
}

bool holdsQuote(const Theme& t)
{
    const auto has = [](const QString& s) { return s.contains(u'"'); };
    if (has(t.name) || has(t.backgroundImage) || has(t.soundFile) || has(t.cellAlign) ||
        has(t.borderImage) || has(t.titleImage) || has(t.inlineImage))
        return true;
    for (const FontGroup& g : t.fonts) {
        if (has(g.face))
            return true;
    }
    return false;
}

// Another theme's record on its way through a rewrite, from its bytes [from, to) in the file.
// Its font groups pass through their types, so a fractional size becomes whole points (and a
// value written in another form takes the form of its type); every other byte is kept.
QByteArray copiedRecord(const QList<Field>& fields, const FieldReader& reader, qsizetype from,
                        qsizetype to)
{
    QList<QPair<const Field*, QByteArray>> changes;
    const auto typed = [&](const Field& field, const QByteArray& text) {
        if (field.raw != text || field.kind == FieldKind::String || field.kind == FieldKind::Bare)
            changes.append({&field, text});
    };
    for (int g = 0; g < kFontGroupCount; ++g) {
        const int base = 15 + g * 5;
        const Field& face = fields.at(base);
        if (face.kind != FieldKind::String)
            changes.append({&face, quoted(toText(face, reader), reader.encoding())});
        typed(fields.at(base + 1),
              QByteArray::number(toLong(fields.at(base + 1), reader, base + 2)));
        typed(fields.at(base + 2),
              QByteArray::number(toInteger(fields.at(base + 2), reader, base + 3)));
        typed(fields.at(base + 3), booleanText(toBoolean(fields.at(base + 3), reader, base + 4)));
        typed(fields.at(base + 4), booleanText(toBoolean(fields.at(base + 4), reader, base + 5)));
    }
    QByteArray out;
    qsizetype at = from;
    for (const auto& [field, text] : changes) {
        out += reader.bytes(at, field->start) + text;
        at = field->end;
    }
    return out + reader.bytes(at, to);
}

Theme themeFromFields(const QList<Field>& f, const FieldReader& reader)
{
    Theme t;
    t.name = toText(f.at(0), reader);
    t.tableColor = toLong(f.at(1), reader, 2);
    t.backgroundImage = toText(f.at(2), reader);
    t.soundFile = toText(f.at(3), reader);
    t.borderWidth = toLong(f.at(4), reader, 5);
    t.cellAlign = toText(f.at(5), reader);
    t.loop = toBoolean(f.at(6), reader, 7);
    t.borderImage = toText(f.at(7), reader);
    t.borderImgTop = toBoolean(f.at(8), reader, 9);
    t.borderImgBot = toBoolean(f.at(9), reader, 10);
    t.titleImage = toText(f.at(10), reader);
    t.titleImgLeft = toBoolean(f.at(11), reader, 12);
    t.titleImgRight = toBoolean(f.at(12), reader, 13);
    t.inlineImage = toText(f.at(13), reader);
    t.inlineImg = toBoolean(f.at(14), reader, 15);
    for (int g = 0; g < kFontGroupCount; ++g) {
        const int base = 15 + g * 5;
        FontGroup& font = t.fonts[g];
        font.face = toText(f.at(base), reader);
        font.color = toLong(f.at(base + 1), reader, base + 2);
        font.size = double(toInteger(f.at(base + 2), reader, base + 3));
        font.bold = toBoolean(f.at(base + 3), reader, base + 4);
        font.italic = toBoolean(f.at(base + 4), reader, base + 5);
    }
    return t;
}

// ---------------------------------------------------------------------------------------------
// Files.

QByteArray readWholeFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        fail(kErrPathFileAccess, QStringLiteral("Path/File access error") + kCrLf +
                                     QStringLiteral("The themeset file ") + path +
                                     QStringLiteral(" could not be read: ") + file.errorString());
    return file.readAll();
}

[[noreturn]] void failWriting(const QString& path, const QString& reason)
{
    if (!QFileInfo(path).absoluteDir().exists())
        fail(kErrPathNotFound, QStringLiteral("Path not found") + kCrLf +
                                   QStringLiteral("The folder of ") + path +
                                   QStringLiteral(" does not exist."));
    fail(kErrPathFileAccess, QStringLiteral("Path/File access error") + kCrLf + path +
                                 QStringLiteral(" could not be written: ") + reason);
}

// Writes a whole file so that it is either the old one or the new one.
void writeWholeFile(const QString& path, const QByteArray& content)
{
    if (const AtomicFile::Outcome failure = AtomicFile::write(path, content))
        failWriting(failure->path, failure->reason);
}

// The scratch copy goes to disk completely before it replaces the themeset in one rename; a
// stop at any moment leaves either the old themeset or the new one, never neither. A scratch
// file left by such a stop is taken over; one that another running copy is writing is waited for.
void replaceThroughTemp(const QString& themeset, const QString& appPath, const QByteArray& content)
{
    const QString folder = appPath.isEmpty() ? QFileInfo(themeset).absolutePath() : appPath;
    AtomicFile::removeStaleScratchFiles(themeset);
    if (const AtomicFile::Outcome failure =
            AtomicFile::writeThrough(folder + u'/' + ThemeSetText::kTempFile, themeset, content))
        failWriting(failure->path, failure->reason);
}

MaybeMessage missingThemeset(const QString& path)
{
    if (QFileInfo(path).isFile())
        return {};
    return ThemeSetMessage{kThemesetNotInFolder, kMissingThemesetTitle, PromptIcon::Exclamation};
}

constexpr int kHeaderRecords = 4;
constexpr int kHeaderFields = 2 * kHeaderRecords;

QByteArray headerRecords(const QString& path, const QDate& today)
{
    QByteArray text;
    text += record({quoted(QStringLiteral("Subject")), quoted(ThemeSetText::kSubject)});
    text += record({quoted(QStringLiteral("Name")), quoted(QFileInfo(path).fileName())});
    text += record({quoted(QStringLiteral("Created by")), quoted(ThemeSetText::kCreatedBy)});
    text += record({quoted(QStringLiteral("Time")),
                    '#' + today.toString(QStringLiteral("yyyy-MM-dd")).toLatin1() + '#'});
    return text;
}

// Copies the themeset through the scratch file; decide() chooses for each record what to write
// in its place (its own fields copied, another record, or nothing).
template <typename Decide>
MaybeMessage rewrite(const QString& path, const QString& appPath, Decide decide)
{
    if (auto missing = missingThemeset(path))
        return missing;
    try {
        FieldReader reader(readWholeFile(path), path);
        reader.next(kHeaderFields);
        QByteArray out = reader.bytes(0, reader.pos());
        while (!reader.atEndOfRecords()) {
            const qsizetype from = reader.pos();
            const QList<Field> fields = reader.next(kThemeFieldCount);
            out += decide(toText(fields.at(0), reader), fields, reader, from, reader.pos());
        }
        out += reader.bytes(reader.pos(), reader.size());
        replaceThroughTemp(path, appPath, out);
    } catch (const ThemeFileError& error) {
        return errorMessage(error);
    } catch (const ThemeRefusal& refusal) {
        return refusal.message;
    }
    return {};
}

ThemeLoadResult findTheme(FieldReader& reader, const QString& name)
{
    while (!reader.atEndOfRecords()) {
        const QList<Field> fields = reader.next(kThemeFieldCount);
        if (toText(fields.at(0), reader) == name)
            return {themeFromFields(fields, reader), {}};
    }
    return {};
}

// Where a record added at the end of a readable themeset must start so that the reader takes
// it whole: straight after the last field, as anything after it (a trailing comma, blank lines)
// would be read as fields of their own. A last string that was never closed is closed first;
// its text stays what it read as. Nothing when the file cannot be read to its end.
struct AppendPoint
{
    qsizetype at = 0;
    bool closeQuote = false;
};

std::optional<AppendPoint> appendPoint(FieldReader& reader)
{
    try {
        Field last = reader.next(kHeaderFields).last();
        while (!reader.atEndOfRecords())
            last = reader.next(kThemeFieldCount).last();
        return AppendPoint{last.stop, last.unclosed};
    } catch (const ThemeFileError&) {
        return std::nullopt;
    }
}

MaybeMessage appendRecord(const QString& path, const Theme& theme, bool newRecord)
{
    if (auto missing = missingThemeset(path))
        return missing;
    try {
        FieldReader reader(readWholeFile(path), path);
        const QByteArray line = themeRecord(theme, newRecord, reader.encoding());
        QByteArray content = reader.bytes(0, reader.size());
        if (const std::optional<AppendPoint> point = appendPoint(reader)) {
            content.truncate(point->at);
            content += point->closeQuote ? "\"\r\n" : "\r\n";
        } else if (!content.isEmpty() && !isLineEnd(content.back())) {
            // A damaged file is only added to; the new record still starts a line.
            content += "\r\n";
        }
        writeWholeFile(path, content + line);
    } catch (const ThemeFileError& error) {
        return errorMessage(error);
    } catch (const ThemeRefusal& refusal) {
        return refusal.message;
    }
    return {};
}

} // namespace

// -------------------------------------------------------------------------------------------------

std::array<FontGroup, kFontGroupCount> Theme::defaultFonts()
{
    std::array<FontGroup, kFontGroupCount> fonts;
    const double sizes[kFontGroupCount] = {16, 10, 12, 8, 8, 10, 10};
    for (int i = 0; i < kFontGroupCount; ++i)
        fonts[i].size = sizes[i];
    return fonts;
}

Theme Theme::newTheme(const QString& name, qint64 tableColor)
{
    Theme theme;
    theme.name = name;
    theme.tableColor = tableColor;
    return theme;
}

MaybeMessage CreateThemeSet(const QString& path, const QDate& today, qint64 tableColor)
{
    try {
        writeWholeFile(
            path, headerRecords(path, today) +
                      themeRecord(Theme::newTheme(ThemeSetText::kDefaultTheme, tableColor), true));
    } catch (const ThemeFileError& error) {
        return errorMessage(error);
    }
    return {};
}

ThemeNamesResult listThemeNames(const QString& path)
{
    ThemeNamesResult result;
    if ((result.message = missingThemeset(path)))
        return result;
    try {
        FieldReader reader(readWholeFile(path), path);
        reader.next(kHeaderFields);
        while (!reader.atEndOfRecords())
            result.names << toText(reader.next(kThemeFieldCount).at(0), reader);
    } catch (const ThemeFileError& error) {
        result.names.clear();
        result.message = errorMessage(error);
    }
    return result;
}

ThemeLoadResult loadTheme(const QString& path, const QString& name, const QString& appPath)
{
    if (auto missing = missingThemeset(path))
        return {{}, missing};
    ThemeLoadResult result;
    try {
        FieldReader reader(readWholeFile(path), path);
        reader.next(kHeaderFields);
        result = findTheme(reader, name);
    } catch (const ThemeFileError& error) {
        return {{}, errorMessage(error)};
    }
    if (!result.theme)
        return {{},
                ThemeSetMessage{themeNotFound(name, path), kInvalidThemeTitle,
                                PromptIcon::Exclamation}};
    Theme& t = *result.theme;
    t.backgroundImage = expandPathToken(t.backgroundImage, QStringLiteral("AppBackgrPath"),
                                        QStringLiteral("Backgr"), appPath);
    t.soundFile = expandPathToken(t.soundFile, QStringLiteral("AppSoundPath"),
                                  QStringLiteral("Sounds"), appPath);
    for (QString* image : {&t.borderImage, &t.titleImage, &t.inlineImage})
        *image = expandPathToken(*image, QStringLiteral("AppImagePath"), QStringLiteral("Images"),
                                 appPath);
    return result;
}

ThemeLoadResult readThemeForListing(const QString& path, const QString& name)
{
    // A folder of that name is no themeset either.
    if (!QFileInfo(path).isFile())
        return {
            {},
            ThemeSetMessage{kThemesetDoesNotExist, kMissingThemesetTitle, PromptIcon::Exclamation}};
    const ThemeSetMessage incomplete{kThemesetIncomplete, kInvalidThemesetTitle,
                                     PromptIcon::Exclamation};
    ThemeLoadResult result;
    try {
        FieldReader reader(readWholeFile(path), path);
        if (reader.atEnd())
            return {{}, incomplete};
        reader.next(2);
        if (reader.atEnd())
            return {{}, incomplete};
        reader.next(kHeaderFields - 2);
        result = findTheme(reader, name);
    } catch (const ThemeFileError& error) {
        return {{}, errorMessage(error)};
    }
    if (!result.theme)
        return {{},
                ThemeSetMessage{themeNotInThemeset(name, path), kMissingThemeTitle,
                                PromptIcon::Exclamation}};
    return result;
}

MaybeMessage appendTheme(const QString& path, const Theme& theme)
{
    if (holdsQuote(theme))
        return ThemeSetMessage{kQuoteInTheme, kQuoteInThemeTitle, PromptIcon::Exclamation};
    return appendRecord(path, theme, false);
}

MaybeMessage appendNewTheme(const QString& path, const QString& name, qint64 tableColor)
{
    const Theme theme = Theme::newTheme(name, tableColor);
    if (holdsQuote(theme))
        return ThemeSetMessage{kQuoteInTheme, kQuoteInThemeTitle, PromptIcon::Exclamation};
    return appendRecord(path, theme, true);
}

MaybeMessage replaceTheme(const QString& path, const Theme& theme, const QString& appPath)
{
    if (holdsQuote(theme))
        return ThemeSetMessage{kQuoteInTheme, kQuoteInThemeTitle, PromptIcon::Exclamation};
    return rewrite(path, appPath,
                   [&](const QString& name, const QList<Field>& fields, const FieldReader& reader,
                       qsizetype from, qsizetype to) {
                       return name == theme.name ? themeRecord(theme, false, reader.encoding())
                                                 : copiedRecord(fields, reader, from, to);
                   });
}

MaybeMessage deleteTheme(const QString& path, const QString& name, const QString& appPath)
{
    if (name == ThemeSetText::kDefaultTheme)
        return ThemeSetMessage{kCannotDeleteDefault, kCannotDeleteTitle, PromptIcon::Information};
    return rewrite(path, appPath,
                   [&](const QString& recordName, const QList<Field>& fields,
                       const FieldReader& reader, qsizetype from, qsizetype to) {
                       return recordName == name ? QByteArray()
                                                 : copiedRecord(fields, reader, from, to);
                   });
}

QString expandPathToken(const QString& path, const QString& token, const QString& folder,
                        const QString& appPath)
{
    if (!path.startsWith(token, Qt::CaseSensitive))
        return path;
    // The rest was written with either separator; under the application folder it takes ours.
    QString rest = path.mid(token.size());
    rest.replace(u'\\', u'/');
    return appPath + u'/' + folder + rest;
}

// -------------------------------------------------------------------------------------------------

QString RoleTexts::text(int role) const
{
    switch (role) {
    case Role::SubHeading:
        return subHeading;
    case Role::PayOptions:
        return payOptions;
    case Role::TaxMessage:
        return taxMsg;
    case Role::ReserveMessage:
        return noReserve;
    case Role::SeeOther:
        return seeOther;
    default:
        return {};
    }
}

void RoleTexts::setText(int role, const QString& value)
{
    switch (role) {
    case Role::SubHeading:
        subHeading = value;
        break;
    case Role::PayOptions:
        payOptions = value;
        break;
    case Role::TaxMessage:
        taxMsg = value;
        break;
    case Role::ReserveMessage:
        noReserve = value;
        break;
    case Role::SeeOther:
        seeOther = value;
        break;
    default:
        break;
    }
}

RoleTexts loadRoleTexts(const SettingsStore& store)
{
    const QString& o = Settings::kOptions;
    RoleTexts texts;
    texts.payOptions = store.get(Settings::kApp, o, QStringLiteral("PayOptions"),
                                 ListingText::kAdStudioPayOptions);
    texts.subHeading = readSetting(store, o, QStringLiteral("SubHeading"));
    texts.taxMsg = readSetting(store, o, QStringLiteral("TaxMsg"));
    texts.noReserve = readSetting(store, o, QStringLiteral("NoReserve"));
    texts.seeOther = readSetting(store, o, QStringLiteral("SeeOther"));
    return texts;
}

bool saveRoleTexts(SettingsStore& store, const RoleTexts& texts)
{
    const QString& o = Settings::kOptions;
    bool ok = store.save(Settings::kApp, o, QStringLiteral("PayOptions"), texts.payOptions);
    ok = store.save(Settings::kApp, o, QStringLiteral("SubHeading"), texts.subHeading) && ok;
    ok = store.save(Settings::kApp, o, QStringLiteral("TaxMsg"), texts.taxMsg) && ok;
    ok = store.save(Settings::kApp, o, QStringLiteral("NoReserve"), texts.noReserve) && ok;
    ok = store.save(Settings::kApp, o, QStringLiteral("SeeOther"), texts.seeOther) && ok;
    return ok;
}
