#include "settings/CountryRegionLists.h"
#include "settings/OptionsFields.h"

#include <QSet>
#include <QtTest>

namespace {
// A country's code is its position counted from 1; a region carries a code of its own.
// Regions are looked up without letter case, countries by their exact names.
// clang-format off
struct Entry { bool country; QString name; int position, code; };
struct Tidy { QString field, typed, expected; }; // field: "dir", "url" or "days"
// clang-format on
} // namespace

class tst_OptionsFields : public QObject
{
    Q_OBJECT

private slots:
    void listEntries_data()
    {
        QTest::addColumn<Entry>("row");
        // clang-format off
        QTest::newRow("first country") << Entry{true, "United States", 0, 1};
        QTest::newRow("comma in name") << Entry{true, "Congo, Democratic Republic of the", 47, 48};
        QTest::newRow("odd Falklands") << Entry{true, "Falkland Islands (Islas Makvinas)", 67, 68};
        QTest::newRow("last country")  << Entry{true, "Zimbabwe", 223, 224};
        QTest::newRow("exact only")    << Entry{true, "zimbabwe", -1, 0};
        QTest::newRow("no region")     << Entry{false, "Do not list regionally", 0, 0};
        QTest::newRow("second region") << Entry{false, "AZ-Phoenix", 1, 39};
        QTest::newRow("odd Boise")     << Entry{false, "ID-Billings-Boise", 15, 5};
        QTest::newRow("lower case")    << Entry{false, "tx-austin", 46, 3};
        QTest::newRow("last region")   << Entry{false, "WI-Milwaukee", 53, 30};
        QTest::newRow("unknown")       << Entry{false, "Nowhere", -1, -1};
        // clang-format on
    }
    void listEntries()
    {
        QFETCH(Entry, row);
        const QStringList& names = countryNames();
        QCOMPARE(names.size(), 224);
        QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), 224); // none twice
        QSet<int> codes; // each of 0..53 exactly once
        for (const RegionEntry& r : regionEntries())
            codes.insert(qBound(-1, r.code, 54));
        QCOMPARE(regionEntries().size(), 54);
        QCOMPARE(codes.size(), 54);
        QVERIFY(!codes.contains(-1) && !codes.contains(54));
        QCOMPARE(row.country ? countryIndex(row.name) : regionIndex(row.name), row.position);
        if (row.country)
            QCOMPARE(row.position + 1, row.code);
        else if (row.position >= 0)
            QCOMPARE(regionEntries().at(row.position).code, row.code);
    }

    void tidying_data()
    {
        QTest::addColumn<Tidy>("row");
        // clang-format off
        QTest::newRow("dir backslashes")  << Tidy{"dir", "\\images\\", "images/"};
        QTest::newRow("dir empty")        << Tidy{"dir", "", ""};
        QTest::newRow("dir nested")       << Tidy{"dir", "\\www\\images", "www\\images/"};
        QTest::newRow("dir default")      << Tidy{"dir", ".\\", "./"};
        QTest::newRow("dir only a slash") << Tidy{"dir", "/", ""};
        QTest::newRow("dir doubled")      << Tidy{"dir", "//images\\\\", "images/"};
        QTest::newRow("dir mixed end")    << Tidy{"dir", "images/\\", "images/"};
        QTest::newRow("url slash added")  << Tidy{"url", "http://h/~wren", "http://h/~wren/"};
        QTest::newRow("url trimmed")      << Tidy{"url", " http://h/pics ", "http://h/pics/"};
        QTest::newRow("days blank")       << Tidy{"days", "  ", "1"};
        QTest::newRow("days zero kept")   << Tidy{"days", "0", "0"};
        // clang-format on
    }
    void tidying()
    {
        QFETCH(Tidy, row);
        const auto tidy = row.field == u"dir"   ? normalizeHostImageDir
                          : row.field == u"url" ? normalizeWebImagesUrl
                                                : normalizePastDays;
        QCOMPARE(tidy(row.typed), row.expected);
        QCOMPARE(tidy(row.expected), row.expected); // leaving the field again keeps it
    }
};

QTEST_GUILESS_MAIN(tst_OptionsFields)
#include "tst_optionsfields.moc"
