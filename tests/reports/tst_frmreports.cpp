#include "../support/LayoutCheck.h"
#include "../support/ModalWatch.h"
#include "../support/TestEnvironment.h"
#include "app/frmItems.h"
#include "db/ItemCsv.h"
#include "reports/ReportModel.h"
#include "reports/frmReports.h"
#include "reports/texts.h"

#include <QAction>
#include <QChart>
#include <QChartView>
#include <QComboBox>
#include <QDateEdit>
#include <QHeaderView>
#include <QPushButton>
#include <QStandardPaths>
#include <QTableView>
#include <QtTest>

namespace {

const int kYear = QDate::currentDate().year();

QVariantMap sold(const QString& ebay, QDateTime ends, qint64 price, qint64 cost)
{
    return {
        {QStringLiteral("EbayID"), ebay},
        {QStringLiteral("ShortDescription"), QString(u"Lamp "_qs + ebay)},
        {QStringLiteral("DateAuctionEnds"), ends.toString(u"yyyy-MM-dd HH:mm:ss"_qs)},
        {QStringLiteral("SalePrice"), price},
        {QStringLiteral("Cost"), cost},
        {QStringLiteral("DatePaymentRecd"), ends.addDays(3).toString(u"yyyy-MM-dd HH:mm:ss"_qs)},
        {QStringLiteral("Active"), 0}};
}

QString cellText(QTableView* view, int row, int column)
{
    return view->model()->index(row, column).data().toString();
}

} // namespace

class TestFrmReports : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void periodChangesRowsAndTotals_data();
    void periodChangesRowsAndTotals();
    void sortsByColumn();
    void exportsCsvInShownOrder();
    void savesPdf();
    void printsThroughPreview();
    void looksWhole();
    void actionsMenuOpensOneWindow();

private:
    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<frmReports> m_window;
    template <typename T> T* child(const char* name)
    {
        T* w = m_window->findChild<T*>(QLatin1String(name));
        if (!w)
            qFatal("no %s", name);
        return w;
    }
};

void TestFrmReports::init()
{
    m_env = std::make_unique<TestEnvironment>();
    const QDateTime newYear(QDate(kYear, 1, 1), QTime(0, 0, 1));
    m_env->addItems({
        sold(u"1001"_qs, newYear, 100000, 40000),
        sold(u"1002"_qs, newYear.addSecs(1), 250000, 50000),
        sold(u"1003"_qs, QDateTime(QDate(kYear - 1, 6, 1), QTime(10, 0)), 1000000, 300000),
        sold(u"1004"_qs, QDateTime(QDate(kYear - 3, 6, 1), QTime(10, 0)), 70000, 0),
        {{QStringLiteral("EbayID"), u"1005"_qs},
         {QStringLiteral("DateAuctionEnds"),
          QString(QString::number(kYear - 1) + u"-07-01 10:00:00"_qs)},
         {QStringLiteral("Active"), 1}},
    });
    m_window = std::make_unique<frmReports>(m_env->context());
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void TestFrmReports::cleanup()
{
    QVERIFY2(m_env->prompts().unexpected().isEmpty(),
             qPrintable(m_env->prompts().unexpected().join(u'\n')));
    m_window.reset();
    m_env.reset();
}

void TestFrmReports::periodChangesRowsAndTotals_data()
{
    QTest::addColumn<QString>("period");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("sales");
    QTest::addColumn<QString>("averageNet");
    QTest::addColumn<int>("unsold");
    QTest::newRow("this year") << ReportTexts::kThisYear << 2 << u"$35.00"_qs << u"$13.00"_qs << 0;
    QTest::newRow("last year") << ReportTexts::kLastYear << 1 << u"$100.00"_qs << u"$70.00"_qs << 1;
    QTest::newRow("all") << ReportTexts::kAll << 4 << u"$142.00"_qs << u"$25.75"_qs << 1;
    QTest::newRow("from/to dates")
        << ReportTexts::kDates << 1 << u"$100.00"_qs << u"$70.00"_qs << 0;
}

void TestFrmReports::periodChangesRowsAndTotals()
{
    QFETCH(QString, period);
    auto* combo = child<QComboBox>("cboPeriod");
    QCOMPARE(combo->currentText(), ReportTexts::kThisYear); // what the window opens on
    if (period == ReportTexts::kDates) { // dates typed in choose their own period
        child<QDateEdit>("dtpFrom")->setDate(QDate(kYear - 1, 5, 1));
        child<QDateEdit>("dtpTo")->setDate(QDate(kYear - 1, 6, 30));
    } else {
        combo->setCurrentIndex(combo->findText(period));
    }
    QCOMPARE(combo->currentText(), period);
    auto* grid = child<QTableView>("grdReport");
    auto* foot = child<QTableView>("grdTotals");
    QTEST(grid->model()->rowCount(), "rows");
    QTEST(cellText(foot, 0, ReportColumns::SalePrice), "sales");
    QTEST(cellText(foot, 1, ReportColumns::Net), "averageNet");
    QTEST(m_window->report().unsold, "unsold");
    // The charts show the same period's figures.
    QChart* chart = child<QChartView>("chtSales")->chart();
    QVERIFY(chart);
    QCOMPARE(chart->series().size(), 1);
    QVERIFY(child<QChartView>("chtOpen")->chart() != chart);
}

void TestFrmReports::sortsByColumn()
{
    child<QComboBox>("cboPeriod")->setCurrentIndex(int(ReportPeriod::All));
    auto* grid = child<QTableView>("grdReport");
    QHeaderView* header = grid->horizontalHeader();
    const auto firstColumn = [&] {
        QStringList ids;
        for (int r = 0; r < grid->model()->rowCount(); ++r)
            ids << cellText(grid, r, ReportColumns::EbayId);
        return ids;
    };
    QCOMPARE(firstColumn(), QStringList({u"1004"_qs, u"1003"_qs, u"1001"_qs, u"1002"_qs}));
    const QPoint net(header->sectionViewportPosition(ReportColumns::Net) + 5, 5);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, net);
    QCOMPARE(firstColumn(), QStringList({u"1001"_qs, u"1004"_qs, u"1002"_qs, u"1003"_qs}));
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, net);
    QCOMPARE(firstColumn(), QStringList({u"1003"_qs, u"1002"_qs, u"1004"_qs, u"1001"_qs}));
    // Another period keeps the chosen order.
    child<QComboBox>("cboPeriod")->setCurrentIndex(int(ReportPeriod::ThisYear));
    QCOMPARE(firstColumn(), QStringList({u"1002"_qs, u"1001"_qs}));
}

void TestFrmReports::exportsCsvInShownOrder()
{
    child<QComboBox>("cboPeriod")->setCurrentIndex(int(ReportPeriod::All));
    child<QTableView>("grdReport")->sortByColumn(ReportColumns::SalePrice, Qt::DescendingOrder);
    const QString path = m_env->path(u"sales"_qs); // the suffix is added
    m_env->prompts().queueFile(path);
    QTest::mouseClick(child<QPushButton>("cmdExportCsv"), Qt::LeftButton);
    QFile file(path + u".csv"_qs);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QList<ItemCsv::Record> records = ItemCsv::parse(QString::fromUtf8(file.readAll()), u',');
    QCOMPARE(records.size(), 5);
    QCOMPARE(records.at(1).fields.mid(0, 4),
             QStringList({u"1003"_qs, u"Lamp 1003"_qs, QString::number(kYear - 1) + u"-06-01"_qs,
                          u"100"_qs}));
    QCOMPARE(records.at(4).fields.at(ReportColumns::EbayId), u"1004"_qs);
    QCOMPARE(m_env->prompts().shown().last().title, ReportTexts::kCsvDialog);
}

void TestFrmReports::savesPdf()
{
    // Enough rows for the table to run onto a second page.
    QList<QVariantMap> more;
    for (int i = 0; i < 60; ++i)
        more << sold(QString::number(2000 + i), QDateTime(QDate(kYear - 1, 8, 1), QTime(9, i)),
                     10000 + i * 100, 5000);
    m_env->addItems(more);
    child<QComboBox>("cboPeriod")->setCurrentIndex(int(ReportPeriod::All));
    const QString path = m_env->path(u"report.pdf"_qs);
    m_env->prompts().queueFile(path);
    QTest::mouseClick(child<QPushButton>("cmdSavePdf"), Qt::LeftButton);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray pdf = file.readAll();
    QVERIFY(pdf.startsWith("%PDF-"));
    QVERIFY(pdf.trimmed().endsWith("%%EOF"));
    // Drawn to a picture when poppler's tools are there, to look at.
    const QString pdftoppm = QStandardPaths::findExecutable(u"pdftoppm"_qs);
    if (!pdftoppm.isEmpty()) {
        const QString out = QDir::temp().filePath(u"tallybid-report-pdf"_qs);
        QCOMPARE(QProcess::execute(pdftoppm, {u"-png"_qs, u"-r"_qs, u"60"_qs, path, out}), 0);
        QVERIFY(QFile::exists(out + u"-1.png"_qs));
    }
    // A folder that is not there: the user is told, nothing is written.
    const QString bad = m_env->path(u"missing/report.pdf"_qs);
    m_env->prompts().queueFile(bad);
    QTest::mouseClick(child<QPushButton>("cmdSavePdf"), Qt::LeftButton);
    QVERIFY(!QFile::exists(bad));
    QVERIFY(m_env->prompts().shown().last().text.contains(bad));
}

void TestFrmReports::printsThroughPreview()
{
    ModalWatch watch;
    QTest::mouseClick(child<QPushButton>("cmdPrint"), Qt::LeftButton);
    QCOMPARE(watch.shown, u"frmPrintPreview"_qs);
}

void TestFrmReports::looksWhole()
{
    child<QComboBox>("cboPeriod")->setCurrentIndex(int(ReportPeriod::All));
    QTest::qWait(50);
    QVERIFY2(layoutProblems(m_window.get()).isEmpty(),
             qPrintable(layoutProblems(m_window.get()).join(u'\n')));
    m_window->grab().save(QDir::temp().filePath(u"tallybid-report-window.png"_qs));
    // Months instead of years along the charts.
    child<QComboBox>("cboPeriod")->setCurrentIndex(int(ReportPeriod::ThisYear));
    m_window->grab().save(QDir::temp().filePath(u"tallybid-report-window-months.png"_qs));
}

void TestFrmReports::actionsMenuOpensOneWindow()
{
    m_window.reset();
    frmItems items(m_env->context(), QSize(1280, 1024));
    items.show();
    auto* reports = items.findChild<QAction*>(u"mnuActionsReports"_qs);
    QVERIFY(reports && reports->isEnabled());
    reports->trigger();
    reports->trigger();
    const QList<frmReports*> open = items.findChildren<frmReports*>();
    QCOMPARE(open.size(), 1);
    QVERIFY(open.first()->isVisible());
    QCOMPARE(open.first()->report().rows.size(), 2);
}

QTEST_MAIN(TestFrmReports)
#include "tst_frmreports.moc"
