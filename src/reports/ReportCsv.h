#pragma once

#include "reports/SalesReport.h"

#include <QString>

// The report's rows as a CSV file in the project's CSV form (see docs/csv.md): a header row of
// the column captions, money as plain decimals, the end date as ISO text, blank days blank.
namespace ReportCsv {

QString text(const QList<SaleRow>& rows);
// Replaces path whole only when everything was written; the reason when it was not.
QString write(const QList<SaleRow>& rows, const QString& path);

} // namespace ReportCsv
