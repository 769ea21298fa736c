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
};

QTEST_GUILESS_MAIN(TestJetSql)
#include "tst_jetsql.moc"
