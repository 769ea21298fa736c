#pragma once

#include <QString>
#include <QStringList>

class SettingsStore;

// The application-wide copy of the "Options" settings: loaded when the item window opens and
// refreshed when the Options dialog applies. Parts that must see a change at once read the store.
struct OptionsRecord
{
    // connection and upload
    QString ftpUserid, ftpPassword, remoteHost, remotePort, imageLoc, auctionDir;
    bool uploadRelative = true;
    bool overwrite = false;
    // pictures sent smaller and upright (item pictures only)
    static constexpr int kDefaultLongestSide = 1600, kMinLongestSide = 100, kMaxLongestSide = 20000;
    static constexpr int kDefaultJpegQuality = 85;
    bool resizeForWeb = true;
    int resizeLongestSide = kDefaultLongestSide; // pixels
    int resizeJpegQuality = kDefaultJpegQuality; // 1..100
    QString remoteSmtpHost, remoteSmtpPort;
    QString smtpSecurity, smtpUser, smtpPassword; // empty: plain SMTP, no signing in
    // identity and automatic entry
    QString userEmail, ebayPassword, location, region, regionNum, country, countryNum, feedback;
    int paymentOpt[9] = {0, 0, 0, 0, 0, 0, 0, 0, 1};
    int shippingOpt[4] = {0, 0, 0, 1};
    bool shipInternationally = false;
    // e-mail notes
    QString sendFrom, defaultCc, payMsg, recdMsg, closing, signature;
    QString sendAddress[4];
    // listing appearance
    QString listingBgColor, listingTextColor, listingTitleColor, listingSubTitleColor,
        listingNoReserveColor, listingShippingColor, payOptions, subHeading, taxMsg;
    int reserve = 1;
    // eBay pages and web behaviour
    QString ebayStartPage, ebayLeaveFeedback, ebayViewFeedback, ebaySellerReport, ebayListing,
        homePage;
    int pastDays = 1;
    bool retrieveEveryTime = false;
    bool newCat = true;
    int useProxy = 0;
    QString proxyServer, proxyPort;
    int daylightDiff = 0;

    static OptionsRecord load(const SettingsStore& store);
};
