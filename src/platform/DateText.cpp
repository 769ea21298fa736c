#include "platform/DateText.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace DateText {

namespace {

QString fullYearDateFormat(const QLocale& locale)
{
    QString f = locale.dateFormat(QLocale::ShortFormat);
    if (!f.contains(QLatin1String("yyyy")))
        f.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    return f;
}

QString secondsTimeFormat(const QLocale& locale)
{
    QString f = locale.timeFormat(QLocale::ShortFormat);
    if (!f.contains(QLatin1String("ss")))
        f.replace(QLatin1String("mm"), QLatin1String("mm:ss"));
    return f;
}

// The display forms of the last locale asked for: every record shown formats several dates,
// and asking the locale for its forms costs more than the formatting.
struct DisplayForms
{
    QLocale locale;
    QString date;
    QString time;
};

const DisplayForms& displayForms(const QLocale& locale)
{
    thread_local DisplayForms forms{QLocale::c(), {}, {}};
    if (forms.date.isEmpty() || forms.locale != locale)
        forms = {locale, fullYearDateFormat(locale), secondsTimeFormat(locale)};
    return forms;
}

// Reads exactly `digits` decimal digits at `at`; -1 when any is not a digit.
int digitsAt(QStringView text, qsizetype at, int digits)
{
    int value = 0;
    for (int i = 0; i < digits; ++i) {
        const char16_t c = text[at + i].unicode();
        if (c < u'0' || c > u'9')
            return -1;
        value = value * 10 + (c - u'0');
    }
    return value;
}

// The stored forms "yyyy-MM-dd HH:mm:ss" and "yyyy-MM-dd" read directly: the general parser
// costs more than showing the whole record. Anything else, or a local time that does not
// exist as written, is left to the general parser (invalid here).
QDateTime fromStrictStorage(QStringView text)
{
    if (text.size() != 19 && text.size() != 10)
        return {};
    if (text[4] != u'-' || text[7] != u'-')
        return {};
    const int fields[] = {digitsAt(text, 0, 4),
                          digitsAt(text, 5, 2),
                          digitsAt(text, 8, 2),
                          text.size() == 19 ? digitsAt(text, 11, 2) : 0,
                          text.size() == 19 ? digitsAt(text, 14, 2) : 0,
                          text.size() == 19 ? digitsAt(text, 17, 2) : 0};
    if (std::any_of(std::begin(fields), std::end(fields), [](int f) { return f < 0; }))
        return {};
    if (text.size() == 19 && (text[10] != u' ' || text[13] != u':' || text[16] != u':'))
        return {};
    const QDate date(fields[0], fields[1], fields[2]);
    const QTime time(fields[3], fields[4], fields[5]);
    if (!date.isValid() || !time.isValid())
        return {};
    QDateTime value(date, time);
    if (value.date() != date || value.time() != time)
        return {};
    return value;
}

} // namespace

QString toDisplay(const QDateTime& value, const QLocale& locale)
{
    if (!value.isValid())
        return {};
    const DisplayForms& forms = displayForms(locale);
    QString text = locale.toString(value.date(), forms.date);
    if (value.time() != QTime(0, 0))
        text += u' ' + locale.toString(value.time(), forms.time);
    return text;
}

QDateTime fromDisplay(const QString& input, const QLocale& locale)
{
    // Narrow and ordinary no-break spaces of newer locale data count as blanks.
    QString text = input.trimmed().simplified();
    text.replace(QChar(0x202F), u' ').replace(QChar(0x00A0), u' ');
    if (text.isEmpty())
        return {};
    QStringList timeForms{secondsTimeFormat(locale), locale.timeFormat(QLocale::ShortFormat)};
    for (QString& f : timeForms)
        f.replace(QChar(0x202F), u' ').replace(QChar(0x00A0), u' ');
    const auto withTimes = [&](const QString& dateForm) {
        for (const QString& t : timeForms) {
            const QDateTime dt = locale.toDateTime(text, dateForm + u' ' + t);
            if (dt.isValid())
                return dt;
        }
        const QDate d = locale.toDate(text, dateForm);
        return d.isValid() ? QDateTime(d, QTime(0, 0)) : QDateTime();
    };
    if (const QDateTime dt = withTimes(fullYearDateFormat(locale)); dt.isValid())
        return dt;
    // The locale's own short form has a two-digit year: 30 to 99 are 19xx, 00 to 29 are 20xx.
    const QString shortDate = locale.dateFormat(QLocale::ShortFormat);
    if (!shortDate.contains(QLatin1String("yyyy"))) {
        const QDateTime dt = withTimes(shortDate);
        if (dt.isValid())
            return dt.date().year() < 1930 ? dt.addYears(100) : dt;
    }
    static const char* const fallbacks[] = {
        "M/d/yyyy H:mm:ss", "M/d/yyyy h:mm:ss AP", "M/d/yyyy H:mm",       "M/d/yyyy h:mm AP",
        "M/d/yyyy",         "yyyy-MM-dd HH:mm:ss", "yyyy-MM-ddTHH:mm:ss", "yyyy-MM-dd"};
    for (const char* f : fallbacks) {
        const QDateTime dt = QDateTime::fromString(text, QString::fromLatin1(f));
        if (dt.isValid())
            return dt;
    }
    return {};
}

QString toStorage(const QDateTime& value)
{
    return value.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QDate storedDay(QStringView text)
{
    if (text.size() < 10 || text[4] != u'-' || text[7] != u'-')
        return {};
    if (text.size() > 10 && text[10] != u' ' && text[10] != u'T')
        return {};
    const int year = digitsAt(text, 0, 4), month = digitsAt(text, 5, 2), day = digitsAt(text, 8, 2);
    if (year < 0 || month < 0 || day < 0)
        return {};
    return QDate(year, month, day);
}

QDateTime fromStorage(const QString& text)
{
    if (QDateTime strict = fromStrictStorage(text); strict.isValid())
        return strict;
    QDateTime dt = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    if (!dt.isValid())
        dt = QDateTime(QDate::fromString(text, QStringLiteral("yyyy-MM-dd")), QTime(0, 0));
    if (!dt.isValid())
        dt = QDateTime::fromString(text, Qt::ISODate);
    return dt;
}

} // namespace DateText
