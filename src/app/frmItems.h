#pragma once

#include "db/DataBinder.h"
#include "db/RecordSet.h"
#include "web/WebCommands.h"

#include <QHash>
#include <QMainWindow>
#include <QPixmap>
#include <array>
#include <memory>
#include <optional>

namespace Ui {
class frmItems;
}
class QAction;
class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;
struct AppContext;
class SettingsStore;
struct ListingResult;
struct ComposedNote;
class frmFind;
class ItemListPanel;
class frmAdStudio;
class frmEndingAuction;

// The main window: browses and edits one item at a time through Data1, switches between the
// All, Active and Inactive views, and dispatches every menu and toolbar command.
class frmItems : public QMainWindow, private ItemWindowPort
{
    Q_OBJECT
public:
    enum class View
    {
        None,
        All,
        Active,
        Inactive
    };

    // The view the window reopens, from the "ItemsViewed" setting; none for another value.
    static std::optional<View> savedView(const SettingsStore& store);
    static QString viewSource(View view);

    // screenPixels decides the default width and whether the view buttons fit.
    frmItems(AppContext& ctx, QSize screenPixels, QWidget* parent = nullptr);
    ~frmItems() override;

    RecordSet& data() { return *Data1; }
    View currentView() const { return m_view; }
    // The toolbar button with the given key ("Add", "Next", "PList", ...).
    QAction* toolButton(const QString& key) const { return m_toolButtons.value(key); }
    QString fieldText(int index) const;
    void setFieldText(int index, const QString& text);
    bool listingRemote() const { return m_remote; }
    int beepCount() const { return m_beeps; }

    // Commands, callable from other windows and tests as the menu items run them.
    void mnuAll_Click();
    void mnuOpen_Click();
    void mnuClosed_Click();
    void mnuFirst_Click();
    void mnuPrevious_Click();
    void mnuNext_Click();
    void mnuLast_Click();
    void mnuAdd_Click();
    void mnuDelete_Click();
    void mnuDupAuc_Click();
    void mnuItemsDuplicate_Click();
    void mnuFind_Click();
    void mnuFindAgain_Click();
    void mnuViewToolbar_Click();
    void mnuViewStatusBar_Click();
    void mnuHelpDoc_Click();
    void mnuTBHome_Click();
    void mnuPulsewatch_Click();
    void mnuAbout_Click();
    void mnuListing_Click();
    void mnuOptions_Click();
    void mnuUpload_Click();
    void mnuStart_Click();
    void mnuEbayList_Click();
    void mnuAllOpenRep_Click();
    void mnuEnding_Click();
    void mnuCleanup_Click();
    void mnuExportItems_Click();
    void mnuImportItems_Click();
    void cmdAdStudio_Click();
    void cmdFind_Click(int index);
    void UpdateNavigation();
    // Shows picture 1, 2 or 3 (field index 5, 6, 7); returns true when it is too large.
    bool previewPicture(int fieldIndex);
    void rebuildLinksMenu();

    frmFind& findDialog();
    // The theme editor: created on first use, then only hidden.
    frmAdStudio& adStudio();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    // What the auction-site commands borrow from this window.
    QString boxText(int index) const override { return fieldText(index); }
    QString lengthText() const override;
    void saveRecord() override;
    void rereadRecord() override;
    void refreshView() override;
    void checkSiteView(SiteView view) override;
    QString startFormListing() override;
    void openOptions() override;
    QWidget* ownerWindow() override { return this; }

    // After the sale: the note a note command composed goes to a note window.
    void showComposedNote(const ComposedNote& note);
    frmEndingAuction* endingWindow();
    frmEndingAuction* joinedEndingWindow(frmEndingAuction* ending);
    void cleanupAfterShipping();
    void showPosition();
    void standOnEbayId(const QString& ebayId);
    void showCleanup();
    QStringList picturePaths() const;

    ListingResult runListing(bool remote, bool escape);
    void buildToolbar();
    void bindFields();
    void connectCommands();
    void openView(View view);
    void addItem();
    void onReposition();
    // The date a date box shows; invalid when it is empty or cannot be read.
    QDate shownDate(int index) const;
    void onFieldChanged(int index);
    void onFieldLeft(int index);
    void onLengthChosen();
    void applyLeaveDefaults(DataAction action);
    void setEndDateFromLength(int days);
    void showLogo();
    void setCommand(const QString& key, QAction* menu, bool enabled);
    void runFind(bool fromFirst, const QString& criteria);
    void beep();
    int counter(const QLineEdit* box) const;
    void scrollPicture();

    AppContext& m_ctx;
    std::unique_ptr<Ui::frmItems> ui;
    RecordSet* Data1;
    DataBinder m_binder;
    std::array<QWidget*, 15> txtFields{};
    QPixmap m_logo; // the picture shown for an item without pictures, and where it was read
    QString m_logoPath;
    std::array<QLabel*, 17> txtLabels{};
    std::array<QPushButton*, 3> cmdFind{};
    std::array<QAction*, 10> mnuLinks{};
    QHash<QString, QAction*> m_toolButtons;
    QHash<QAction*, bool> m_available; // commands whose work is not built yet stay disabled
    QLabel* m_timePanel = nullptr;
    QTimer* DateTimeTimer = nullptr;
    frmFind* m_find = nullptr;
    frmAdStudio* m_adStudio = nullptr;
    ItemListPanel* m_itemList = nullptr;
    View m_view = View::None;
    bool m_remote = false;
    bool m_unloading = false;
    int m_beeps = 0;
};
