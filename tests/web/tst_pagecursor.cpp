#include "web/PageCursor.h"

#include <QtTest>

class TestPageCursor : public QObject
{
    Q_OBJECT
private slots:
    // A missing marker cuts as if found just before the text; a missing end marker yields
    // nothing, so the value being read keeps what it had.
    void cutting_data()
    {
        QTest::addColumn<QString>("marker");
        QTest::addColumn<QString>("rest");
        QTest::addColumn<QString>("taken"); // up to "<" after the cut; "(none)" when missing
        QTest::newRow("found") << "<b>$"
                               << "12.50</b> x"
                               << "12.50";
        QTest::newRow("first of two") << "b"
                                      << ">$12.50</b> x"
                                      << ">$12.50";
        QTest::newRow("missing, long") << "High bid"
                                       << "50</b> x"
                                       << "50";
        QTest::newRow("missing, one char") << "#"
                                           << "<b>$12.50</b> x"
                                           << "";
        QTest::newRow("missing, past end") << "a marker longer than the text"
                                           << ""
                                           << "(none)";
    }
    void cutting()
    {
        QFETCH(QString, marker);
        PageCursor cursor(QStringLiteral("<b>$12.50</b> x"));
        cursor.cutAfter(marker);
        QTEST(cursor.rest().toString(), "rest");
        QTEST(cursor.takeUpTo(u"<").value_or(QStringLiteral("(none)")), "taken");
    }

    void siteDates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected"); // "" = not a date
        const char* const june8 = "1999-06-08 10:00:00";
        QTest::newRow("month-day-yy") << "Jun-08-99 10:00:00" << june8;
        QTest::newRow("numbers") << "06/08/99 10:00:00" << june8;
        QTest::newRow("comma, long year") << "Jun 08, 1999 10:00:00" << june8;
        QTest::newRow("AM") << "6/8/1999 10:00:00 AM" << june8;
        QTest::newRow("day-month-yy") << "08-Jun-99 10:00:00" << june8;
        QTest::newRow("long name, blanks") << "  JUNE 8 1999 10:00 " << june8;
        QTest::newRow("iso") << "1999-06-08 10:00" << june8;
        QTest::newRow("PM stuck on") << "Jun-08-99 10:05:09pm"
                                     << "1999-06-08 22:05:09";
        QTest::newRow("12 AM") << "06/08/99 12:30 AM"
                               << "1999-06-08 00:30:00";
        QTest::newRow("2029") << "Jan-02-29 10:00:00"
                              << "2029-01-02 10:00:00";
        QTest::newRow("1930, no time") << "1/2/30"
                                       << "1930-01-02 00:00:00";
        QTest::newRow("zone suffix") << "Jun-08-99 10:00:00 PDT"
                                     << "";
        QTest::newRow("13th month") << "13/08/99 10:00:00"
                                    << "";
        QTest::newRow("Feb 30") << "Feb-30-99"
                                << "";
        QTest::newRow("hour 25") << "Jun-08-99 25:00:00"
                                 << "";
        QTest::newRow("13 PM") << "Jun-08-99 13:00 PM"
                               << "";
        QTest::newRow("three-digit year") << "06/08/199"
                                          << "";
        QTest::newRow("two names") << "Jun May 99"
                                   << "";
        QTest::newRow("words") << "soon"
                               << "";
        QTest::newRow("time only") << "10:00:00"
                                   << "";
        QTest::newRow("empty") << ""
                               << "";
    }
    void siteDates()
    {
        QFETCH(QString, text);
        QTEST(readSiteDate(text).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")), "expected");
    }

    void pacificShift_data()
    {
        QTest::addColumn<int>("bias");
        QTest::addColumn<int>("daylightDiff");
        QTest::addColumn<QString>("expected");
        QTest::newRow("east coast") << 300 << 0 << "2024-03-10 04:30:00";
        QTest::newRow("east coast, daylight switch") << 300 << 1 << "2024-03-10 03:30:00";
        QTest::newRow("only 1 counts") << 300 << 2 << "2024-03-10 04:30:00";
        QTest::newRow("half hour west") << 210 << 0 << "2024-03-10 06:00:00";
        QTest::newRow("half hour east") << -330 << 0 << "2024-03-10 15:00:00";
        QTest::newRow("pacific") << 480 << 0 << "2024-03-10 01:30:00";
        QTest::newRow("into the skipped hour") << 420 << 0 << "2024-03-10 02:30:00";
    }
    // From 01:30 Pacific on the night New York skips 02:00-03:00: the clock moves by the
    // minutes alone, and a result inside the skipped hour is kept.
    void pacificShift()
    {
        QFETCH(int, bias);
        QFETCH(int, daylightDiff);
        const QDateTime pacific(QDate(2024, 3, 10), QTime(1, 30));
        QTEST(pacificToLocal(pacific, bias, daylightDiff).toString(u"yyyy-MM-dd HH:mm:ss"),
              "expected");
    }

    void siteMoney_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected"); // "" = no amount
        QTest::newRow("grouped") << "1,212.50"
                                 << "1212.5";
        QTest::newRow("dollar sign") << " $45.00 "
                                     << "45";
        QTest::newRow("US dollar") << "US $3.25"
                                   << "3.25";
        QTest::newRow("whole") << "7"
                               << "7";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("words") << "see below"
                               << "";
    }
    void siteMoney()
    {
        QFETCH(QString, text);
        const std::optional<Money> money = readSiteMoney(text);
        QTEST(money ? money->toPlainText() : QString(), "expected");
    }
};

QTEST_GUILESS_MAIN(TestPageCursor)
#include "tst_pagecursor.moc"
