// The report window on a year of 100,000 generated items spread over five years
// (scripts/make-items --years 5): from the window being made to its first paint with that year's
// rows, totals and charts, against SQLite's own aggregate and select of the same rows on a
// connection of its own. The first open after the end-date index is dropped (the window makes it
// again, once) is timed on its own. Exits 1 when the open takes longer than 0.5 s.
//
//     QT_QPA_PLATFORM=offscreen bench_reports [--items 100000] [--year 2017] [--data DIR] [--runs
//     5]
#include "BenchTiming.h"
#include "GeneratedItems.h"
#include "RawSqlite.h"
#include "platform/Database.h"
#include "platform/ScriptedPrompts.h"
#include "platform/SettingsStore.h"
#include "platform/Shell.h"
#include "platform/TimeZone.h"
#include "reports/frmReports.h"
#include "settings/AppContext.h"

#include <QApplication>
#include <QBuffer>
#include <QElapsedTimer>
#include <QPdfWriter>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

constexpr double kGoalMs = 500;

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    int items = 100000, year = 2017, runs = 5;
    QString dataDir = QDir::tempPath() + QStringLiteral("/tallybid-bench");
    const QStringList args = app.arguments();
    for (qsizetype i = 1; i + 1 < args.size(); i += 2) {
        if (args.at(i) == QLatin1String("--items"))
            items = args.at(i + 1).toInt();
        else if (args.at(i) == QLatin1String("--year"))
            year = args.at(i + 1).toInt();
        else if (args.at(i) == QLatin1String("--data"))
            dataDir = args.at(i + 1);
        else if (args.at(i) == QLatin1String("--runs"))
            runs = std::max(1, args.at(i + 1).toInt());
    }
    const QString file = generatedItemsFolder(dataDir, items, 5) + QStringLiteral("/tb2.mdb");
    const DatabaseOpenResult opened = openDatabase(file, QStringLiteral("bench"));
    if (!opened.ok())
        qFatal("%s", qPrintable(opened.description));

    QTemporaryDir configDir;
    ScriptedPrompts prompts;
    RecordingShell shell;
    SettingsStore store(configDir.path());
    FixedTimeZone timeZone(300);
    AppContext ctx{prompts, shell, store, timeZone, opened.database, {}};
    ctx.state.appPath = QFileInfo(file).absolutePath();

    const ReportRange range{QDate(year, 1, 1), QDate(year, 12, 31)};
    SalesReport shown;
    const auto openWindow = [&] {
        frmReports window(ctx);
        window.setPeriod(ReportPeriod::Dates, range);
        window.show();
        window.repaint(); // the first paint, table and charts included
        QCoreApplication::processEvents();
        shown = window.report();
    };

    QSqlQuery(opened.database)
        .exec(QStringLiteral("DROP INDEX IF EXISTS ItemListByDateAuctionEnds"));
    const double firstOpen = msOf(openWindow);

    const QString period = QStringLiteral("DateAuctionEnds >= '%1-01-01' AND DateAuctionEnds < "
                                          "'%2-01-01' AND typeof(SalePrice) = 'integer' AND "
                                          "SalePrice > 0")
                               .arg(year)
                               .arg(year + 1);
    const RawSqlite reference(file);
    const QString aggregate = QStringLiteral("SELECT count(*), sum(SalePrice), sum(Cost), "
                                             "sum(ShippingCost), sum(InsuranceCost) FROM Items "
                                             "WHERE ") +
                              period;
    const QString select =
        QStringLiteral("SELECT ID, EbayID, ShortDescription, DateAuctionEnds, SalePrice, Cost, "
                       "ShippingCost, InsuranceCost, DatePaymentRecd, DateItemShipped FROM Items "
                       "WHERE ") +
        period + QStringLiteral(" ORDER BY DateAuctionEnds");
    std::vector<double> window, sums, rows;
    std::pair<qint64, qint64> expected;
    for (int r = 0; r < runs; ++r) {
        window.push_back(msOf(openWindow));
        sums.push_back(msOf([&] { expected = reference.run(aggregate); }));
        rows.push_back(msOf([&] { reference.run(select); }));
    }
    if (shown.totals.count != expected.first || shown.totals.salePrice.units() != expected.second)
        qFatal("the report's %lld items and %lld sales differ from SQLite's %lld and %lld",
               shown.totals.count, shown.totals.salePrice.units(), expected.first, expected.second);

    // The whole year as a PDF, once (not part of the goal): every row is laid out as a table.
    double pdfMs = 0;
    qint64 pdfBytes = 0;
    {
        frmReports report(ctx);
        report.setPeriod(ReportPeriod::Dates, range);
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        pdfMs = msOf([&] {
            QPdfWriter pdf(&buffer);
            pdf.setPageOrientation(QPageLayout::Landscape);
            report.render(pdf);
        });
        pdfBytes = buffer.size();
    }

    const double open = medianOf(window);
    std::printf("%d items, year %d: %lld sold, %d still unsold, %d unpaid\n", items, year,
                shown.totals.count, shown.unsold, shown.unpaid);
    std::printf("first open, making the end-date index   %8.1f ms\n", firstOpen);
    std::printf("open, first paint (median of %d)          %8.1f ms\n", runs, open);
    std::printf("SQLite aggregate of the same rows         %8.1f ms  (window / aggregate %.1fx)\n",
                medianOf(sums), open / std::max(medianOf(sums), 0.001));
    std::printf("SQLite select of the same rows            %8.1f ms  (window / select %.1fx)\n",
                medianOf(rows), open / std::max(medianOf(rows), 0.001));
    std::printf("the year as a PDF (%lld KB, once)         %8.1f ms\n", pdfBytes / 1024, pdfMs);
    std::printf("goal %.0f ms: %s\n", kGoalMs, open <= kGoalMs ? "met" : "MISSED");
    return open <= kGoalMs ? 0 : 1;
}
