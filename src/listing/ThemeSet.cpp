#include "listing/ThemeSet.h"

#include "platform/SettingsStore.h"

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

MaybeMessage CreateThemeSet(const QString&, const QDate&, qint64)
{
    return {};
}
ThemeNamesResult listThemeNames(const QString&)
{
    return {};
}
ThemeLoadResult loadTheme(const QString&, const QString&, const QString&)
{
    return {};
}
ThemeLoadResult readThemeForListing(const QString&, const QString&)
{
    return {};
}
MaybeMessage appendTheme(const QString&, const Theme&)
{
    return {};
}
MaybeMessage appendNewTheme(const QString&, const QString&, qint64)
{
    return {};
}
MaybeMessage replaceTheme(const QString&, const Theme&, const QString&)
{
    return {};
}
MaybeMessage deleteTheme(const QString&, const QString&, const QString&)
{
    return {};
}
QString expandPathToken(const QString& path, const QString&, const QString&, const QString&)
{
    return path;
}
QString RoleTexts::text(int) const
{
    return {};
}
void RoleTexts::setText(int, const QString&) {}
RoleTexts loadRoleTexts(const SettingsStore&)
{
    return {};
}
bool saveRoleTexts(SettingsStore&, const RoleTexts&)
{
    return true;
}
