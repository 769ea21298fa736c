#pragma once

#include <functional>
#include <memory>
#include <thread>
#include <type_traits>
#include <utility>

// Starts work that runs beside the window's thread from start-up on (reading the font
// configuration, the view's keys, the day's backup). Left to itself, the scheduler puts a new
// thread on the core of the thread that made it and soon pauses that thread for it, for several
// milliseconds, even while another core idles. This thread starts on another core the process
// may use, when there is one, and is free to move to any of them once it runs.
std::thread startSideThread(std::function<void()> work);

// The same for work that can only be moved (it holds a promise, say).
template <typename Work>
requires(!std::is_copy_constructible_v<std::decay_t<Work>>) std::thread startSideThread(Work&& work)
{
    auto held = std::make_shared<std::decay_t<Work>>(std::forward<Work>(work));
    return startSideThread(std::function<void()>([held] { (*held)(); }));
}
