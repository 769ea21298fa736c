#pragma once

#include "aftersale/MailSession.h"
#include "aftersale/NoteComposer.h"

#include <QDialog>
#include <QPointer>

#include <memory>

namespace Ui {
class frmNote;
}
class QCloseEvent;
class SmtpClient;
class frmEndingAuction;
struct AppContext;

// The note window: shows one composed note, lets the seller edit it and sends it over SMTP with
// the progress in its status bar. A note that went out stamps its date into the ending-auction
// window; the window stays open until the seller closes it.
class frmNote : public QDialog
{
    Q_OBJECT
public:
    frmNote(AppContext& ctx, frmEndingAuction* ending, QWidget* parent = nullptr);
    ~frmNote() override;

    // Fills the window from the note and records its kind in ctx.state.noteKind. Without a mail
    // host or port the seller is told, the Options dialog opens and the window closes: returns
    // false then.
    bool showNote(const ComposedNote& note);

    // What the Send button does; returns once the send has ended.
    void cmdSend_Click();

    QString statusText() const;
    bool isSending() const { return m_sending; }
    int beepCount() const { return m_beeps; }
    const MailOutcome& lastOutcome() const { return m_outcome; }
    SmtpClient& client() { return *SmtpClient1; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    // The mail host and port, as the note commands also check them.
    bool checkServer();
    void openOptions();
    void setStatus(const QString& text);
    void setSending(bool sending);
    MailNote noteFromFields() const;
    MailSettings mailSettings(const QString& sendFrom) const;
    void stampDate();
    void keepInLog(const SentMail& mail);

    AppContext& m_ctx;
    std::unique_ptr<Ui::frmNote> ui;
    QPointer<frmEndingAuction> m_ending;
    SmtpClient* SmtpClient1 = nullptr; // child
    NoteKind m_kind = NoteKind::WinningConfirmation;
    qint64 m_itemId = 0; // the item the note was composed for, for the mail log
    MailOutcome m_outcome;
    bool m_sending = false;
    bool m_closeWhenSent = false;
    int m_beeps = 0;
};
