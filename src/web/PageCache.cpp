#include "web/PageCache.h"

#include "platform/TextRoutines.h"

#include <QFileInfo>
#include <QSaveFile>

QString pageCacheFileName(int kind)
{
    switch (kind) {
    case 1:
        return QStringLiteral("Start.htm");
    case 2:
        return QStringLiteral("Leave.htm");
    default:
        return {};
    }
}

QString fetchPageWith(const QString& appPath, const QString& url, int kind, bool retrieveEveryTime,
                      const PageDownload& download)
{
    if (kind == 3 || kind == 4)
        return download(url);
    const QString cacheName = pageCacheFileName(kind);
    if (cacheName.isEmpty())
        return {};

    const QString cacheFile = appPath + u'/' + cacheName;
    if (!retrieveEveryTime && QFileInfo(cacheFile).isFile())
        return ReadTextFile(cacheFile);
    const QString text = download(url);
    // A failed or aborted fetch keeps the copy that worked last time.
    if (!text.isEmpty() && !retrieveEveryTime)
        writePrintedFile(cacheFile, text);
    return text;
}

bool writePrintedFile(const QString& path, const QString& text)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes = text.toUtf8() + "\r\n";
    return file.write(bytes) == bytes.size() && file.commit();
}
