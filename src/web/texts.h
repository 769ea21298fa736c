#pragma once

#include <QString>

// The texts the auction-site commands show, as the seller has always read them.
namespace WebTexts {

inline const QString kMissingInformationTitle = QStringLiteral("Missing Information");
inline const QString kUserIdRequired = QStringLiteral(
    "Your eBay/Email address is required before viewing this report. Please supply on the "
    "Options panel under the Automated Entry tab.");
inline const QString kOutdatedReportTitle = QStringLiteral("Outdated Web Page Location");
inline const QString kOutdatedReport = QStringLiteral(
    "Version 2.1.4 and later requires an update to the Web Page Location for eBay Sellers "
    "Report.  You have not updated that setting on the Options panel.  Please go there now and "
    "read about how to update this setting.");
// The report address must ask for the bidders' e-mail addresses.
inline const QString kReportWithEmails = QStringLiteral("WithEmails");

// The page every command leaves for the browser, in the application folder.
inline const QString kShownPage = QStringLiteral("temp.htm");

inline const QString kSaveFailedTitle = QStringLiteral("Error");
inline QString pageNotWritten(const QString& path)
{
    return QLatin1String("The page could not be written to ") + path +
           QLatin1String(", so it was not opened.");
}
inline QString updateFailed(const QString& why)
{
    return QLatin1String("Not all the values read from the auction site could be stored in "
                         "tb2.mdb; the items from the first one that failed on keep their "
                         "earlier values.\n\n") +
           why;
}

} // namespace WebTexts

// The page download window's status lines and agent string.
namespace LoadPageTexts {
inline const QString kUsingProxy = QStringLiteral("Using Proxy ");
inline const QString kUsingProxyEnd = QStringLiteral("...");
inline const QString kAttempting = QStringLiteral("Attempting to make connection, please wait...");
inline const QString kConnecting = QStringLiteral("Connecting to page...");
inline const QString kRetrieving = QStringLiteral("Retrieving page.... ( bytes read ");
inline const QString kDone = QStringLiteral("Done.");
inline const QString kDisconnected = QStringLiteral("Disconnected.");
inline const QString kCancelled = QStringLiteral("Connection cancelled...");
inline const QString kAborting = QStringLiteral("Aborting connection...");
inline const QString kAgent = QStringLiteral("Mozilla/4.0");
} // namespace LoadPageTexts
