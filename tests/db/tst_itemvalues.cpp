#include "db/ItemColumns.h"
#include "platform/DateText.h"

#include <QtTest>

class TestItemValues : public QObject
{
    Q_OBJECT
private slots:
    // Stored dates are read without the general parser where they have the stored form; the
    // result must be what the parser gives, including for dates that do not exist and for a
    // local time skipped by the change to summer time (the tests run in New York).
    void storedDates_data()
    {
        QTest::addColumn<QString>("text");
        // clang-format off
        for (const char* t : {"1999-06-08 10:00:00", "1999-06-08", "1900-01-01 00:00:00",
                              "2024-02-29 23:59:59", "2023-02-29 10:00:00", "2023-02-30", "2024-13-01",
                              "2024-03-10 02:30:00", "2024-11-03 01:30:00", "2024-03-10",
                              "1999-06-08 24:00:00", "1999-06-08 10:60:00", "0000-01-01",
                              "1999-6-08 10:00:00", "1999-06-08T10:00:00", "1999-06-08 10:00",
                              "1999-06-08 10:00:00 ", "19990608", "x999-06-08", "", "next week"})
            QTest::addRow("%s", t) << QString::fromLatin1(t);
        // clang-format on
    }
    void storedDates()
    {
        QFETCH(QString, text);
        QDateTime general = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        if (!general.isValid())
            general = QDateTime(QDate::fromString(text, QStringLiteral("yyyy-MM-dd")), QTime(0, 0));
        if (!general.isValid())
            general = QDateTime::fromString(text, Qt::ISODate);
        const QDateTime direct = DateText::fromStorage(text);
        QCOMPARE(direct.isValid(), general.isValid());
        if (general.isValid()) {
            QCOMPARE(direct, general);
            QCOMPARE(direct.toString(Qt::ISODate), general.toString(Qt::ISODate));
        }
    }

    void columns_data()
    {
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QVariant>("stored"); // invalid: NULL; text: kept as typed
        QTest::addColumn<QString>("shown");   // when not the typed text itself
        const auto row = [](const char* column, const char* typed, const QVariant& stored,
                            const char* shown = nullptr) {
            QTest::addRow("%s %s", column, typed)
                << QString::fromLatin1(column) << QString::fromUtf8(typed) << stored
                << QString::fromUtf8(shown ? shown : typed);
        };
        // Money in exact ten-thousandths, rounded half away from zero; column names in any case.
        row("reserve", "12.5", qint64(125000));
        row("Reserve", ".5", qint64(5000), "0.5");
        row("Reserve", "1.23456", qint64(12346), "1.2346");
        row("Reserve", "-1.00005", qint64(-10001), "-1.0001");
        row("Reserve", "0.99995", qint64(10000), "1");
        row("Reserve", " 7 ", qint64(70000), "7");
        row("SalePrice", "922337203685477.5807", std::numeric_limits<qint64>::max());
        row("SalePrice", "922337203685477.5808", "922337203685477.5808"); // no wrapping
        row("MinBid", "$5", "$5");
        row("Cost", "1e3", qint64(10000000), "1000"); // not the integer 1000 the column makes
        row("LastPrice", "2.5E-1", qint64(2500), "0.25");
        row("SalePrice", "1e300", "1e300");
        row("Cost", " ", {}, "");
        row("DateAuctionEnds", "6/8/1999 10:00:00 AM", "1999-06-08 10:00:00");
        row("DateAuctionStarted", "06/01/1999 10:00", "1999-06-01 10:00:00",
            "6/1/1999 10:00:00 AM");
        row("LastChecked", "06/08/1999 17:30:05", "1999-06-08 17:30:05", "6/8/1999 5:30:05 PM");
        row("DateBuyerContacted", "1/1/1900", "1900-01-01 00:00:00"); // the no-date placeholder
        row("DatePaymentRecd", "6/8/99", "1999-06-08 00:00:00", "6/8/1999");
        row("DateAuctionEnds", "1/2/05 3:04 PM", "2005-01-02 15:04:00", "1/2/2005 3:04:00 PM");
        row("DatePaymentClrd", "next week", "next week");
        row("DateItemShipped", "2/30/2000", "2/30/2000");
        row("DateItemShipped", "", {});
        row("FeedbackComplete", "False", qint64(0), "0");
        row("FeedbackComplete", "True", qint64(1), "1");
        row("BuyerEmail", "o'neil@x.com", "o'neil@x.com");
    }
    void columns()
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
};

QTEST_GUILESS_MAIN(TestItemValues)
#include "tst_itemvalues.moc"
