#pragma once

#include <QString>

// Builds the search requests of the find dialog. The user's text is placed as typed (a quote in
// it makes the criteria unusable, which the item window reports).
namespace FindCriteria {

QString byShortDescription(const QString& description);
// The text search: eBay number, description (anywhere in either description column), buyer
// e-mail and buyer name, each only when filled in, joined by "And ". Empty when none is filled.
QString textSearch(const QString& ebayId, const QString& description, const QString& buyerEmail,
                   const QString& buyerName);

} // namespace FindCriteria
