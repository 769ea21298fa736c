#include "platform/JetSql.h"

#include <QtTest>

class TestJetSql : public QObject
{
    Q_OBJECT
private slots:
    void translate_data()
    {
        QTest::addColumn<QString>("jet");
        QTest::addColumn<QString>("expected"); // null: refused
        const auto row = [](const char* name, const char* jet, const char* sql) {
            QTest::newRow(name) << QString::fromUtf8(jet) << QString::fromUtf8(sql);
        };
        row("booleans", "a=True or b=False or c=no or d=YES", "a=1 or b=0 or c=0 or d=1");
        row("words holding Yes", "YesNo = Notes", "YesNo = Notes");
        row("quoted booleans stay", "x = 'Yes' or y = \"No\"", "x = 'Yes' or y = 'No'");
        row("bracketed Yes", "[Yes] = Yes", "\"Yes\" = 1");
        row("double quotes", "[Title] LIKE \"*O'Brien*\"", "\"Title\" LIKE '*O''Brien*'");
        row("doubled double quote", "a = \"say \"\"hi\"\"\"", "a = 'say \"hi\"'");
        row("doubled single quote", "e = 'o''neil@x.com'", "e = 'o''neil@x.com'");
        row("midnight date", "d < #6/8/1999#", "d < '1999-06-08 00:00:00'");
        row("date and time", "d = #6/8/1999 10:00:00 AM#", "d = '1999-06-08 10:00:00'");
        row("hash in string", "EbayID LIKE '12#'", "EbayID LIKE '12#'");
        row("stray quote in title", "ShortDescription LIKE 'Tom's hat'", nullptr);
        row("open double quote", "[Description] LIKE \"*x*", nullptr);
        row("open bracket", "[ShortDescription LIKE 'x'", nullptr);
        row("not a date", "d = #tomorrow#", nullptr);
        row("lone hash", "d = #6/8/1999", nullptr);
    }
    void translate()
    {
        QFETCH(QString, jet);
        QFETCH(QString, expected);
        const JetTranslation t = translateJet(jet);
        QVERIFY2(t.ok() != expected.isNull(), qPrintable(t.error));
        QCOMPARE(t.sql, expected);
    }

    void criteria_data()
    {
        QTest::addColumn<QString>("jet");
        QTest::addColumn<QString>("sql"); // "!" refused after reading, "?" unreadable
        QTest::addColumn<QVariantList>("values");
        const auto row = [](const char* name, const char* jet, const char* sql,
                            QVariantList values = {}) {
            QTest::newRow(name) << QString::fromUtf8(jet) << QString::fromUtf8(sql) << values;
        };
        row("text search",
            "EbayID LIKE '12*' And (([ShortDescription] LIKE \"*Tom's*\") OR ([Description] "
            "LIKE \"*Tom's*\")) ",
            "\"EbayID\" LIKE ? AND ((\"ShortDescription\" LIKE ?) OR (\"Description\" LIKE ?))",
            {"12*", "*Tom's*", "*Tom's*"});
        row("quote typed into a box", "EbayID LIKE '' OR '1'='1' ", "\"EbayID\" LIKE ? OR ? = ?",
            {"", "1", "1"});
        row("key and Yes", "Items.ID = 12 and Active=Yes", "\"ID\" = ? AND \"Active\" = ?",
            {12, 1});
        row("letter case of names", "shortdescription like 'x'", "\"ShortDescription\" LIKE ?",
            {"x"});
        row("dates between", "DateAuctionEnds Between #6/1/1999# AND #6/8/1999 10:00:00 PM#",
            "\"DateAuctionEnds\" BETWEEN ? AND ?", {"1999-06-01 00:00:00", "1999-06-08 22:00:00"});
        row("in, not like, is not null",
            "NOT (ID IN (1, 2, -3) OR BuyerEmail NOT LIKE '*aol.com') AND BuyerName IS NOT NULL",
            "NOT (\"ID\" IN (?, ?, ?) OR \"BuyerEmail\" NOT LIKE ?) AND \"BuyerName\" IS NOT NULL",
            {1, 2, -3, "*aol.com"});
        row("union", "ID = 1 UNION SELECT name FROM sqlite_master", "!");
        row("sub-query", "ID IN (SELECT ID FROM Items)", "!");
        row("second statement", "ID = 1; DELETE FROM Items", "!");
        row("comment", "ID = 1 -- and the rest", "!");
        row("block comment", "ID = 1 /* x */", "!");
        row("other table", "sqlite_master.name = 'Items'", "!");
        row("function call", "length(Description) > 5", "!");
        row("unknown column", "Colour = 'red'", "!");
        row("stray quote in title", "ShortDescription LIKE 'Tom's hat'", "?");
        row("open bracket", "[ShortDescription LIKE 'x'", "?");
        row("not a date", "DateAuctionEnds = #tomorrow#", "?");
    }
    void criteria()
    {
        QFETCH(QString, jet);
        QFETCH(QString, sql);
        const QStringList columns{"ID",         "EbayID",    "ShortDescription", "Description",
                                  "BuyerEmail", "BuyerName", "DateAuctionEnds",  "Active"};
        const JetCriteria c = parseJetCriteria(jet, columns);
        if (sql == u"!" || sql == u"?") {
            QVERIFY(!c.ok());
            QCOMPARE(c.unreadable, sql == u"?");
            return;
        }
        QVERIFY2(c.ok(), qPrintable(c.error));
        QCOMPARE(c.sql, sql);
        QTEST(c.values, "values");
    }
};

QTEST_GUILESS_MAIN(TestJetSql)
#include "tst_jetsql.moc"
