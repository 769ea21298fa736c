#include "platform/CurlCommon.h"

#include <QEventLoop>
#include <QMetaObject>

#include <atomic>
#include <mutex>
#include <thread>

namespace curl_common {

void initCurlOnce()
{
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

bool isReservedInvalidName(const QString& host)
{
    const QString h = host.toLower();
    return h == u"invalid" || h.endsWith(u".invalid") || h.endsWith(u".invalid.");
}

EasyHandle::EasyHandle()
{
    initCurlOnce();
    m_handle = curl_easy_init();
}

EasyHandle::~EasyHandle()
{
    release();
}

void EasyHandle::renew()
{
    release();
    m_handle = curl_easy_init();
}

void EasyHandle::release()
{
    if (m_handle)
        curl_easy_cleanup(m_handle);
    m_handle = nullptr;
}

StringList::~StringList()
{
    curl_slist_free_all(m_list);
}

void StringList::append(const QByteArray& line)
{
    m_list = curl_slist_append(m_list, line.constData());
}

bool runOnWorker(const std::function<void()>& work, const std::function<void()>& stop)
{
    std::atomic<bool> finished{false};
    QEventLoop loop;
    {
        std::jthread worker([&] {
            work();
            finished = true;
            QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
        });
        // Always entered: reports the worker queued before its quit are delivered here.
        loop.exec();
        if (!finished.load())
            stop();
    }
    return finished.load();
}

} // namespace curl_common
