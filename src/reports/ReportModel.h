#pragma once

#include "reports/SalesReport.h"

#include <QAbstractTableModel>
#include <QLocale>

// The report's columns and how each shows its value, shared by the table, its foot, the CSV
// file and the printed report.
namespace ReportColumns {

enum Column
{
    EbayId,
    Title,
    Ended,
    SalePrice,
    Cost,
    Shipping,
    Insurance,
    Net,
    DaysToPaid,
    DaysToShipped,
    Count
};

QString header(int column);
// A day in the locale's short form, never with a time: in a zone whose clocks skip midnight
// the day's first moment is 1:00.
QString dayText(QDate day, const QLocale& locale = QLocale());
bool isNumber(int column);
// As the window shows it: money in the locale's currency form, the end date as a short date.
QString display(const SaleRow& row, int column, const QLocale& locale = QLocale());
// The foot's two lines: "Total" (sums, the count of items sold) and "Average" (per sold item).
QString totalText(const ReportTotals& totals, int column, const QLocale& locale = QLocale());
QString averageText(const ReportTotals& totals, int column, const QLocale& locale = QLocale());

} // namespace ReportColumns

// The sold items as a table, sortable on any column (ties keep the end date order).
class ReportModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    using QAbstractTableModel::QAbstractTableModel;

    void setRows(QList<SaleRow> rows);
    const QList<SaleRow>& rows() const { return m_rows; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private:
    QList<SaleRow> m_rows;
    QLocale m_locale;
};

// The foot under the table: the totals line and the averages line, in the table's columns.
class ReportFootModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    using QAbstractTableModel::QAbstractTableModel;

    void setTotals(const ReportTotals& totals);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    ReportTotals m_totals;
    QLocale m_locale;
};
