#include "platform/FontWarmUp.h"

#include "platform/SideThread.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <atomic>
#include <memory>
#include <optional>
#include <system_error>

#if __has_include(<unistd.h>)
#include <unistd.h> // environ
#endif

namespace {
FontWarmUp* gRunning = nullptr; // the one whose reading wait() waits for
// The steps' ends, set by the thread doing them: the configuration's reading, then Qt's side
// of it when prepare() asked for that (which only the main thread asks and reads).
constinit std::atomic<bool> gConfigurationRead{false};
constinit bool gQtSideAsked = false;
constinit std::atomic<bool> gQtSideDone{false};

// A reading begun before main(), until a FontWarmUp takes it over; waited for at exit if none
// does. Built at compile time: the hook that fills it runs before any constructor.
struct EarlyReading
{
    std::optional<std::thread> thread;
    ~EarlyReading()
    {
        if (thread && thread->joinable())
            thread->join();
    }
};
constinit EarlyReading gEarly;
} // namespace

#if __has_include(<dlfcn.h>)
#include <dlfcn.h>
#define TB_HAVE_DLSYM 1
#endif

FontWarmUp::FontWarmUp()
    : m_thread(gEarly.thread ? std::move(*gEarly.thread) : startReading()) // the early one first
{
    gEarly.thread.reset();
    if (m_thread.joinable())
        gRunning = this;
}

void FontWarmUp::startBeforeMain(char** environment)
{
#if __has_include(<unistd.h>)
    // The C library sets its environment only after this hook, and the reading looks up HOME
    // and the configuration's own variables; it will set the same block.
    if (!environ)
        environ = environment;
#else
    (void)environment;
#endif
    if (std::thread thread = startReading(); thread.joinable())
        gEarly.thread = std::move(thread);
}

std::thread FontWarmUp::startReading()
{
#ifdef TB_HAVE_DLSYM
    // Looked up rather than linked: Qt has loaded the library already wherever it uses it. The
    // call is safe to race with Qt's own (the library keeps whichever setup finishes first), but
    // a race does the work twice: wait() keeps the window from starting a second one.
    using Init = int (*)();
    const auto init = reinterpret_cast<Init>(dlsym(RTLD_DEFAULT, "FcInit"));
    if (!init)
        return {};
    try {
        gConfigurationRead = false;
        gQtSideAsked = false;
        gQtSideDone = false;
        return startSideThread([init] {
            init();
            gConfigurationRead = true;
            gConfigurationRead.notify_all();
        });
    } catch (const std::system_error&) {
        // No thread to be had: Qt reads the configuration when it first needs it.
    }
#endif
    return {};
}

FontWarmUp::~FontWarmUp()
{
    if (m_thread.joinable())
        m_thread.join();
    if (gRunning == this)
        gRunning = nullptr;
}

void FontWarmUp::wait()
{
    if (!gRunning || !gRunning->m_thread.joinable())
        return;
    // The work's end rather than the thread's: the thread then lets go of its own copy of the
    // fonts (Qt keeps faces per thread), about a tenth of a millisecond nobody needs to wait
    // for. It is joined by finish(), or when its FontWarmUp goes.
    (gQtSideAsked ? gQtSideDone : gConfigurationRead).wait(false);
}

void FontWarmUp::finish()
{
    if (gRunning && gRunning->m_thread.joinable())
        gRunning->m_thread.join();
}

bool FontWarmUp::ready()
{
    if (!gRunning || !gRunning->m_thread.joinable())
        return true;
    return gQtSideAsked ? gQtSideDone.load() : gConfigurationRead.load();
}

void FontWarmUp::prepare()
{
    if (!gRunning || !qGuiApp)
        return;
    // The configuration's reading is joined by whichever thread ends up holding it.
    auto reading = std::make_shared<std::thread>(std::move(gRunning->m_thread));
    gQtSideAsked = true;
    try {
        gRunning->m_thread = startSideThread([reading, font = QGuiApplication::font()] {
            if (reading->joinable())
                reading->join();
            // Loads a face for this thread alone (Qt keeps those per thread); what the main
            // thread will want is the list and the fallbacks made on the way.
            QFontMetrics(font).height();
            gQtSideDone = true;
            gQtSideDone.notify_all();
        });
    } catch (const std::system_error&) {
        gQtSideAsked = false; // Qt's side is left to the main thread
        if (reading->joinable())
            reading->join();
    }
}
