#pragma once

#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

// A pyftpdlib server on 127.0.0.1 over a fresh temp folder. The user logs in to "/www" (made
// under the root), so a path relative to the login folder and an absolute one land in
// different places. Every command the server receives is appended to a log.
struct FtpTestServer
{
    explicit FtpTestServer(const QString& mode = QStringLiteral("normal"),
                           const QStringList& extra = {})
        : ready(init()), process(QStringLiteral("ftp_server.py"),
                                 QStringList{root.path(), QStringLiteral("--mode"), mode,
                                             QStringLiteral("--login-dir"), QStringLiteral("/www"),
                                             QStringLiteral("--log"), logPath()} +
                                     extra)
    {
    }

    int port() const { return process.port(); }
    QString logPath() const { return work.filePath(QStringLiteral("commands.log")); }
    // The command lines received so far.
    QStringList commands() const
    {
        QFile f(logPath());
        if (!f.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(f.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }
    int count(const QString& command) const
    {
        int n = 0;
        for (const QString& line : commands())
            n += line.section(u' ', 0, 0) == command ? 1 : 0;
        return n;
    }
    // A path under the server's root ("/www/pics/a.jpg").
    QString local(const QString& remote) const { return root.path() + remote; }
    QByteArray content(const QString& remote) const
    {
        QFile f(local(remote));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    bool exists(const QString& remote) const { return QFile::exists(local(remote)); }
    void makeDir(const QString& remote) const { QDir().mkpath(local(remote)); }

    QTemporaryDir root;
    QTemporaryDir work;
    bool ready;
    PythonServer process;

private:
    bool init() { return QDir().mkpath(root.filePath(QStringLiteral("www"))); }
};

// A port on 127.0.0.1 that nothing listens on (taken, then released).
int unusedPort();
// Bytes that catch text-mode or truncation faults.
QByteArray binarySample(int size, int seed);
