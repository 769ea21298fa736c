#include "platform/WindowFit.h"

#include <QtTest>

namespace {
// clang-format off
struct Fit { QSize wanted, minimum; QRect available; std::optional<QPoint> topLeft; QRect expected; };
// clang-format on
} // namespace

class TestWindowFitRules : public QObject
{
    Q_OBJECT
private slots:
    void fit_data()
    {
        QTest::addColumn<Fit>("row");
        const QRect screen(0, 0, 1600, 1000);
        const QRect halfScale(0, 0, 800, 500); // 1600x1000 at scale factor 2
        // clang-format off
        QTest::newRow("fits, centred")         << Fit{{600, 400}, {300, 200}, screen, {}, {500, 313, 600, 400}};
        QTest::newRow("fits, kept in place")   << Fit{{600, 400}, {300, 200}, screen, QPoint(100, 90), {100, 90, 600, 400}};
        QTest::newRow("saved at scale 1")      << Fit{{1600, 1200}, {567, 428}, halfScale, {}, {6, 32, 788, 462}};
        QTest::newRow("wider than the screen") << Fit{{1726, 300}, {274, 148}, halfScale, {}, {6, 113, 788, 300}};
        QTest::newRow("hangs over the right")  << Fit{{600, 400}, {300, 200}, screen, QPoint(1500, 900), {994, 594, 600, 400}};
        QTest::newRow("above the top")         << Fit{{600, 400}, {300, 200}, screen, QPoint(-50, -20), {6, 32, 600, 400}};
        QTest::newRow("below the minimum")     << Fit{{100, 50}, {300, 200}, screen, QPoint(10, 40), {10, 40, 300, 200}};
        QTest::newRow("minimum too large")     << Fit{{900, 700}, {700, 600}, {0, 0, 640, 480}, QPoint(200, 100), {6, 32, 700, 600}};
        QTest::newRow("second screen")         << Fit{{2000, 900}, {300, 200}, {1600, 24, 1280, 776}, {}, {1606, 56, 1268, 738}};
        QTest::newRow("no size wanted")        << Fit{{}, {300, 200}, screen, QPoint(10, 40), {10, 40, 300, 200}};
        // clang-format on
    }
    // Frame of 6 pixels at the sides and bottom and a 32-pixel title bar.
    void fit()
    {
        QFETCH(Fit, row);
        const QMargins frame(6, 32, 6, 6);
        const QRect placed =
            WindowFit::fit(row.wanted, row.minimum, row.available, frame, row.topLeft);
        QCOMPARE(placed, row.expected);
        // Whatever the window wants, its title bar starts on the screen.
        QVERIFY(row.available.contains(placed.topLeft() - QPoint(frame.left(), frame.top())));
    }
};

QTEST_APPLESS_MAIN(TestWindowFitRules)
#include "tst_windowfitrules.moc"
