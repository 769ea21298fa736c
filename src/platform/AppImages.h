#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>

// The program's own pictures (toolbar icons, the splash, the window icon) are PNG files in its
// resources. Naming the format lets Qt decode them with its built-in reader; asked to guess,
// it first loads every picture plugin installed (JPEG, TIFF, WebP, ...) to ask each whether it
// knows the file, which costs more than the whole item window's start.
namespace AppImages {

// A null pixmap when the file is missing or is not a PNG.
QPixmap pngPixmap(const QString& path);

// What QIcon(path) gives for a PNG file: the picture, and on a high-density screen the
// "@2x" picture beside it when there is one.
QIcon pngIcon(const QString& path);

} // namespace AppImages
