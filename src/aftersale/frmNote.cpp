#include "aftersale/frmNote.h"

#include "aftersale/MailLog.h"
#include "aftersale/frmEndingAuction.h"
#include "aftersale/texts.h"
#include "platform/Prompts.h"
#include "platform/SettingsStore.h"
#include "platform/SmtpClient.h"
#include "platform/SmtpErrors.h"
#include "platform/WindowFitUi.h"
#include "settings/AppContext.h"
#include "settings/SettingsCatalogue.h"
#include "settings/frmOptions.h"
#include "ui_frmNote.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QPushButton>
#include <QStatusBar>

using namespace AfterSaleTexts;

frmNote::frmNote(AppContext& ctx, frmEndingAuction* ending, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), ui(std::make_unique<Ui::frmNote>()), m_ending(ending)
{
    ui->setupUi(this);
    SmtpClient1 = new SmtpClient(this);
    SmtpClient1->setObjectName(QStringLiteral("SmtpClient1"));
    connect(ui->cmdSend, &QPushButton::clicked, this, &frmNote::cmdSend_Click);
    connect(ui->cmdClose, &QPushButton::clicked, this, &frmNote::close);
    fitToScreen(*this);
}

frmNote::~frmNote() = default;

bool frmNote::showNote(const ComposedNote& note)
{
    m_kind = note.kind;
    // The item window may move on while this window is open; the note stays with its item.
    m_itemId = m_ending && m_ending->data().hasCurrent() ? m_ending->data().bookmark()
                                                         : m_ctx.state.currentItemId;
    m_ctx.state.noteKind = noteKindName(note.kind);
    setWindowTitle(note.caption);
    ui->txtTo->setText(note.to);
    ui->txtCarbon->setText(note.cc);
    ui->txtDate->setText(note.date);
    ui->txtSubject->setText(note.subject);
    ui->rtbNote->setPlainText(note.body);
    ui->status->clearMessage();
    if (!checkServer()) {
        openOptions();
        close();
        return false;
    }
    show();
    return true;
}

bool frmNote::checkServer()
{
    const OptionsRecord& o = m_ctx.state.options;
    const QString port = o.remoteSmtpPort.trimmed();
    QString problem;
    if (o.remoteSmtpHost.trimmed().isEmpty())
        problem = kNoSmtpHost;
    else if (port.isEmpty() || port == QLatin1String("0"))
        problem = kNoSmtpPort;
    if (problem.isEmpty())
        return true;
    m_ctx.prompts.message(problem, kMissingInformationTitle, PromptIcon::Exclamation);
    return false;
}

void frmNote::openOptions()
{
    frmOptions dialog(m_ctx, parentWidget() ? parentWidget() : this);
    dialog.exec();
}

QString frmNote::statusText() const
{
    return ui->status->currentMessage();
}

void frmNote::setStatus(const QString& text)
{
    ui->status->showMessage(text);
    // Painted now: the next step may keep the event loop busy with the server for a while.
    ui->status->repaint();
}

void frmNote::setSending(bool sending)
{
    m_sending = sending;
    ui->cmdSend->setEnabled(!sending);
    ui->cmdClose->setEnabled(!sending);
}

MailNote frmNote::noteFromFields() const
{
    return {ui->txtTo->text(), ui->txtCarbon->text(), ui->txtSubject->text(),
            ui->rtbNote->toPlainText()};
}

MailSettings frmNote::mailSettings(const QString& sendFrom) const
{
    const OptionsRecord& o = m_ctx.state.options;
    return {o.remoteSmtpHost.trimmed(),
            o.remoteSmtpPort.trimmed(),
            sendFrom,
            o.smtpSecurity,
            o.smtpUser,
            o.smtpPassword};
}

void frmNote::cmdSend_Click()
{
    if (m_sending)
        return;
    // Read now, so an address just entered in Options counts. The From line carries it as
    // stored; only the envelope needs the bare address.
    const QString sendFrom =
        m_ctx.store.get(Settings::kApp, Settings::kOptions, QStringLiteral("SendFrom"), QString());
    if (sendFrom.trimmed().isEmpty()) {
        m_ctx.prompts.message(kNoSendFrom, kMissingInformationTitle, PromptIcon::Exclamation);
        openOptions();
        return;
    }

    setSending(true);
    m_outcome = sendNote(*SmtpClient1, mailSettings(sendFrom), noteFromFields(),
                         [this](const QString& text) { setStatus(text); });
    setSending(false);

    if (m_closeWhenSent) {
        // Closed while the client worked: the send was cancelled and nobody is there to read
        // about it.
        close();
        return;
    }
    if (!m_outcome.sent) {
        // The status keeps the step reached; the box says why it stopped there.
        ShowSmtpError(m_ctx.prompts, m_outcome.code, m_outcome.notice);
        return;
    }
    ++m_beeps;
    QApplication::beep();
    stampDate();
    keepInLog(m_outcome.mail);
}

void frmNote::keepInLog(const SentMail& mail)
{
    const NoteKind kind = noteKindFromName(m_ctx.state.noteKind).value_or(m_kind);
    MailLog log(m_ctx.itemDatabase);
    const LoggedNote note{0,
                          m_itemId,
                          QDateTime::currentDateTime(),
                          kind,
                          mail.recipients.join(u'\n'),
                          mail.subject,
                          QString::fromUtf8(mail.body)};
    // The note has gone out whatever happens here: the status and the stamped date stay.
    if (!log.add(note)) {
        m_ctx.prompts.message(mailLogNotKept(log.error()), kMailLogTitle, PromptIcon::Exclamation);
        return;
    }
    if (m_ending && m_ending->data().bookmark() == m_itemId)
        m_ending->refreshSentNotes();
}

void frmNote::stampDate()
{
    const NoteKind kind = noteKindFromName(m_ctx.state.noteKind).value_or(m_kind);
    if (m_ending)
        m_ending->stampNoteDate(kind, QDateTime::currentDateTime());
}

void frmNote::closeEvent(QCloseEvent* event)
{
    // The send waits inside this window: stop the client and close once it has returned.
    if (m_sending) {
        m_closeWhenSent = true;
        SmtpClient1->cancel();
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

void frmNote::reject()
{
    if (m_sending) {
        close();
        return;
    }
    QDialog::reject();
}
