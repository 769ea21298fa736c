#pragma once

// Pictures as a phone leaves them: a JPEG carrying an EXIF orientation tag, written byte by
// byte here so the tests depend on no camera and no image tool.

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QString>

namespace CameraPicture {

// A stored picture whose four quarters have four colours, so a test can tell how it was
// turned: red top left, green top right, blue bottom left, white bottom right.
inline QImage quarters(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        const bool top = y < height / 2;
        for (int x = 0; x < width; ++x) {
            const bool left = x < width / 2;
            line[x] = top ? (left ? qRgb(255, 0, 0) : qRgb(0, 255, 0))
                          : (left ? qRgb(0, 0, 255) : qRgb(255, 255, 255));
        }
    }
    return image;
}

// The APP1 segment of an EXIF block that holds one tag: Orientation (0x0112), a SHORT.
inline QByteArray exifOrientationSegment(quint16 orientation)
{
    QByteArray tiff;
    const auto u16 = [&tiff](quint16 v) { tiff += char(v >> 8), tiff += char(v & 0xff); };
    const auto u32 = [&](quint32 v) { u16(quint16(v >> 16)), u16(quint16(v & 0xffff)); };
    tiff += "MM"; // big-endian ("Motorola") byte order
    u16(42);
    u32(8); // the first directory follows the header
    u16(1); // one entry
    u16(0x0112);
    u16(3); // SHORT
    u32(1); // one value, held in the entry itself
    u16(orientation);
    u16(0);
    u32(0); // no further directory

    QByteArray body = QByteArray("Exif", 4) + QByteArray(2, '\0') + tiff;
    const int length = int(body.size()) + 2; // the length counts itself
    QByteArray segment("\xFF\xE1", 2);
    segment += char(length >> 8);
    segment += char(length & 0xff);
    return segment + body;
}

// The picture as a JPEG, with an EXIF orientation (1..8) placed after the start marker and
// the JFIF header, where cameras put it.
inline QByteArray jpegWithOrientation(const QImage& image, quint16 orientation, int quality = 90)
{
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", quality);
    int at = 2; // after FF D8
    if (jpeg.mid(2, 2) == QByteArray("\xFF\xE0", 2))
        at = 4 + ((uchar(jpeg.at(4)) << 8) | uchar(jpeg.at(5)));
    return jpeg.left(at) + exifOrientationSegment(orientation) + jpeg.mid(at);
}

inline bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace CameraPicture
