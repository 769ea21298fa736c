#include "reports/ReportModel.h"

#include "aftersale/NoteComposer.h"
#include "platform/DateText.h"
#include "reports/texts.h"

#include <QTimeZone>

#include <algorithm>

namespace ReportColumns {

namespace {

std::optional<Money> moneyOf(const SaleRow& row, int column)
{
    switch (column) {
    case SalePrice:
        return row.salePrice;
    case Cost:
        return row.cost;
    case Shipping:
        return row.shipping;
    case Insurance:
        return row.insurance;
    case Net:
        return row.net();
    default:
        return std::nullopt;
    }
}

std::optional<Money> moneyOf(const ReportTotals& t, int column)
{
    switch (column) {
    case SalePrice:
        return t.salePrice;
    case Cost:
        return t.cost;
    case Shipping:
        return t.shipping;
    case Insurance:
        return t.insurance;
    case Net:
        return t.net;
    default:
        return std::nullopt;
    }
}

QString daysText(const std::optional<double>& days, const QLocale& locale)
{
    return days ? locale.toString(*days, 'f', 1) : QString();
}

} // namespace

QString header(int column)
{
    static const QString* const headers[Count] = {
        &ReportTexts::kEbayNumber, &ReportTexts::kShortDescription,
        &ReportTexts::kEndDate,    &ReportTexts::kSalePrice,
        &ReportTexts::kCost,       &ReportTexts::kShipping,
        &ReportTexts::kInsurance,  &ReportTexts::kNet,
        &ReportTexts::kDaysToPaid, &ReportTexts::kDaysToShipped};
    return column >= 0 && column < Count ? *headers[column] : QString();
}

QString dayText(QDate day, const QLocale& locale)
{
    return DateText::toDisplay(QDateTime(day, QTime(0, 0), QTimeZone::utc()), locale);
}

bool isNumber(int column)
{
    return column >= SalePrice;
}

QString display(const SaleRow& row, int column, const QLocale& locale)
{
    if (const std::optional<Money> m = moneyOf(row, column))
        return Currency::toText(*m, locale);
    switch (column) {
    case EbayId:
        return row.ebayId;
    case Title:
        return row.title;
    case Ended:
        return dayText(row.ended, locale);
    case DaysToPaid:
        return row.daysToPaid ? locale.toString(*row.daysToPaid) : QString();
    case DaysToShipped:
        return row.daysToShipped ? locale.toString(*row.daysToShipped) : QString();
    default:
        return {};
    }
}

QString totalText(const ReportTotals& totals, int column, const QLocale& locale)
{
    if (const std::optional<Money> m = moneyOf(totals, column))
        return Currency::toText(*m, locale);
    if (column == EbayId)
        return ReportTexts::kTotal;
    if (column == Title)
        return totals.count == 1 ? ReportTexts::kOneItemSold
                                 : ReportTexts::kItemsSold.arg(locale.toString(totals.count));
    return {};
}

QString averageText(const ReportTotals& totals, int column, const QLocale& locale)
{
    if (const std::optional<Money> m = moneyOf(totals, column))
        return totals.count ? Currency::toText(totals.average(*m), locale) : QString();
    if (column == EbayId)
        return ReportTexts::kAverage;
    if (column == DaysToPaid)
        return daysText(totals.averageDaysToPaid(), locale);
    if (column == DaysToShipped)
        return daysText(totals.averageDaysToShipped(), locale);
    return {};
}

} // namespace ReportColumns

using namespace ReportColumns;

void ReportModel::setRows(QList<SaleRow> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int ReportModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ReportModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : Count;
}

QVariant ReportModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    if (role == Qt::DisplayRole)
        return display(m_rows.at(index.row()), index.column(), m_locale);
    if (role == Qt::TextAlignmentRole && isNumber(index.column()))
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant ReportModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::DisplayRole)
        return header(section);
    if (role == Qt::TextAlignmentRole && isNumber(section))
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

void ReportModel::sort(int column, Qt::SortOrder order)
{
    // Sort keys compare whole values: money by amount, eBay numbers by number when both are
    // digits, days with the blank ones first.
    const auto less = [column](const SaleRow& a, const SaleRow& b) {
        switch (column) {
        case EbayId: {
            bool okA = false, okB = false;
            const qulonglong na = a.ebayId.toULongLong(&okA), nb = b.ebayId.toULongLong(&okB);
            if (okA && okB)
                return na < nb;
            if (okA != okB)
                return okA;
            return a.ebayId < b.ebayId;
        }
        case Title:
            return QString::localeAwareCompare(a.title, b.title) < 0;
        case Ended:
            return a.ended < b.ended;
        case DaysToPaid:
            return a.daysToPaid < b.daysToPaid;
        case DaysToShipped:
            return a.daysToShipped < b.daysToShipped;
        default: {
            const std::optional<Money> ma = ReportColumns::moneyOf(a, column);
            const std::optional<Money> mb = ReportColumns::moneyOf(b, column);
            return ma && mb && ma->units() < mb->units();
        }
        }
    };
    if (column < 0 || column >= Count)
        return;
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    if (order == Qt::AscendingOrder)
        std::stable_sort(m_rows.begin(), m_rows.end(), less);
    else
        std::stable_sort(m_rows.begin(), m_rows.end(),
                         [&](const SaleRow& a, const SaleRow& b) { return less(b, a); });
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void ReportFootModel::setTotals(const ReportTotals& totals)
{
    beginResetModel();
    m_totals = totals;
    endResetModel();
}

int ReportFootModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 2;
}

int ReportFootModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : Count;
}

QVariant ReportFootModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    if (role == Qt::DisplayRole)
        return index.row() == 0 ? totalText(m_totals, index.column(), m_locale)
                                : averageText(m_totals, index.column(), m_locale);
    if (role == Qt::TextAlignmentRole && isNumber(index.column()))
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant ReportFootModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return header(section);
    return {};
}
