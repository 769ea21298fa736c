#include "reports/ReportPages.h"

#include "reports/ReportModel.h"
#include "reports/texts.h"

#include <QFontMetricsF>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QSet>

#include <array>
#include <functional>

namespace ReportPages {

namespace {

using Line = std::array<QString, ReportColumns::Count>;

// Shares of the page's width, in column order: the least each column gets.
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
    }
    ~Pages() { pageNumber(); }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;

    // Every column but the description at least as wide as its widest text, so no amount,
    // date or number is ever cut short; the description takes the rest of the width.
    void fitColumns(const QList<Line>& body, const QList<Line>& bold)
    {
        std::array<double, ReportColumns::Count> widths{};
        const auto widen = [&](const QList<Line>& lines, const QFont& font) {
            const QFontMetricsF metrics(font, &m_device);
            for (int c = 0; c < ReportColumns::Count; ++c) {
                if (c == ReportColumns::Title)
                    continue;
                // Amounts and dates repeat: each text is measured once.
                QSet<QString> seen;
                for (const Line& line : lines)
                    if (!seen.contains(line[c])) {
                        seen.insert(line[c]);
                        widths[c] = std::max(widths[c], metrics.horizontalAdvance(line[c]));
                    }
            }
        };
        widen(body, m_body);
        widen(bold, m_bold);
        double others = 0;
        for (int c = 0; c < ReportColumns::Count; ++c) {
            if (c == ReportColumns::Title)
                continue;
            widths[c] = std::max(widths[c] + 3 * m_pad, kShares[c] * m_width);
            others += widths[c];
        }
        // Too much for one page: the columns keep their proportions and the texts are cut.
        const double room = m_width * (1 - kShares[ReportColumns::Title] / 2);
        if (others > room) {
            for (double& w : widths)
                w *= room / others;
            others = room;
        }
        widths[ReportColumns::Title] = m_width - others;
        double x = 0;
        for (int c = 0; c < ReportColumns::Count; ++c) {
            m_left[c] = x;
            x += widths[c];
        }
        m_left[ReportColumns::Count] = m_width;
    }

    void heading(const QString& title, const QString& period)
    {
        line(m_title, title, m_row * 2);
        line(m_body, period, m_row * 1.5);
    }

    void header(const Line& texts)
    {
        m_header = texts;
        cells(texts, m_bold, true);
    }

    // One line of the table; a new page (with the header again) when it does not fit.
    void row(const Line& texts, bool bold = false, int keepWith = 1)
    {
        if (m_y + m_row * keepWith > m_height - m_footer) {
            newPage();
            cells(m_header, m_bold, true);
        }
        cells(texts, bold ? m_bold : m_body, bold);
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

    void cells(const Line& texts, const QFont& font, bool shaded)
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
                               metrics.elidedText(texts[c], Qt::ElideRight, cell.width()));
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
    Line m_header;
    int m_page = 1;
};

Line lineOf(const std::function<QString(int)>& text)
{
    Line line;
    for (int c = 0; c < ReportColumns::Count; ++c)
        line[c] = text(c);
    return line;
}

} // namespace

void paint(QPagedPaintDevice& device, const SalesReport& report, const QList<SaleRow>& rows,
           const QImage& salesChart, const QImage& openChart, const QLocale& locale)
{
    // Every text once: measured to size the columns, then drawn.
    QList<Line> body;
    body.reserve(rows.size());
    for (const SaleRow& r : rows)
        body << lineOf([&](int c) { return ReportColumns::display(r, c, locale); });
    const QList<Line> bold{
        lineOf([](int c) { return ReportColumns::header(c); }),
        lineOf([&](int c) { return ReportColumns::totalText(report.totals, c, locale); }),
        lineOf([&](int c) { return ReportColumns::averageText(report.totals, c, locale); })};

    Pages pages(device, locale);
    pages.fitColumns(body, bold);
    const auto day = [&](QDate d) { return ReportColumns::dayText(d, locale); };
    pages.heading(ReportTexts::kHeading,
                  ReportTexts::kPeriodLine.arg(day(report.range.from), day(report.range.to)));
    pages.header(bold[0]);
    for (const Line& line : body)
        pages.row(line);
    // The totals and averages stay together.
    pages.row(bold[1], true, 2);
    pages.row(bold[2], true);
    pages.pictures(salesChart, openChart);
}

} // namespace ReportPages
