#include "app/Calculator.h"

#include <cmath>

void Calculator::show(double v)
{
    if (!std::isfinite(v)) {
        m_display = QStringLiteral("Error");
        m_error = true;
        return;
    }
    // Twelve significant digits hide binary rounding (0.1 + 0.2 shows 0.3).
    m_display = QString::number(v, 'g', 12);
}

void Calculator::digit(int d)
{
    if (m_error)
        clear();
    if (m_startNew || m_display == QLatin1String("0"))
        m_display.clear();
    if (m_startNew)
        m_startNew = false;
    if (m_display.size() < 15)
        m_display += QChar(u'0' + d);
}

void Calculator::point()
{
    if (m_error)
        clear();
    if (m_startNew) {
        m_display = QStringLiteral("0");
        m_startNew = false;
    }
    if (!m_display.contains(u'.'))
        m_display += u'.';
}

void Calculator::operation(QChar op)
{
    if (m_error)
        return;
    if (!m_op.isNull() && !m_startNew)
        equals();
    m_pending = value();
    m_op = op;
    m_startNew = true;
}

void Calculator::equals()
{
    if (m_error || m_op.isNull())
        return;
    const double a = m_pending;
    const double b = value();
    switch (m_op.unicode()) {
    case '+':
        show(a + b);
        break;
    case '-':
        show(a - b);
        break;
    case '*':
        show(a * b);
        break;
    case '/':
        show(b == 0 ? NAN : a / b);
        break;
    default:
        break;
    }
    m_op = QChar();
    m_startNew = true;
}

void Calculator::clear()
{
    *this = Calculator();
}

void Calculator::backspace()
{
    if (m_error || m_startNew)
        return;
    m_display.chop(1);
    if (m_display.isEmpty() || m_display == QLatin1String("-"))
        m_display = QStringLiteral("0");
}

void Calculator::changeSign()
{
    if (m_error || m_display == QLatin1String("0"))
        return;
    m_display = m_display.startsWith(u'-') ? m_display.mid(1) : u'-' + m_display;
}

void Calculator::press(QChar key)
{
    if (key.isDigit())
        digit(key.digitValue());
    else if (key == u'.')
        point();
    else if (key == u'=')
        equals();
    else if (key == u'C')
        clear();
    else if (key == QChar(0x2190))
        backspace();
    else if (key == QChar(0x00b1))
        changeSign();
    else
        operation(key);
}
