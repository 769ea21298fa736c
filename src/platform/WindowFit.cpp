#include "platform/WindowFit.h"

#include <algorithm>

namespace WindowFit {

QSize room(const QRect& available, const QMargins& frame)
{
    return QSize(std::max(0, available.width() - frame.left() - frame.right()),
                 std::max(0, available.height() - frame.top() - frame.bottom()));
}

QRect fit(QSize wanted, QSize minimum, const QRect& available, const QMargins& frame,
          std::optional<QPoint> topLeft)
{
    const QSize space = room(available, frame);
    const QSize floor = minimum.expandedTo(QSize(1, 1));
    const QSize size = (wanted.isValid() ? wanted : floor).boundedTo(space).expandedTo(floor);

    // The smallest and largest inside positions that keep the framed window in the free area.
    const int minX = available.left() + frame.left();
    const int minY = available.top() + frame.top();
    const int maxX =
        std::max(minX, available.left() + available.width() - frame.right() - size.width());
    const int maxY =
        std::max(minY, available.top() + available.height() - frame.bottom() - size.height());
    const QPoint start = topLeft.value_or(QPoint(minX + (space.width() - size.width()) / 2,
                                                 minY + (space.height() - size.height()) / 2));
    return QRect(QPoint(std::clamp(start.x(), minX, maxX), std::clamp(start.y(), minY, maxY)),
                 size);
}

} // namespace WindowFit
