#include "web/StartForm.h"

#include "listing/ListingGenerator.h"
#include "platform/TextRoutines.h"

namespace {

// The form's check boxes for the payment and shipping keys 1..8 and 1..3; the ninth payment key
// and the fourth shipping key are the "see description" boxes, handled apart.
const char* const kPaymentFields[8] = {
    "moneyOrderAccepted",     "paymentCOD",   "personalChecksAccepted", "onlineEscrow",
    "visaMasterCardAccepted", "amExAccepted", "discoverAccepted",       "otherAccepted"};
const char* const kShippingFields[3] = {"sellerPaysShipping", "buyerPaysShippingActual",
                                        "buyerPaysShippingFixed"};

const QString kNoRegion = QStringLiteral("DO NOT LIST REGIONALLY");

QString quoted(const QString& text)
{
    return u'"' + text + u'"';
}

// Leading and trailing blanks only, as the region setting has always been compared.
QString trimBlanks(const QString& text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && text.at(start) == u' ')
        ++start;
    while (end > start && text.at(end - 1) == u' ')
        --end;
    return text.mid(start, end - start);
}

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// An option key selects its box when it reads as exactly 1.
bool selects(const QString& key)
{
    return leadingNumber(key) == 1;
}

// A region or country entry of the form: its value and the caption that follows.
QString option(const QString& number, const QString& name, bool selected)
{
    return (selected ? QStringLiteral("<OPTION SELECTED VALUE=")
                     : QStringLiteral("<OPTION VALUE=")) +
           quoted(number) + u'>' + name;
}

} // namespace

QString siteLogoPictureAddress()
{
    return QStringLiteral("HTTP://pics.ebay.com/aw/pics/logo_lower_tb.gif");
}

QString startFormTitle(const QString& shortDescription)
{
    return listingItemText(shortDescription);
}

double leadingNumber(const QString& text)
{
    QString compact;
    compact.reserve(text.size());
    for (const QChar c : text) {
        if (c != u' ' && c != u'\t' && c != u'\n')
            compact += c;
    }

    // Gathered into plain C-locale text: sign, whole digits, decimals, exponent.
    QString number;
    qsizetype i = 0;
    const auto takeSign = [&] {
        if (i < compact.size() && (compact.at(i) == u'+' || compact.at(i) == u'-'))
            number += compact.at(i++);
    };
    const auto takeDigits = [&] {
        const qsizetype from = i;
        while (i < compact.size() && isAsciiDigit(compact.at(i)))
            number += compact.at(i++);
        return i > from;
    };
    takeSign();
    bool anyDigit = takeDigits();
    if (i < compact.size() && compact.at(i) == u'.') {
        number += compact.at(i++);
        anyDigit = takeDigits() || anyDigit;
    }
    if (!anyDigit)
        return 0;
    if (i < compact.size() && QStringLiteral("EeDd").contains(compact.at(i))) {
        const QString mantissa = number;
        number += u'e';
        ++i;
        takeSign();
        if (!takeDigits())
            number = mantissa; // "1e" and "1e+" read as 1
    }
    bool ok = false;
    const double value = number.toDouble(&ok);
    return ok ? value : 0;
}

QString FillStartForm(const QString& page, const StartFormValues& v)
{
    QString text = page;
    const auto replace = [&text](const QString& find, const QString& replacement) {
        text = ReplaceFirst(text, find, replacement);
    };

    // Sign-in, title and location.
    replace(QStringLiteral(R"(<input type="text" name="userid" size="24" maxlength=64>)"),
            QStringLiteral(R"(<input type="text" name="userid" size="24" maxlength=64 value=)") +
                quoted(v.userEmail) + u'>');
    replace(QStringLiteral(R"(<input type="password" name="pass" size="20" maxlength=64>)"),
            QStringLiteral(R"(<input type="password" name="pass" size="20" maxlength=64 value=)") +
                quoted(v.ebayPassword) + u'>');
    replace(QStringLiteral(R"(<input type="text" name="title" size=45 maxlength=45>)"),
            QStringLiteral(R"(<input type="text" name="title" size=45 maxlength=45 value=)") +
                quoted(startFormTitle(v.shortDescription)) + u'>');
    // The site's own maxlength value follows the replaced piece and stays.
    replace(QStringLiteral(R"(<input type="text" name="location" size=45 maxlength=)"),
            QStringLiteral(R"(<input type="text" name="location" size=45 value=)") +
                quoted(v.location) + QStringLiteral(" maxlength="));

    // Region: the site's preselected entry is dropped, then the seller's region is looked for as
    // stored and, failing that, without its surrounding blanks; "do not list regionally" in any
    // letter case selects the site's option 0.
    replace(QStringLiteral(R"(<SELECT NAME="zip"><OPTION SELECTED VALUE="-1">)"),
            QStringLiteral(R"(<SELECT NAME="zip"><OPTION VALUE="-1">)"));
    replace(option(v.regionNum, v.region, false), option(v.regionNum, v.region, true));
    const QString region = trimBlanks(v.region);
    if (region.toUpper() != kNoRegion)
        replace(option(v.regionNum, region, false), option(v.regionNum, region, true));
    else
        replace(QStringLiteral(R"(<OPTION VALUE="0">Do not list regionally)"),
                QStringLiteral(R"(<OPTION SELECTED VALUE="0">Do not list regionally)"));

    replace(QStringLiteral(R"(<OPTION SELECTED VALUE="1">United States)"),
            QStringLiteral(R"(<OPTION VALUE="1">United States)"));
    replace(option(v.countryNum, v.country, false), option(v.countryNum, v.country, true));

    replace(QStringLiteral(R"(<textarea name="desc" cols="56" rows="8"></textarea>)"),
            QStringLiteral(R"(<textarea name="desc" cols="56" rows="8">)") + v.listingHtml +
                QStringLiteral("</textarea>"));

    // The form has two empty picture fields: the first takes the site's logo, the second the
    // item's first picture that has a web address.
    const bool hasPicture = !trimBlanks(v.picturePaths[0]).isEmpty() ||
                            !trimBlanks(v.picturePaths[1]).isEmpty() ||
                            !trimBlanks(v.picturePaths[2]).isEmpty();
    if (hasPicture) {
        QString picture = QStringLiteral("http://");
        for (int i = 2; i >= 0; --i) {
            if (!v.pictureAddresses[i].isEmpty())
                picture = v.pictureAddresses[i];
        }
        const QString emptyPicture = QStringLiteral(R"(value="http://">)");
        replace(emptyPicture, QStringLiteral("value=") + quoted(siteLogoPictureAddress()) + u'>');
        replace(emptyPicture, QStringLiteral("value=") + quoted(picture) + u'>');
    }

    if (leadingNumber(v.reserve) > 0)
        replace(QStringLiteral(R"(<input type="text" name="reserve" size=13 maxlength=11>)"),
                QStringLiteral(R"(<input type="text" name="reserve" size=13 maxlength=11 value=)") +
                    quoted(v.reserve) + u'>');
    // The rest of the site's tag follows the replaced piece.
    replace(QStringLiteral(R"(<input type="text" name="startprice" size=11)"),
            QStringLiteral(R"(<input type="text" name="startprice" size=11 value=)") +
                quoted(v.minBid));

    // Length: the form preselects 7 days; any other length than 3, 5 or 10 leaves it so.
    if (v.length == QLatin1String("3") || v.length == QLatin1String("5") ||
        v.length == QLatin1String("10")) {
        replace(QStringLiteral("<option value=%1>%1").arg(v.length),
                QStringLiteral("<option value=\"%1\" selected>%1").arg(v.length));
        replace(QStringLiteral("<option value=7 selected>7"),
                QStringLiteral(R"(<option value="7">7)"));
    }

    for (int k = 0; k < 8; ++k) {
        if (selects(v.paymentOpt[k])) {
            const QString field =
                QStringLiteral("name=") + quoted(QLatin1String(kPaymentFields[k]));
            replace(field, field + QStringLiteral(" checked"));
        }
    }
    if (leadingNumber(v.paymentOpt[8]) == 0)
        replace(QStringLiteral(R"(name="paymentSeeDescription" checked value="on")"),
                QStringLiteral(R"(name="paymentSeeDescription" value="on")"));
    for (int k = 0; k < 3; ++k) {
        if (selects(v.shippingOpt[k])) {
            const QString field =
                QStringLiteral("name=") + quoted(QLatin1String(kShippingFields[k]));
            replace(field, field + QStringLiteral(" checked"));
        }
    }
    // These two replacements end in a blank.
    if (leadingNumber(v.shippingOpt[3]) == 0)
        replace(QStringLiteral(R"(name="shippingSeeDescription" checked value="on")"),
                QStringLiteral(R"(name="shippingSeeDescription" value="on" )"));
    if (v.shipInternationally) {
        replace(QStringLiteral(R"(name="shippingInternationally" checked value="off")"),
                QStringLiteral(R"(name="shippingInternationally" value="off" )"));
        replace(QStringLiteral(R"(name="shippingInternationally" value="on")"),
                QStringLiteral(R"(name="shippingInternationally" value="on" checked)"));
    }
    return text;
}
