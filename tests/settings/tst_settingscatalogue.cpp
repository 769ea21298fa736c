#include "platform/SettingsStore.h"
#include "settings/OptionsRecord.h"
#include "settings/SettingsCatalogue.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class tst_SettingsCatalogue : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<SettingsStore> m_store;

    void save(const QString& key, const QString& value)
    {
        m_store->save(Settings::kApp, Settings::kOptions, key, value);
    }
    QString get(const QString& key) const
    {
        return m_store->get(Settings::kApp, Settings::kOptions, key);
    }

private slots:
    void init()
    {
        m_store = std::make_unique<SettingsStore>(
            m_dir.filePath(QUuid::createUuid().toString(QUuid::Id128)));
    }

    void freshStoreYieldsDefaults_data()
    {
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected");
        const QString o = Settings::kOptions;
        // clang-format off
        QTest::newRow("RemotePort")     << o << "RemotePort"     << "21";
        QTest::newRow("AuctionDir")     << o << "AuctionDir"     << ".\\";
        QTest::newRow("UploadRelative") << o << "UploadRelative" << "True";
        QTest::newRow("CountryNum")     << o << "CountryNum"     << "1";
        QTest::newRow("Region")         << o << "Region"         << "Do not list regionally";
        QTest::newRow("RegionNum")      << o << "RegionNum"      << "Do not list regionally";
        QTest::newRow("PaymentOpt 8")   << o << "PaymentOpt 8"   << "0";
        QTest::newRow("PaymentOpt 9")   << o << "PaymentOpt 9"   << "1";
        QTest::newRow("ShippingOpt 4")  << o << "ShippingOpt 4"  << "1";
        QTest::newRow("PastDays")       << o << "PastDays"       << "1";
        QTest::newRow("NewCat")         << o << "NewCat"         << "True";
        QTest::newRow("ProxyPort")      << o << "ProxyPort"      << "80";
        QTest::newRow("MainFormWidth")  << o << "MainFormWidth"  << "11800";
        QTest::newRow("ItemsViewed")    << Settings::kSystem << "ItemsViewed" << "All";
        QTest::newRow("key case ignored") << o << "remoteport"   << "21";
        QTest::newRow("PayOptions")     << o << "PayOptions"
            << "Buyer to pay shipping/handling and insurance if desired. Please allow time for "
               "personal check to clear or send m.o. for quick shipping.";
        // clang-format on
    }
    void freshStoreYieldsDefaults()
    {
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, expected);
        QCOMPARE(readSetting(*m_store, section, key), expected);
        QVERIFY(!QFile::exists(m_store->filePath(Settings::kApp))); // reading writes nothing
    }

    void pageAddressDefaultsAreCompleteUrls_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("path");
        QTest::newRow("start") << "EbayStartPage"
                               << "/aw-cgi/eBayISAPI.dll?ListItemForSale";
        QTest::newRow("leave") << "EbayLeaveFeedback"
                               << "/aw-cgi/eBayISAPI.dll?LeaveFeedbackShow";
        QTest::newRow("view") << "EbayViewFeedback"
                              << "/aw-cgi/eBayISAPI.dll?ViewFeedback&userid=";
        QTest::newRow("report")
            << "EbaySellerReport"
            << "/aw-cgi/eBayISAPI.dll?MfcISAPICommand=ViewListedItemsWithEmails&rows=0&userid=";
        QTest::newRow("listing") << "EbayListing"
                                 << "/aw-cgi/eBayISAPI.dll?ViewItem&item=";
    }
    void pageAddressDefaultsAreCompleteUrls()
    {
        QFETCH(QString, key);
        QFETCH(QString, path);
        const QUrl url(readSetting(*m_store, Settings::kOptions, key));
        QVERIFY(url.scheme().startsWith(QLatin1String("http")));
        QVERIFY(!url.host().isEmpty());
        QVERIFY(url.toString().endsWith(path));
    }

    void freshRecordHoldsDefaults()
    {
        const OptionsRecord r = OptionsRecord::load(*m_store);
        QVERIFY(r.uploadRelative && r.newCat && !r.overwrite && !r.retrieveEveryTime);
        QCOMPARE(r.pastDays, 1);
        QCOMPARE(r.paymentOpt[8], 1);
        QCOMPARE(r.shippingOpt[3], 1);
    }

    void barSwitchesShareOneValueAcrossSpellings()
    {
        saveToolbarVisible(*m_store, false);
        saveStatusbarVisible(*m_store, false);
        QVERIFY(!readToolbarVisible(*m_store));
        QVERIFY(!readStatusbarVisible(*m_store));
        QCOMPARE(get(QStringLiteral("Toolbar")), QStringLiteral("False"));
        saveToolbarVisible(*m_store, true);
        QVERIFY(readToolbarVisible(*m_store));
        // The file keeps the spelling the bar switch was written with.
        QFile file(m_store->filePath(Settings::kApp));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray ini = file.readAll();
        QVERIFY(ini.contains("ToolBar=True"));
        QCOMPARE(ini.count("oolbar="), 0);
    }

    void viewingDirFoldsIntoImageLoc_data()
    {
        QTest::addColumn<QString>("imageLoc");
        QTest::addColumn<QString>("viewingDir");
        QTest::addColumn<QString>("expected");
        QTest::newRow("joined, closing slash added") << "http://www.example.com/~wren"
                                                     << "pics"
                                                     << "http://www.example.com/~wren/pics/";
        QTest::newRow("closing slash kept") << "http://h"
                                            << "pics/"
                                            << "http://h/pics/";
        QTest::newRow("empty image address") << ""
                                             << "pics"
                                             << "/pics/";
        QTest::newRow("nothing to fold") << "http://h/x/"
                                         << ""
                                         << "http://h/x/";
    }
    void viewingDirFoldsIntoImageLoc()
    {
        QFETCH(QString, imageLoc);
        QFETCH(QString, viewingDir);
        QFETCH(QString, expected);
        save(QStringLiteral("ImageLoc"), imageLoc);
        save(QStringLiteral("ViewingDir"), viewingDir);
        migrateSettings(*m_store);
        QCOMPARE(get(QStringLiteral("ImageLoc")), expected);
        QCOMPARE(get(QStringLiteral("ViewingDir")), QString());
        migrateSettings(*m_store); // a second start changes nothing
        QCOMPARE(get(QStringLiteral("ImageLoc")), expected);
    }

    void oldFeedbackAddressIsReplaced_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("replaced");
        QTest::newRow("former page") << DefaultAddress::kOldLeaveFeedback << true;
        QTest::newRow("user's own") << "http://example.com/feedback" << false;
    }
    void oldFeedbackAddressIsReplaced()
    {
        QFETCH(QString, stored);
        QFETCH(bool, replaced);
        save(QStringLiteral("EbayLeaveFeedback"), stored);
        migrateSettings(*m_store);
        const QString now = get(QStringLiteral("EbayLeaveFeedback"));
        if (replaced)
            QVERIFY(now.endsWith(QLatin1String("/aw-cgi/eBayISAPI.dll?LeaveFeedbackShow")));
        else
            QCOMPARE(now, stored);
    }

    void absentFeedbackAddressIsNotWritten()
    {
        migrateSettings(*m_store);
        QVERIFY(!m_store->contains(Settings::kApp, Settings::kOptions,
                                   QStringLiteral("EbayLeaveFeedback")));
    }

    void linksAreSeededOnlyIntoEmptySlots()
    {
        save(QStringLiteral("LinkName 2"), QStringLiteral("My Courier"));
        save(QStringLiteral("LinkURL 2"), QStringLiteral("http://courier.example.com/"));
        seedDefaultLinks(*m_store);
        QCOMPARE(get(QStringLiteral("LinkName 1")), QStringLiteral("USPS Tracking"));
        QCOMPARE(get(QStringLiteral("LinkName 2")), QStringLiteral("My Courier"));
        QCOMPARE(get(QStringLiteral("LinkURL 2")), QStringLiteral("http://courier.example.com/"));
        QCOMPARE(get(QStringLiteral("LinkName 3")), QStringLiteral("UPS Tracking"));
        QVERIFY(
            get(QStringLiteral("LinkURL 3")).endsWith(QLatin1String("/tracking/tracking.html")));
        QVERIFY(
            !m_store->contains(Settings::kApp, Settings::kOptions, QStringLiteral("LinkName 4")));

        save(QStringLiteral("LinkURL 1"), QStringLiteral("http://changed.example.com/"));
        seedDefaultLinks(*m_store); // a named slot is left alone on the next start
        QCOMPARE(get(QStringLiteral("LinkURL 1")), QStringLiteral("http://changed.example.com/"));
    }
};

QTEST_GUILESS_MAIN(tst_SettingsCatalogue)
#include "tst_settingscatalogue.moc"
