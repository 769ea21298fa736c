#pragma once

#include <thread>

// Reading the system's font configuration is the largest single cost of showing the first
// window (several milliseconds of XML and cache files). Made before the application object,
// this starts that reading on a thread of its own so it overlaps everything up to the first
// text; Qt's own font setup then finds it done. Where the system has no such configuration
// library, it does nothing. Waits for the thread when destroyed.
class FontWarmUp
{
public:
    FontWarmUp();
    ~FontWarmUp();
    FontWarmUp(const FontWarmUp&) = delete;
    FontWarmUp& operator=(const FontWarmUp&) = delete;

private:
    std::thread m_thread;
};
