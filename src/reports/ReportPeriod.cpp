#include "reports/ReportPeriod.h"

#include "reports/texts.h"

#include <algorithm>

namespace ReportPeriods {

QStringList names()
{
    return {ReportTexts::kThisMonth, ReportTexts::kLastMonth, ReportTexts::kThisYear,
            ReportTexts::kLastYear,  ReportTexts::kAll,       ReportTexts::kDates};
}

ReportRange range(ReportPeriod period, QDate today, ReportRange chosen)
{
    const QDate month(today.year(), today.month(), 1);
    const QDate year(today.year(), 1, 1);
    switch (period) {
    case ReportPeriod::ThisMonth:
        return {month, today};
    case ReportPeriod::LastMonth:
        return {month.addMonths(-1), month.addDays(-1)};
    case ReportPeriod::ThisYear:
        return {year, today};
    case ReportPeriod::LastYear:
        return {year.addYears(-1), year.addDays(-1)};
    case ReportPeriod::All:
        return {kEarliest, today};
    case ReportPeriod::Dates:
        break;
    }
    // Dates given the wrong way round are read as the days between them.
    QDate from = std::max(std::min(chosen.from, chosen.to), kEarliest);
    QDate to = std::max(chosen.from, chosen.to);
    if (!from.isValid() || !to.isValid())
        from = to = today;
    return {from, to};
}

} // namespace ReportPeriods
