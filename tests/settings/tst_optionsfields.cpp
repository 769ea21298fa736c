#include "settings/CountryRegionLists.h"
#include "settings/OptionsFields.h"

#include <QSet>
#include <QtTest>

class tst_OptionsFields : public QObject
{
    Q_OBJECT

private slots:
    void countryCodesFollowListPosition_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("code");
        QTest::newRow("first") << "United States" << 1;
        QTest::newRow("second") << "Canada" << 2;
        QTest::newRow("third") << "United Kingdom" << 3;
        QTest::newRow("comma in name") << "Congo, Democratic Republic of the" << 48;
        QTest::newRow("odd Croatia") << "Croatia, Democratic Republic of the" << 53;
        QTest::newRow("odd Falklands") << "Falkland Islands (Islas Makvinas)" << 68;
        QTest::newRow("Korea, South") << "Korea, South" << 111;
        QTest::newRow("odd Lebanon") << "Lebanon, South" << 116;
        QTest::newRow("Virgin Islands") << "Virgin Islands (U.S.)" << 217;
        QTest::newRow("last") << "Zimbabwe" << 224;
    }
    void countryCodesFollowListPosition()
    {
        QFETCH(QString, name);
        QFETCH(int, code);
        QCOMPARE(countryNames().size(), 224);
        QCOMPARE(countryIndex(name) + 1, code);
        QCOMPARE(countryNames().at(code - 1), name);
    }

    void countryNamesAreUnique()
    {
        const QStringList& names = countryNames();
        QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), names.size());
        QCOMPARE(countryIndex(QStringLiteral("united states")), -1); // exact names only
    }

    void regionsCarryTheirCodes_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("position");
        QTest::addColumn<int>("code");
        QTest::newRow("first") << "Do Not List Regionally" << 0 << 0;
        QTest::newRow("second") << "AZ-Phoenix" << 1 << 39;
        QTest::newRow("Los Angeles") << "CA-Los Angeles" << 2 << 1;
        QTest::newRow("odd Boise") << "ID-Billings-Boise" << 15 << 5;
        QTest::newRow("odd Cincinnatti") << "OH-Cincinnatti" << 34 << 11;
        QTest::newRow("Tampa") << "FL-Tampa-St. Petersburg" << 11 << 52;
        QTest::newRow("last") << "WI-Milwaukee" << 53 << 30;
    }
    void regionsCarryTheirCodes()
    {
        QFETCH(QString, name);
        QFETCH(int, position);
        QFETCH(int, code);
        QCOMPARE(regionEntries().size(), 54);
        QCOMPARE(regionEntries().at(position).name, name);
        QCOMPARE(regionEntries().at(position).code, code);
    }

    void regionCodesAreAPermutation()
    {
        QSet<int> codes;
        for (const RegionEntry& r : regionEntries())
            codes.insert(r.code);
        QCOMPARE(codes.size(), 54);
        QCOMPARE(*std::min_element(codes.begin(), codes.end()), 0);
        QCOMPARE(*std::max_element(codes.begin(), codes.end()), 53);
    }

    void storedRegionDefaultNamesFirstEntry()
    {
        QCOMPARE(regionIndex(QStringLiteral("Do not list regionally")), 0);
        QCOMPARE(regionIndex(QStringLiteral("tx-austin")), 46);
        QCOMPARE(regionIndex(QStringLiteral("Nowhere")), -1);
    }

    void hostImageDir_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        QTest::newRow("backslashes around") << "\\images\\"
                                            << "images/";
        QTest::newRow("bare word") << "images"
                                   << "images/";
        QTest::newRow("empty stays empty") << ""
                                           << "";
        QTest::newRow("leading slash") << "/images/"
                                       << "images/";
        QTest::newRow("already tidy") << "images/"
                                      << "images/";
        QTest::newRow("nested") << "\\www\\images"
                                << "www\\images/";
        QTest::newRow("stored default") << ".\\"
                                        << "./";
        QTest::newRow("only a backslash") << "\\"
                                          << "";
        QTest::newRow("only a slash") << "/"
                                      << "";
        QTest::newRow("doubled separators") << "//images\\\\"
                                            << "images/";
        QTest::newRow("mixed ending") << "images/\\"
                                      << "images/";
    }
    void hostImageDir()
    {
        QFETCH(QString, typed);
        QFETCH(QString, expected);
        QCOMPARE(normalizeHostImageDir(typed), expected);
        QCOMPARE(normalizeHostImageDir(expected), expected); // leaving the field again keeps it
    }

    void webImagesUrl_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        QTest::newRow("slash added") << "http://www.example.com/~wren"
                                     << "http://www.example.com/~wren/";
        QTest::newRow("slash kept") << "http://h/pics/"
                                    << "http://h/pics/";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("blanks only") << "   "
                                     << "";
        QTest::newRow("blanks trimmed") << " http://h/pics "
                                        << "http://h/pics/";
    }
    void webImagesUrl()
    {
        QFETCH(QString, typed);
        QFETCH(QString, expected);
        QCOMPARE(normalizeWebImagesUrl(typed), expected);
    }

    void pastDays_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        QTest::newRow("empty") << ""
                               << "1";
        QTest::newRow("blank") << "  "
                               << "1";
        QTest::newRow("number kept") << "14"
                                     << "14";
        QTest::newRow("zero kept") << "0"
                                   << "0";
    }
    void pastDays()
    {
        QFETCH(QString, typed);
        QFETCH(QString, expected);
        QCOMPARE(normalizePastDays(typed), expected);
    }
};

QTEST_GUILESS_MAIN(tst_OptionsFields)
#include "tst_optionsfields.moc"
