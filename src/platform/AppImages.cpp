#include "platform/AppImages.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QtMath>

namespace AppImages {

namespace {

QImage readAs(const QString& path, const char* format)
{
    QImageReader reader(path, format);
    reader.setAutoDetectImageFormat(false); // only a plugin naming the format is asked
    return reader.read();
}

// The denser file QIcon would take beside "name.png" on this screen: "name@3x.png" on a screen
// of ratio 3 when there is one, else "name@2x.png".
QString denserFile(const QString& path)
{
    const qreal ratio = qApp ? qApp->devicePixelRatio() : 1.0;
    const int dot = int(path.lastIndexOf(u'.'));
    if (ratio <= 1.0 || dot <= 0)
        return {};
    for (int n = qMin(qCeil(ratio), 9); n > 1; --n) {
        const QString dense = path.left(dot) + QStringLiteral("@%1x").arg(n) + path.mid(dot);
        if (QFileInfo::exists(dense))
            return dense;
    }
    return {};
}

} // namespace

QPixmap pixmap(const QString& path, const char* format)
{
    return QPixmap::fromImage(readAs(path, format));
}

QIcon pngIcon(const QString& path)
{
    const QPixmap plain = pngPixmap(path);
    if (plain.isNull())
        return QIcon(path); // what QIcon makes of a file it cannot read, exactly
    QIcon icon(plain);
    // Read from "@2x" in its name, the denser picture says its own ratio, as QIcon's would.
    if (const QString dense = denserFile(path); !dense.isEmpty())
        icon.addPixmap(pngPixmap(dense));
    return icon;
}

} // namespace AppImages
