#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

// Dates are kept in the database as ISO text and shown in the session locale's form, with a
// four-digit year, and the time only when it is not midnight ("6/8/1999 10:00:00 AM").
namespace DateText {

QString toDisplay(const QDateTime& value, const QLocale& locale = QLocale());
// Accepts the locale's forms, "mm/dd/yyyy hh:mm:ss" and ISO; invalid when none fits.
QDateTime fromDisplay(const QString& text, const QLocale& locale = QLocale());

QString toStorage(const QDateTime& value); // "yyyy-MM-dd HH:mm:ss"
QDateTime fromStorage(const QString& text);
// The day of a stored date: "yyyy-MM-dd", alone or followed by a blank or "T" and anything;
// invalid otherwise. For reading many rows where only the day counts.
QDate storedDay(QStringView text);

} // namespace DateText
