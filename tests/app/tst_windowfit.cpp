// Every window at its default and its smallest size on the screen the test runs on: nothing
// cut, nothing over the screen's edge, readable in a dark palette. Registered three times: on
// the default screen, on a 640x480 screen, and at scale factor 2 on a 1600x1000 screen.
#include "../support/LayoutCheck.h"
#include "ItemWindowFixture.h"
#include "aftersale/frmCleanup.h"
#include "aftersale/frmEndingAuction.h"
#include "aftersale/frmNote.h"
#include "app/frmFind.h"
#include "app/frmImport.h"
#include "app/frmSplash.h"
#include "app/frmTools.h"
#include "ftp/frmFTP.h"
#include "listing/frmAdStudio.h"
#include "platform/WindowFit.h"
#include "reports/frmReports.h"
#include "settings/frmOptions.h"
#include "web/frmLoadWebPage.h"

using Factory = std::function<std::unique_ptr<QWidget>(AppContext&)>;
Q_DECLARE_METATYPE(Factory)

namespace {

// What a desktop draws around a window: the room a window may take is the screen less this.
constexpr QMargins kFrame(6, 32, 6, 6);

QRect available()
{
    return QGuiApplication::primaryScreen()->availableGeometry();
}

// Problems of the window and of every page of its tab strips.
QStringList problemsOf(QWidget& window)
{
    QStringList problems = layoutProblems(&window);
    if (auto* main = qobject_cast<QMainWindow*>(&window))
        problems = layoutProblems(main->centralWidget());
    for (auto* tabs : window.findChildren<QTabWidget*>()) {
        const int kept = tabs->currentIndex();
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            QCoreApplication::processEvents();
            problems << layoutProblems(tabs->widget(i));
            if (!tabs->tabBar()->rect().intersects(tabs->tabBar()->tabRect(tabs->currentIndex())))
                problems << tabs->tabText(i) + QLatin1String(" cannot be reached");
        }
        tabs->setCurrentIndex(kept);
    }
    // The resize grip sits in the corner on purpose.
    problems.removeIf([](const QString& p) { return p.contains(QLatin1String("QSizeGrip")); });
    return problems;
}

QPalette darkPalette()
{
    QPalette p;
    for (const auto role : {QPalette::Window, QPalette::AlternateBase, QPalette::Button})
        p.setColor(role, QColor(0x35, 0x35, 0x35));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        p.setColor(role, QColor(0xee, 0xee, 0xee));
    p.setColor(QPalette::Base, QColor(0x25, 0x25, 0x25));
    p.setColor(QPalette::Highlight, QColor(0x2a, 0x82, 0xda));
    p.setColor(QPalette::HighlightedText, Qt::black);
    return p;
}

// Empty when a window of this size fits on the screen, else the size.
QString overflow(QSize size)
{
    const QSize room = WindowFit::room(available(), kFrame);
    if (size.width() <= room.width() && size.height() <= room.height())
        return {};
    return u"%1x%2"_s.arg(size.width()).arg(size.height());
}

// Contrast ratio of two colours as used for readable text (1 to 21).
double contrast(const QColor& a, const QColor& b)
{
    const auto luminance = [](const QColor& c) {
        const auto channel = [](double v) {
            return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * channel(c.redF()) + 0.7152 * channel(c.greenF()) +
               0.0722 * channel(c.blueF());
    };
    const double la = luminance(a) + 0.05;
    const double lb = luminance(b) + 0.05;
    return std::max(la, lb) / std::min(la, lb);
}

QString shot(const QString& name)
{
    const QString screen = u"%1x%2"_s.arg(available().width()).arg(available().height());
    return QDir::temp().filePath(u"tallybid-%1-%2.png"_s.arg(name, screen));
}

} // namespace

class TestWindowFit : public QObject
{
    Q_OBJECT
private slots:
    void everyWindowFits_data()
    {
        QTest::addColumn<Factory>("make");
        const auto row = [](const char* name, Factory make) { QTest::newRow(name) << make; };
        // clang-format off
        row("frmItems", [](AppContext& c) { return std::make_unique<frmItems>(c, QSize(1280, 1024)); });
        row("frmFind", [](AppContext& c) { return std::make_unique<frmFind>(c); });
        row("frmImport", [](AppContext& c) {
            return std::make_unique<frmImport>(
                c, ItemCsv::planImport(u"ShortDescription,Cost,Colour\nLamp,1,red\nVase,ten,blue\n"), u"items.csv"_s);
        });
        row("frmOptions", [](AppContext& c) { return std::make_unique<frmOptions>(c); });
        row("frmAdStudio", [](AppContext& c) { return std::make_unique<frmAdStudio>(c); });
        row("frmFTP", [](AppContext& c) { return std::make_unique<frmFTP>(c); });
        row("frmLoadWebPage", [](AppContext& c) { return std::make_unique<frmLoadWebPage>(c); });
        row("frmEndingAuction", [](AppContext& c) { return std::make_unique<frmEndingAuction>(c); });
        row("frmNote", [](AppContext& c) { return std::make_unique<frmNote>(c, nullptr); });
        row("frmCleanup", [](AppContext& c) { return std::make_unique<frmCleanup>(c, [] {}, [] { return nullptr; }); });
        row("frmReports", [](AppContext& c) { return std::make_unique<frmReports>(c); });
        row("frmCalculator", [](AppContext&) { return std::make_unique<frmCalculator>(); });
        row("frmCalendar", [](AppContext&) { return std::make_unique<frmCalendar>(); });
        // clang-format on
    }
    void everyWindowFits()
    {
        QFETCH(Factory, make);
        TestEnvironment env;
        env.addNumberedItems(3);
        const std::unique_ptr<QWidget> window = make(env.context());
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        const QString name = QString::fromLatin1(QTest::currentDataTag());

        // As it opens: on the screen, whole.
        QCOMPARE(overflow(window->size()), QString());
        QCOMPARE(problemsOf(*window), QStringList());
        QVERIFY(window->grab().save(shot(name)));
        // Where the screen leaves room, every tab's caption shows without scrolling to it.
        if (window->width() < WindowFit::room(available(), kFrame).width())
            for (const QTabWidget* tabs : window->findChildren<QTabWidget*>())
                QVERIFY2(tabs->tabBar()->tabRect(tabs->count() - 1).right() <
                             tabs->tabBar()->width(),
                         qPrintable(tabs->tabText(tabs->count() - 1)));

        // As small as it goes: still on the screen and still whole.
        const QSize minimum = window->minimumSize();
        QCOMPARE(overflow(minimum), QString());
        window->resize(1, 1);
        QCoreApplication::processEvents();
        QCOMPARE(window->size(), minimum);
        QCOMPARE(problemsOf(*window), QStringList());
        QVERIFY(window->grab().save(shot(name + "-min"_L1)));

        // In a dark palette.
        const QPalette kept = QApplication::palette();
        QApplication::setPalette(darkPalette());
        window->resize(window->sizeHint());
        QCoreApplication::processEvents();
        QVERIFY(window->grab().save(shot(name + "-dark"_L1)));
        QApplication::setPalette(kept);
    }

    // A size kept from a larger screen, or from before the scale changed, comes back on screen.
    void savedSizeIsFittedToTheScreen()
    {
        TestEnvironment env;
        env.store().save(u"Tallybid"_s, u"Options"_s, u"MainFormWidth"_s,
                         QString::number(1600 * 15));
        env.store().save(u"Tallybid"_s, u"Options"_s, u"MainFormHeight"_s,
                         QString::number(1200 * 15));
        frmItems items(env.context(), QGuiApplication::primaryScreen()->size());
        items.show();
        QVERIFY(QTest::qWaitForWindowExposed(&items));
        QCOMPARE(overflow(items.size()), QString());

        frmOptions options(env.context(), &items);
        options.show();
        QVERIFY(QTest::qWaitForWindowExposed(&options));
        auto* cancel = options.findChild<QPushButton*>(u"cmdCancel"_s);
        const QRect onScreen(cancel->mapToGlobal(QPoint(0, 0)), cancel->size());
        QVERIFY2(available().contains(onScreen),
                 qPrintable(u"Cancel at %1,%2"_s.arg(onScreen.right()).arg(onScreen.bottom())));
    }

    // The help text of the text search ends in "aol.com"": all of its lines are shown.
    void findHelpIsWhole()
    {
        TestEnvironment env;
        frmFind find(env.context());
        find.show();
        QVERIFY(QTest::qWaitForWindowExposed(&find));
        auto* help = find.findChild<QLabel*>(u"lblHelp"_s);
        for (const QSize size : {find.size(), find.minimumSize()}) {
            find.resize(size);
            QCoreApplication::processEvents();
            const int needed = help->heightForWidth(help->width());
            QVERIFY2(help->height() >= needed,
                     qPrintable(u"%1 px high, needs %2"_s.arg(help->height()).arg(needed)));
        }
    }

    void pictureLabelsRead_data()
    {
        // previewed: invalid: any colour that reads
        addColumns<bool, QColor, QColor>("dark", "previewed", "others");
        QTest::newRow("light") << false << QColor(0, 0, 0x80) << QColor(Qt::black);
        QTest::newRow("dark") << true << QColor() << QColor();
    }
    // Picture 2 is previewed: its label stands out from the other two, and all three read on the
    // window's background.
    void pictureLabelsRead()
    {
        QFETCH(bool, dark);
        QFETCH(QColor, previewed);
        QFETCH(QColor, others);
        const QPalette kept = QApplication::palette();
        if (dark)
            QApplication::setPalette(darkPalette());
        TestEnvironment env;
        const QString path = savePicture(env.path(u"p.png"_s), 40, 30);
        env.addItems({{{u"Picture1Path"_s, path}, {u"Picture2Path"_s, path}}});
        frmItems items(env.context(), QSize(1280, 1024));
        items.show();
        items.previewPicture(6);
        const QColor background = items.palette().color(QPalette::Window);
        QList<QColor> colours;
        for (int i = 4; i <= 6; ++i) {
            auto* label = items.findChild<QLabel*>(u"txtLabels_%1"_s.arg(i));
            colours << label->palette().color(QPalette::WindowText);
            QVERIFY2(contrast(colours.last(), background) >= 4.5,
                     qPrintable(label->text() + u' ' + colours.last().name()));
        }
        QApplication::setPalette(kept);
        QCOMPARE(colours[0], colours[2]);
        QVERIFY(colours[1] != colours[0]);
        if (previewed.isValid()) {
            QCOMPARE(colours[1], previewed);
            QCOMPARE(colours[0], others);
        }
    }

    // The artwork has its own status line; nothing is written over it.
    void splashShowsOneLine()
    {
        frmSplash splash;
        splash.show();
        QCoreApplication::processEvents();
        const QImage artwork = QImage(u":/splash.ppm"_s).convertToFormat(QImage::Format_RGB32);
        QVERIFY(!artwork.isNull());
        const QImage shown = splash.grab().toImage().convertToFormat(QImage::Format_RGB32);
        QVERIFY(splash.grab().save(shot(u"splash"_s)));
        if (splash.devicePixelRatio() != 1.0)
            QSKIP("the artwork is redrawn at the screen's scale; compared on unscaled screens");
        QCOMPARE(shown.size(), artwork.size());
        QVERIFY(shown == artwork);
    }

    // An Inactive view with nothing in it: every box is grey, the ID box too.
    void emptyViewGreysEveryBox()
    {
        TestEnvironment env;
        env.addItems({{{u"ShortDescription"_s, u"Vase"_s}, {u"Active"_s, true}}});
        frmItems items(env.context(), QSize(1280, 1024));
        items.show();
        items.mnuClosed_Click();
        for (int i = 0; i < 15; ++i) {
            auto* box = items.findChild<QWidget*>(u"txtFields_%1"_s.arg(i));
            QVERIFY2(!box->isEnabled(), qPrintable(box->objectName()));
        }
        items.mnuAll_Click();
        QVERIFY(items.findChild<QLineEdit*>(u"txtFields_0"_s)->isEnabled());
    }
};

QTEST_MAIN(TestWindowFit)
#include "tst_windowfit.moc"
