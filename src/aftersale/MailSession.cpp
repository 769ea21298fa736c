#include "aftersale/MailSession.h"

#include "platform/SmtpClient.h"

#include <QLocale>
#include <QObject>

#include <algorithm>
#include <cstdlib>

namespace {

const QString kCrLf = QStringLiteral("\r\n");
constexpr int kHeaderSlots = 5;
// UTF-8 bytes per encoded word: the word stays within 64 characters, so even the first line
// ("Subject: " and a word) keeps to the 76 characters allowed beside encoded words.
constexpr qsizetype kWordBytes = 39;

// A header value stays on its line: an embedded line break would end the header early or start
// a header line of its own.
QString oneLine(const QString& value)
{
    QString text = value;
    text.replace(kCrLf, QStringLiteral(" "));
    for (const QChar breakChar : {QChar(u'\r'), QChar(u'\n'), QChar(QChar::LineSeparator),
                                  QChar(QChar::ParagraphSeparator)})
        text.replace(breakChar, u' ');
    return text;
}

bool isAscii(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

// RFC 2047 "B" encoded words, folded onto continuation lines; a character is never split.
QString encodedWords(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    QStringList words;
    for (qsizetype start = 0; start < utf8.size();) {
        qsizetype end = std::min(start + kWordBytes, utf8.size());
        while (end < utf8.size() && end > start + 1 && (uchar(utf8.at(end)) & 0xC0) == 0x80)
            --end;
        words << QStringLiteral("=?UTF-8?B?") +
                     QString::fromLatin1(utf8.mid(start, end - start).toBase64()) +
                     QStringLiteral("?=");
        start = end;
    }
    return words.join(kCrLf + u' ');
}

// Every kind of line break becomes CR LF, as the mail protocol wants it on the wire.
QByteArray crLfText(const QString& body)
{
    QString text = body;
    text.replace(kCrLf, QStringLiteral("\n"));
    for (const QChar breakChar :
         {QChar(u'\r'), QChar(QChar::LineSeparator), QChar(QChar::ParagraphSeparator)})
        text.replace(breakChar, u'\n');
    text.replace(u'\n', kCrLf);
    return text.toUtf8();
}

} // namespace

QString MailStatus::header(int slot)
{
    return QStringLiteral("Header ") + QString::number(slot) + QStringLiteral("...");
}

QString mailDate(const QDateTime& when)
{
    const int minutes = when.offsetFromUtc() / 60;
    const int away = std::abs(minutes);
    return QLocale::c().toString(when, QStringLiteral("ddd, d MMM yyyy HH:mm:ss ")) +
           (minutes < 0 ? u'-' : u'+') +
           QStringLiteral("%1%2")
               .arg(away / 60, 2, 10, QChar(u'0'))
               .arg(away % 60, 2, 10, QChar(u'0'));
}

bool isPlainAscii(const QString& sendFrom, const MailNote& note)
{
    return isAscii(sendFrom) && isAscii(note.to) && isAscii(note.subject) && isAscii(note.body);
}

QStringList headerSlots(const QString& sendFrom, const QString& to, const QString& subject,
                        const QDateTime& when, bool plainAscii)
{
    const QString subjectText = oneLine(subject.trimmed());
    QStringList lines = {
        QStringLiteral("From: ") + oneLine(sendFrom) + kCrLf,
        QStringLiteral("To: ") + oneLine(to.trimmed()) + kCrLf,
        QStringLiteral("Date: ") + mailDate(when) + kCrLf,
        QStringLiteral("Subject: ") +
            (isAscii(subjectText) ? subjectText : encodedWords(subjectText)) + kCrLf,
        kCrLf,
    };
    if (!plainAscii)
        lines[4] = QStringLiteral("MIME-Version: 1.0") + kCrLf +
                   QStringLiteral("Content-Type: text/plain; charset=UTF-8") + kCrLf +
                   QStringLiteral("Content-Transfer-Encoding: 8bit") + kCrLf + kCrLf;
    return lines;
}

QList<QByteArray> messagePieces(const QString& sendFrom, const MailNote& note,
                                const QDateTime& when)
{
    QList<QByteArray> pieces;
    const QStringList lines =
        headerSlots(sendFrom, note.to, note.subject, when, isPlainAscii(sendFrom, note));
    for (const QString& line : lines)
        pieces << line.toUtf8();
    pieces << crLfText(note.body);
    return pieces;
}

MailOutcome sendNote(SmtpClient& client, const MailSettings& settings, const MailNote& note,
                     const std::function<void(const QString&)>& status, const QDateTime& when)
{
    MailOutcome outcome;
    const auto show = [&](const QString& text) {
        outcome.lastStatus = text;
        if (status)
            status(text);
    };
    const auto failed = [&](const SmtpClient::Result& result) {
        outcome.code = result.code;
        outcome.detail = result.detail;
        outcome.notice = result.notice;
        return outcome;
    };

    show(MailStatus::kConnecting);
    const MailServerSettings server = mailServerFromSettings(
        settings.host, settings.port, settings.security, settings.user, settings.password);
    if (!server.problem.ok())
        return failed(server.problem);
    QStringList recipients = {note.to.trimmed()};
    if (!note.cc.trimmed().isEmpty())
        recipients << note.cc.trimmed();
    const QList<QByteArray> pieces = messagePieces(settings.sendFrom, note, when);

    // The client reports each step as the server reaches it; the connections end with `steps`.
    QObject steps;
    bool enveloped = false;
    QObject::connect(&client, &SmtpClient::envelopeStarted, &steps, [&] {
        enveloped = true;
        show(MailStatus::kAddress);
    });
    QObject::connect(&client, &SmtpClient::pieceStarted, &steps, [&](int index) {
        show(index < kHeaderSlots ? MailStatus::header(index) : MailStatus::kMessage);
    });
    // The envelope takes the bare address; the From line keeps the setting as it is stored.
    const SmtpClient::Result result =
        client.send(server.server, settings.sendFrom.trimmed(), recipients, pieces);
    if (!result.ok()) {
        // A connection that failed still passes the address step before the send gives up, so
        // the status stops there: header and message steps are skipped once a step has failed.
        if (!enveloped)
            show(MailStatus::kAddress);
        return failed(result);
    }

    show(MailStatus::kDisconnecting);
    // The server has taken the message: a goodbye that goes wrong changes nothing for it.
    client.disconnectFromHost();
    show(MailStatus::kSent);
    outcome.sent = true;
    // The message data ends in a line break before the closing dot; the client adds one when
    // the body has none, so the server holds the body with it.
    QByteArray body = pieces.constLast();
    if (!body.isEmpty() && !body.endsWith("\r\n"))
        body += "\r\n";
    outcome.mail = {recipients, oneLine(note.subject.trimmed()), body};
    return outcome;
}

MailOutcome sendNote(const MailSettings& settings, const MailNote& note,
                     const std::function<void(const QString&)>& status)
{
    SmtpClient client;
    return sendNote(client, settings, note, status);
}
