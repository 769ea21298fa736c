#include "platform/Shell.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

void DesktopShell::openDocument(const QString& pathOrUrl, const QString& workingDir)
{
    QUrl url(pathOrUrl);
    if (url.scheme().size() <= 1) { // no scheme, or a drive letter: a local path
        const QFileInfo info(QFileInfo(pathOrUrl).isRelative() ? workingDir + u'/' + pathOrUrl
                                                               : pathOrUrl);
        url = QUrl::fromLocalFile(info.absoluteFilePath());
    }
    QDesktopServices::openUrl(url);
}

bool DesktopShell::startProgram(const QString& program, const QStringList& arguments,
                                const QString& workingDir)
{
    return QProcess::startDetached(program, arguments, workingDir);
}

void OpenDocument(Shell& shell, const QString& pathOrUrl, const QString& appPath)
{
    shell.openDocument(pathOrUrl, appPath);
}
