#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>

// The program's own pictures (toolbar icons, the splash, the window icon) are files of known
// formats in its resources. Naming the format lets Qt decode them with its built-in readers;
// asked to guess, it first loads every picture plugin installed (JPEG, TIFF, WebP, ...) to ask
// each whether it knows the file, which costs more than the whole item window's start.
namespace AppImages {

// A null pixmap when the file is missing or is not in that format ("png", "ppm", ...).
QPixmap pixmap(const QString& path, const char* format);
inline QPixmap pngPixmap(const QString& path)
{
    return pixmap(path, "png");
}

// What QIcon(path) gives for a PNG file: the picture, and on a high-density screen the
// "@2x" picture beside it when there is one.
QIcon pngIcon(const QString& path);

} // namespace AppImages
