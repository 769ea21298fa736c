#include "app/frmFind.h"

#include "app/FindCriteria.h"
#include "app/texts.h"
#include "db/ItemSql.h"
#include "db/RecordSet.h"
#include "platform/Database.h"
#include "platform/KeyFilter.h"
#include "platform/Prompts.h"
#include "platform/WindowFitUi.h"
#include "settings/AppContext.h"
#include "ui_frmFind.h"

#include <QApplication>
#include <QKeyEvent>
#include <QSet>
#include <QSqlQuery>

frmFind::frmFind(AppContext& ctx, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), ui(std::make_unique<Ui::frmFind>()),
      Data1(new RecordSet(ctx.itemDatabase, this))
{
    ui->setupUi(this);
    Data1->setObjectName(QStringLiteral("Data1"));
    Data1->setRecordSource(ItemSql::kItemsTable);
    setWindowTitle(Texts::kFindCaption);
    ui->txtItemNumber->installEventFilter(this);
    connect(ui->cmdItemFind, &QPushButton::clicked, this, &frmFind::cmdItemFind_Click);
    connect(ui->cmdSDescFind, &QPushButton::clicked, this, &frmFind::cmdSDescFind_Click);
    connect(ui->cmdTextFind, &QPushButton::clicked, this, &frmFind::cmdTextFind_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmFind::cmdCancel_Click);
    connect(ui->Text1, &QListWidget::itemDoubleClicked, this, &frmFind::cmdSDescFind_Click);
    // Enter in a box runs the Find of its own frame.
    connect(ui->txtItemNumber, &QLineEdit::returnPressed, this, &frmFind::cmdItemFind_Click);
    for (QLineEdit* box : {ui->txtEbayId, ui->txtDescription, ui->txtBuyerEmail, ui->txtBuyerName})
        connect(box, &QLineEdit::returnPressed, this, &frmFind::cmdTextFind_Click);
    fitToScreen(*this);
}

frmFind::~frmFind() = default;

QLineEdit* frmFind::itemNumberBox() const
{
    return ui->txtItemNumber;
}

bool frmFind::searchFromFirst() const
{
    return ui->optFromBeg->isChecked();
}

void frmFind::showEvent(QShowEvent* event)
{
    loadDescriptions();
    QDialog::showEvent(event);
}

void frmFind::loadDescriptions()
{
    // Each title once, in item order: choosing it finds its first item. The list is read again
    // only when the items changed since it was last filled.
    const QString version = dataVersion(Data1->database());
    if (!version.isEmpty() && version == m_descriptionsVersion)
        return;
    m_descriptionsVersion = version;
    const QString chosen = ui->Text1->currentItem() ? ui->Text1->currentItem()->text() : QString();
    ui->Text1->clear();
    QSqlQuery q(Data1->database());
    q.setForwardOnly(true);
    q.exec(QLatin1String("SELECT ShortDescription FROM ") + Data1->recordSource() +
           QLatin1String(" ORDER BY ID"));
    QSet<QString> seen;
    QStringList titles;
    while (q.next()) {
        const QString title = q.value(0).toString();
        if (title.trimmed().isEmpty() || seen.contains(title))
            continue;
        seen.insert(title);
        titles << title;
    }
    ui->Text1->addItems(titles);
    const auto again = ui->Text1->findItems(chosen, Qt::MatchExactly);
    if (!again.isEmpty())
        ui->Text1->setCurrentItem(again.first());
}

void frmFind::cmdItemFind_Click()
{
    if (ui->txtItemNumber->text().trimmed().isEmpty()) {
        m_ctx.prompts.message(Texts::kMissingItemNumber, Texts::kMissingItemNumberTitle,
                              PromptIcon::Information);
        return;
    }
    if (ui->txtItemNumber->text().trimmed().toDouble() > m_total.trimmed().toDouble())
        ui->txtItemNumber->setText(m_total);
    m_ctx.state.findCriteria = Texts::kItemSearch;
    accept();
}

void frmFind::cmdSDescFind_Click()
{
    const QString chosen = ui->Text1->currentItem() ? ui->Text1->currentItem()->text() : QString();
    if (chosen.trimmed().isEmpty()) {
        m_ctx.prompts.message(Texts::kMissingShortDesc, Texts::kMissingShortDescTitle,
                              PromptIcon::Information);
        return;
    }
    m_ctx.state.findCriteria = FindCriteria::byShortDescription(chosen);
    accept();
}

void frmFind::cmdTextFind_Click()
{
    m_ctx.state.findCriteria =
        FindCriteria::textSearch(ui->txtEbayId->text(), ui->txtDescription->text(),
                                 ui->txtBuyerEmail->text(), ui->txtBuyerName->text());
    accept();
}

void frmFind::cmdCancel_Click()
{
    reject();
}

bool frmFind::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->txtItemNumber && event->type() == QEvent::KeyPress) {
        if (isRefusedKey(static_cast<QKeyEvent*>(event), kDigits)) {
            QApplication::beep();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}
