#include "../support/TestEnvironment.h"
#include "ItemChanges.h"

#include "web/SellerReport.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class TestSellerReport : public QObject
{
    Q_OBJECT
private slots:
    void takeLine()
    {
        QString text = u"a\r\nb\r\n"_s;
        QCOMPARE(TakeLine(text), u"a\r\n"_s);
        QCOMPARE(text, u"b\r\n"_s);
        text = u"a\rb"_s; // no line feed: nothing taken
        QCOMPARE(TakeLine(text), QString());
        QCOMPARE(text, u"a\rb"_s);
    }

    void rowsRead_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("last");                // number|title
        const QString page = webPage("report_items.htm"); // read as a download: CR LF
        QTest::newRow("up to the blank number") << page << 11 << "100310|Last";
        QTest::newRow("table ends")
            << QString(page).replace("<tr><td><a href=\"/item/100303", "</table><tr><td>") << 2
            << "100302|Oak chair";
        QTest::newRow("no header") << webPage("report_signin.htm") << 0 << "";
        // Without CR LF after the header's "</tr>" the first row loses its "<".
        QTest::newRow("bare line feeds left as they are") << QString(page).remove(u'\r') << 0 << "";
        QString big = "<tr><th>High Bidder</th></tr>\r\n";
        for (int i = 1; i <= kMaxReportRows + 3; ++i)
            big += QString("<tr><td><a href=\"/i\">%1</a></td><td>06/01/99 10:00:00</td><td>"
                           "06/08/99 10:00:00</td><td>$1</td><td>T</td><td>No Bids</td></tr>\r\n")
                       .arg(i);
        QTest::newRow("more than the limit") << big << kMaxReportRows << "5000|T";
    }
    void rowsRead()
    {
        QFETCH(QString, page);
        const QList<ReportRow> rows = ReadSellerReport(page, 300, 0);
        QTEST(int(rows.size()), "count");
        QTEST(rows.isEmpty() ? QString() : rows.last().ItemNumber + u'|' + rows.last().Title,
              "last");
    }

    void apply_data()
    {
        QTest::addColumn<bool>("refused"); // a trigger refuses to update 100305
        QTest::addColumn<QVariantMap>("changed");
        QVariantMap changed; // 100302 still runs: no buyer, no sale price
        const auto add = [&](int id, const char* started, const char* ends, int units,
                             const QVariant& buyer) {
            const QString item = QString::number(id) + u'.';
            changed[item + "LastPrice"] = units;
            changed[item + "DateAuctionStarted"] = started;
            changed[item + "DateAuctionEnds"] = ends;
            changed[item + "LastChecked"] = "2024-06-25 12:00:00";
            if (buyer.isValid()) {
                changed[item + "BuyerEmail"] = buyer;
                changed[item + "SalePrice"] = units;
            }
        };
        const char *start = "1999-06-03 12:00:00", *end = "1999-06-10 15:00:00";
        add(100301, "1999-06-01 10:00:00", "1999-06-08 13:00:00", 10125000, "ann@example.com");
        add(100302, "2024-06-20 08:00:00", "2024-06-27 11:00:00", 200000, {});
        add(100303, "1999-06-02 11:00:00", "1999-06-10 02:30:00", 50000, "No Bids");
        add(100304, start, end, 72500, "o'neil@example.com");
        add(100305, start, end, 80000, "b'c@example.com"); // from a'b'c@
        add(100306, start, end, 90000, "x\"; DELETE FROM Items; --");
        add(100307, start, end, 100000, "new@example.com");
        add(100308, start, end, 110000, "");
        add(100310, start, end, 150000, "No Bids");
        QTest::newRow("running and ended") << false << changed;
        changed.removeIf([](auto it) { return it.key() >= "100305"; });
        QTest::newRow("failure part way keeps the rows before") << true << changed;
    }
    // Only the end moves to the local clock. Unknown items, the number 1'OR'1'='1, the undated
    // row and rows after the blank number change nothing.
    void apply()
    {
        QFETCH(bool, refused);
        TestEnvironment env;
        QList<QVariantMap> items; // 100301 to 100311 and one without an eBay number
        for (int id = 100301; id <= 100312; ++id)
            items << QVariantMap{{"EbayID", id == 100312 ? QVariant() : QString::number(id)},
                                 {"LastPrice", 10000},
                                 {"SalePrice", 20000},
                                 {"BuyerEmail", "earlier@example.com"},
                                 {"LastChecked", "2000-01-09 00:00:00"}};
        env.addItems(items);
        const QSqlDatabase db = env.context().itemDatabase;
        if (refused)
            QSqlQuery(u"CREATE TRIGGER refuse BEFORE UPDATE ON Items WHEN OLD.EbayID = '100305' "
                      u"BEGIN SELECT RAISE(ABORT, 'no'); END"_s,
                      db);
        const QVariantMap before = itemsSnapshot(db);
        const ApplyResult result =
            ApplySellerReport(db, ReadSellerReport(webPage("report_items.htm"), 300, 0),
                              QDateTime(QDate(2024, 6, 25), QTime(12, 0)));
        QVERIFY2(result.ok != refused && result.error.isEmpty() != refused,
                 qPrintable(result.error));
        if (!refused)
            QCOMPARE(result.statements, 10);
        QTEST(itemsChanged(before, db), "changed");
    }

    // The whole address is checked by the seller report command; a password goes as typed.
    void address()
    {
        QCOMPARE(sellerReportAddress(u"/r?userid="_s, "me@example.com", "1", "a&b#c d%+=")
                     .section("&pass=", 1),
                 "a%26b%23c%20d%25%2B%3D");
    }
};

QTEST_GUILESS_MAIN(TestSellerReport)
#include "tst_sellerreport.moc"
