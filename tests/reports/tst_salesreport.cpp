#include "../support/TestEnvironment.h"
#include "db/ItemCsv.h"
#include "reports/ReportCsv.h"
#include "reports/ReportModel.h"
#include "reports/SalesReport.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

namespace {

const QDateTime kNow(QDate(2024, 6, 15), QTime(12, 0));

// A stored item: money in ten-thousandths (or text kept as typed, or NULL), dates as text.
QVariantMap item(const QString& ebay, const QString& ends, const QVariant& price,
                 const QVariant& cost = {}, const QString& paid = {}, const QString& shipped = {},
                 int active = 0)
{
    QVariantMap row{{QStringLiteral("EbayID"), ebay},
                    {QStringLiteral("ShortDescription"), QString(u"Item "_qs + ebay)},
                    {QStringLiteral("DateAuctionEnds"), ends},
                    {QStringLiteral("SalePrice"), price},
                    {QStringLiteral("Cost"), cost},
                    {QStringLiteral("ShippingCost"), qint64(40000)},
                    {QStringLiteral("InsuranceCost"), qint64(12500)},
                    {QStringLiteral("Active"), active}};
    if (!paid.isEmpty())
        row.insert(QStringLiteral("DatePaymentRecd"), paid);
    if (!shipped.isEmpty())
        row.insert(QStringLiteral("DateItemShipped"), shipped);
    return row;
}

// The figures asked of SQLite directly, with its own date functions rather than the report's
// text ranges.
struct Expected
{
    QList<qint64> ids;
    QList<qint64> figures; // sale, cost, shipping, net, average sale and net, unsold, unpaid
};

Expected expected(const QSqlDatabase& db, QDate from, QDate to)
{
    const QString inPeriod =
        QStringLiteral("date(DateAuctionEnds) BETWEEN :from AND :to AND DateAuctionEnds <= :now "
                       "AND date(DateAuctionEnds) <> '1900-01-01'");
    const QString sold = QStringLiteral("typeof(SalePrice) = 'integer' AND SalePrice > 0");
    const QString paid = QStringLiteral(
        "date(DatePaymentRecd) IS NOT NULL AND date(DatePaymentRecd) <> '1900-01-01'");
    const auto run = [&](const QString& sql) {
        QSqlQuery q(db);
        q.prepare(sql);
        q.bindValue(QStringLiteral(":from"), from.toString(Qt::ISODate));
        q.bindValue(QStringLiteral(":to"), to.toString(Qt::ISODate));
        q.bindValue(QStringLiteral(":now"), kNow.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
        if (!q.exec())
            qFatal("%s", qPrintable(q.lastError().text()));
        return q;
    };
    Expected e;
    QSqlQuery ids = run(QStringLiteral("SELECT ID FROM Items WHERE ") + sold + u" AND " + inPeriod +
                        u" ORDER BY ID");
    while (ids.next())
        e.ids << ids.value(0).toLongLong();
    const QString cost = QStringLiteral("CASE typeof(Cost) WHEN 'integer' THEN Cost ELSE 0 END");
    QSqlQuery sums =
        run(QStringLiteral("SELECT total(SalePrice), total(%1), total(ShippingCost), "
                           "total(SalePrice - %1), coalesce(round(avg(SalePrice)), 0), "
                           "coalesce(round(avg(SalePrice - %1)), 0) FROM Items WHERE ")
                .arg(cost) +
            sold + u" AND " + inPeriod);
    sums.next();
    for (int i = 0; i < 6; ++i)
        e.figures << qint64(sums.value(i).toDouble());
    QSqlQuery open = run(QStringLiteral("SELECT count(CASE WHEN NOT (%1) THEN 1 END), "
                                        "count(CASE WHEN (%1) AND NOT (%2) THEN 1 END) "
                                        "FROM Items WHERE Active <> 0 AND ")
                             .arg(sold, paid) +
                         inPeriod);
    open.next();
    e.figures << open.value(0).toLongLong() << open.value(1).toLongLong();
    return e;
}

} // namespace

class TestSalesReport : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void periods_data();
    void periods();
    void figures_data();
    void figures();
    void daysAndBlanks();
    void csvRoundTrip();

private:
    TestEnvironment m_env;
};

void TestSalesReport::initTestCase()
{
    const QVariant none;
    m_env.addItems({
        // The first moment of the year, and the last one of the year before.
        item(u"1"_qs, u"2024-01-01 00:00:00"_qs, qint64(100050), qint64(33333),
             u"2024-01-03 09:00:00"_qs, u"2024-01-08 00:00:00"_qs),
        item(u"2"_qs, u"2023-12-31 23:59:59"_qs, qint64(200000), qint64(50000)),
        // Ended today before "now", and today after it (still running).
        item(u"3"_qs, u"2024-06-15 11:00:00"_qs, qint64(99999), none, {}, {}, 1),
        item(u"4"_qs, u"2024-06-15 13:00:00"_qs, qint64(500000)),
        // Cost kept as typed counts as zero; a 1/1/1900 payment date is no date.
        item(u"5"_qs, u"2024-05-31 23:00:00"_qs, qint64(77700), u"n/a"_qs,
             u"1900-01-01 00:00:00"_qs, {}, 1),
        // Unsold: no price (active), zero price (closed), a price kept as typed (active).
        item(u"6"_qs, u"2024-03-10 10:00:00"_qs, none, none, {}, {}, 1),
        item(u"7"_qs, u"2024-03-11 10:00:00"_qs, qint64(0), none, {}, {}, 0),
        item(u"8"_qs, u"2024-03-12 10:00:00"_qs, u"twelve"_qs, none, {}, {}, 1),
        // No end date: placeholder, blank, text.
        item(u"9"_qs, u"1900-01-01 00:00:00"_qs, qint64(10000)),
        item(u"10"_qs, QString(), qint64(10000)),
        item(u"11"_qs, u"next week"_qs, qint64(10000)),
        // Averages rounded half away from zero: sale 1.00006.. -> 1.0001, net -0.00005 -> -0.0001.
        item(u"12"_qs, u"2020-02-01 10:00:00"_qs, qint64(10001), qint64(10002)),
        item(u"13"_qs, u"2020-02-02 10:00:00"_qs, qint64(10001), qint64(10000)),
        item(u"14"_qs, u"2020-02-03 10:00:00"_qs, qint64(10000), qint64(10001)),
        // Sold and unpaid but closed: not open.
        item(u"15"_qs, u"2024-04-01 10:00:00"_qs, qint64(30000), none, {}, {}, 0),
    });
}

void TestSalesReport::periods_data()
{
    QTest::addColumn<int>("period");
    QTest::addColumn<QDate>("today");
    QTest::addColumn<QDate>("from");
    QTest::addColumn<QDate>("to");
    const QDate d(2024, 3, 15);
    const auto row = [](const char* name, ReportPeriod p, QDate today, QDate from, QDate to) {
        QTest::newRow(name) << int(p) << today << from << to;
    };
    row("this month", ReportPeriod::ThisMonth, d, {2024, 3, 1}, d);
    row("last month, leap February", ReportPeriod::LastMonth, d, {2024, 2, 1}, {2024, 2, 29});
    row("last month in January", ReportPeriod::LastMonth, {2024, 1, 5}, {2023, 12, 1},
        {2023, 12, 31});
    row("this year", ReportPeriod::ThisYear, d, {2024, 1, 1}, d);
    row("last year", ReportPeriod::LastYear, d, {2023, 1, 1}, {2023, 12, 31});
    row("all", ReportPeriod::All, d, {1900, 1, 2}, d);
}

void TestSalesReport::periods()
{
    QFETCH(int, period);
    QFETCH(QDate, today);
    QFETCH(QDate, from);
    QFETCH(QDate, to);
    const ReportRange range = ReportPeriods::range(ReportPeriod(period), today);
    QCOMPARE(range.from, from);
    QCOMPARE(range.to, to);
    // Dates given the wrong way round cover the days between them.
    QCOMPARE(ReportPeriods::range(ReportPeriod::Dates, today, {to, from}), range);
}

void TestSalesReport::figures_data()
{
    QTest::addColumn<QDate>("from");
    QTest::addColumn<QDate>("to");
    QTest::addColumn<int>("sold");
    QTest::newRow("this year") << QDate(2024, 1, 1) << QDate(2024, 6, 15) << 4;
    QTest::newRow("last year") << QDate(2023, 1, 1) << QDate(2023, 12, 31) << 1;
    QTest::newRow("first day") << QDate(2024, 1, 1) << QDate(2024, 1, 1) << 1;
    QTest::newRow("rounding") << QDate(2020, 1, 1) << QDate(2020, 12, 31) << 3;
    QTest::newRow("all") << QDate(1900, 1, 2) << QDate(2024, 6, 15) << 8;
    QTest::newRow("empty") << QDate(2010, 1, 1) << QDate(2010, 12, 31) << 0;
}

void TestSalesReport::figures()
{
    QFETCH(QDate, from);
    QFETCH(QDate, to);
    QFETCH(int, sold);
    const QSqlDatabase db = m_env.context().itemDatabase;
    const SalesReport report = SalesReports::load(db, {from, to}, kNow);
    QVERIFY2(report.error.isEmpty(), qPrintable(report.error));
    const Expected e = expected(db, from, to);

    QList<qint64> ids;
    for (const SaleRow& r : report.rows)
        ids << r.id;
    std::sort(ids.begin(), ids.end());
    QCOMPARE(ids, e.ids);
    QCOMPARE(report.totals.count, sold);
    const ReportTotals& t = report.totals;
    QCOMPARE((QList<qint64>{t.salePrice.units(), t.cost.units(), t.shipping.units(), t.net.units(),
                            t.average(t.salePrice).units(), t.average(t.net).units(), report.unsold,
                            report.unpaid}),
             e.figures);

    // The chart buckets add up to the totals.
    Money sales, net;
    int unsold = 0, unpaid = 0;
    for (const ReportBucket& b : report.buckets) {
        sales = sales + b.sales;
        net = net + b.net;
        unsold += b.unsold;
        unpaid += b.unpaid;
    }
    QCOMPARE(sales, report.totals.salePrice);
    QCOMPARE(net, report.totals.net);
    QCOMPARE(unsold, report.unsold);
    QCOMPARE(unpaid, report.unpaid);
}

void TestSalesReport::daysAndBlanks()
{
    const SalesReport report =
        SalesReports::load(m_env.context().itemDatabase, {{2024, 1, 1}, {2024, 6, 15}}, kNow);
    QCOMPARE(report.rows.size(), 4);
    const SaleRow& first = report.rows.first(); // by end date
    QCOMPARE(first.ebayId, u"1"_qs);
    QCOMPARE(first.daysToPaid, 2);
    QCOMPARE(first.daysToShipped, 7);
    QCOMPARE(first.net(), Money::fromUnits(100050 - 33333));
    const SaleRow& blank = report.rows.at(2);
    QCOMPARE(blank.ebayId, u"5"_qs);
    QCOMPARE(blank.cost, Money());
    QCOMPARE(blank.daysToPaid, std::nullopt);
    // Days average over the items that have the date.
    QCOMPARE(report.totals.averageDaysToPaid(), 2.0);
    // Money in the foot is in the locale's currency form, cents rounded half away from zero.
    QCOMPARE(ReportColumns::display(first, ReportColumns::SalePrice,
                                    QLocale(QLocale::English, QLocale::UnitedStates)),
             u"$10.01"_qs);
    QCOMPARE(ReportColumns::totalText(report.totals, ReportColumns::Title, QLocale()),
             u"4 items sold"_qs);
}

void TestSalesReport::csvRoundTrip()
{
    SaleRow odd;
    odd.ebayId = u"123"_qs;
    odd.title = u"Teapot, \"Große\"\nsecond line"_qs;
    odd.ended = QDate(2024, 2, 29);
    odd.salePrice = Money::fromUnits(123456789);
    odd.cost = Money::fromUnits(-5);
    odd.daysToShipped = 3;
    const QList<SaleRow> rows{odd, SaleRow{}};
    const QString path = m_env.path(u"report.csv"_qs);
    QCOMPARE(ReportCsv::write(rows, path), QString());
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QList<ItemCsv::Record> records = ItemCsv::parse(QString::fromUtf8(file.readAll()), u',');
    QCOMPARE(records.size(), 3);
    QCOMPARE(records.at(0).fields.size(), int(ReportColumns::Count));
    QCOMPARE(records.at(1).fields,
             QStringList({u"123"_qs, odd.title, u"2024-02-29"_qs, u"12345.6789"_qs, u"-0.0005"_qs,
                          u"0"_qs, u"0"_qs, u"12345.6794"_qs, QString(), u"3"_qs}));
    // A file that cannot be written says why, and leaves nothing behind.
    const QString bad = m_env.path(u"missing/report.csv"_qs);
    QVERIFY(!ReportCsv::write(rows, bad).isEmpty());
    QVERIFY(!QFile::exists(bad));
}

QTEST_GUILESS_MAIN(TestSalesReport)
#include "tst_salesreport.moc"
