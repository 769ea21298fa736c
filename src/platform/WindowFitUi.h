#pragma once

#include <QSize>

class QLineEdit;
class QWidget;

// The smallest inside size at which the window's layout shows every control whole, word-wrapped
// labels included. A window that needs more sets minimum sizes on its controls.
QSize layoutMinimum(QWidget& window);

// Gives the window that minimum and sizes it to `wanted` (its current size when invalid), cut to
// the free part of the screen it is on, frame included. A window already shown is also moved
// back onto the screen where it hangs over an edge.
void fitToScreen(QWidget& window, QSize wanted = QSize());

// Lets a control that sits in its window's layout scroll inside it, so that a tall control does
// not make the window taller than a small screen. Nothing changes while there is room.
void scrollWhenShort(QWidget& content);

// Keeps a box that shows a number, a count or an amount, wide enough for all of its digits: cut
// short, it shows "000" for 1000 items or "13.8" for 13.81, a wrong number rather than a cut
// one. The box widens when a longer number than any before arrives and keeps that width.
void keepNumberWhole(QLineEdit& box);
