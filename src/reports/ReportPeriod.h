#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

// Which items a report covers: those whose auction ended on a day from `from` to `to`, both
// included. The period always ends today at the latest, since an auction still running has
// not ended.
struct ReportRange
{
    QDate from;
    QDate to;

    bool isValid() const { return from.isValid() && to.isValid() && from <= to; }
    friend bool operator==(const ReportRange&, const ReportRange&) = default;
};

enum class ReportPeriod
{
    ThisMonth,
    LastMonth,
    ThisYear,
    LastYear,
    All,
    Dates // the from/to dates the user chose
};

namespace ReportPeriods {

// The first day "All" reaches: 1/1/1900 is the placeholder for no date, so it is never a day
// an auction ended.
inline const QDate kEarliest{1900, 1, 2};

// The combo box's entries, in ReportPeriod order.
QStringList names();
// The days a period covers on `today`; `chosen` is used for Dates only.
ReportRange range(ReportPeriod period, QDate today, ReportRange chosen = {});

} // namespace ReportPeriods
