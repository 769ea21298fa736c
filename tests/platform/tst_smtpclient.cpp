#include "../support/SmtpFixture.h"
#include "platform/ScriptedPrompts.h"
#include "platform/SmtpClient.h"
#include "platform/SmtpErrors.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace {
// An error code, the notice given with it and the text shown after the common opening.
// Stored mail settings and what comes of them: an error code and the security (-1: none read).
// A secure-mail case: the server's options ("cert" stands for the test certificate and key),
// what the client asks for, which certificate it trusts ("own", "other"), and what testing the
// connection and sending one message give (0 = success).
// clang-format off
struct ErrorText { int code; QString notice, text; };
struct Stored { QString port, security; int code, kind; };
struct Secure { QStringList serverOptions; QString security, user, password, trust; int testCode, sendCode; QString notice; QStringList events; };
// clang-format on
} // namespace

class tst_SmtpClient : public QObject
{
    Q_OBJECT

    TestCertificate m_cert, m_otherCert;

    static SmtpClient::Server local(int port, MailSecurity security = MailSecurity::None,
                                    const QString& user = {}, const QString& password = {})
    {
        return {u"127.0.0.1"_s, port, security, user, password};
    }

private slots:
    void errorTexts_data()
    {
        QTest::addColumn<ErrorText>("row");
        // clang-format off
        QTest::newRow("first")     << ErrorText{22201, "", "Invalid handle to SMTP Client."};
        QTest::newRow("host")      << ErrorText{22205, "", "Cannot resolve host name.  The name specified in Remote Mail Host does not exist.  Please check with your ISP for the correct Mail Server."};
        QTest::newRow("no stop")   << ErrorText{22206, "", "Cannot create socket"};
        QTest::newRow("last")      << ErrorText{22219, "", "Client operation was cancelled."};
        QTest::newRow("below")     << ErrorText{22200, "", "Error #22200"};
        QTest::newRow("above")     << ErrorText{22220, "", "Error #22220"};
        QTest::newRow("notice")    << ErrorText{22207, "Why.", "Cannot connect to remote server.\r\n\r\nWhy."};
        // clang-format on
    }
    void errorTexts()
    {
        QFETCH(ErrorText, row);
        ScriptedPrompts prompts;
        ShowSmtpError(prompts, row.code, row.notice);
        QCOMPARE(prompts.shown().size(), 1);
        const ScriptedPrompts::Shown& box = prompts.shown().first();
        QCOMPARE(box.text,
                 "The attempt to connect failed with the following message:\r\n\r\n" + row.text);
        QCOMPARE(box.title, u"Connection failed"_s);
        QCOMPARE(box.icon, PromptIcon::Exclamation);
        QCOMPARE(box.buttons, PromptButtons::Ok);
    }

    // The stored settings as a server: bad ports and unknown security settings are refused,
    // never turned into a plain connection.
    void settings_data()
    {
        QTest::addColumn<Stored>("row");
        const int none = int(MailSecurity::None), tls = int(MailSecurity::Tls);
        // clang-format off
        QTest::newRow("defaults")  << Stored{"25",    "",         0,     none};
        QTest::newRow("blanks")    << Stored{" 25 ",  " none ",   0,     none};
        QTest::newRow("starttls")  << Stored{"587",   "starttls", 0,     int(MailSecurity::StartTls)};
        QTest::newRow("ssl")       << Stored{"465",   "SSL",      0,     tls};
        QTest::newRow("ssl/tls")   << Stored{"465",   "SSL/TLS",  0,     tls};
        QTest::newRow("port 0")    << Stored{"0",     "",         22202, none};
        QTest::newRow("port text") << Stored{"2x5",   "",         22202, none};
        QTest::newRow("too big")   << Stored{"70000", "",         22202, none};
        QTest::newRow("unknown")   << Stored{"25",    "SSL3",     22202, -1};
        // clang-format on
    }
    void settings()
    {
        QFETCH(Stored, row);
        const auto& [port, security, code, kind] = row;
        const MailServerSettings s =
            mailServerFromSettings(u" mail.test "_s, port, security, u" seller "_s, u" pw "_s);
        QCOMPARE(s.problem.code, code);
        QCOMPARE(s.server.host, u"mail.test"_s);
        QCOMPARE(s.server.password, u" pw "_s); // a password is taken as typed
        if (kind < 0) {
            QVERIFY(s.problem.notice.contains(u"\"SSL3\""));
        } else {
            QCOMPARE(int(s.server.security), kind);
            QCOMPARE(mailSecurityFromSetting(settingForMailSecurity(s.server.security)),
                     s.server.security);
        }
    }

    // Two messages over one connection: the envelope as given, the data arriving byte for byte
    // (lines that start with a dot included), each piece announced as it goes, goodbye at the end.
    void delivery()
    {
        MailServer server;
        QVERIFY(server.isRunning());
        SmtpClient client;
        QStringList steps;
        connect(&client, &SmtpClient::envelopeStarted, this, [&] { steps << u"envelope"_s; });
        connect(&client, &SmtpClient::pieceStarted, this,
                [&](int i) { steps << QString::number(i); });
        const QList<QByteArray> pieces = {"Subject: dots\r\n", "", "\r\n",
                                          ".one\r\n..two\r\n.\r\n\r\n.\r\nend"};
        const QByteArray sent = pieces.join() + "\r\n";
        for (int round = 0; round < 2; ++round) {
            const SmtpClient::Result r =
                client.send(local(server.port()), u" seller@example.com "_s,
                            {u"buyer@example.com"_s, u"cc@example.com"_s}, pieces);
            QVERIFY2(r.ok(), qPrintable(r.detail));
        }
        QCOMPARE(client.disconnectFromHost().code, 0);
        QCOMPARE(steps.join(u' '), u"envelope 0 1 2 3 envelope 0 1 2 3"_s);
        const QList<ReceivedMail> mails = server.messages();
        QCOMPARE(mails.size(), 2);
        for (const ReceivedMail& mail : mails) {
            QCOMPARE(mail.from, u"seller@example.com"_s);
            QCOMPARE(mail.to, (QStringList{u"buyer@example.com"_s, u"cc@example.com"_s}));
            QCOMPARE(mail.data, sent);
        }
        QCOMPARE(server.events().filter(u"EHLO").size(), 1); // the connection was kept
        QCOMPARE(server.events().last(), u"QUIT"_s);
    }

    void secureAndSignIn_data()
    {
        QTest::addColumn<Secure>("row");
        const QStringList starttls{"--starttls", "cert"}, tls{"--tls", "cert"};
        const QStringList login{"--auth", "seller:secret", "--mechanisms", "LOGIN"};
        const QStringList plain{"--auth", "seller:secret", "--mechanisms", "PLAIN"};
        const QString untrusted = SmtpNotice::certificateNotTrusted();
        // clang-format off
        QTest::newRow("STARTTLS")           << Secure{starttls, "STARTTLS", "", "", "own", 0, 0, "", {"STARTTLS"}};
        QTest::newRow("SSL")                << Secure{tls, "SSL", "", "", "own", 0, 0, "", {}};
        QTest::newRow("STARTTLS untrusted") << Secure{starttls, "STARTTLS", "", "", "other", 22207, 22207, untrusted, {"STARTTLS"}};
        QTest::newRow("SSL untrusted")      << Secure{tls, "SSL", "", "", "other", 22207, 22207, untrusted, {}};
        QTest::newRow("no STARTTLS")        << Secure{{}, "STARTTLS", "", "", "own", 22210, 22210, SmtpNotice::startTlsNotOffered(), {}};
        QTest::newRow("SSL to plain port")  << Secure{{}, "SSL", "", "", "own", 22207, 22207, SmtpNotice::secureConnectionFailed(), {}};
        QTest::newRow("LOGIN")              << Secure{login, "", "seller", "secret", "", 0, 0, "", {"AUTH LOGIN seller ok"}};
        QTest::newRow("PLAIN")              << Secure{plain, "", "seller", "secret", "", 0, 0, "", {"AUTH PLAIN seller ok"}};
        QTest::newRow("wrong password")     << Secure{plain, "", "seller", "guess", "", 22210, 22210, SmtpNotice::signInRefused(), {"AUTH PLAIN seller refused"}};
        QTest::newRow("sign-in wanted")     << Secure{plain, "", "", "", "", 0, 22210, SmtpNotice::signInRequired(), {}};
        QTest::newRow("STARTTLS and LOGIN") << Secure{starttls + login, "STARTTLS", "seller", "secret", "own", 0, 0, "", {"STARTTLS", "AUTH LOGIN seller ok"}};
        // clang-format on
    }
    void secureAndSignIn()
    {
        QFETCH(Secure, row);
        if (!row.trust.isEmpty() && !(m_cert.isMade() && m_otherCert.isMade()))
            QSKIP("the openssl program is needed to make test certificates");
        QStringList options;
        for (const QString& o : std::as_const(row.serverOptions))
            options << (o == u"cert" ? QStringList{m_cert.cert(), m_cert.key()} : QStringList{o});
        MailServer server(options);
        QVERIFY(server.isRunning());
        const TrustedAuthority trust(row.trust == u"other" ? m_otherCert.cert() : m_cert.cert());

        SmtpClient client;
        client.setTimeoutSeconds(5);
        const SmtpClient::Server s =
            local(server.port(), *mailSecurityFromSetting(row.security), row.user, row.password);
        const SmtpClient::Result test = client.testConnection(s);
        QCOMPARE(test.code, row.testCode);
        if (row.testCode == 0) // the test said goodbye
            QCOMPARE(server.events().value(server.events().size() - 1), u"QUIT"_s);
        const SmtpClient::Result sent =
            client.send(s, u"seller@example.com"_s, {u"buyer@example.com"_s}, {"\r\nHello\r\n"});
        QVERIFY2(sent.code == row.sendCode, qPrintable(sent.detail));
        QCOMPARE(sent.notice, row.notice);
        client.disconnectFromHost();
        QCOMPARE(server.messages().size(), row.sendCode == 0 ? 1 : 0);
        if (row.sendCode == 0)
            QCOMPARE(server.messages().first().data, QByteArray("\r\nHello\r\n"));
        const QStringList events = server.events();
        for (const QString& e : std::as_const(row.events))
            QVERIFY2(events.contains(e), qPrintable(events.join(u'|')));
    }
};

QTEST_GUILESS_MAIN(tst_SmtpClient)
#include "tst_smtpclient.moc"
