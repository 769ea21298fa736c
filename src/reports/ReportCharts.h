#pragma once

#include "reports/SalesReport.h"

#include <QImage>
#include <QLocale>
#include <QSize>
#include <memory>

class QChart;

// The report's two charts, by month (or by year for a long period): sales and net, and the
// active items whose auction ended unsold or sold and unpaid. Amounts are drawn as doubles;
// the figures in the table stay exact.
namespace ReportCharts {

std::unique_ptr<QChart> salesChart(const SalesReport& report, const QLocale& locale = QLocale());
std::unique_ptr<QChart> openChart(const SalesReport& report, const QLocale& locale = QLocale());
// A chart drawn at `size` logical pixels, twice as fine, for printing.
QImage picture(std::unique_ptr<QChart> chart, QSize size);

} // namespace ReportCharts
