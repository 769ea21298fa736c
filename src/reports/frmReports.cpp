#include "reports/frmReports.h"

#include "platform/Prompts.h"
#include "platform/WindowFitUi.h"
#include "platform/WindowTeardown.h"
#include "reports/ReportCharts.h"
#include "reports/ReportCsv.h"
#include "reports/ReportModel.h"
#include "reports/ReportPages.h"
#include "reports/texts.h"
#include "settings/AppContext.h"

#include <QChart>
#include <QChartView>
#include <QComboBox>
#include <QDateEdit>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPageLayout>
#include <QPdfWriter>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPushButton>
#include <QSaveFile>
#include <QScrollBar>
#include <QSplitter>
#include <QStyle>
#include <QTableView>
#include <QVBoxLayout>

namespace {

constexpr QSize kDefaultSize(1000, 720);
// Charts are drawn at this size for printing, then scaled to half the page's width.
constexpr QSize kPrintedChart(560, 340);

QChartView* chartView(const QString& name, QWidget* parent)
{
    auto* view = new QChartView(parent);
    view->setObjectName(name);
    view->setRenderHint(QPainter::Antialiasing);
    view->setMinimumSize(240, 200);
    return view;
}

QPushButton* button(const QString& name, const QString& text, QWidget* parent)
{
    auto* b = new QPushButton(text, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

QDateEdit* dateEdit(const QString& name, QWidget* parent)
{
    auto* edit = new QDateEdit(parent);
    edit->setObjectName(name);
    edit->setCalendarPopup(true);
    // The locale's short date with a four-digit year, as dates are shown everywhere.
    QString format = QLocale().dateFormat(QLocale::ShortFormat);
    if (!format.contains(QLatin1String("yyyy")))
        format.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    edit->setDisplayFormat(format);
    edit->setMinimumDate(ReportPeriods::kEarliest);
    return edit;
}

} // namespace

frmReports::frmReports(AppContext& ctx, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_model(new ReportModel(this)), m_foot(new ReportFootModel(this))
{
    setObjectName(ReportTexts::kWindowName);
    setWindowTitle(ReportTexts::kTitle);
    setWindowFlag(Qt::WindowMaximizeButtonHint);

    cboPeriod = new QComboBox(this);
    cboPeriod->setObjectName(QStringLiteral("cboPeriod"));
    cboPeriod->addItems(ReportPeriods::names());
    dtpFrom = dateEdit(QStringLiteral("dtpFrom"), this);
    dtpTo = dateEdit(QStringLiteral("dtpTo"), this);
    auto* period = new QHBoxLayout;
    const auto label = [this](const QString& name, const QString& text, QWidget* buddy) {
        auto* l = new QLabel(text, this);
        l->setObjectName(name);
        l->setBuddy(buddy);
        return l;
    };
    period->addWidget(label(QStringLiteral("lblPeriod"), ReportTexts::kPeriod, cboPeriod));
    period->addWidget(cboPeriod);
    period->addSpacing(12);
    period->addWidget(label(QStringLiteral("lblFrom"), ReportTexts::kFrom, dtpFrom));
    period->addWidget(dtpFrom);
    period->addWidget(label(QStringLiteral("lblTo"), ReportTexts::kTo, dtpTo));
    period->addWidget(dtpTo);
    period->addStretch();

    grdReport = new QTableView(this);
    grdReport->setObjectName(QStringLiteral("grdReport"));
    grdReport->setModel(m_model);
    grdReport->verticalHeader()->hide();
    grdReport->setSelectionBehavior(QAbstractItemView::SelectRows);
    grdReport->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdReport->setWordWrap(false);
    grdReport->setAlternatingRowColors(true);
    grdReport->horizontalHeader()->setSortIndicator(ReportColumns::Ended, Qt::AscendingOrder);
    grdReport->setSortingEnabled(true);
    grdReport->horizontalHeader()->setDefaultSectionSize(90);
    grdReport->setColumnWidth(ReportColumns::Title, 220);
    grdReport->setColumnWidth(ReportColumns::DaysToPaid, 110);
    grdReport->setColumnWidth(ReportColumns::DaysToShipped, 110);

    // The foot keeps the table's columns: same widths, same sideways scrolling.
    grdTotals = new QTableView(this);
    grdTotals->setObjectName(QStringLiteral("grdTotals"));
    grdTotals->setModel(m_foot);
    grdTotals->horizontalHeader()->hide();
    grdTotals->verticalHeader()->hide();
    grdTotals->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Both keep a vertical scroll bar, so the foot's columns stay under the table's.
    grdReport->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    grdTotals->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    grdTotals->setSelectionMode(QAbstractItemView::NoSelection);
    grdTotals->setFocusPolicy(Qt::NoFocus);
    grdTotals->setWordWrap(false);
    QFont bold = grdTotals->font();
    bold.setBold(true);
    grdTotals->setFont(bold);
    grdTotals->setFixedHeight(2 * grdTotals->verticalHeader()->defaultSectionSize() +
                              2 * grdTotals->frameWidth());
    for (int c = 0; c < ReportColumns::Count; ++c)
        grdTotals->setColumnWidth(c, grdReport->columnWidth(c));
    connect(grdReport->horizontalHeader(), &QHeaderView::sectionResized, grdTotals,
            [this](int column, int, int size) { grdTotals->setColumnWidth(column, size); });
    connect(grdReport->horizontalScrollBar(), &QScrollBar::valueChanged,
            grdTotals->horizontalScrollBar(), &QScrollBar::setValue);
    chtSales = chartView(QStringLiteral("chtSales"), this);
    chtOpen = chartView(QStringLiteral("chtOpen"), this);

    auto* tablePart = new QWidget(this);
    tablePart->setObjectName(QStringLiteral("fraTable"));
    auto* tableLayout = new QVBoxLayout(tablePart);
    tableLayout->setContentsMargins(0, 0, 0, 0);
    tableLayout->setSpacing(0);
    tableLayout->addWidget(grdReport);
    tableLayout->addWidget(grdTotals);
    auto* chartPart = new QWidget(this);
    chartPart->setObjectName(QStringLiteral("fraCharts"));
    auto* chartLayout = new QHBoxLayout(chartPart);
    chartLayout->setContentsMargins(0, 0, 0, 0);
    chartLayout->addWidget(chtSales);
    chartLayout->addWidget(chtOpen);
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->setObjectName(QStringLiteral("splReport"));
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(tablePart);
    splitter->addWidget(chartPart);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 1);

    cmdExportCsv = button(QStringLiteral("cmdExportCsv"), ReportTexts::kExportCsv, this);
    cmdPrint = button(QStringLiteral("cmdPrint"), ReportTexts::kPrint, this);
    cmdSavePdf = button(QStringLiteral("cmdSavePdf"), ReportTexts::kSavePdf, this);
    cmdClose = button(QStringLiteral("cmdClose"), ReportTexts::kClose, this);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdExportCsv);
    buttons->addWidget(cmdPrint);
    buttons->addWidget(cmdSavePdf);
    buttons->addStretch();
    buttons->addWidget(cmdClose);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(period);
    layout->addWidget(splitter, 1);
    layout->addLayout(buttons);

    connect(cboPeriod, &QComboBox::currentIndexChanged, this, &frmReports::periodChosen);
    connect(dtpFrom, &QDateEdit::dateChanged, this, &frmReports::datesChosen);
    connect(dtpTo, &QDateEdit::dateChanged, this, &frmReports::datesChosen);
    connect(cmdExportCsv, &QPushButton::clicked, this, &frmReports::exportCsv);
    connect(cmdPrint, &QPushButton::clicked, this, &frmReports::print);
    connect(cmdSavePdf, &QPushButton::clicked, this, &frmReports::savePdf);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);

    cboPeriod->setCurrentIndex(int(ReportPeriod::ThisYear)); // reads the items
    fitToScreen(*this, kDefaultSize);
}

frmReports::~frmReports()
{
    stopHearingChildren(*this); // a date box fixes up typed text as the window closes
}

void frmReports::setPeriod(ReportPeriod period, ReportRange chosen)
{
    {
        const QSignalBlocker block(cboPeriod);
        cboPeriod->setCurrentIndex(int(period));
    }
    showDates(ReportPeriods::range(period, QDate::currentDate(), chosen));
    reload();
}

void frmReports::periodChosen()
{
    const auto period = ReportPeriod(cboPeriod->currentIndex());
    if (period != ReportPeriod::Dates)
        showDates(ReportPeriods::range(period, QDate::currentDate()));
    reload();
}

void frmReports::datesChosen()
{
    if (cboPeriod->currentIndex() != int(ReportPeriod::Dates)) {
        const QSignalBlocker block(cboPeriod);
        cboPeriod->setCurrentIndex(int(ReportPeriod::Dates));
    }
    reload();
}

void frmReports::showDates(ReportRange range)
{
    const QSignalBlocker blockFrom(dtpFrom), blockTo(dtpTo);
    dtpFrom->setDate(range.from);
    dtpTo->setDate(range.to);
}

void frmReports::reload()
{
    const QDateTime now = QDateTime::currentDateTime();
    const auto period = ReportPeriod(cboPeriod->currentIndex());
    const ReportRange range =
        ReportPeriods::range(period, now.date(), {dtpFrom->date(), dtpTo->date()});
    m_report = SalesReports::load(m_ctx.itemDatabase, range, now);
    if (!m_report.error.isEmpty())
        m_ctx.prompts.message(ReportTexts::kReadFailed.arg(m_report.error), ReportTexts::kTitle,
                              PromptIcon::Exclamation);
    // "All" shows the days its items really cover.
    if (period == ReportPeriod::All)
        showDates(m_report.range);
    m_model->setRows(m_report.rows);
    const QHeaderView* header = grdReport->horizontalHeader();
    m_model->sort(header->sortIndicatorSection(), header->sortIndicatorOrder());
    m_foot->setTotals(m_report.totals);
    fitNumberColumns();
    chtSales->setChart(ReportCharts::salesChart(m_report).release()); // the view owns it
    chtOpen->setChart(ReportCharts::openChart(m_report).release());
    applyChartTheme();
}

// Sums in the millions show whole: a column of figures grows to its header and the foot's
// texts, the widest figures of most periods. The rows are not measured, which would cost as
// much as reading a year's items.
void frmReports::fitNumberColumns()
{
    const QFontMetrics header(grdReport->horizontalHeader()->font());
    const QFontMetrics foot(grdTotals->font());
    const int margin = 2 * grdReport->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 12;
    for (int c = 0; c < ReportColumns::Count; ++c) {
        if (!ReportColumns::isNumber(c))
            continue;
        // The header also holds the sort arrow.
        int width = header.horizontalAdvance(ReportColumns::header(c)) + margin + 16;
        for (const QString& text : {ReportColumns::totalText(m_report.totals, c),
                                    ReportColumns::averageText(m_report.totals, c)})
            width = std::max(width, foot.horizontalAdvance(text) + margin);
        if (grdReport->columnWidth(c) < width)
            grdReport->setColumnWidth(c, width);
    }
}

void frmReports::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyChartTheme();
}

// The charts follow a dark colour scheme on screen; printed ones stay light.
void frmReports::applyChartTheme()
{
    const bool dark = palette().color(QPalette::Window).lightness() < 128;
    const QChart::ChartTheme theme = dark ? QChart::ChartThemeDark : QChart::ChartThemeLight;
    for (QChartView* view : {chtSales, chtOpen})
        if (view->chart() && view->chart()->theme() != theme)
            view->chart()->setTheme(theme);
}

QString frmReports::askFile(const QString& title, const QString& suffix, const QString& filter)
{
    const QString name = ReportTexts::kReportFileName.arg(m_report.range.from.toString(Qt::ISODate),
                                                          m_report.range.to.toString(Qt::ISODate)) +
                         u'.' + suffix;
    QString path = m_ctx.prompts.saveFileName(title, m_ctx.appFile(name), filter);
    if (!path.isEmpty() && QFileInfo(path).suffix().isEmpty())
        path += u'.' + suffix;
    return path;
}

void frmReports::exportCsv()
{
    const QString path =
        askFile(ReportTexts::kCsvDialog, QStringLiteral("csv"), ReportTexts::kCsvFilter);
    if (path.isEmpty())
        return;
    const QString error = ReportCsv::write(m_model->rows(), path);
    if (!error.isEmpty())
        m_ctx.prompts.message(ReportTexts::kWriteFailed.arg(path, error), ReportTexts::kTitle,
                              PromptIcon::Exclamation);
}

void frmReports::print()
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageOrientation(QPageLayout::Landscape);
    QPrintPreviewDialog preview(&printer, this);
    preview.setObjectName(QStringLiteral("frmPrintPreview"));
    connect(&preview, &QPrintPreviewDialog::paintRequested, this,
            [this](QPrinter* p) { render(*p); });
    preview.exec();
}

void frmReports::savePdf()
{
    const QString path =
        askFile(ReportTexts::kPdfDialog, QStringLiteral("pdf"), ReportTexts::kPdfFilter);
    if (path.isEmpty())
        return;
    QSaveFile file(path);
    bool written = file.open(QIODevice::WriteOnly);
    if (written) {
        // The writer finishes the PDF when it goes, before the file is put in place.
        QPdfWriter pdf(&file);
        pdf.setTitle(ReportTexts::kHeading);
        pdf.setCreator(QStringLiteral("Tallybid"));
        pdf.setPageSize(QPageSize(QLocale().measurementSystem() == QLocale::MetricSystem
                                      ? QPageSize::A4
                                      : QPageSize::Letter));
        pdf.setPageOrientation(QPageLayout::Landscape);
        pdf.setPageMargins(QMarginsF(12, 12, 12, 12), QPageLayout::Millimeter);
        pdf.setResolution(300);
        render(pdf);
    }
    written = written && file.commit();
    if (!written)
        m_ctx.prompts.message(ReportTexts::kWriteFailed.arg(path, file.errorString()),
                              ReportTexts::kTitle, PromptIcon::Exclamation);
}

void frmReports::render(QPagedPaintDevice& device) const
{
    ReportPages::paint(device, m_report, m_model->rows(),
                       ReportCharts::picture(ReportCharts::salesChart(m_report), kPrintedChart),
                       ReportCharts::picture(ReportCharts::openChart(m_report), kPrintedChart));
}
