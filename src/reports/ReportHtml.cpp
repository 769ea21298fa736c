#include "reports/ReportHtml.h"

#include "platform/DateText.h"
#include "reports/ReportModel.h"
#include "reports/texts.h"

namespace ReportHtml {

namespace {

QString cell(const QString& tag, const QString& text, bool number)
{
    return u'<' + tag + (number ? QStringLiteral(" align=\"right\"") : QString()) + u'>' +
           text.toHtmlEscaped() + QStringLiteral("</") + tag + u'>';
}

QString line(const std::function<QString(int)>& text, const QString& tag = QStringLiteral("td"))
{
    QString out = QStringLiteral("<tr>");
    for (int c = 0; c < ReportColumns::Count; ++c)
        out += cell(tag, text(c), ReportColumns::isNumber(c));
    return out + QStringLiteral("</tr>\n");
}

} // namespace

QString html(const SalesReport& report, const QList<SaleRow>& rows, int chartWidth,
             const QLocale& locale)
{
    const auto day = [&](QDate d) { return DateText::toDisplay(d.startOfDay(), locale); };
    QString out = QStringLiteral("<html><body style=\"font-size:8pt\">");
    out += QStringLiteral("<h2>") + ReportTexts::kHeading.toHtmlEscaped() + QStringLiteral("</h2>");
    out +=
        QStringLiteral("<p>") +
        ReportTexts::kPeriodLine.arg(day(report.range.from), day(report.range.to)).toHtmlEscaped() +
        QStringLiteral("</p>");
    out += QStringLiteral("<table width=\"100%\" border=\"1\" cellspacing=\"0\" "
                          "cellpadding=\"2\" style=\"border-collapse:collapse\">\n<thead>");
    out += line([](int c) { return ReportColumns::header(c); }, QStringLiteral("th"));
    out += QStringLiteral("</thead>\n");
    for (const SaleRow& r : rows)
        out += line([&](int c) { return ReportColumns::display(r, c, locale); });
    out += line([&](int c) { return ReportColumns::totalText(report.totals, c, locale); },
                QStringLiteral("th"));
    out += line([&](int c) { return ReportColumns::averageText(report.totals, c, locale); },
                QStringLiteral("th"));
    out += QStringLiteral("</table>\n");
    const QString width = QString::number(chartWidth);
    for (const QString& chart : {kSalesChart, kOpenChart})
        out += QStringLiteral("<p><img src=\"") + chart + QStringLiteral("\" width=\"") + width +
               QStringLiteral("\"></p>");
    return out + QStringLiteral("</body></html>");
}

} // namespace ReportHtml
