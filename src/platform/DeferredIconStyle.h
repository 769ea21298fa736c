#pragma once

#include <QProxyStyle>

// The application's style, with three of its icons read when first drawn rather than when asked
// for. Qt's menu bars and toolbars ask for their overflow arrow, and a search box for its clear
// button, the moment they are made, although these are seldom shown; Qt reads those icons from
// PNG files without naming the format, and that first guess loads every picture plugin
// installed. Everything else is the wrapped style's own.
class DeferredIconStyle : public QProxyStyle
{
    Q_OBJECT
public:
    using QProxyStyle::QProxyStyle;

    QIcon standardIcon(StandardPixmap standardIcon, const QStyleOption* option = nullptr,
                       const QWidget* widget = nullptr) const override;

    // Wraps the application's current style (whichever the user or the desktop chose).
    static void install();
};
