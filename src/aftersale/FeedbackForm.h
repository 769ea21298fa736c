#pragma once

#include <QString>

// What goes into the auction site's leave-feedback form.
struct FeedbackValues
{
    QString userEmail;    // the seller's user id (UserEmail)
    QString ebayPassword; // eBayPassword
    QString buyerEmail;   // the buyer's e-mail, field 16 of the ending-auction window
    QString ebayId;       // the item number, put in as it is
    QString comment;      // the Feedback setting
};

// The form page with its six plain field tags replaced, each at its first occurrence, by the
// tag carrying the value: user id and password without quotes, buyer, item and comment in
// single quotes, and the positive rating checked. Values other than the item number are
// HTML-escaped. Tags the page does not hold are left out.
QString fillFeedbackForm(const QString& page, const FeedbackValues& values);
