#include "platform/TimeZone.h"

#include <QDateTime>
#include <QTimeZone>

int SystemTimeZone::bias() const
{
    const QTimeZone zone = QTimeZone::systemTimeZone();
    return -zone.standardTimeOffset(QDateTime::currentDateTimeUtc()) / 60;
}
