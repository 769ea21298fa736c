#pragma once

#include "platform/Money.h"

#include <QDate>
#include <QHash>
#include <QLocale>
#include <QString>

#include <optional>

// The invoice and the packing slip: an HTML template from the application folder with
// {{Name}} placeholders, filled from the item's buyer record and the seller's address.
enum class PaperKind
{
    Invoice,
    PackingSlip
};

// "Invoice.htm" or "PackingSlip.htm", in the application folder.
QString paperTemplateName(PaperKind kind);
// "Invoice" or "Packing Slip": window captions and file names.
QString paperTitle(PaperKind kind);

struct PaperworkData
{
    QString sellerAddress[4]; // SendAddress0 to SendAddress3
    QString buyerName, buyerEmail, buyerPhone;
    QString street[3];
    QString city, state, zip;
    QString itemNumber, description, trackingNumber;
    QDate date;
    Money price, shipping, insurance;
};

// Every placeholder's text, ready to stand in HTML: values are escaped, address lines are
// joined by <br> with empty lines left out, money is in the locale's currency form and Total
// is the exact sum of price, shipping and insurance.
QHash<QString, QString> paperworkValues(const PaperworkData& data,
                                        const QLocale& locale = QLocale());

// The template with each known {{Name}} replaced; an unknown name stays as written, so a
// mistyped placeholder shows on the page instead of vanishing.
QString fillPaperwork(const QString& html, const QHash<QString, QString>& values);

// The template file's text (UTF-8, or Windows-1252 when it is not UTF-8). On failure returns
// nothing and sets `why` to the system's reason.
std::optional<QString> readPaperTemplate(const QString& path, QString& why);
