#pragma once

#include <QString>
#include <QStringList>

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

// Backups of tb2.mdb (File menu and start-up).
inline const QString kBackUpNowMenu = QStringLiteral("Back Up Now\u2026");
inline const QString kRestoreBackupMenu = QStringLiteral("Restore from Backup\u2026");
inline const QString kBackupTitle = QStringLiteral("Back Up Now");
inline const QString kRestoreTitle = QStringLiteral("Restore from Backup");
inline const QString kBackupFilter =
    QStringLiteral("Tallybid Databases (*.mdb)|*.mdb|All Files (*.*)|*.*");
inline const QString kBackingUp = QStringLiteral("Backing up your items\u2026");
inline const QString kRestoring = QStringLiteral("Restoring your items\u2026");
inline const QString kBackupIsLive =
    QStringLiteral("That file is the database Tallybid is using. Please choose another name.");
inline QString backupMade(const QString& path)
{
    return QStringLiteral("Your items were backed up to\n%1").arg(path);
}
inline QString backupFailed(const QString& reason)
{
    return QStringLiteral("The backup could not be made: %1\n\nYour items are unchanged.")
        .arg(reason);
}
inline QString startupBackupFailed(const QString& folder, const QString& reason)
{
    return QStringLiteral("Tallybid could not back up your items into %1: %2\n\nYour items are "
                          "unchanged; Tallybid tries again at its next start.")
        .arg(folder, reason);
}
inline QString restoreAsk(const QString& path, qint64 count, const QString& folder)
{
    return QStringLiteral("Replace all your items with the %1 items of\n%2?\n\nThe items you "
                          "have now are backed up first into %3.")
        .arg(count)
        .arg(path, folder);
}
inline QString restoreRefused(const QString& problem)
{
    return problem + QStringLiteral("\n\nNothing was restored; your items are unchanged.");
}
inline QString restoreDone(qint64 count, const QString& safetyCopy)
{
    return QStringLiteral("%1 items were restored. The items you had before are in\n%2")
        .arg(count)
        .arg(safetyCopy);
}

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

// CSV import and export of items (File menu).
inline const QString kExportItemsMenu = QStringLiteral("Export Items\u2026");
inline const QString kImportItemsMenu = QStringLiteral("Import Items\u2026");
inline const QString kExportTitle = QStringLiteral("Export Items");
inline const QString kImportTitle = QStringLiteral("Import Items");
inline const QString kCsvFilter =
    QStringLiteral("CSV Files (*.csv)|*.csv|Text Files (*.txt)|*.txt|All Files (*.*)|*.*");
inline const QString kExporting = QStringLiteral("Exporting your items\u2026");
inline const QString kImporting = QStringLiteral("Importing items\u2026");
inline const QString kImportButton = QStringLiteral("&Import");
inline const QString kPreviewCaption = QStringLiteral("First rows of the file:");
inline const QString kProblemsCaption = QStringLiteral("Rows that cannot be read (skipped):");
inline QString exportDone(qsizetype count, const QString& path)
{
    return QStringLiteral("%1 item(s) were exported to\n%2").arg(count).arg(path);
}
inline QString exportFailed(const QString& reason)
{
    return QStringLiteral("The items could not be exported: %1").arg(reason);
}
inline QString importRefused(const QString& reason)
{
    return QStringLiteral("This file cannot be imported. %1").arg(reason);
}
inline QString importSummary(const QString& file, int good, int bad)
{
    return QStringLiteral("%1: %2 row(s) can be imported as new items, %3 cannot be read and "
                          "will be skipped.")
        .arg(file)
        .arg(good)
        .arg(bad);
}
inline QString importUnknown(const QStringList& columns)
{
    return QStringLiteral("Columns not in the item table, skipped: %1")
        .arg(columns.join(QStringLiteral(", ")));
}
inline QString importDone(qsizetype added, int skipped)
{
    return QStringLiteral("%1 item(s) were added, %2 row(s) were skipped.").arg(added).arg(skipped);
}
inline QString importFailed(const QString& reason)
{
    return QStringLiteral("The items could not be imported: %1\n\nNothing was added.").arg(reason);
}

} // namespace Texts
