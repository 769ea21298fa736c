#include "platform/DeferredIconStyle.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QStyleOption>

#include <functional>
#include <memory>
#include <optional>

namespace {

// An icon made by a function the first time anything needs it. Each call reaches the made
// icon's own engine exactly as QIcon itself would have (pixmaps at device size, ratio 1).
class DeferredIconEngine : public QIconEngine
{
public:
    explicit DeferredIconEngine(std::function<QIcon()> make) : m_make(std::move(make)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        const QPaintDevice* device = painter->device();
        const qreal ratio = device ? device->devicePixelRatio() : qApp->devicePixelRatio();
        painter->drawPixmap(rect, pixmap(rect.size() * ratio, mode, state));
    }
    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return pixmap(size, mode, state).size();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return icon().pixmap(size, 1.0, mode, state);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                         qreal /*scale*/) override
    {
        return pixmap(size, mode, state);
    }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override
    {
        return icon().availableSizes(mode, state);
    }
    void addPixmap(const QPixmap& pixmap, QIcon::Mode mode, QIcon::State state) override
    {
        icon().addPixmap(pixmap, mode, state);
    }
    void addFile(const QString& fileName, const QSize& size, QIcon::Mode mode,
                 QIcon::State state) override
    {
        icon().addFile(fileName, size, mode, state);
    }
    QString iconName() override { return icon().name(); }
    bool isNull() override { return icon().isNull(); }
    QString key() const override { return QStringLiteral("DeferredIconEngine"); }
    QIconEngine* clone() const override
    {
        auto* copy = new DeferredIconEngine(m_make);
        copy->m_icon = m_icon;
        return copy;
    }

private:
    QIcon& icon()
    {
        if (!m_icon)
            m_icon = m_make();
        return *m_icon;
    }

    std::function<QIcon()> m_make;
    std::optional<QIcon> m_icon;
};

} // namespace

QIcon DeferredIconStyle::standardIcon(StandardPixmap standardIcon, const QStyleOption* option,
                                      const QWidget* widget) const
{
    switch (standardIcon) {
    case SP_ToolBarHorizontalExtensionButton:
    case SP_ToolBarVerticalExtensionButton:
    case SP_LineEditClearButton: {
        // The option and the widget may be gone by the time the icon is drawn; the direction
        // (which side the arrow points to) is all the wrapped style reads from them here.
        std::optional<QStyleOption> kept;
        if (option) {
            kept.emplace();
            kept->direction = option->direction;
        }
        QStyle* base = baseStyle();
        return QIcon(new DeferredIconEngine([base, standardIcon, kept] {
            return base->standardIcon(standardIcon, kept ? &*kept : nullptr);
        }));
    }
    default:
        return QProxyStyle::standardIcon(standardIcon, option, widget);
    }
}

void DeferredIconStyle::install()
{
    if (qobject_cast<DeferredIconStyle*>(QApplication::style()))
        return;
    // The proxy takes the current style over; QApplication then owns the proxy.
    QApplication::setStyle(new DeferredIconStyle(QApplication::style()));
}
