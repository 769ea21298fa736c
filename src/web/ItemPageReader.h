#pragma once

#include "platform/Money.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QString>

// What one reading of the auction site's item page found.
struct ItemPageValues
{
    bool invalid = false, closed = false;
    QString itemNumber, title, category, highBidText;
    Money price;
    int bidCount = 0;
    QDateTime started, ends; // already in local time (invalid item: noon of the zero date)
};

// Noon of day zero (30 December 1899): the start and end stored for an item the site does not
// know.
QDateTime zeroDateNoon();

// Reads the item page by its fixed markers. For a valid item `page` is shortened to the text
// after the title marker, which is what the user is then shown; an invalid item leaves it as it
// was and takes the item number from the window (windowEbayId). Dates are moved from the site's
// Pacific clock to local time with the bias and the daylight switch.
ItemPageValues ReadItemPage(QString& page, const QString& windowEbayId, int bias, int daylightDiff);

// Stores what the page showed in the item's row(s), matched by eBay number: price, check time,
// dates and category, and for an ended item (closed or invalid) the sale price as well. A date
// the page did not give leaves the stored one alone. A value that cannot stand between the
// statement's quotes (an apostrophe in the item number, a double quote in the category) keeps
// that statement from running. Returns false only when the database fails.
bool applyItemPage(QSqlDatabase db, const ItemPageValues& values, const QDateTime& now);
