#pragma once

#include <QList>
#include <QString>

class SettingsStore;

// Names of the settings store's applications and sections.
namespace Settings {
inline const QString kApp = QStringLiteral("Tallybid");
inline const QString kSiblingApp = QStringLiteral("Pulsewatch");
inline const QString kOptions = QStringLiteral("Options");
inline const QString kSystem = QStringLiteral("System");
inline const QString kSystemData = QStringLiteral("SystemData");
} // namespace Settings

enum class SettingType
{
    Text,
    Boolean,
    Integer,
    Single
};

// One stored preference: where it lives, what it holds and what a reader gets when it was
// never written.
struct SettingDef
{
    QString section;
    QString key;
    SettingType type;
    QString defaultValue;
};

// The one table of every key the program reads or writes.
const QList<SettingDef>& settingsCatalogue();
// Keys are compared without letter case; nullptr for a key the catalogue does not know.
const SettingDef* findSetting(const QString& section, const QString& key);
// The catalogued default (empty for an unknown key).
QString settingDefault(const QString& section, const QString& key);

// Reads a catalogued Tallybid setting with its catalogued default.
QString readSetting(const SettingsStore& store, const QString& section, const QString& key);

// Default addresses whose hosts are ours to choose.
namespace DefaultAddress {
inline const QString kEbayHost = QStringLiteral("http://cgi.ebay.com");
inline const QString kHomePage = QStringLiteral("https://tallybid.org/");
inline const QString kOldLeaveFeedback =
    QStringLiteral("http://pages.ebay.com/aw/user-feedback.html");
} // namespace DefaultAddress

// The three parcel-tracking links seeded into empty Links slots.
struct DefaultLink
{
    QString name;
    QString url;
};
const QList<DefaultLink>& defaultLinks();

// Start-up work on the store: default links into empty slots, the old feedback address and the
// old viewing directory carried over to their current keys.
void seedDefaultLinks(SettingsStore& store);
void migrateSettings(SettingsStore& store);

// "Resize pictures for the web before upload": on for new settings, off for settings saved
// before the choice existed, until the Options dialog writes it.
bool readResizeForWeb(const SettingsStore& store);

// The bar switches are read as "Toolbar"/"Statusbar" and written as "ToolBar"/"StatusBar";
// the store does not tell letter case apart, so both name one value.
bool readToolbarVisible(const SettingsStore& store);
bool readStatusbarVisible(const SettingsStore& store);
void saveToolbarVisible(SettingsStore& store, bool visible);
void saveStatusbarVisible(SettingsStore& store, bool visible);
