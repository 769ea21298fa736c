#include "reports/ReportPages.h"

#include "platform/DateText.h"
#include "reports/ReportModel.h"
#include "reports/texts.h"

#include <QFontMetricsF>
#include <QPagedPaintDevice>
#include <QPainter>

#include <array>
#include <functional>

namespace ReportPages {

namespace {

// Shares of the page's width, in column order.
constexpr std::array<double, ReportColumns::Count> kShares = {0.09, 0.20, 0.085, 0.085,  0.08,
                                                              0.08, 0.08, 0.085, 0.1075, 0.1075};

class Pages
{
public:
    Pages(QPagedPaintDevice& device, const QLocale& locale)
        : m_device(device), m_painter(&device), m_locale(locale)
    {
        // The paintable part of the page, in device pixels.
        m_width = device.width();
        m_height = device.height();
        m_body.setPointSizeF(8);
        m_bold = m_body;
        m_bold.setBold(true);
        m_title = m_body;
        m_title.setPointSizeF(14);
        m_title.setBold(true);
        const QFontMetricsF metrics(m_body, &device);
        m_row = metrics.height() * 1.5;
        m_pad = metrics.averageCharWidth() / 2;
        m_footer = m_row * 1.5;
        double x = 0;
        for (int c = 0; c < ReportColumns::Count; ++c) {
            m_left[c] = x;
            x += kShares[c] * m_width;
        }
        m_left[ReportColumns::Count] = m_width;
    }
    ~Pages() { pageNumber(); }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;

    void heading(const QString& title, const QString& period)
    {
        line(m_title, title, m_row * 2);
        line(m_body, period, m_row * 1.5);
    }

    void header()
    {
        cells([](int c) { return ReportColumns::header(c); }, m_bold, true);
    }

    // One line of the table; a new page (with the header again) when it does not fit.
    void row(const std::function<QString(int)>& text, bool bold = false, int keepWith = 1)
    {
        if (m_y + m_row * keepWith > m_height - m_footer) {
            newPage();
            header();
        }
        cells(text, bold ? m_bold : m_body, bold);
    }

    void pictures(const QImage& left, const QImage& right)
    {
        const double gap = m_row;
        const double w = (m_width - gap) / 2;
        const double h = std::max(w * left.height() / std::max(1, left.width()),
                                  w * right.height() / std::max(1, right.width()));
        m_y += m_row;
        if (m_y + h > m_height - m_footer) {
            newPage();
        }
        m_painter.drawImage(QRectF(0, m_y, w, w * left.height() / std::max(1, left.width())), left);
        m_painter.drawImage(
            QRectF(w + gap, m_y, w, w * right.height() / std::max(1, right.width())), right);
        m_y += h;
    }

private:
    void line(const QFont& font, const QString& text, double height)
    {
        m_painter.setFont(font);
        m_painter.drawText(QRectF(0, m_y, m_width, height), Qt::AlignLeft | Qt::AlignVCenter, text);
        m_y += height;
    }

    void cells(const std::function<QString(int)>& text, const QFont& font, bool shaded)
    {
        m_painter.setFont(font);
        const QFontMetricsF metrics(font, &m_device);
        const QRectF band(0, m_y, m_width, m_row);
        if (shaded)
            m_painter.fillRect(band, QColor(232, 232, 232));
        for (int c = 0; c < ReportColumns::Count; ++c) {
            const QRectF cell(m_left[c] + m_pad, m_y, m_left[c + 1] - m_left[c] - 2 * m_pad, m_row);
            const Qt::Alignment align =
                (ReportColumns::isNumber(c) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
            m_painter.drawText(cell, align,
                               metrics.elidedText(text(c), Qt::ElideRight, cell.width()));
        }
        m_painter.setPen(QPen(Qt::gray, 0));
        m_painter.drawLine(band.bottomLeft(), band.bottomRight());
        m_painter.setPen(Qt::black);
        m_y += m_row;
    }

    void newPage()
    {
        pageNumber();
        m_device.newPage();
        ++m_page;
        m_y = 0;
    }

    void pageNumber()
    {
        m_painter.setFont(m_body);
        m_painter.drawText(QRectF(0, m_height - m_footer, m_width, m_footer),
                           Qt::AlignRight | Qt::AlignBottom, m_locale.toString(m_page));
    }

    QPagedPaintDevice& m_device;
    QPainter m_painter;
    QLocale m_locale;
    QFont m_body, m_bold, m_title;
    double m_width = 0, m_height = 0, m_row = 0, m_pad = 0, m_footer = 0, m_y = 0;
    std::array<double, ReportColumns::Count + 1> m_left{};
    int m_page = 1;
};

} // namespace

void paint(QPagedPaintDevice& device, const SalesReport& report, const QList<SaleRow>& rows,
           const QImage& salesChart, const QImage& openChart, const QLocale& locale)
{
    Pages pages(device, locale);
    const auto day = [&](QDate d) { return DateText::toDisplay(d.startOfDay(), locale); };
    pages.heading(ReportTexts::kHeading,
                  ReportTexts::kPeriodLine.arg(day(report.range.from), day(report.range.to)));
    pages.header();
    for (const SaleRow& r : rows)
        pages.row([&](int c) { return ReportColumns::display(r, c, locale); });
    // The totals and averages stay together.
    pages.row([&](int c) { return ReportColumns::totalText(report.totals, c, locale); }, true, 2);
    pages.row([&](int c) { return ReportColumns::averageText(report.totals, c, locale); }, true);
    pages.pictures(salesChart, openChart);
}

} // namespace ReportPages
