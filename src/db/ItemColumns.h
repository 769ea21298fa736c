#pragma once

#include <QString>
#include <QStringList>

// What each column of Items holds, so values can be carried between the boxes' text and the
// stored form (money in ten-thousandths, dates as ISO text, Yes/No as 1/0).
enum class ColumnKind
{
    Id,
    Text,
    Money,
    DateTime,
    Date,
    YesNo
};

namespace ItemColumns {

// Every column in table order.
const QStringList& names();
ColumnKind kind(const QString& column);

// Stored value -> the text a bound box shows (money "12.5", dates in the locale's form,
// Yes/No as "1"/"0"). A stored value the program cannot read is shown as it was kept.
QString toText(ColumnKind kind, const QVariant& stored);
// Box text -> the value to store. Empty text stores NULL; text that is not a valid money amount
// or date is stored as typed, so nothing the user entered is lost.
QVariant fromText(ColumnKind kind, const QString& text);

} // namespace ItemColumns
