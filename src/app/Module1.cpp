#include "app/Module1.h"

#include "platform/Shell.h"

void OpenDocument(Shell& shell, const QString& pathOrUrl, const QString& appPath)
{
    shell.openDocument(pathOrUrl, appPath);
}
