#pragma once

#include "platform/TextRoutines.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariantMap>

// Every stored value of Items as "EbayID.Column", so a test sees exactly what a reading changed
// and that nothing else moved.
inline QVariantMap itemsSnapshot(const QSqlDatabase& db)
{
    QVariantMap values;
    QSqlQuery q(QStringLiteral("SELECT * FROM Items"), db);
    while (q.next())
        for (int c = 0; c < q.record().count(); ++c)
            values[q.value(QStringLiteral("EbayID")).toString() + u'.' + q.record().fieldName(c)] =
                q.value(c);
    return values;
}

inline QVariantMap itemsChanged(const QVariantMap& before, const QSqlDatabase& db)
{
    QVariantMap changed;
    const QVariantMap after = itemsSnapshot(db);
    for (auto it = after.cbegin(); it != after.cend(); ++it)
        if (before.value(it.key()) != it.value())
            changed[it.key()] = it.value();
    return changed;
}

inline QString stamp(const QDateTime& value)
{
    return value.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

// A page under tests/data/web, read as a download hands it on.
inline QString webPage(const char* name)
{
    return ReadTextFile(QStringLiteral(TB_TEST_DATA_DIR "/web/") + QLatin1String(name));
}
