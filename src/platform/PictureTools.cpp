#include "platform/PictureTools.h"

#include <QImageReader>
#include <QImageWriter>
#include <QSaveFile>

#include <algorithm>

namespace PictureTools {

namespace {

// Decoders asked for a reduced size choose their fastest, roughest path below this quality.
constexpr int kSmoothDecoding = 100;

bool quarterTurned(QImageIOHandler::Transformations t)
{
    return t.testFlag(QImageIOHandler::TransformationRotate90);
}

QSize uprightSize(const QImageReader& reader)
{
    const QSize stored = reader.size();
    return quarterTurned(reader.transformation()) ? stored.transposed() : stored;
}

QString readError(const QImageReader& reader)
{
    const QString why = reader.errorString();
    return why.isEmpty() ? QStringLiteral("Unsupported image format") : why;
}

// A reader that turns the picture upright and, with a valid bound, decodes it at no more than
// the bound.
void prepare(QImageReader& reader, const QSize& bound)
{
    reader.setAutoTransform(true);
    if (!bound.isValid())
        return;
    const QSize full = uprightSize(reader);
    if (!full.isValid())
        return;
    const QSize target = fittedSize(full, bound);
    if (target == full)
        return;
    // The decoder works on the picture as stored, before it is turned.
    reader.setScaledSize(quarterTurned(reader.transformation()) ? target.transposed() : target);
    reader.setQuality(kSmoothDecoding);
}

} // namespace

PictureInfo inspect(const QString& path)
{
    PictureInfo info;
    QImageReader reader(path);
    reader.setAutoTransform(true);
    if (!reader.canRead()) {
        info.error = readError(reader);
        return info;
    }
    info.format = reader.format();
    info.turned = reader.transformation() != QImageIOHandler::TransformationNone;
    info.size = uprightSize(reader);
    if (!info.ok())
        info.error = readError(reader);
    return info;
}

QSize fittedSize(const QSize& size, const QSize& bound)
{
    if (size.isEmpty() || bound.isEmpty())
        return size;
    if (size.width() <= bound.width() && size.height() <= bound.height())
        return size;
    return size.scaled(bound, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

QImage readUpright(const QString& path, const QSize& bound, QString* error)
{
    QImageReader reader(path);
    prepare(reader, bound);
    QImage image = reader.read();
    if (image.isNull()) {
        if (error)
            *error = readError(reader);
        return image;
    }
    // Decoders that cannot reduce while decoding leave it to be done here.
    if (bound.isValid()) {
        const QSize target = fittedSize(image.size(), bound);
        if (target != image.size())
            image = image.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    return image;
}

WebCopy makeWebCopy(const QString& source, const QString& destination,
                    const WebCopyOptions& options)
{
    WebCopy result;
    const PictureInfo info = inspect(source);
    if (!info.ok()) {
        result.outcome = WebCopy::Outcome::Unreadable;
        result.error = info.error;
        return result;
    }
    result.original = info.size;
    const int side = std::max(options.longestSide, 1);
    const QSize bound(side, side);
    const QSize target = fittedSize(info.size, bound);
    if (target == info.size && !info.turned)
        return result; // AsItIs: sending the file untouched loses nothing
    if (!QImageWriter::supportedImageFormats().contains(info.format)) {
        result.outcome = WebCopy::Outcome::Failed;
        result.error = QStringLiteral("Pictures of type %1 cannot be written")
                           .arg(QString::fromLatin1(info.format));
        return result;
    }

    QString error;
    const QImage image = readUpright(source, bound, &error);
    if (image.isNull()) {
        result.outcome = WebCopy::Outcome::Unreadable;
        result.error = error;
        return result;
    }

    QSaveFile file(destination);
    if (!file.open(QIODevice::WriteOnly)) {
        result.outcome = WebCopy::Outcome::Failed;
        result.error = file.errorString();
        return result;
    }
    QImageWriter writer(&file, info.format);
    if (info.format == "jpeg" || info.format == "jpg" || info.format == "webp")
        writer.setQuality(std::clamp(options.quality, 1, 100));
    if (!writer.write(image) || !file.commit()) {
        file.cancelWriting();
        result.outcome = WebCopy::Outcome::Failed;
        result.error = writer.error() != QImageWriter::UnknownError ? writer.errorString()
                                                                    : file.errorString();
        return result;
    }
    result.outcome = WebCopy::Outcome::Written;
    result.written = image.size();
    return result;
}

} // namespace PictureTools
