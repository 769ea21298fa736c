#pragma once

#include "reports/SalesReport.h"

#include <QLocale>
#include <QString>

// The printed report as rich text for QTextDocument: heading and period, the table with its
// header repeated on every page, the totals and averages, then the two charts, which the
// document must hold as image resources named kSalesChart and kOpenChart.
namespace ReportHtml {

inline const QString kSalesChart = QStringLiteral("report:sales.png");
inline const QString kOpenChart = QStringLiteral("report:open.png");

// rows in the order the window shows them; chartWidth in the document's pixels.
QString html(const SalesReport& report, const QList<SaleRow>& rows, int chartWidth,
             const QLocale& locale = QLocale());

} // namespace ReportHtml
