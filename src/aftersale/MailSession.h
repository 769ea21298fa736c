#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

class SmtpClient;

// Where and how notes are sent: the "Options" settings RemoteSMTPHost, RemoteSMTPPort, SendFrom
// (as stored: the From line carries it so, the envelope gets it trimmed),
// SMTPSecurity ("", "STARTTLS" or "SSL"), SMTPUser and SMTPPassword. With the last three empty
// the send is plain SMTP without signing in.
struct MailSettings
{
    QString host, port, sendFrom;
    QString security, user, password;
};

// The note as the note window holds it.
struct MailNote
{
    QString to, cc, subject, body;
};

// What the server was handed, once it took the message: the envelope recipients, the subject
// as a mail reader decodes it and the body bytes after the header, CR LF line breaks included.
struct SentMail
{
    QStringList recipients;
    QString subject;
    QByteArray body;
};

struct MailOutcome
{
    bool sent = false;
    SentMail mail;      // filled when sent
    int code = 0;       // an SmtpErrors.h code when not sent
    QString detail;     // the library's or the server's words, for diagnostics
    QString notice;     // for the failure box, after the code's text (secure-mail failures)
    QString lastStatus; // the last status shown: where a failed send stopped
};

namespace MailStatus {
inline const QString kConnecting = QStringLiteral("Connecting...");
inline const QString kAddress = QStringLiteral("Address...");
inline const QString kMessage = QStringLiteral("Message...");
inline const QString kDisconnecting = QStringLiteral("Disconnecting...");
inline const QString kSent = QStringLiteral("Message sent...");
// "Header 0..." to "Header 4...".
QString header(int slot);
} // namespace MailStatus

// The date as mail readers expect it in a Date header: "Tue, 4 Mar 2025 14:05:09 -0500".
QString mailDate(const QDateTime& when);

// True when the note (addresses, subject, body) holds nothing but ASCII characters.
bool isPlainAscii(const QString& sendFrom, const MailNote& note);

// The five header slots exactly as sent, each ending in CR LF, the last one CR LF alone:
// From, To (trimmed), Date (for `when`), Subject (trimmed), the empty line. A note that is not
// plain ASCII (plainAscii false) gets its subject as RFC 2047 encoded words and the MIME lines
// for UTF-8 text in the last slot, before the empty line. Line breaks inside a value become
// blanks so they cannot end the header early.
QStringList headerSlots(const QString& sendFrom, const QString& to, const QString& subject,
                        const QDateTime& when, bool plainAscii = true);

// Everything handed to the server after DATA: the header slots, then the body as one piece
// with every line break made CR LF.
QList<QByteArray> messagePieces(const QString& sendFrom, const MailNote& note,
                                const QDateTime& when);

// Sends the note: status "Connecting...", then over one connection "Address..." when the
// envelope goes out (the trimmed To, and the trimmed cc when it is not blank; also reached when
// the connection failed, and where such a send stops), "Header 0..." to
// "Header 4..." and "Message..." as each part is handed over, then, once the server took the
// message, "Disconnecting..." and "Message sent...". status(text) is called at each step as it
// is reached. A failure stops the send where it happened; lastStatus tells which step that was.
// The caller checks the settings beforehand and owns the client (to cancel it). After a failed
// send the note window shows ShowSmtpError(prompts, code, notice): the status alone cannot say
// why it stopped (a refused buyer address, an untrusted certificate, a wrong password).
MailOutcome sendNote(SmtpClient& client, const MailSettings& settings, const MailNote& note,
                     const std::function<void(const QString&)>& status,
                     const QDateTime& when = QDateTime::currentDateTime());
// The same with a client of its own.
MailOutcome sendNote(const MailSettings& settings, const MailNote& note,
                     const std::function<void(const QString&)>& status);
