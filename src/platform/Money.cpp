#include "platform/Money.h"

#include <QtNumeric>

#include <algorithm>
#include <limits>

std::optional<Money> Money::parse(const QString& input)
{
    const QString text = input.trimmed();
    if (text.isEmpty())
        return std::nullopt;
    qsizetype i = 0;
    bool negative = false;
    if (text.at(0) == u'-' || text.at(0) == u'+') {
        negative = text.at(0) == u'-';
        ++i;
    }
    qint64 whole = 0;
    qint64 fraction = 0;
    int fractionDigits = 0;
    bool seenDigit = false;
    bool seenPoint = false;
    bool roundUp = false;
    for (; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == u'.' && !seenPoint) {
            seenPoint = true;
        } else if (c.isDigit() && c.unicode() < 128) {
            seenDigit = true;
            const int d = c.unicode() - '0';
            if (!seenPoint) {
                if (whole > (std::numeric_limits<qint64>::max() / kScale - d) / 10)
                    return std::nullopt;
                whole = whole * 10 + d;
            } else if (fractionDigits < 4) {
                fraction = fraction * 10 + d;
                ++fractionDigits;
            } else if (fractionDigits == 4) {
                roundUp = d >= 5;
                ++fractionDigits;
            }
        } else {
            return std::nullopt;
        }
    }
    if (!seenDigit)
        return std::nullopt;
    for (int k = std::min(fractionDigits, 4); k < 4; ++k)
        fraction *= 10;
    // The largest amount is 922337203685477.5807; anything beyond is refused, not wrapped.
    qint64 units = 0;
    if (qMulOverflow(whole, kScale, &units) ||
        qAddOverflow(units, fraction + (roundUp ? 1 : 0), &units))
        return std::nullopt;
    return Money(negative ? -units : units);
}

QString Money::toPlainText() const
{
    const bool negative = m_units < 0;
    const quint64 abs = negative ? quint64(-(m_units + 1)) + 1 : quint64(m_units);
    QString text = QString::number(abs / kScale);
    quint64 fraction = abs % kScale;
    if (fraction) {
        QString digits = QStringLiteral("%1").arg(fraction, 4, 10, QLatin1Char('0'));
        while (digits.endsWith(u'0'))
            digits.chop(1);
        text += u'.' + digits;
    }
    return negative ? u'-' + text : text;
}
