#pragma once

#include <QByteArrayView>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QString>

// The program's own pictures (toolbar icons, the splash, the window icon) are files of known
// formats in its resources. Each is also decoded when the program is built
// (tb_decodepictures) and kept as plain pixels under ":/decoded" plus its own path, so a start
// copies them instead of decoding: Qt's picture reader lists every picture plugin installed
// before it reads its first file, even one whose format is named. A picture without a decoded
// copy is read with its format named; asked to guess, Qt would load every plugin to ask each.
namespace AppImages {

// A null pixmap when the file is missing or is not in that format ("png", "ppm", ...).
QPixmap pixmap(const QString& path, const char* format);
inline QPixmap pngPixmap(const QString& path)
{
    return pixmap(path, "png");
}

// Where the decoded copy of a picture in the resources is kept (":/icons/Add.png" gives
// ":/decoded/icons/Add.png"); empty for a picture outside the resources.
QString decodedPath(const QString& path);
// The decoded form: a small header, then the pixels as the screen takes them (premultiplied
// ARGB where the picture has transparency, RGB otherwise), with the picture's pixel ratio.
QByteArray toDecoded(const QImage& image);
// A null image for data that is not a whole decoded picture.
QImage fromDecoded(QByteArrayView data);

// What QIcon(path) gives for a PNG file: the picture, and on a high-density screen the
// "@2x" picture beside it when there is one.
QIcon pngIcon(const QString& path);

} // namespace AppImages
