#include "platform/JetSql.h"

#include <QtTest>

class TestJetSql : public QObject
{
    Q_OBJECT
private slots:
    void translate_data();
    void translate();
    void refused_data();
    void refused();
    void like_data();
    void like();
};

void TestJetSql::translate_data()
{
    QTest::addColumn<QString>("jet");
    QTest::addColumn<QString>("expected");
    QTest::newRow("all view") << "Select * from Items Order by ID"
                              << "Select * from Items Order by ID";
    QTest::newRow("inactive view") << "Select * from ClosedItems Order by ID"
                                   << "Select * from ClosedItems Order by ID";
    QTest::newRow("active view tail")
        << "SELECT Items.ID From Items WHERE (((Items.Active)=Yes)) ORDER BY ID;"
        << "SELECT Items.ID From Items WHERE (((Items.Active)=1)) ORDER BY ID;";
    QTest::newRow("booleans") << "a=True or b=False or c=no or d=YES"
                              << "a=1 or b=0 or c=0 or d=1";
    QTest::newRow("words holding Yes") << "YesNo = Notes"
                                       << "YesNo = Notes";
    QTest::newRow("quoted booleans stay") << "x = 'Yes' or y = \"No\""
                                          << "x = 'Yes' or y = 'No'";
    QTest::newRow("double quotes") << "[ShortDescription] LIKE \"*O'Brien*\""
                                   << "\"ShortDescription\" LIKE '*O''Brien*'";
    QTest::newRow("doubled double quote") << "a = \"say \"\"hi\"\"\""
                                          << "a = 'say \"hi\"'";
    QTest::newRow("doubled single quote") << "BuyerEmail = 'o''neil@x.com'"
                                          << "BuyerEmail = 'o''neil@x.com'";
    QTest::newRow("bracketed Yes") << "[Yes] = Yes"
                                   << "\"Yes\" = 1";
    QTest::newRow("date") << "DateAuctionEnds < #6/8/1999#"
                          << "DateAuctionEnds < '1999-06-08 00:00:00'";
    QTest::newRow("date and time") << "d = #6/8/1999 10:00:00 AM#"
                                   << "d = '1999-06-08 10:00:00'";
    QTest::newRow("hash in string") << "EbayID LIKE '12#'"
                                    << "EbayID LIKE '12#'";
    QTest::newRow("by eBay number") << "EbayID = '123456'"
                                    << "EbayID = '123456'";
    QTest::newRow("by key") << "ID = 42"
                            << "ID = 42";
    QTest::newRow("text search")
        << "EbayID LIKE '1*' And (([ShortDescription] LIKE \"*Beanie*\") OR ([Description] LIKE "
           "\"*Beanie*\")) And BuyerEmail LIKE '*aol.com' And BuyerName LIKE 'Bob' "
        << "EbayID LIKE '1*' And ((\"ShortDescription\" LIKE '*Beanie*') OR (\"Description\" LIKE "
           "'*Beanie*')) And BuyerEmail LIKE '*aol.com' And BuyerName LIKE 'Bob' ";
}

void TestJetSql::translate()
{
    QFETCH(QString, jet);
    const JetTranslation t = translateJet(jet);
    QVERIFY2(t.ok(), qPrintable(t.error));
    QTEST(t.sql, "expected");
}

void TestJetSql::refused_data()
{
    QTest::addColumn<QString>("jet");
    QTest::newRow("stray quote in title") << "ShortDescription LIKE 'Tom's hat'";
    QTest::newRow("open single quote") << "EbayID = '123";
    QTest::newRow("open double quote") << "[Description] LIKE \"*x*";
    QTest::newRow("open bracket") << "[ShortDescription LIKE 'x'";
    QTest::newRow("not a date") << "d = #tomorrow#";
    QTest::newRow("lone hash") << "d = #6/8/1999";
}

void TestJetSql::refused()
{
    QFETCH(QString, jet);
    const JetTranslation t = translateJet(jet);
    QVERIFY(!t.ok());
    QVERIFY(t.sql.isEmpty());
}

void TestJetSql::like_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("matches");
    struct Case
    {
        const char* pattern;
        const char* value;
        bool matches;
    };
    const Case cases[] = {
        {"bob@aol.com", "bob@aol.com", true},
        {"bob@aol.com", "bob@aol.com.au", false},
        {"BEANIE", "beanie", true},
        {"ÄPFEL", "äpfel", true},
        {"*Beanie*", "Rare beanie baby", true},
        {"*Beanie*", "Beanie", true},
        {"*Beanie*", "Bean", false},
        {"*aol.com", "Sue@AOL.com", true},
        {"*aol.com", "sue@aol.com.x", false},
        {"*ab*ab", "xabyabab", true},
        {"a*b*c", "a-b-", false},
        {"**", "", true},
        {"b?g", "bag", true},
        {"b?g", "bg", false},
        {"12#", "123", true},
        {"12#", "12a", false},
        {"[a-c]at", "Bat", true},
        {"[a-c]at", "rat", false},
        {"[xyz]1", "y1", true},
        {"[!x]1", "y1", true},
        {"[!x]1", "X1", false},
        {"a[*]", "a*", true},
        {"a[*]", "ab", false},
        {"a[b", "a[b", true},
        {"", "", true},
        {"", "x", false},
    };
    for (const Case& c : cases)
        QTest::newRow(qPrintable(QStringLiteral("%1 ~ %2").arg(QString::fromUtf8(c.pattern),
                                                               QString::fromUtf8(c.value))))
            << QString::fromUtf8(c.pattern) << QString::fromUtf8(c.value) << c.matches;
}

void TestJetSql::like()
{
    QFETCH(QString, pattern);
    QFETCH(QString, value);
    QTEST(jetLike(pattern, value), "matches");
}

QTEST_GUILESS_MAIN(TestJetSql)
#include "tst_jetsql.moc"
