#pragma once

#include <QByteArray>
#include <QString>

#include <curl/curl.h>

#include <functional>

// What the program's libcurl clients (FTP, web pages, mail) have in common: the library's one-time
// set-up, an owned easy handle, an owned header/command list, and running one blocking transfer
// on a worker thread while the caller's windows stay live.
namespace curl_common {

// Initialises the library once per process; every client calls it before its first handle.
void initCurlOnce();

// Names under "invalid" never resolve; answering at once keeps such a lookup off the network.
bool isReservedInvalidName(const QString& host);

// One easy handle, cleaned up with its owner. renew() closes every connection it cached.
class EasyHandle
{
public:
    EasyHandle();
    ~EasyHandle();
    EasyHandle(const EasyHandle&) = delete;
    EasyHandle& operator=(const EasyHandle&) = delete;

    CURL* get() const { return m_handle; }
    void renew();

private:
    void release();
    CURL* m_handle = nullptr;
};

// A curl_slist freed with its owner (commands sent after a transfer, mail recipients, headers).
class StringList
{
public:
    StringList() = default;
    ~StringList();
    StringList(const StringList&) = delete;
    StringList& operator=(const StringList&) = delete;

    void append(const QByteArray& line);
    curl_slist* get() const { return m_list; }
    bool isEmpty() const { return m_list == nullptr; }

private:
    curl_slist* m_list = nullptr;
};

// Runs work on a worker thread and waits for it in a local event loop, so progress reports the
// worker queues to the caller's thread are delivered and windows keep repainting. When the loop
// ends before the work does (the application is quitting), stop() is called so the work can end
// through its own cancel flag, and false is returned. The worker is always joined before return.
bool runOnWorker(const std::function<void()>& work, const std::function<void()>& stop);

} // namespace curl_common
