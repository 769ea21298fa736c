#pragma once

// A real SMTP server for tests that send mail, on 127.0.0.1 (smtp_server.py over a fresh folder):
//
//   MailServer server({"--auth", "seller:secret"});
//   ... send to 127.0.0.1:server.port() ...
//   const ReceivedMail mail = server.messages().value(0);   // envelope, raw data, decoded parts
//   QCOMPARE(server.events(), (QStringList{"EHLO ...", "AUTH PLAIN seller ok", "QUIT"}));
//
// TestCertificate makes a self-signed certificate for 127.0.0.1 with the openssl program; a
// client trusts it through TALLYBID_TEST_CA_FILE (TrustedAuthority sets it for a scope).

#include "TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

// One message as the server received it.
struct ReceivedMail
{
    QString from;
    QStringList to;
    QByteArray data;       // the message bytes, dot-stuffing undone
    QString subject, body; // as a mail reader decodes them
    QString date;          // the Date header as a mail reader parses it (ISO 8601), "" if it cannot
};

class MailServer
{
public:
    explicit MailServer(const QStringList& options = {})
        : m_server(QStringLiteral("smtp_server.py"), QStringList{m_store.path()} + options)
    {
    }

    bool isRunning() const { return m_server.isRunning(); }
    int port() const { return m_server.port(); }

    // Every message taken so far, oldest first.
    QList<ReceivedMail> messages() const
    {
        QList<ReceivedMail> mails;
        const QDir store(m_store.path());
        for (const QString& name :
             store.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name)) {
            QFile f(store.filePath(name));
            if (!f.open(QIODevice::ReadOnly))
                continue;
            const QJsonObject o = QJsonDocument::fromJson(f.readAll()).object();
            ReceivedMail m;
            m.from = o.value(u"mail_from").toString();
            for (const QJsonValue& v : o.value(u"rcpt_tos").toArray())
                m.to << v.toString();
            m.data = QByteArray::fromBase64(o.value(u"data").toString().toLatin1());
            m.subject = o.value(u"subject").toString();
            m.body = o.value(u"body").toString();
            m.date = o.value(u"date").toString();
            mails << m;
        }
        return mails;
    }

    // The conversation steps seen so far: "EHLO name", "STARTTLS", "AUTH LOGIN user ok", "QUIT".
    QStringList events() const
    {
        QFile f(m_store.filePath(QStringLiteral("events.log")));
        if (!f.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(f.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }

private:
    QTemporaryDir m_store; // declared first: outlives the server that writes into it
    PythonServer m_server;
};

// A self-signed certificate and key for 127.0.0.1 in a temporary folder.
class TestCertificate
{
public:
    TestCertificate()
    {
        const QString openssl = QStandardPaths::findExecutable(QStringLiteral("openssl"));
        if (openssl.isEmpty())
            return;
        QProcess p;
        p.start(openssl,
                {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                 "-nodes", "-days", "2", "-subj", "/CN=127.0.0.1", "-addext",
                 "subjectAltName=IP:127.0.0.1,DNS:localhost", "-keyout", key(), "-out", cert()});
        m_made = p.waitForFinished(30000) && p.exitCode() == 0 && QFile::exists(cert());
    }
    bool isMade() const { return m_made; }
    QString cert() const { return m_dir.filePath(QStringLiteral("cert.pem")); }
    QString key() const { return m_dir.filePath(QStringLiteral("key.pem")); }

private:
    QTemporaryDir m_dir;
    bool m_made = false;
};

// Names the authority the mail client trusts for as long as the object lives.
class TrustedAuthority
{
public:
    explicit TrustedAuthority(const QString& pemFile)
    {
        qputenv("TALLYBID_TEST_CA_FILE", QFile::encodeName(pemFile));
    }
    ~TrustedAuthority() { qunsetenv("TALLYBID_TEST_CA_FILE"); }
    TrustedAuthority(const TrustedAuthority&) = delete;
    TrustedAuthority& operator=(const TrustedAuthority&) = delete;
};
