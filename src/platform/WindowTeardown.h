#pragma once

#include <QObject>

// A window's own destructor runs before QWidget's, which closes the window and so moves the
// focus. A child may then signal (an editable box takes up what was typed into it) to a window
// whose own part is already gone. Called first in such a destructor, this stops the window
// hearing from its children.
inline void stopHearingChildren(QObject& window)
{
    for (QObject* child : window.findChildren<QObject*>())
        QObject::disconnect(child, nullptr, &window, nullptr);
}
