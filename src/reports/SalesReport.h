#pragma once

#include "platform/Money.h"
#include "reports/ReportPeriod.h"

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <optional>

// One item sold in the period, as the report shows it. Blank or unreadable money counts as
// zero; a blank, unreadable or 1/1/1900 date is no date.
struct SaleRow
{
    qint64 id = 0;
    QString ebayId;
    QString title;
    QDate ended;
    Money salePrice, cost, shipping, insurance;
    std::optional<int> daysToPaid;    // from the end date to Payment Rec'd
    std::optional<int> daysToShipped; // from the end date to Item Shipped

    // What the sale brought in over what the item cost; shipping, insurance and the site's
    // and payment fees are not taken off.
    Money net() const { return Money::fromUnits(salePrice.units() - cost.units()); }
};

// Sums over the rows and averages per sold item (days: per item that has the date).
struct ReportTotals
{
    qint64 count = 0;
    Money salePrice, cost, shipping, insurance, net;
    qint64 paidCount = 0, shippedCount = 0;
    qint64 daysToPaid = 0, daysToShipped = 0; // sums

    Money average(Money sum) const;
    // Tenths of a day are enough for a mean of whole days: the exact mean rounded half away
    // from zero to a tenth; none without a dated item.
    std::optional<double> averageDaysToPaid() const;
    std::optional<double> averageDaysToShipped() const;
};

// One bar of the charts: a month, or a year when the period is long.
struct ReportBucket
{
    QDate start; // first day of the month or year
    Money sales, net;
    int unsold = 0; // auction ended without a sale price, item still active
    int unpaid = 0; // sold, no Payment Rec'd date, item still active
};

struct SalesReport
{
    ReportRange range;   // for "All", from the first item's end date
    QList<SaleRow> rows; // by end date, then ID
    ReportTotals totals;
    bool byYear = false; // buckets are years (a period of more than three years)
    QList<ReportBucket> buckets;
    int unsold = 0, unpaid = 0;
    QString error; // the items could not be read
};

namespace SalesReports {

// Longest period charted by month.
constexpr int kMonthlyBuckets = 36;

ReportTotals totalsOf(const QList<SaleRow>& rows);
// The date part of stored ISO text; none for blank, unreadable text or 1/1/1900.
std::optional<QDate> storedDate(QStringView text);

// Reads the items whose auction ended in the range and no later than `now` (local time, as
// stored): the sold ones become rows, the active unsold and unpaid ones are counted.
SalesReport load(const QSqlDatabase& db, ReportRange range, const QDateTime& now);

} // namespace SalesReports
