#include "reports/ReportCharts.h"

#include "reports/texts.h"

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QGraphicsScene>
#include <QPainter>
#include <QValueAxis>

#include <algorithm>
#include <cmath>

namespace ReportCharts {

namespace {

QStringList bucketNames(const SalesReport& report, const QLocale& locale)
{
    QStringList names;
    for (const ReportBucket& b : report.buckets)
        names << (report.byYear ? QString::number(b.start.year())
                                : locale.toString(b.start, QStringLiteral("MMM yy")));
    return names;
}

double amount(Money m)
{
    return double(m.units()) / double(Money::kScale);
}

// Enough decimals (up to cents) that the labels of a value axis ticking by `step` differ: a
// small period's sales of a few dollars tick by 0.5 or 0.2, which whole numbers would print as
// "0, 0, 1, 1".
int labelDecimals(double step)
{
    int decimals = 0;
    for (double scaled = step; decimals < 2; scaled *= 10, ++decimals)
        if (std::abs(scaled - std::round(scaled)) < 1e-6)
            break;
    return decimals;
}

struct Bars
{
    QString name;
    QList<qreal> values;
};

std::unique_ptr<QChart> barChart(const QString& title, const QList<Bars>& bars,
                                 const SalesReport& report, const QLocale& locale,
                                 const QString& valueTitle, bool whole)
{
    auto chart = std::make_unique<QChart>();
    chart->setTitle(title);
    chart->setAnimationOptions(QChart::NoAnimation);
    chart->legend()->setAlignment(Qt::AlignBottom);
    auto* series = new QBarSeries(chart.get());
    double low = 0, high = 0;
    for (const Bars& b : bars) {
        auto* set = new QBarSet(b.name, series);
        set->append(b.values);
        series->append(set);
        for (qreal v : b.values) {
            low = std::min(low, v);
            high = std::max(high, v);
        }
    }
    chart->addSeries(series);

    auto* categories = new QBarCategoryAxis(chart.get());
    categories->append(bucketNames(report, locale));
    // More than a few months side by side only fit upright.
    if (report.buckets.size() > 6)
        categories->setLabelsAngle(-90);
    chart->addAxis(categories, Qt::AlignBottom);
    series->attachAxis(categories);

    auto* values = new QValueAxis(chart.get());
    if (whole) {
        // Counts: five ticks on whole numbers.
        values->setRange(0, std::max(4.0, std::ceil(high / 4) * 4));
        values->setTickCount(5);
    } else {
        values->setRange(low, high > low ? high : low + 1);
        values->applyNiceNumbers();
    }
    const double step = (values->max() - values->min()) / std::max(1, values->tickCount() - 1);
    values->setLabelFormat(QStringLiteral("%.%1f").arg(labelDecimals(step)));
    values->setTitleText(valueTitle);
    chart->addAxis(values, Qt::AlignLeft);
    series->attachAxis(values);
    return chart;
}

} // namespace

std::unique_ptr<QChart> salesChart(const SalesReport& report, const QLocale& locale)
{
    Bars sales{ReportTexts::kSales, {}}, net{ReportTexts::kNet, {}};
    for (const ReportBucket& b : report.buckets) {
        sales.values << amount(b.sales);
        net.values << amount(b.net);
    }
    return barChart(ReportTexts::kSalesChart, {sales, net}, report, locale,
                    locale.currencySymbol(QLocale::CurrencySymbol), false);
}

std::unique_ptr<QChart> openChart(const SalesReport& report, const QLocale& locale)
{
    Bars unsold{ReportTexts::kUnsold, {}}, unpaid{ReportTexts::kUnpaid, {}};
    for (const ReportBucket& b : report.buckets) {
        unsold.values << b.unsold;
        unpaid.values << b.unpaid;
    }
    return barChart(ReportTexts::kOpenChart, {unsold, unpaid}, report, locale, QString(), true);
}

QImage picture(std::unique_ptr<QChart> chart, QSize size)
{
    QImage image(size * 2, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(2);
    image.fill(Qt::white);
    QGraphicsScene scene;
    QChart* drawn = chart.release();
    scene.addItem(drawn); // the scene owns it from here
    drawn->resize(size);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    scene.render(&painter, QRectF(QPointF(0, 0), size), QRectF(QPointF(0, 0), size));
    return image;
}

} // namespace ReportCharts
