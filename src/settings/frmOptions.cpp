#include "settings/frmOptions.h"
#include "ui_frmOptions.h"

#include "platform/FtpClient.h"
#include "platform/FtpErrors.h"
#include "platform/KeyFilter.h"
#include "platform/Prompts.h"
#include "platform/SettingsStore.h"
#include "platform/Shell.h"
#include "platform/SmtpClient.h"
#include "platform/SmtpErrors.h"
#include "platform/WindowFitUi.h"
#include "settings/AppContext.h"
#include "settings/CountryRegionLists.h"
#include "settings/OptionsFields.h"
#include "settings/OptionsTexts.h"
#include "settings/SettingsCatalogue.h"

#include <QApplication>
#include <QFile>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QRegularExpressionValidator>
#include <QScopedValueRollback>
#include <optional>

namespace {

const QString kStartPageCache = QStringLiteral("Start.htm");
const QString kLeaveFeedbackCache = QStringLiteral("Leave.htm");
const QString kUrlSetupPage = QStringLiteral("URLSetup.htm");
// The dialog shows two past days when none were ever saved (the seller report itself asks
// for one).
const QString kPastDaysShown = QStringLiteral("2");

// The hourglass for as long as the object lives.
class WaitCursor
{
public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

// Keys that move the focus or only hold a modifier are not typing.
bool isTyping(const QKeyEvent* key)
{
    switch (key->key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_Meta:
    case Qt::Key_AltGr:
        return false;
    default:
        return true;
    }
}

} // namespace

frmOptions::frmOptions(AppContext& ctx, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_ui(std::make_unique<Ui::frmOptions>())
{
    m_ui->setupUi(this);
    Ui::frmOptions& ui = *m_ui;

    m_chkPayment = {ui.chkPayment_0, ui.chkPayment_1, ui.chkPayment_2,
                    ui.chkPayment_3, ui.chkPayment_4, ui.chkPayment_5,
                    ui.chkPayment_6, ui.chkPayment_7, ui.chkPayment_8};
    m_chkShipping = {ui.chkShipping_0, ui.chkShipping_1, ui.chkShipping_2, ui.chkShipping_3};
    m_txtSendAddress = {ui.txtSendAddress_0, ui.txtSendAddress_1, ui.txtSendAddress_2,
                        ui.txtSendAddress_3};
    m_txtLinkName = {ui.txtLinkName_0, ui.txtLinkName_1, ui.txtLinkName_2, ui.txtLinkName_3,
                     ui.txtLinkName_4, ui.txtLinkName_5, ui.txtLinkName_6, ui.txtLinkName_7,
                     ui.txtLinkName_8, ui.txtLinkName_9};
    m_txtLinkURL = {ui.txtLinkURL_0, ui.txtLinkURL_1, ui.txtLinkURL_2, ui.txtLinkURL_3,
                    ui.txtLinkURL_4, ui.txtLinkURL_5, ui.txtLinkURL_6, ui.txtLinkURL_7,
                    ui.txtLinkURL_8, ui.txtLinkURL_9};

    const auto text = [this](QLineEdit* edit, const char* key) {
        m_textFields.append({edit, QString::fromLatin1(key)});
    };
    text(ui.txtUserEmail, "UserEmail");
    text(ui.txteBayPassword, "eBayPassword");
    text(ui.txtLocation, "Location");
    text(ui.txtFeedback, "Feedback");
    text(ui.txtSendFrom, "SendFrom");
    text(ui.txtCC, "DefaultCC");
    text(ui.txtPayMsg, "PayMsg");
    text(ui.txtRecdMsg, "RecdMsg");
    for (int k = 0; k < 4; ++k)
        m_textFields.append({m_txtSendAddress[k], QStringLiteral("SendAddress%1").arg(k)});
    text(ui.txtClosing, "Closing");
    text(ui.txtSignature, "Signature");
    text(ui.txtFTPUserid, "FTPUserid");
    text(ui.txtFTPPassword, "FTPPassword");
    text(ui.txtRemoteHost, "RemoteHost");
    text(ui.txtRemotePort, "RemotePort");
    text(ui.txtImageLoc, "ImageLoc");
    text(ui.txtAuctionDir, "AuctionDir");
    text(ui.txtRemoteSMTPHost, "RemoteSMTPHost");
    text(ui.txtRemoteSMTPPort, "RemoteSMTPPort");
    text(ui.txtSMTPUser, "SMTPUser");
    text(ui.txtSMTPPassword, "SMTPPassword");
    text(ui.txtEbayStartPage, "EbayStartPage");
    text(ui.txteBayLeaveFeedback, "EbayLeaveFeedback");
    text(ui.txteBayViewFeedback, "EbayViewFeedback");
    text(ui.txteBaySellerReport, "EbaySellerReport");
    text(ui.txteBayListing, "EbayListing");
    text(ui.txtHomePage, "HomePage");
    text(ui.txtPastDays, "PastDays");
    text(ui.txtProxyServer, "ProxyServer");
    text(ui.txtProxyPort, "ProxyPort");
    for (int n = 0; n < kLinkRows; ++n) {
        m_textFields.append({m_txtLinkName[n], QStringLiteral("LinkName %1").arg(n + 1)});
        m_textFields.append({m_txtLinkURL[n], QStringLiteral("LinkURL %1").arg(n + 1)});
    }

    for (int k = 0; k < 9; ++k)
        m_checkFields.append({m_chkPayment[k], QStringLiteral("PaymentOpt %1").arg(k + 1)});
    for (int k = 0; k < 4; ++k)
        m_checkFields.append({m_chkShipping[k], QStringLiteral("ShippingOpt %1").arg(k + 1)});
    m_checkFields.append({ui.chkDaylightTime, QStringLiteral("DaylightDiff")});
    m_checkFields.append({ui.chkProxy, QStringLiteral("UseProxy")});

    m_choiceFields = {
        {ui.optUploadRelative, ui.optUploadAbsolute, QStringLiteral("UploadRelative")},
        {ui.optInternationally, ui.optHomeCountry, QStringLiteral("ShipInternationally")},
        {ui.optNewCat, ui.optOldCat, QStringLiteral("NewCat")},
        {ui.optAFEvery, ui.optAFOnce, QStringLiteral("RetrieveEveryTime")},
        {ui.optOverwrite, ui.optDontOverwrite, QStringLiteral("Overwrite")},
        {ui.optYesPast, ui.optNoPast, QStringLiteral("ShowPast")},
    };

    // Enter means OK, whichever button was clicked last.
    for (QPushButton* button : findChildren<QPushButton*>())
        button->setAutoDefault(false);
    ui.cmdOk->setDefault(true);

    // Pasting cannot put anything but digits into the number fields either.
    const QRegularExpression digits(QStringLiteral("[0-9]*"));
    ui.txtPastDays->setValidator(new QRegularExpressionValidator(digits, ui.txtPastDays));
    ui.txtProxyPort->setValidator(new QRegularExpressionValidator(digits, ui.txtProxyPort));

    // The pointer to the help page reads as a link: it opens the page when clicked.
    ui.lblWebPageLocPointer->setForegroundRole(QPalette::Link);

    fillLists();
    loadSettings();
    connectControls();
    ui.TabStrip1->setCurrentIndex(0);
    resize(sizeHint().expandedTo(QSize(660, 500)));
    // On a small screen the tabs scroll sideways and a tall page scrolls down.
    ui.TabStrip1->setUsesScrollButtons(true);
    scrollWhenShort(*ui.TabStrip1);
    fitToScreen(*this);
}

frmOptions::~frmOptions() = default;

void frmOptions::fillLists()
{
    m_ui->cmbCountry->addItems(countryNames());
    for (const RegionEntry& region : regionEntries())
        m_ui->cmbRegion->addItem(region.name, region.code);
    // The mail security list is in the order of MailSecurity; each entry keeps its stored text.
    for (const MailSecurity security :
         {MailSecurity::None, MailSecurity::StartTls, MailSecurity::Tls})
        m_ui->cmbSMTPSecurity->setItemData(int(security), settingForMailSecurity(security));
}

void frmOptions::loadSettings()
{
    const QScopedValueRollback<bool> loading(m_loading, true);
    const SettingsStore& store = m_ctx.store;
    const QString& o = Settings::kOptions;

    for (const TextField& field : std::as_const(m_textFields))
        field.edit->setText(readSetting(store, o, field.key));
    m_ui->txtPastDays->setText(
        store.get(Settings::kApp, o, QStringLiteral("PastDays"), kPastDaysShown));

    // 1 is on; anything else (0, or a value never meant for a switch) is off.
    for (const CheckField& field : std::as_const(m_checkFields))
        field.box->setChecked(readSetting(store, o, field.key).trimmed().toInt() == 1);
    for (const ChoiceField& field : std::as_const(m_choiceFields)) {
        const bool value =
            SettingsStore::toBool(readSetting(store, o, field.key),
                                  SettingsStore::toBool(settingDefault(o, field.key), false));
        (value ? field.whenTrue : field.whenFalse)->setChecked(true);
    }

    // The lists show the stored name; the stored numbers stay pending until the user picks
    // another entry. A name the lists lack is shown greyed and written back unchanged.
    const QString country = readSetting(store, o, QStringLiteral("Country"));
    m_ui->cmbCountry->setPlaceholderText(country);
    m_ui->cmbCountry->setCurrentIndex(countryIndex(country));
    m_pendingCountry =
        m_ui->cmbCountry->currentIndex() < 0 ? country : m_ui->cmbCountry->currentText();
    m_pendingCountryNum = readSetting(store, o, QStringLiteral("CountryNum"));

    const QString region = readSetting(store, o, QStringLiteral("Region"));
    m_ui->cmbRegion->setPlaceholderText(region);
    m_ui->cmbRegion->setCurrentIndex(regionIndex(region));
    m_pendingRegion = m_ui->cmbRegion->currentIndex() < 0 ? region : m_ui->cmbRegion->currentText();
    m_pendingRegionNum = readSetting(store, o, QStringLiteral("RegionNum"));

    const QString security = readSetting(store, o, QStringLiteral("SMTPSecurity"));
    const std::optional<MailSecurity> known = mailSecurityFromSetting(security);
    m_ui->cmbSMTPSecurity->setPlaceholderText(security);
    m_ui->cmbSMTPSecurity->setCurrentIndex(known ? int(*known) : -1);
    m_unknownSmtpSecurity = known ? QString() : security;

    // Read through the settings record, which tells new settings from older ones and turns a
    // size or quality out of reach into its default.
    const OptionsRecord saved = OptionsRecord::load(store);
    m_ui->chkResizeForWeb->setChecked(saved.resizeForWeb);
    m_ui->spnResizeLongestSide->setValue(saved.resizeLongestSide);
    m_ui->spnResizeJpegQuality->setValue(saved.resizeJpegQuality);

    updateProxyControls();
    updateResizeControls();
}

void frmOptions::connectControls()
{
    Ui::frmOptions& ui = *m_ui;
    connect(ui.cmdOk, &QPushButton::clicked, this, &frmOptions::onOk);
    connect(ui.cmdApply, &QPushButton::clicked, this, &frmOptions::applySettings);
    connect(ui.cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui.cmdTestFTP, &QPushButton::clicked, this, &frmOptions::onTestFtp);
    connect(ui.cmdTestMail, &QPushButton::clicked, this, &frmOptions::onTestMail);
    connect(ui.cmdHelpHUL, &QPushButton::clicked, this, [this] {
        m_ctx.prompts.message(OptionsTexts::kHostUploadHelp, OptionsTexts::kHostUploadHelpTitle);
    });
    connect(ui.cmdHelpWRL, &QPushButton::clicked, this, [this] {
        m_ctx.prompts.message(OptionsTexts::kWebRootHelp, OptionsTexts::kWebRootHelpTitle);
    });
    connect(ui.chkProxy, &QCheckBox::toggled, this, &frmOptions::updateProxyControls);
    connect(ui.chkResizeForWeb, &QCheckBox::toggled, this, &frmOptions::updateResizeControls);

    // A pick counts even when it is the entry already shown (activated), and so does a change
    // made without the list open (currentIndexChanged).
    const auto countryPicked = [this](int index) {
        if (m_loading || index < 0)
            return;
        m_pendingCountry = m_ui->cmbCountry->itemText(index);
        m_pendingCountryNum = QString::number(index + 1);
    };
    connect(ui.cmbCountry, &QComboBox::activated, this, countryPicked);
    connect(ui.cmbCountry, &QComboBox::currentIndexChanged, this, countryPicked);
    const auto regionPicked = [this](int index) {
        if (m_loading || index < 0)
            return;
        m_pendingRegion = m_ui->cmbRegion->itemText(index);
        m_pendingRegionNum = QString::number(m_ui->cmbRegion->itemData(index).toInt());
    };
    connect(ui.cmbRegion, &QComboBox::activated, this, regionPicked);
    connect(ui.cmbRegion, &QComboBox::currentIndexChanged, this, regionPicked);

    // Editing a form address by any means (typing, pasting) makes OK drop its cached copy.
    connect(ui.txtEbayStartPage, &QLineEdit::textEdited, this, [this] { m_startPageTyped = true; });
    connect(ui.txteBayLeaveFeedback, &QLineEdit::textEdited, this,
            [this] { m_leaveFeedbackTyped = true; });

    for (QWidget* watched :
         {static_cast<QWidget*>(ui.txtAuctionDir), static_cast<QWidget*>(ui.txtImageLoc),
          static_cast<QWidget*>(ui.txtPastDays), static_cast<QWidget*>(ui.txtProxyPort),
          static_cast<QWidget*>(ui.txtFTPUserid), static_cast<QWidget*>(ui.txtEbayStartPage),
          static_cast<QWidget*>(ui.txteBayLeaveFeedback),
          static_cast<QWidget*>(ui.lblWebPageLocPointer)})
        watched->installEventFilter(this);
}

bool frmOptions::eventFilter(QObject* watched, QEvent* event)
{
    Ui::frmOptions& ui = *m_ui;
    if (event->type() == QEvent::FocusOut) {
        // A context menu or another window taking the focus leaves the field mid-edit: tidying
        // it then would put the "/" before what is pasted next.
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason)
            normalizeField(watched);
    } else if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (watched == ui.txtPastDays || watched == ui.txtProxyPort) {
            if (isRefusedKey(key, kDigits)) {
                QApplication::beep();
                return true;
            }
        } else if (watched == ui.txtFTPUserid) {
            if (key->text() == QLatin1String("@"))
                m_ctx.prompts.message(OptionsTexts::kInvalidUserid,
                                      OptionsTexts::kInvalidUseridTitle, PromptIcon::Exclamation);
        } else if (watched == ui.txtEbayStartPage) {
            m_startPageTyped = m_startPageTyped || isTyping(key);
        } else if (watched == ui.txteBayLeaveFeedback) {
            m_leaveFeedbackTyped = m_leaveFeedbackTyped || isTyping(key);
        }
    } else if (event->type() == QEvent::MouseButtonRelease && watched == ui.lblWebPageLocPointer) {
        if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
            m_ctx.shell.openDocument(m_ctx.appFile(kUrlSetupPage), m_ctx.state.appPath);
    }
    return QDialog::eventFilter(watched, event);
}

void frmOptions::updateProxyControls()
{
    const bool on = m_ui->chkProxy->isChecked();
    for (QWidget* w :
         {static_cast<QWidget*>(m_ui->txtProxyServer), static_cast<QWidget*>(m_ui->txtProxyPort),
          static_cast<QWidget*>(m_ui->lblProxyServer), static_cast<QWidget*>(m_ui->lblProxyPort)})
        w->setEnabled(on);
}

void frmOptions::updateResizeControls()
{
    const bool on = m_ui->chkResizeForWeb->isChecked();
    for (QWidget* w : {static_cast<QWidget*>(m_ui->spnResizeLongestSide),
                       static_cast<QWidget*>(m_ui->spnResizeJpegQuality),
                       static_cast<QWidget*>(m_ui->lblResizeLongestSide),
                       static_cast<QWidget*>(m_ui->lblResizeJpegQuality)})
        w->setEnabled(on);
}

void frmOptions::normalizeField(QObject* field)
{
    Ui::frmOptions& ui = *m_ui;
    if (field == ui.txtAuctionDir)
        ui.txtAuctionDir->setText(normalizeHostImageDir(ui.txtAuctionDir->text()));
    else if (field == ui.txtImageLoc)
        ui.txtImageLoc->setText(normalizeWebImagesUrl(ui.txtImageLoc->text()));
    else if (field == ui.txtPastDays)
        ui.txtPastDays->setText(normalizePastDays(ui.txtPastDays->text()));
}

bool frmOptions::applySettings()
{
    std::optional<WaitCursor> wait(std::in_place);
    // OK or Apply pressed with Enter or an access key leaves the focus in the field being
    // edited: it is tidied as if left. Fields never visited are written as they were loaded.
    normalizeField(focusWidget());
    SettingsStore& store = m_ctx.store;
    const QString& app = Settings::kApp;
    const QString& o = Settings::kOptions;
    // Every value goes into one rewrite of the settings file.
    QList<std::pair<QString, QString>> values;
    const auto save = [&](const QString& key, const QString& value) {
        values.append({key, value});
    };

    for (const TextField& field : std::as_const(m_textFields))
        save(field.key, field.edit->text());
    for (const CheckField& field : std::as_const(m_checkFields))
        save(field.key, field.box->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
    for (const ChoiceField& field : std::as_const(m_choiceFields))
        save(field.key, SettingsStore::boolText(field.whenTrue->isChecked()));
    save(QStringLiteral("UploadAbsolute"),
         SettingsStore::boolText(m_ui->optUploadAbsolute->isChecked()));

    save(QStringLiteral("ResizeForWeb"),
         SettingsStore::boolText(m_ui->chkResizeForWeb->isChecked()));
    save(QStringLiteral("ResizeLongestSide"), QString::number(m_ui->spnResizeLongestSide->value()));
    save(QStringLiteral("ResizeJpegQuality"), QString::number(m_ui->spnResizeJpegQuality->value()));

    save(QStringLiteral("Country"), m_pendingCountry);
    save(QStringLiteral("CountryNum"), m_pendingCountryNum);
    save(QStringLiteral("Region"), m_pendingRegion);
    save(QStringLiteral("RegionNum"), m_pendingRegionNum);
    const int security = m_ui->cmbSMTPSecurity->currentIndex();
    save(QStringLiteral("SMTPSecurity"),
         security < 0 ? m_unknownSmtpSecurity
                      : m_ui->cmbSMTPSecurity->itemData(security).toString());
    const bool written = store.saveAll(app, o, values);

    m_ctx.state.options = OptionsRecord::load(store);
    wait.reset();
    if (!written)
        m_ctx.prompts.message(OptionsTexts::saveFailed(store.filePath(app)),
                              OptionsTexts::kSaveFailedTitle, PromptIcon::Exclamation);
    return written;
}

void frmOptions::onOk()
{
    // A changed form address makes the cached copy of that form stale.
    if (m_startPageTyped)
        QFile::remove(m_ctx.appFile(kStartPageCache));
    if (m_leaveFeedbackTyped)
        QFile::remove(m_ctx.appFile(kLeaveFeedbackCache));
    if (applySettings())
        accept();
}

void frmOptions::onTestFtp()
{
    const OptionsRecord& options = m_ctx.state.options;
    const QString port = options.remotePort.trimmed();
    FtpClient client;
    FtpClient::Result result;
    {
        const WaitCursor wait;
        result = client.connectToHost(options.remoteHost, port.isEmpty() ? 21 : port.toInt(),
                                      options.ftpUserid, options.ftpPassword);
        client.disconnectFromHost();
    }
    if (result.ok())
        m_ctx.prompts.message(OptionsTexts::connectionSucceeded(options.remoteHost));
    else
        ShowFtpError(m_ctx.prompts, result.code);
}

void frmOptions::onTestMail()
{
    const OptionsRecord& options = m_ctx.state.options;
    const QString port = options.remoteSmtpPort.trimmed();
    const MailServerSettings settings =
        mailServerFromSettings(options.remoteSmtpHost, port.isEmpty() ? QStringLiteral("25") : port,
                               options.smtpSecurity, options.smtpUser, options.smtpPassword);
    SmtpClient::Result result = settings.problem;
    if (result.ok()) {
        SmtpClient client;
        const WaitCursor wait;
        result = client.testConnection(settings.server);
    }
    if (result.ok())
        m_ctx.prompts.message(OptionsTexts::connectionSucceeded(options.remoteSmtpHost));
    else
        ShowSmtpError(m_ctx.prompts, result.code, result.notice);
}
