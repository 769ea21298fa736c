#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <memory>
#include <optional>

namespace curl_common {
class EasyHandle;
}
namespace smtp_detail {
struct Task;
}

// How the connection to the mail server is protected. None is plain SMTP; StartTls upgrades a
// plain connection before anything else is said (and fails when the server cannot); Tls speaks
// TLS from the first byte (the "SSL" setting, usually port 465).
enum class MailSecurity
{
    None,
    StartTls,
    Tls
};

// The stored setting ("", "STARTTLS", "SSL"; letter case ignored; "None", "TLS" and "SSL/TLS"
// are read too). Empty optional for any other text: an unknown setting never falls back to a
// plain connection.
std::optional<MailSecurity> mailSecurityFromSetting(const QString& setting);
QString settingForMailSecurity(MailSecurity security);

// Sends mail to the seller's mail server over SMTP. Every operation runs on a worker thread
// while the caller waits in a local event loop, so windows stay live and cancel() can be called
// from them. Failures come back as the codes of SmtpErrors.h (22201..22219), never as library
// codes.
//
// The server's certificate is always checked against the system's trusted authorities. For
// tests only, the environment variable TALLYBID_TEST_CA_FILE may name a PEM file whose
// authorities are trusted instead.
class SmtpClient : public QObject
{
    Q_OBJECT
public:
    struct Server
    {
        QString host;
        int port = 25;
        MailSecurity security = MailSecurity::None;
        // Signs in (AUTH, the best mechanism the server offers) only when user is not empty.
        QString user, password;
    };

    struct Result
    {
        int code = 0;   // 0 = done; otherwise an SmtpErrors.h code
        QString detail; // the library's or the server's own words, for diagnostics only
        // For the user, after the code's text: set only for failures of the secure-mail
        // settings (certificate, TLS, sign-in), which no code describes.
        QString notice;
        bool ok() const { return code == 0; }
    };

    explicit SmtpClient(QObject* parent = nullptr);
    ~SmtpClient() override;

    // Applies to connecting, to every server reply and to data that stops moving.
    void setTimeoutSeconds(int seconds);
    int timeoutSeconds() const { return m_timeoutSeconds; }

    // Connects, greets (EHLO, else HELO), secures the connection and signs in as the server
    // settings ask, then says goodbye (QUIT).
    Result testConnection(const Server& server);

    // Hands one message to the server: the envelope (MAIL FROM the sender, RCPT TO each
    // recipient), then the pieces of data in order, then the end of data; done once the server
    // accepted the message. Pieces are sent as they are: line ends must already be CR LF. A
    // data line starting with "." goes out with the dot doubled, so it arrives as written. The
    // connection stays open until disconnectFromHost().
    Result send(const Server& server, const QString& sender, const QStringList& recipients,
                const QList<QByteArray>& pieces);

    // Says goodbye (QUIT) on the connection the last send left open, and closes it.
    Result disconnectFromHost();

    // Aborts the running operation; it then returns code 22219. Callable from any thread.
    void cancel();
    bool isBusy() const { return m_busy.load(); }

signals:
    // The envelope is on its way (MAIL FROM sent).
    void envelopeStarted();
    // The piece with this index (of the list given to send) is being handed over.
    void pieceStarted(int index);

private:
    Result perform(smtp_detail::Task& task);

    std::unique_ptr<curl_common::EasyHandle> m_curl;
    std::atomic<bool> m_busy{false};
    std::atomic<bool> m_cancel{false};
    int m_timeoutSeconds = 60;
};

// The server the mail settings describe, from their stored texts (host, port, security, user
// name, password). A port that is not a number from 1 to 65535, or a security setting not
// known, leaves problem set (22202; with a notice for the security setting).
struct MailServerSettings
{
    SmtpClient::Server server;
    SmtpClient::Result problem;
};
MailServerSettings mailServerFromSettings(const QString& host, const QString& port,
                                          const QString& security, const QString& user,
                                          const QString& password);
