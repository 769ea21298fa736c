#include "db/ItemColumns.h"
#include "platform/DateText.h"
#include "platform/Money.h"

#include <QVariant>
#include <QtTest>

class TestItemValues : public QObject
{
    Q_OBJECT
private slots:
    void money_data();
    void money();
    void columns_data();
    void columns();
};

void TestItemValues::money_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("units");
    QTest::addColumn<QString>("plain"); // empty: refused
    const auto row = [](const char* text, qint64 units, const char* plain) {
        QTest::newRow(*text ? text : "(empty)")
            << QString::fromUtf8(text) << units << QString::fromUtf8(plain);
    };
    row("12.5", 125000, "12.5");
    row("1", 10000, "1");
    row("0", 0, "0");
    row(".5", 5000, "0.5");
    row("5.", 50000, "5");
    row("3.1000", 31000, "3.1");
    row("1.23456", 12346, "1.2346");
    row("1.234549", 12345, "1.2345");
    row("0.99995", 10000, "1");
    row("-1.00005", -10001, "-1.0001");
    row(" 7 ", 70000, "7");
    row("922337203685477.5807", std::numeric_limits<qint64>::max(), "922337203685477.5807");
    for (const char* refused : {"922337203685477.5808", "99999999999999999999", "$5", "1,000",
                                "1.2.3", ".", "-", "1e3", "", "１２"})
        row(refused, 0, "");
}

void TestItemValues::money()
{
    QFETCH(QString, text);
    QFETCH(QString, plain);
    const std::optional<Money> m = Money::parse(text);
    QCOMPARE(m.has_value(), !plain.isEmpty());
    if (!m)
        return;
    QTEST(m->units(), "units");
    QCOMPARE(m->toPlainText(), plain);
    QCOMPARE(Money::parse(plain), m); // the shown text reads back to the same amount
}

void TestItemValues::columns_data()
{
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QVariant>("stored"); // invalid: NULL
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* name, const char* column, const char* typed,
                        const QVariant& stored, const char* shown) {
        QTest::newRow(name) << QString::fromLatin1(column) << QString::fromUtf8(typed) << stored
                            << QString::fromUtf8(shown);
    };
    const auto text = [](const char* t) { return QVariant(QString::fromUtf8(t)); };
    row("money", "Reserve", "12.5", qint64(125000), "12.5");
    row("money kept as typed", "MinBid", "$5", text("$5"), "$5");
    row("money blank", "Cost", " ", {}, "");
    row("money column case", "saleprice", "1", qint64(10000), "1");
    row("date-time", "DateAuctionEnds", "6/8/1999 10:00:00 AM", text("1999-06-08 10:00:00"),
        "6/8/1999 10:00:00 AM");
    row("afternoon", "DateAuctionEnds", "12/31/2001 11:59:58 PM", text("2001-12-31 23:59:58"),
        "12/31/2001 11:59:58 PM");
    row("padded 24 hours", "DateAuctionStarted", "06/01/1999 10:00", text("1999-06-01 10:00:00"),
        "6/1/1999 10:00:00 AM");
    row("reader form", "LastChecked", "06/08/1999 17:30:05", text("1999-06-08 17:30:05"),
        "6/8/1999 5:30:05 PM");
    row("ISO", "LastChecked", "1999-06-08 10:00:00", text("1999-06-08 10:00:00"),
        "6/8/1999 10:00:00 AM");
    row("no date placeholder", "DateBuyerContacted", "1/1/1900", text("1900-01-01 00:00:00"),
        "1/1/1900");
    row("two-digit year", "DatePaymentRecd", "6/8/99", text("1999-06-08 00:00:00"), "6/8/1999");
    row("two-digit year 20xx", "DateAuctionEnds", "1/2/05 3:04 PM", text("2005-01-02 15:04:00"),
        "1/2/2005 3:04:00 PM");
    row("date kept as typed", "DatePaymentClrd", "next week", text("next week"), "next week");
    row("no such day", "DateItemShipped", "2/30/2000", text("2/30/2000"), "2/30/2000");
    row("date blank", "DateItemShipped", "", {}, "");
    row("yes", "Active", "1", qint64(1), "1");
    row("no", "Active", "0", qint64(0), "0");
    row("no by word", "FeedbackComplete", "False", qint64(0), "0");
    row("yes by word", "FeedbackComplete", "True", qint64(1), "1");
    row("text", "BuyerEmail", "o'neil@x.com", text("o'neil@x.com"), "o'neil@x.com");
    row("text blank", "BuyerName", "", {}, "");
}

void TestItemValues::columns()
{
    QFETCH(QString, column);
    QFETCH(QString, typed);
    QFETCH(QVariant, stored);
    const ColumnKind kind = ItemColumns::kind(column);
    const QVariant v = ItemColumns::fromText(kind, typed);
    QCOMPARE(v.isNull(), !stored.isValid());
    if (stored.isValid()) {
        QCOMPARE(v.toString(), stored.toString());
        QCOMPARE(v.typeId() == QMetaType::QString, stored.typeId() == QMetaType::QString);
    }
    // Newer locale data puts a narrow no-break space before AM/PM; both read back.
    QString shown = ItemColumns::toText(kind, stored);
    QTEST(shown.replace(QChar(0x202F), u' '), "shown");
    QCOMPARE(ItemColumns::fromText(kind, shown), v);
}

QTEST_GUILESS_MAIN(TestItemValues)
#include "tst_itemvalues.moc"
