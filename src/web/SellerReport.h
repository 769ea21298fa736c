#pragma once

#include "platform/Money.h"

#include <QDateTime>
#include <QList>
#include <QSqlDatabase>
#include <QString>

// One row of the seller report: an auction with its price, dates and high bidder.
struct ReportRow
{
    QString ItemNumber, Title, HighBidder;
    Money Price;
    QDateTime Started, Ends; // Started on the site's clock, Ends moved to local time
};

constexpr int kMaxReportRows = 5000;

// The text up to and including the first line feed; `text` keeps what follows it. Without a
// line feed the result is "" and `text` is left as it was.
QString TakeLine(QString& text);

// Reads the report table, at most kMaxReportRows lines, up to the first line that is not a row
// or the first row without an item number. A row whose start, end or price cannot be read is
// left out (it still counts as a line read).
QList<ReportRow> ReadSellerReport(const QString& page, int bias, int daylightDiff);

// The report's address: the report location, the user, the days of ended auctions to include,
// and the user and password again for the sign-in.
QString sellerReportAddress(const QString& ebaySellerReport, const QString& userEmail,
                            const QString& pastDays, const QString& ebayPassword);

// The buyer address as the report's statement stores it: apostrophes doubled by ReplaceAll and
// read back, so one apostrophe survives and with more only the last two segments remain.
QString storedBuyerEmail(const QString& highBidder);

struct ApplyResult
{
    bool ok = true;
    int statements = 0; // updates run (rows for items not in the table count too)
    QString error;
};

// Writes the rows into the items with their eBay numbers: price, check time and dates, and for
// auctions that ended before `now` the buyer's address and the sale price. A row whose number
// holds an apostrophe is not applied. A row that cannot be stored stops the report there; the
// rows before it stay applied.
ApplyResult ApplySellerReport(QSqlDatabase db, const QList<ReportRow>& rows, const QDateTime& now);
