// Build tool: decodes the program's own pictures into the form AppImages copies at start-up.
//
//     tb_decodepictures IN OUT [IN OUT ...]
//
// Each IN is read as its own file name and suffix say (an "@2x" name gives pixel ratio 2).
#include "platform/AppImages.h"

#include <QFile>
#include <QImageReader>
#include <QSaveFile>

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc < 3 || argc % 2 == 0) {
        std::fprintf(stderr, "usage: tb_decodepictures IN OUT [IN OUT ...]\n");
        return 2;
    }
    for (int i = 1; i + 1 < argc; i += 2) {
        const QString in = QFile::decodeName(argv[i]);
        QImageReader reader(in);
        const QImage image = reader.read();
        if (image.isNull()) {
            std::fprintf(stderr, "tb_decodepictures: %s: %s\n", argv[i],
                         qPrintable(reader.errorString()));
            return 1;
        }
        QSaveFile out(QFile::decodeName(argv[i + 1]));
        if (!out.open(QIODevice::WriteOnly) || out.write(AppImages::toDecoded(image)) < 0 ||
            !out.commit()) {
            std::fprintf(stderr, "tb_decodepictures: %s: %s\n", argv[i + 1],
                         qPrintable(out.errorString()));
            return 1;
        }
    }
    return 0;
}
