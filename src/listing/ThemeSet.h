#pragma once

#include "platform/Prompts.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <array>
#include <optional>

class SettingsStore;

// Themes and themeset files (.tbt).
//
// A themeset is a text file of comma-separated records, one per line, ended by CR LF: four
// header records of two fields, then one record of 50 fields per theme. Strings are quoted
// (with no escaping, so they cannot hold a double quote), numbers are bare digits, Booleans
// are #TRUE#/#FALSE# and dates #yyyy-mm-dd#. Files are read field by field; line ends are
// separators like commas, so a record is simply the next 50 fields. New files are UTF-8; a file
// that is not valid UTF-8 is Windows-1252 text and is written back in that code page.

inline constexpr int kFontGroupCount = 7;
inline constexpr int kThemeFieldCount = 50;

// Text roles, the index of their font group and of the Ad Studio's text boxes.
namespace Role {
inline constexpr int Heading = 0;
inline constexpr int SubHeading = 1;
inline constexpr int Description = 2;
inline constexpr int PayOptions = 3;
inline constexpr int TaxMessage = 4;
inline constexpr int ReserveMessage = 5;
inline constexpr int SeeOther = 6;
} // namespace Role

// A new theme's table colour: the white background of the editor's text boxes.
inline constexpr qint64 kNewThemeTableColor = 0xFFFFFF;

struct FontGroup
{
    QString face = QStringLiteral("MS Sans Serif");
    qint64 color = 0; // Windows RGB value, red in the low byte
    double size = 10; // points; the editor may set fractions, loading rounds them
    bool bold = false;
    bool italic = false;

    bool operator==(const FontGroup&) const = default;
};

struct Theme
{
    QString name;
    qint64 tableColor = kNewThemeTableColor;
    QString backgroundImage;
    QString soundFile;
    qint64 borderWidth = 4;
    QString cellAlign = QStringLiteral("Left");
    bool loop = true;
    QString borderImage;
    bool borderImgTop = true;
    bool borderImgBot = true;
    QString titleImage;
    bool titleImgLeft = true;
    bool titleImgRight = true;
    QString inlineImage;
    bool inlineImg = true;
    std::array<FontGroup, kFontGroupCount> fonts = defaultFonts();

    // The values a theme gets when it is created with "New" (or as a themeset's "Default").
    static Theme newTheme(const QString& name, qint64 tableColor = kNewThemeTableColor);
    // MS Sans Serif, black, not bold, not italic, at 16, 10, 12, 8, 8, 10 and 10 points.
    static std::array<FontGroup, kFontGroupCount> defaultFonts();

    bool operator==(const Theme&) const = default;
};

// A message for the user, shown by the caller through Prompts in the order received.
struct ThemeSetMessage
{
    QString text;
    QString title;
    PromptIcon icon = PromptIcon::Exclamation;

    bool operator==(const ThemeSetMessage&) const = default;
};

// Every operation returns its message (empty when it went through).
using MaybeMessage = std::optional<ThemeSetMessage>;

struct ThemeNamesResult
{
    QStringList names; // file order, duplicates kept
    MaybeMessage message;
};

struct ThemeLoadResult
{
    std::optional<Theme> theme;
    MaybeMessage message;
};

// Creates (or truncates) a themeset holding the header and a "Default" theme.
MaybeMessage CreateThemeSet(const QString& path, const QDate& today = QDate::currentDate(),
                            qint64 tableColor = kNewThemeTableColor);

// The names of every theme, in file order.
ThemeNamesResult listThemeNames(const QString& path);

// The first theme of that name, with "AppBackgrPath", "AppImagePath" and "AppSoundPath" at the
// start of its media paths replaced by the folders under appPath, and font sizes rounded to
// whole points (half to even).
ThemeLoadResult loadTheme(const QString& path, const QString& name, const QString& appPath);

// The stricter lookup the listing generator uses: an empty file, or one that ends after its
// first header record, is reported as "Invalid Themeset File". Paths are left unexpanded.
ThemeLoadResult readThemeForListing(const QString& path, const QString& name);

// Adds a record at the end of the file as the editor holds it (no duplicate check). It starts
// right after the last field, so a file that read before reads with the new theme after it.
MaybeMessage appendTheme(const QString& path, const Theme& theme);
// Adds a record with the values of a new theme, in the form a new themeset's "Default" has.
MaybeMessage appendNewTheme(const QString& path, const QString& name,
                            qint64 tableColor = kNewThemeTableColor);

// Rewrites the themeset with the record of theme.name replaced by theme (a name not in the file
// leaves the file as it was). Other records are kept as they were, except that their font
// sizes become whole points. The copy is written to appPath's "Temp.tbt" and then moved over
// the themeset in one step, so an interruption leaves either the old or the new file whole.
MaybeMessage replaceTheme(const QString& path, const Theme& theme, const QString& appPath);
// Rewrites the themeset without every record of that name; "Default" is refused.
MaybeMessage deleteTheme(const QString& path, const QString& name, const QString& appPath);

// Expands one media path token ("AppBackgrPath" for backgrounds, "AppImagePath",
// "AppSoundPath"); a path that does not start with the token, letter case included, is kept.
QString expandPathToken(const QString& path, const QString& token, const QString& folder,
                        const QString& appPath);

// The themeset file's texts and names.
namespace ThemeSetText {
inline const QString kStandardFile = QStringLiteral("standard.tbt");
inline const QString kTempFile = QStringLiteral("Temp.tbt");
inline const QString kDefaultTheme = QStringLiteral("Default");
inline const QString kSubject = QStringLiteral("Tallybid Ad Themes");
inline const QString kCreatedBy = QStringLiteral("The Tallybid Workshop");
} // namespace ThemeSetText

// The user's texts of the roles that are not part of a theme, as the Ad Studio holds them.
struct RoleTexts
{
    QString subHeading;
    QString payOptions;
    QString taxMsg;
    QString noReserve;
    QString seeOther;

    // By text role index (1, 3, 4, 5, 6); other indexes have no stored text.
    QString text(int role) const;
    void setText(int role, const QString& value);

    bool operator==(const RoleTexts&) const = default;
};

// Read from the "Options" settings with the Ad Studio's defaults (its payment text differs
// from the settings catalogue's on purpose).
RoleTexts loadRoleTexts(const SettingsStore& store);
// Stored in the order PayOptions, SubHeading, TaxMsg, NoReserve, SeeOther; false when the
// settings file could not be written.
bool saveRoleTexts(SettingsStore& store, const RoleTexts& texts);
