#include "db/ItemColumns.h"

#include "platform/DateText.h"
#include "platform/Money.h"

#include <QHash>
#include <QLocale>
#include <QVariant>

#include <cmath>
#include <optional>

namespace ItemColumns {

namespace {

struct Column
{
    const char* name;
    ColumnKind kind;
};

constexpr Column kColumns[] = {
    {"ID", ColumnKind::Id},
    {"EbayID", ColumnKind::Text},
    {"Category", ColumnKind::Text},
    {"ShortDescription", ColumnKind::Text},
    {"Description", ColumnKind::Text},
    {"Picture1Path", ColumnKind::Text},
    {"Picture2Path", ColumnKind::Text},
    {"Picture3Path", ColumnKind::Text},
    {"Reserve", ColumnKind::Money},
    {"MinBid", ColumnKind::Money},
    {"Cost", ColumnKind::Money},
    {"SalePrice", ColumnKind::Money},
    {"DateAuctionStarted", ColumnKind::DateTime},
    {"DateAuctionEnds", ColumnKind::DateTime},
    {"DateBuyerContacted", ColumnKind::Date},
    {"DateBuyerResponded", ColumnKind::Date},
    {"BuyerEmail", ColumnKind::Text},
    {"BuyerName", ColumnKind::Text},
    {"BuyerStreet1", ColumnKind::Text},
    {"BuyerStreet2", ColumnKind::Text},
    {"BuyerStreet3", ColumnKind::Text},
    {"BuyerCity", ColumnKind::Text},
    {"BuyerState", ColumnKind::Text},
    {"BuyerZip", ColumnKind::Text},
    {"BuyerPhone", ColumnKind::Text},
    {"DatePaymentRecd", ColumnKind::Date},
    {"DatePaymentClrd", ColumnKind::Date},
    {"DateItemShipped", ColumnKind::Date},
    {"ShippingCost", ColumnKind::Money},
    {"InsuranceCost", ColumnKind::Money},
    {"Active", ColumnKind::YesNo},
    {"LastPrice", ColumnKind::Money},
    {"LastChecked", ColumnKind::DateTime},
    {"FeedbackComplete", ColumnKind::YesNo},
    {"TrackingNumber", ColumnKind::Text},
    {"TransNotes", ColumnKind::Text},
};

// An amount in exponent form ("1e3") is no amount to the money reader, but the money columns
// would turn the text into the integer it names, which reads back as ten-thousandths (1e3 as
// 0.10). So it is read as the amount it says, when that fits.
std::optional<qint64> exponentUnits(const QString& text)
{
    const QString t = text.trimmed();
    if (!t.contains(u'e', Qt::CaseInsensitive))
        return std::nullopt;
    bool ok = false;
    const double amount = QLocale::c().toDouble(t, &ok);
    const double units = std::round(amount * double(Money::kScale));
    if (!ok || !std::isfinite(units) || std::abs(units) >= 9.2e18)
        return std::nullopt;
    return qint64(units);
}

} // namespace

const QStringList& names()
{
    static const QStringList list = [] {
        QStringList l;
        for (const Column& c : kColumns)
            l << QString::fromLatin1(c.name);
        return l;
    }();
    return list;
}

ColumnKind kind(const QString& column)
{
    static const QHash<QString, ColumnKind> byName = [] {
        QHash<QString, ColumnKind> h;
        // The table's own spelling too: it is what callers pass, and it needs no lower-case copy.
        for (const Column& c : kColumns) {
            h.insert(QString::fromLatin1(c.name), c.kind);
            h.insert(QString::fromLatin1(c.name).toLower(), c.kind);
        }
        return h;
    }();
    if (const auto it = byName.constFind(column); it != byName.cend())
        return *it;
    return byName.value(column.toLower(), ColumnKind::Text);
}

QString toText(ColumnKind kind, const QVariant& stored)
{
    if (stored.isNull())
        return {};
    switch (kind) {
    case ColumnKind::Money:
        if (stored.typeId() == QMetaType::LongLong || stored.typeId() == QMetaType::Int)
            return Money::fromUnits(stored.toLongLong()).toPlainText();
        return stored.toString();
    case ColumnKind::DateTime:
    case ColumnKind::Date: {
        const QDateTime dt = DateText::fromStorage(stored.toString());
        return dt.isValid() ? DateText::toDisplay(dt) : stored.toString();
    }
    case ColumnKind::YesNo:
        return stored.toLongLong() ? QStringLiteral("1") : QStringLiteral("0");
    case ColumnKind::Id:
    case ColumnKind::Text:
        break;
    }
    return stored.toString();
}

QVariant fromText(ColumnKind kind, const QString& text)
{
    switch (kind) {
    case ColumnKind::Money: {
        if (text.trimmed().isEmpty())
            return QVariant(QMetaType(QMetaType::LongLong));
        if (const auto money = Money::parse(text))
            return QVariant(money->units());
        if (const auto units = exponentUnits(text))
            return QVariant(*units);
        return QVariant(text);
    }
    case ColumnKind::DateTime:
    case ColumnKind::Date: {
        if (text.trimmed().isEmpty())
            return QVariant(QMetaType(QMetaType::QString));
        const QDateTime dt = DateText::fromDisplay(text);
        return dt.isValid() ? QVariant(DateText::toStorage(dt)) : QVariant(text);
    }
    case ColumnKind::YesNo: {
        // Check boxes hand over "1"/"0"; other writers may use the words.
        const QString t = text.trimmed();
        const bool no = t.isEmpty() || t == QLatin1String("0") ||
                        t.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0 ||
                        t.compare(QLatin1String("No"), Qt::CaseInsensitive) == 0;
        return QVariant(qlonglong(no ? 0 : 1));
    }
    case ColumnKind::Id:
        return QVariant(text.toLongLong());
    case ColumnKind::Text:
        break;
    }
    return text.isEmpty() ? QVariant(QMetaType(QMetaType::QString)) : QVariant(text);
}

} // namespace ItemColumns
