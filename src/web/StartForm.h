#pragma once

#include <QString>

// Everything the auction site's start-auction form is filled with.
struct StartFormValues
{
    // Settings, as text read from the store (numbers are compared as numbers inside).
    QString userEmail, ebayPassword, location, region, regionNum, country, countryNum;
    QString paymentOpt[9];  // keys "PaymentOpt 1".."PaymentOpt 9"
    QString shippingOpt[4]; // keys "ShippingOpt 1".."ShippingOpt 4"
    bool shipInternationally = false;

    // The item, as the item window's boxes show it.
    QString shortDescription;    // txtFields 3, before the title conversion
    QString picturePaths[3];     // txtFields 5, 6, 7 as typed
    QString pictureAddresses[3]; // the web addresses the listing keeps for pictures 1..3
    QString reserve, minBid;     // txtFields 8, 9
    QString length;              // comboLength text
    QString listingHtml;         // the generated advertisement (escaped)
};

// The auction site's small logo picture, placed in the form's first picture field.
QString siteLogoPictureAddress();

// Fills the site's own form by replacing fixed pieces of its HTML, each at its first occurrence
// and in a fixed order; a piece the page lacks leaves that field as the site sent it. Values go
// in as they are, without escaping. Returns the filled page.
QString FillStartForm(const QString& page, const StartFormValues& values);

// The title field's text: the short description as the listing places it.
QString startFormTitle(const QString& shortDescription);

// A number read the way the item's boxes and the option keys have always been read: blanks, tabs
// and line feeds are skipped, then the longest leading number (sign, digits, one decimal point,
// exponent) is taken, so " 1", "1.0" and "12abc" read as 1, 1 and 12; text without one reads as 0.
double leadingNumber(const QString& text);
