#pragma once

#include <QString>

// What the report window and its files say.
namespace ReportTexts {

inline const QString kTitle = QStringLiteral("Reports");
// The window's object name, by which the item window finds the one already open.
inline const QString kWindowName = QStringLiteral("frmReports");
inline const QString kPeriod = QStringLiteral("Period:");
inline const QString kFrom = QStringLiteral("From:");
inline const QString kTo = QStringLiteral("To:");

inline const QString kThisMonth = QStringLiteral("This month");
inline const QString kLastMonth = QStringLiteral("Last month");
inline const QString kThisYear = QStringLiteral("This year");
inline const QString kLastYear = QStringLiteral("Last year");
inline const QString kAll = QStringLiteral("All");
inline const QString kDates = QStringLiteral("From/to dates");

inline const QString kEbayNumber = QStringLiteral("eBay #");
inline const QString kShortDescription = QStringLiteral("Short Description");
inline const QString kEndDate = QStringLiteral("End Date");
inline const QString kSalePrice = QStringLiteral("Sale Price");
inline const QString kCost = QStringLiteral("Cost");
inline const QString kShipping = QStringLiteral("Shipping");
inline const QString kInsurance = QStringLiteral("Insurance");
inline const QString kNet = QStringLiteral("Net");
inline const QString kDaysToPaid = QStringLiteral("Days to Pay");
inline const QString kDaysToShipped = QStringLiteral("Days to Ship");

inline const QString kTotal = QStringLiteral("Total");
inline const QString kAverage = QStringLiteral("Average");
inline const QString kItemsSold = QStringLiteral("%1 items sold");
inline const QString kOneItemSold = QStringLiteral("1 item sold");

inline const QString kSalesChart = QStringLiteral("Sales and net");
inline const QString kOpenChart = QStringLiteral("Still unsold and unpaid");
inline const QString kSales = QStringLiteral("Sales");
inline const QString kUnsold = QStringLiteral("Unsold");
inline const QString kUnpaid = QStringLiteral("Unpaid");

inline const QString kExportCsv = QStringLiteral("Export CSV...");
inline const QString kPrint = QStringLiteral("Print...");
inline const QString kSavePdf = QStringLiteral("Save as PDF...");
inline const QString kClose = QStringLiteral("Close");

inline const QString kCsvDialog = QStringLiteral("Export Report");
inline const QString kCsvFilter = QStringLiteral("CSV Files (*.csv)|*.csv|All Files (*.*)|*.*");
inline const QString kPdfDialog = QStringLiteral("Save Report as PDF");
inline const QString kPdfFilter = QStringLiteral("PDF Files (*.pdf)|*.pdf|All Files (*.*)|*.*");
inline const QString kReportFileName = QStringLiteral("Sales %1 to %2");
inline const QString kWriteFailed = QStringLiteral("The report could not be written to %1:\n%2");
inline const QString kReadFailed = QStringLiteral("The items could not be read:\n%1");

inline const QString kHeading = QStringLiteral("Sales and profit");
inline const QString kPeriodLine = QStringLiteral("Items sold from %1 to %2");

} // namespace ReportTexts
