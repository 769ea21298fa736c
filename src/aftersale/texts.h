#pragma once

#include <QString>

// The texts of the after-sale windows and of the notes sent to buyers, exactly as the seller and
// the buyers have always read them (odd spellings and double blanks included). The captions and
// tooltips of the ending-auction window's own controls live in frmEndingAuction.ui.
namespace AfterSaleTexts {

// ---------------------------------------------------------------- checks before a note

inline const QString kMissingInformationTitle = QStringLiteral("Missing Information");
inline const QString kNoSmtpHost = QStringLiteral(
    "No Remote SMTP Host specified. Please provide in options panel under ISP Properties tab.");
inline const QString kNoSmtpPort = QStringLiteral(
    "No Remote SMTP Port specified. Please provide in options panel under ISP Properties tab.");
inline const QString kEmailRequired = QStringLiteral(
    "An email address is required before generating a note template. Please supply.");
inline const QString kSalePriceRequired = QStringLiteral(
    "A non zero sale price is required before generating a note template. Please supply.");
inline const QString kPaymentClearedRequired =
    QStringLiteral("The date payment cleared field must be filled in before shipping.");

// ---------------------------------------------------------------- the four notes

inline const QString kNoteKindWinning = QStringLiteral("WinningConfirmation");
inline const QString kNoteKindNoReserve = QStringLiteral("DidntMakeReserve");
inline const QString kNoteKindPayment = QStringLiteral("PaymentReceived");
inline const QString kNoteKindShipped = QStringLiteral("ItemShipped");

inline const QString kCaptionWinning = QStringLiteral("High Bidder Notification");
inline const QString kCaptionNoReserve = QStringLiteral("Didn't Make Reserve Notification");
inline const QString kCaptionPayment = QStringLiteral("Payment Received Notification");
inline const QString kCaptionShipped = QStringLiteral("Item Shipped Notification");

inline const QString kSubjectStart = QStringLiteral("eBay Item: ");
inline const QString kSubjectWinning = QStringLiteral(" - Confirmation of winning bid.");
inline const QString kSubjectNoReserve = QStringLiteral(" - Failed to make reserve.");
inline const QString kSubjectPayment = QStringLiteral(" - Payment Received for eBay Auction Item.");
inline const QString kSubjectShipped = QStringLiteral(" - Item shipped for eBay Auction.");

inline const QString kEbayIdLine = QStringLiteral("   Ebay ID: ");
inline const QString kDescriptionLine = QStringLiteral("   Description: ");
inline const QString kIndent = QStringLiteral("   ");

inline const QString kWinningHello = QStringLiteral("Congratulations ");
inline const QString kWinningHelloEnd = QStringLiteral(", ");
inline const QString kWinningIntro =
    QStringLiteral("You were the high bidder on my following Ebay Auction. ");
inline const QString kWinningBid = QStringLiteral("   Your bid: ");
inline const QString kWinningShipping = QStringLiteral("   Shipping: ");
inline const QString kWinningTotal = QStringLiteral("   Total: ");
inline const QString kInsuranceStart =
    QStringLiteral("If you would like it insured, please add an additional ");
inline const QString kInsuranceTotal = QStringLiteral(" for a total of $");
inline const QString kInsuranceEnd = QStringLiteral(".");

inline const QString kNoReserveHello = QStringLiteral("Dear ");
inline const QString kNoReserveHelloEnd = QStringLiteral(",");
inline const QString kNoReserveIntro =
    QStringLiteral("You were high bidder on the following item: ");
inline const QString kNoReserveFailed =
    QStringLiteral("but it failed to reach the reserve price. ");
inline const QString kNoReserveSorry =
    QStringLiteral("I'm very sorry, but I cannot sell the item below my reserve price.");

inline const QString kPaymentIntro =
    QStringLiteral("Payment has been received for the following item: ");

inline const QString kShippedIntro = QStringLiteral("The following item: ");
inline const QString kShippedTo = QStringLiteral("has been shipped to...");
inline const QString kShippedSoon = QStringLiteral("you should receive it shortly.");
inline const QString kShippedThanks = QStringLiteral("Thanks again!");

// ---------------------------------------------------------------- ending-auction window

// Tooltips of the toolbar buttons (the menu items carry the captions).
inline const QString kTipNotifyWinner = QStringLiteral("Notify the high bidder");
inline const QString kTipPaymentReceived = QStringLiteral("Tell the buyer the payment arrived");
inline const QString kTipItemShipped = QStringLiteral("Tell the buyer the item is on its way");
inline const QString kTipDidntMakeReserve =
    QStringLiteral("Tell the high bidder the reserve was not met");
inline const QString kTipFeedbackView = QStringLiteral("View the buyer's feedback");
inline const QString kTipFeedbackLeave = QStringLiteral("Leave feedback for the buyer");
inline const QString kTipAutoFill = QStringLiteral("AutoFill");
inline const QString kTipClose = QStringLiteral("Save and close");

// The page the feedback form is written to, in the application folder.
inline const QString kFeedbackPage = QStringLiteral("temp.htm");

inline const QString kSaveFailedTitle = QStringLiteral("Error");
inline QString saveFailed(const QString& why)
{
    return QLatin1String("The changes made in Ending an Auction could not be stored in tb2.mdb."
                         "\n\n") +
           why;
}

inline QString pageNotWritten(const QString& path)
{
    return QLatin1String("The feedback page could not be written to ") + path +
           QLatin1String(", so it was not opened.");
}

// The note window's and the clean-up dialog's own messages.
inline const QString kNoSendFrom =
    QStringLiteral("A Send From Email Address must be specified before sending messages.  Please "
                   "supply on the Options panel under the Email tab.");
inline const QString kNoRemoteHost =
    QStringLiteral("A Remote Host must be specified on the options screen before sending "
                   "messages. Message not sent.");
inline const QString kNoRemotePort =
    QStringLiteral("A Remote Port must be specified on the options screen before sending "
                   "messages. Message not sent.");

// ---------------------------------------------------------------- mail log and paperwork

inline const QString kMailLogTitle = QStringLiteral("Mail Log");
inline QString mailLogNotKept(const QString& why)
{
    return QLatin1String("The note was sent, but it could not be kept in the mail log in "
                         "tb2.mdb.\n\n") +
           why;
}
inline QString mailLogNotRead(const QString& why)
{
    return QLatin1String("The notes sent for this item could not be read from the mail log in "
                         "tb2.mdb.\n\n") +
           why;
}
inline const QString kSentNotesDate = QStringLiteral("Date");
inline const QString kSentNotesKind = QStringLiteral("Kind");
inline const QString kSentNotesSubject = QStringLiteral("Subject");
inline const QString kSentNoteCaption = QStringLiteral("Sent Note");

inline QString templateNotRead(const QString& path, const QString& why)
{
    return QLatin1String("The template ") + path + QLatin1String(" could not be read (") + why +
           QLatin1String(").\n\nPut the file back into the application folder and try again.");
}
inline QString notAnAmount(const QString& caption, const QString& text)
{
    return QLatin1String("The ") + caption + QLatin1String(" \"") + text +
           QLatin1String("\" is not an amount. Please correct it before printing.");
}
inline const QString kSavePdfTitle = QStringLiteral("Save as PDF");
inline const QString kPdfFilter = QStringLiteral("PDF Files (*.pdf)|*.pdf");
inline QString pdfNotWritten(const QString& path, const QString& why)
{
    return QLatin1String("The PDF file could not be written to ") + path + QLatin1String(".\n\n") +
           why;
}

} // namespace AfterSaleTexts
