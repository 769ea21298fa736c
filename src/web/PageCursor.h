#pragma once

#include "platform/Money.h"

#include <QDateTime>
#include <QString>
#include <QStringView>

#include <optional>

// The auction site's pages are read by searching literal markers (letter case counts) and
// cutting away everything in front of them. A cursor is a view of the text still to be read:
// cutting only moves its start, so reading a long page copies nothing. The text it reads must
// outlive it.
class PageCursor
{
public:
    explicit PageCursor(QStringView text) : m_rest(text) {}
    explicit PageCursor(QString&&) = delete;

    QStringView rest() const { return m_rest; }
    bool startsWith(QStringView prefix) const { return m_rest.startsWith(prefix); }
    bool contains(QStringView marker) const { return m_rest.contains(marker); }

    // Keeps only the text after the first occurrence of the marker. A missing marker counts as
    // found just before the first character, so the text then loses its first
    // (marker length - 1) characters and reading goes on from near the start.
    void cutAfter(QStringView marker) { cutFrom(marker, marker.size()); }
    // Keeps the text from `offset` characters past where the marker starts; a missing marker
    // counts as found just before the first character, as above.
    void cutFrom(QStringView marker, qsizetype offset);
    // Drops the next `count` characters.
    void drop(qsizetype count);
    // The text before the first occurrence of the marker, or nothing when it is missing (the
    // value being read then keeps what it held before).
    std::optional<QStringView> takeUpTo(QStringView marker) const;

private:
    QStringView m_rest;
};

// Minutes from the site's Pacific clock to the local clock: 480 minus the bias, one hour less
// when the site keeps daylight saving time and this machine does not (daylightDiff 1).
int pacificShiftMinutes(int bias, int daylightDiff);
// The site's Pacific time moved to the local clock by exactly that many minutes. An unset time
// stays unset.
QDateTime pacificToLocal(const QDateTime& pacific, int bias, int daylightDiff);

// A local wall-clock time as a QDateTime carrying the machine zone's offset at that moment. A
// time that falls into the hour skipped when clocks go forward keeps its date and clock fields
// rather than being lost.
QDateTime wallClock(QDate date, QTime time);

// The site's date text, read as liberally as the site has ever written it: month names (short
// or long, any letter case) or numbers, month before day when all are numbers; "-", "/", blank
// and "," between the parts; two-digit years 00-29 as 20xx and 30-99 as 19xx; an optional
// "h:mm" or "h:mm:ss" with optional AM/PM. Unset (invalid) when the text is no date.
QDateTime readSiteDate(QStringView text);

// readSiteDate and pacificToLocal in one step.
QDateTime readPacificTime(QStringView text, int bias, int daylightDiff);

// The site's money text: an optional "$" or "US $", thousands commas and surrounding blanks
// around a plain amount. Nothing when it is no amount.
std::optional<Money> readSiteMoney(QStringView text);
