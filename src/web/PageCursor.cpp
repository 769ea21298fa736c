#include "web/PageCursor.h"

#include <QHash>
#include <QTimeZone>
#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <span>

void PageCursor::cutFrom(QStringView marker, qsizetype offset)
{
    const qsizetype at = m_rest.indexOf(marker);
    // Not found reads as position -1: the old reader's search gave 0 for "one before the first
    // character" and cut from there, so the text still loses a few characters.
    drop(at >= 0 ? at + offset : offset - 1);
}

void PageCursor::drop(qsizetype count)
{
    m_rest = m_rest.mid(std::min(m_rest.size(), std::max<qsizetype>(count, 0)));
}

std::optional<QStringView> PageCursor::takeUpTo(QStringView marker) const
{
    const qsizetype at = m_rest.indexOf(marker);
    if (at < 0)
        return std::nullopt;
    return m_rest.left(at);
}

int pacificShiftMinutes(int bias, int daylightDiff)
{
    return 480 - bias - (daylightDiff == 1 ? 60 : 0);
}

QDateTime wallClock(QDate date, QTime time)
{
    static const QTimeZone zone = QTimeZone::systemTimeZone();
    if (!zone.isValid()) {
        const QDateTime local(date, time);
        return local.isValid() ? local : QDateTime(date, time, Qt::UTC);
    }
    // The zone's offset is looked up once per day: working it out through the zone's rules (or
    // the C library) for each of a report's thousands of dates costs more than storing them.
    struct Day
    {
        int offset = 0;
        bool uniform = false; // the clocks do not change that day
    };
    thread_local QHash<QDate, Day> days;
    auto day = days.constFind(date);
    if (day == days.cend()) {
        if (days.size() > 4096)
            days.clear();
        const QDateTime first(date, QTime(0, 0), zone);
        const QDateTime last(date, QTime(23, 59, 59), zone);
        const bool uniform =
            first.isValid() && last.isValid() && first.offsetFromUtc() == last.offsetFromUtc();
        day = days.insert(date, Day{first.offsetFromUtc(), uniform});
    }
    if (day->uniform)
        return QDateTime(date, time, Qt::OffsetFromUTC, day->offset);
    const QDateTime exact(date, time, zone);
    return exact.isValid() ? exact : QDateTime(date, time, Qt::UTC);
}

namespace {

// Clock fields without a zone, kept in a UTC value so arithmetic never meets a daylight-saving
// change of this machine.
QDateTime fields(const QDateTime& value)
{
    return QDateTime(value.date(), value.time(), Qt::UTC);
}

QDateTime shifted(const QDateTime& pacificFields, int bias, int daylightDiff)
{
    if (!pacificFields.isValid())
        return {};
    const QDateTime moved =
        pacificFields.addSecs(qint64(pacificShiftMinutes(bias, daylightDiff)) * 60);
    return wallClock(moved.date(), moved.time());
}

} // namespace

QDateTime pacificToLocal(const QDateTime& pacific, int bias, int daylightDiff)
{
    return pacific.isValid() ? shifted(fields(pacific), bias, daylightDiff) : QDateTime();
}

namespace {

bool isDateSeparator(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'-' || c == u'/' || c == u',';
}

// 1 to `maxDigits` ASCII digits; -1 otherwise.
int smallNumber(QStringView text, qsizetype maxDigits)
{
    if (text.isEmpty() || text.size() > maxDigits)
        return -1;
    int value = 0;
    for (const QChar c : text) {
        if (c < u'0' || c > u'9')
            return -1;
        value = value * 10 + (c.unicode() - '0');
    }
    return value;
}

// "Jun", "june", "SEPT": at least three letters that begin the month's English name.
int monthOfName(QStringView name)
{
    static constexpr std::array<const char*, 12> names = {
        "january", "february", "march",     "april",   "may",      "june",
        "july",    "august",   "september", "october", "november", "december"};
    if (name.size() < 3)
        return 0;
    for (int m = 0; m < 12; ++m) {
        const QLatin1String full(names[m]);
        if (name.size() <= full.size() && full.startsWith(name, Qt::CaseInsensitive))
            return m + 1;
    }
    return 0;
}

int yearOf(QStringView text)
{
    if (text.size() == 4)
        return smallNumber(text, 4);
    const int y = smallNumber(text, 2);
    if (y < 0)
        return -1;
    return y < 30 ? 2000 + y : 1900 + y;
}

QDate dateOf(std::span<const QStringView> parts)
{
    if (parts.size() != 3)
        return {};
    int named = -1;
    int month = 0;
    for (int i = 0; i < 3; ++i) {
        if (parts[i].front().isLetter()) {
            if (named >= 0)
                return {};
            named = i;
            month = monthOfName(parts[i]);
            if (month == 0)
                return {};
        }
    }
    int day = -1;
    int year = -1;
    if (named == 0) { // Jun-08-99, Jun 08, 1999
        day = smallNumber(parts[1], 2);
        year = yearOf(parts[2]);
    } else if (named == 1) { // 08-Jun-99
        day = smallNumber(parts[0], 2);
        year = yearOf(parts[2]);
    } else if (named < 0 && parts[0].size() == 4) { // 1999-06-08
        year = yearOf(parts[0]);
        month = smallNumber(parts[1], 2);
        day = smallNumber(parts[2], 2);
    } else if (named < 0) { // 06/08/99: the site is an American one, month first
        month = smallNumber(parts[0], 2);
        day = smallNumber(parts[1], 2);
        year = yearOf(parts[2]);
    }
    if (day < 0 || year < 0 || month <= 0)
        return {};
    return QDate(year, month, day);
}

// "10:00", "10:00:00", with the AM/PM either given apart or stuck to the digits.
QTime timeOf(QStringView clock, QStringView meridiem)
{
    if (meridiem.isEmpty()) {
        const QStringView tail = clock.right(2);
        if (tail.compare(u"AM", Qt::CaseInsensitive) == 0 ||
            tail.compare(u"PM", Qt::CaseInsensitive) == 0) {
            meridiem = tail;
            clock.chop(2);
        }
    }
    QVarLengthArray<QStringView, 4> fields;
    for (const QStringView field : clock.tokenize(u':', Qt::KeepEmptyParts))
        fields.append(field);
    if (fields.size() < 2 || fields.size() > 3)
        return {};
    int hour = smallNumber(fields[0], 2);
    const int minute = smallNumber(fields[1], 2);
    const int second = fields.size() == 3 ? smallNumber(fields[2], 2) : 0;
    if (hour < 0 || minute < 0 || second < 0)
        return {};
    if (!meridiem.isEmpty()) {
        const bool pm = meridiem.compare(u"PM", Qt::CaseInsensitive) == 0;
        if (!pm && meridiem.compare(u"AM", Qt::CaseInsensitive) != 0)
            return {};
        if (hour > 12)
            return {};
        hour = hour % 12 + (pm ? 12 : 0);
    }
    return QTime(hour, minute, second);
}

} // namespace

// The date text's clock fields (see readSiteDate), unset when it is no date.
static QDateTime siteDateFields(QStringView text)
{
    QVarLengthArray<QStringView, 8> parts;
    qsizetype start = -1;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        const bool separator = i == text.size() || isDateSeparator(text[i]);
        if (separator && start >= 0) {
            parts.append(text.mid(start, i - start));
            start = -1;
        } else if (!separator && start < 0) {
            start = i;
        }
    }
    // The date is everything before the clock; the clock may be followed by AM or PM only.
    const auto clock =
        std::find_if(parts.cbegin(), parts.cend(), [](QStringView p) { return p.contains(u':'); });
    const qsizetype dateParts = clock - parts.cbegin();
    const QDate date = dateOf(std::span(parts.cbegin(), clock));
    if (!date.isValid())
        return {};
    if (clock == parts.cend())
        return QDateTime(date, QTime(0, 0), Qt::UTC);
    const qsizetype after = parts.size() - dateParts - 1;
    if (after > 1)
        return {};
    const QTime time = timeOf(*clock, after == 1 ? parts.last() : QStringView());
    if (!time.isValid())
        return {};
    return QDateTime(date, time, Qt::UTC);
}

QDateTime readSiteDate(QStringView text)
{
    const QDateTime read = siteDateFields(text);
    return read.isValid() ? wallClock(read.date(), read.time()) : QDateTime();
}

QDateTime readPacificTime(QStringView text, int bias, int daylightDiff)
{
    return shifted(siteDateFields(text), bias, daylightDiff);
}

std::optional<Money> readSiteMoney(QStringView text)
{
    QStringView amount = text.trimmed();
    if (amount.startsWith(u"US"))
        amount = amount.mid(2).trimmed();
    if (amount.startsWith(u'$'))
        amount = amount.mid(1).trimmed();
    QString plain = amount.toString();
    plain.remove(u',');
    return Money::parse(plain);
}
