#pragma once

#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <optional>

// Where a window goes so that all of it, frame and title bar included, lies in the free part of
// its screen. Sizes and rectangles are those of the window's inside; `frame` is what the window
// system draws around it.
namespace WindowFit {

// The largest inside size that fits the free area once the frame is added.
QSize room(const QRect& available, const QMargins& frame);

// The inside rectangle for a window that wants `wanted` and cannot be smaller than `minimum`.
// The size is cut to the room there is, never below the minimum. The window stays at `topLeft`
// when it fits there, else moves the least distance into the free area; without a `topLeft` it
// is centred. When even the minimum is too large, the top-left corner (the title bar and its
// buttons) stays on the screen.
QRect fit(QSize wanted, QSize minimum, const QRect& available, const QMargins& frame,
          std::optional<QPoint> topLeft = std::nullopt);

} // namespace WindowFit
