#include "settings/OptionsRecord.h"

#include "platform/SettingsStore.h"
#include "settings/SettingsCatalogue.h"

OptionsRecord OptionsRecord::load(const SettingsStore& store)
{
    const auto text = [&](const char* key) {
        return readSetting(store, Settings::kOptions, QString::fromLatin1(key));
    };
    const auto flag = [&](const char* key) {
        const QString k = QString::fromLatin1(key);
        return SettingsStore::toBool(
            readSetting(store, Settings::kOptions, k),
            SettingsStore::toBool(settingDefault(Settings::kOptions, k), false));
    };
    const auto number = [&](const QString& key) {
        return readSetting(store, Settings::kOptions, key).trimmed().toInt();
    };

    OptionsRecord r;
    r.ftpUserid = text("FTPUserid");
    r.ftpPassword = text("FTPPassword");
    r.remoteHost = text("RemoteHost");
    r.remotePort = text("RemotePort");
    r.imageLoc = text("ImageLoc");
    r.auctionDir = text("AuctionDir");
    r.uploadRelative = flag("UploadRelative");
    r.overwrite = flag("Overwrite");
    // A size or quality that is no number, or out of reach, falls back to its default.
    const auto within = [&](const QString& key, int low, int high, int fallback) {
        bool ok = false;
        const int value = readSetting(store, Settings::kOptions, key).trimmed().toInt(&ok);
        return ok && value >= low && value <= high ? value : fallback;
    };
    r.resizeForWeb = readResizeForWeb(store);
    r.resizeLongestSide = within(QStringLiteral("ResizeLongestSide"), kMinLongestSide,
                                 kMaxLongestSide, kDefaultLongestSide);
    r.resizeJpegQuality = within(QStringLiteral("ResizeJpegQuality"), 1, 100, kDefaultJpegQuality);
    r.remoteSmtpHost = text("RemoteSMTPHost");
    r.remoteSmtpPort = text("RemoteSMTPPort");
    r.smtpSecurity = text("SMTPSecurity");
    r.smtpUser = text("SMTPUser");
    r.smtpPassword = text("SMTPPassword");

    r.userEmail = text("UserEmail");
    r.ebayPassword = text("eBayPassword");
    r.location = text("Location");
    r.region = text("Region");
    r.regionNum = text("RegionNum");
    r.country = text("Country");
    r.countryNum = text("CountryNum");
    r.feedback = text("Feedback");
    for (int k = 0; k < 9; ++k)
        r.paymentOpt[k] = number(QStringLiteral("PaymentOpt %1").arg(k + 1));
    for (int k = 0; k < 4; ++k)
        r.shippingOpt[k] = number(QStringLiteral("ShippingOpt %1").arg(k + 1));
    r.shipInternationally = flag("ShipInternationally");

    r.sendFrom = text("SendFrom");
    r.defaultCc = text("DefaultCC");
    r.payMsg = text("PayMsg");
    r.recdMsg = text("RecdMsg");
    r.closing = text("Closing");
    r.signature = text("Signature");
    for (int k = 0; k < 4; ++k)
        r.sendAddress[k] =
            readSetting(store, Settings::kOptions, QStringLiteral("SendAddress%1").arg(k));

    r.listingBgColor = text("ListingBgColor");
    r.listingTextColor = text("ListingTextColor");
    r.listingTitleColor = text("ListingTitleColor");
    r.listingSubTitleColor = text("ListingSubTitleColor");
    r.listingNoReserveColor = text("ListingNoReserveColor");
    r.listingShippingColor = text("ListingShippingColor");
    r.payOptions = text("PayOptions");
    r.subHeading = text("SubHeading");
    r.taxMsg = text("TaxMsg");
    r.reserve = number(QStringLiteral("Reserve"));

    r.ebayStartPage = text("EbayStartPage");
    r.ebayLeaveFeedback = text("EbayLeaveFeedback");
    r.ebayViewFeedback = text("EbayViewFeedback");
    r.ebaySellerReport = text("EbaySellerReport");
    r.ebayListing = text("EbayListing");
    r.homePage = text("HomePage");
    r.pastDays = number(QStringLiteral("PastDays"));
    r.retrieveEveryTime = flag("RetrieveEveryTime");
    r.newCat = flag("NewCat");
    r.useProxy = number(QStringLiteral("UseProxy"));
    r.proxyServer = text("ProxyServer");
    r.proxyPort = text("ProxyPort");
    r.daylightDiff = number(QStringLiteral("DaylightDiff"));
    return r;
}
