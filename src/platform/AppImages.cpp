#include "platform/AppImages.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QResource>
#include <QtEndian>
#include <QtMath>

#include <cstring>

namespace AppImages {

namespace {

constexpr char kMagic[4] = {'T', 'B', 'P', 'X'};
constexpr qsizetype kHeaderSize = 20; // magic, width, height, format, pixel ratio
constexpr quint32 kLargestSide = 1 << 14;

quint32 field(QByteArrayView data, int index)
{
    return qFromLittleEndian<quint32>(data.data() + 4 * index);
}

QImage decodedCopy(const QString& path)
{
    const QString decoded = decodedPath(path);
    if (decoded.isEmpty())
        return {};
    const QResource resource(decoded);
    return resource.isValid() ? fromDecoded(resource.uncompressedData()) : QImage();
}

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

QString decodedPath(const QString& path)
{
    return path.startsWith(QLatin1String(":/"))
               ? QLatin1String(":/decoded") + QStringView(path).mid(1)
               : QString();
}

QByteArray toDecoded(const QImage& image)
{
    const QImage pixels = image.convertToFormat(
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    const qsizetype line = qsizetype(pixels.width()) * 4;
    QByteArray out(kHeaderSize + line * pixels.height(), Qt::Uninitialized);
    char* at = out.data();
    std::memcpy(at, kMagic, 4);
    const quint32 header[] = {quint32(pixels.width()), quint32(pixels.height()),
                              quint32(pixels.format()),
                              quint32(qMax(1, qRound(image.devicePixelRatio())))};
    for (int i = 0; i < 4; ++i)
        qToLittleEndian(header[i], at + 4 + 4 * i);
    for (int y = 0; y < pixels.height(); ++y)
        std::memcpy(at + kHeaderSize + line * y, pixels.constScanLine(y), size_t(line));
    return out;
}

QImage fromDecoded(QByteArrayView data)
{
    if (data.size() < kHeaderSize || std::memcmp(data.data(), kMagic, 4) != 0)
        return {};
    const quint32 width = field(data, 1), height = field(data, 2), ratio = field(data, 4);
    const auto format = QImage::Format(field(data, 3));
    if (width == 0 || height == 0 || width > kLargestSide || height > kLargestSide || ratio < 1 ||
        ratio > 9 ||
        (format != QImage::Format_ARGB32_Premultiplied && format != QImage::Format_RGB32))
        return {};
    const qsizetype line = qsizetype(width) * 4;
    if (data.size() != kHeaderSize + line * qsizetype(height))
        return {};
    QImage image(int(width), int(height), format);
    for (int y = 0; y < int(height); ++y)
        std::memcpy(image.scanLine(y), data.data() + kHeaderSize + line * y, size_t(line));
    image.setDevicePixelRatio(ratio);
    return image;
}

QPixmap pixmap(const QString& path, const char* format)
{
    const QImage ready = decodedCopy(path);
    return QPixmap::fromImage(ready.isNull() ? readAs(path, format) : ready);
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
