#include "../support/SmtpFixture.h"
#include "aftersale/MailSession.h"
#include "platform/SmtpClient.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace {
// A note sent to a real server. For a plain ASCII note `data` is every byte the server must
// receive; otherwise `data` holds the header lines that must be there, and subject and body are
// what a mail reader shows. Rows with a security setting run over STARTTLS and sign in.
// clang-format off
struct Sent { QString to, cc, subject, body; QStringList recipients; QByteArray data; QString security = {}; };
// A send that fails: the server's options, the host and port, the code and the last status.
struct Fault { QStringList serverOptions; QString host, port; int code; QString lastStatus; };
// clang-format on

const QString kFrom = u"seller@example.com"_s;
const QString kBuyer = u"buyer@example.com"_s;
// 7 January 2025 09:05:03 in New York, where the tests run: five hours behind.
const QDateTime kWhen(QDate(2025, 1, 7), QTime(9, 5, 3));
const QByteArray kHead = "From: seller@example.com\r\nTo: buyer@example.com\r\n"
                         "Date: Tue, 7 Jan 2025 09:05:03 -0500\r\n";

// clang-format off
const QStringList kSteps{u"Connecting..."_s, u"Address..."_s, u"Header 0..."_s, u"Header 1..."_s, u"Header 2..."_s,
                         u"Header 3..."_s, u"Header 4..."_s, u"Message..."_s, u"Disconnecting..."_s, u"Message sent..."_s};
// clang-format on
} // namespace

class tst_MailSession : public QObject
{
    Q_OBJECT

    TestCertificate m_cert;

private slots:
    void dates_data()
    {
        QTest::addColumn<QDateTime>("when");
        QTest::addColumn<QString>("text");
        QTest::newRow("summer") << QDateTime(QDate(2024, 7, 4), QTime(18, 30))
                                << "Thu, 4 Jul 2024 18:30:00 -0400";
        QTest::newRow("east") << QDateTime(QDate(1999, 12, 31), QTime(23, 59, 59), QTimeZone(19800))
                              << "Fri, 31 Dec 1999 23:59:59 +0530";
    }
    void dates()
    {
        QFETCH(QDateTime, when);
        QFETCH(QString, text);
        QCOMPARE(mailDate(when), text);
        QCOMPARE(headerSlots(kFrom, kBuyer, u"s"_s, when).at(2), "Date: " + text + "\r\n");
    }

    void sending_data()
    {
        QTest::addColumn<Sent>("row");
        const QString subject = u"eBay Item: 1234 - Confirmation of winning bid."_s;
        const QByteArray head = kHead + "Subject: " + subject.toUtf8() + "\r\n\r\n";
        const QString body = u"Hello,\r\n.a line with a dot\r\n.\r\n..\r\nThanks"_s;
        const QByteArray wire = head + body.toUtf8() + "\r\n";
        const QByteArray mime = "MIME-Version: 1.0\r\nContent-Type: text/plain; charset=UTF-8\r\n"
                                "Content-Transfer-Encoding: 8bit\r\n\r\n";
        const QString euro = u"Zahlung erhalten – danke, Jürgen! "_s.repeated(3);
        const QStringList one{kBuyer}, two{kBuyer, u"cc@example.com"_s};
        // clang-format off
        QTest::newRow("no cc")       << Sent{kBuyer, "", subject, body, one, wire};
        QTest::newRow("cc")          << Sent{" " + kBuyer + " ", " cc@example.com ", " " + subject + " ", body, two, wire};
        QTest::newRow("blank cc")    << Sent{kBuyer, "   ", subject, body, one, wire};
        QTest::newRow("LF breaks")   << Sent{kBuyer, "", subject, "a\nb\n\n", one, head + "a\r\nb\r\n\r\n"};
        QTest::newRow("empty body")  << Sent{kBuyer, "", subject, "", one, head};
        QTest::newRow("UTF-8")       << Sent{kBuyer, "", euro, "Grüße\n€ 5", one, "?=\r\n" + mime};
        QTest::newRow("UTF-8 body")  << Sent{kBuyer, "", subject, "Grüße", one, "Subject: " + subject.toUtf8() + "\r\n" + mime};
        QTest::newRow("secure")      << Sent{kBuyer, "cc@example.com", subject, body, two, wire, "STARTTLS"};
        // clang-format on
    }
    void sending()
    {
        QFETCH(Sent, row);
        const bool secure = !row.security.isEmpty();
        if (secure && !m_cert.isMade())
            QSKIP("the openssl program is needed to make a test certificate");
        const QStringList options =
            secure ? QStringList{"--starttls", m_cert.cert(), m_cert.key(), "--auth", "seller:pw"}
                   : QStringList{};
        MailServer server(options);
        QVERIFY(server.isRunning());
        const TrustedAuthority trust(m_cert.cert());
        const MailSettings settings{
            u"127.0.0.1"_s, QString::number(server.port()),   kFrom,
            row.security,   secure ? u"seller"_s : QString(), secure ? u"pw"_s : QString()};

        QStringList statuses;
        SmtpClient client;
        const MailOutcome outcome = sendNote(
            client, settings, {row.to, row.cc, row.subject, row.body},
            [&](const QString& s) { statuses << s; }, kWhen);
        QVERIFY2(outcome.sent, qPrintable(QString::number(outcome.code) + outcome.detail));
        QCOMPARE(statuses, kSteps);
        QCOMPARE(outcome.lastStatus, u"Message sent..."_s);

        QCOMPARE(server.messages().size(), 1);
        const ReceivedMail mail = server.messages().first();
        QCOMPARE(mail.from, kFrom);
        QCOMPARE(mail.to, row.recipients);
        QCOMPARE(mail.date, u"2025-01-07T09:05:03-05:00"_s); // a mail reader's reading
        QVERIFY(!mail.data.contains("\r\r") && mail.data.count('\n') == mail.data.count("\r\n"));
        if (row.data.startsWith("From:")) {
            QCOMPARE(mail.data, row.data);
        } else {
            QVERIFY2(mail.data.startsWith(kHead) && mail.data.contains(row.data), mail.data);
            QCOMPARE(mail.subject, row.subject.trimmed());
            QCOMPARE(QString(mail.body).remove(u'\r'), row.body + u'\n');
        }
        if (secure)
            QVERIFY(server.events().contains(u"AUTH PLAIN seller ok"_s));
    }

    // Each failure stops the send at its step, where the status stays; nothing arrives. A
    // failed connection still passes "Address..."; settings that cannot be used stop earlier.
    void faults_data()
    {
        QTest::addColumn<Fault>("row");
        // clang-format off
        QTest::newRow("no server")      << Fault{{}, "127.0.0.1", "1", 22207, "Address..."};
        QTest::newRow("unknown host")   << Fault{{}, "mail.example.invalid", "25", 22205, "Address..."};
        QTest::newRow("bad port")       << Fault{{}, "127.0.0.1", "0", 22202, "Connecting..."};
        QTest::newRow("silent server")  << Fault{{"--hang"}, "127.0.0.1", "", 22209, "Address..."};
        QTest::newRow("buyer refused")  << Fault{{"--reject-rcpt", kBuyer}, "127.0.0.1", "", 22215, "Address..."};
        QTest::newRow("dropped in data")<< Fault{{"--drop-data"}, "127.0.0.1", "", 22218, "Message..."};
        // clang-format on
    }
    void faults()
    {
        QFETCH(Fault, row);
        MailServer server(row.serverOptions);
        QVERIFY(server.isRunning());
        const QString port = row.port.isEmpty() ? QString::number(server.port()) : row.port;
        QStringList statuses;
        SmtpClient client;
        client.setTimeoutSeconds(2);
        QElapsedTimer clock;
        clock.start();
        const MailOutcome outcome = sendNote(client, {row.host, port, kFrom, {}, {}, {}},
                                             {kBuyer, u"cc@example.com"_s, u"s"_s, "b"},
                                             [&](const QString& s) { statuses << s; });
        QVERIFY(clock.elapsed() < 15000);
        QVERIFY(!outcome.sent);
        QCOMPARE(outcome.code, row.code);
        QCOMPARE(outcome.lastStatus, row.lastStatus);
        QCOMPARE(statuses, kSteps.mid(0, kSteps.indexOf(row.lastStatus) + 1));
        QVERIFY(server.messages().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_MailSession)
#include "tst_mailsession.moc"
