#include "platform/SideThread.h"

#include <atomic>
#include <memory>

#if defined(__linux__)
#include <pthread.h>
#include <sched.h>
#endif

std::thread startSideThread(std::function<void()> work)
{
#if defined(__linux__)
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    const int here = sched_getcpu();
    if (here >= 0 && sched_getaffinity(0, sizeof allowed, &allowed) == 0 &&
        CPU_ISSET(here, &allowed) && CPU_COUNT(&allowed) > 1) {
        cpu_set_t elsewhere = allowed;
        CPU_CLR(here, &elsewhere);
        // The thread widens its cores again only after they were narrowed, or the narrowing
        // would stay for good.
        auto narrowed = std::make_shared<std::atomic<bool>>(false);
        std::thread thread([work = std::move(work), allowed, narrowed] {
            narrowed->wait(false);
            sched_setaffinity(0, sizeof allowed, &allowed);
            work();
        });
        pthread_setaffinity_np(thread.native_handle(), sizeof elsewhere, &elsewhere);
        narrowed->store(true);
        narrowed->notify_one();
        return thread;
    }
#endif
    return std::thread(std::move(work));
}
