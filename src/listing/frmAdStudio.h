#pragma once

#include "listing/ThemeSet.h"

#include <QMainWindow>
#include <QStringList>
#include <array>
#include <memory>

class QLineEdit;
class QPushButton;
struct AppContext;
struct ListingRequest;

namespace Ui {
class frmAdStudio;
}

// The Ad Studio: picks the theme used for listings, edits it one theme at a time and keeps
// themes in a themeset file. The item window creates it once and only hides it, because the
// listing command reads the current theme's name, media files and role texts from its controls.
class frmAdStudio : public QMainWindow
{
    Q_OBJECT

public:
    // Opens standard.tbt of the application folder (ctx.state.themeSetFN becomes its path),
    // loads its "Default" theme and reads the role texts from the settings.
    explicit frmAdStudio(AppContext& ctx, QWidget* parent = nullptr);
    ~frmAdStudio() override;

    // The theme the controls hold: the text of the theme list.
    QString currentThemeName() const;
    // Background image, sound, border, title and inline image, as the media boxes hold them.
    QStringList mediaPaths() const;
    // The controls as a theme record named after the current theme.
    Theme themeFromControls() const;
    // The texts of the Sub Heading, Payment, Tax, Reserve and See Other boxes.
    RoleTexts roleTexts() const;
    // Theme name, themeset path, media paths and flags, and role texts as the controls hold them.
    void fillListingRequest(ListingRequest& request) const;
    // True when the controls were edited since the theme was loaded or saved.
    bool isThemeChanged() const { return m_changed; }
    // The media upload command waits for the transfer window; the item window enables it.
    void setUploadMediaEnabled(bool enabled);

signals:
    // Actions > Preview: run the listing view with the current theme.
    void previewRequested();
    // Actions > Upload Media Files, or its button on the Media Files tab.
    void uploadMediaRequested();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void connectControls();
    void showMessage(const ThemeSetMessage& message);
    bool showIfAny(const MaybeMessage& message);

    bool fillThemeList();
    void selectThemeInList(const QString& name);
    void loadThemeIntoControls(const QString& name);
    void putTheme(const Theme& theme);
    void putRoleTexts(const RoleTexts& texts);
    void showColors();
    void showFont(int role);
    void setChanged() { m_changed = true; }

    bool saveTheme();
    void askToSaveChanges();
    void newTheme();
    void saveThemeAs();
    void deleteCurrentTheme();
    void newThemeSet();
    void openThemeSet();
    void openThemeSetDefault(const QString& path);

    void findMediaFile(QLineEdit* box, const QString& filter, const QString& folder);
    void checkMediaBox(QLineEdit* box);
    void chooseFont(int role);
    void chooseRoleColor(int role);
    void chooseTableColor();

    QString startFolder(const QString& path, const QString& fallback) const;

    std::unique_ptr<Ui::frmAdStudio> ui;
    AppContext& m_ctx;

    std::array<QLineEdit*, kFontGroupCount> m_txtListText{};
    std::array<QPushButton*, kFontGroupCount> m_cmdSwatch{};
    std::array<QPushButton*, kFontGroupCount> m_cmdFont{};
    std::array<QLineEdit*, kFontGroupCount> m_txtFont{};
    std::array<QLineEdit*, 5> m_mediaBoxes{};

    // Colours and fonts exactly as the record holds them, so values the screen cannot show
    // (system colour numbers, a face this machine lacks) go back to the file unchanged.
    qint64 m_tableColor = kNewThemeTableColor;
    std::array<FontGroup, kFontGroupCount> m_fonts = Theme::defaultFonts();

    bool m_changed = false;
    bool m_returningFocus = false; // a media box taking the focus back after its check
};
