#pragma once

#include "reports/SalesReport.h"

#include <QImage>
#include <QLocale>

class QPagedPaintDevice;

// The printed report, drawn page by page: heading and period, the table with its header
// repeated on every page, the totals and averages, then the two charts side by side. Drawn
// directly rather than laid out as rich text, so a year of ten thousand rows takes seconds.
namespace ReportPages {

// rows in the order the window shows them.
void paint(QPagedPaintDevice& device, const SalesReport& report, const QList<SaleRow>& rows,
           const QImage& salesChart, const QImage& openChart, const QLocale& locale = QLocale());

} // namespace ReportPages
