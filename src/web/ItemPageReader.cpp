#include "web/ItemPageReader.h"

#include "platform/DateText.h"
#include "platform/TextRoutines.h"
#include "web/PageCursor.h"

#include <QSqlQuery>
#include <QVariant>

namespace {

// The item page's fixed markers, as the site writes them.
constexpr QStringView kClosedMarker = u"Bidding is closed for this item";
constexpr QStringView kInvalidMarker = u"<TITLE>eBay - Invalid";
constexpr QStringView kTitleMarker = u"<TITLE>eBay item ";
constexpr QStringView kDutchBidders = u"click here for Dutch Auction bidders";

// The text up to the marker; "" when the marker is missing, as the value was before.
QString take(const PageCursor& cursor, QStringView marker)
{
    return cursor.takeUpTo(marker).value_or(QStringView()).toString();
}

// A Started or Ends cell: the Pacific time up to the zone suffix ("PST", "PDT"), moved to the
// local clock; unset when the cell holds no date.
QDateTime readAuctionTime(PageCursor& cursor, QStringView label, int bias, int daylightDiff)
{
    cursor.cutAfter(label);
    cursor.cutAfter(u"<td width=\"36%\">");
    cursor.cutAfter(u"<");
    cursor.cutAfter(u">");
    const QString text = take(cursor, u"P");
    if (text.isEmpty())
        return {};
    // Only the first comma goes, as it always did; a second one is left for the date reading.
    return readPacificTime(ReplaceFirst(text, QStringLiteral(","), QString()), bias, daylightDiff);
}

QString readHighBid(PageCursor& cursor, int bidCount)
{
    cursor.cutAfter(u"High bid");
    cursor.cutAfter(u"<td width=\"89%\">");
    cursor.cutAfter(u"<");
    cursor.cutAfter(u">");
    if (cursor.startsWith(u"<b>"))
        cursor.drop(3);
    if (cursor.startsWith(u"<a "))
        cursor.cutAfter(u">");
    const QString text = take(cursor, u"<");
    if (text == kDutchBidders)
        return QString::number(bidCount) + QLatin1String(" Dutch bids.");
    if (text.isEmpty())
        return QStringLiteral("No Bids");
    return text;
}

QVariant storedDate(const QDateTime& value)
{
    return value.isValid() ? QVariant(DateText::toStorage(value))
                           : QVariant(QMetaType::fromType<QString>());
}

} // namespace

QDateTime zeroDateNoon()
{
    return wallClock(QDate(1899, 12, 30), QTime(12, 0));
}

ItemPageValues ReadItemPage(QString& page, const QString& windowEbayId, int bias, int daylightDiff)
{
    ItemPageValues v;
    v.closed = page.contains(kClosedMarker);
    if (page.contains(kInvalidMarker)) {
        v.invalid = true;
        v.itemNumber = windowEbayId;
        v.started = v.ends = zeroDateNoon();
        return v;
    }

    const QString whole = page; // the cursor reads this while `page` is shortened
    PageCursor cursor(whole);
    cursor.cutAfter(kTitleMarker);
    page = cursor.rest().toString();

    v.itemNumber = take(cursor, u" ");
    cursor.cutAfter(u" - ");
    v.title = take(cursor, u"<");
    cursor.cutAfter(u"<");
    cursor.cutAfter(u"><a href");
    cursor.cutAfter(u">");
    v.category = take(cursor, u"<");

    cursor.cutAfter(u"<td width=\"36%\"");
    cursor.cutAfter(u"<b>$");
    v.price = readSiteMoney(take(cursor, u"<")).value_or(Money());

    cursor.cutAfter(u"# of bids</font></td>");
    cursor.cutAfter(u"<td width=\"40%\"><b>");
    cursor.cutAfter(u"<");
    cursor.cutAfter(u">");
    bool isNumber = false;
    const int bids = take(cursor, u"<").trimmed().toInt(&isNumber);
    if (isNumber)
        v.bidCount = bids;

    v.started = readAuctionTime(cursor, u"Started", bias, daylightDiff);
    v.ends = readAuctionTime(cursor, u"Ends", bias, daylightDiff);
    v.highBidText = readHighBid(cursor, v.bidCount);
    return v;
}

bool applyItemPage(QSqlDatabase db, const ItemPageValues& v, const QDateTime& now)
{
    // The number stands between apostrophes in the statement: with one inside, the statement
    // would have matched other rows or failed, so neither statement runs.
    if (v.itemNumber.contains(u'\''))
        return true;
    bool ok = true;
    // The category stands between double quotes and is not escaped: with one inside the
    // statement fails, and the reader goes on to the sale price regardless.
    if (!v.category.contains(u'"')) {
        QSqlQuery update(db);
        update.prepare(
            QStringLiteral("UPDATE Items SET LastPrice = ?, LastChecked = ?, "
                           "DateAuctionEnds = COALESCE(?, DateAuctionEnds), "
                           "DateAuctionStarted = COALESCE(?, DateAuctionStarted), Category = ? "
                           "WHERE EbayID = ?"));
        update.addBindValue(v.price.units());
        update.addBindValue(DateText::toStorage(now.toLocalTime()));
        update.addBindValue(storedDate(v.ends));
        update.addBindValue(storedDate(v.started));
        update.addBindValue(v.category);
        update.addBindValue(v.itemNumber);
        ok = update.exec();
    }
    if (v.invalid || v.closed) {
        QSqlQuery sale(db);
        sale.prepare(QStringLiteral("UPDATE Items SET SalePrice = ? WHERE EbayID = ?"));
        sale.addBindValue(v.price.units());
        sale.addBindValue(v.itemNumber);
        ok = sale.exec() && ok;
    }
    return ok;
}
