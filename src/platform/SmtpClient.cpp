#include "platform/SmtpClient.h"

#include "platform/CurlCommon.h"
#include "platform/SmtpErrors.h"

#include <QMetaObject>
#include <QSysInfo>

#include <curl/curl.h>

#include <algorithm>
#include <cerrno>
#include <functional>

namespace {

const char* const kTestCaVariable = "TALLYBID_TEST_CA_FILE";

// The commands whose refusal tells what went wrong; the rest of the dialogue is not tracked.
enum class Command
{
    None,
    Greeting,
    StartTls,
    Auth,
    Mail,
    Rcpt,
    Data,
    Quit
};

Command commandOf(const QByteArray& line)
{
    const QByteArray verb = line.trimmed().split(' ').value(0).toUpper();
    if (verb == "EHLO" || verb == "HELO")
        return Command::Greeting;
    if (verb == "STARTTLS")
        return Command::StartTls;
    if (verb == "AUTH")
        return Command::Auth;
    if (verb == "MAIL")
        return Command::Mail;
    if (verb == "RCPT")
        return Command::Rcpt;
    if (verb == "DATA")
        return Command::Data;
    if (verb == "QUIT")
        return Command::Quit;
    return Command::None; // the lines of a sign-in dialogue, among others
}

// Addresses end up inside a command line: a line break in one would start another command.
bool isUsableAddress(const QString& address)
{
    return !address.isEmpty() && std::none_of(address.begin(), address.end(),
                                              [](QChar c) { return c < u' ' || c == QChar(0x7f); });
}

// The name the client greets with: the machine's own, when it is a plain host name.
QByteArray greetingName()
{
    const QByteArray name = QSysInfo::machineHostName().toLatin1();
    const bool plain = !name.isEmpty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '-' || c == '.';
    });
    return plain ? name : QByteArrayLiteral("localhost");
}

} // namespace

namespace smtp_detail {
// One operation as the worker thread carries it out.
struct Task
{
    enum class Kind
    {
        Test,
        Send,
        Quit
    };
    Kind kind = Kind::Send;
    QByteArray url, user, password, sender, caFile;
    bool startTls = false;
    curl_common::StringList recipients;
    const QList<QByteArray>* pieces = nullptr;

    const std::atomic<bool>* cancel = nullptr;
    std::function<void()> reportEnvelope; // called on the worker thread
    std::function<void(int)> reportPiece;

    // Filled in by the worker thread.
    qsizetype piece = 0, offset = 0, announced = -1;
    bool dataStarted = false;
    bool quitting = false;
    Command lastCommand = Command::None;
    QByteArray lastReply;
    CURLcode result = CURLE_OK;
    long osErrno = 0;
    char errorBuffer[CURL_ERROR_SIZE] = {};
};
} // namespace smtp_detail

using smtp_detail::Task;

namespace {

int replyCode(const Task& t)
{
    const int code = t.lastReply.left(3).toInt();
    return code >= 100 && code <= 599 ? code : 0;
}

// The server said no (a 4xx or 5xx reply) to the command last sent.
int codeForRefusal(const Task& t, int reply)
{
    if (reply == 421)
        return 22218; // the server is closing the connection
    if (reply == 530 || reply == 535)
        return 22210; // sign-in wanted or refused: explained by a notice
    if (t.dataStarted)
        return 22210; // the message itself was refused
    switch (t.lastCommand) {
    case Command::Mail:
        return 22214;
    case Command::Rcpt:
        return 22215;
    case Command::Data:
        return reply == 503 || reply == 554 ? 22215 : 22210; // no recipient was accepted
    default:
        return 22210;
    }
}

int codeFor(const Task& t)
{
    const int reply = replyCode(t);
    switch (t.result) {
    case CURLE_OK:
        return 0;
    case CURLE_FAILED_INIT:
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_NOT_BUILT_IN:
        return 22203;
    case CURLE_URL_MALFORMAT:
        return 22202;
    case CURLE_OUT_OF_MEMORY:
        return 22204;
    case CURLE_COULDNT_RESOLVE_HOST:
        return 22205;
    case CURLE_COULDNT_CONNECT:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
        return 22207;
    case CURLE_OPERATION_TIMEDOUT:
        return 22209;
    case CURLE_ABORTED_BY_CALLBACK:
        return 22219;
    case CURLE_LOGIN_DENIED:
    case CURLE_USE_SSL_FAILED:
    case CURLE_WEIRD_SERVER_REPLY:
        return reply >= 400 ? codeForRefusal(t, reply) : 22210;
    case CURLE_SEND_ERROR:
        if (reply >= 400)
            return codeForRefusal(t, reply);
        return t.osErrno == EPIPE || t.osErrno == ECONNRESET ? 22218 : 22212;
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
        return reply >= 400 ? codeForRefusal(t, reply) : 22218;
    default:
        return reply >= 400 ? codeForRefusal(t, reply) : 22210;
    }
}

QString noticeFor(const Task& t)
{
    switch (t.result) {
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
        return SmtpNotice::certificateNotTrusted();
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
        return SmtpNotice::secureConnectionFailed();
    case CURLE_USE_SSL_FAILED:
        return SmtpNotice::startTlsNotOffered();
    case CURLE_LOGIN_DENIED:
        return SmtpNotice::signInRefused();
    default:
        break;
    }
    const int reply = replyCode(t);
    if (reply == 535)
        return SmtpNotice::signInRefused();
    if (reply == 530)
        return SmtpNotice::signInRequired();
    return {};
}

int onProgress(void* data, curl_off_t, curl_off_t, curl_off_t, curl_off_t)
{
    return static_cast<Task*>(data)->cancel->load() ? 1 : 0;
}

// Hands the pieces over one at a time, each announced as it starts, so the caller can show
// which part of the message is on its way.
size_t onRead(char* buffer, size_t size, size_t count, void* data)
{
    auto* t = static_cast<Task*>(data);
    if (t->cancel->load())
        return CURL_READFUNC_ABORT;
    t->dataStarted = true;
    const QList<QByteArray>& pieces = *t->pieces;
    while (t->piece < pieces.size()) {
        const QByteArray& piece = pieces.at(t->piece);
        if (t->announced != t->piece) {
            t->announced = t->piece;
            t->reportPiece(int(t->piece));
        }
        const qsizetype left = piece.size() - t->offset;
        if (left > 0) {
            const qsizetype n = std::min<qsizetype>(left, qsizetype(size * count));
            std::copy_n(piece.constData() + t->offset, n, buffer);
            t->offset += n;
            return size_t(n);
        }
        ++t->piece;
        t->offset = 0;
    }
    return 0;
}

// The dialogue as the library logs it: which command went last, what the server last said.
int onDebug(CURL*, curl_infotype type, char* text, size_t size, void* data)
{
    auto* t = static_cast<Task*>(data);
    if (type == CURLINFO_HEADER_OUT) {
        const Command command = commandOf(QByteArray(text, qsizetype(size)));
        if (command == Command::Quit)
            t->quitting = true; // a goodbye after a refusal must not hide the refusal
        if (command == Command::None || t->quitting)
            return 0;
        t->lastCommand = command;
        if (command == Command::Mail && t->reportEnvelope)
            t->reportEnvelope();
    } else if (type == CURLINFO_HEADER_IN && !t->quitting) {
        t->lastReply = QByteArray(text, qsizetype(size)).trimmed();
    }
    return 0;
}

void setOptions(CURL* h, Task& t, long timeout)
{
    curl_easy_setopt(h, CURLOPT_URL, t.url.constData());
    curl_easy_setopt(h, CURLOPT_PROTOCOLS_STR, "smtp,smtps");
    curl_easy_setopt(h, CURLOPT_PROXY, ""); // the mail server is reached directly
    curl_easy_setopt(h, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(h, CURLOPT_CONNECTTIMEOUT, timeout);
    curl_easy_setopt(h, CURLOPT_SERVER_RESPONSE_TIMEOUT, timeout);
    curl_easy_setopt(h, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(h, CURLOPT_LOW_SPEED_TIME, timeout);
    curl_easy_setopt(h, CURLOPT_ERRORBUFFER, t.errorBuffer);
    curl_easy_setopt(h, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(h, CURLOPT_XFERINFOFUNCTION, &onProgress);
    curl_easy_setopt(h, CURLOPT_XFERINFODATA, &t);
    // The debug hook sees the dialogue only while the library is verbose; it prints nothing.
    curl_easy_setopt(h, CURLOPT_VERBOSE, 1L);
    curl_easy_setopt(h, CURLOPT_DEBUGFUNCTION, &onDebug);
    curl_easy_setopt(h, CURLOPT_DEBUGDATA, &t);
    // Certificates are always checked; there is no switch to accept an untrusted one.
    curl_easy_setopt(h, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(h, CURLOPT_SSL_VERIFYHOST, 2L);
    if (!t.caFile.isEmpty())
        curl_easy_setopt(h, CURLOPT_CAINFO, t.caFile.constData());
    if (t.startTls)
        curl_easy_setopt(h, CURLOPT_USE_SSL, long(CURLUSESSL_ALL));
    if (!t.user.isEmpty()) {
        curl_easy_setopt(h, CURLOPT_USERNAME, t.user.constData());
        curl_easy_setopt(h, CURLOPT_PASSWORD, t.password.constData());
    }
    if (t.kind == Task::Kind::Test) {
        // A harmless command once greeted, secured and signed in; the connection then stays
        // cached, so closing it says goodbye (a connect-only session would just hang up).
        curl_easy_setopt(h, CURLOPT_CUSTOMREQUEST, "NOOP");
        curl_easy_setopt(h, CURLOPT_NOBODY, 1L);
    } else {
        curl_easy_setopt(h, CURLOPT_MAIL_FROM, t.sender.constData());
        curl_easy_setopt(h, CURLOPT_MAIL_RCPT, t.recipients.get());
        curl_easy_setopt(h, CURLOPT_UPLOAD, 1L);
        curl_easy_setopt(h, CURLOPT_READFUNCTION, &onRead);
        curl_easy_setopt(h, CURLOPT_READDATA, &t);
    }
}

// Nothing may point into the finished task once it is gone: the goodbye (QUIT) runs later on
// the same handle.
void clearTaskPointers(CURL* h)
{
    curl_easy_setopt(h, CURLOPT_ERRORBUFFER, nullptr);
    curl_easy_setopt(h, CURLOPT_NOPROGRESS, 1L);
    curl_easy_setopt(h, CURLOPT_XFERINFODATA, nullptr);
    curl_easy_setopt(h, CURLOPT_VERBOSE, 0L);
    curl_easy_setopt(h, CURLOPT_DEBUGFUNCTION, nullptr);
    curl_easy_setopt(h, CURLOPT_DEBUGDATA, nullptr);
    curl_easy_setopt(h, CURLOPT_READDATA, nullptr);
    curl_easy_setopt(h, CURLOPT_MAIL_RCPT, nullptr);
    curl_easy_setopt(h, CURLOPT_MAIL_FROM, nullptr);
}

// Fills the connection part of a task; a result with a code when the settings cannot work.
SmtpClient::Result prepare(Task& t, const SmtpClient::Server& server)
{
    const QString host = server.host.trimmed();
    if (host.isEmpty() || curl_common::isReservedInvalidName(host))
        return {22205, QStringLiteral("host name does not resolve"), {}};
    if (!isUsableAddress(host) || host.contains(u'/') || host.contains(u'@'))
        return {22205, QStringLiteral("not a host name"), {}};
    if (server.port < 1 || server.port > 65535)
        return {22202, QStringLiteral("port out of range"), {}};
    QString urlHost = host;
    if (host.contains(u':') && !host.startsWith(u'['))
        urlHost = u'[' + host + u']';
    const QString scheme =
        server.security == MailSecurity::Tls ? QStringLiteral("smtps") : QStringLiteral("smtp");
    t.url = (scheme + QStringLiteral("://") + urlHost + u':' + QString::number(server.port) + u'/')
                .toUtf8() +
            greetingName();
    t.startTls = server.security == MailSecurity::StartTls;
    if (!server.user.isEmpty()) {
        t.user = server.user.toUtf8();
        t.password = server.password.toUtf8();
    }
    t.caFile = qgetenv(kTestCaVariable);
    return {};
}

} // namespace

std::optional<MailSecurity> mailSecurityFromSetting(const QString& setting)
{
    const QString s = setting.trimmed().toUpper();
    if (s.isEmpty() || s == u"NONE")
        return MailSecurity::None;
    if (s == u"STARTTLS")
        return MailSecurity::StartTls;
    if (s == u"SSL" || s == u"TLS" || s == u"SSL/TLS")
        return MailSecurity::Tls;
    return std::nullopt;
}

QString settingForMailSecurity(MailSecurity security)
{
    switch (security) {
    case MailSecurity::StartTls:
        return QStringLiteral("STARTTLS");
    case MailSecurity::Tls:
        return QStringLiteral("SSL");
    case MailSecurity::None:
        break;
    }
    return {};
}

MailServerSettings mailServerFromSettings(const QString& host, const QString& port,
                                          const QString& security, const QString& user,
                                          const QString& password)
{
    MailServerSettings s;
    s.server.host = host.trimmed();
    bool number = false;
    s.server.port = port.trimmed().toInt(&number);
    if (!number || s.server.port < 1 || s.server.port > 65535)
        s.problem = {22202, QStringLiteral("port is not a number from 1 to 65535"), {}};
    const std::optional<MailSecurity> kind = mailSecurityFromSetting(security);
    if (kind)
        s.server.security = *kind;
    else
        s.problem = {22202, QStringLiteral("unknown security setting"),
                     SmtpNotice::unknownSecurity(security)};
    s.server.user = user.trimmed();
    s.server.password = password;
    return s;
}

SmtpClient::SmtpClient(QObject* parent) : QObject(parent)
{
    m_curl = std::make_unique<curl_common::EasyHandle>();
}

// A connection still open is closed by the handle's destructor; its QUIT waits at most one
// time-out.
SmtpClient::~SmtpClient() = default;

void SmtpClient::setTimeoutSeconds(int seconds)
{
    m_timeoutSeconds = qMax(1, seconds);
}

void SmtpClient::cancel()
{
    m_cancel = true;
}

SmtpClient::Result SmtpClient::perform(Task& request)
{
    if (m_busy.exchange(true))
        return {22213, QStringLiteral("another operation is running"), {}};
    m_cancel = false;
    request.cancel = &m_cancel;
    request.reportEnvelope = [this] {
        QMetaObject::invokeMethod(
            this, [this] { emit envelopeStarted(); }, Qt::QueuedConnection);
    };
    request.reportPiece = [this](int index) {
        QMetaObject::invokeMethod(
            this, [this, index] { emit pieceStarted(index); }, Qt::QueuedConnection);
    };

    curl_common::runOnWorker(
        [this, &request] {
            CURL* h = m_curl->get();
            if (!h) {
                request.result = CURLE_FAILED_INIT;
                return;
            }
            if (request.kind == Task::Kind::Quit) {
                m_curl->renew();
                return;
            }
            curl_easy_reset(h); // options only: an open connection stays cached
            setOptions(h, request, m_timeoutSeconds);
            request.result = curl_easy_perform(h);
            curl_easy_getinfo(h, CURLINFO_OS_ERRNO, &request.osErrno);
            clearTaskPointers(h);
            if (request.kind == Task::Kind::Test && request.result == CURLE_OK)
                m_curl->renew(); // says goodbye
        },
        [this] { m_cancel = true; });
    m_busy = false;

    Result r;
    if (m_cancel.load() && request.result != CURLE_OK)
        r.code = 22219;
    else
        r.code = codeFor(request);
    if (r.code != 0) {
        r.detail = QString::fromUtf8(request.errorBuffer);
        if (r.detail.isEmpty())
            r.detail = QString::fromUtf8(curl_easy_strerror(request.result));
        if (!request.lastReply.isEmpty())
            r.detail += QStringLiteral(" (") + QString::fromUtf8(request.lastReply) + u')';
        if (r.code != 22219)
            r.notice = noticeFor(request);
    }
    return r;
}

SmtpClient::Result SmtpClient::testConnection(const Server& server)
{
    Task request;
    request.kind = Task::Kind::Test;
    if (Result r = prepare(request, server); !r.ok())
        return r;
    return perform(request);
}

SmtpClient::Result SmtpClient::send(const Server& server, const QString& sender,
                                    const QStringList& recipients, const QList<QByteArray>& pieces)
{
    Task request;
    request.kind = Task::Kind::Send;
    if (Result r = prepare(request, server); !r.ok())
        return r;
    const QString from = sender.trimmed();
    if (!isUsableAddress(from))
        return {22214, QStringLiteral("no usable sender address"), {}};
    if (recipients.isEmpty())
        return {22215, QStringLiteral("no recipient"), {}};
    for (const QString& recipient : recipients) {
        const QString to = recipient.trimmed();
        if (!isUsableAddress(to))
            return {22215, QStringLiteral("unusable recipient address"), {}};
        request.recipients.append(to.toUtf8()); // the library adds the brackets
    }
    request.sender = from.toUtf8();
    request.pieces = &pieces;
    return perform(request);
}

SmtpClient::Result SmtpClient::disconnectFromHost()
{
    Task request;
    request.kind = Task::Kind::Quit;
    return perform(request);
}
