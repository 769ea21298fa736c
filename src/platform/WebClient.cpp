#include "platform/WebClient.h"

#include "platform/CurlCommon.h"

#include <QFile>
#include <QMetaObject>
#include <QTemporaryDir>
#include <QUrl>

#include <curl/curl.h>

#include <algorithm>
#include <functional>

namespace {

// One GET as the worker thread carries it out; everything it needs is copied in, so the
// owner's settings may change while it runs.
struct Transfer
{
    QByteArray url;
    QByteArray proxy; // empty: direct
    long proxyPort = 80;
    QByteArray agent;
    long connectTimeout = 0;
    QString fileName;
    QFile* file = nullptr; // opened and closed on the worker thread

    const std::atomic<bool>* cancel = nullptr;
    std::function<void(qint64 bytes, qint64 total)> report; // called on the worker thread
    qint64 written = 0;
    qint64 reportedBytes = 0;
    qint64 reportedTotal = -1;
    bool writeFailed = false;
};

size_t onWrite(char* data, size_t size, size_t count, void* user)
{
    auto* t = static_cast<Transfer*>(user);
    const qint64 n = qint64(size * count);
    if (t->cancel->load())
        return 0;
    if (t->file->write(data, n) != n) {
        t->writeFailed = true;
        return 0;
    }
    t->written += n;
    return size_t(n);
}

// Called by the library at least once a second even while nothing arrives, which is what
// lets a cancel end a transfer to a silent server.
int onProgress(void* user, curl_off_t total, curl_off_t, curl_off_t, curl_off_t)
{
    auto* t = static_cast<Transfer*>(user);
    if (t->cancel->load())
        return 1;
    // Counted from what was stored, so the bodies of followed redirects never show.
    if (t->written > 0 && (t->written != t->reportedBytes || total != t->reportedTotal)) {
        t->reportedBytes = t->written;
        t->reportedTotal = total;
        t->report(t->written, qint64(total));
    }
    return 0;
}

// "proxy.example.com" or "http://proxy.example.com:8080/": the name the first hop resolves.
QString hostOf(const QString& address)
{
    const QString a = address.trimmed();
    return a.contains(QLatin1String("://")) ? QUrl(a).host() : a;
}

int percentOf(qint64 bytes, qint64 total)
{
    return total > 0 ? int(std::clamp<qint64>(bytes * 100 / total, 0, 100)) : 0;
}

} // namespace

WebClient::WebClient(QObject* parent)
    : QObject(parent), m_curl(std::make_unique<curl_common::EasyHandle>()),
      m_folder(std::make_unique<QTemporaryDir>())
{
}

WebClient::~WebClient()
{
    m_cancel = true;
    joinWorker();
}

void WebClient::setProxy(bool on, const QString& host, int port)
{
    m_proxyOn = on;
    m_proxyHost = host;
    m_proxyPort = port;
}

void WebClient::setAgent(const QString& agent)
{
    m_agent = agent;
}

void WebClient::setTimeoutSeconds(int seconds)
{
    m_timeoutSeconds = qMax(0, seconds);
}

void WebClient::resetConnection()
{
    // The handle belongs to the worker while a transfer runs; it is renewed before the next one.
    m_renewConnection = true;
}

void WebClient::cancel()
{
    m_cancel = true;
}

void WebClient::joinWorker()
{
    if (m_worker.joinable())
        m_worker.join();
}

void WebClient::get(const QString& url)
{
    if (m_busy.exchange(true))
        return;
    joinWorker();
    m_cancel = false;
    if (m_renewConnection) {
        m_curl->renew();
        m_renewConnection = false;
    }
    QMetaObject::invokeMethod(
        this, [this] { emit connecting(); }, Qt::QueuedConnection);

    auto t = std::make_unique<Transfer>();
    t->url = url.trimmed().toUtf8();
    const bool viaProxy = m_proxyOn && !m_proxyHost.trimmed().isEmpty();
    if (viaProxy) {
        t->proxy = m_proxyHost.trimmed().toUtf8();
        t->proxyPort = m_proxyPort;
    }
    t->agent = m_agent.toUtf8();
    t->connectTimeout = m_timeoutSeconds;
    t->fileName = m_folder->filePath(QStringLiteral("page%1.htm").arg(++m_fileNumber));
    t->cancel = &m_cancel;
    t->report = [this](qint64 bytes, qint64 total) {
        QMetaObject::invokeMethod(
            this,
            [this, bytes, total] {
                if (m_busy.load())
                    emit progress(bytes, total, percentOf(bytes, total));
            },
            Qt::QueuedConnection);
    };

    // Names that can never resolve, and settings that can never work, fail without a network
    // round trip.
    const bool hopeless = !m_folder->isValid() ||
                          curl_common::isReservedInvalidName(QUrl(url.trimmed()).host()) ||
                          (viaProxy && (curl_common::isReservedInvalidName(hostOf(m_proxyHost)) ||
                                        m_proxyPort < 1 || m_proxyPort > 65535));
    if (hopeless) {
        QMetaObject::invokeMethod(
            this, [this] { finish(Outcome::Failed, {}); }, Qt::QueuedConnection);
        return;
    }

    m_worker = std::thread([this, t = std::move(t)] {
        Outcome outcome = Outcome::Failed;
        QFile file(t->fileName);
        t->file = &file;
        if (file.open(QIODevice::WriteOnly)) {
            CURL* h = m_curl->get();
            curl_easy_reset(h); // options only: connections to the same server stay cached
            curl_common::StringList headers;
            if (t->agent.isEmpty())
                headers.append("User-Agent:"); // removes the header altogether
            curl_easy_setopt(h, CURLOPT_URL, t->url.constData());
            curl_easy_setopt(h, CURLOPT_PROTOCOLS_STR, "http,https");
            curl_easy_setopt(h, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
            curl_easy_setopt(h, CURLOPT_FOLLOWLOCATION, 1L);
            curl_easy_setopt(h, CURLOPT_MAXREDIRS, 20L);
            curl_easy_setopt(h, CURLOPT_NOSIGNAL, 1L);
            // "" also keeps proxies named in the environment out of the way.
            curl_easy_setopt(h, CURLOPT_PROXY, t->proxy.constData());
            if (!t->proxy.isEmpty()) {
                curl_easy_setopt(h, CURLOPT_PROXYTYPE, long(CURLPROXY_HTTP));
                curl_easy_setopt(h, CURLOPT_PROXYPORT, t->proxyPort);
                curl_easy_setopt(h, CURLOPT_NOPROXY, ""); // every host goes through it
            }
            if (!t->agent.isEmpty())
                curl_easy_setopt(h, CURLOPT_USERAGENT, t->agent.constData());
            if (!headers.isEmpty())
                curl_easy_setopt(h, CURLOPT_HTTPHEADER, headers.get());
            if (t->connectTimeout > 0)
                curl_easy_setopt(h, CURLOPT_CONNECTTIMEOUT, t->connectTimeout);
            curl_easy_setopt(h, CURLOPT_WRITEFUNCTION, &onWrite);
            curl_easy_setopt(h, CURLOPT_WRITEDATA, t.get());
            curl_easy_setopt(h, CURLOPT_NOPROGRESS, 0L);
            curl_easy_setopt(h, CURLOPT_XFERINFOFUNCTION, &onProgress);
            curl_easy_setopt(h, CURLOPT_XFERINFODATA, t.get());
            const CURLcode result = curl_easy_perform(h);
            long status = 0;
            curl_easy_getinfo(h, CURLINFO_RESPONSE_CODE, &status);
            // Nothing may point into this frame once it is gone: the handle outlives it.
            curl_easy_setopt(h, CURLOPT_HTTPHEADER, nullptr);
            curl_easy_setopt(h, CURLOPT_NOPROGRESS, 1L);
            curl_easy_setopt(h, CURLOPT_XFERINFODATA, nullptr);
            curl_easy_setopt(h, CURLOPT_WRITEDATA, nullptr);
            const bool stored = file.flush() && !t->writeFailed;
            file.close();
            if (m_cancel.load())
                outcome = Outcome::Cancelled;
            else if (result == CURLE_OK && status >= 200 && status < 300 && stored)
                outcome = Outcome::Complete;
        }
        if (outcome != Outcome::Complete)
            QFile::remove(t->fileName);
        QMetaObject::invokeMethod(
            this, [this, outcome, name = t->fileName] { finish(outcome, name); },
            Qt::QueuedConnection);
    });
}

void WebClient::finish(Outcome outcome, const QString& fileName)
{
    joinWorker();
    // A cancel that came before this report wins, even over a page that arrived whole.
    if (m_cancel.load() && outcome != Outcome::Cancelled) {
        if (outcome == Outcome::Complete)
            QFile::remove(fileName);
        outcome = Outcome::Cancelled;
    }
    m_busy = false;
    switch (outcome) {
    case Outcome::Complete:
        emit transferComplete(fileName);
        break;
    case Outcome::Failed:
        emit disconnected();
        break;
    case Outcome::Cancelled:
        emit cancelled();
        break;
    }
}
