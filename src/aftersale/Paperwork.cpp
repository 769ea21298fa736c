#include "aftersale/Paperwork.h"

#include "aftersale/NoteComposer.h"
#include "platform/TextCodec.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

namespace {

QString escaped(const QString& text)
{
    return text.toHtmlEscaped().replace(u'\'', QStringLiteral("&#39;"));
}

// Non-empty lines, each escaped, one under the other.
QString lines(const QStringList& parts)
{
    QStringList kept;
    for (const QString& part : parts)
        if (!part.trimmed().isEmpty())
            kept << escaped(part.trimmed());
    return kept.join(QStringLiteral("<br>"));
}

// "City, State Zip", leaving out what is empty.
QString cityLine(const PaperworkData& d)
{
    QString line = d.city.trimmed();
    const QString state = d.state.trimmed();
    const QString zip = d.zip.trimmed();
    if (!state.isEmpty())
        line += (line.isEmpty() ? QString() : QStringLiteral(", ")) + state;
    if (!zip.isEmpty())
        line += (line.isEmpty() ? QString() : QStringLiteral(" ")) + zip;
    return line;
}

} // namespace

QString paperTemplateName(PaperKind kind)
{
    return kind == PaperKind::Invoice ? QStringLiteral("Invoice.htm")
                                      : QStringLiteral("PackingSlip.htm");
}

QString paperTitle(PaperKind kind)
{
    return kind == PaperKind::Invoice ? QStringLiteral("Invoice") : QStringLiteral("Packing Slip");
}

QHash<QString, QString> paperworkValues(const PaperworkData& d, const QLocale& locale)
{
    const auto money = [&](Money amount) { return escaped(Currency::toText(amount, locale)); };
    return {
        {QStringLiteral("SellerAddress"),
         lines({d.sellerAddress[0], d.sellerAddress[1], d.sellerAddress[2], d.sellerAddress[3]})},
        {QStringLiteral("BuyerName"), escaped(d.buyerName.trimmed())},
        {QStringLiteral("BuyerEmail"), escaped(d.buyerEmail.trimmed())},
        {QStringLiteral("BuyerPhone"), escaped(d.buyerPhone.trimmed())},
        {QStringLiteral("BuyerAddress"),
         lines({d.street[0], d.street[1], d.street[2], cityLine(d)})},
        {QStringLiteral("ItemNumber"), escaped(d.itemNumber.trimmed())},
        {QStringLiteral("Description"), escaped(d.description.trimmed())},
        {QStringLiteral("TrackingNumber"), escaped(d.trackingNumber.trimmed())},
        {QStringLiteral("Date"), escaped(locale.toString(d.date, QLocale::ShortFormat))},
        {QStringLiteral("Price"), money(d.price)},
        {QStringLiteral("Shipping"), money(d.shipping)},
        {QStringLiteral("Insurance"), money(d.insurance)},
        {QStringLiteral("Total"), money(d.price + d.shipping + d.insurance)},
    };
}

QString fillPaperwork(const QString& html, const QHash<QString, QString>& values)
{
    static const QRegularExpression placeholder(QStringLiteral(R"(\{\{([A-Za-z]+)\}\})"));
    QString out;
    out.reserve(html.size() + 512);
    qsizetype done = 0;
    for (auto it = placeholder.globalMatch(html); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        const auto value = values.constFind(m.captured(1));
        if (value == values.cend())
            continue;
        out += QStringView(html).mid(done, m.capturedStart() - done);
        out += *value;
        done = m.capturedEnd();
    }
    out += QStringView(html).mid(done);
    return out;
}

std::optional<QString> readPaperTemplate(const QString& path, QString& why)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        why = file.errorString();
        return std::nullopt;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        why = file.errorString();
        return std::nullopt;
    }
    // A template edited in an older editor is in the Windows code page, as the program's other
    // text files may be.
    return TextCodec::decodeUtf8OrWindows1252(bytes);
}
