#include "platform/SettingsStore.h"

#include "platform/AtomicFile.h"
#include "platform/TextCodec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

bool sameName(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// Values may hold line breaks (note texts); they are kept on one INI line.
QString escaped(const QString& value)
{
    QString out;
    out.reserve(value.size());
    for (const QChar c : value) {
        if (c == u'\\')
            out += QLatin1String("\\\\");
        else if (c == u'\n')
            out += QLatin1String("\\n");
        else if (c == u'\r')
            out += QLatin1String("\\r");
        else
            out += c;
    }
    return out;
}

QString unescaped(const QString& value)
{
    QString out;
    out.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value.at(i);
        if (c == u'\\' && i + 1 < value.size()) {
            const QChar n = value.at(++i);
            out += n == u'n' ? QChar(u'\n') : n == u'r' ? QChar(u'\r') : n;
        } else {
            out += c;
        }
    }
    return out;
}

// Blanks at either end of a value would be lost to the trimming of hand-edited lines, so such a
// value (and one that starts with a quote itself) is written between double quotes.
QString written(const QString& value)
{
    const QString text = escaped(value);
    if (!text.isEmpty() &&
        (text.front().isSpace() || text.back().isSpace() || text.front() == u'"'))
        return u'"' + text + u'"';
    return text;
}

// The field as the file holds it, blanks around it already cut off.
QString read(const QString& field)
{
    QString text = field;
    if (text.size() >= 2 && text.front() == u'"' && text.back() == u'"')
        text = text.mid(1, text.size() - 2);
    return unescaped(text);
}

// Lines end in LF, CR LF or a lone CR alike, so a section or key name never holds a line end
// that another reader of the file would break the line at.
QList<QByteArray> lines(const QByteArray& data)
{
    QList<QByteArray> out;
    qsizetype start = 0;
    for (qsizetype i = 0; i < data.size(); ++i) {
        const char c = data.at(i);
        if (c != '\r' && c != '\n')
            continue;
        out.append(data.mid(start, i - start));
        if (c == '\r' && i + 1 < data.size() && data.at(i + 1) == '\n')
            ++i;
        start = i + 1;
    }
    if (start < data.size())
        out.append(data.mid(start));
    return out;
}

// Names and values are cut out of the line's bytes (the marks [ ] = are ASCII in both
// encodings) and then decoded the way the whole line reads: UTF-8, or else Windows-1252.
QString decoded(const QByteArray& bytes, bool eightBit)
{
    return eightBit ? TextCodec::fromWindows1252(bytes) : QString::fromUtf8(bytes);
}

// A line read as 8-bit text goes back as 8-bit text, unless the code page cannot hold its
// text or the bytes would read as UTF-8 next time; then the line is written as UTF-8.
QByteArray encodedLine(const QString& text, const std::optional<QByteArray>& eightBitBytes)
{
    if (eightBitBytes && !TextCodec::isUtf8(*eightBitBytes))
        return *eightBitBytes;
    return text.toUtf8();
}

} // namespace

QString SettingsStore::defaultFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QLatin1String("/tallybid");
}

SettingsStore::SettingsStore(QString folder) : m_folder(std::move(folder)) {}

QString SettingsStore::filePath(const QString& application) const
{
    return m_folder + u'/' + application + QLatin1String(".ini");
}

SettingsStore::File& SettingsStore::load(const QString& application) const
{
    const QString id = application.toLower();
    auto it = m_files.find(id);
    if (it != m_files.end())
        return *it;
    File file;
    QFile in(filePath(application));
    if (in.open(QIODevice::ReadOnly)) {
        Section* current = nullptr;
        for (const QByteArray& bytes : lines(in.readAll())) {
            const QByteArray line = bytes.trimmed();
            const bool eightBit = !TextCodec::isUtf8(line);
            if (line.isEmpty() || line.startsWith(';') || line.startsWith('#'))
                continue;
            if (line.startsWith('[') && line.endsWith(']') && line.size() >= 2) {
                const QString name = decoded(line.mid(1, line.size() - 2), eightBit);
                current = nullptr;
                for (Section& s : file.sections)
                    if (sameName(s.name, name))
                        current = &s;
                if (!current) {
                    file.sections.append({name, {}, eightBit});
                    current = &file.sections.last();
                }
                continue;
            }
            const qsizetype eq = line.indexOf('=');
            if (eq <= 0 || !current)
                continue; // a damaged line is skipped, the rest of the file still counts
            const QString key = decoded(line.left(eq).trimmed(), eightBit);
            const QByteArray valueBytes = line.mid(eq + 1).trimmed();
            const QString value = read(decoded(valueBytes, eightBit));
            const std::optional<QByteArray> raw =
                eightBit ? std::optional<QByteArray>(valueBytes) : std::nullopt;
            bool found = false;
            for (Entry& e : current->entries)
                if (sameName(e.key, key)) {
                    e.value = value;
                    e.eightBit = eightBit;
                    e.rawValue = raw;
                    found = true;
                }
            if (!found)
                current->entries.append({key, value, eightBit, raw});
        }
    }
    return *m_files.insert(id, file);
}

bool SettingsStore::write(const QString& application, const File& file) const
{
    const QString folder = QDir::cleanPath(m_folder);
    if (!QFileInfo::exists(folder)) {
        QDir().mkpath(QFileInfo(folder).absolutePath());
        QDir().mkdir(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QByteArray data;
    for (const Section& s : file.sections) {
        const QString header = u'[' + s.name + u']';
        data += encodedLine(header, s.eightBit ? TextCodec::toWindows1252(header) : std::nullopt);
        data += '\n';
        for (const Entry& e : s.entries) {
            const QString text = e.key + u'=' + written(e.value);
            std::optional<QByteArray> eightBit;
            if (e.eightBit && e.rawValue) {
                if (const auto key = TextCodec::toWindows1252(e.key))
                    eightBit = *key + '=' + *e.rawValue;
            } else if (e.eightBit) {
                eightBit = TextCodec::toWindows1252(text);
            }
            data += encodedLine(text, eightBit) + '\n';
        }
        data += '\n';
    }
    // Owner only, also when the file was made with wider permissions before.
    return !AtomicFile::write(filePath(application), data, 0600);
}

QString SettingsStore::get(const QString& application, const QString& section, const QString& key,
                           const QString& defaultValue) const
{
    for (const Section& s : load(application).sections)
        if (sameName(s.name, section))
            for (const Entry& e : s.entries)
                if (sameName(e.key, key))
                    return e.value;
    return defaultValue;
}

bool SettingsStore::contains(const QString& application, const QString& section,
                             const QString& key) const
{
    for (const Section& s : load(application).sections)
        if (sameName(s.name, section))
            for (const Entry& e : s.entries)
                if (sameName(e.key, key))
                    return true;
    return false;
}

bool SettingsStore::setInMemory(File& file, const QString& section, const QString& key,
                                const QString& value)
{
    bool changed = false;
    Section* target = nullptr;
    for (Section& s : file.sections)
        if (sameName(s.name, section))
            target = &s;
    if (!target) {
        file.sections.append({section, {}, false});
        target = &file.sections.last();
        changed = true;
    }
    bool found = false;
    for (Entry& e : target->entries)
        if (sameName(e.key, key)) {
            // The same value again keeps the bytes it was read from.
            if (e.value != value) {
                e.value = value;
                e.rawValue.reset();
                changed = true;
            }
            found = true;
        }
    if (!found) {
        target->entries.append({key, value, false, std::nullopt});
        changed = true;
    }
    return changed;
}

bool SettingsStore::isWrittenAsIs(const QString& application) const
{
    // A value saved again unchanged need not cost a write and a flush to disk (start-up saves
    // several every time), as long as the file is there and already private.
    const QFileInfo info(filePath(application));
    return info.isFile() && info.permissions() == (QFile::ReadOwner | QFile::WriteOwner |
                                                   QFile::ReadUser | QFile::WriteUser);
}

bool SettingsStore::save(const QString& application, const QString& section, const QString& key,
                         const QString& value)
{
    File& file = load(application);
    if (!setInMemory(file, section, key, value) && isWrittenAsIs(application))
        return true;
    return write(application, file);
}

bool SettingsStore::saveAll(const QString& application, const QString& section,
                            const QList<std::pair<QString, QString>>& values)
{
    File& file = load(application);
    bool changed = false;
    for (const auto& [key, value] : values)
        changed = setInMemory(file, section, key, value) || changed;
    if (!changed && isWrittenAsIs(application))
        return true;
    return write(application, file);
}

QString SettingsStore::boolText(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

bool SettingsStore::toBool(const QString& text, bool defaultValue)
{
    const QString t = text.trimmed();
    if (t.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
        return true;
    if (t.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
        return false;
    bool ok = false;
    const double n = t.toDouble(&ok);
    return ok ? n != 0 : defaultValue;
}

bool SettingsStore::getBool(const QString& application, const QString& section, const QString& key,
                            bool defaultValue) const
{
    return toBool(get(application, section, key, boolText(defaultValue)), defaultValue);
}

bool SettingsStore::saveBool(const QString& application, const QString& section, const QString& key,
                             bool value)
{
    return save(application, section, key, boolText(value));
}
