#!/bin/sh
# Scales the program's icon (resources/icons/tallybid-256.png, drawn by
# scripts/make-artwork.sh) to the sizes installed under share/icons/hicolor/. The build never
# runs this; the PNGs are kept in the tree. Needs g++, pkg-config and the Qt 6 Gui files.
set -eu
HERE=$(cd "$(dirname "$0")" && pwd)
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
cat >"$WORK/sizes.cpp" <<'CPP'
#include <QGuiApplication>
#include <QImage>
int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    const QImage big(QString::fromLocal8Bit(argv[1]));
    for (int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const QImage img = size == big.width()
            ? big : big.scaled(size, size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        if (!img.save(QString::fromLocal8Bit(argv[2]) + QStringLiteral("/%1.png").arg(size)))
            return 1;
    }
    return 0;
}
CPP
g++ -std=c++20 -fPIC -O1 -o "$WORK/sizes" "$WORK/sizes.cpp" $(pkg-config --cflags --libs Qt6Gui)
QT_QPA_PLATFORM=offscreen "$WORK/sizes" "$HERE/../../resources/icons/tallybid-256.png" "$HERE"
