#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// Hands documents, web addresses and programs to the desktop.
class Shell
{
public:
    virtual ~Shell() = default;
    // Opens a file path or URL with the user's default program; failures are ignored.
    virtual void openDocument(const QString& pathOrUrl, const QString& workingDir) = 0;
    virtual bool startProgram(const QString& program, const QStringList& arguments,
                              const QString& workingDir) = 0;
};

// Opens a file or web address with the user's default program, working in appPath. Every window
// hands pages and addresses to the desktop through this one routine.
void OpenDocument(Shell& shell, const QString& pathOrUrl, const QString& appPath);

class DesktopShell : public Shell
{
public:
    void openDocument(const QString& pathOrUrl, const QString& workingDir) override;
    bool startProgram(const QString& program, const QStringList& arguments,
                      const QString& workingDir) override;
};

// Test double: remembers what would have been opened or started.
class RecordingShell : public Shell
{
public:
    struct Call
    {
        QString target;
        QStringList arguments;
        QString workingDir;
    };
    void openDocument(const QString& pathOrUrl, const QString& workingDir) override
    {
        opened << Call{pathOrUrl, {}, workingDir};
    }
    bool startProgram(const QString& program, const QStringList& arguments,
                      const QString& workingDir) override
    {
        started << Call{program, arguments, workingDir};
        return true;
    }
    QList<Call> opened;
    QList<Call> started;
};
