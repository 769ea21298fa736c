#pragma once

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>

namespace curl_common {
class EasyHandle;
}
namespace ftp_detail {
struct Task;
}

// One FTP session with the seller's web space: connect and log in once, change directory, put
// and delete files, log off. Every operation runs on a worker thread while the caller waits in
// a local event loop, so windows stay live and the Abort button can call cancel(). Failures come
// back as the codes of FtpErrors.h (22001..22052), never as library codes.
class FtpClient : public QObject
{
    Q_OBJECT
public:
    explicit FtpClient(QObject* parent = nullptr);
    ~FtpClient() override;

    struct Result
    {
        int code = 0;   // 0 = done; otherwise an FtpErrors.h code
        QString detail; // the library's or the server's own words, for diagnostics only
        bool ok() const { return code == 0; }
    };

    // Applies to connecting, to every server reply and to a transfer that stops moving.
    void setTimeoutSeconds(int seconds);
    int timeoutSeconds() const { return m_timeoutSeconds; }

    Result connectToHost(const QString& host, int port, const QString& user,
                         const QString& password);
    // "./dir" and "dir" go from the current directory (at first the login directory), "/dir"
    // from the server's root; "\" counts as "/". A failed change leaves the session where it was.
    Result changeDirectory(const QString& directory);
    // Stores the local file under remoteName in the current directory, replacing a file there.
    Result putFile(const QString& localPath, const QString& remoteName);
    Result deleteFile(const QString& remoteName);
    Result disconnectFromHost();

    // Aborts the running operation; it then returns code 22029. Callable from any thread.
    void cancel();
    bool isBusy() const { return m_busy.load(); }
    bool isConnected() const { return m_connected; }
    // The directory the session is in, as the server was told ("" = the login directory).
    QString currentDirectory() const { return m_directory; }

signals:
    // Percent of the running transfer sent, 0..100; only while a file is being put.
    void progress(int percent);

private:
    Result perform(ftp_detail::Task& task);
    QString urlFor(const QString& directory, const QString& fileName) const;

    std::unique_ptr<curl_common::EasyHandle> m_curl;
    std::atomic<bool> m_busy{false};
    std::atomic<bool> m_cancel{false};
    int m_timeoutSeconds = 60;
    bool m_connected = false;
    QString m_host, m_user, m_password;
    int m_port = 21;
    QString m_directory;
};
