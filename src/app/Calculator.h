#pragma once

#include <QString>

// A pocket calculator's behaviour: digits build the display, an operator waits for the next
// number, "=" works out the pending operation. Amounts are decimal, as prices are.
class Calculator
{
public:
    void digit(int d);
    void point();
    void operation(QChar op); // one of + - * /
    void equals();
    void clear();
    void backspace();
    void changeSign();
    // One key of the keypad: a digit, ".", "=", "C", an operator, or the backspace arrow
    // (U+2190) and the sign key (U+00B1) as their buttons show them.
    void press(QChar key);
    QString display() const { return m_display; }

private:
    double value() const { return m_display.toDouble(); }
    void show(double v);

    QString m_display = QStringLiteral("0");
    double m_pending = 0;
    QChar m_op;
    bool m_startNew = true;
    bool m_error = false;
};
