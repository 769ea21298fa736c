#include "platform/DateText.h"

#include <QStringList>

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

} // namespace

QString toDisplay(const QDateTime& value, const QLocale& locale)
{
    if (!value.isValid())
        return {};
    QString text = locale.toString(value.date(), fullYearDateFormat(locale));
    if (value.time() != QTime(0, 0))
        text += u' ' + locale.toString(value.time(), secondsTimeFormat(locale));
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

QDateTime fromStorage(const QString& text)
{
    QDateTime dt = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    if (!dt.isValid())
        dt = QDateTime(QDate::fromString(text, QStringLiteral("yyyy-MM-dd")), QTime(0, 0));
    if (!dt.isValid())
        dt = QDateTime::fromString(text, Qt::ISODate);
    return dt;
}

} // namespace DateText
