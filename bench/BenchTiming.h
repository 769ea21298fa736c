#pragma once

#include <QElapsedTimer>

#include <algorithm>
#include <functional>
#include <vector>

// The middle of a set of timings: one slow run (a cold cache, the other core busy) moves it
// little.
inline double medianOf(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

// Milliseconds one piece of work takes.
inline double msOf(const std::function<void()>& work)
{
    QElapsedTimer t;
    t.start();
    work();
    return double(t.nsecsElapsed()) / 1e6;
}
