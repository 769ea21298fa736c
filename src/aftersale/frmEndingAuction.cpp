#include "aftersale/frmEndingAuction.h"

#include "aftersale/FeedbackForm.h"
#include "aftersale/MailLog.h"
#include "aftersale/frmSentNote.h"
#include "aftersale/texts.h"
#include "db/DataBinder.h"
#include "db/ItemSql.h"
#include "platform/DateText.h"
#include "platform/KeyFilter.h"
#include "platform/PrintedWindows.h"
#include "platform/Prompts.h"
#include "platform/SettingsStore.h"
#include "platform/Shell.h"
#include "platform/WindowFitUi.h"
#include "settings/AppContext.h"
#include "settings/SettingsCatalogue.h"
#include "settings/frmOptions.h"
#include "ui_frmEndingAuction.h"
#include "web/FetchPage.h"
#include "web/PageCache.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStyle>
#include <QToolBar>
#include <QTreeWidget>

using namespace AfterSaleTexts;

namespace {

struct FieldDef
{
    int index;
    const char* column;
};
constexpr FieldDef kFields[] = {
    {0, "TransNotes"},          {1, "TrackingNumber"},      {11, "SalePrice"},
    {14, "DateBuyerContacted"}, {15, "DateBuyerResponded"}, {16, "BuyerEmail"},
    {17, "BuyerName"},          {18, "BuyerStreet1"},       {19, "BuyerStreet2"},
    {20, "BuyerStreet3"},       {21, "BuyerCity"},          {22, "BuyerState"},
    {23, "BuyerZip"},           {24, "BuyerPhone"},         {25, "DatePaymentRecd"},
    {26, "DatePaymentClrd"},    {27, "DateItemShipped"},    {28, "ShippingCost"},
    {29, "InsuranceCost"},
};

constexpr int kMoneyFields[] = {11, 28, 29};

bool isDateField(int index)
{
    return index == 14 || index == 15 || index == 25 || index == 26 || index == 27;
}

bool isMoneyField(int index)
{
    return index == 11 || index == 28 || index == 29;
}

// Toolbar buttons in their order: key, picture key, tooltip.
struct ToolDef
{
    const char* key;
    const char* image;
    const QString& tip;
};
const ToolDef kTools[] = {
    {"NotifyWinner", "HighBid", kTipNotifyWinner},
    {"PaymentReceived", "PaymentRecd", kTipPaymentReceived},
    {"ItemShipped", "Shipped", kTipItemShipped},
    {"DidntMakeReserve", "NoRes", kTipDidntMakeReserve},
    {"FeedbackView", "ViewFeed", kTipFeedbackView},
    {"FeedbackLeave", "LeaveFeed", kTipFeedbackLeave},
    {"AutoFill", "AutoFill", kTipAutoFill},
    {"Close", "Exit", kTipClose},
};

// ImageList1: the toolbar's pictures by key, taken from the style so they match the desktop.
QIcon toolPicture(const QStyle* style, const QString& key)
{
    static const QHash<QString, QStyle::StandardPixmap> pictures{
        {QStringLiteral("HighBid"), QStyle::SP_DialogYesButton},
        {QStringLiteral("PaymentRecd"), QStyle::SP_DialogSaveButton},
        {QStringLiteral("Shipped"), QStyle::SP_ArrowForward},
        {QStringLiteral("NoRes"), QStyle::SP_DialogNoButton},
        {QStringLiteral("ViewFeed"), QStyle::SP_FileDialogContentsView},
        {QStringLiteral("LeaveFeed"), QStyle::SP_FileDialogDetailedView},
        {QStringLiteral("AutoFill"), QStyle::SP_BrowserReload},
        {QStringLiteral("Exit"), QStyle::SP_DialogCloseButton},
    };
    return style->standardIcon(pictures.value(key, QStyle::SP_CustomBase));
}

// The text a date field takes instead of nothing: the date 1900-01-01, "1/1/1900" in en_US.
QString noDateText()
{
    return DateText::toDisplay(QDateTime(QDate(1900, 1, 1), QTime(0, 0)));
}

// An amount as stored in the record; a stored text that is no amount counts as nothing.
Money storedMoney(const RecordSet& records, const QString& column)
{
    const QVariant v = records.storedValue(column);
    if (v.typeId() == QMetaType::LongLong || v.typeId() == QMetaType::Int)
        return Money::fromUnits(v.toLongLong());
    return Currency::parse(v.toString()).value_or(Money());
}

} // namespace

// The boxes bound to Data1. Money boxes show their amount in currency form and hand it back as
// a plain amount, so "$1,234.50" on screen is stored as 1234.5; everything else goes through
// the shared binder.
class frmEndingAuction::Binding : public RecordBinding
{
public:
    void bind(QWidget* box, const QString& column) { m_boxes.bind(box, column); }
    void bindMoney(QLineEdit* box, const QString& column) { m_money.append({box, column, {}}); }
    bool isLoading() const { return m_loading || m_boxes.isLoading(); }

    void showRecord(const RecordSet& records) override
    {
        m_loading = true;
        m_boxes.showRecord(records);
        for (MoneyBox& m : m_money) {
            m.shown = Currency::reformat(records.text(m.column));
            m.box->setText(m.shown);
            m.box->setCursorPosition(0);
        }
        m_loading = false;
    }

    void collectEdits(RecordSet& records) override
    {
        m_boxes.collectEdits(records);
        for (MoneyBox& m : m_money) {
            const QString now = m.box->text();
            if (now == m.shown)
                continue;
            // Text that is no amount is kept as typed, as every bound box does.
            const std::optional<Money> amount = Currency::parse(now);
            records.setText(m.column, amount ? amount->toPlainText() : now);
            m.shown = now;
        }
    }

private:
    struct MoneyBox
    {
        QLineEdit* box;
        QString column;
        QString shown;
    };
    DataBinder m_boxes;
    QList<MoneyBox> m_money;
    bool m_loading = false;
};

frmEndingAuction::frmEndingAuction(AppContext& ctx, QWidget* parent)
    : QMainWindow(parent), m_ctx(ctx), ui(std::make_unique<Ui::frmEndingAuction>()),
      Data1(new RecordSet(ctx.itemDatabase, this)), m_binding(std::make_unique<Binding>())
{
    ui->setupUi(this);
    Data1->setObjectName(QStringLiteral("Data1"));
    for (const FieldDef& f : kFields)
        txtFields[f.index] = findChild<QWidget*>(QStringLiteral("txtFields_%1").arg(f.index));
    buildToolbar();
    bindFields();
    connectCommands();
    setUpSentNotes();
    // Loading: Data1 on the whole Items table; activation picks the item.
    Data1->setRecordSource(QStringLiteral("Items"));
    Data1->refresh();
    // The notes list and paperwork row leave a small screen too little height for the frame:
    // there the frame scrolls instead of pushing the window off the screen.
    scrollWhenShort(*ui->framEndAuction);
    fitToScreen(*this);
}

frmEndingAuction::~frmEndingAuction() = default;

frmEndingAuction* frmEndingAuction::openEndingAuction(AppContext& ctx,
                                                      const QStringList& picturePaths,
                                                      QWidget& owner)
{
    // The slots stay filled for a later clean-up.
    for (int slot = 1; slot <= 5; ++slot)
        ctx.state.uploadFiles[slot].clear();
    for (int slot = 1; slot <= 3 && slot <= picturePaths.size(); ++slot)
        ctx.state.uploadFiles[slot] = picturePaths.at(slot - 1);
    frmEndingAuction* window = showFor(ctx, owner);
    window->positionOnCurrentItem();
    return window;
}

frmEndingAuction* frmEndingAuction::showFor(AppContext& ctx, QWidget& owner)
{
    auto* window = owner.findChild<frmEndingAuction*>(QString(), Qt::FindDirectChildrenOnly);
    if (!window) {
        window = new frmEndingAuction(ctx, &owner);
        window->setAttribute(Qt::WA_DeleteOnClose);
    }
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}

void frmEndingAuction::buildToolbar()
{
    const QHash<QString, QAction*> commands{
        {QStringLiteral("NotifyWinner"), ui->mnuNotifyWinner},
        {QStringLiteral("PaymentReceived"), ui->mnuPaymentReceived},
        {QStringLiteral("ItemShipped"), ui->mnuItemShipped},
        {QStringLiteral("DidntMakeReserve"), ui->mnuDidntMakeReserve},
        {QStringLiteral("FeedbackView"), ui->mnuFeedbackView},
        {QStringLiteral("FeedbackLeave"), ui->mnuFeedbackLeave},
        {QStringLiteral("Close"), ui->mnuExit},
    };
    for (const ToolDef& t : kTools) {
        const QString key = QString::fromLatin1(t.key);
        auto* button = new QAction(toolPicture(style(), QString::fromLatin1(t.image)), t.tip, this);
        button->setObjectName(key);
        button->setData(key);
        button->setToolTip(t.tip);
        // A button runs the menu command of its name; AutoFill has nothing behind it.
        if (QAction* menu = commands.value(key))
            connect(button, &QAction::triggered, menu, [menu] { menu->trigger(); });
        ui->Toolbar1->addAction(button);
        m_toolButtons.insert(key, button);
    }
}

void frmEndingAuction::setUpSentNotes()
{
    QTreeWidget* list = ui->lstSentNotes;
    list->setHeaderLabels({kSentNotesDate, kSentNotesKind, kSentNotesSubject});
    list->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    list->header()->setStretchLastSection(true);
    // Activated is a double-click or Enter, whatever the style says about single clicks.
    connect(list, &QTreeWidget::itemActivated, this,
            [this](QTreeWidgetItem* row) { openSentNote(row); });
    connect(Data1, &RecordSet::repositioned, this, &frmEndingAuction::refreshSentNotes);
}

void frmEndingAuction::bindFields()
{
    for (const FieldDef& f : kFields) {
        const QString column = QString::fromLatin1(f.column);
        if (isMoneyField(f.index))
            m_binding->bindMoney(qobject_cast<QLineEdit*>(txtFields[f.index]), column);
        else
            m_binding->bind(txtFields[f.index], column);
    }
    m_binding->bind(ui->chkFeedbackComplete, QStringLiteral("FeedbackComplete"));
    Data1->setBinding(m_binding.get());
    connect(Data1, &RecordSet::writeFailed, this, [this](const QString& why) {
        m_ctx.prompts.message(saveFailed(why), kSaveFailedTitle, PromptIcon::Critical);
    });

    for (const FieldDef& f : kFields) {
        const int i = f.index;
        if (auto* line = qobject_cast<QLineEdit*>(txtFields[i]))
            connect(line, &QLineEdit::textChanged, this, [this, i] { onFieldChanged(i); });
        txtFields[i]->installEventFilter(this);
    }
}

void frmEndingAuction::connectCommands()
{
    const auto on = [this](QAction* action, auto slot) {
        connect(action, &QAction::triggered, this, slot);
    };
    on(ui->mnuExit, &QWidget::close);
    on(ui->mnuNotifyWinner, &frmEndingAuction::mnuNotifyWinner_Click);
    on(ui->mnuPaymentReceived, &frmEndingAuction::mnuPaymentReceived_Click);
    on(ui->mnuItemShipped, &frmEndingAuction::mnuItemShipped_Click);
    on(ui->mnuDidntMakeReserve, &frmEndingAuction::mnuDidntMakeReserve_Click);
    on(ui->mnuFeedbackLeave, &frmEndingAuction::mnuFeedbackLeave_Click);
    on(ui->mnuFeedbackView, &frmEndingAuction::mnuFeedbackView_Click);
    connect(ui->cmdNow1, &QPushButton::clicked, this, [this] { setNow(15); });
    connect(ui->Command1, &QPushButton::clicked, this, [this] { setNow(25); });
    connect(ui->Command2, &QPushButton::clicked, this, [this] { setNow(26); });
    connect(ui->cmdInvoice, &QPushButton::clicked, this,
            [this] { openPaperwork(PaperKind::Invoice); });
    connect(ui->cmdPackingSlip, &QPushButton::clicked, this,
            [this] { openPaperwork(PaperKind::PackingSlip); });
}

QWidget* frmEndingAuction::field(int index) const
{
    return index >= 0 && index < kFieldCount ? txtFields[index] : nullptr;
}

QString frmEndingAuction::fieldText(int index) const
{
    const QWidget* box = field(index);
    return box ? DataBinder::boxText(box) : QString();
}

void frmEndingAuction::setFieldText(int index, const QString& text)
{
    if (QWidget* box = field(index))
        DataBinder::setBoxText(box, text);
}

void frmEndingAuction::beep()
{
    ++m_beeps;
    QApplication::beep();
}

// ---------------------------------------------------------------- record

void frmEndingAuction::positionOnCurrentItem()
{
    positionOn(ItemSql::byKey(m_ctx.state.currentItemId));
}

void frmEndingAuction::positionOnEbayId(const QString& ebayId)
{
    positionOn(ItemSql::byEbayId(ebayId));
}

void frmEndingAuction::positionOn(const QString& criteria)
{
    Data1->findFirst(criteria);
    showMoneyAsCurrency();
}

bool frmEndingAuction::saveRecord()
{
    return Data1->update();
}

void frmEndingAuction::stampNoteDate(NoteKind kind, const QDateTime& when)
{
    const int index = kind == NoteKind::PaymentReceived ? 25
                      : kind == NoteKind::ItemShipped   ? 27
                                                        : 14;
    setFieldText(index, DateText::toDisplay(when));
}

void frmEndingAuction::setNow(int index)
{
    setFieldText(index, DateText::toDisplay(QDateTime::currentDateTime()));
}

// ---------------------------------------------------------------- editing rules

void frmEndingAuction::onFieldChanged(int index)
{
    if (index == 16) {
        // Also while a record is shown: the commands follow the buyer's address.
        setNoteCommandsEnabled(!fieldText(16).trimmed().isEmpty());
        return;
    }
    // A date column is never left empty by the user; 1/1/1900 stands for no date. A record
    // shown with no date keeps its empty box, so the shipping check can still see it.
    if (isDateField(index) && !m_binding->isLoading() && fieldText(index).isEmpty())
        setFieldText(index, noDateText());
}

void frmEndingAuction::onMoneyFieldLeft(int index)
{
    if (fieldText(index).isEmpty())
        setFieldText(index, QStringLiteral("0"));
    setFieldText(index, Currency::reformat(fieldText(index)));
}

void frmEndingAuction::showMoneyAsCurrency()
{
    for (int i : kMoneyFields)
        setFieldText(i, Currency::reformat(fieldText(i)));
}

void frmEndingAuction::zeroEmptyMoneyFields()
{
    for (int i : kMoneyFields)
        if (fieldText(i).isEmpty())
            setFieldText(i, QStringLiteral("0"));
}

void frmEndingAuction::setNoteCommandsEnabled(bool enabled)
{
    for (QAction* a : {ui->mnuFeedbackLeave, ui->mnuFeedbackView, ui->mnuNotifyWinner,
                       ui->mnuPaymentReceived, ui->mnuItemShipped, ui->mnuDidntMakeReserve})
        a->setEnabled(enabled);
    for (const char* key : {"FeedbackLeave", "FeedbackView", "NotifyWinner", "PaymentReceived",
                            "ItemShipped", "DidntMakeReserve"})
        m_toolButtons.value(QString::fromLatin1(key))->setEnabled(enabled);
}

bool frmEndingAuction::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        // Only the two costs filter keys; the sell price takes anything.
        const auto* key = static_cast<QKeyEvent*>(event);
        if ((watched == txtFields[28] || watched == txtFields[29]) &&
            isRefusedKey(key, kDigits + QLatin1String(".$"))) {
            beep();
            return true;
        }
    } else if (event->type() == QEvent::FocusOut) {
        // A message box or menu taking the focus does not count as leaving the box.
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
            for (int i : kMoneyFields)
                if (watched == txtFields[i])
                    onMoneyFieldLeft(i);
    }
    return QMainWindow::eventFilter(watched, event);
}

// ---------------------------------------------------------------- notes

namespace {
// The buyer's boxes (16 to 23) into a note's or a paper's fields, which name them alike.
template <typename Fields, typename BoxText> void readBuyer(Fields& f, const BoxText& box)
{
    f.buyerEmail = box(16);
    f.buyerName = box(17);
    for (int i = 0; i < 3; ++i)
        f.street[i] = box(18 + i);
    f.city = box(21);
    f.state = box(22);
    f.zip = box(23);
}
} // namespace

NoteFields frmEndingAuction::noteFields() const
{
    NoteFields f;
    f.sellPrice = fieldText(11);
    readBuyer(f, [this](int index) { return fieldText(index); });
    f.datePaymentCleared = fieldText(26);
    f.shippingCost = fieldText(28);
    f.insuranceCost = fieldText(29);
    return f;
}

NoteItem frmEndingAuction::noteItem() const
{
    NoteItem item;
    item.ebayId = m_ctx.state.currentEbayId;
    item.shortDescription = m_ctx.state.currentShortDescription;
    item.salePrice = storedMoney(*Data1, QStringLiteral("SalePrice"));
    item.shippingCost = storedMoney(*Data1, QStringLiteral("ShippingCost"));
    item.insuranceCost = storedMoney(*Data1, QStringLiteral("InsuranceCost"));
    return item;
}

void frmEndingAuction::report(const NoteProblem& problem)
{
    m_ctx.prompts.message(problem.message, kMissingInformationTitle, PromptIcon::Exclamation);
    if (QWidget* box = field(problem.focusField))
        box->setFocus(Qt::OtherFocusReason);
    if (problem.opensOptions)
        openOptions();
}

void frmEndingAuction::openOptions()
{
    frmOptions dialog(m_ctx, this);
    dialog.exec();
}

void frmEndingAuction::runNote(NoteKind kind)
{
    if (const auto problem = checkNoteFields(kind, noteFields())) {
        report(*problem);
        return;
    }
    const bool winner = kind == NoteKind::WinningConfirmation;
    if (winner) {
        zeroEmptyMoneyFields();
        showMoneyAsCurrency();
        m_ctx.state.noteKind = noteKindName(kind);
    }
    const NoteSettings settings = NoteSettings::from(
        m_ctx.state.options,
        m_ctx.store.get(Settings::kApp, Settings::kOptions, QStringLiteral("RecdMsg"), QString()));
    if (const auto problem = checkMailServer(settings)) {
        report(*problem);
        return;
    }
    if (winner) {
        // The total is worked out from the record, so it must hold what was just typed.
        saveRecord();
        showMoneyAsCurrency();
    }
    m_ctx.state.noteKind = noteKindName(kind);
    emit noteComposed(
        composeNote(kind, noteFields(), noteItem(), settings, QDateTime::currentDateTime()));
    if (kind == NoteKind::ItemShipped)
        emit cleanupRequested();
}

void frmEndingAuction::mnuNotifyWinner_Click()
{
    runNote(NoteKind::WinningConfirmation);
}

void frmEndingAuction::mnuPaymentReceived_Click()
{
    runNote(NoteKind::PaymentReceived);
}

void frmEndingAuction::mnuItemShipped_Click()
{
    runNote(NoteKind::ItemShipped);
}

void frmEndingAuction::mnuDidntMakeReserve_Click()
{
    runNote(NoteKind::DidntMakeReserve);
}

// ---------------------------------------------------------------- mail log

QTreeWidget& frmEndingAuction::sentNotes() const
{
    return *ui->lstSentNotes;
}

void frmEndingAuction::refreshSentNotes()
{
    QTreeWidget* list = ui->lstSentNotes;
    list->clear();
    if (!Data1->hasCurrent())
        return;
    MailLog log(m_ctx.itemDatabase);
    const std::optional<QList<LoggedNote>> notes = log.forItem(Data1->bookmark());
    if (!notes) {
        // Said in the list rather than in a box, which would come back with every move.
        auto* row = new QTreeWidgetItem(list, {QString(), kMailLogTitle, log.error()});
        row->setFlags(Qt::NoItemFlags);
        row->setToolTip(2, mailLogNotRead(log.error()));
        return;
    }
    for (const LoggedNote& note : *notes) {
        auto* row = new QTreeWidgetItem(
            list, {DateText::toDisplay(note.sentAt), noteKindLabel(note.kind), note.subject});
        row->setData(0, Qt::UserRole, note.id);
    }
    if (list->topLevelItemCount() > 0)
        list->setCurrentItem(list->topLevelItem(list->topLevelItemCount() - 1));
}

frmSentNote* frmEndingAuction::openSentNote(QTreeWidgetItem* row)
{
    if (!row || !row->data(0, Qt::UserRole).isValid())
        return nullptr;
    MailLog log(m_ctx.itemDatabase);
    const std::optional<LoggedNote> note = log.note(row->data(0, Qt::UserRole).toLongLong());
    if (!note) {
        m_ctx.prompts.message(mailLogNotRead(log.error()), kMailLogTitle, PromptIcon::Exclamation);
        return nullptr;
    }
    auto* viewer = new frmSentNote(*note, this);
    viewer->setAttribute(Qt::WA_DeleteOnClose);
    viewer->show();
    return viewer;
}

// ---------------------------------------------------------------- paperwork

std::optional<PaperworkData> frmEndingAuction::paperworkData()
{
    PaperworkData d;
    const OptionsRecord& o = m_ctx.state.options;
    for (int i = 0; i < 4; ++i)
        d.sellerAddress[i] = o.sendAddress[i];
    readBuyer(d, [this](int index) { return fieldText(index); });
    d.buyerPhone = fieldText(24);
    d.trackingNumber = fieldText(1);
    d.itemNumber = Data1->text(QStringLiteral("EbayID"));
    d.description = Data1->text(QStringLiteral("ShortDescription"));
    d.date = QDate::currentDate();

    // The amounts as they stand on screen; an empty box is nothing owed.
    const struct
    {
        int index;
        Money* amount;
        const char* caption;
    } amounts[] = {{11, &d.price, "sell price"},
                   {28, &d.shipping, "shipping cost"},
                   {29, &d.insurance, "insurance cost"}};
    for (const auto& a : amounts) {
        const QString text = fieldText(a.index).trimmed();
        if (text.isEmpty())
            continue;
        const std::optional<Money> amount = Currency::parse(text);
        if (!amount) {
            m_ctx.prompts.message(notAnAmount(QLatin1String(a.caption), text),
                                  kMissingInformationTitle, PromptIcon::Exclamation);
            field(a.index)->setFocus();
            return std::nullopt;
        }
        *a.amount = *amount;
    }
    return d;
}

QWidget* frmEndingAuction::openPaperwork(PaperKind kind)
{
    if (!Data1->hasCurrent())
        return nullptr;
    const QString path = m_ctx.appFile(paperTemplateName(kind));
    QString why;
    const std::optional<QString> html = readPaperTemplate(path, why);
    if (!html) {
        m_ctx.prompts.message(templateNotRead(path, why), paperTitle(kind),
                              PromptIcon::Exclamation);
        return nullptr;
    }
    const std::optional<PaperworkData> data = paperworkData();
    if (!data)
        return nullptr;
    QString baseName = paperTitle(kind).remove(u' ');
    if (!data->itemNumber.trimmed().isEmpty())
        baseName += u'-' + data->itemNumber.trimmed();
    QString failure;
    QWidget* preview = PrintedWindows::makePaperwork(
        m_ctx, kind, fillPaperwork(*html, paperworkValues(*data)), baseName, this, failure);
    if (!preview) {
        m_ctx.prompts.message(failure, paperTitle(kind), PromptIcon::Critical);
        return nullptr;
    }
    preview->setAttribute(Qt::WA_DeleteOnClose);
    preview->show();
    return preview;
}

// ---------------------------------------------------------------- feedback

void frmEndingAuction::mnuFeedbackLeave_Click()
{
    const OptionsRecord& o = m_ctx.state.options;
    const QString page = FetchPage(m_ctx, o.ebayLeaveFeedback, 2, this);
    // Nothing came: the download window has said why, and feedback is not done.
    if (page.isEmpty())
        return;
    const QString filled = fillFeedbackForm(
        page, {o.userEmail, o.ebayPassword, fieldText(16), m_ctx.state.currentEbayId, o.feedback});
    const QString path = m_ctx.appFile(kFeedbackPage);
    if (!writePrintedFile(path, filled)) {
        m_ctx.prompts.message(pageNotWritten(path), kSaveFailedTitle, PromptIcon::Critical);
        return;
    }
    OpenDocument(m_ctx.shell, path, m_ctx.state.appPath);
    ui->chkFeedbackComplete->setChecked(true);
}

void frmEndingAuction::mnuFeedbackView_Click()
{
    OpenDocument(m_ctx.shell, m_ctx.state.options.ebayViewFeedback + fieldText(16).trimmed(),
                 m_ctx.state.appPath);
}

// ---------------------------------------------------------------- window life

void frmEndingAuction::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        positionOnCurrentItem();
    QMainWindow::changeEvent(event);
}

void frmEndingAuction::closeEvent(QCloseEvent* event)
{
    zeroEmptyMoneyFields();
    // A record that cannot be written has been reported; the window goes regardless.
    Data1->close(DataAction::Unload);
    event->accept();
}
