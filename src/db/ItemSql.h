#pragma once

#include <QString>

// The record sources and criteria texts the item windows use, in the Jet dialect that
// RecordSet carries over to SQLite.
namespace ItemSql {

inline const QString kAllView = QStringLiteral("Select * from Items Order by ID");
inline const QString kInactiveView = QStringLiteral("Select * from ClosedItems Order by ID");
inline const QString kActiveView = QStringLiteral(
    "SELECT Items.ID, Items.EbayID, Items.Category, "
    "Items.ShortDescription, Items.Description, Items.Picture1Path, "
    "Items.Picture2Path , Items.Picture3Path, Items.Reserve, Items.MinBid, "
    "Items.Cost , Items.SalePrice, Items.DateAuctionStarted, "
    "Items.DateAuctionEnds, Items.DateBuyerContacted, Items.DateBuyerResponded, "
    "Items.BuyerEmail, Items.BuyerName, Items.BuyerStreet1, Items.BuyerStreet2, "
    "Items.BuyerStreet3, Items.BuyerCity, Items.BuyerState, Items.BuyerZip, "
    "Items.BuyerPhone, Items.DatePaymentRecd, Items.DatePaymentClrd, "
    "Items.DateItemShipped, Items.ShippingCost, Items.InsuranceCost, Items.Active, "
    "Items.LastPrice, Items.LastChecked From Items WHERE (((Items.Active)=Yes)) ORDER BY ID;");
inline const QString kItemsTable = QStringLiteral("Items");

inline QString byEbayId(const QString& ebayId)
{
    return QLatin1String("EbayID = '") + ebayId + u'\'';
}
inline QString byKey(qint64 id)
{
    return QLatin1String("ID = ") + QString::number(id);
}
inline QString byTitle(const QString& title)
{
    return QLatin1String("ShortDescription LIKE '") + title + u'\'';
}

} // namespace ItemSql
