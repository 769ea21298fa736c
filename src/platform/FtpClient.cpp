#include "platform/FtpClient.h"

#include "platform/CurlCommon.h"
#include "platform/FtpErrors.h"

#include <QFile>
#include <QMetaObject>
#include <QUrl>

#include <curl/curl.h>
#include <sys/socket.h>

#include <algorithm>
#include <functional>

namespace {

// Phases tell apart the same library failure met at different moments: a strange reply while
// logging in means a wrong port, the same reply to STOR means the server refused the file.
enum class Phase
{
    Connect,
    Directory,
    Put,
    Delete
};

// An FTP reply code the server sent for a refused command.
int codeForReply(long reply, int otherwise)
{
    switch (reply) {
    case 120:
    case 421:
        return 22023; // not ready / closing
    case 425:
        return 22040;
    case 426:
        return 22029;
    case 450:
        return 22041;
    case 451:
        return 22052;
    case 452:
        return 22042;
    case 500:
        return 22043;
    case 501:
        return 22044;
    case 502:
    case 504:
        return 22045;
    case 503:
        return 22046;
    case 530:
        return 22047;
    case 532:
        return 22048;
    case 550:
        return 22049;
    case 551:
        return 22049;
    case 552:
        return 22050;
    case 553:
        return 22051;
    default:
        return otherwise;
    }
}

int codeFor(CURLcode result, long reply, Phase phase)
{
    switch (result) {
    case CURLE_OK:
        return 0;
    case CURLE_COULDNT_RESOLVE_HOST:
        return 22005;
    case CURLE_URL_MALFORMAT:
        return phase == Phase::Connect ? 22005 : 22051;
    case CURLE_COULDNT_CONNECT:
        return 22008;
    case CURLE_LOGIN_DENIED:
        return 22039;
    case CURLE_OPERATION_TIMEDOUT:
    case CURLE_FTP_ACCEPT_TIMEOUT:
        return 22020;
    case CURLE_ABORTED_BY_CALLBACK:
        return 22029;
    case CURLE_OUT_OF_MEMORY:
        return 22002;
    case CURLE_FAILED_INIT:
        return 22004;
    case CURLE_READ_ERROR:
        return 22037;
    case CURLE_SEND_ERROR:
        return 22016;
    case CURLE_RECV_ERROR:
        return 22015;
    case CURLE_GOT_NOTHING:
        return 22022;
    case CURLE_FTP_WEIRD_PASV_REPLY:
    case CURLE_FTP_WEIRD_227_FORMAT:
    case CURLE_FTP_CANT_GET_HOST:
    case CURLE_FTP_PORT_FAILED:
        return 22026;
    case CURLE_FTP_ACCEPT_FAILED:
        return 22040;
    case CURLE_FTP_COULDNT_SET_TYPE:
        return 22032;
    case CURLE_REMOTE_DISK_FULL:
        return 22042;
    case CURLE_FILESIZE_EXCEEDED:
        return 22050;
    case CURLE_REMOTE_FILE_NOT_FOUND:
        return 22041;
    case CURLE_WEIRD_SERVER_REPLY:
        // Whatever answers on that port is not an FTP server ready for us.
        return codeForReply(reply, phase == Phase::Connect ? 22014 : 22025);
    case CURLE_REMOTE_ACCESS_DENIED:
        return codeForReply(reply, phase == Phase::Connect ? 22039 : 22049);
    case CURLE_UPLOAD_FAILED:
        return codeForReply(reply, 22052);
    case CURLE_PARTIAL_FILE:
        return codeForReply(reply, 22028);
    case CURLE_QUOTE_ERROR:
        if (phase == Phase::Delete && (reply == 550 || reply == 450))
            return 22041;
        return codeForReply(reply, 22025);
    default:
        return codeForReply(reply, 22025);
    }
}

// Remote paths are written by Windows users too: ".\pics\" means "./pics".
QString remotePath(const QString& directory)
{
    QString d = directory;
    d.replace(u'\\', u'/');
    while (d.size() > 1 && d.endsWith(u'/'))
        d.chop(1);
    return d;
}

} // namespace

namespace ftp_detail {
// One operation as the worker thread carries it out.
struct Task
{
    Phase phase = Phase::Connect;
    QString url;
    QFile* source = nullptr; // set for a put
    qint64 size = 0;
    QByteArray afterCommand;  // sent once the directory is reached (DELE)
    bool renewHandle = false; // disconnect

    const std::atomic<bool>* cancel = nullptr;
    std::function<void(int)> reportPercent; // called on the worker thread

    // Filled in by the worker thread.
    int lastPercent = -1;
    bool readFailed = false;
    CURLcode result = CURLE_OK;
    long reply = 0;
    char errorBuffer[CURL_ERROR_SIZE] = {};
};
} // namespace ftp_detail

using ftp_detail::Task;

namespace {

int onProgress(void* data, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent)
{
    auto* t = static_cast<Task*>(data);
    if (t->cancel->load())
        return 1;
    if (!t->source || t->size <= 0)
        return 0;
    const int percent = int(std::clamp<qint64>(qint64(sent) * 100 / t->size, 0, 100));
    if (percent != t->lastPercent) {
        t->lastPercent = percent;
        t->reportPercent(percent);
    }
    return 0;
}

// A small send buffer keeps the percent shown close to what really left the machine: with
// the system's large default a whole picture vanishes into the buffer at once and the meter
// reads 100 while a slow line is still sending it.
int onSocket(void*, curl_socket_t socket, curlsocktype)
{
    const int bytes = 256 * 1024;
    ::setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &bytes, sizeof bytes);
    return CURL_SOCKOPT_OK;
}

size_t onRead(char* buffer, size_t size, size_t count, void* data)
{
    auto* t = static_cast<Task*>(data);
    if (t->cancel->load())
        return CURL_READFUNC_ABORT;
    const qint64 n = t->source->read(buffer, qint64(size * count));
    if (n < 0) {
        t->readFailed = true;
        return CURL_READFUNC_ABORT;
    }
    return size_t(n);
}

} // namespace

FtpClient::FtpClient(QObject* parent) : QObject(parent)
{
    m_curl = std::make_unique<curl_common::EasyHandle>();
}

// A session still open is closed by the handle's destructor; its QUIT waits at most one time-out.
FtpClient::~FtpClient() = default;

void FtpClient::setTimeoutSeconds(int seconds)
{
    m_timeoutSeconds = qMax(1, seconds);
}

void FtpClient::cancel()
{
    m_cancel = true;
}

QString FtpClient::urlFor(const QString& directory, const QString& fileName) const
{
    // The whole remote path is escaped, slashes included: the library splits it after decoding,
    // so a leading "/" survives as an absolute directory and "." segments are kept as written.
    QString path = directory;
    if (!path.isEmpty() && !path.endsWith(u'/'))
        path += u'/';
    path += fileName;
    QString host = m_host;
    if (host.contains(u':') && !host.startsWith(u'['))
        host = u'[' + host + u']';
    return QStringLiteral("ftp://") + host + u':' + QString::number(m_port) + u'/' +
           QString::fromLatin1(QUrl::toPercentEncoding(path));
}

FtpClient::Result FtpClient::perform(Task& request)
{
    if (m_busy.exchange(true))
        return {22018, QStringLiteral("another operation is running")};
    m_cancel = false;
    request.cancel = &m_cancel;
    request.reportPercent = [this](int percent) {
        QMetaObject::invokeMethod(
            this, [this, percent] { emit progress(percent); }, Qt::QueuedConnection);
    };

    curl_common::runOnWorker(
        [this, &request] {
            if (request.renewHandle) {
                m_curl->renew();
            } else {
                CURL* h = m_curl->get();
                curl_easy_reset(h); // options only: the logged-in connection stays cached
                const QByteArray url = request.url.toUtf8();
                const QByteArray user = m_user.toUtf8();
                const QByteArray password = m_password.toUtf8();
                curl_common::StringList after;
                if (!request.afterCommand.isEmpty())
                    after.append(request.afterCommand);
                const long timeout = m_timeoutSeconds;
                curl_easy_setopt(h, CURLOPT_URL, url.constData());
                curl_easy_setopt(h, CURLOPT_PROTOCOLS_STR, "ftp");
                curl_easy_setopt(h, CURLOPT_PROXY, ""); // the web space is reached directly
                curl_easy_setopt(h, CURLOPT_USERNAME, user.constData());
                curl_easy_setopt(h, CURLOPT_PASSWORD, password.constData());
                curl_easy_setopt(h, CURLOPT_NOSIGNAL, 1L);
                curl_easy_setopt(h, CURLOPT_PATH_AS_IS, 1L);
                curl_easy_setopt(h, CURLOPT_FTP_FILEMETHOD, long(CURLFTPMETHOD_SINGLECWD));
                curl_easy_setopt(h, CURLOPT_CONNECTTIMEOUT, timeout);
                curl_easy_setopt(h, CURLOPT_SERVER_RESPONSE_TIMEOUT, timeout);
                curl_easy_setopt(h, CURLOPT_LOW_SPEED_LIMIT, 1L);
                curl_easy_setopt(h, CURLOPT_LOW_SPEED_TIME, timeout);
                curl_easy_setopt(h, CURLOPT_ERRORBUFFER, request.errorBuffer);
                curl_easy_setopt(h, CURLOPT_SOCKOPTFUNCTION, &onSocket);
                curl_easy_setopt(h, CURLOPT_NOPROGRESS, 0L);
                curl_easy_setopt(h, CURLOPT_XFERINFOFUNCTION, &onProgress);
                curl_easy_setopt(h, CURLOPT_XFERINFODATA, &request);
                if (request.source) {
                    curl_easy_setopt(h, CURLOPT_UPLOAD, 1L);
                    curl_easy_setopt(h, CURLOPT_READFUNCTION, &onRead);
                    curl_easy_setopt(h, CURLOPT_READDATA, &request);
                    curl_easy_setopt(h, CURLOPT_INFILESIZE_LARGE, curl_off_t(request.size));
                } else {
                    curl_easy_setopt(h, CURLOPT_NOBODY, 1L);
                }
                if (!after.isEmpty())
                    curl_easy_setopt(h, CURLOPT_POSTQUOTE, after.get());
                request.result = curl_easy_perform(h);
                curl_easy_getinfo(h, CURLINFO_RESPONSE_CODE, &request.reply);
                // Nothing may point into this stack frame once it is gone: closing the session
                // later (QUIT) runs on the same handle.
                curl_easy_setopt(h, CURLOPT_ERRORBUFFER, nullptr);
                curl_easy_setopt(h, CURLOPT_POSTQUOTE, nullptr);
                curl_easy_setopt(h, CURLOPT_NOPROGRESS, 1L);
                curl_easy_setopt(h, CURLOPT_XFERINFODATA, nullptr);
                curl_easy_setopt(h, CURLOPT_READDATA, nullptr);
            }
        },
        [this] { m_cancel = true; });
    m_busy = false;

    Result r;
    if (request.readFailed)
        r.code = 22037;
    else if (m_cancel.load() && request.result != CURLE_OK)
        r.code = 22029;
    else
        r.code = codeFor(request.result, request.reply, request.phase);
    if (r.code != 0) {
        r.detail = QString::fromUtf8(request.errorBuffer);
        if (r.detail.isEmpty())
            r.detail = QString::fromUtf8(curl_easy_strerror(request.result));
    }
    return r;
}

FtpClient::Result FtpClient::connectToHost(const QString& host, int port, const QString& user,
                                           const QString& password)
{
    if (isBusy())
        return {22018, QStringLiteral("another operation is running")};
    m_host = host.trimmed();
    m_port = port;
    m_user = user;
    m_password = password;
    m_directory.clear();
    m_connected = false;
    if (m_host.isEmpty() || curl_common::isReservedInvalidName(m_host))
        return {22005, QStringLiteral("host name does not resolve")};
    if (port < 1 || port > 65535)
        return {22014, QStringLiteral("port out of range")};

    Task request;
    request.phase = Phase::Connect;
    request.url = urlFor({}, {});
    const Result r = perform(request);
    m_connected = r.ok();
    return r;
}

FtpClient::Result FtpClient::changeDirectory(const QString& directory)
{
    if (!m_connected)
        return {22019, QStringLiteral("not connected")};
    const QString asked = remotePath(directory);
    if (asked.isEmpty())
        return {};
    // A relative change is taken from where the session stands, as the server would.
    QString target = asked;
    if (!asked.startsWith(u'/') && !m_directory.isEmpty())
        target = m_directory + u'/' + asked;

    Task request;
    request.phase = Phase::Directory;
    request.url = urlFor(target, {});
    const Result r = perform(request);
    if (r.ok())
        m_directory = target;
    return r;
}

FtpClient::Result FtpClient::putFile(const QString& localPath, const QString& remoteName)
{
    if (!m_connected)
        return {22019, QStringLiteral("not connected")};
    if (isBusy())
        return {22018, QStringLiteral("another operation is running")};
    if (remoteName.isEmpty())
        return {22051, QStringLiteral("empty remote name")};
    QFile file(localPath);
    if (!file.open(QIODevice::ReadOnly))
        return {22036, file.errorString()};

    Task request;
    request.phase = Phase::Put;
    request.url = urlFor(m_directory, remoteName);
    request.source = &file;
    request.size = file.size();
    const Result r = perform(request);
    if (r.ok() && request.size > 0 && request.lastPercent < 100)
        emit progress(100);
    return r;
}

FtpClient::Result FtpClient::deleteFile(const QString& remoteName)
{
    if (!m_connected)
        return {22019, QStringLiteral("not connected")};
    // The name becomes part of a command line: a line break in it would start another command.
    const bool controlCharacter =
        std::any_of(remoteName.begin(), remoteName.end(), [](QChar c) { return c < u' '; });
    if (remoteName.isEmpty() || controlCharacter)
        return {22051, QStringLiteral("unusable remote name")};
    Task request;
    request.phase = Phase::Delete;
    request.url = urlFor(m_directory, {});
    request.afterCommand = "DELE " + remoteName.toUtf8();
    return perform(request);
}

FtpClient::Result FtpClient::disconnectFromHost()
{
    Task request;
    request.renewHandle = true;
    const Result r = perform(request);
    m_connected = false;
    m_directory.clear();
    return r;
}
