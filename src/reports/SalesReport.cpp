#include "reports/SalesReport.h"

#include "platform/DateText.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>

namespace {

// The item list makes the same index the first time it is sorted by end date; with it the
// period is a range of the index instead of a read of every item, descriptions and all.
const QString kEndIndex = QStringLiteral(
    "CREATE INDEX IF NOT EXISTS ItemListByDateAuctionEnds ON Items (DateAuctionEnds, Active)");

// Sold items and the active ones (which may be unsold or unpaid) whose auction ended on a day of
// the period. Text comparison is day order for ISO text, whether a blank or a "T" follows the
// day; anything else is weeded out on reading, as are today's auctions still running.
const QString kSelect = QStringLiteral(
    "SELECT ID, EbayID, ShortDescription, DateAuctionEnds, SalePrice, Cost, ShippingCost, "
    "InsuranceCost, DatePaymentRecd, DateItemShipped, Active FROM Items "
    "WHERE DateAuctionEnds >= :from AND DateAuctionEnds < :until "
    "AND ((typeof(SalePrice) = 'integer' AND SalePrice > 0) OR Active <> 0) "
    "ORDER BY DateAuctionEnds, ID");

const QDate kNoDate(1900, 1, 1);

// Money is kept as integer ten-thousandths; blank and text kept as typed count as zero.
Money storedMoney(const QVariant& value)
{
    const int type = value.typeId();
    if (type == QMetaType::LongLong || type == QMetaType::Int)
        return Money::fromUnits(value.toLongLong());
    return {};
}

Money divided(Money sum, qint64 count)
{
    if (count <= 0)
        return {};
    const qint64 units = sum.units();
    const qint64 half = count / 2;
    const qint64 rounded = units >= 0 ? (units + half) / count : -((-units + half) / count);
    return Money::fromUnits(rounded);
}

std::optional<double> meanDays(qint64 sum, qint64 count)
{
    if (count <= 0)
        return std::nullopt;
    // Rounded on the exact quotient: the double of 7/20 days is 0.34999.., which would show
    // as 0.3.
    const qint64 tenths = sum * 10;
    const qint64 half = count / 2;
    return double(tenths >= 0 ? (tenths + half) / count : -((-tenths + half) / count)) / 10;
}

QDate bucketStart(QDate day, bool byYear)
{
    return byYear ? QDate(day.year(), 1, 1) : QDate(day.year(), day.month(), 1);
}

} // namespace

Money ReportTotals::average(Money sum) const
{
    return divided(sum, count);
}

std::optional<double> ReportTotals::averageDaysToPaid() const
{
    return meanDays(daysToPaid, paidCount);
}

std::optional<double> ReportTotals::averageDaysToShipped() const
{
    return meanDays(daysToShipped, shippedCount);
}

namespace SalesReports {

std::optional<QDate> storedDate(QStringView text)
{
    const QDate date = DateText::storedDay(text);
    if (!date.isValid() || date == kNoDate)
        return std::nullopt;
    return date;
}

ReportTotals totalsOf(const QList<SaleRow>& rows)
{
    ReportTotals t;
    qint64 sale = 0, cost = 0, shipping = 0, insurance = 0;
    for (const SaleRow& r : rows) {
        ++t.count;
        sale += r.salePrice.units();
        cost += r.cost.units();
        shipping += r.shipping.units();
        insurance += r.insurance.units();
        if (r.daysToPaid) {
            ++t.paidCount;
            t.daysToPaid += *r.daysToPaid;
        }
        if (r.daysToShipped) {
            ++t.shippedCount;
            t.daysToShipped += *r.daysToShipped;
        }
    }
    t.salePrice = Money::fromUnits(sale);
    t.cost = Money::fromUnits(cost);
    t.shipping = Money::fromUnits(shipping);
    t.insurance = Money::fromUnits(insurance);
    t.net = Money::fromUnits(sale - cost);
    return t;
}

SalesReport load(const QSqlDatabase& db, ReportRange range, const QDateTime& now)
{
    SalesReport report;
    report.range = range;
    if (!range.isValid())
        return report;

    QSqlQuery(db).exec(kEndIndex); // a read-only file goes without
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(kSelect);
    q.bindValue(QStringLiteral(":from"), range.from.toString(Qt::ISODate));
    const QDate today = now.date();
    q.bindValue(QStringLiteral(":until"),
                std::min(range.to, today).addDays(1).toString(Qt::ISODate));
    if (!q.exec()) {
        report.error = q.lastError().text();
        return report;
    }

    // Open (unsold or unpaid) items by end date, bucketed once the bucket size is known.
    QList<std::pair<QDate, bool>> open; // end date, unsold
    while (q.next()) {
        const QString endText = q.value(3).toString();
        const std::optional<QDate> ended = storedDate(endText);
        if (!ended)
            continue;
        // Ended today: only once its time has passed, compared as a time rather than as text
        // ("T" sorts after the blank of the usual form).
        if (*ended == today) {
            const QDateTime at = DateText::fromStorage(endText);
            if (!at.isValid() || at > now)
                continue;
        }
        const QVariant price = q.value(4);
        const bool sold = price.typeId() == QMetaType::LongLong && price.toLongLong() > 0;
        const std::optional<QDate> paid = storedDate(q.value(8).toString());
        if (!sold) {
            open.append({*ended, true});
            continue;
        }
        if (!paid && q.value(10).toLongLong() != 0)
            open.append({*ended, false});
        SaleRow row;
        row.id = q.value(0).toLongLong();
        row.ebayId = q.value(1).toString();
        row.title = q.value(2).toString();
        row.ended = *ended;
        row.salePrice = storedMoney(price);
        row.cost = storedMoney(q.value(5));
        row.shipping = storedMoney(q.value(6));
        row.insurance = storedMoney(q.value(7));
        if (paid)
            row.daysToPaid = int(ended->daysTo(*paid));
        if (const std::optional<QDate> shipped = storedDate(q.value(9).toString()))
            row.daysToShipped = int(ended->daysTo(*shipped));
        report.rows.append(std::move(row));
    }
    if (q.lastError().isValid()) {
        report.error = q.lastError().text();
        report.rows.clear();
        return report;
    }
    report.totals = totalsOf(report.rows);

    // The charts run from the period's first month (for "All", the first item's) to its last
    // month that has begun.
    QDate first = range.from;
    if (first == ReportPeriods::kEarliest) {
        first = range.to;
        if (!report.rows.isEmpty())
            first = std::min(first, report.rows.first().ended);
        if (!open.isEmpty())
            first = std::min(first, open.first().first);
    }
    report.range.from = first;
    const QDate last = std::max(first, std::min(range.to, now.date()));
    const int months = (last.year() - first.year()) * 12 + last.month() - first.month() + 1;
    report.byYear = months > kMonthlyBuckets;
    for (QDate b = bucketStart(first, report.byYear); b <= last;
         b = report.byYear ? b.addYears(1) : b.addMonths(1))
        report.buckets.append({b, {}, {}, 0, 0});
    const auto bucketOf = [&](QDate day) -> ReportBucket& {
        const QDate start = bucketStart(day, report.byYear);
        const qsizetype i = report.byYear
                                ? start.year() - report.buckets.first().start.year()
                                : (start.year() - report.buckets.first().start.year()) * 12 +
                                      start.month() - report.buckets.first().start.month();
        return report.buckets[std::clamp<qsizetype>(i, 0, report.buckets.size() - 1)];
    };
    for (const SaleRow& r : report.rows) {
        ReportBucket& b = bucketOf(r.ended);
        b.sales = b.sales + r.salePrice;
        b.net = b.net + r.net();
    }
    for (const auto& [day, unsold] : open) {
        ReportBucket& b = bucketOf(day);
        ++(unsold ? b.unsold : b.unpaid);
        ++(unsold ? report.unsold : report.unpaid);
    }
    return report;
}

} // namespace SalesReports
