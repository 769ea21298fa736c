#include "aftersale/frmSentNote.h"

#include "aftersale/texts.h"
#include "platform/DateText.h"
#include "platform/WindowFitUi.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QLineEdit* readOnlyLine(const QString& name, const QString& text, QWidget* parent)
{
    auto* line = new QLineEdit(text, parent);
    line->setObjectName(name);
    line->setReadOnly(true);
    line->setCursorPosition(0);
    return line;
}

} // namespace

frmSentNote::frmSentNote(const LoggedNote& note, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmSentNote"));
    setWindowTitle(AfterSaleTexts::kSentNoteCaption + QStringLiteral(" - ") +
                   noteKindLabel(note.kind));

    auto* fields = new QFormLayout;
    // Recipients are kept one per line; a line box shows them side by side.
    QString recipients = note.recipients;
    recipients.replace(u'\n', QStringLiteral(", "));
    fields->addRow(QStringLiteral("To:"), readOnlyLine(QStringLiteral("txtTo"), recipients, this));
    fields->addRow(QStringLiteral("Date:"),
                   readOnlyLine(QStringLiteral("txtDate"), DateText::toDisplay(note.sentAt), this));
    fields->addRow(QStringLiteral("Subject:"),
                   readOnlyLine(QStringLiteral("txtSubject"), note.subject, this));

    auto* body = new QPlainTextEdit(this);
    body->setObjectName(QStringLiteral("txtBody"));
    body->setReadOnly(true);
    // The notes are plain text laid out with blanks: a fixed font keeps their columns.
    body->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    QString text = note.body;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    body->setPlainText(text);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* close = buttons->addButton(QStringLiteral("&Close"), QDialogButtonBox::RejectRole);
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* column = new QVBoxLayout(this);
    column->addLayout(fields);
    column->addWidget(body, 1);
    column->addWidget(buttons);
    resize(560, 420);
    fitToScreen(*this);
}
