#pragma once

// Real HTTP servers for tests that read web pages, all on 127.0.0.1:
//
//   WebServer web;                                   // http_server.py over a fresh folder
//   web.writePage("/aw-cgi/eBayISAPI.dll?ViewItem&item=7", bytes);   // served byte for byte
//   const QString url = web.url("/aw-cgi/eBayISAPI.dll?ViewItem&item=7");
//   ... fetch it ...
//   QCOMPARE(web.requests(), QStringList{"/aw-cgi/eBayISAPI.dll?ViewItem&item=7"});
//
//   WebProxy proxy;                                  // http_proxy.py, forwards to 127.0.0.1 only
//   client.setProxy(true, "127.0.0.1", proxy.port());
//   QCOMPARE(proxy.requests(), QStringList{"GET " + url + " HTTP/1.1"});
//
// Targets that misbehave on purpose (see http_server.py): WebServer::kStall (accepts and never
// answers), cut(n) (half of n declared bytes, then closed), status(code), unsized(target) (no
// Content-Length), slow(target) (in pieces, so progress shows several steps), redirect(target),
// and kHeaders (answers with the request's header lines).

#include "TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

namespace WebFixture {

// The file in the server's folder that answers a request target (path and query, as sent):
// the leading "/" dropped, every byte outside A-Z a-z 0-9 "." "-" written as "_" plus two
// upper-case hex digits, "index.htm" when nothing is left.
inline QString fileNameFor(const QString& target)
{
    QByteArray raw = target.toUtf8();
    if (raw.startsWith('/'))
        raw.remove(0, 1);
    QString name;
    for (const char c : raw) {
        const auto b = static_cast<unsigned char>(c);
        const bool plain = (b >= 'A' && b <= 'Z') || (b >= 'a' && b <= 'z') ||
                           (b >= '0' && b <= '9') || b == '.' || b == '-';
        name +=
            plain ? QString(QChar(b)) : QStringLiteral("_%1").arg(b, 2, 16, QChar(u'0')).toUpper();
    }
    return name.isEmpty() ? QStringLiteral("index.htm") : name;
}

// The lines of a log file, without their line ends; empty when the file is missing.
inline QStringList logLines(const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(f.readAll()).split(u'\n', Qt::SkipEmptyParts);
    for (QString& line : lines)
        line.remove(u'\r');
    return lines;
}

} // namespace WebFixture

// http_server.py over its own temporary folder; killed and removed with the object.
class WebServer
{
public:
    // Slow targets are sent in `pieces` pieces, `gapSeconds` apart.
    explicit WebServer(int pieces = 8, double gapSeconds = 0.15)
        : m_server(QStringLiteral("http_server.py"),
                   {m_root.path(), QStringLiteral("--pieces"), QString::number(pieces),
                    QStringLiteral("--gap"), QString::number(gapSeconds)})
    {
    }

    bool isRunning() const { return m_server.isRunning(); }
    int port() const { return m_server.port(); }
    QString root() const { return m_root.path(); }
    QString url(const QString& target) const
    {
        return QStringLiteral("http://127.0.0.1:%1").arg(port()) + target;
    }
    // The page answered for target, written where the server looks for it.
    bool writePage(const QString& target, const QByteArray& bytes) const
    {
        QFile f(QDir(root()).filePath(WebFixture::fileNameFor(target)));
        return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
    }
    // Every target asked for so far, oldest first.
    QStringList requests() const { return WebFixture::logLines(root() + "/requests.log"); }

    static inline const QString kStall = QStringLiteral("/_test/stall");
    static inline const QString kHeaders = QStringLiteral("/_test/headers");
    static QString cut(int declaredBytes)
    {
        return QStringLiteral("/_test/cut/%1").arg(declaredBytes);
    }
    static QString status(int code) { return QStringLiteral("/_test/status/%1").arg(code); }
    static QString unsized(const QString& target) { return "/_test/unsized" + target; }
    static QString slow(const QString& target) { return "/_test/slow" + target; }
    static QString redirect(const QString& target) { return "/_test/redirect" + target; }

private:
    QTemporaryDir m_root; // declared first: outlives the server that writes into it
    PythonServer m_server;
};

// http_proxy.py with its log in a temporary folder.
class WebProxy
{
public:
    WebProxy() : m_server(QStringLiteral("http_proxy.py"), {logPath()}) {}

    bool isRunning() const { return m_server.isRunning(); }
    int port() const { return m_server.port(); }
    // The request lines forwarded so far: "GET <absolute url> HTTP/1.1", "CONNECT <host:port> ...".
    QStringList requests() const { return WebFixture::logLines(logPath()); }

private:
    QString logPath() const { return m_dir.filePath(QStringLiteral("proxy.log")); }
    QTemporaryDir m_dir;
    PythonServer m_server;
};
