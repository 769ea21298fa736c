// Camera pictures read upright and copied for the web: real JPEGs with EXIF orientation tags,
// PNG, GIF and (where the plugin is installed) WebP files written to disk and read back.
#include "../support/CameraPicture.h"
#include "FileBytes.h"
#include "platform/PictureTools.h"

#include <QImageReader>
#include <QImageWriter>
#include <QtTest>

using namespace PictureTools;
using Outcome = WebCopy::Outcome;

namespace {

// The colours of the four quarters as seen, top left, top right, bottom left, bottom right:
// "RGBW" is the picture as drawn by CameraPicture::quarters.
QString quarterColours(const QImage& image)
{
    QString seen;
    for (const auto& [fx, fy] : {std::pair{1, 1}, {3, 1}, {1, 3}, {3, 3}}) {
        const QColor c = image.pixelColor(image.width() * fx / 4, image.height() * fy / 4);
        const bool r = c.red() > 128, g = c.green() > 128, b = c.blue() > 128;
        seen += r && g && b ? u'W' : r ? u'R' : g ? u'G' : b ? u'B' : u'?';
    }
    return seen;
}

// A 2000x4 GIF. Only its header is read: no GIF can be written, so a copy stops before decoding.
const QByteArray
    kWideGif("GIF89a\xd0\x07\x04\0\x80\0\0\xff\0\0\xff\xff\xff,\0\0\0\0\xd0\x07\x04\0\0"
             "\x02\x02\x44\x01\0;",
             35);

// A file sent to the web (orientation 0: no EXIF block), what comes of it and the copy's size.
// clang-format off
struct WebCase { QString name; QSize stored; int orientation; Outcome outcome; QSize sent; };
// clang-format on

} // namespace

class TestPictureTools : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;

    QString path(const QString& name) const { return m_dir.filePath(name); }

private slots:
    // Every EXIF orientation: the header's size is turned without decoding, and the decoded
    // picture shows its quarters where the camera meant them.
    void readsUpright_data()
    {
        QTest::addColumn<int>("orientation");
        QTest::addColumn<QSize>("upright");
        QTest::addColumn<QString>("colours");
        // clang-format off
        QTest::newRow("1 as stored")          << 1 << QSize(80, 40) << "RGBW";
        QTest::newRow("2 mirrored")           << 2 << QSize(80, 40) << "GRWB";
        QTest::newRow("3 upside down")        << 3 << QSize(80, 40) << "WBGR";
        QTest::newRow("6 turned right")       << 6 << QSize(40, 80) << "BRWG";
        QTest::newRow("8 turned left")        << 8 << QSize(40, 80) << "GWRB";
        // clang-format on
    }
    void readsUpright()
    {
        QFETCH(int, orientation);
        QFETCH(QSize, upright);
        QFETCH(QString, colours);
        const QString file = path(QStringLiteral("o%1.jpg").arg(orientation));
        QVERIFY(CameraPicture::writeFile(
            file, CameraPicture::jpegWithOrientation(CameraPicture::quarters(80, 40),
                                                     quint16(orientation))));
        const PictureInfo info = inspect(file);
        QCOMPARE(info.size, upright);
        QCOMPARE(info.format, QByteArray("jpeg"));
        QCOMPARE(info.turned, orientation != 1);
        const QImage whole = readUpright(file);
        QCOMPARE(whole.size(), upright);
        QCOMPARE(quarterColours(whole), colours);
        // Read to fit a box: aspect kept, still upright.
        const QImage fitted = readUpright(file, QSize(20, 20));
        QCOMPARE(fitted.size(), upright.scaled(20, 20, Qt::KeepAspectRatio));
        QCOMPARE(quarterColours(fitted), colours);
    }

    void fitting_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QSize>("bound");
        QTest::addColumn<QSize>("fitted");
        // clang-format off
        QTest::newRow("already fits")     << QSize(800, 600)   << QSize(1600, 1600) << QSize(800, 600);
        QTest::newRow("exactly the side") << QSize(1600, 10)   << QSize(1600, 1600) << QSize(1600, 10);
        QTest::newRow("never below 1")    << QSize(5000, 1)    << QSize(258, 198)   << QSize(258, 1);
        QTest::newRow("no bound")         << QSize(5000, 1)    << QSize()           << QSize(5000, 1);
        // clang-format on
    }
    void fitting()
    {
        QFETCH(QSize, size);
        QFETCH(QSize, bound);
        QTEST(fittedSize(size, bound), "fitted");
    }

    // The source is never touched; a copy is written only when needed and possible, in the
    // source's own format, and a failed one leaves nothing behind.
    void webCopy_data()
    {
        QTest::addColumn<WebCase>("row");
        // clang-format off
        QTest::newRow("large photo")     << WebCase{"a.jpg",  {3200, 2400}, 0, Outcome::Written,    {1600, 1200}};
        QTest::newRow("large, on side")  << WebCase{"b.jpg",  {3200, 2400}, 6, Outcome::Written,    {1200, 1600}};
        QTest::newRow("small, on side")  << WebCase{"c.jpg",  {300, 200},   8, Outcome::Written,    {200, 300}};
        QTest::newRow("small, upright")  << WebCase{"d.jpg",  {300, 200},   1, Outcome::AsItIs,     {}};
        QTest::newRow("large png")       << WebCase{"e.png",  {2000, 500},  0, Outcome::Written,    {1600, 400}};
        QTest::newRow("large gif")       << WebCase{"f.gif",  {2000, 4},    0, Outcome::Failed,     {}};
        QTest::newRow("large webp")      << WebCase{"g.webp", {2000, 500},  0, Outcome::Written,    {1600, 400}};
        QTest::newRow("not a picture")   << WebCase{"h.jpg",  {},           0, Outcome::Unreadable, {}};
        QTest::newRow("no copy folder")  << WebCase{"i/j.jpg", {2000, 1000}, 0, Outcome::Failed,    {}};
        // clang-format on
    }
    void webCopy()
    {
        QFETCH(WebCase, row);
        const auto& [name, stored, orientation, outcome, sent] = row;
        const QByteArray format = QFileInfo(name).suffix().toLatin1();
        if (format == "webp" && !QImageWriter::supportedImageFormats().contains("webp"))
            QSKIP("the WebP image plugin is not installed");

        const QString source = path(name);
        QVERIFY(QDir().mkpath(QFileInfo(source).path())); // "web-i" stays missing
        if (orientation)
            QVERIFY(CameraPicture::writeFile(
                source, CameraPicture::jpegWithOrientation(
                            CameraPicture::quarters(stored.width(), stored.height()),
                            quint16(orientation))));
        else if (format == "gif")
            QVERIFY(CameraPicture::writeFile(source, kWideGif));
        else if (stored.isValid())
            QVERIFY(CameraPicture::quarters(stored.width(), stored.height())
                        .save(source, format.constData()));
        else
            QVERIFY(CameraPicture::writeFile(source, "not a picture at all"));
        const QByteArray before = readBytes(source);

        const QString copy = path(QStringLiteral("web-") + name);
        const WebCopy result = makeWebCopy(source, copy, WebCopyOptions{1600, 85});
        QCOMPARE(int(result.outcome), int(outcome));
        QCOMPARE(result.error.isEmpty(), outcome == Outcome::Written || outcome == Outcome::AsItIs);
        QCOMPARE(readBytes(source), before);
        QCOMPARE(QFile::exists(copy), sent.isValid());
        if (!sent.isValid())
            return;
        QCOMPARE(result.written, sent);
        QImageReader back(copy);
        QCOMPARE(back.format(), format == "jpg" ? QByteArray("jpeg") : format);
        QCOMPARE(back.size(), sent);
        // The copy is upright by itself: no tag is left to turn it again.
        QCOMPARE(back.transformation(), QImageIOHandler::TransformationNone);
        const QString expected = orientation == 6 ? "BRWG" : orientation == 8 ? "GWRB" : "RGBW";
        QCOMPARE(quarterColours(back.read()), expected);
    }
};

QTEST_GUILESS_MAIN(TestPictureTools)
#include "tst_picturetools.moc"
