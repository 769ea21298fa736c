#include "web/PageCursor.h"

#include <QtTest>

class TestPageCursor : public QObject
{
    Q_OBJECT
private slots:
    void siteDates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected"); // "" = not a date
        const char* june8 = "1999-06-08 10:00:00";
        const std::pair<const char*, const char*> cases[] = {
            {"Jun-08-99 10:00:00", june8},
            {"06/08/99 10:00:00", june8},
            {"Jun 08, 1999 10:00:00", june8},
            {"6/8/1999 10:00:00 AM", june8},
            {"08-Jun-99 10:00:00", june8},
            {"  JUNE 8 1999 10:00 ", june8},
            {"1999-06-08 10:00", june8},
            {"Jun-08-99 10:05:09pm", "1999-06-08 22:05:09"},
            {"06/08/99 12:30 AM", "1999-06-08 00:30:00"},
            {"Jan-02-29", "2029-01-02 00:00:00"},
            {"1/2/30", "1930-01-02 00:00:00"},
            {"Jun-08-99 10:00:00 PDT", ""},
            {"13/08/99 10:00:00", ""},
            {"Feb-30-99", ""},
            {"Jun-08-99 25:00:00", ""},
            {"Jun-08-99 13:00 PM", ""},
            {"06/08/199", ""},
            {"Jun May 99", ""},
            {"10:00:00", ""},
            {"soon", ""},
            {" ", ""}};
        for (const auto& [text, expected] : cases)
            QTest::newRow(text) << QString::fromLatin1(text) << QString::fromLatin1(expected);
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
        QTest::newRow("daylight switch") << 300 << 1 << "2024-03-10 03:30:00";
        QTest::newRow("only 1 switches") << 300 << 2 << "2024-03-10 04:30:00";
        QTest::newRow("half hour west") << 210 << 0 << "2024-03-10 06:00:00";
        QTest::newRow("half hour east") << -330 << 0 << "2024-03-10 15:00:00";
        QTest::newRow("into the skipped hour") << 420 << 0 << "2024-03-10 02:30:00";
    }
    // From 01:30 Pacific on the night New York skips 02:00-03:00: the clock moves by the
    // minutes alone, and a time inside the skipped hour is kept.
    void pacificShift()
    {
        QFETCH(int, bias);
        QFETCH(int, daylightDiff);
        const QDateTime pacific(QDate(2024, 3, 10), QTime(1, 30));
        QTEST(pacificToLocal(pacific, bias, daylightDiff).toString(u"yyyy-MM-dd HH:mm:ss"),
              "expected");
    }
};

QTEST_GUILESS_MAIN(TestPageCursor)
#include "tst_pagecursor.moc"
