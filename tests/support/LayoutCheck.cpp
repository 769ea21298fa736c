#include "LayoutCheck.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QWidget>

namespace {

QString nameOf(const QWidget* w)
{
    return w->objectName().isEmpty() ? QString::fromLatin1(w->metaObject()->className())
                                     : w->objectName();
}

bool showsText(const QWidget* w)
{
    return qobject_cast<const QLabel*>(w) || qobject_cast<const QAbstractButton*>(w) ||
           qobject_cast<const QComboBox*>(w) || qobject_cast<const QLineEdit*>(w);
}

// The size a control needs to show its text whole. A button's own size hint asks for the
// width of a dialog button; a short caption such as "C" needs far less.
QSize needed(const QWidget* w)
{
    QSize need = w->minimumSizeHint();
    if (const auto* button = qobject_cast<const QAbstractButton*>(w)) {
        const QSize text = button->fontMetrics().size(Qt::TextShowMnemonic, button->text());
        const int icon = button->icon().isNull() ? 0 : button->iconSize().width() + 4;
        need.setWidth(std::min(need.width(), text.width() + icon + 8));
    }
    if (const auto* label = qobject_cast<const QLabel*>(w); label && label->wordWrap())
        need.setHeight(std::max(need.height(), label->heightForWidth(label->width())));
    return need;
}

void check(const QWidget* parent, QStringList& problems)
{
    QList<const QWidget*> shown;
    for (const QObject* o : parent->children()) {
        const auto* w = qobject_cast<const QWidget*>(o);
        if (!w || !w->isVisibleTo(parent) || w->isWindow())
            continue;
        // Children that belong to a compound control (spin box arrows, scroll areas) are
        // its own business.
        if (w->objectName().startsWith(QLatin1String("qt_")))
            continue;
        shown << w;
        // Containers are checked inside; a scrolling page is checked as it is laid out.
        if (const auto* area = qobject_cast<const QScrollArea*>(w); area && area->widget())
            check(area->widget(), problems);
        else if (w->layout())
            check(w, problems);
    }
    for (int i = 0; i < shown.size(); ++i) {
        const QWidget* a = shown.at(i);
        if (showsText(a)) {
            const QSize need = needed(a);
            if (a->width() + 1 < need.width() || a->height() + 1 < need.height())
                problems << QStringLiteral("%1 is %2x%3 but needs %4x%5")
                                .arg(nameOf(a))
                                .arg(a->width())
                                .arg(a->height())
                                .arg(need.width())
                                .arg(need.height());
        }
        for (int j = i + 1; j < shown.size(); ++j) {
            const QWidget* b = shown.at(j);
            if (a->geometry().intersects(b->geometry()) &&
                !a->geometry().intersected(b->geometry()).isEmpty())
                problems << QStringLiteral("%1 overlaps %2").arg(nameOf(a), nameOf(b));
        }
    }
}

} // namespace

QStringList layoutProblems(const QWidget* root)
{
    QStringList problems;
    if (const auto* area = qobject_cast<const QScrollArea*>(root); area && area->widget())
        root = area->widget();
    check(root, problems);
    return problems;
}
