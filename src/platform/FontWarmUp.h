#pragma once

#include <thread>

// Reading the system's font configuration is the largest single cost of showing the first
// window (several milliseconds of XML and cache files). Made before the application object,
// this starts that reading on a thread of its own so it overlaps everything up to the first
// text; Qt's own font setup then finds it done. Where the system has no such configuration
// library, it does nothing. Waits for the thread when destroyed.
//
// Once the application object exists, prepare() goes on to Qt's own side of the fonts.
//
// The reading can begin earlier still, from the program's pre-initialisation hook
// (startBeforeMain): the FontWarmUp made in main() then takes it over.
//
// One at a time, made and waited for on the main thread.
class FontWarmUp
{
public:
    FontWarmUp();
    ~FontWarmUp();
    FontWarmUp(const FontWarmUp&) = delete;
    FontWarmUp& operator=(const FontWarmUp&) = delete;

    // Waits for the reading a FontWarmUp started, if any; call before the first text is laid
    // out. The configuration library does not make a second reader wait for the first: it
    // reads everything again itself and keeps whichever finishes first, so text laid out while
    // the thread is still reading costs the whole reading twice over.
    static void wait();

    // Waits for the thread to end as well, its own copy of the fonts let go: it uses Qt, which
    // ends with the application object.
    static void finish();

    // Whether wait() would return at once: nothing is being read, or the reading is over.
    static bool ready();

    // Goes on, once the configuration is read, to Qt's list of the system's fonts and the
    // fallbacks of the application's font: Qt keeps both for the whole process, so the first
    // text on the main thread finds them made. Call on the main thread once the application
    // object exists, and finish() before it is destroyed.
    static void prepare();

    // Begins the reading before the libraries' own start-up code runs, so the reading overlaps
    // that too. For a hook in the executable's .preinit_array only, given its environment
    // block. A reading nobody takes over is waited for when the program ends.
    static void startBeforeMain(char** environment);
    // What the executable's .preinit_array holds: the hook, given argc, argv and environment.
    using BeforeMainHook = void (*)(int, char**, char**);

private:
    static std::thread startReading();

    std::thread m_thread;
};
