#include "platform/SettingsStore.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
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

QString read(const QString& field)
{
    QString text = field.trimmed();
    if (text.size() >= 2 && text.front() == u'"' && text.back() == u'"')
        text = text.mid(1, text.size() - 2);
    return unescaped(text);
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
    if (in.open(QIODevice::ReadOnly | QIODevice::Text)) {
        Section* current = nullptr;
        while (!in.atEnd()) {
            const QString line = QString::fromUtf8(in.readLine()).trimmed();
            if (line.isEmpty() || line.startsWith(u';') || line.startsWith(u'#'))
                continue;
            if (line.startsWith(u'[') && line.endsWith(u']')) {
                const QString name = line.mid(1, line.size() - 2);
                current = nullptr;
                for (Section& s : file.sections)
                    if (sameName(s.name, name))
                        current = &s;
                if (!current) {
                    file.sections.append({name, {}});
                    current = &file.sections.last();
                }
                continue;
            }
            const qsizetype eq = line.indexOf(u'=');
            if (eq <= 0 || !current)
                continue; // a damaged line is skipped, the rest of the file still counts
            const QString key = line.left(eq).trimmed();
            const QString value = read(line.mid(eq + 1));
            bool found = false;
            for (Entry& e : current->entries)
                if (sameName(e.key, key)) {
                    e.value = value;
                    found = true;
                }
            if (!found)
                current->entries.append({key, value});
        }
    }
    return *m_files.insert(id, file);
}

bool SettingsStore::write(const QString& application, const File& file) const
{
    QDir().mkpath(m_folder);
    QSaveFile out(filePath(application));
    if (!out.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    QByteArray data;
    for (const Section& s : file.sections) {
        data += '[' + s.name.toUtf8() + "]\n";
        for (const Entry& e : s.entries)
            data += e.key.toUtf8() + '=' + written(e.value).toUtf8() + '\n';
        data += '\n';
    }
    out.write(data);
    return out.commit();
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

void SettingsStore::setInMemory(File& file, const QString& section, const QString& key,
                                const QString& value)
{
    Section* target = nullptr;
    for (Section& s : file.sections)
        if (sameName(s.name, section))
            target = &s;
    if (!target) {
        file.sections.append({section, {}});
        target = &file.sections.last();
    }
    bool found = false;
    for (Entry& e : target->entries)
        if (sameName(e.key, key)) {
            e.value = value;
            found = true;
        }
    if (!found)
        target->entries.append({key, value});
}

bool SettingsStore::save(const QString& application, const QString& section, const QString& key,
                         const QString& value)
{
    File& file = load(application);
    setInMemory(file, section, key, value);
    return write(application, file);
}

bool SettingsStore::saveAll(const QString& application, const QString& section,
                            const QList<std::pair<QString, QString>>& values)
{
    File& file = load(application);
    for (const auto& [key, value] : values)
        setInMemory(file, section, key, value);
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
