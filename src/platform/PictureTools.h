#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

// Pictures as a seller's camera or phone leaves them: large, and often stored on their side with
// an EXIF orientation tag that says how to turn them. Everything here works on the picture as it
// is meant to be seen (turned upright), and never changes the file it reads.
namespace PictureTools {

// What the file's header says, read without decoding the pixels.
struct PictureInfo
{
    QSize size;          // upright (orientation applied); invalid when the file is no picture
    QByteArray format;   // "jpeg", "png", "webp", "gif", ...
    bool turned = false; // the file carries an orientation other than "as stored"
    QString error;       // why the file could not be read, when it could not
    bool ok() const { return size.isValid() && !size.isEmpty(); }
};
PictureInfo inspect(const QString& path);

// The size that fits inside bound with the aspect ratio kept; never larger than size.
QSize fittedSize(const QSize& size, const QSize& bound);

// The whole picture, upright. With a valid bound, no larger than the bound (aspect kept): the
// decoder then works at the reduced size, which for a camera JPEG is many times faster than
// decoding it whole. A null image (and error set) when the file cannot be read.
QImage readUpright(const QString& path, const QSize& bound = {}, QString* error = nullptr);

struct WebCopyOptions
{
    int longestSide = 1600; // pixels
    int quality = 85;       // JPEG and WebP
};

// How a picture fares on its way to the web.
struct WebCopy
{
    enum class Outcome
    {
        Written,    // a smaller or turned copy was written to the destination
        AsItIs,     // nothing to do: the picture is small enough and upright already
        Unreadable, // not a picture this program can read: it goes up as it is
        Failed      // the copy could not be made (format not writable, disk full, ...)
    };
    Outcome outcome = Outcome::AsItIs;
    QSize original; // upright size of the source
    QSize written;  // size of the copy, when one was written
    QString error;
};

// Writes to destination an upright copy of source whose longest side is at most
// options.longestSide, in the source's own format (so the file name still tells it). The copy
// carries none of the camera's tags. The source is only read; the destination is replaced
// atomically and only when the whole copy could be written.
WebCopy makeWebCopy(const QString& source, const QString& destination,
                    const WebCopyOptions& options);

} // namespace PictureTools
