#include "settings/OptionsFields.h"

QString normalizeHostImageDir(const QString& text)
{
    // Every separator at the start goes, not just one, so tidying an already tidy field
    // changes nothing however often the focus leaves it.
    QString dir = text;
    while (dir.startsWith(u'\\') || dir.startsWith(u'/'))
        dir.remove(0, 1);
    while (dir.endsWith(u'\\'))
        dir.chop(1);
    if (!dir.isEmpty() && !dir.endsWith(u'/'))
        dir += u'/';
    return dir;
}

QString normalizeWebImagesUrl(const QString& text)
{
    QString url = text.trimmed();
    if (!url.isEmpty() && !url.endsWith(u'/'))
        url += u'/';
    return url;
}

QString normalizePastDays(const QString& text)
{
    return text.trimmed().isEmpty() ? QStringLiteral("1") : text;
}
