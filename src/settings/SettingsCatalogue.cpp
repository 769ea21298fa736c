#include "settings/SettingsCatalogue.h"

#include "platform/SettingsStore.h"

namespace {

using T = SettingType;

QList<SettingDef> buildCatalogue()
{
    const QString o = Settings::kOptions;
    const QString h = DefaultAddress::kEbayHost;
    QList<SettingDef> c = {
        // connection and upload
        {o, QStringLiteral("FTPUserid"), T::Text, {}},
        {o, QStringLiteral("FTPPassword"), T::Text, {}},
        {o, QStringLiteral("RemoteHost"), T::Text, {}},
        {o, QStringLiteral("RemotePort"), T::Text, QStringLiteral("21")},
        {o, QStringLiteral("ImageLoc"), T::Text, {}},
        {o, QStringLiteral("AuctionDir"), T::Text, QStringLiteral(".\\")},
        {o, QStringLiteral("ViewingDir"), T::Text, {}},
        {o, QStringLiteral("UploadRelative"), T::Boolean, QStringLiteral("True")},
        {o, QStringLiteral("UploadAbsolute"), T::Boolean, QStringLiteral("False")},
        {o, QStringLiteral("Overwrite"), T::Boolean, QStringLiteral("False")},
        // pictures sent smaller and upright; see readResizeForWeb for a file that lacks the key
        {o, QStringLiteral("ResizeForWeb"), T::Boolean, QStringLiteral("True")},
        {o, QStringLiteral("ResizeLongestSide"), T::Integer, QStringLiteral("1600")},
        {o, QStringLiteral("ResizeJpegQuality"), T::Integer, QStringLiteral("85")},
        {o, QStringLiteral("RemoteSMTPHost"), T::Text, {}},
        {o, QStringLiteral("RemoteSMTPPort"), T::Text, QStringLiteral("25")},
        // secure mail: all empty means plain SMTP without signing in
        {o, QStringLiteral("SMTPSecurity"), T::Text, {}}, // "", "STARTTLS" or "SSL"
        {o, QStringLiteral("SMTPUser"), T::Text, {}},
        {o, QStringLiteral("SMTPPassword"), T::Text, {}},
        // identity and automatic entry
        {o, QStringLiteral("UserEmail"), T::Text, {}},
        {o, QStringLiteral("eBayPassword"), T::Text, {}},
        {o, QStringLiteral("Location"), T::Text, {}},
        {o, QStringLiteral("Region"), T::Text, QStringLiteral("Do not list regionally")},
        {o, QStringLiteral("RegionNum"), T::Text, QStringLiteral("Do not list regionally")},
        {o, QStringLiteral("Country"), T::Text, QStringLiteral("United States")},
        {o, QStringLiteral("CountryNum"), T::Text, QStringLiteral("1")},
        {o, QStringLiteral("Feedback"), T::Text, {}},
        {o, QStringLiteral("ShipInternationally"), T::Boolean, QStringLiteral("False")},
        // e-mail notes
        {o, QStringLiteral("SendFrom"), T::Text, {}},
        {o, QStringLiteral("DefaultCC"), T::Text, {}},
        {o, QStringLiteral("PayMsg"), T::Text,
         QStringLiteral("Please send check or money order to:")},
        {o, QStringLiteral("RecdMsg"), T::Text,
         QStringLiteral("We will ship as soon as payment clears.")},
        {o, QStringLiteral("SendAddress0"), T::Text, {}},
        {o, QStringLiteral("SendAddress1"), T::Text, {}},
        {o, QStringLiteral("SendAddress2"), T::Text, {}},
        {o, QStringLiteral("SendAddress3"), T::Text, {}},
        {o, QStringLiteral("Closing"), T::Text,
         QStringLiteral("It's been a pleasure doing business with you.")},
        {o, QStringLiteral("Signature"), T::Text, {}},
        // listing appearance
        {o, QStringLiteral("ListingBgColor"), T::Text, QStringLiteral("lightblue")},
        {o, QStringLiteral("ListingTextColor"), T::Text, QStringLiteral("black")},
        {o, QStringLiteral("ListingTitleColor"), T::Text, QStringLiteral("purple")},
        {o, QStringLiteral("ListingSubTitleColor"), T::Text, QStringLiteral("deeppink")},
        {o, QStringLiteral("ListingNoReserveColor"), T::Text, QStringLiteral("blue")},
        {o, QStringLiteral("ListingShippingColor"), T::Text, QStringLiteral("black")},
        {o, QStringLiteral("PayOptions"), T::Text,
         QStringLiteral("Buyer to pay shipping/handling and insurance if desired. Please allow "
                        "time for personal check to clear or send m.o. for quick shipping.")},
        {o, QStringLiteral("SubHeading"), T::Text, {}},
        {o, QStringLiteral("TaxMsg"), T::Text, {}},
        {o, QStringLiteral("NoReserve"), T::Text, QStringLiteral("NO RESERVE!")},
        {o, QStringLiteral("SeeOther"), T::Text,
         QStringLiteral("Please check out the other auctions we currently have running on eBay.")},
        {o, QStringLiteral("Reserve"), T::Integer, QStringLiteral("1")},
        // eBay page locations and web behaviour
        {o, QStringLiteral("EbayStartPage"), T::Text,
         h + QLatin1String("/aw-cgi/eBayISAPI.dll?ListItemForSale")},
        {o, QStringLiteral("EbayLeaveFeedback"), T::Text,
         h + QLatin1String("/aw-cgi/eBayISAPI.dll?LeaveFeedbackShow")},
        {o, QStringLiteral("EbayViewFeedback"), T::Text,
         h + QLatin1String("/aw-cgi/eBayISAPI.dll?ViewFeedback&userid=")},
        {o, QStringLiteral("EbaySellerReport"), T::Text,
         h + QLatin1String(
                 "/aw-cgi/eBayISAPI.dll?MfcISAPICommand=ViewListedItemsWithEmails&rows=0&userid=")},
        {o, QStringLiteral("EbayListing"), T::Text,
         h + QLatin1String("/aw-cgi/eBayISAPI.dll?ViewItem&item=")},
        {o, QStringLiteral("HomePage"), T::Text, DefaultAddress::kHomePage},
        {o, QStringLiteral("PastDays"), T::Integer, QStringLiteral("1")},
        {o, QStringLiteral("ShowPast"), T::Boolean, QStringLiteral("False")},
        {o, QStringLiteral("RetrieveEveryTime"), T::Boolean, QStringLiteral("False")},
        {o, QStringLiteral("NewCat"), T::Boolean, QStringLiteral("True")},
        {o, QStringLiteral("UseProxy"), T::Integer, QStringLiteral("0")},
        {o, QStringLiteral("ProxyServer"), T::Text, {}},
        {o, QStringLiteral("ProxyPort"), T::Text, QStringLiteral("80")},
        {o, QStringLiteral("DaylightDiff"), T::Integer, QStringLiteral("0")},
        // dated backups of tb2.mdb kept in Backups/; below 1, none is made at start
        {o, QStringLiteral("BackupsKept"), T::Integer, QStringLiteral("7")},
        // window and clean-up state
        {o, QStringLiteral("MainFormHeight"), T::Single, {}},
        {o, QStringLiteral("MainFormWidth"), T::Single, QStringLiteral("11800")},
        {o, QStringLiteral("Toolbar"), T::Boolean, QStringLiteral("True")},
        {o, QStringLiteral("Statusbar"), T::Boolean, QStringLiteral("True")},
        {o,
         QStringLiteral("ListDirLocation"),
         T::Text,
         {}}, // the application folder, filled at use
        {o, QStringLiteral("ImageDirLocation"), T::Text, {}},
        {o, QStringLiteral("EraseHDImgs"), T::Integer, QStringLiteral("1")},
        {o, QStringLiteral("EraseWebImgs"), T::Integer, QStringLiteral("1")},
        {o, QStringLiteral("LeaveFeedbackNow"), T::Integer, QStringLiteral("1")},
        // other sections
        {Settings::kSystem, QStringLiteral("ItemsViewed"), T::Text, QStringLiteral("All")},
        {Settings::kSystemData, QStringLiteral("AppPath"), T::Text, {}},
    };
    for (int k = 1; k <= 9; ++k)
        c.append({o, QStringLiteral("PaymentOpt %1").arg(k), T::Integer,
                  k == 9 ? QStringLiteral("1") : QStringLiteral("0")});
    for (int k = 1; k <= 4; ++k)
        c.append({o, QStringLiteral("ShippingOpt %1").arg(k), T::Integer,
                  k == 4 ? QStringLiteral("1") : QStringLiteral("0")});
    for (int n = 1; n <= 10; ++n) {
        c.append({o, QStringLiteral("LinkName %1").arg(n), T::Text, {}});
        c.append({o, QStringLiteral("LinkURL %1").arg(n), T::Text, {}});
    }
    return c;
}

} // namespace

const QList<SettingDef>& settingsCatalogue()
{
    static const QList<SettingDef> catalogue = buildCatalogue();
    return catalogue;
}

const SettingDef* findSetting(const QString& section, const QString& key)
{
    for (const SettingDef& d : settingsCatalogue())
        if (d.section.compare(section, Qt::CaseInsensitive) == 0 &&
            d.key.compare(key, Qt::CaseInsensitive) == 0)
            return &d;
    return nullptr;
}

QString settingDefault(const QString& section, const QString& key)
{
    const SettingDef* d = findSetting(section, key);
    return d ? d->defaultValue : QString();
}

QString readSetting(const SettingsStore& store, const QString& section, const QString& key)
{
    return store.get(Settings::kApp, section, key, settingDefault(section, key));
}

const QList<DefaultLink>& defaultLinks()
{
    static const QList<DefaultLink> links = {
        {QStringLiteral("USPS Tracking"), QStringLiteral("http://www.usps.com/cttgate/")},
        {QStringLiteral("FedEx Tracking"), QStringLiteral("http://www.fedex.com/us/tracking/")},
        {QStringLiteral("UPS Tracking"),
         QStringLiteral("http://www.ups.com/tracking/tracking.html")},
    };
    return links;
}

void seedDefaultLinks(SettingsStore& store)
{
    for (int i = 0; i < defaultLinks().size(); ++i) {
        const QString n = QString::number(i + 1);
        if (!store.get(Settings::kApp, Settings::kOptions, QLatin1String("LinkName ") + n)
                 .isEmpty())
            continue;
        store.save(Settings::kApp, Settings::kOptions, QLatin1String("LinkName ") + n,
                   defaultLinks().at(i).name);
        store.save(Settings::kApp, Settings::kOptions, QLatin1String("LinkURL ") + n,
                   defaultLinks().at(i).url);
    }
}

void migrateSettings(SettingsStore& store)
{
    const QString o = Settings::kOptions;
    const QString feedbackKey = QStringLiteral("EbayLeaveFeedback");
    if (readSetting(store, o, feedbackKey) == DefaultAddress::kOldLeaveFeedback)
        store.save(Settings::kApp, o, feedbackKey, settingDefault(o, feedbackKey));

    const QString viewingDir = readSetting(store, o, QStringLiteral("ViewingDir"));
    if (!viewingDir.isEmpty()) {
        QString imageLoc = readSetting(store, o, QStringLiteral("ImageLoc")) + u'/' + viewingDir;
        if (!imageLoc.isEmpty() && !imageLoc.endsWith(u'/'))
            imageLoc += u'/';
        store.save(Settings::kApp, o, QStringLiteral("ImageLoc"), imageLoc);
        store.save(Settings::kApp, o, QStringLiteral("ViewingDir"), QString());
    }
}

bool readToolbarVisible(const SettingsStore& store)
{
    return store.getBool(Settings::kApp, Settings::kOptions, QStringLiteral("Toolbar"), true);
}

bool readStatusbarVisible(const SettingsStore& store)
{
    return store.getBool(Settings::kApp, Settings::kOptions, QStringLiteral("Statusbar"), true);
}

void saveToolbarVisible(SettingsStore& store, bool visible)
{
    store.saveBool(Settings::kApp, Settings::kOptions, QStringLiteral("ToolBar"), visible);
}

void saveStatusbarVisible(SettingsStore& store, bool visible)
{
    store.saveBool(Settings::kApp, Settings::kOptions, QStringLiteral("StatusBar"), visible);
}

bool readResizeForWeb(const SettingsStore& store)
{
    const QString key = QStringLiteral("ResizeForWeb");
    if (store.contains(Settings::kApp, Settings::kOptions, key))
        return SettingsStore::toBool(readSetting(store, Settings::kOptions, key), true);
    // Every Options dialog that ever saved wrote "UploadAbsolute"; start-up never does. Its
    // presence marks settings made before pictures could be resized, whose uploads went out
    // as they were: they stay that way until the seller ticks the box.
    return !store.contains(Settings::kApp, Settings::kOptions, QStringLiteral("UploadAbsolute"));
}
