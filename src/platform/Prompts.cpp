#include "platform/Prompts.h"

#include <QStringList>

QString qtFileFilter(const QString& pipeFilter)
{
    const QStringList parts = pipeFilter.split(QLatin1Char('|'));
    QStringList entries;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QStringList patterns;
        for (QString p : parts.at(i + 1).split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
            p = p.trimmed();
            if (p == QLatin1String("*.*"))
                p = QStringLiteral("*");
            if (!p.isEmpty())
                patterns << p;
        }
        entries << parts.at(i) + QLatin1String(" (") + patterns.join(QLatin1Char(' ')) +
                       QLatin1Char(')');
    }
    return entries.join(QLatin1String(";;"));
}
