// The report window driven offscreen: the period's rows, foot and charts, sorting, the CSV and
// PDF it writes, printing, and the Actions menu that opens it.
#include "../support/ModalWatch.h"
#include "../support/TestEnvironment.h"
#include "app/frmItems.h"
#include "db/ItemCsv.h"
#include "reports/ReportCharts.h"
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
#include <QTableView>
#include <QValueAxis>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const int kYear = QDate::currentDate().year();

QVariantMap sold(const QString& ebay, QDateTime ends, qint64 price, qint64 cost)
{
    const auto text = [](const QDateTime& t) { return t.toString(u"yyyy-MM-dd HH:mm:ss"_s); };
    // clang-format off
    return {{u"EbayID"_s, ebay}, {u"ShortDescription"_s, QString(u"Lamp "_s + ebay)}, {u"DateAuctionEnds"_s, text(ends)},
            {u"SalePrice"_s, price}, {u"Cost"_s, cost}, {u"DatePaymentRecd"_s, text(ends.addDays(3))}, {u"Active"_s, 0}};
    // clang-format on
}

QString cellText(QTableView* view, int row, int column)
{
    return view->model()->index(row, column).data().toString();
}

// A period chosen, and the rows, the foot's sales and average net, and the unsold items.
// clang-format off
struct Period { QString period; int rows; QString sales, averageNet; int unsold; };
// clang-format on

} // namespace

class TestFrmReports : public QObject
{
    Q_OBJECT
    std::unique_ptr<TestEnvironment> m_env;
    std::unique_ptr<frmReports> m_window;
    template <typename T> T* child(const char* name)
    {
        T* w = m_window->findChild<T*>(QLatin1String(name));
        if (!w)
            qFatal("no %s", name);
        return w;
    }
    void showAll() { child<QComboBox>("cboPeriod")->setCurrentIndex(int(ReportPeriod::All)); }

private slots:
    void init()
    {
        m_env = std::make_unique<TestEnvironment>();
        const QDateTime newYear(QDate(kYear, 1, 1), QTime(0, 0, 1));
        m_env->addItems({
            sold(u"1001"_s, newYear, 100000, 40000),
            sold(u"1002"_s, newYear.addSecs(1), 250000, 50000),
            sold(u"1003"_s, QDateTime(QDate(kYear - 1, 6, 1), QTime(10, 0)), 1000000, 300000),
            sold(u"1004"_s, QDateTime(QDate(kYear - 3, 6, 1), QTime(10, 0)), 70000, 0),
            {{u"EbayID"_s, u"1005"_s},
             {u"DateAuctionEnds"_s, QString(QString::number(kYear - 1) + u"-07-01 10:00:00"_s)},
             {u"Active"_s, 1}},
        });
        m_window = std::make_unique<frmReports>(m_env->context());
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }
    void cleanup()
    {
        QVERIFY2(m_env->prompts().unexpected().isEmpty(),
                 qPrintable(m_env->prompts().unexpected().join(u'\n')));
        m_window.reset();
        m_env.reset();
    }

    void periodChangesRowsAndTotals_data()
    {
        QTest::addColumn<Period>("row");
        QTest::newRow("this year") << Period{ReportTexts::kThisYear, 2, "$35.00", "$13.00", 0};
        QTest::newRow("last year") << Period{ReportTexts::kLastYear, 1, "$100.00", "$70.00", 1};
        QTest::newRow("all") << Period{ReportTexts::kAll, 4, "$142.00", "$25.75", 1};
        QTest::newRow("from/to dates") << Period{ReportTexts::kDates, 1, "$100.00", "$70.00", 0};
    }
    void periodChangesRowsAndTotals()
    {
        QFETCH(Period, row);
        auto* combo = child<QComboBox>("cboPeriod");
        QCOMPARE(combo->currentText(), ReportTexts::kThisYear); // what the window opens on
        if (row.period == ReportTexts::kDates) { // dates typed in choose their own period
            child<QDateEdit>("dtpFrom")->setDate(QDate(kYear - 1, 5, 1));
            child<QDateEdit>("dtpTo")->setDate(QDate(kYear - 1, 6, 30));
        } else {
            combo->setCurrentIndex(combo->findText(row.period));
        }
        QCOMPARE(combo->currentText(), row.period);
        auto* foot = child<QTableView>("grdTotals");
        QCOMPARE(child<QTableView>("grdReport")->model()->rowCount(), row.rows);
        QCOMPARE(cellText(foot, 0, ReportColumns::SalePrice), row.sales);
        QCOMPARE(cellText(foot, 1, ReportColumns::Net), row.averageNet);
        QCOMPARE(m_window->report().unsold, row.unsold);
        // The charts show the same period's figures.
        QChart* chart = child<QChartView>("chtSales")->chart();
        QVERIFY(chart);
        QCOMPARE(chart->series().size(), 1);
        QVERIFY(child<QChartView>("chtOpen")->chart() != chart);
    }

    void sortsByColumn()
    {
        showAll();
        auto* grid = child<QTableView>("grdReport");
        QHeaderView* header = grid->horizontalHeader();
        const auto firstColumn = [&] {
            QStringList ids;
            for (int r = 0; r < grid->model()->rowCount(); ++r)
                ids << cellText(grid, r, ReportColumns::EbayId);
            return ids;
        };
        QCOMPARE(firstColumn(), QStringList({"1004", "1003", "1001", "1002"}));
        const QPoint net(header->sectionViewportPosition(ReportColumns::Net) + 5, 5);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, net);
        QCOMPARE(firstColumn(), QStringList({"1001", "1004", "1002", "1003"}));
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, net);
        QCOMPARE(firstColumn(), QStringList({"1003", "1002", "1004", "1001"}));
        // The CSV holds the rows in the order shown.
        const QString path = m_env->path(u"sales"_s); // the suffix is added
        m_env->prompts().queueFile(path);
        QTest::mouseClick(child<QPushButton>("cmdExportCsv"), Qt::LeftButton);
        QFile file(path + u".csv"_s);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const auto records = ItemCsv::parse(QString::fromUtf8(file.readAll()), u',');
        QCOMPARE(records.size(), 5);
        QCOMPARE(records.at(1).fields.mid(0, 4),
                 QStringList({"1003", "Lamp 1003", QString::number(kYear - 1) + u"-06-01", "100"}));
        QCOMPARE(records.at(4).fields.at(ReportColumns::EbayId), u"1001"_s);
        QCOMPARE(m_env->prompts().shown().last().title, ReportTexts::kCsvDialog);
        // Another period keeps the chosen order.
        child<QComboBox>("cboPeriod")->setCurrentIndex(int(ReportPeriod::ThisYear));
        QCOMPARE(firstColumn(), QStringList({"1002", "1001"}));
    }

    void savesPdf()
    {
        // Enough rows for the table to run onto a second page, and amounts in the millions.
        QList<QVariantMap> more;
        for (int i = 0; i < 60; ++i)
            more << sold(QString::number(2000 + i), QDateTime(QDate(kYear - 1, 8, 1), QTime(9, i)),
                         10000 + i * 100, 5000);
        more << sold(u"3000"_s, QDateTime(QDate(kYear - 1, 9, 1), QTime(9, 0)), 123456789000, 0);
        m_env->addItems(more);
        showAll();
        const QString path = m_env->path(u"report.pdf"_s);
        m_env->prompts().queueFile(path);
        QTest::mouseClick(child<QPushButton>("cmdSavePdf"), Qt::LeftButton);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray pdf = file.readAll();
        QVERIFY(pdf.startsWith("%PDF-"));
        QVERIFY(pdf.trimmed().endsWith("%%EOF"));
        // Every amount whole on the page, the largest sums included.
        const QString pdftotext = QStandardPaths::findExecutable(u"pdftotext"_s);
        if (!pdftotext.isEmpty()) {
            QProcess p;
            p.start(pdftotext, {path, u"-"_s});
            QVERIFY(p.waitForFinished(30000));
            const QString text = QString::fromUtf8(p.readAllStandardOutput());
            const ReportTotals& totals = m_window->report().totals;
            for (const QString& amount :
                 {u"$12,345,678.90"_s, ReportColumns::totalText(totals, ReportColumns::SalePrice),
                  ReportColumns::averageText(totals, ReportColumns::Net)})
                QVERIFY2(text.contains(amount), qPrintable(amount + u" not in:\n"_s + text));
        }
        // The window shows the sums whole too.
        auto* foot = child<QTableView>("grdTotals");
        for (int column : {int(ReportColumns::SalePrice), int(ReportColumns::Net)})
            QVERIFY(foot->fontMetrics().horizontalAdvance(cellText(foot, 0, column)) <
                    foot->columnWidth(column));
        // A folder that is not there: the user is told, nothing is written.
        const QString bad = m_env->path(u"missing/report.pdf"_s);
        m_env->prompts().queueFile(bad);
        QTest::mouseClick(child<QPushButton>("cmdSavePdf"), Qt::LeftButton);
        QVERIFY(!QFile::exists(bad));
        QVERIFY(m_env->prompts().shown().last().text.contains(bad));
    }

    // Printing goes through the preview.
    void printsThroughThePreview()
    {
        showAll();
        ModalWatch watch;
        QTest::mouseClick(child<QPushButton>("cmdPrint"), Qt::LeftButton);
        QCOMPARE(watch.shown, u"frmPrintPreview"_s);
    }

    void chartValueLabelsDiffer_data()
    {
        QTest::addColumn<QList<qint64>>("cents");
        QTest::newRow("nothing sold") << QList<qint64>{0, 0, 0};
        QTest::newRow("a few dollars") << QList<qint64>{150, 250, 0};
        QTest::newRow("cents") << QList<qint64>{3, 7, 1};
        QTest::newRow("thousands") << QList<qint64>{123456, 987654, 0};
    }
    // Every tick of the sales chart's value axis has a label of its own.
    void chartValueLabelsDiffer()
    {
        QFETCH(QList<qint64>, cents);
        SalesReport report;
        for (int month = 0; month < cents.size(); ++month)
            report.buckets << ReportBucket{QDate(kYear, month + 1, 1),
                                           Money::fromUnits(cents[month] * Money::kScale / 100),
                                           Money::fromUnits(cents[month] * Money::kScale / 200)};
        const std::unique_ptr<QChart> chart = ReportCharts::salesChart(report, QLocale::c());
        const auto* axis = qobject_cast<QValueAxis*>(chart->axes(Qt::Vertical).value(0));
        QVERIFY(axis);
        QStringList labels;
        const double step = (axis->max() - axis->min()) / (axis->tickCount() - 1);
        for (int tick = 0; tick < axis->tickCount(); ++tick)
            labels << QString::asprintf(qPrintable(axis->labelFormat()), axis->min() + tick * step);
        QCOMPARE(QSet<QString>(labels.begin(), labels.end()).size(), labels.size());
        // The axis reaches the highest bar.
        QVERIFY2(axis->max() >= *std::max_element(cents.begin(), cents.end()) / 100.0,
                 qPrintable(labels.join(u' ')));
    }

    void actionsMenuOpensOneWindow()
    {
        m_window.reset();
        frmItems items(m_env->context(), QSize(1280, 1024));
        items.show();
        auto* reports = items.findChild<QAction*>(u"mnuActionsReports"_s);
        QVERIFY(reports && reports->isEnabled());
        reports->trigger();
        reports->trigger();
        const QList<frmReports*> open = items.findChildren<frmReports*>();
        QCOMPARE(open.size(), 1);
        QVERIFY(open.first()->isVisible());
        QCOMPARE(open.first()->report().rows.size(), 2);
    }
};

QTEST_MAIN(TestFrmReports)
#include "tst_frmreports.moc"
