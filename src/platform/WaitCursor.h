#pragma once

#include <QCursor>
#include <QGuiApplication>

// The hourglass for as long as the object lives, however the work it covers ends.
class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor)); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};
