#pragma once

#include <QString>

// Every text the item window, the find dialog and start-up show, exactly as the user sees it.
namespace Texts {

inline const QString kDbMissing = QStringLiteral(
    "Tallybid could not find the tb2.mdb file in the same directory as the Talbid2.exe file.  "
    "Make sure you have placed the new Talbid2.exe file in the Tallybid directory with your "
    "database file (tb2.mdb).");
inline const QString kErrorTitle = QStringLiteral("Error");
inline const QString kAlreadyRunning =
    QStringLiteral("A copy of Tallybid is already running.  Please use the other copy.");

inline const QString kCaptionAll = QStringLiteral("Tallybid - Viewing All Auctions...");
inline const QString kCaptionActive = QStringLiteral("Tallybid - Viewing all Active Auctions...");
inline const QString kCaptionInactive =
    QStringLiteral("Tallybid - Viewing all Inactive Auctions...");

inline const QString kDeleteAsk = QStringLiteral(
    "You are about to delete the current auction.  You will not be able to get it back. \n\n"
    "Click OK to continue, or Cancel to Abort");
inline const QString kDeleteTitle = QStringLiteral("Deleting Auction");
inline const QString kDeleteLast = QStringLiteral("You cannot delete the last item.");

inline const QString kEbayIdDigits = QStringLiteral(
    "eBayID's can only have numbers in them. This field should be filled with the unique number "
    "eBay assigns your auction.");
inline const QString kEbayIdTitle = QStringLiteral("Invalid Userid");
inline const QString kImageTooLarge = QStringLiteral(
    "The image you have chosen is very large.  It will not look good in your listing, and will "
    "slow performance of Tallybid when editing this auction.  You should remove the image and "
    "replace it with a smaller one.");
inline const QString kImageTooLargeTitle = QStringLiteral("Image too large");
inline QString cantFindPicture(const QString& path)
{
    return QLatin1String("Can't find file: ") + path +
           QLatin1String("\n\nYou cannot put the URL to a file on the internet here.  TB assumes "
                         "it will be uploading the image, so it expects the\npath to an image on "
                         "the hard drive in this box.  Please re-enter a valid path to an image on "
                         "your hard drive.");
}
// The pictures a phone or a web page gives (PNG, WebP) are one choice away from the first list.
inline const QString kPictureFilter = QStringLiteral(
    "Internet Image Files (*.gif; *.jpg; *.jpeg)|*.gif; *.jpg; *.jpeg;|All Pictures (*.gif; "
    "*.jpg; *.jpeg; *.png; *.webp)|*.gif; *.jpg; *.jpeg; *.png; *.webp;|All Files (*.*)|*.*");
inline const QString kInvalidPictureTitle = QStringLiteral("Invalid picture");
inline const QString kInvalidDateTitle = QStringLiteral("Invalid Date");

inline const QString kItemSearch = QStringLiteral("ITEM SEARCH");
inline const QString kFindCaption = QStringLiteral("Find an Item");
inline const QString kMissingItemNumber =
    QStringLiteral("You must select an Item Number first.  Aborting.");
inline const QString kMissingItemNumberTitle = QStringLiteral("Missing Item Number");
inline const QString kMissingShortDesc =
    QStringLiteral("You must select a Short Description first.  Aborting.");
inline const QString kMissingShortDescTitle = QStringLiteral("Missing Short Description");
inline const QString kFindFailedTitle = QStringLiteral("Find");
inline QString findFailed(const QString& why)
{
    return QLatin1String("The search could not be run, so the current item stays shown.\n\n"
                         "Check the texts you typed for a stray quote (') and try again.\n\n"
                         "Details: ") +
           why;
}

inline QString pulsewatchMissing(const QString& folder)
{
    return QLatin1String("Can't find Pulsewatch at ") + folder +
           QLatin1String("/Pulsewatch.  Aborting.");
}
inline const QString kSaveFailedTitle = QStringLiteral("Error");
inline QString saveFailed(const QString& why)
{
    return QLatin1String("The item could not be saved to tb2.mdb.\n\n") + why;
}

} // namespace Texts
