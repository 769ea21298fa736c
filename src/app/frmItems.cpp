#include "app/frmItems.h"

#include "aftersale/frmCleanup.h"
#include "aftersale/frmEndingAuction.h"
#include "aftersale/frmNote.h"
#include "app/BackupCommands.h"
#include "app/CsvCommands.h"
#include "app/ItemListPanel.h"
#include "app/Module1.h"
#include "app/Startup.h"
#include "app/frmFind.h"
#include "app/frmTools.h"
#include "app/texts.h"
#include "db/ItemSql.h"
#include "ftp/UploadCommandUi.h"
#include "listing/ListingGenerator.h"
#include "listing/frmAdStudio.h"
#include "platform/AppImages.h"
#include "platform/DateText.h"
#include "platform/KeyFilter.h"
#include "platform/PictureTools.h"
#include "platform/PrintedWindows.h"
#include "platform/Prompts.h"
#include "platform/SettingsStore.h"
#include "platform/Shell.h"
#include "platform/WindowFitUi.h"
#include "platform/WindowTeardown.h"
#include "reports/texts.h"
#include "settings/AppContext.h"
#include "settings/SettingsCatalogue.h"
#include "settings/frmOptions.h"
#include "ui_frmItems.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <utility>

namespace {

// Toolbar buttons in their order: key, image, the menu command they run.
struct ToolDef
{
    const char* key;
    const char* image;
    const char* menu;
    const char* tip;
};
constexpr ToolDef kTools[] = {
    {"Options", "Options", "mnuOptions", "Options"},
    {"Add", "Add", "mnuAdd", "Add a new item"},
    {"Del", "Del", "mnuDelete", "Delete this item"},
    {"First", "First", "mnuFirst", "First item"},
    {"Prev", "Prev", "mnuPrevious", "Previous item"},
    {"Next", "Next", "mnuNext", "Next item"},
    {"Last", "Last", "mnuLast", "Last item"},
    {"All", "ViewAll", "mnuAll", "View all items"},
    {"Open", "ViewActive", "mnuOpen", "View active items"},
    {"Closed", "ViewInactive", "mnuClosed", "View inactive items"},
    {"Find", "Find", "mnuFind", "Find an item"},
    {"Upload", "Upload", "mnuUpload", "Upload the item's images"},
    {"Ended", "AutoMail", "mnuEnding", "Ending an auction"},
    {"PList", "Preview", "mnuListing", "View the formatted listing"},
    {"EAdd", "AddItem", "mnuStart", "eBay's start auction screen"},
    {"EList", "ViewListing", "mnuEbayList", "eBay's listing for this item"},
    {"EAll", "ViewAllAuc", "mnuAllOpenRep", "eBay's all open item report"},
    {"Exit", "Exit", "mnuExit", "Exit"},
    {"Help", "Help", "mnuHelpDoc", "User's Guide"},
};

// Separators after these keys group the toolbar.
bool separatorAfter(const QString& key)
{
    return key == QLatin1String("Del") || key == QLatin1String("Last") ||
           key == QLatin1String("Find") || key == QLatin1String("EAll");
}

constexpr int kPreviewTwipsLimit = 32000;
const QColor kPreviewedLabel(0, 0, 0x80); // the colour value 8388608

// The picture labels' two colours: black and dark blue where they read on the window's
// background, and the palette's own text colour and a light blue where it is dark.
std::pair<QColor, QColor> pictureLabelColors(const QPalette& palette)
{
    const QColor background = palette.color(QPalette::Window);
    if (background.lightnessF() >= 0.5)
        return {QColor(Qt::black), kPreviewedLabel};
    return {palette.color(QPalette::WindowText), QColor(0x8c, 0xb4, 0xff)};
}

bool isMoneyField(int index)
{
    return index >= 8 && index <= 10;
}

bool isPictureField(int index)
{
    return index >= 5 && index <= 7;
}

bool allDigits(const QString& text)
{
    if (text.isEmpty())
        return false;
    for (const QChar c : text)
        if (c < u'0' || c > u'9')
            return false;
    return true;
}

} // namespace

// The toolbar pictures live in a static library; their resources must be registered by hand.
static void initResources()
{
    Q_INIT_RESOURCE(icons);
}

frmItems::frmItems(AppContext& ctx, QSize screenPixels, QWidget* parent)
    : QMainWindow(parent), m_ctx(ctx), ui(std::make_unique<Ui::frmItems>()),
      Data1(new RecordSet(ctx.itemDatabase, this))
{
    initResources();
    // Latin form text gains nothing from shaping (ligatures, kerning), and laying out the
    // boxes of a record costs a quarter less without it; scripts that need it still get it.
    QFont unshaped = font();
    unshaped.setStyleStrategy(QFont::PreferNoShaping);
    setFont(unshaped);
    ui->setupUi(this);
    ui->txtFields_0->setFocusPolicy(Qt::ClickFocus);
    // Editable only once its lengths are in: made editable first, the box passed every item's
    // text on to its completer as the form set it, a third of a millisecond of every start.
    // Given its line box directly, it is editable as setEditable() makes it, but its list's
    // popup is built when first opened rather than now, and set up for an editable box then.
    auto* lengthText = new QLineEdit(ui->comboLength);
    lengthText->setPalette(ui->comboLength->palette());
    ui->comboLength->setLineEdit(lengthText);
    ui->comboLength->setCurrentText(QStringLiteral("7"));
    Data1->setObjectName(QStringLiteral("Data1"));
    for (int i = 0; i < 15; ++i)
        txtFields[i] = findChild<QWidget*>(QStringLiteral("txtFields_%1").arg(i));
    for (int i = 0; i < 17; ++i)
        txtLabels[i] = findChild<QLabel*>(QStringLiteral("txtLabels_%1").arg(i));
    for (int i = 0; i < 3; ++i)
        cmdFind[i] = findChild<QPushButton*>(QStringLiteral("cmdFind_%1").arg(i));
    for (int i = 0; i < 10; ++i)
        mnuLinks[i] = findChild<QAction*>(QStringLiteral("mnuLinks_%1").arg(i));

    // Reports: one window at a time; what was typed into the current item is saved first, so
    // the figures include it.
    connect(ui->mnuActionsReports, &QAction::triggered, this, [this] {
        Data1->update();
        auto* reports = findChild<QWidget*>(ReportTexts::kWindowName, Qt::FindDirectChildrenOnly);
        if (!reports) {
            QString why;
            reports = PrintedWindows::makeReports(m_ctx, this, why);
            if (!reports) {
                m_ctx.prompts.message(why, ReportTexts::kTitle, PromptIcon::Critical);
                return;
            }
            reports->setAttribute(Qt::WA_DeleteOnClose);
        }
        reports->show();
        reports->raise();
        reports->activateWindow();
    });

    buildToolbar();
    bindFields();
    connectCommands();

    // Backups of tb2.mdb: two File commands above Exit's separator. What was typed into the
    // current item is written first, so it is part of the copy.
    {
        auto* backUp = new QAction(Texts::kBackUpNowMenu, this);
        backUp->setObjectName(QStringLiteral("mnuBackUpNow"));
        auto* restore = new QAction(Texts::kRestoreBackupMenu, this);
        restore->setObjectName(QStringLiteral("mnuRestoreBackup"));
        const QList<QAction*> file = ui->mnuFile->actions();
        const qsizetype exit = file.indexOf(ui->mnuExit);
        QAction* before =
            exit > 0 && file.at(exit - 1)->isSeparator() ? file.at(exit - 1) : ui->mnuExit;
        ui->mnuFile->insertActions(before, {backUp, restore});
        connect(backUp, &QAction::triggered, this, [this] {
            Data1->update();
            BackupCommands::backUpNow(m_ctx, this);
        });
        connect(restore, &QAction::triggered, this, [this] {
            Data1->update();
            // The rows Data1 held are gone: read the restored ones before the view's own
            // leave rules run, so nothing of the old current item is written into them.
            BackupCommands::restoreBackup(m_ctx, this, [this] {
                Data1->refresh();
                if (m_view != View::None)
                    openView(m_view);
            });
        });
    }
    // CSV export and import: two File commands beside the backup ones.
    {
        auto* exportItems = new QAction(Texts::kExportItemsMenu, this);
        exportItems->setObjectName(QStringLiteral("mnuExportItems"));
        auto* importItems = new QAction(Texts::kImportItemsMenu, this);
        importItems->setObjectName(QStringLiteral("mnuImportItems"));
        // Above the backup commands, which keep their place next to Exit's separator.
        auto* backUp = findChild<QAction*>(QStringLiteral("mnuBackUpNow"));
        ui->mnuFile->insertActions(backUp ? backUp : ui->mnuExit, {exportItems, importItems});
        connect(exportItems, &QAction::triggered, this, &frmItems::mnuExportItems_Click);
        connect(importItems, &QAction::triggered, this, &frmItems::mnuImportItems_Click);
    }

    m_timePanel = new QLabel(this);
    m_timePanel->setObjectName(QStringLiteral("Time"));
    m_timePanel->setMinimumWidth(90);
    m_timePanel->setAlignment(Qt::AlignCenter);
    ui->sbStatus->addPermanentWidget(m_timePanel);
    DateTimeTimer = new QTimer(this);
    DateTimeTimer->setObjectName(QStringLiteral("DateTimeTimer"));
    connect(DateTimeTimer, &QTimer::timeout, this, [this] {
        m_timePanel->setText(QLocale().toString(QTime::currentTime(), QLocale::ShortFormat));
    });
    DateTimeTimer->start(1000);
    m_timePanel->setText(QLocale().toString(QTime::currentTime(), QLocale::ShortFormat));

    // Size: the saved height and width (twips), the width default depending on the screen.
    const Startup::ScreenRule rule = Startup::screenRule(screenPixels);
    const auto twips = [&](const QString& key, int fallback) {
        const QString saved = readSetting(m_ctx.store, Settings::kOptions, key);
        bool ok = false;
        const double value = saved.toDouble(&ok);
        return ok && value > 0 ? int(value / Startup::kTwipsPerPixel) : fallback;
    };
    const int height = twips(QStringLiteral("MainFormHeight"), this->height());
    const int width =
        int(m_ctx.store
                .get(Settings::kApp, Settings::kOptions, QStringLiteral("MainFormWidth"),
                     QString::number(rule.defaultWidthTwips))
                .toDouble() /
            Startup::kTwipsPerPixel);
    // A size saved on a larger screen, or at another scale, is cut to fit this one.
    fitToScreen(*this, QSize(width, height));
    if (rule.hideViewButtons)
        for (const char* key : {"All", "Open", "Closed", "Find"})
            m_toolButtons.value(QString::fromLatin1(key))->setVisible(false);

    // The item list beside the item: choosing a row moves Data1 there as Find does.
    m_itemList = ItemListPanel::dockInto(*this, *ui->mnuView, *Data1, m_ctx.store);
    connect(m_itemList, &ItemListPanel::itemChosen, this, [this](qint64 key) {
        Data1->setBookmark(key);
        showPosition();
    });

    // Upload and listing stay off until an item says they can work.
    setCommand(QStringLiteral("Upload"), ui->mnuUpload, false);
    setCommand(QStringLiteral("PList"), ui->mnuListing, false);
    if (m_ctx.store.get(Settings::kSiblingApp, Settings::kSystemData, QStringLiteral("AppPath"))
            .isEmpty()) {
        ui->mnuPulsewatch->setVisible(false);
        ui->mnuPWdash->setVisible(false);
    }
    ui->comboImgPlace->setCurrentText(QStringLiteral("Left"));
    ui->mnuViewToolbar->setChecked(true);
    ui->mnuViewStatusBar->setChecked(true);
    if (!readToolbarVisible(m_ctx.store))
        ui->mnuViewToolbar->trigger();
    if (!readStatusbarVisible(m_ctx.store))
        ui->mnuViewStatusBar->trigger();
    rebuildLinksMenu();

    // The keys start-up read ahead serve the reopened view alone.
    std::shared_ptr<KeyPrefetch> startupKeys = std::move(m_ctx.state.startupKeys);
    if (const std::optional<View> viewed = savedView(m_ctx.store)) {
        Data1->usePrefetchedKeys(std::move(startupKeys));
        openView(*viewed);
    }
}

frmItems::~frmItems()
{
    stopHearingChildren(*this); // the length box takes up a typed length as the window closes
}

void frmItems::buildToolbar()
{
    for (const ToolDef& t : kTools) {
        const QString key = QString::fromLatin1(t.key);
        auto* menu = findChild<QAction*>(QString::fromLatin1(t.menu));
        auto* button = new QAction(
            AppImages::pngIcon(QStringLiteral(":/icons/%1.png").arg(QLatin1String(t.image))),
            menu->text(), this);
        button->setObjectName(QLatin1String("Toolbar1_") + key);
        button->setData(key);
        button->setToolTip(QString::fromLatin1(t.tip));
        // The toolbar compares the key and runs the menu command.
        connect(button, &QAction::triggered, menu, [menu] { menu->trigger(); });
        ui->Toolbar1->addAction(button);
        if (separatorAfter(key))
            ui->Toolbar1->addSeparator();
        m_toolButtons.insert(key, button);
    }
    for (auto it = m_available.cbegin(); it != m_available.cend(); ++it)
        it.key()->setEnabled(false);
    for (const ToolDef& t : kTools) {
        auto* menu = findChild<QAction*>(QString::fromLatin1(t.menu));
        if (!m_available.value(menu, true))
            m_toolButtons.value(QString::fromLatin1(t.key))->setEnabled(false);
    }
}

void frmItems::bindFields()
{
    static const char* const columns[] = {
        "ID",           "EbayID",       "Category",           "ShortDescription", "Description",
        "Picture1Path", "Picture2Path", "Picture3Path",       "Reserve",          "MinBid",
        "Cost",         "LastPrice",    "DateAuctionStarted", "DateAuctionEnds",  "LastChecked"};
    for (int i = 0; i < 15; ++i)
        m_binder.bind(txtFields[i], QString::fromLatin1(columns[i]));
    m_binder.bind(ui->chkActive, QStringLiteral("Active"));
    Data1->setBinding(&m_binder);
    Data1->setValidateHook([this](DataAction action) { applyLeaveDefaults(action); });
    connect(Data1, &RecordSet::repositioned, this, &frmItems::onReposition);
    connect(Data1, &RecordSet::writeFailed, this, [this](const QString& why) {
        m_ctx.prompts.message(Texts::saveFailed(why), Texts::kSaveFailedTitle,
                              PromptIcon::Critical);
    });

    for (int i = 1; i < 15; ++i) {
        if (auto* line = qobject_cast<QLineEdit*>(txtFields[i]))
            connect(line, &QLineEdit::textChanged, this, [this, i] { onFieldChanged(i); });
        else if (auto* text = qobject_cast<QPlainTextEdit*>(txtFields[i]))
            connect(text, &QPlainTextEdit::textChanged, this, [this, i] { onFieldChanged(i); });
        txtFields[i]->installEventFilter(this);
    }
    for (int i = 4; i <= 6; ++i) {
        txtLabels[i]->installEventFilter(this);
        txtLabels[i]->setCursor(Qt::PointingHandCursor);
    }
    ui->comboLength->installEventFilter(this);
    ui->comboLength->setValidator(new QIntValidator(0, 999, ui->comboLength));
    connect(ui->comboLength, &QComboBox::activated, this, [this] { onLengthChosen(); });
    ui->Picture2->move(0, 0);
    for (QLineEdit* number : {ui->txtCurItem, ui->txtTotItem, ui->txtFields_0, ui->txtFields_8,
                              ui->txtFields_9, ui->txtFields_10, ui->txtFields_11})
        keepNumberWhole(*number);
    connect(ui->HScroll1, &QScrollBar::valueChanged, this, &frmItems::scrollPicture);
    connect(ui->VScroll1, &QScrollBar::valueChanged, this, &frmItems::scrollPicture);
    // The bars keep their room while hidden, so showing them never moves the controls below.
    for (QScrollBar* bar : {ui->HScroll1, ui->VScroll1}) {
        QSizePolicy policy = bar->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        bar->setSizePolicy(policy);
        bar->hide();
    }
}

void frmItems::connectCommands()
{
    const auto on = [this](QAction* action, auto slot) {
        connect(action, &QAction::triggered, this, slot);
    };
    on(ui->mnuExit, &QWidget::close);
    on(ui->mnuAdd, &frmItems::mnuAdd_Click);
    on(ui->mnuDelete, &frmItems::mnuDelete_Click);
    on(ui->mnuItemsDuplicate, &frmItems::mnuItemsDuplicate_Click);
    on(ui->mnuFirst, &frmItems::mnuFirst_Click);
    on(ui->mnuPrevious, &frmItems::mnuPrevious_Click);
    on(ui->mnuNext, &frmItems::mnuNext_Click);
    on(ui->mnuLast, &frmItems::mnuLast_Click);
    on(ui->mnuDupAuc, &frmItems::mnuDupAuc_Click);
    on(ui->mnuAll, &frmItems::mnuAll_Click);
    on(ui->mnuOpen, &frmItems::mnuOpen_Click);
    on(ui->mnuClosed, &frmItems::mnuClosed_Click);
    on(ui->mnuFind, &frmItems::mnuFind_Click);
    on(ui->mnuFindAgain, &frmItems::mnuFindAgain_Click);
    on(ui->mnuViewToolbar, &frmItems::mnuViewToolbar_Click);
    on(ui->mnuViewStatusBar, &frmItems::mnuViewStatusBar_Click);
    on(ui->mnuHelpDoc, &frmItems::mnuHelpDoc_Click);
    on(ui->mnuTBHome, &frmItems::mnuTBHome_Click);
    on(ui->mnuPulsewatch, &frmItems::mnuPulsewatch_Click);
    on(ui->mnuAbout, &frmItems::mnuAbout_Click);
    on(ui->mnuListing, &frmItems::mnuListing_Click);
    on(ui->mnuOptions, &frmItems::mnuOptions_Click);
    on(ui->mnuUpload, &frmItems::mnuUpload_Click);
    // The check marks of these say which page was shown last and are set by the commands alone:
    // one that stops early leaves them as they were, so the flip a click makes is taken back.
    const auto site = [this](QAction* action, void (frmItems::*command)()) {
        connect(action, &QAction::triggered, this, [this, action, command] {
            action->setChecked(!action->isChecked());
            (this->*command)();
        });
    };
    on(ui->mnuEnding, &frmItems::mnuEnding_Click);
    on(ui->mnuCleanup, &frmItems::mnuCleanup_Click);
    site(ui->mnuStart, &frmItems::mnuStart_Click);
    site(ui->mnuEbayList, &frmItems::mnuEbayList_Click);
    site(ui->mnuAllOpenRep, &frmItems::mnuAllOpenRep_Click);
    connect(ui->mnuToolsCalculator, &QAction::triggered, this, [this] {
        auto* tool = new frmCalculator(this);
        tool->setAttribute(Qt::WA_DeleteOnClose);
        tool->show();
    });
    connect(ui->mnu_Calendar, &QAction::triggered, this, [this] {
        auto* tool = new frmCalendar(this);
        tool->setAttribute(Qt::WA_DeleteOnClose);
        tool->show();
    });
    connect(ui->cmdAdStudio, &QPushButton::clicked, this, &frmItems::cmdAdStudio_Click);
    // The clipboard work is done by whichever box has the focus.
    const auto sendToFocus = [](const char* method) {
        if (QWidget* w = QApplication::focusWidget())
            QMetaObject::invokeMethod(w, method);
    };
    connect(ui->mnuCut, &QAction::triggered, this, [=] { sendToFocus("cut"); });
    connect(ui->mnuCopy, &QAction::triggered, this, [=] { sendToFocus("copy"); });
    connect(ui->mnuPaste, &QAction::triggered, this, [=] { sendToFocus("paste"); });
    for (int i = 0; i < 10; ++i)
        connect(mnuLinks[i], &QAction::triggered, this, [this, i] {
            OpenDocument(m_ctx.shell,
                         m_ctx.store.get(Settings::kApp, Settings::kOptions,
                                         QStringLiteral("LinkURL %1").arg(i + 1)),
                         m_ctx.state.appPath);
        });
    for (int i = 0; i < 3; ++i)
        connect(cmdFind[i], &QPushButton::clicked, this, [this, i] { cmdFind_Click(i); });
    connect(ui->optLocally, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            m_remote = false;
    });
    connect(ui->optRemotely, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            m_remote = true;
    });
}

QString frmItems::fieldText(int index) const
{
    return DataBinder::boxText(txtFields[index]);
}

void frmItems::setFieldText(int index, const QString& text)
{
    DataBinder::setBoxText(txtFields[index], text);
}

int frmItems::counter(const QLineEdit* box) const
{
    return int(box->text().trimmed().toDouble());
}

void frmItems::beep()
{
    ++m_beeps;
    QApplication::beep();
}

void frmItems::setCommand(const QString& key, QAction* menu, bool enabled)
{
    const bool on = enabled && m_available.value(menu, true);
    if (QAction* button = m_toolButtons.value(key))
        button->setEnabled(on);
    menu->setEnabled(on);
}

// ---------------------------------------------------------------- views and navigation

namespace {
struct ViewDef
{
    QString caption;
    QString source;
    QString saved; // the "ItemsViewed" setting
};

ViewDef viewDef(frmItems::View view)
{
    using View = frmItems::View;
    return view == View::All ? ViewDef{Texts::kCaptionAll, ItemSql::kAllView, QStringLiteral("All")}
           : view == View::Active
               ? ViewDef{Texts::kCaptionActive, ItemSql::kActiveView, QStringLiteral("Open")}
               : ViewDef{Texts::kCaptionInactive, ItemSql::kInactiveView, QStringLiteral("Closed")};
}
} // namespace

std::optional<frmItems::View> frmItems::savedView(const SettingsStore& store)
{
    const QString viewed = readSetting(store, Settings::kSystem, QStringLiteral("ItemsViewed"));
    for (const View view : {View::All, View::Active, View::Inactive}) {
        if (viewed == viewDef(view).saved)
            return view;
    }
    return std::nullopt;
}

QString frmItems::viewSource(View view)
{
    return viewDef(view).source;
}

void frmItems::openView(View view)
{
    const ViewDef def = viewDef(view);
    ui->mnuAll->setChecked(view == View::All);
    ui->mnuOpen->setChecked(view == View::Active);
    ui->mnuClosed->setChecked(view == View::Inactive);
    setWindowTitle(def.caption);

    Data1->close(); // what was typed into the record being left is kept
    m_view = view;
    Data1->setRecordSource(def.source);
    Data1->refresh();
    if (view != View::All && Data1->bof() && Data1->eof()) {
        ui->txtCurItem->setText(QStringLiteral("0"));
        ui->txtTotItem->setText(QStringLiteral("0"));
    } else if (Data1->eof()) {
        // The All view never shows nothing: an empty table gets its first item at once.
        addItem();
        ui->txtCurItem->setText(QStringLiteral("1"));
        ui->txtTotItem->setText(QStringLiteral("1"));
    } else {
        Data1->moveLast();
        ui->txtTotItem->setText(QString::number(Data1->recordCount()));
        Data1->moveFirst();
        ui->txtCurItem->setText(QStringLiteral("1"));
    }
    UpdateNavigation();
    // Switching views is frequent; the settings file is rewritten only when the view changed.
    const QString viewedKey = QStringLiteral("ItemsViewed");
    if (m_ctx.store.get(Settings::kApp, Settings::kSystem, viewedKey, QString()) != def.saved)
        m_ctx.store.save(Settings::kApp, Settings::kSystem, viewedKey, def.saved);
}

void frmItems::mnuAll_Click()
{
    openView(View::All);
}

void frmItems::mnuOpen_Click()
{
    openView(View::Active);
}

void frmItems::mnuClosed_Click()
{
    openView(View::Inactive);
}

void frmItems::mnuFirst_Click()
{
    Data1->moveFirst();
    ui->txtCurItem->setText(QStringLiteral("1"));
    UpdateNavigation();
}

void frmItems::mnuPrevious_Click()
{
    if (Data1->bof()) {
        beep();
        Data1->moveFirst();
        ui->txtCurItem->setText(QStringLiteral("1"));
    } else {
        Data1->movePrevious();
        ui->txtCurItem->setText(QString::number(counter(ui->txtCurItem) - 1));
        if (Data1->bof()) {
            beep();
            Data1->moveFirst();
            ui->txtCurItem->setText(QStringLiteral("1"));
        }
    }
    UpdateNavigation();
}

void frmItems::mnuNext_Click()
{
    if (Data1->eof()) {
        beep();
        Data1->moveLast();
        ui->txtCurItem->setText(QString::number(Data1->recordCount()));
    } else {
        Data1->moveNext();
        ui->txtCurItem->setText(QString::number(counter(ui->txtCurItem) + 1));
        if (Data1->eof()) {
            beep();
            Data1->moveLast();
            ui->txtCurItem->setText(QString::number(Data1->recordCount()));
        }
    }
    UpdateNavigation();
}

void frmItems::mnuLast_Click()
{
    Data1->moveLast();
    ui->txtCurItem->setText(QString::number(Data1->recordCount()));
    UpdateNavigation();
}

void frmItems::UpdateNavigation()
{
    const int total = counter(ui->txtTotItem);
    const int current = counter(ui->txtCurItem);
    setCommand(QStringLiteral("First"), ui->mnuFirst, total > 1);
    setCommand(QStringLiteral("Last"), ui->mnuLast, total > 1);
    setCommand(QStringLiteral("Prev"), ui->mnuPrevious, current > 1);
    setCommand(QStringLiteral("Next"), ui->mnuNext, total > current);
    setCommand(QStringLiteral("Del"), ui->mnuDelete, total > 1);
}

void frmItems::onReposition()
{
    const bool hasItem = Data1->hasCurrent();
    for (int i = 0; i < 15; ++i)
        txtFields[i]->setEnabled(hasItem);
    ui->chkActive->setEnabled(hasItem);
    for (QPushButton* b : cmdFind)
        b->setEnabled(hasItem);

    const bool hasEbayId = !fieldText(1).isEmpty();
    setCommand(QStringLiteral("Ended"), ui->mnuEnding, hasEbayId);
    setCommand(QStringLiteral("EList"), ui->mnuEbayList, hasEbayId);
    const bool hasPictures = !fieldText(5).trimmed().isEmpty() ||
                             !fieldText(6).trimmed().isEmpty() || !fieldText(7).trimmed().isEmpty();
    setCommand(QStringLiteral("Upload"), ui->mnuUpload, hasPictures);
    setCommand(QStringLiteral("PList"), ui->mnuListing,
               !(fieldText(3).isEmpty() && fieldText(4).isEmpty()));

    const QDate from = shownDate(12);
    const QDate to = shownDate(13);
    if (from.isValid() && to.isValid()) {
        const qint64 days = from.daysTo(to);
        ui->comboLength->setCurrentText(days > 10 || days < 3 ? QStringLiteral("7")
                                                              : QString::number(days));
    }
    previewPicture(5);
}

QDate frmItems::shownDate(int index) const
{
    // A box showing the record as read shows its stored date, so the stored text is read
    // instead of the display text: the same date at a fraction of the cost on every move.
    if (m_binder.showsRecord(txtFields[index])) {
        const QDateTime stored =
            DateText::fromStorage(Data1->storedValue(m_binder.column(txtFields[index])).toString());
        if (stored.isValid())
            return stored.date();
    }
    return DateText::fromDisplay(fieldText(index)).date();
}

// ---------------------------------------------------------------- pictures

void frmItems::showLogo()
{
    // Read once: most items show it, and reading a picture costs more than the rest of a move.
    const QString path = m_ctx.appFile(QStringLiteral("logovksm.gif"));
    if (m_logo.isNull() || path != m_logoPath) {
        m_logo = QPixmap(path);
        m_logoPath = path;
    }
    const QPixmap& logo = m_logo;
    ui->Picture2->setPixmap(logo);
    ui->Picture2->resize(logo.isNull() ? QSize(0, 0) : logo.size());
    ui->HScroll1->hide();
    ui->VScroll1->hide();
    scrollPicture(); // centred
}

bool frmItems::previewPicture(int fieldIndex)
{
    const QString path = fieldText(fieldIndex).trimmed();
    if (path.isEmpty()) {
        if (fieldIndex == 5)
            showLogo(); // an item without pictures shows the logo, not the last item's picture
        return false;
    }
    const auto [plain, previewed] = pictureLabelColors(QApplication::palette(txtLabels[4]));
    for (int i = 4; i <= 6; ++i) {
        // Setting a palette restyles the caption even when nothing changes; most moves keep it.
        const QColor wanted = i == fieldIndex - 1 ? previewed : plain;
        if (txtLabels[i]->palette().color(QPalette::WindowText) == wanted &&
            txtLabels[i]->testAttribute(Qt::WA_SetPalette))
            continue;
        QPalette p = txtLabels[i]->palette();
        p.setColor(QPalette::WindowText, wanted);
        txtLabels[i]->setPalette(p);
    }
    if (!QFileInfo(path).isFile()) {
        showLogo(); // a path still being typed, or one checked when the box is left
        return false;
    }
    const auto unreadable = [&](const QString& error) {
        m_ctx.prompts.message(path + QLatin1String("\n\n") + error, Texts::kInvalidPictureTitle,
                              PromptIcon::Critical);
        showLogo();
        return false;
    };
    const PictureTools::PictureInfo info = PictureTools::inspect(path);
    if (!info.ok())
        return unreadable(info.error);

    // Overhang of the picture (upright, as the camera meant it) over the frame, in twips,
    // becomes the scroll range.
    bool tooLarge = false;
    const auto setUp = [&](QScrollBar* bar, int overhangPixels) {
        int range = overhangPixels * Startup::kTwipsPerPixel;
        if (range > kPreviewTwipsLimit) {
            range = kPreviewTwipsLimit;
            tooLarge = true;
        }
        bar->blockSignals(true);
        bar->setRange(0, std::max(range, 0));
        bar->setValue(0);
        bar->setSingleStep(Startup::kTwipsPerPixel * 10);
        bar->setPageStep(Startup::kTwipsPerPixel * 100);
        bar->blockSignals(false);
        bar->setVisible(range > 0);
    };
    setUp(ui->HScroll1, info.size.width() - ui->Picture1->width());
    setUp(ui->VScroll1, info.size.height() - ui->Picture1->height());

    // Panning could only ever reach a corner of a picture this large: it is shown whole,
    // scaled to fit, with nothing to scroll. Decoding at the reduced size keeps a camera's
    // 12-megapixel photograph quick to show on every move to its item.
    QString error;
    const QImage image = PictureTools::readUpright(
        path, tooLarge ? ui->Picture1->contentsRect().size() : QSize(), &error);
    if (image.isNull())
        return unreadable(error);
    if (tooLarge) {
        ui->HScroll1->hide();
        ui->VScroll1->hide();
    }
    ui->Picture2->setPixmap(QPixmap::fromImage(image));
    ui->Picture2->resize(image.size());
    scrollPicture();
    return tooLarge;
}

void frmItems::scrollPicture()
{
    // Panned by a scroll bar that is shown; centred along a side with nothing to pan.
    const auto offset = [](int frame, int picture, const QScrollBar* bar) {
        return bar->isHidden() ? (frame - picture) / 2 : -bar->value() / Startup::kTwipsPerPixel;
    };
    ui->Picture2->move(offset(ui->Picture1->width(), ui->Picture2->width(), ui->HScroll1),
                       offset(ui->Picture1->height(), ui->Picture2->height(), ui->VScroll1));
}

void frmItems::cmdFind_Click(int index)
{
    const QString chosen = m_ctx.prompts.openFileName(
        QStringLiteral("Open"),
        readSetting(m_ctx.store, Settings::kOptions, QStringLiteral("ImageDirLocation")),
        Texts::kPictureFilter);
    if (!chosen.isEmpty())
        setFieldText(index + 5, chosen);
}

// ---------------------------------------------------------------- editing rules

void frmItems::onFieldChanged(int index)
{
    if (m_binder.isLoading())
        return; // a record being shown is not an edit; the reposition rules cover it
    const QString text = fieldText(index);
    if (index == 1) {
        if (!text.isEmpty() && !allDigits(text.trimmed())) {
            m_ctx.prompts.message(Texts::kEbayIdDigits, Texts::kEbayIdTitle,
                                  PromptIcon::Exclamation);
            setFieldText(1, QString());
        }
        const bool filled = !fieldText(1).isEmpty();
        setCommand(QStringLiteral("Ended"), ui->mnuEnding, filled);
        setCommand(QStringLiteral("EList"), ui->mnuEbayList, filled);
    } else if (index == 3 || index == 4) {
        setCommand(QStringLiteral("PList"), ui->mnuListing,
                   !(fieldText(3).isEmpty() && fieldText(4).isEmpty()));
    } else if (isPictureField(index)) {
        if (!text.trimmed().isEmpty() && previewPicture(index))
            m_ctx.prompts.message(Texts::kImageTooLarge, Texts::kImageTooLargeTitle,
                                  PromptIcon::Exclamation);
        setCommand(QStringLiteral("Upload"), ui->mnuUpload,
                   !fieldText(5).trimmed().isEmpty() || !fieldText(6).trimmed().isEmpty() ||
                       !fieldText(7).trimmed().isEmpty());
    } else if (isMoneyField(index)) {
        if (text.isEmpty())
            setFieldText(index, QStringLiteral("0"));
    }
}

void frmItems::onFieldLeft(int index)
{
    if (isPictureField(index)) {
        const QString path = fieldText(index).trimmed();
        if (!path.isEmpty() && !QFileInfo(path).isFile()) {
            m_ctx.prompts.message(Texts::cantFindPicture(path));
            setFieldText(index, QString());
        }
    } else if (index == 12) {
        if (!fieldText(12).isEmpty())
            setEndDateFromLength(ui->comboLength->currentText().trimmed().toInt());
    }
}

void frmItems::setEndDateFromLength(int days)
{
    const QDateTime start = DateText::fromDisplay(fieldText(12));
    if (!start.isValid()) {
        m_ctx.prompts.message(QStringLiteral("\"%1\" is not a date Tallybid can read, so the end "
                                             "date was not worked out.")
                                  .arg(fieldText(12)),
                              Texts::kInvalidDateTitle, PromptIcon::Information);
        return;
    }
    setFieldText(13, DateText::toDisplay(start.addDays(days)));
}

void frmItems::onLengthChosen()
{
    if (!fieldText(12).isEmpty())
        setEndDateFromLength(ui->comboLength->currentText().trimmed().toInt());
}

void frmItems::applyLeaveDefaults(DataAction action)
{
    switch (action) {
    case DataAction::MoveFirst:
    case DataAction::MovePrevious:
    case DataAction::MoveNext:
    case DataAction::MoveLast:
    case DataAction::Update:
    case DataAction::Close:
        break;
    default:
        return;
    }
    const auto defaultIfBlank = [this](int index, int value) {
        if (fieldText(index).isEmpty())
            setFieldText(index, QString::number(value));
    };
    defaultIfBlank(8, 0);
    defaultIfBlank(9, 1);
    defaultIfBlank(10, 0);
}

bool frmItems::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        for (int i = 4; i <= 6; ++i)
            if (watched == txtLabels[i])
                previewPicture(i + 1);
    }
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        for (int i = 8; i <= 10; ++i) {
            if (watched == txtFields[i] && isRefusedKey(key, kDigits + u'.')) {
                beep();
                return true;
            }
        }
    }
    if (event->type() == QEvent::FocusOut) {
        // Only a move of the focus inside this window counts as leaving the box; a message box
        // or menu taking the focus does not.
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason) {
            for (int i = 1; i < 15; ++i)
                if (watched == txtFields[i])
                    onFieldLeft(i);
            if (watched == ui->comboLength && ui->comboLength->currentText().isEmpty())
                ui->comboLength->setCurrentText(QStringLiteral("7"));
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

// ---------------------------------------------------------------- add, delete, duplicate

void frmItems::addItem()
{
    Data1->addNewAndUpdate();
    Data1->moveLast();
    const QString count = QString::number(Data1->recordCount());
    ui->txtTotItem->setText(count);
    ui->txtCurItem->setText(count);
    UpdateNavigation();
    ui->txtFields_3->setFocus();
    showLogo();
}

void frmItems::mnuAdd_Click()
{
    if (ui->txtTotItem->text() == QLatin1String("0"))
        mnuAll_Click();
    addItem();
}

void frmItems::mnuDelete_Click()
{
    if (m_ctx.prompts.message(Texts::kDeleteAsk, Texts::kDeleteTitle, PromptIcon::Exclamation,
                              PromptButtons::OkCancel) != PromptAnswer::Ok)
        return;
    // The item at the last place of a view is never deleted, however many items there are.
    if (ui->txtCurItem->text() == ui->txtTotItem->text()) {
        m_ctx.prompts.message(Texts::kDeleteLast, Texts::kDeleteTitle);
        return;
    }
    Data1->deleteCurrent();
    Data1->moveNext();
    if (Data1->eof()) {
        Data1->moveLast();
        ui->txtCurItem->setText(QString::number(counter(ui->txtCurItem) - 1));
    }
    const qint64 mark = Data1->bookmark();
    Data1->moveLast();
    ui->txtTotItem->setText(QString::number(Data1->recordCount()));
    Data1->setBookmark(mark);
    UpdateNavigation();
}

void frmItems::mnuDupAuc_Click()
{
    QStringList texts;
    for (int i = 3; i <= 10; ++i)
        texts << fieldText(i);
    const QString length = ui->comboLength->currentText();
    mnuAdd_Click();
    for (int i = 3; i <= 10; ++i)
        setFieldText(i, texts.at(i - 3));
    ui->comboLength->setCurrentText(length);
}

void frmItems::mnuItemsDuplicate_Click()
{
    // Left without work on purpose: Duplicate Auction is the command that copies an item.
}

// ---------------------------------------------------------------- find

frmFind& frmItems::findDialog()
{
    if (!m_find)
        m_find = new frmFind(m_ctx, this);
    return *m_find;
}

void frmItems::runFind(bool fromFirst, const QString& criteria)
{
    const RecordSet::FindResult result =
        fromFirst ? Data1->findFirst(criteria) : Data1->findNext(criteria);
    if (result == RecordSet::FindResult::Invalid)
        m_ctx.prompts.message(Texts::findFailed(Data1->lastError()), Texts::kFindFailedTitle,
                              PromptIcon::Exclamation);
}

void frmItems::mnuFind_Click()
{
    frmFind& dialog = findDialog();
    dialog.setTotalItems(ui->txtTotItem->text());
    dialog.exec();
    if (m_view != View::All)
        mnuAll_Click();
    const QString criteria = m_ctx.state.findCriteria;
    if (criteria == Texts::kItemSearch) {
        Data1->setAbsolutePosition(counter(dialog.itemNumberBox()) - 1);
    } else if (!criteria.trimmed().isEmpty()) {
        runFind(dialog.searchFromFirst(), criteria);
    }
    showPosition();
}

void frmItems::mnuFindAgain_Click()
{
    const QString criteria = m_ctx.state.findCriteria;
    if (criteria == Texts::kItemSearch || criteria.trimmed().isEmpty())
        return;
    runFind(findDialog().searchFromFirst(), criteria);
    showPosition();
}

// ---------------------------------------------------------------- listing

frmAdStudio& frmItems::adStudio()
{
    if (!m_adStudio) {
        m_adStudio = new frmAdStudio(m_ctx, this);
        m_adStudio->setWindowFlag(Qt::Window);
        connect(m_adStudio, &frmAdStudio::previewRequested, this, &frmItems::mnuListing_Click);
        connect(m_adStudio, &frmAdStudio::uploadMediaRequested, this, [this] {
            runUploadCommand(m_ctx, UploadSource::AdStudioMedia, m_adStudio->mediaPaths(),
                             m_adStudio, [this] { mnuOptions_Click(); });
        });
        m_adStudio->setUploadMediaEnabled(true);
    }
    return *m_adStudio;
}

void frmItems::cmdAdStudio_Click()
{
    frmAdStudio& studio = adStudio();
    studio.show();
    studio.raise();
    studio.activateWindow();
}

void frmItems::mnuListing_Click()
{
    checkSiteView(SiteView::Listing);
    if (runListing(m_remote, false).ok())
        OpenDocument(m_ctx.shell, listingFilePath(m_ctx.state.appPath), m_ctx.state.appPath);
}

// The listing generator on the item as the boxes show it, with the theme the Ad Studio holds;
// its messages are shown and the focus goes where it points.
ListingResult frmItems::runListing(bool remote, bool escape)
{
    ListingRequest request;
    adStudio().fillListingRequest(request);
    request.shortDescription = fieldText(3);
    request.description = fieldText(4);
    request.picture1Path = fieldText(5);
    request.picture2Path = fieldText(6);
    request.picture3Path = fieldText(7);
    request.reserve = fieldText(8);
    request.placement = ui->comboImgPlace->currentText();
    request.imageLoc = m_ctx.state.options.imageLoc;
    request.ebaySellerReport = m_ctx.state.options.ebaySellerReport;
    request.userEmail = m_ctx.state.options.userEmail;
    request.remote = remote;
    request.escape = escape;
    request.appPath = m_ctx.state.appPath;

    ListingResult result = generateListing(request);
    for (const ThemeSetMessage& m : result.messages)
        m_ctx.prompts.message(m.text, m.title, m.icon);
    if (result.focus == ListingFocus::ShortDescription)
        txtFields[3]->setFocus();
    else if (result.focus == ListingFocus::Description)
        txtFields[4]->setFocus();
    return result;
}

void frmItems::mnuOptions_Click()
{
    frmOptions dialog(m_ctx, this);
    dialog.exec();
}

// ---------------------------------------------------------------- auction site

void frmItems::mnuStart_Click()
{
    ::mnuStart_Click(m_ctx, *this);
}

void frmItems::mnuEbayList_Click()
{
    ::mnuEbayList_Click(m_ctx, *this);
}

void frmItems::mnuAllOpenRep_Click()
{
    ::mnuAllOpenRep_Click(m_ctx, *this);
}

QString frmItems::lengthText() const
{
    return ui->comboLength->currentText();
}

void frmItems::saveRecord()
{
    Data1->update();
}

void frmItems::rereadRecord()
{
    Data1->rereadCurrent();
}

void frmItems::refreshView()
{
    Data1->refresh();
    ui->txtCurItem->setText(QStringLiteral("1"));
    UpdateNavigation();
}

void frmItems::checkSiteView(SiteView view)
{
    ui->mnuListing->setChecked(view == SiteView::Listing);
    ui->mnuStart->setChecked(view == SiteView::StartForm);
    ui->mnuEbayList->setChecked(view == SiteView::ItemPage);
    ui->mnuAllOpenRep->setChecked(view == SiteView::AllOpenReport);
}

QString frmItems::startFormListing()
{
    return runListing(true, true).html;
}

void frmItems::openOptions()
{
    auto* dialog = new frmOptions(m_ctx, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

// ---------------------------------------------------------------- after the sale

QStringList frmItems::picturePaths() const
{
    return {fieldText(5), fieldText(6), fieldText(7)};
}

frmEndingAuction* frmItems::endingWindow()
{
    return joinedEndingWindow(frmEndingAuction::openEndingAuction(m_ctx, picturePaths(), *this));
}

frmEndingAuction* frmItems::joinedEndingWindow(frmEndingAuction* ending)
{
    connect(ending, &frmEndingAuction::noteComposed, this, &frmItems::showComposedNote,
            Qt::UniqueConnection);
    connect(ending, &frmEndingAuction::cleanupRequested, this, &frmItems::cleanupAfterShipping,
            Qt::UniqueConnection);
    return ending;
}

void frmItems::mnuEnding_Click()
{
    // The ending window reads the item from tb2.mdb, so what was typed here goes there first.
    Data1->update();
    m_ctx.state.currentItemId = Data1->bookmark();
    m_ctx.state.currentEbayId = fieldText(1);
    m_ctx.state.currentShortDescription = fieldText(3);
    endingWindow();
}

void frmItems::showComposedNote(const ComposedNote& note)
{
    auto* window = new frmNote(m_ctx, qobject_cast<frmEndingAuction*>(sender()), this);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->showNote(note);
}

void frmItems::mnuCleanup_Click()
{
    Data1->update();
    standOnEbayId(fieldText(1));
    const QStringList paths = picturePaths();
    for (int slot = 1; slot <= 3; ++slot)
        m_ctx.state.uploadFiles[slot] = paths.at(slot - 1);
    showCleanup();
}

// The item just shipped is the ending window's, whichever item this window has moved to since;
// its pictures are in the upload slots already.
void frmItems::cleanupAfterShipping()
{
    standOnEbayId(m_ctx.state.currentEbayId);
    showCleanup();
}

// After a move by choice or search: the counter shows where Data1 now stands.
void frmItems::showPosition()
{
    ui->txtCurItem->setText(QString::number(Data1->absolutePosition() + 1));
    UpdateNavigation();
}

void frmItems::standOnEbayId(const QString& ebayId)
{
    if (Data1->findFirst(ItemSql::byEbayId(ebayId)) == RecordSet::FindResult::Found) {
        showPosition();
    }
}

void frmItems::showCleanup()
{
    // Feedback goes to the buyer of the item this window stands on when Ok is pressed, found
    // by its eBay number rather than the item the ending window was last opened on.
    const auto feedbackWindow = [this] {
        frmEndingAuction* ending = joinedEndingWindow(frmEndingAuction::showFor(m_ctx, *this));
        ending->positionOnEbayId(fieldText(1));
        return ending;
    };
    auto* dialog = new frmCleanup(
        m_ctx, [this] { showLogo(); }, feedbackWindow, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

void frmItems::mnuUpload_Click()
{
    // The pictures are taken as the boxes show them; the record is written when it is left.
    runUploadCommand(m_ctx, UploadSource::ItemPictures, {fieldText(5), fieldText(6), fieldText(7)},
                     this, [this] { mnuOptions_Click(); });
}

// ---------------------------------------------------------------- bars, links, help

// Both run from their checkable menu items, which have flipped their check mark already.
void frmItems::mnuViewToolbar_Click()
{
    ui->Toolbar1->setVisible(ui->mnuViewToolbar->isChecked());
    saveToolbarVisible(m_ctx.store, ui->mnuViewToolbar->isChecked());
}

void frmItems::mnuViewStatusBar_Click()
{
    ui->sbStatus->setVisible(ui->mnuViewStatusBar->isChecked());
    saveStatusbarVisible(m_ctx.store, ui->mnuViewStatusBar->isChecked());
}

void frmItems::rebuildLinksMenu()
{
    for (int i = 0; i < 10; ++i) {
        const QString caption = m_ctx.store.get(Settings::kApp, Settings::kOptions,
                                                QStringLiteral("LinkName %1").arg(i + 1));
        mnuLinks[i]->setText(caption);
        mnuLinks[i]->setVisible(!caption.trimmed().isEmpty());
    }
}

void frmItems::mnuHelpDoc_Click()
{
    OpenDocument(m_ctx.shell, m_ctx.appFile(QStringLiteral("tb2ug.htm")), m_ctx.state.appPath);
}

void frmItems::mnuTBHome_Click()
{
    OpenDocument(m_ctx.shell, m_ctx.state.options.homePage, m_ctx.state.appPath);
}

void frmItems::mnuPulsewatch_Click()
{
    const QString folder =
        m_ctx.store.get(Settings::kSiblingApp, Settings::kSystemData, QStringLiteral("AppPath"));
    const QString program = folder + QLatin1String("/Pulsewatch");
    if (!QFileInfo(program).isFile()) {
        m_ctx.prompts.message(Texts::pulsewatchMissing(folder));
        return;
    }
    m_ctx.shell.startProgram(program, {}, folder);
}

void frmItems::mnuAbout_Click()
{
    m_ctx.prompts.message(
        QStringLiteral("Tallybid %1\n\nKeeps your auction items, writes their advertisements, "
                       "publishes their pictures and looks after the buyers.\n\nApplication "
                       "folder: %2")
            .arg(QCoreApplication::applicationVersion(), m_ctx.state.appPath),
        QStringLiteral("About Tallybid"), PromptIcon::Information);
}

// ---------------------------------------------------------------- window life

void frmItems::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        rebuildLinksMenu();
    QMainWindow::changeEvent(event);
}

void frmItems::closeEvent(QCloseEvent* event)
{
    if (!m_unloading) {
        m_unloading = true;
        while (QApplication::overrideCursor())
            QApplication::restoreOverrideCursor();
        Data1->close(DataAction::Unload);
        m_ctx.store.save(Settings::kApp, Settings::kOptions, QStringLiteral("MainFormHeight"),
                         QString::number(height() * Startup::kTwipsPerPixel));
        m_ctx.store.save(Settings::kApp, Settings::kOptions, QStringLiteral("MainFormWidth"),
                         QString::number(width() * Startup::kTwipsPerPixel));
    }
    event->accept();
    // Every other window goes with the item window.
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w != this && w->isVisible())
            w->close();
}

// ---------------------------------------------------------------- CSV export and import

void frmItems::mnuExportItems_Click()
{
    Data1->update(); // what was typed into the current item goes into the file
    // Two or more rows chosen in the item list are exported instead of the whole view.
    const QList<qint64> chosen =
        m_itemList->isVisible() ? m_itemList->selectedKeys() : QList<qint64>();
    CsvCommands::exportItems(m_ctx, this, chosen.size() > 1 ? chosen : Data1->keys());
}

void frmItems::mnuImportItems_Click()
{
    Data1->update();
    if (CsvCommands::importItems(m_ctx, this) && m_view != View::None)
        openView(m_view); // counters include the new items
}
