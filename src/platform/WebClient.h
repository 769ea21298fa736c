#pragma once

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>
#include <thread>

class QTemporaryDir;
namespace curl_common {
class EasyHandle;
}

// One HTTP(S) page download at a time. get() returns at once; the transfer runs on a worker
// thread and reports back through signals delivered on the client's own thread. Every accepted
// get() emits connecting(), then any number of progress(), then exactly one of
// transferComplete(), disconnected() or cancelled().
//
// The page is stored in a private temporary folder that lives as long as the client; the
// receiver of transferComplete() reads the file and removes it. Only http and https are
// spoken, redirects included, and proxies named in the environment are never used.
class WebClient : public QObject
{
    Q_OBJECT
public:
    explicit WebClient(QObject* parent = nullptr);
    // Cancels a running transfer and waits for its worker (at most about a second).
    ~WebClient() override;

    // An HTTP proxy for the next get(); https pages go through it with CONNECT. A proxy switched
    // on with an empty host means a direct connection.
    void setProxy(bool on, const QString& host, int port);
    QString proxyHost() const { return m_proxyHost; }
    int proxyPort() const { return m_proxyPort; }
    bool proxyOn() const { return m_proxyOn; }

    // The User-Agent header of the next get(); "" sends no such header at all.
    void setAgent(const QString& agent);
    QString agent() const { return m_agent; }

    // Limits only the making of the connection (0, the default: the library's own limit). A
    // server that connects and then stays silent is ended by cancel().
    void setTimeoutSeconds(int seconds);
    int timeoutSeconds() const { return m_timeoutSeconds; }

    // Connections kept open from earlier pages are dropped before the next get().
    void resetConnection();

    // Starts the GET of url. Ignored while a transfer is running.
    void get(const QString& url);

    // Ends the running transfer; it then reports cancelled(). Callable from any thread, at any
    // moment; does nothing when idle.
    void cancel();

    // True from get() until its final signal is emitted.
    bool isBusy() const { return m_busy.load(); }

signals:
    void connecting();
    // total 0 = the server did not say how long the page is; percent is then 0.
    void progress(qint64 bytesRead, qint64 total, int percent);
    void transferComplete(const QString& fileName);
    void disconnected();
    void cancelled();

private:
    enum class Outcome
    {
        Complete,
        Failed,
        Cancelled
    };
    void finish(Outcome outcome, const QString& fileName);
    void joinWorker();

    std::unique_ptr<curl_common::EasyHandle> m_curl;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::thread m_worker;
    std::atomic<bool> m_busy{false};
    std::atomic<bool> m_cancel{false};
    bool m_renewConnection = false;
    bool m_proxyOn = false;
    QString m_proxyHost;
    int m_proxyPort = 80;
    QString m_agent;
    int m_timeoutSeconds = 0;
    int m_fileNumber = 0;
};
