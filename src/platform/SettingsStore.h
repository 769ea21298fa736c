#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <optional>
#include <utility>

// Text values kept by application, section and key: one INI file per application in a
// configuration folder. Section and key names are compared without letter case ("ToolBar" and
// "Toolbar" are one value); the spelling first written is the one kept in the file.
// Every save rewrites the file atomically, so a crash never leaves half a file behind. The files
// hold passwords: they and the folder made for them are readable by the user alone.
class SettingsStore
{
public:
    // The user's configuration folder ($XDG_CONFIG_HOME/tallybid, or ~/.config/tallybid).
    static QString defaultFolder();

    explicit SettingsStore(QString folder = defaultFolder());

    QString folder() const { return m_folder; }
    QString filePath(const QString& application) const;

    QString get(const QString& application, const QString& section, const QString& key,
                const QString& defaultValue = {}) const;
    bool contains(const QString& application, const QString& section, const QString& key) const;
    // Returns false when the file could not be written; the value stays in memory either way.
    bool save(const QString& application, const QString& section, const QString& key,
              const QString& value);
    // Several keys of one section in a single rewrite of the file.
    bool saveAll(const QString& application, const QString& section,
                 const QList<std::pair<QString, QString>>& values);

    // Booleans are kept as "True"/"False"; reading also accepts numbers and any letter case.
    bool getBool(const QString& application, const QString& section, const QString& key,
                 bool defaultValue) const;
    bool saveBool(const QString& application, const QString& section, const QString& key,
                  bool value);
    static QString boolText(bool value);
    static bool toBool(const QString& text, bool defaultValue);

private:
    // A line that is not UTF-8 was written elsewhere in the Windows-1252 code page. It is
    // written back in that code page while it can hold the line's text, and a value the
    // program has not changed keeps the very bytes it was read from.
    struct Entry
    {
        QString key;
        QString value;
        bool eightBit = false;
        std::optional<QByteArray> rawValue;
    };
    struct Section
    {
        QString name;
        QList<Entry> entries;
        bool eightBit = false;
    };
    struct File
    {
        QList<Section> sections;
    };

    File& load(const QString& application) const;
    bool write(const QString& application, const File& file) const;
    bool isWrittenAsIs(const QString& application) const;
    // Returns whether the file's contents changed.
    static bool setInMemory(File& file, const QString& section, const QString& key,
                            const QString& value);

    QString m_folder;
    mutable QHash<QString, File> m_files; // by lower-case application name
};
