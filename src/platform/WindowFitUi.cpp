#include "platform/WindowFitUi.h"

#include "platform/WindowFit.h"

#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace {

// What the window system adds around a window that has not been shown yet: a title bar and thin
// borders, generous enough for the common desktops.
constexpr QMargins kFrameEstimate(6, 32, 6, 6);
// What a scrolled control shows at least: most of a page of fields on a 640x480 screen.
constexpr QSize kSmallestScrolledView(420, 260);

QMargins frameOf(const QWidget& window)
{
    if (window.windowFlags().testFlag(Qt::FramelessWindowHint))
        return {};
    if (window.isVisible()) {
        const QRect outer = window.frameGeometry();
        const QRect inner = window.geometry();
        const QMargins shown(inner.left() - outer.left(), inner.top() - outer.top(),
                             outer.right() - inner.right(), outer.bottom() - inner.bottom());
        if (!shown.isNull())
            return shown;
    }
    return kFrameEstimate;
}

// Places every control as at the given window size. A window, or a page, not shown yet lays
// its controls out only when asked to.
void layOut(QWidget& window, QSize size)
{
    window.layout()->activate();
    window.layout()->setGeometry(QRect(QPoint(0, 0), size));
    // Parents come before their children; pages not on show are laid out when they are.
    for (QWidget* inner : window.findChildren<QWidget*>())
        if (inner->layout() && !inner->isWindow() && inner->isVisibleTo(&window))
            inner->layout()->setGeometry(inner->rect());
}

} // namespace

QSize layoutMinimum(QWidget& window)
{
    // Counted from the controls alone: a minimum the layout gave the window earlier is stale.
    QLayout* layout = window.layout();
    if (!layout)
        return window.minimumSizeHint();
    // Controls changed since the window was last laid out count anew: a window not shown yet
    // keeps its layouts' old figures otherwise.
    for (QWidget* inner : window.findChildren<QWidget*>())
        inner->updateGeometry();
    for (QLayout* inner : window.findChildren<QLayout*>())
        inner->invalidate();
    QSize minimum = window.minimumSizeHint();
    // A word-wrapped label needs more lines the narrower it is, which the layout's own minimum
    // does not count: lay the window out at its minimum and let each label keep the height it
    // needs there.
    const QList<QLabel*> labels = window.findChildren<QLabel*>();
    for (int round = 0; round < 8; ++round) {
        layOut(window, minimum);
        bool grown = false;
        for (QLabel* label : labels) {
            const int lines = label->heightForWidth(label->width());
            if (label->wordWrap() && label->isVisibleTo(&window) && lines > label->height()) {
                label->setMinimumHeight(lines);
                grown = true;
            }
        }
        if (!grown)
            break;
        layout->invalidate();
        minimum = minimum.expandedTo(layout->totalMinimumSize());
    }
    layOut(window, window.size());
    return minimum;
}

void fitToScreen(QWidget& window, QSize wanted)
{
    const QSize minimum = layoutMinimum(window);
    window.setMinimumSize(minimum);
    const QScreen* screen = window.screen();
    if (!screen)
        return;
    // A window nobody has sized yet starts at the size its layout asks for.
    if (!wanted.isValid())
        wanted = window.testAttribute(Qt::WA_Resized) ? window.size() : window.sizeHint();
    const QRect placed = WindowFit::fit(
        wanted, minimum, screen->availableGeometry(), frameOf(window),
        window.isVisible() ? std::optional<QPoint>(window.geometry().topLeft()) : std::nullopt);
    window.resize(placed.size());
    if (window.layout())
        layOut(window, placed.size());
    // Before its first showing the window system or the owner window decides the place.
    if (window.isVisible())
        window.move(placed.topLeft() - (window.geometry().topLeft() - window.pos()));
}

void scrollWhenShort(QWidget& content)
{
    QWidget* parent = content.parentWidget();
    QLayout* layout = parent ? parent->layout() : nullptr;
    if (!layout || qobject_cast<QScrollArea*>(parent->parentWidget()))
        return;
    auto* area = new QScrollArea(parent);
    area->setObjectName(content.objectName() + QLatin1String("_scroll"));
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    // The window's own background shows through, as it did behind the bare control.
    area->viewport()->setAutoFillBackground(false);
    delete layout->replaceWidget(&content, area);
    area->setWidget(&content); // the area owns the control from here
    // Scrolling is for small screens; the window never shrinks to a peephole.
    area->setMinimumSize(content.minimumSizeHint().boundedTo(kSmallestScrolledView));
    content.setAutoFillBackground(false);
}

void keepNumberWhole(QLineEdit& box)
{
    const auto widthFor = [&box](qsizetype length) {
        QStyleOptionFrame option;
        option.initFrom(&box);
        option.lineWidth =
            box.hasFrame() ? box.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, &box)
                           : 0;
        const QMargins text = box.textMargins() + box.contentsMargins();
        constexpr int kCursorRoom = 2 * 2; // the line edit's own margin either side of the text
        const int inside = box.fontMetrics().horizontalAdvance(QString(length, u'0')) +
                           kCursorRoom + text.left() + text.right();
        return box.style()
            ->sizeFromContents(QStyle::CT_LineEdit, &option, QSize(inside, box.height()), &box)
            .width();
    };
    // Digits share one width in the fonts a form uses, so only a longer number than any before
    // can need more room: moving between items costs a comparison, and the window is laid out
    // again only the first time a longer number shows. Text pasted into an amount is no number:
    // past an amount's length (1234567.89) the box scrolls its text as any box does.
    static constexpr qsizetype kLongestNumber = 10;
    auto follow = [&box, widthFor, longest = qsizetype(0)](const QString& text) mutable {
        const qsizetype length = std::min(text.size(), kLongestNumber);
        if (length <= longest)
            return;
        longest = length;
        const int wanted = widthFor(longest);
        if (wanted <= std::max(box.minimumWidth(), box.minimumSizeHint().width()))
            return;
        if (box.maximumWidth() < wanted)
            box.setMaximumWidth(wanted);
        box.setMinimumWidth(wanted);
    };
    QObject::connect(&box, &QLineEdit::textChanged, &box, follow);
    follow(box.text());
}
