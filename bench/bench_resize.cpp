// Making the web copy of a phone's 4000x3000 JPEG (stored on its side, EXIF orientation 6) and
// showing it in the item window's preview, against the plain way: decode the whole picture,
// scale it, save it. Prints the medians of several runs (wall clock and CPU) and their ratios.
// Arguments: the longest side of the web copy (default 1600) and the JPEG quality (85).
#include "../tests/support/CameraPicture.h"

#include "platform/PictureTools.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <vector>

namespace {

constexpr int kRuns = 7;
const QSize kPreview(258, 198);

// Something like a photograph for the encoder: smooth shading with fine grain, not flat
// colour that compresses to nothing.
QImage photograph(int width, int height)
{
    QImage image = CameraPicture::quarters(width, height);
    QRandomGenerator noise(1999);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const int grain = int(noise.bounded(48));
            const int shade = (x + y) * 96 / (width + height);
            const QRgb p = line[x];
            line[x] = qRgb(std::clamp(qRed(p) / 2 + shade + grain, 0, 255),
                           std::clamp(qGreen(p) / 2 + shade + grain, 0, 255),
                           std::clamp(qBlue(p) / 2 + shade + grain, 0, 255));
        }
    }
    return image;
}

struct Timing
{
    double wall, cpu;
};

Timing median(const std::function<void()>& work)
{
    std::vector<double> wall, cpu;
    for (int run = 0; run < kRuns; ++run) {
        QElapsedTimer timer;
        timer.start();
        const std::clock_t started = std::clock();
        work();
        cpu.push_back((std::clock() - started) * 1000.0 / CLOCKS_PER_SEC);
        wall.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(wall.begin(), wall.end());
    std::sort(cpu.begin(), cpu.end());
    return {wall[wall.size() / 2], cpu[cpu.size() / 2]};
}

void row(const char* what, Timing t)
{
    std::printf("%-40s %8.1f %8.1f\n", what, t.wall, t.cpu);
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    const int side = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 1600;
    const int quality = argc > 2 ? std::clamp(QByteArray(argv[2]).toInt(), 1, 100) : 85;
    QTemporaryDir dir;
    const QString source = dir.filePath(QStringLiteral("photo.jpg"));
    const QString copy = dir.filePath(QStringLiteral("web.jpg"));
    const QString plain = dir.filePath(QStringLiteral("plain.jpg"));
    const QByteArray jpeg = CameraPicture::jpegWithOrientation(photograph(4000, 3000), 6, 92);
    if (!CameraPicture::writeFile(source, jpeg))
        qFatal("cannot write the test picture");
    std::printf("source: 4000x3000 JPEG on its side, %.1f MB; copy: longest side %d, quality %d\n",
                jpeg.size() / 1e6, side, quality);

    PictureTools::WebCopy made;
    const Timing ours = median([&] {
        made = PictureTools::makeWebCopy(source, copy, PictureTools::WebCopyOptions{side, quality});
    });
    if (made.outcome != PictureTools::WebCopy::Outcome::Written)
        qFatal("no copy written: %s", qPrintable(made.error));

    // The plain way: the whole picture decoded, turned, scaled smoothly, saved.
    const Timing raw = median([&] {
        QImageReader reader(source);
        reader.setAutoTransform(true);
        const QImage whole = reader.read();
        whole.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            .save(plain, "JPEG", quality);
    });

    QSize shown, shownRaw;
    const Timing preview =
        median([&] { shown = PictureTools::readUpright(source, kPreview).size(); });
    const Timing previewRaw = median([&] {
        QImageReader reader(source);
        reader.setAutoTransform(true);
        shownRaw =
            reader.read().scaled(kPreview, Qt::KeepAspectRatio, Qt::SmoothTransformation).size();
    });
    if (shown != shownRaw)
        qFatal("the previews differ in size");

    std::printf("medians of %d runs                          wall ms   cpu ms\n", kRuns);
    row("web copy (PictureTools::makeWebCopy)", ours);
    row("plain QImage load, scale, save", raw);
    row("preview 258x198 (PictureTools)", preview);
    row("preview, plain load and scale", previewRaw);
    std::printf("web copy %dx%d, %.0f kB; plain copy %.0f kB\n", made.written.width(),
                made.written.height(), QFileInfo(copy).size() / 1e3, QFileInfo(plain).size() / 1e3);
    std::printf("ratios (ours / plain): web copy %.2f, preview %.2f (goal: web copy well under "
                "1000 ms)\n",
                ours.wall / raw.wall, preview.wall / previewRaw.wall);
    return 0;
}
