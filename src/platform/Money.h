#pragma once

#include <QString>
#include <QtGlobal>
#include <optional>

// An exact amount of money in ten-thousandths, as auction prices have always been kept.
// Never goes through binary floating point.
class Money
{
public:
    static constexpr qint64 kScale = 10000;

    constexpr Money() = default;
    static constexpr Money fromUnits(qint64 units) { return Money(units); }
    static constexpr Money fromWhole(qint64 whole) { return Money(whole * kScale); }
    // Plain decimal text: optional sign, digits, optional "." and up to four decimals
    // (more are rounded half away from zero). Grouping and currency signs are refused.
    static std::optional<Money> parse(const QString& text);

    constexpr qint64 units() const { return m_units; }
    // Shortest plain text: "12.5", "1", "0", "-0.0001".
    QString toPlainText() const;

    friend constexpr bool operator==(Money a, Money b) { return a.m_units == b.m_units; }
    friend constexpr Money operator+(Money a, Money b) { return Money(a.m_units + b.m_units); }

private:
    constexpr explicit Money(qint64 units) : m_units(units) {}
    qint64 m_units = 0;
};
