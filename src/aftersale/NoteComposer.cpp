#include "aftersale/NoteComposer.h"

#include "aftersale/texts.h"
#include "platform/DateText.h"
#include "settings/OptionsRecord.h"

using namespace AfterSaleTexts;

namespace {

const QString kBreak = QStringLiteral("\r\n");

// Whole cents of an amount, rounded half away from zero, without the sign.
quint64 absoluteCents(Money amount)
{
    const qint64 units = amount.units();
    const quint64 abs = units < 0 ? quint64(-(units + 1)) + 1 : quint64(units);
    return (abs + 50) / 100;
}

QString twoDigits(quint64 cents, const QLocale& locale)
{
    return locale.toString(cents % 100).rightJustified(2, locale.zeroDigit().at(0));
}

// The "0.00" form: two decimals, no grouping, a minus sign for a negative amount.
QString fixedTwo(Money amount, const QLocale& locale)
{
    const quint64 cents = absoluteCents(amount);
    QString text = QString::number(cents / 100);
    text += locale.decimalPoint() + twoDigits(cents, locale);
    return amount.units() < 0 && cents ? u'-' + text : text;
}

QString subjectFor(NoteKind kind, const QString& ebayId)
{
    switch (kind) {
    case NoteKind::WinningConfirmation:
        return kSubjectStart + ebayId + kSubjectWinning;
    case NoteKind::DidntMakeReserve:
        return kSubjectStart + ebayId + kSubjectNoReserve;
    case NoteKind::PaymentReceived:
        return kSubjectStart + ebayId + kSubjectPayment;
    case NoteKind::ItemShipped:
        break;
    }
    return kSubjectStart + ebayId + kSubjectShipped;
}

QString captionFor(NoteKind kind)
{
    switch (kind) {
    case NoteKind::WinningConfirmation:
        return kCaptionWinning;
    case NoteKind::DidntMakeReserve:
        return kCaptionNoReserve;
    case NoteKind::PaymentReceived:
        return kCaptionPayment;
    case NoteKind::ItemShipped:
        break;
    }
    return kCaptionShipped;
}

// The closing lines every note ends with: a blank line and the signature, when there is one.
void appendSignature(QString& body, const QString& signature)
{
    if (!signature.trimmed().isEmpty())
        body += kBreak + signature + kBreak;
}

QString winningBody(const NoteFields& f, const NoteItem& item, const NoteSettings& s,
                    const QLocale& locale)
{
    QString body = kWinningHello + f.buyerEmail + kWinningHelloEnd + kBreak + kBreak;
    body += kWinningIntro + kBreak + kBreak;
    body += kEbayIdLine + item.ebayId + kBreak;
    body += kDescriptionLine + item.shortDescription + kBreak;
    body += kWinningBid + f.sellPrice + kBreak;
    body += kWinningShipping + Currency::reformat(f.shippingCost, locale) + kBreak;
    // The sums come from the record, not from the texts on screen.
    body += kWinningTotal + Currency::toText(item.salePrice + item.shippingCost, locale).trimmed() +
            kBreak + kBreak;
    const QString insurance = Currency::reformat(f.insuranceCost, locale);
    if (insurance != Currency::toText(Money(), locale))
        body += kInsuranceStart + insurance + kInsuranceTotal +
                fixedTwo(item.salePrice + item.shippingCost + item.insuranceCost, locale) +
                kInsuranceEnd + kBreak + kBreak;
    if (!s.taxMsg.trimmed().isEmpty())
        body += s.taxMsg + kBreak;
    if (!s.payMsg.isEmpty())
        body += s.payMsg + kBreak + kBreak;
    for (const QString& line : s.sendAddress)
        if (!line.isEmpty())
            body += line + kBreak;
    if (!s.closing.isEmpty())
        body += kBreak + s.closing + kBreak;
    if (!s.signature.isEmpty())
        body += kBreak + s.signature + kBreak;
    return body;
}

QString noReserveBody(const NoteFields& f, const NoteItem& item, const NoteSettings& s)
{
    QString body = kNoReserveHello + f.buyerEmail + kNoReserveHelloEnd + kBreak + kBreak;
    body += kNoReserveIntro + kBreak + kBreak;
    body += kEbayIdLine + item.ebayId + kBreak;
    body += kDescriptionLine + item.shortDescription + kBreak + kBreak;
    body += kNoReserveFailed + kBreak + kBreak;
    body += kNoReserveSorry + kBreak + kBreak;
    appendSignature(body, s.signature);
    return body;
}

QString paymentBody(const NoteItem& item, const NoteSettings& s)
{
    QString body = kPaymentIntro + kBreak + kBreak;
    body += kEbayIdLine + item.ebayId + kBreak;
    body += kDescriptionLine + item.shortDescription + kBreak;
    // The message line stands even when the seller left it empty.
    body += kBreak + s.recdMsg + kBreak;
    appendSignature(body, s.signature);
    return body;
}

QString shippedBody(const NoteFields& f, const NoteItem& item, const NoteSettings& s)
{
    QString body = kShippedIntro + kBreak + kBreak;
    body += kEbayIdLine + item.ebayId + kBreak;
    body += kDescriptionLine + item.shortDescription + kBreak + kBreak;
    body += kShippedTo + kBreak;
    // The address starts with the e-mail line.
    for (const QString& line : {f.buyerEmail, f.buyerName, f.street[0], f.street[1], f.street[2]})
        if (!line.trimmed().isEmpty())
            body += kIndent + line + kBreak;
    // The city line has no break of its own: the closing lines bring theirs.
    if (!f.city.isEmpty()) {
        body += kIndent + f.city;
        if (!f.state.isEmpty())
            body += QLatin1String(", ") + f.state;
        if (!f.zip.isEmpty())
            body += u' ' + f.zip;
    }
    body += kBreak + kBreak + kShippedSoon + kBreak;
    body += kShippedThanks + kBreak;
    appendSignature(body, s.signature);
    return body;
}

} // namespace

QString noteKindName(NoteKind kind)
{
    switch (kind) {
    case NoteKind::WinningConfirmation:
        return kNoteKindWinning;
    case NoteKind::DidntMakeReserve:
        return kNoteKindNoReserve;
    case NoteKind::PaymentReceived:
        return kNoteKindPayment;
    case NoteKind::ItemShipped:
        break;
    }
    return kNoteKindShipped;
}

std::optional<NoteKind> noteKindFromName(const QString& name)
{
    for (NoteKind kind : {NoteKind::WinningConfirmation, NoteKind::DidntMakeReserve,
                          NoteKind::PaymentReceived, NoteKind::ItemShipped})
        if (noteKindName(kind) == name)
            return kind;
    return std::nullopt;
}

namespace Currency {

QString toText(Money amount, const QLocale& locale)
{
    const quint64 cents = absoluteCents(amount);
    const QString number =
        locale.toString(qulonglong(cents / 100)) + locale.decimalPoint() + twoDigits(cents, locale);
    // The locale's pattern around a whole 1 tells where the symbol and the sign go.
    const bool negative = amount.units() < 0 && cents;
    QString pattern = locale.toCurrencyString(qlonglong(negative ? -1 : 1));
    const QString one = locale.toString(1);
    const qsizetype at = pattern.indexOf(one);
    return at < 0 ? number : pattern.replace(at, one.size(), number);
}

std::optional<Money> parse(const QString& text, const QLocale& locale)
{
    QString t = text.trimmed();
    bool bracketed = false;
    if (t.size() >= 2 && t.startsWith(u'(') && t.endsWith(u')')) {
        bracketed = true;
        t = t.mid(1, t.size() - 2);
    }
    t.remove(locale.currencySymbol(QLocale::CurrencySymbol));
    t.remove(locale.groupSeparator());
    t.remove(u' ');
    t.remove(QChar(0x00A0));
    t.remove(QChar(0x202F));
    if (locale.decimalPoint() != QLatin1String("."))
        t.replace(locale.decimalPoint(), QLatin1String("."));
    if (bracketed && (t.startsWith(u'-') || t.startsWith(u'+')))
        return std::nullopt;
    const std::optional<Money> amount = Money::parse(t);
    if (!amount || !bracketed)
        return amount;
    return Money::fromUnits(-amount->units());
}

QString reformat(const QString& text, const QLocale& locale)
{
    const std::optional<Money> amount = parse(text, locale);
    return amount ? toText(*amount, locale) : text;
}

} // namespace Currency

NoteSettings NoteSettings::from(const OptionsRecord& options, const QString& recdMsg)
{
    NoteSettings s;
    s.taxMsg = options.taxMsg;
    s.payMsg = options.payMsg;
    s.closing = options.closing;
    s.signature = options.signature;
    s.defaultCc = options.defaultCc;
    s.remoteSmtpHost = options.remoteSmtpHost;
    s.remoteSmtpPort = options.remoteSmtpPort;
    for (int i = 0; i < 4; ++i)
        s.sendAddress[i] = options.sendAddress[i];
    s.recdMsg = recdMsg;
    return s;
}

std::optional<NoteProblem> checkNoteFields(NoteKind kind, const NoteFields& fields)
{
    if (kind == NoteKind::WinningConfirmation) {
        if (fields.buyerEmail.trimmed().isEmpty())
            return NoteProblem{kEmailRequired};
        // Only a number is asked for: a price of 0 passes, whatever the message says.
        if (!Currency::parse(fields.sellPrice))
            return NoteProblem{kSalePriceRequired, 11};
    } else if (kind == NoteKind::ItemShipped) {
        if (fields.datePaymentCleared.trimmed().isEmpty())
            return NoteProblem{kPaymentClearedRequired, 26};
    }
    return std::nullopt;
}

std::optional<NoteProblem> checkMailServer(const NoteSettings& settings)
{
    if (settings.remoteSmtpHost.trimmed().isEmpty())
        return NoteProblem{kNoSmtpHost, -1, true};
    const QString port = settings.remoteSmtpPort.trimmed();
    if (port.isEmpty() || port == QLatin1String("0"))
        return NoteProblem{kNoSmtpPort, -1, true};
    return std::nullopt;
}

std::optional<NoteProblem> firstNoteProblem(NoteKind kind, const NoteFields& fields,
                                            const NoteSettings& settings)
{
    if (auto problem = checkNoteFields(kind, fields))
        return problem;
    return checkMailServer(settings);
}

ComposedNote composeNote(NoteKind kind, const NoteFields& fields, const NoteItem& item,
                         const NoteSettings& settings, const QDateTime& now, const QLocale& locale)
{
    ComposedNote note;
    note.kind = kind;
    note.caption = captionFor(kind);
    note.to = fields.buyerEmail;
    note.cc = settings.defaultCc;
    note.date = DateText::toDisplay(now, locale);
    note.subject = subjectFor(kind, item.ebayId);
    switch (kind) {
    case NoteKind::WinningConfirmation:
        note.body = winningBody(fields, item, settings, locale);
        break;
    case NoteKind::DidntMakeReserve:
        note.body = noReserveBody(fields, item, settings);
        break;
    case NoteKind::PaymentReceived:
        note.body = paymentBody(item, settings);
        break;
    case NoteKind::ItemShipped:
        note.body = shippedBody(fields, item, settings);
        break;
    }
    return note;
}
