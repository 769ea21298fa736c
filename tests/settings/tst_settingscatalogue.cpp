#include "platform/SettingsStore.h"
#include "settings/OptionsRecord.h"
#include "settings/SettingsCatalogue.h"

#include <QtTest>

class tst_SettingsCatalogue : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<SettingsStore> m_store;

private slots:
    void init()
    {
        m_store = std::make_unique<SettingsStore>(
            m_dir.filePath(QUuid::createUuid().toString(QUuid::Id128)));
    }

    void freshStoreYieldsDefaults_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected");
        const QString isapi = DefaultAddress::kEbayHost + "/aw-cgi/eBayISAPI.dll?";
        // clang-format off
        QTest::newRow("key case ignored") << "remoteport"       << "21";
        QTest::newRow("start page")       << "EbayStartPage"    << isapi + "ListItemForSale";
        QTest::newRow("seller report")    << "EbaySellerReport" << isapi + "MfcISAPICommand=ViewListedItemsWithEmails&rows=0&userid=";
        QTest::newRow("PayOptions")       << "PayOptions" << "Buyer to pay shipping/handling and insurance if desired. "
            "Please allow time for personal check to clear or send m.o. for quick shipping.";
        // clang-format on
    }
    void freshStoreYieldsDefaults()
    {
        QFETCH(QString, key);
        QFETCH(QString, expected);
        QCOMPARE(readSetting(*m_store, Settings::kOptions, key), expected);
        QVERIFY(!QFile::exists(m_store->filePath(Settings::kApp))); // reading writes nothing
        const OptionsRecord r = OptionsRecord::load(*m_store);
        QVERIFY(r.uploadRelative && r.newCat && !r.overwrite && r.pastDays == 1);
    }

    // What start-up leaves in the store ("Key=value|..."): default links seeded into empty
    // slots only, the old viewing directory folded into the image address, and the former
    // feedback page replaced. A second start changes nothing.
    void startUpWork_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("expected");
        const QString leave = DefaultAddress::kEbayHost + "/aw-cgi/eBayISAPI.dll?LeaveFeedbackShow";
        // clang-format off
        QTest::newRow("links seeded")       << "LinkName 2=My Courier" << "LinkName 1=USPS Tracking|LinkName 2=My Courier|LinkURL 2=<absent>|LinkName 3=UPS Tracking|LinkName 4=<absent>";
        QTest::newRow("dir joined")         << "ImageLoc=http://h/~wren|ViewingDir=pics" << "ImageLoc=http://h/~wren/pics/|ViewingDir=";
        QTest::newRow("dir slash kept")     << "ImageLoc=http://h|ViewingDir=pics/" << "ImageLoc=http://h/pics/|ViewingDir=";
        QTest::newRow("no dir to fold")     << "ImageLoc=http://h/x/|ViewingDir=" << "ImageLoc=http://h/x/";
        QTest::newRow("old feedback page")  << "EbayLeaveFeedback=" + DefaultAddress::kOldLeaveFeedback << "EbayLeaveFeedback=" + leave;
        QTest::newRow("own feedback page")  << "EbayLeaveFeedback=http://h/fb" << "EbayLeaveFeedback=http://h/fb";
        // clang-format on
    }
    void startUpWork()
    {
        QFETCH(QString, stored);
        QFETCH(QString, expected);
        for (const QString& pair : stored.split(u'|', Qt::SkipEmptyParts))
            m_store->save(Settings::kApp, Settings::kOptions, pair.section(u'=', 0, 0),
                          pair.section(u'=', 1));
        for (int start = 0; start < 2; ++start) {
            seedDefaultLinks(*m_store);
            migrateSettings(*m_store);
            for (const QString& pair : expected.split(u'|'))
                QCOMPARE(m_store->get(Settings::kApp, Settings::kOptions, pair.section(u'=', 0, 0),
                                      "<absent>"),
                         pair.section(u'=', 1));
        }
    }

    // "Resize pictures for the web before upload": on for new settings; settings an Options
    // dialog saved before the choice existed (they hold "UploadAbsolute") keep uploading as
    // they did. Start-up's own writes do not count as such a save. A size or quality that is
    // no number or out of reach reads as its default.
    void resizeChoice_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("on");
        QTest::addColumn<int>("side");
        QTest::addColumn<int>("quality");
        // clang-format off
        QTest::newRow("new settings")          << ""                                          << true  << 1600 << 85;
        QTest::newRow("after start-up only")   << "<start>"                                   << true  << 1600 << 85;
        QTest::newRow("saved before")          << "UploadAbsolute=False|RemoteHost=h"         << false << 1600 << 85;
        QTest::newRow("saved before, chosen")  << "UploadAbsolute=False|ResizeForWeb=True"    << true  << 1600 << 85;
        QTest::newRow("switched off")          << "ResizeForWeb=False"                        << false << 1600 << 85;
        QTest::newRow("own size and quality")  << "ResizeLongestSide=2400|ResizeJpegQuality=70" << true << 2400 << 70;
        QTest::newRow("not numbers")           << "ResizeLongestSide=big|ResizeJpegQuality= "  << true  << 1600 << 85;
        QTest::newRow("out of reach")          << "ResizeLongestSide=10|ResizeJpegQuality=101" << true  << 1600 << 85;
        // clang-format on
    }
    void resizeChoice()
    {
        QFETCH(QString, stored);
        QFETCH(bool, on);
        QFETCH(int, side);
        QFETCH(int, quality);
        if (stored == u"<start>") {
            m_store->save(Settings::kApp, Settings::kSystemData, "AppPath", "/opt/tb");
            seedDefaultLinks(*m_store);
            migrateSettings(*m_store);
        } else {
            for (const QString& pair : stored.split(u'|', Qt::SkipEmptyParts))
                m_store->save(Settings::kApp, Settings::kOptions, pair.section(u'=', 0, 0),
                              pair.section(u'=', 1));
        }
        QCOMPARE(readResizeForWeb(*m_store), on);
        const OptionsRecord r = OptionsRecord::load(*m_store);
        QCOMPARE(r.resizeForWeb, on);
        QCOMPARE(r.resizeLongestSide, side);
        QCOMPARE(r.resizeJpegQuality, quality);
    }
};

QTEST_GUILESS_MAIN(tst_SettingsCatalogue)
#include "tst_settingscatalogue.moc"
