#include "platform/FontWarmUp.h"

#include "platform/SideThread.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <memory>
#include <system_error>

namespace {
FontWarmUp* gRunning = nullptr; // the one whose reading wait() waits for
} // namespace

#if __has_include(<dlfcn.h>)
#include <dlfcn.h>
#define TB_HAVE_DLSYM 1
#endif

FontWarmUp::FontWarmUp()
{
#ifdef TB_HAVE_DLSYM
    // Looked up rather than linked: Qt has loaded the library already wherever it uses it. The
    // call is safe to race with Qt's own (the library keeps whichever setup finishes first), but
    // a race does the work twice: wait() keeps the window from starting a second one.
    using Init = int (*)();
    const auto init = reinterpret_cast<Init>(dlsym(RTLD_DEFAULT, "FcInit"));
    if (!init)
        return;
    try {
        m_thread = startSideThread([init] { init(); });
        gRunning = this;
    } catch (const std::system_error&) {
        // No thread to be had: Qt reads the configuration when it first needs it.
    }
#endif
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
    if (gRunning && gRunning->m_thread.joinable())
        gRunning->m_thread.join();
}

void FontWarmUp::prepare()
{
    if (!gRunning || !qGuiApp)
        return;
    // The configuration's reading is joined by whichever thread ends up holding it.
    auto reading = std::make_shared<std::thread>(std::move(gRunning->m_thread));
    try {
        gRunning->m_thread = startSideThread([reading, font = QGuiApplication::font()] {
            if (reading->joinable())
                reading->join();
            // Loads a face for this thread alone (Qt keeps those per thread); what the main
            // thread will want is the list and the fallbacks made on the way.
            QFontMetrics(font).height();
        });
    } catch (const std::system_error&) {
        if (reading->joinable())
            reading->join();
    }
}
