#include "../support/TestEnvironment.h"

#include "platform/TextRoutines.h"
#include "web/ItemPageReader.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

static QString page(const char* name)
{
    return ReadTextFile(QStringLiteral(TB_TEST_DATA_DIR "/web/") + QLatin1String(name));
}

static QString stamp(const QDateTime& value)
{
    return value.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

// Every stored value as "EbayID.Column", to see exactly what a reading changed.
static QVariantMap snapshot(const QSqlDatabase& db)
{
    QVariantMap values;
    QSqlQuery q(QStringLiteral("SELECT * FROM Items"), db);
    while (q.next())
        for (int c = 0; c < q.record().count(); ++c)
            values[q.value(QStringLiteral("EbayID")).toString() + u'.' + q.record().fieldName(c)] =
                q.value(c);
    return values;
}

static QVariantMap changes(const QVariantMap& before, const QVariantMap& after)
{
    QVariantMap changed;
    for (auto it = after.cbegin(); it != after.cend(); ++it)
        if (before.value(it.key()) != it.value())
            changed[it.key()] = it.value();
    return changed;
}

class TestItemPageReader : public QObject
{
    Q_OBJECT
private slots:
    void read_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<int>("bias");
        QTest::addColumn<int>("daylightDiff");
        QTest::addColumn<QStringList>("expected"); // number, title, category, price, bids
        QTest::addColumn<QStringList>("state");    // started, ends, high bid, flags
        QTest::addColumn<QString>("shownStart");   // the page as left for the user
        const QString running = page("item_running.htm");
        const QStringList runningValues{"100234", "Blue glass vase", "Pottery:Glass:Vases",
                                        "1212.5", "7"};
        QTest::newRow("running") << running << 300 << 0 << runningValues
                                 << QStringList{"1999-06-08 13:00:00", "1999-06-15 21:30:00",
                                                "joe_bidder", ""}
                                 << "100234 (Ends 06/15/99";
        QTest::newRow("daylight switch")
            << running << 300 << 1 << runningValues
            << QStringList{"1999-06-08 12:00:00", "1999-06-15 20:30:00", "joe_bidder", ""}
            << "100234 (Ends 06/15/99";
        QTest::newRow("half-hour bias")
            << running << -330 << 0 << runningValues
            << QStringList{"1999-06-08 23:30:00", "1999-06-16 08:00:00", "joe_bidder", ""}
            << "100234 (Ends 06/15/99";
        QString bareLf = running;
        QTest::newRow("bare line feeds")
            << bareLf.remove(u'\r') << 300 << 0 << runningValues
            << QStringList{"1999-06-08 13:00:00", "1999-06-15 21:30:00", "joe_bidder", ""}
            << "100234 (Ends 06/15/99";
        QTest::newRow("closed, no bids")
            << page("item_closed.htm") << 300 << 0
            << QStringList{"100235", "Oak chair", "Antiques:Furniture", "45", "0"}
            << QStringList{"1999-12-29 02:00:00", "2000-01-05 00:45:10", "No Bids", "closed"}
            << "100235 (Ended) - Oak";
        QTest::newRow("dutch") << page("item_dutch.htm") << 300 << 0
                               << QStringList{"100236", "Box of 10 postcards",
                                              "Collectibles:Postcards", "3.25", "4"}
                               << QStringList{"1999-06-25 15:00:00", "1999-07-02 15:00:00",
                                              "4 Dutch bids.", ""}
                               << "100236 (Ends";
        QTest::newRow("invalid") << page("item_invalid.htm") << 300 << 0
                                 << QStringList{"555", "", "", "0", "0"}
                                 << QStringList{"1899-12-30 12:00:00", "1899-12-30 12:00:00", "",
                                                "invalid"}
                                 << "<HTML>";
        QTest::newRow("no markers") << QStringLiteral("<html>Service busy</html>") << 300 << 0
                                    << QStringList{"", "", "", "0", "0"}
                                    << QStringList{"", "", "No Bids", ""} << "sy</html>";
        QTest::newRow("empty") << QString() << 300 << 0 << QStringList{"", "", "", "0", "0"}
                               << QStringList{"", "", "No Bids", ""} << "";
    }
    void read()
    {
        QFETCH(QString, page);
        QFETCH(int, bias);
        QFETCH(int, daylightDiff);
        QFETCH(QString, shownStart);
        const ItemPageValues v = ReadItemPage(page, QStringLiteral("555"), bias, daylightDiff);
        QTEST((QStringList{v.itemNumber, v.title, v.category, v.price.toPlainText(),
                           QString::number(v.bidCount)}),
              "expected");
        const QString flags = v.invalid  ? QStringLiteral("invalid")
                              : v.closed ? QStringLiteral("closed")
                                         : QString();
        QTEST((QStringList{stamp(v.started), stamp(v.ends), v.highBidText, flags}), "state");
        QCOMPARE(page.left(shownStart.size()), shownStart);
    }

    void store_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QVariantMap>("changed");
        const QString now = QStringLiteral("2024-06-25 12:00:00");
        const QString running = page("item_running.htm");
        const QString closed = page("item_closed.htm");
        const QVariantMap closedRow{{"100235.LastPrice", 450000},
                                    {"100235.LastChecked", now},
                                    {"100235.DateAuctionStarted", "1999-12-29 02:00:00"},
                                    {"100235.DateAuctionEnds", "2000-01-05 00:45:10"},
                                    {"100235.Category", "Antiques:Furniture"},
                                    {"100235.SalePrice", 450000}};
        QTest::newRow("running") << running
                                 << QVariantMap{
                                        {"100234.LastPrice", 12125000},
                                        {"100234.LastChecked", now},
                                        {"100234.DateAuctionStarted", "1999-06-08 13:00:00"},
                                        {"100234.DateAuctionEnds", "1999-06-15 21:30:00"},
                                        {"100234.Category", "Pottery:Glass:Vases"}};
        QTest::newRow("closed: sale price too") << closed << closedRow;
        QTest::newRow("invalid: the window's item")
            << page("item_invalid.htm")
            << QVariantMap{{"555.LastPrice", 0},
                           {"555.LastChecked", now},
                           {"555.DateAuctionStarted", "1899-12-30 12:00:00"},
                           {"555.DateAuctionEnds", "1899-12-30 12:00:00"},
                           {"555.Category", ""},
                           {"555.SalePrice", 0}};
        QTest::newRow("quote in category: sale price only")
            << QString(closed).replace("Antiques:Furniture", "Antiques:\"Fine\" Furniture")
            << QVariantMap{{"100235.SalePrice", 450000}};
        QTest::newRow("apostrophes in the number: nothing")
            << QString(closed).replace("100235", "1'OR'1'='1") << QVariantMap{};
        QTest::newRow("unreadable start: kept")
            << QString(running).replace("Jun-08-99", "Jun-31-99")
            << QVariantMap{{"100234.LastPrice", 12125000},
                           {"100234.LastChecked", now},
                           {"100234.DateAuctionEnds", "1999-06-15 21:30:00"},
                           {"100234.Category", "Pottery:Glass:Vases"}};
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
                                {"DateAuctionStarted", "2000-01-01 00:00:00"},
                                {"DateAuctionEnds", "2000-01-08 00:00:00"},
                                {"LastChecked", "2000-01-09 00:00:00"}};
        env.addItems(rows);
        QSqlDatabase db = env.context().itemDatabase;
        const QVariantMap before = snapshot(db);
        const ItemPageValues values = ReadItemPage(page, QStringLiteral("555"), 300, 0);
        QVERIFY(applyItemPage(db, values, QDateTime(QDate(2024, 6, 25), QTime(12, 0))));
        QTEST(changes(before, snapshot(db)), "changed");
    }
};

QTEST_GUILESS_MAIN(TestItemPageReader)
#include "tst_itempagereader.moc"
