#include "settings/CountryRegionLists.h"
#include "settings/OptionsFields.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace {
// clang-format off
struct Tidy { QString field, typed, expected; }; // field: "dir", "url" or "days"
// clang-format on
} // namespace

class tst_OptionsFields : public QObject
{
    Q_OBJECT

private slots:
    // Lookups by name are exercised through the Options dialog; here the lists as a whole.
    void lists()
    {
        const QStringList& names = countryNames();
        QCOMPARE(names.size(), 224);
        QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), 224); // none twice
        QCOMPARE(countryIndex(u"zimbabwe"_s), -1); // countries by their exact names only
        QSet<int> codes;                           // each of 0..53 exactly once
        for (const RegionEntry& r : regionEntries())
            codes.insert(qBound(-1, r.code, 54));
        QCOMPARE(regionEntries().size(), 54);
        QCOMPARE(codes.size(), 54);
        QVERIFY(!codes.contains(-1) && !codes.contains(54));
    }

    void tidying_data()
    {
        QTest::addColumn<Tidy>("row");
        // clang-format off
        QTest::newRow("dir empty")        << Tidy{"dir", "", ""};
        QTest::newRow("dir nested")       << Tidy{"dir", "\\www\\images", "www\\images/"};
        QTest::newRow("dir only a slash") << Tidy{"dir", "/", ""};
        QTest::newRow("dir doubled")      << Tidy{"dir", "//images\\\\", "images/"};
        QTest::newRow("url trimmed")      << Tidy{"url", " http://h/pics ", "http://h/pics/"};
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
