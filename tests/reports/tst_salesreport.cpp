// The report over a hand-made database: its periods, its figures against sums worked out by
// hand, its columns' texts and its CSV form.
#include "../support/TestEnvironment.h"
#include "db/ItemCsv.h"
#include "reports/ReportCsv.h"
#include "reports/ReportModel.h"
#include "reports/SalesReport.h"

#include <QtTest>

#include <ctime>

using namespace Qt::StringLiterals;

namespace {

const QDateTime kNow(QDate(2024, 6, 15), QTime(12, 0));

// A stored item from "EbayID|ends|price|cost|paid|shipped|active": money in ten-thousandths (or
// text kept as typed, or NULL when empty), dates as text; no paid or shipped date when empty.
QVariantMap item(const char* line)
{
    const QStringList f = QString::fromUtf8(line).split(u'|');
    const auto money = [](const QString& text) {
        bool number = false;
        const qint64 units = text.toLongLong(&number);
        return text.isEmpty() ? QVariant() : number ? QVariant(units) : QVariant(text);
    };
    // clang-format off
    QVariantMap row{{u"EbayID"_s, f[0]}, {u"ShortDescription"_s, QString(u"Item "_s + f[0])},
                    {u"DateAuctionEnds"_s, f[1].isEmpty() ? QString() : f[1]}, {u"SalePrice"_s, money(f[2])},
                    {u"Cost"_s, money(f[3])}, {u"ShippingCost"_s, qint64(40000)}, {u"InsuranceCost"_s, qint64(12500)},
                    {u"Active"_s, f[6].toInt()}};
    // clang-format on
    if (!f[4].isEmpty())
        row.insert(u"DatePaymentRecd"_s, f[4]);
    if (!f[5].isEmpty())
        row.insert(u"DateItemShipped"_s, f[5]);
    return row;
}

// A period asked for on a day, and the days it covers.
// The days asked for; the item numbers sold in them; sale, cost, shipping, net, average sale and
// net, unsold, unpaid.
// A zone ("": the test's own); an end date, or the foot's sum of days and items dated; the text.
// clang-format off
struct Period { ReportPeriod period; QDate today; ReportRange range; };
struct Figures { QDate from, to; QStringList sold; QList<qint64> figures; };
struct Cell { QByteArray zone; QDate ended; QList<qint64> daysAndDated; int column; QString text; };
// clang-format on

} // namespace

class TestSalesReport : public QObject
{
    Q_OBJECT
    TestEnvironment m_env;

private slots:
    void initTestCase()
    {
        m_env.addItems({
            // The first moment of the year, and the last one of the year before.
            item("1|2024-01-01 00:00:00|100050|33333|2024-01-03 09:00:00|2024-01-08 00:00:00|0"),
            item("2|2023-12-31 23:59:59|200000|50000|||0"),
            // Ended today before "now", and today after it (still running).
            item("3|2024-06-15 11:00:00|99999||||1"),
            item("4|2024-06-15 13:00:00|500000||||0"),
            // Cost kept as typed counts as zero; a 1/1/1900 payment date is no date.
            item("5|2024-05-31 23:00:00|77700|n/a|1900-01-01 00:00:00||1"),
            // Unsold: no price (active), zero price (closed), a price kept as typed (active).
            item("6|2024-03-10 10:00:00|||||1"),
            item("7|2024-03-11 10:00:00|0||||0"),
            item("8|2024-03-12 10:00:00|twelve||||1"),
            // No end date: placeholder, blank, text.
            item("9|1900-01-01 00:00:00|10000||||0"),
            item("10||10000||||0"),
            item("11|next week|10000||||0"),
            // Averages rounded half away from zero: sale 1.00006.. -> 1.0001, net -0.00003.. -> 0.
            item("12|2020-02-01 10:00:00|10001|10002|||0"),
            item("13|2020-02-02 10:00:00|10001|10000|||0"),
            item("14|2020-02-03 10:00:00|10000|10001|||0"),
            // Sold and unpaid but closed: not open.
            item("15|2024-04-01 10:00:00|30000||||0"),
            // Stored with a "T": ended on the morning of a later day, and still running at noon.
            item("16|2024-07-04T09:00:00|50000|10000|||0"),
            item("17|2024-07-04T15:00:00|60000||||1"),
        });
    }

    void periods_data()
    {
        QTest::addColumn<Period>("row");
        const QDate d(2024, 3, 15);
        // clang-format off
        QTest::newRow("this month") << Period{ReportPeriod::ThisMonth, d, {QDate(2024, 3, 1), d}};
        QTest::newRow("last month, leap February") << Period{ReportPeriod::LastMonth, d, {QDate(2024, 2, 1), QDate(2024, 2, 29)}};
        QTest::newRow("last month in January") << Period{ReportPeriod::LastMonth, QDate(2024, 1, 5), {QDate(2023, 12, 1), QDate(2023, 12, 31)}};
        QTest::newRow("this year") << Period{ReportPeriod::ThisYear, d, {QDate(2024, 1, 1), d}};
        QTest::newRow("last year") << Period{ReportPeriod::LastYear, d, {QDate(2023, 1, 1), QDate(2023, 12, 31)}};
        QTest::newRow("all") << Period{ReportPeriod::All, d, {QDate(1900, 1, 2), d}};
        // clang-format on
    }
    void periods()
    {
        QFETCH(Period, row);
        QCOMPARE(ReportPeriods::range(row.period, row.today), row.range);
        // Dates given the wrong way round cover the days between them.
        QCOMPARE(
            ReportPeriods::range(ReportPeriod::Dates, row.today, {row.range.to, row.range.from}),
            row.range);
    }

    // The figures worked out by hand from the items above.
    void figures_data()
    {
        QTest::addColumn<Figures>("row");
        const QDate newYear(2024, 1, 1), today = kNow.date();
        // clang-format off
        QTest::newRow("this year") << Figures{newYear, today, {"1", "3", "5", "15"}, {307749, 33333, 160000, 274416, 76937, 68604, 2, 2}};
        QTest::newRow("last year") << Figures{QDate(2023, 1, 1), QDate(2023, 12, 31), {"2"}, {200000, 50000, 40000, 150000, 200000, 150000, 0, 0}};
        QTest::newRow("first day") << Figures{newYear, newYear, {"1"}, {100050, 33333, 40000, 66717, 100050, 66717, 0, 0}};
        QTest::newRow("rounding") << Figures{QDate(2020, 1, 1), QDate(2020, 12, 31), {"12", "13", "14"}, {30002, 30003, 120000, -1, 10001, 0, 0, 0}};
        QTest::newRow("all") << Figures{QDate(1900, 1, 2), today, {"1", "2", "3", "5", "12", "13", "14", "15"}, {537751, 113336, 320000, 424415, 67219, 53052, 2, 2}};
        QTest::newRow("empty") << Figures{QDate(2010, 1, 1), QDate(2010, 12, 31), {}, {0, 0, 0, 0, 0, 0, 0, 0}};
        QTest::newRow("today, read at noon") << Figures{QDate(2024, 7, 4), QDate(2024, 7, 4), {"16"}, {50000, 10000, 40000, 40000, 50000, 40000, 0, 0}};
        // clang-format on
    }
    void figures()
    {
        QFETCH(Figures, row);
        // A period after kNow is read at noon of its last day.
        const QDateTime now = row.to > kNow.date() ? QDateTime(row.to, QTime(12, 0)) : kNow;
        const SalesReport report =
            SalesReports::load(m_env.context().itemDatabase, {row.from, row.to}, now);
        QVERIFY2(report.error.isEmpty(), qPrintable(report.error));
        QStringList items;
        for (const SaleRow& r : report.rows)
            items << r.ebayId;
        std::sort(items.begin(), items.end(),
                  [](const QString& a, const QString& b) { return a.toInt() < b.toInt(); });
        QCOMPARE(items, row.sold);
        const ReportTotals& t = report.totals;
        QCOMPARE(t.count, row.sold.size());
        QCOMPARE((QList<qint64>{t.salePrice.units(), t.cost.units(), t.shipping.units(),
                                t.net.units(), t.average(t.salePrice).units(),
                                t.average(t.net).units(), report.unsold, report.unpaid}),
                 row.figures);

        // The chart buckets add up to the totals: sales, net, unsold, unpaid.
        QList<qint64> buckets{0, 0, 0, 0};
        for (const ReportBucket& b : report.buckets)
            buckets = {buckets[0] + b.sales.units(), buckets[1] + b.net.units(),
                       buckets[2] + b.unsold, buckets[3] + b.unpaid};
        QCOMPARE(buckets,
                 (QList<qint64>{t.salePrice.units(), t.net.units(), report.unsold, report.unpaid}));
    }

    void daysAndBlanks()
    {
        const SalesReport report =
            SalesReports::load(m_env.context().itemDatabase, {{2024, 1, 1}, {2024, 6, 15}}, kNow);
        QCOMPARE(report.rows.size(), 4);
        const SaleRow& first = report.rows.first(); // by end date
        QCOMPARE(first.ebayId, u"1"_s);
        QCOMPARE(first.daysToPaid, 2);
        QCOMPARE(first.daysToShipped, 7);
        // Days average over the items that have the date: item 5's 1/1/1900 is none.
        QCOMPARE(report.totals.averageDaysToPaid(), 2.0);
        // Money in the foot is in the locale's currency form, cents rounded half away from zero.
        QCOMPARE(ReportColumns::display(first, ReportColumns::SalePrice,
                                        QLocale(QLocale::English, QLocale::UnitedStates)),
                 u"$10.01"_s);
        QCOMPARE(ReportColumns::totalText(report.totals, ReportColumns::Title, QLocale()),
                 u"4 items sold"_s);
    }

    // Texts of the table and its foot: a day shown without a time where the clocks skip
    // midnight, day averages rounded half away from zero on the exact mean.
    void columnTexts_data()
    {
        QTest::addColumn<Cell>("row");
        // clang-format off
        QTest::newRow("end date where midnight is skipped") << Cell{"America/Sao_Paulo", QDate(2018, 11, 4), {}, ReportColumns::Ended, "11/4/2018"};
        QTest::newRow("average of 7 days over 20 items") << Cell{{}, {}, {7, 20}, ReportColumns::DaysToPaid, "0.4"};
        QTest::newRow("average of -7 days over 20 items") << Cell{{}, {}, {-7, 20}, ReportColumns::DaysToShipped, "-0.4"};
        // clang-format on
    }
    void columnTexts()
    {
        QFETCH(Cell, row);
        const QByteArray was = qgetenv("TZ");
        const auto restore = qScopeGuard([&] {
            qputenv("TZ", was);
            tzset();
        });
        if (!row.zone.isEmpty()) {
            qputenv("TZ", row.zone);
            tzset();
        }
        const QLocale us(QLocale::English, QLocale::UnitedStates);
        if (row.column == ReportColumns::Ended) {
            SaleRow sale;
            sale.ended = row.ended;
            QCOMPARE(ReportColumns::display(sale, row.column, us), row.text);
        } else {
            ReportTotals totals;
            totals.count = totals.paidCount = totals.shippedCount = row.daysAndDated.at(1);
            totals.daysToPaid = totals.daysToShipped = row.daysAndDated.at(0);
            QCOMPARE(ReportColumns::averageText(totals, row.column, us), row.text);
        }
    }

    void csvRoundTrip()
    {
        // clang-format off
        const SaleRow odd{0, u"123"_s, u"Teapot, \"Große\"\nsecond line"_s, QDate(2024, 2, 29), Money::fromUnits(123456789),
                          Money::fromUnits(-5), {}, {}, {}, 3};
        // clang-format on
        const QList<SaleRow> rows{odd, SaleRow{}};
        const QString path = m_env.path(u"report.csv"_s);
        QCOMPARE(ReportCsv::write(rows, path), QString());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const auto records = ItemCsv::parse(QString::fromUtf8(file.readAll()), u',');
        QCOMPARE(records.size(), 3);
        QCOMPARE(records.at(0).fields.size(), int(ReportColumns::Count));
        QCOMPARE(records.at(1).fields,
                 QStringList({u"123"_s, odd.title, u"2024-02-29"_s, u"12345.6789"_s, u"-0.0005"_s,
                              u"0"_s, u"0"_s, u"12345.6794"_s, QString(), u"3"_s}));
        // A file that cannot be written says why, and leaves nothing behind.
        const QString bad = m_env.path(u"missing/report.csv"_s);
        QVERIFY(!ReportCsv::write(rows, bad).isEmpty());
        QVERIFY(!QFile::exists(bad));
    }
};

QTEST_GUILESS_MAIN(TestSalesReport)
#include "tst_salesreport.moc"
