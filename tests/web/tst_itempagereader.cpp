#include "../support/TestEnvironment.h"
#include "ItemChanges.h"

#include "web/ItemPageReader.h"

#include <QtTest>

class TestItemPageReader : public QObject
{
    Q_OBJECT
private slots:
    void read_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<int>("bias");
        QTest::addColumn<int>("daylightDiff");
        // number|title|category|price|bids|started|ends|high bid|state|start of the shown page
        QTest::addColumn<QString>("expected");
        const QString running = webPage("item_running.htm");
        const QString vase = "100234|Blue glass vase|Pottery:Glass:Vases|1212.5|7|";
        const QString shown = "|joe_bidder||100234 (Ends 06/15/99";
        QTest::newRow("running") << running << 300 << 0
                                 << vase + "1999-06-08 13:00:00|1999-06-15 21:30:00" + shown;
        QTest::newRow("daylight switch")
            << running << 300 << 1 << vase + "1999-06-08 12:00:00|1999-06-15 20:30:00" + shown;
        QTest::newRow("half-hour bias")
            << running << -330 << 0 << vase + "1999-06-08 23:30:00|1999-06-16 08:00:00" + shown;
        QTest::newRow("bare line feeds")
            << QString(running).remove(u'\r') << 300 << 0
            << vase + "1999-06-08 13:00:00|1999-06-15 21:30:00" + shown;
        QTest::newRow("closed, no bids")
            << webPage("item_closed.htm") << 300 << 0
            << "100235|Oak chair|Antiques:Furniture|45|0|1999-12-29 02:00:00|2000-01-05 00:45:10|"
               "No Bids|closed|100235 (Ended) - Oak";
        QTest::newRow("dutch")
            << webPage("item_dutch.htm") << 300 << 0
            << "100236|Box of 10 postcards|Collectibles:Postcards|3.25|4|1999-06-25 15:00:00|"
               "1999-07-02 15:00:00|4 Dutch bids.||100236 (Ends";
        QTest::newRow("invalid: page kept whole")
            << webPage("item_invalid.htm") << 300 << 0
            << "555|||0|0|1899-12-30 12:00:00|1899-12-30 12:00:00||invalid|<HTML>\r\n<HEAD>";
        // Missing markers cut from near the start; nothing is read and nothing breaks.
        QTest::newRow("no markers") << QStringLiteral("<html>Service busy</html>") << 300 << 0
                                    << "|||0|0|||No Bids||sy</html>";
        QTest::newRow("empty") << QString() << 300 << 0 << "|||0|0|||No Bids||";
    }
    void read()
    {
        QFETCH(QString, page);
        QFETCH(int, bias);
        QFETCH(int, daylightDiff);
        const ItemPageValues v = ReadItemPage(page, QStringLiteral("555"), bias, daylightDiff);
        const QString state = v.invalid ? "invalid" : v.closed ? "closed" : "";
        QFETCH(QString, expected);
        const QString shownStart = expected.section(u'|', 9);
        QCOMPARE(QStringList({v.itemNumber, v.title, v.category, v.price.toPlainText(),
                              QString::number(v.bidCount), stamp(v.started), stamp(v.ends),
                              v.highBidText, state, page.left(shownStart.size())})
                     .join(u'|'),
                 expected);
    }

    void store_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QVariantMap>("changed");
        const QString now = "2024-06-25 12:00:00";
        const QString running = webPage("item_running.htm");
        const QString closed = webPage("item_closed.htm");
        const QVariantMap vase{{"100234.LastPrice", 12125000},
                               {"100234.LastChecked", now},
                               {"100234.DateAuctionStarted", "1999-06-08 13:00:00"},
                               {"100234.DateAuctionEnds", "1999-06-15 21:30:00"},
                               {"100234.Category", "Pottery:Glass:Vases"}};
        QTest::newRow("running") << running << vase;
        QVariantMap undated = vase;
        undated.remove("100234.DateAuctionStarted");
        QTest::newRow("unreadable start kept")
            << QString(running).replace("Jun-08-99", "Jun-31-99") << undated;
        QTest::newRow("closed: sale price too")
            << closed
            << QVariantMap{{"100235.LastPrice", 450000},
                           {"100235.LastChecked", now},
                           {"100235.DateAuctionStarted", "1999-12-29 02:00:00"},
                           {"100235.DateAuctionEnds", "2000-01-05 00:45:10"},
                           {"100235.Category", "Antiques:Furniture"},
                           {"100235.SalePrice", 450000}};
        QTest::newRow("quote in category: sale price only")
            << QString(closed).replace("Antiques:", "Antiques:\"Fine\" ")
            << QVariantMap{{"100235.SalePrice", 450000}};
        QTest::newRow("apostrophes in the number: nothing")
            << QString(closed).replace("100235", "1'OR'1'='1") << QVariantMap{};
        QTest::newRow("invalid: the window's item")
            << webPage("item_invalid.htm")
            << QVariantMap{{"555.LastPrice", 0},
                           {"555.LastChecked", now},
                           {"555.DateAuctionStarted", "1899-12-30 12:00:00"},
                           {"555.DateAuctionEnds", "1899-12-30 12:00:00"},
                           {"555.Category", ""},
                           {"555.SalePrice", 0}};
    }
    void store()
    {
        QFETCH(QString, page);
        TestEnvironment env;
        QList<QVariantMap> rows;
        for (const char* id : {"100234", "100235", "555", "9"})
            rows << QVariantMap{{"EbayID", id},
                                {"LastPrice", 10000},
                                {"SalePrice", 20000},
                                {"Category", "Old"},
                                {"LastChecked", "2000-01-09 00:00:00"},
                                {"DateAuctionStarted", "2000-01-01 00:00:00"},
                                {"DateAuctionEnds", "2000-01-08 00:00:00"}};
        env.addItems(rows);
        const QSqlDatabase db = env.context().itemDatabase;
        const QVariantMap before = itemsSnapshot(db);
        const ItemPageValues values = ReadItemPage(page, QStringLiteral("555"), 300, 0);
        QVERIFY(applyItemPage(db, values, QDateTime(QDate(2024, 6, 25), QTime(12, 0))));
        QTEST(itemsChanged(before, db), "changed");
    }
};

QTEST_GUILESS_MAIN(TestItemPageReader)
#include "tst_itempagereader.moc"
