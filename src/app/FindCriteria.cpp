#include "app/FindCriteria.h"

#include "db/ItemSql.h"

#include <QStringList>

namespace FindCriteria {

QString byShortDescription(const QString& description)
{
    return ItemSql::byTitle(description);
}

QString textSearch(const QString& ebayId, const QString& description, const QString& buyerEmail,
                   const QString& buyerName)
{
    QStringList conditions;
    if (!ebayId.trimmed().isEmpty())
        conditions << QLatin1String("EbayID LIKE '") + ebayId + QLatin1String("' ");
    if (!description.trimmed().isEmpty())
        conditions << QLatin1String("(([ShortDescription] LIKE \"*") + description +
                          QLatin1String("*\") OR ([Description] LIKE \"*") + description +
                          QLatin1String("*\")) ");
    if (!buyerEmail.trimmed().isEmpty())
        conditions << QLatin1String("BuyerEmail LIKE '") + buyerEmail + QLatin1String("' ");
    if (!buyerName.trimmed().isEmpty())
        conditions << QLatin1String("BuyerName LIKE '") + buyerName + QLatin1String("' ");
    return conditions.join(QLatin1String("And "));
}

} // namespace FindCriteria
