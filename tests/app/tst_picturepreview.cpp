// The item window's picture preview with pictures as cameras and phones make them: large, and
// stored on their side. The preview frame is 260 x 200 pixels.
#include "../support/CameraPicture.h"
#include "ItemWindowFixture.h"

#include "app/texts.h"

#include <QImageReader>
#include <QLabel>

class TestPicturePreview : public QObject
{
    Q_OBJECT
private slots:
    void picturesInTheFrame_data();
    void picturesInTheFrame();
    void logoIsCentred();
    void findOffersPhonePictures_data();
    void findOffersPhonePictures();
};

void TestPicturePreview::picturesInTheFrame_data()
{
    QTest::addColumn<QSize>("stored");
    QTest::addColumn<int>("orientation"); // 0: a PNG without tags
    QTest::addColumn<QSize>("shown");
    QTest::addColumn<QPoint>("at");
    QTest::addColumn<QString>("bars"); // "H", "V", "HV" or ""
    QTest::addColumn<bool>("warned");
    // clang-format off
    // Pictures that pan keep the documented scroll bars; one too large to pan is shown whole,
    // scaled to fit the inside of the frame (258 x 198), after the documented warning.
    QTest::newRow("small, centred")       << QSize(100, 50)    << 0 << QSize(100, 50)   << QPoint(80, 75)  << ""   << false;
    QTest::newRow("pans both ways")       << QSize(300, 220)   << 0 << QSize(300, 220)  << QPoint(0, 0)    << "HV" << false;
    QTest::newRow("pans across only")     << QSize(300, 100)   << 0 << QSize(300, 100)  << QPoint(0, 50)   << "H"  << false;
    QTest::newRow("small, on its side")   << QSize(120, 60)    << 6 << QSize(60, 120)   << QPoint(100, 40) << ""   << false;
    QTest::newRow("phone photo, on side") << QSize(4000, 3000) << 6 << QSize(148, 198)  << QPoint(56, 1)   << ""   << true;
    QTest::newRow("camera photo")         << QSize(4000, 3000) << 1 << QSize(258, 193)  << QPoint(1, 3)    << ""   << true;
    QTest::newRow("panorama strip")       << QSize(2600, 40)   << 0 << QSize(258, 3)    << QPoint(1, 98)   << ""   << true;
    // clang-format on
}

void TestPicturePreview::picturesInTheFrame()
{
    QFETCH(QSize, stored);
    QFETCH(int, orientation);
    QFETCH(QSize, shown);
    QFETCH(QPoint, at);
    QFETCH(QString, bars);
    QFETCH(bool, warned);
    TestEnvironment env;
    env.addItems({{}});
    const QImage picture = CameraPicture::quarters(stored.width(), stored.height());
    QString file;
    if (orientation) {
        file = env.path(QStringLiteral("photo.jpg"));
        QVERIFY(CameraPicture::writeFile(
            file, CameraPicture::jpegWithOrientation(picture, quint16(orientation))));
    } else {
        file = env.path(QStringLiteral("picture.png"));
        QVERIFY(picture.save(file));
    }
    ItemWindow w(env);
    auto* frame = w.child<QFrame>(QStringLiteral("Picture1"));
    auto* preview = w.child<QLabel>(QStringLiteral("Picture2"));
    auto* across = w.child<QScrollBar>(QStringLiteral("HScroll1"));
    auto* down = w.child<QScrollBar>(QStringLiteral("VScroll1"));
    // What sits below and beside the preview must not move when the scroll bars come and go.
    QWidget* below = w.child(QStringLiteral("comboImgPlace"));
    const QPoint belowAt = below->mapTo(w.window.get(), QPoint());
    const QPoint frameAt = frame->mapTo(w.window.get(), QPoint());

    w->setFieldText(5, file);
    QCoreApplication::processEvents();
    QCOMPARE(env.prompts().shown().size(), warned ? 1 : 0);
    if (warned)
        QCOMPARE(env.prompts().shown().first().title, Texts::kImageTooLargeTitle);
    QCOMPARE(preview->size(), shown);
    QCOMPARE(preview->pos(), at);
    QCOMPARE(QString(QLatin1String(across->isVisible() ? "H" : "") +
                     QLatin1String(down->isVisible() ? "V" : "")),
             bars);
    QCOMPARE(below->mapTo(w.window.get(), QPoint()), belowAt);
    QCOMPARE(frame->mapTo(w.window.get(), QPoint()), frameAt);

    // Upright as the camera meant it: the stored top-left quarter (red) is top right after a
    // quarter turn to the right.
    const QImage seen = preview->pixmap().toImage();
    const QColor corner = seen.pixelColor(seen.width() * 3 / 4, seen.height() / 4);
    const QColor expected = orientation == 6 ? Qt::red : Qt::green;
    QVERIFY2(qAbs(corner.red() - expected.red()) < 60 &&
                 qAbs(corner.green() - expected.green()) < 60 && corner.blue() < 60,
             qPrintable(corner.name()));

    // Panning moves the picture by the documented twips; the other side stays centred.
    if (bars == QLatin1String("H")) {
        across->setValue(20 * 15);
        QCOMPARE(preview->pos(), QPoint(-20, at.y()));
    }
}

void TestPicturePreview::logoIsCentred()
{
    TestEnvironment env;
    QFile::copy(qEnvironmentVariable("TB_SOURCE_DIR") + QStringLiteral("/resources/logovksm.gif"),
                env.path(QStringLiteral("logovksm.gif")));
    env.addItems({{}});
    ItemWindow w(env);
    auto* frame = w.child<QFrame>(QStringLiteral("Picture1"));
    auto* preview = w.child<QLabel>(QStringLiteral("Picture2"));
    QVERIFY(!preview->pixmap().isNull());
    const QSize logo = preview->size();
    QCOMPARE(preview->pos(),
             QPoint((frame->width() - logo.width()) / 2, (frame->height() - logo.height()) / 2));
}

// The Find button's dialog keeps its first list and offers PNG and WebP beside it; a picture of
// either kind chosen there is previewed.
void TestPicturePreview::findOffersPhonePictures_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("png") << "screen.png";
    QTest::newRow("webp") << "phone.webp";
}

void TestPicturePreview::findOffersPhonePictures()
{
    QFETCH(QString, name);
    const QByteArray format = QFileInfo(name).suffix().toLatin1();
    if (!QImageReader::supportedImageFormats().contains(format))
        QSKIP("the WebP image plugin is not installed");
    TestEnvironment env;
    env.addItems({{}});
    const QString file = env.path(name);
    QVERIFY(CameraPicture::quarters(120, 90).save(file, format.constData()));
    ItemWindow w(env);
    env.prompts().queueFile(file);
    QTest::mouseClick(w.child<QPushButton>(QStringLiteral("cmdFind_1")), Qt::LeftButton);

    QCOMPARE(env.prompts().shown().size(), 1);
    const QString filter = env.prompts().shown().first().text;
    QVERIFY2(filter.contains(QLatin1String(
                 "Internet Image Files (*.gif; *.jpg; *.jpeg)|*.gif; *.jpg; *.jpeg;|")),
             qPrintable(filter));
    QVERIFY2(filter.contains(QLatin1String("*.png")) && filter.contains(QLatin1String("*.webp")),
             qPrintable(filter));
    QCOMPARE(w.field(6)->text(), file);
    QCOMPARE(w.child<QLabel>(QStringLiteral("Picture2"))->size(), QSize(120, 90));
}

QTEST_MAIN(TestPicturePreview)
#include "tst_picturepreview.moc"
