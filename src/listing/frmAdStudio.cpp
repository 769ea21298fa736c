#include "listing/frmAdStudio.h"

#include "listing/AdStudioTexts.h"
#include "listing/ListingGenerator.h"
#include "listing/ListingTexts.h"
#include "platform/Prompts.h"
#include "platform/SettingsStore.h"
#include "platform/WindowFitUi.h"
#include "platform/WindowTeardown.h"
#include "settings/AppContext.h"
#include "settings/SettingsCatalogue.h"
#include "ui_frmAdStudio.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QFocusEvent>
#include <QTimer>

namespace {

// Windows colour numbers keep red in the low byte. Numbers with the high bit set name a system
// colour (0x80000005 is the window background) rather than a mixture.
QColor screenColor(qint64 value, const QPalette& palette)
{
    const auto bits = quint32(value);
    if ((bits & 0xFFFFFF00u) == 0x80000000u) {
        switch (bits & 0xFFu) {
        case 8:  // window text
        case 18: // button text
            return palette.color(QPalette::Text);
        case 15: // button face
            return palette.color(QPalette::Button);
        default:
            return palette.color(QPalette::Base);
        }
    }
    return QColor(int(bits & 0xFF), int((bits >> 8) & 0xFF), int((bits >> 16) & 0xFF));
}

qint64 windowsColor(const QColor& color)
{
    const QColor rgb = color.toRgb();
    return qint64(rgb.red()) | (qint64(rgb.green()) << 8) | (qint64(rgb.blue()) << 16);
}

QFont screenFont(const FontGroup& group, const QFont& base)
{
    QFont font = base;
    font.setFamily(group.face);
    // A face this machine lacks falls back to an ordinary sans serif, not to a symbol font.
    font.setStyleHint(QFont::SansSerif);
    if (group.size > 0)
        font.setPointSizeF(group.size);
    font.setBold(group.bold);
    font.setItalic(group.italic);
    return font;
}

QString swatchStyle(const QColor& color)
{
    return QStringLiteral("QPushButton { background-color: %1; border: 1px solid palette(mid); "
                          "min-height: 18px; }")
        .arg(color.name());
}

// The roles whose texts are user settings rather than samples.
constexpr std::array<int, 5> kStoredRoles = {Role::SubHeading, Role::PayOptions, Role::TaxMessage,
                                             Role::ReserveMessage, Role::SeeOther};

bool leavesByUser(Qt::FocusReason reason)
{
    return reason == Qt::MouseFocusReason || reason == Qt::TabFocusReason ||
           reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason ||
           reason == Qt::OtherFocusReason;
}

} // namespace

frmAdStudio::frmAdStudio(AppContext& ctx, QWidget* parent)
    : QMainWindow(parent), ui(std::make_unique<Ui::frmAdStudio>()), m_ctx(ctx)
{
    ui->setupUi(this);
    setAttribute(Qt::WA_QuitOnClose, false);
    // Buttons kept from the form's first design; they carry no command.
    ui->cmdAddTS->hide();
    ui->cmdCreateTS->hide();

    for (int i = 0; i < kFontGroupCount; ++i) {
        m_txtListText[i] = findChild<QLineEdit*>(QStringLiteral("txtListText_%1").arg(i));
        m_cmdSwatch[i] = findChild<QPushButton*>(QStringLiteral("cmdSwatch_%1").arg(i));
        m_cmdFont[i] = findChild<QPushButton*>(QStringLiteral("cmdFont_%1").arg(i));
        m_txtFont[i] = findChild<QLineEdit*>(QStringLiteral("txtFont_%1").arg(i));
        Q_ASSERT(m_txtListText[i] && m_cmdSwatch[i] && m_cmdFont[i] && m_txtFont[i]);
    }
    m_mediaBoxes = {ui->txtBackgroundImage, ui->txtSoundFile, ui->txtBorderImage, ui->txtTitleImage,
                    ui->txtInlineImage};

    connectControls();
    setUploadMediaEnabled(false);
    showColors();
    for (int i = 0; i < kFontGroupCount; ++i)
        showFont(i);

    const QString standard = m_ctx.appFile(ThemeSetText::kStandardFile);
    if (!QFileInfo::exists(standard)) {
        m_ctx.prompts.message(AdStudioText::kMissingStandard, ListingText::kMissingThemesetTitle,
                              PromptIcon::Exclamation, PromptButtons::Ok);
    } else {
        m_ctx.state.themeSetFN = standard;
        openThemeSetDefault(standard);
    }
    putRoleTexts(loadRoleTexts(m_ctx.store));
    m_changed = false;
    fitToScreen(*this);
}

frmAdStudio::~frmAdStudio()
{
    stopHearingChildren(*this); // the alignment box takes up typed text as the window closes
}

void frmAdStudio::connectControls()
{
    connect(ui->cmbThemes, &QComboBox::activated, this,
            [this](int index) { loadThemeIntoControls(ui->cmbThemes->itemText(index)); });
    ui->cmbThemes->installEventFilter(this);

    // Every edit of a theme control marks the theme as changed.
    for (QCheckBox* box : {ui->chkLoop, ui->chkBorderImgTop, ui->chkBorderImgBot,
                           ui->chkTitleImgLeft, ui->chkTitleImgRight, ui->chkInlineImg})
        connect(box, &QCheckBox::toggled, this, &frmAdStudio::setChanged);
    connect(ui->cmbCellAlign, &QComboBox::currentIndexChanged, this, &frmAdStudio::setChanged);
    connect(ui->cmbCellAlign, &QComboBox::editTextChanged, this, &frmAdStudio::setChanged);
    connect(ui->slBorderWidth, &QSlider::valueChanged, this, [this](int value) {
        ui->lblBorderWidthValue->setText(QString::number(value));
        setChanged();
    });
    for (QLineEdit* box : m_mediaBoxes) {
        connect(box, &QLineEdit::textChanged, this, &frmAdStudio::setChanged);
        box->installEventFilter(this);
    }
    for (int i = 0; i < kFontGroupCount; ++i) {
        connect(m_txtFont[i], &QLineEdit::textChanged, this, &frmAdStudio::setChanged);
        connect(m_txtListText[i], &QLineEdit::textChanged, this, &frmAdStudio::setChanged);
        connect(m_cmdFont[i], &QPushButton::clicked, this, [this, i] { chooseFont(i); });
        connect(m_cmdSwatch[i], &QPushButton::clicked, this, [this, i] { chooseRoleColor(i); });
    }
    connect(ui->cmdTableColor, &QPushButton::clicked, this, &frmAdStudio::chooseTableColor);

    const QString images = m_ctx.appFile(QStringLiteral("Images"));
    connect(ui->cmdFind, &QPushButton::clicked, this, [this] {
        findMediaFile(ui->txtBackgroundImage, AdStudioText::kImageFilter,
                      m_ctx.appFile(QStringLiteral("Backgr")));
    });
    connect(ui->cmdFindSound, &QPushButton::clicked, this, [this] {
        findMediaFile(ui->txtSoundFile, AdStudioText::kSoundFilter,
                      m_ctx.appFile(QStringLiteral("Sounds")));
    });
    connect(ui->cmdFindBorderImg, &QPushButton::clicked, this, [this, images] {
        findMediaFile(ui->txtBorderImage, AdStudioText::kImageFilter, images);
    });
    connect(ui->cmdFindTitleImg, &QPushButton::clicked, this, [this, images] {
        findMediaFile(ui->txtTitleImage, AdStudioText::kImageFilter, images);
    });
    connect(ui->cmdFindInlineImg, &QPushButton::clicked, this, [this, images] {
        findMediaFile(ui->txtInlineImage, AdStudioText::kImageFilter, images);
    });

    connect(ui->cmdApply, &QPushButton::clicked, this, &frmAdStudio::saveTheme);
    connect(ui->mnuSave, &QAction::triggered, this, &frmAdStudio::saveTheme);
    const auto saveAndHide = [this] {
        saveTheme();
        hide();
    };
    connect(ui->cmdOK, &QPushButton::clicked, this, saveAndHide);
    connect(ui->mnuExitSave, &QAction::triggered, this, saveAndHide);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &QWidget::hide);
    connect(ui->mnuExitNoSave, &QAction::triggered, this, &QWidget::hide);

    connect(ui->mnuNew, &QAction::triggered, this, &frmAdStudio::newTheme);
    connect(ui->mnuSaveAs, &QAction::triggered, this, &frmAdStudio::saveThemeAs);
    connect(ui->mnuDeleteTheme, &QAction::triggered, this, &frmAdStudio::deleteCurrentTheme);
    connect(ui->mnuThemesetNew, &QAction::triggered, this, &frmAdStudio::newThemeSet);
    connect(ui->mnuThemesetOpen, &QAction::triggered, this, &frmAdStudio::openThemeSet);

    connect(ui->mnuActionsPreview, &QAction::triggered, this, &frmAdStudio::previewRequested);
    connect(ui->mnuUploadMedia, &QAction::triggered, this, &frmAdStudio::uploadMediaRequested);
    connect(ui->cmdUploadMedia, &QPushButton::clicked, this, &frmAdStudio::uploadMediaRequested);
}

// ---- what the listing command and the item window read -------------------------------------

QString frmAdStudio::currentThemeName() const
{
    return ui->cmbThemes->currentText();
}

QStringList frmAdStudio::mediaPaths() const
{
    QStringList paths;
    for (const QLineEdit* box : m_mediaBoxes)
        paths << box->text();
    return paths;
}

Theme frmAdStudio::themeFromControls() const
{
    Theme theme;
    theme.name = currentThemeName();
    theme.tableColor = m_tableColor;
    theme.backgroundImage = ui->txtBackgroundImage->text();
    theme.soundFile = ui->txtSoundFile->text();
    theme.borderWidth = ui->slBorderWidth->value();
    theme.cellAlign = ui->cmbCellAlign->currentText();
    theme.loop = ui->chkLoop->isChecked();
    theme.borderImage = ui->txtBorderImage->text();
    theme.borderImgTop = ui->chkBorderImgTop->isChecked();
    theme.borderImgBot = ui->chkBorderImgBot->isChecked();
    theme.titleImage = ui->txtTitleImage->text();
    theme.titleImgLeft = ui->chkTitleImgLeft->isChecked();
    theme.titleImgRight = ui->chkTitleImgRight->isChecked();
    theme.inlineImage = ui->txtInlineImage->text();
    theme.inlineImg = ui->chkInlineImg->isChecked();
    theme.fonts = m_fonts;
    return theme;
}

RoleTexts frmAdStudio::roleTexts() const
{
    RoleTexts texts;
    for (int role : kStoredRoles)
        texts.setText(role, m_txtListText[role]->text());
    return texts;
}

void frmAdStudio::fillListingRequest(ListingRequest& request) const
{
    request.themeSetPath = m_ctx.state.themeSetFN;
    request.themeName = currentThemeName();
    request.media = ListingMedia::fromTheme(themeFromControls());
    request.roleTexts = roleTexts();
}

void frmAdStudio::setUploadMediaEnabled(bool enabled)
{
    ui->mnuUploadMedia->setEnabled(enabled);
    ui->cmdUploadMedia->setEnabled(enabled);
}

// ---- window life ----------------------------------------------------------------------------

void frmAdStudio::closeEvent(QCloseEvent* event)
{
    // Closing only hides: the controls keep the theme the listing command reads.
    hide();
    event->accept();
}

bool frmAdStudio::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->cmbThemes && event->type() == QEvent::FocusIn) {
        if (leavesByUser(static_cast<QFocusEvent*>(event)->reason()))
            askToSaveChanges();
    } else if (event->type() == QEvent::FocusOut && !m_returningFocus) {
        auto* box = qobject_cast<QLineEdit*>(watched);
        if (box && std::find(m_mediaBoxes.begin(), m_mediaBoxes.end(), box) != m_mediaBoxes.end() &&
            leavesByUser(static_cast<QFocusEvent*>(event)->reason())) {
            // Checked once the focus has settled, so the box can take it back.
            QTimer::singleShot(0, this, [this, box] { checkMediaBox(box); });
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void frmAdStudio::showMessage(const ThemeSetMessage& message)
{
    m_ctx.prompts.message(message.text, message.title, message.icon, PromptButtons::Ok);
}

bool frmAdStudio::showIfAny(const MaybeMessage& message)
{
    if (message)
        showMessage(*message);
    return message.has_value();
}

// ---- themes into controls -------------------------------------------------------------------

bool frmAdStudio::fillThemeList()
{
    ui->cmbThemes->clear();
    const ThemeNamesResult result = listThemeNames(m_ctx.state.themeSetFN);
    ui->cmbThemes->addItems(result.names);
    ui->lblThemeSetName->setText(QFileInfo(m_ctx.state.themeSetFN).fileName());
    ui->lblThemeSetName->setToolTip(QDir::toNativeSeparators(m_ctx.state.themeSetFN));
    return !showIfAny(result.message);
}

void frmAdStudio::selectThemeInList(const QString& name)
{
    ui->cmbThemes->setCurrentIndex(
        ui->cmbThemes->findText(name, Qt::MatchExactly | Qt::MatchCaseSensitive));
}

void frmAdStudio::loadThemeIntoControls(const QString& name)
{
    const ThemeLoadResult result = loadTheme(m_ctx.state.themeSetFN, name, m_ctx.state.appPath);
    if (showIfAny(result.message) || !result.theme)
        return;
    putTheme(*result.theme);
    m_changed = false;
}

void frmAdStudio::openThemeSetDefault(const QString& path)
{
    m_ctx.state.themeSetFN = path;
    if (!fillThemeList())
        return; // already explained; loading would only say it again
    selectThemeInList(ThemeSetText::kDefaultTheme);
    loadThemeIntoControls(ThemeSetText::kDefaultTheme);
}

void frmAdStudio::putTheme(const Theme& theme)
{
    m_tableColor = theme.tableColor;
    m_fonts = theme.fonts;
    ui->txtBackgroundImage->setText(theme.backgroundImage);
    ui->txtSoundFile->setText(theme.soundFile);
    ui->slBorderWidth->setRange(int(qMin<qint64>(0, theme.borderWidth)),
                                int(qMax<qint64>(20, theme.borderWidth)));
    ui->slBorderWidth->setValue(int(theme.borderWidth));
    ui->lblBorderWidthValue->setText(QString::number(theme.borderWidth));
    const int align =
        ui->cmbCellAlign->findText(theme.cellAlign, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (align >= 0)
        ui->cmbCellAlign->setCurrentIndex(align);
    ui->cmbCellAlign->setEditText(theme.cellAlign);
    ui->chkLoop->setChecked(theme.loop);
    ui->txtBorderImage->setText(theme.borderImage);
    ui->chkBorderImgTop->setChecked(theme.borderImgTop);
    ui->chkBorderImgBot->setChecked(theme.borderImgBot);
    ui->txtTitleImage->setText(theme.titleImage);
    ui->chkTitleImgLeft->setChecked(theme.titleImgLeft);
    ui->chkTitleImgRight->setChecked(theme.titleImgRight);
    ui->txtInlineImage->setText(theme.inlineImage);
    ui->chkInlineImg->setChecked(theme.inlineImg);
    showColors();
    for (int i = 0; i < kFontGroupCount; ++i)
        showFont(i);
}

void frmAdStudio::putRoleTexts(const RoleTexts& texts)
{
    for (int role : kStoredRoles)
        m_txtListText[role]->setText(texts.text(role));
    // Show each text from its start rather than scrolled to its end.
    for (QLineEdit* box : m_txtListText)
        box->setCursorPosition(0);
}

void frmAdStudio::showColors()
{
    const QColor table = screenColor(m_tableColor, palette());
    ui->cmdTableColor->setStyleSheet(swatchStyle(table));
    for (int i = 0; i < kFontGroupCount; ++i) {
        const QColor text = screenColor(m_fonts[i].color, palette());
        m_cmdSwatch[i]->setStyleSheet(swatchStyle(text));
        QPalette pal = m_txtListText[i]->palette();
        pal.setColor(QPalette::Base, table);
        pal.setColor(QPalette::Text, text);
        m_txtListText[i]->setPalette(pal);
    }
}

void frmAdStudio::showFont(int role)
{
    m_txtListText[role]->setFont(screenFont(m_fonts[role], font()));
    m_txtFont[role]->setText(m_fonts[role].face);
}

// ---- commands -------------------------------------------------------------------------------

bool frmAdStudio::saveTheme()
{
    bool written = true;
    const Theme theme = themeFromControls();
    if (!theme.name.isEmpty())
        written = !showIfAny(replaceTheme(m_ctx.state.themeSetFN, theme, m_ctx.state.appPath));
    if (!saveRoleTexts(m_ctx.store, roleTexts())) {
        m_ctx.prompts.message(AdStudioText::kTextsNotSaved.arg(
                                  QDir::toNativeSeparators(m_ctx.store.filePath(Settings::kApp))),
                              AdStudioText::kTextsNotSavedTitle, PromptIcon::Exclamation,
                              PromptButtons::Ok);
        written = false;
    }
    if (written)
        m_changed = false;
    return written;
}

void frmAdStudio::askToSaveChanges()
{
    if (!m_changed)
        return;
    if (m_ctx.prompts.message(AdStudioText::kChangedQuestion, AdStudioText::kChangedTitle,
                              PromptIcon::Question, PromptButtons::YesNo) == PromptAnswer::Yes)
        saveTheme();
}

void frmAdStudio::newTheme()
{
    askToSaveChanges();
    const std::optional<QString> answer =
        m_ctx.prompts.input(AdStudioText::kNewThemePrompt, AdStudioText::kNewThemeTitle, QString());
    const QString name = answer.value_or(QString()).trimmed();
    if (name.isEmpty())
        return;
    // A new theme's table takes the colour of the editor's text boxes.
    const qint64 tableColor = windowsColor(ui->txtBackgroundImage->palette().color(QPalette::Base));
    if (showIfAny(appendNewTheme(m_ctx.state.themeSetFN, name, tableColor)))
        return;
    ui->cmbThemes->addItem(name);
    ui->cmbThemes->setCurrentIndex(ui->cmbThemes->count() - 1);
    loadThemeIntoControls(name);
}

void frmAdStudio::saveThemeAs()
{
    const std::optional<QString> answer =
        m_ctx.prompts.input(AdStudioText::kSaveAsPrompt, AdStudioText::kSaveAsTitle, QString());
    const QString name = answer.value_or(QString()).trimmed();
    if (name.isEmpty())
        return;
    Theme theme = themeFromControls();
    theme.name = name;
    if (showIfAny(appendTheme(m_ctx.state.themeSetFN, theme)))
        return;
    ui->cmbThemes->addItem(name);
    ui->cmbThemes->setCurrentIndex(ui->cmbThemes->count() - 1);
    loadThemeIntoControls(name);
}

void frmAdStudio::deleteCurrentTheme()
{
    if (showIfAny(deleteTheme(m_ctx.state.themeSetFN, currentThemeName(), m_ctx.state.appPath)))
        return;
    // Every record of the name is gone, so the list is read again.
    openThemeSetDefault(m_ctx.state.themeSetFN);
    m_changed = false;
}

void frmAdStudio::newThemeSet()
{
    askToSaveChanges();
    QString path = m_ctx.prompts.saveFileName(
        AdStudioText::kSaveTitle, startFolder(m_ctx.state.themeSetFN, m_ctx.state.appPath),
        AdStudioText::kNewThemeSetFilter);
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += u'.' + AdStudioText::kThemeSetSuffix;
    const qint64 tableColor = windowsColor(ui->txtBackgroundImage->palette().color(QPalette::Base));
    if (showIfAny(CreateThemeSet(path, QDate::currentDate(), tableColor)))
        return;
    openThemeSetDefault(path);
}

void frmAdStudio::openThemeSet()
{
    askToSaveChanges();
    const QString path = m_ctx.prompts.openFileName(
        AdStudioText::kOpenTitle, startFolder(m_ctx.state.themeSetFN, m_ctx.state.appPath),
        AdStudioText::kOpenThemeSetFilter);
    if (!path.isEmpty())
        openThemeSetDefault(path);
}

void frmAdStudio::findMediaFile(QLineEdit* box, const QString& filter, const QString& folder)
{
    const QString path = m_ctx.prompts.openFileName(AdStudioText::kOpenTitle,
                                                    startFolder(box->text(), folder), filter);
    if (!path.isEmpty())
        box->setText(QDir::toNativeSeparators(path));
}

void frmAdStudio::checkMediaBox(QLineEdit* box)
{
    if (!isVisible())
        return;
    const QString path = box->text();
    if (path.trimmed().isEmpty() || QFileInfo(path.trimmed()).isFile())
        return;
    m_ctx.prompts.message(AdStudioText::kFileMissingBefore + path + AdStudioText::kFileMissingAfter,
                          kDefaultTitle, PromptIcon::None, PromptButtons::Ok);
    m_returningFocus = true;
    box->setFocus(Qt::OtherFocusReason);
    m_returningFocus = false;
}

void frmAdStudio::chooseFont(int role)
{
    const std::optional<QFont> chosen = m_ctx.prompts.font(m_txtListText[role]->font());
    if (!chosen)
        return;
    FontGroup& group = m_fonts[role];
    group.face = chosen->family();
    if (chosen->pointSizeF() > 0)
        group.size = chosen->pointSizeF();
    group.bold = chosen->bold();
    group.italic = chosen->italic();
    showFont(role);
    setChanged();
}

void frmAdStudio::chooseRoleColor(int role)
{
    const std::optional<QColor> chosen =
        m_ctx.prompts.color(screenColor(m_fonts[role].color, palette()));
    if (!chosen)
        return;
    m_fonts[role].color = windowsColor(*chosen);
    showColors();
    setChanged();
}

void frmAdStudio::chooseTableColor()
{
    const std::optional<QColor> chosen = m_ctx.prompts.color(screenColor(m_tableColor, palette()));
    if (!chosen)
        return;
    m_tableColor = windowsColor(*chosen);
    showColors();
    setChanged();
}

QString frmAdStudio::startFolder(const QString& path, const QString& fallback) const
{
    const QFileInfo info(path.trimmed());
    if (!path.trimmed().isEmpty() && info.dir().exists())
        return info.absolutePath();
    return fallback;
}
