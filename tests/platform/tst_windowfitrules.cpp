#include "platform/WindowFit.h"

#include <QtTest>

class TestWindowFitRules : public QObject
{
    Q_OBJECT
private slots:
    void fit_data();
    void fit();
};

using OptionalPoint = std::optional<QPoint>;
Q_DECLARE_METATYPE(OptionalPoint)

void TestWindowFitRules::fit_data()
{
    QTest::addColumn<QSize>("wanted");
    QTest::addColumn<QSize>("minimum");
    QTest::addColumn<QRect>("available");
    QTest::addColumn<OptionalPoint>("topLeft");
    QTest::addColumn<QRect>("expected");
    const QRect screen(0, 0, 1600, 1000);
    const QRect halfScale(0, 0, 800, 500); // 1600x1000 at scale factor 2
    // clang-format off
    QTest::newRow("fits, centred")         << QSize(600, 400) << QSize(300, 200) << screen << OptionalPoint() << QRect(500, 313, 600, 400);
    QTest::newRow("fits, kept in place")   << QSize(600, 400) << QSize(300, 200) << screen << OptionalPoint(QPoint(100, 90)) << QRect(100, 90, 600, 400);
    QTest::newRow("saved at scale 1")      << QSize(1600, 1200) << QSize(567, 428) << halfScale << OptionalPoint() << QRect(6, 32, 788, 462);
    QTest::newRow("wider than the screen") << QSize(1726, 300) << QSize(274, 148) << halfScale << OptionalPoint() << QRect(6, 113, 788, 300);
    QTest::newRow("hangs over the right")  << QSize(600, 400) << QSize(300, 200) << screen << OptionalPoint(QPoint(1500, 900)) << QRect(994, 594, 600, 400);
    QTest::newRow("above the top")         << QSize(600, 400) << QSize(300, 200) << screen << OptionalPoint(QPoint(-50, -20)) << QRect(6, 32, 600, 400);
    QTest::newRow("below the minimum")     << QSize(100, 50) << QSize(300, 200) << screen << OptionalPoint(QPoint(10, 40)) << QRect(10, 40, 300, 200);
    QTest::newRow("minimum too large")     << QSize(900, 700) << QSize(700, 600) << QRect(0, 0, 640, 480) << OptionalPoint(QPoint(200, 100)) << QRect(6, 32, 700, 600);
    QTest::newRow("second screen")         << QSize(2000, 900) << QSize(300, 200) << QRect(1600, 24, 1280, 776) << OptionalPoint() << QRect(1606, 56, 1268, 738);
    QTest::newRow("no size wanted")        << QSize() << QSize(300, 200) << screen << OptionalPoint(QPoint(10, 40)) << QRect(10, 40, 300, 200);
    // clang-format on
}

// Frame of 6 pixels at the sides and bottom and a 32-pixel title bar.
void TestWindowFitRules::fit()
{
    QFETCH(QSize, wanted);
    QFETCH(QSize, minimum);
    QFETCH(QRect, available);
    QFETCH(OptionalPoint, topLeft);
    const QMargins frame(6, 32, 6, 6);
    const QRect placed = WindowFit::fit(wanted, minimum, available, frame, topLeft);
    QTEST(placed, "expected");
    // Whatever the window wants, its title bar starts on the screen.
    QVERIFY(available.contains(placed.topLeft() - QPoint(frame.left(), frame.top())));
}

QTEST_APPLESS_MAIN(TestWindowFitRules)
#include "tst_windowfitrules.moc"
