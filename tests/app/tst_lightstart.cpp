// What start-up leaves unread: picture plugins nothing shown needs, and the network library
// until a transfer. And what the cheaper ways of reading pictures give: the same icons QIcon and
// the style would have given. Run at scale factors 1 and 2.
#include "ItemWindowFixture.h"
#include "platform/AppImages.h"
#include "platform/DeferredIconStyle.h"

namespace {

// The files mapped into this process whose path holds the marker, by the path after it.
QStringList mappedFiles(const QByteArray& marker)
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly))
        return {QStringLiteral("(maps unreadable)")};
    QStringList found;
    for (const QByteArray& line : maps.readAll().split('\n')) {
        const int at = int(line.indexOf(marker));
        const QString name = QString::fromLocal8Bit(line.mid(at + marker.size()));
        if (at >= 0 && !found.contains(name))
            found << name;
    }
    return found;
}

QImage image(const QPixmap& pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

void compareIcons(const QIcon& ours, const QIcon& theirs)
{
    QCOMPARE(ours.isNull(), theirs.isNull());
    QCOMPARE(ours.availableSizes(), theirs.availableSizes());
    for (const QSize size : {QSize(8, 8), QSize(16, 16), QSize(22, 22), QSize(64, 64)}) {
        QCOMPARE(ours.actualSize(size), theirs.actualSize(size));
        for (const qreal ratio : {1.0, 2.0}) {
            const QPixmap a = ours.pixmap(size, ratio);
            const QPixmap b = theirs.pixmap(size, ratio);
            QCOMPARE(a.devicePixelRatio(), b.devicePixelRatio());
            QCOMPARE(image(a), image(b));
        }
    }
}

} // namespace

class TestLightStart : public QObject
{
    Q_OBJECT
private slots:
    // First: nothing before it may have read a picture the guessing way.
    void startReadsNoPicturePlugin()
    {
        const QStringList early = mappedFiles("/imageformats/");
        QVERIFY2(early.isEmpty(), qPrintable(early.join(u' ')));
        TestEnvironment env;
        env.addNumberedItems(3);
        Started run(env, appdirArguments(env.appPath()), env.appPath());
        QVERIFY(run.ok);
        // Start-up returns with the window on screen and the splash gone.
        QVERIFY(run.launcher.window()->windowHandle()->isExposed());
        for (const QWidget* w : QApplication::topLevelWidgets())
            QVERIFY2(!w->isVisible() || !w->inherits("QSplashScreen"), "the splash is still up");
        run.launcher.window()->grab(); // every icon shown is drawn
        // The logo an item without pictures shows is a GIF: its own plugin, found by name.
        QStringList loaded = mappedFiles("/imageformats/");
        loaded.removeAll(u"libqgif.so"_s);
        QVERIFY2(loaded.isEmpty(), qPrintable(loaded.join(u' ')));
        QVERIFY2(mappedFiles("/libcurl").isEmpty(), "libcurl was loaded before any transfer");

        // The check sees plugins when they are loaded: a guess loads every one installed.
        const QString plugins = QLibraryInfo::path(QLibraryInfo::PluginsPath) + u"/imageformats"_s;
        if (QDir(plugins).entryList(QDir::Files).size() < 2)
            QSKIP("fewer than two picture plugins installed");
        QImageReader(u":/icons/Add.png"_s).read();
        QVERIFY(mappedFiles("/imageformats/").size() >= 2);
    }

    void pngIconIsQIcon_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("toolbar icon with @2x") << ":/icons/Add.png";
        QTest::newRow("program icon") << ":/icons/tallybid.png";
        QTest::newRow("missing") << ":/icons/Nothing.png";
        QTest::newRow("not a picture") << "garbage.png";
    }
    void pngIconIsQIcon()
    {
        QFETCH(QString, path);
        TestEnvironment env;
        if (!path.startsWith(u':')) {
            path = env.writeFile(path, "not a picture");
            QVERIFY(QFileInfo::exists(path));
        }
        compareIcons(AppImages::pngIcon(path), QIcon(path));
    }

    // The copies decoded at build time hold exactly what reading the file gives.
    void decodedCopiesAreTheFiles_data()
    {
        addColumns<QString, QByteArray>("path", "format");
        QTest::newRow("splash") << ":/splash.ppm" << QByteArray("ppm");
        QTest::newRow("toolbar icon") << ":/icons/Find.png" << QByteArray("png");
        QTest::newRow("toolbar icon @2x") << ":/icons/Find@2x.png" << QByteArray("png");
        QTest::newRow("window icon") << ":/icons/tallybid.png" << QByteArray("png");
    }
    void decodedCopiesAreTheFiles()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, format);
        QVERIFY2(QFile::exists(AppImages::decodedPath(path)), "no decoded copy");
        QImageReader reader(path, format);
        const QPixmap read = QPixmap::fromImage(reader.read());
        const QPixmap ours = AppImages::pixmap(path, format.constData());
        QCOMPARE(ours.devicePixelRatio(), read.devicePixelRatio());
        QCOMPARE(image(ours), image(read));
    }

    void decodedForm_data()
    {
        addColumns<QByteArray, bool>("data", "whole");
        QImage alpha(5, 3, QImage::Format_ARGB32);
        alpha.fill(QColor(10, 200, 30, 100));
        alpha.setPixelColor(4, 2, QColor(255, 0, 0, 0));
        QImage opaque(3, 4, QImage::Format_Indexed8);
        opaque.setColorTable({qRgb(1, 2, 3), qRgb(250, 251, 252)});
        opaque.fill(1);
        QImage dense = alpha;
        dense.setDevicePixelRatio(2);
        const QByteArray good = AppImages::toDecoded(alpha);
        QTest::newRow("transparent") << good << true;
        QTest::newRow("opaque, from a palette") << AppImages::toDecoded(opaque) << true;
        QTest::newRow("pixel ratio 2") << AppImages::toDecoded(dense) << true;
        QTest::newRow("empty") << QByteArray() << false;
        QTest::newRow("another kind of file")
            << QByteArray("P6\n5 3\n255\n") + good.mid(11) << false;
        QTest::newRow("cut short") << good.chopped(1) << false;
        QTest::newRow("too long") << good + '\0' << false;
        const auto patched = [&](int at, char byte) {
            return QByteArray(good).replace(at, 1, &byte, 1);
        };
        QTest::newRow("too wide") << patched(5, '\x7f') << false; // width 0x7f05
        QTest::newRow("other pixel format") << patched(12, char(QImage::Format_Mono)) << false;
        QTest::newRow("pixel ratio 0") << patched(16, 0) << false;
    }
    void decodedForm()
    {
        QFETCH(QByteArray, data);
        QFETCH(bool, whole);
        const QImage back = AppImages::fromDecoded(data);
        QCOMPARE(!back.isNull(), whole);
        if (whole)
            QCOMPARE(AppImages::toDecoded(back), data); // nothing lost either way
    }

    // Deferred or not, each icon draws as the wrapped style's own.
    void styleIconsAsTheStyleGives_data()
    {
        addColumns<int, bool>("standardPixmap", "rightToLeft");
        // clang-format off
        QTest::newRow("toolbar overflow") << int(QStyle::SP_ToolBarHorizontalExtensionButton) << false;
        QTest::newRow("toolbar overflow, right to left") << int(QStyle::SP_ToolBarHorizontalExtensionButton) << true;
        QTest::newRow("vertical overflow") << int(QStyle::SP_ToolBarVerticalExtensionButton) << false;
        QTest::newRow("clear button") << int(QStyle::SP_LineEditClearButton) << false;
        QTest::newRow("not deferred") << int(QStyle::SP_DialogOkButton) << false;
        // clang-format on
    }
    void styleIconsAsTheStyleGives()
    {
        QFETCH(int, standardPixmap);
        QFETCH(bool, rightToLeft);
        const auto pixmap = QStyle::StandardPixmap(standardPixmap);
        QStyleOption option;
        option.direction = rightToLeft ? Qt::RightToLeft : Qt::LeftToRight;
        const std::unique_ptr<QStyle> plain(QStyleFactory::create(u"Fusion"_s));
        const DeferredIconStyle deferred(QStyleFactory::create(u"Fusion"_s));
        compareIcons(deferred.standardIcon(pixmap, &option), plain->standardIcon(pixmap, &option));
    }
};

QTEST_MAIN(TestLightStart)
#include "tst_lightstart.moc"
