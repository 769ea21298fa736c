#pragma once

#include "reports/SalesReport.h"

#include <QDialog>

class QChartView;
class QComboBox;
class QDateEdit;
class QPagedPaintDevice;
class QPushButton;
class QTableView;
class ReportFootModel;
class ReportModel;
struct AppContext;

// Sales and profit over a period: the items sold in it with their figures, the totals and
// averages at the foot, a chart of sales and net and one of the active items still unsold or
// unpaid, with CSV export, printing and a PDF copy. Reads the item window's database.
class frmReports : public QDialog
{
    Q_OBJECT
public:
    explicit frmReports(AppContext& ctx, QWidget* parent = nullptr);
    ~frmReports() override;

    const SalesReport& report() const { return m_report; }
    // Shows a period (`chosen` for from/to dates) as if the user had picked it.
    void setPeriod(ReportPeriod period, ReportRange chosen = {});
    // Reads the items again for the period the controls show.
    void reload();

    void exportCsv();
    void print();
    void savePdf();
    // The whole report, table, totals and charts, on the device's pages.
    void render(QPagedPaintDevice& device) const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyChartTheme();
    void fitNumberColumns();
    void periodChosen();
    void datesChosen();
    void showDates(ReportRange range);
    QString askFile(const QString& title, const QString& suffix, const QString& filter);

    AppContext& m_ctx;
    SalesReport m_report;
    ReportModel* m_model;
    ReportFootModel* m_foot;
    QComboBox* cboPeriod;
    QDateEdit* dtpFrom;
    QDateEdit* dtpTo;
    QTableView* grdReport;
    QTableView* grdTotals;
    QChartView* chtSales;
    QChartView* chtOpen;
    QPushButton* cmdExportCsv;
    QPushButton* cmdPrint;
    QPushButton* cmdSavePdf;
    QPushButton* cmdClose;
};
