#include "platform/TextRoutines.h"

#include "platform/TextCodec.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

QString FileNameOfPath(const QString& path)
{
    QString gathered;
    for (const QChar c : path) {
        if (c == u'\\' || c == u'/')
            gathered.clear();
        else
            gathered += c;
    }
    return gathered;
}

QString ReplaceFirst(const QString& text, const QString& find, const QString& replacement)
{
    const qsizetype at = find.isEmpty() ? -1 : text.indexOf(find);
    if (at < 0)
        return text;
    return text.left(at) + replacement + text.mid(at + find.size());
}

QString ReplaceAll(const QString& text, const QString& find, const QString& replacement)
{
    if (find.isEmpty())
        return text;
    QString rest = text;
    QString result;
    qsizetype at;
    while ((at = rest.indexOf(find)) >= 0) {
        result = rest.left(at) + replacement;
        rest = rest.mid(at + find.size());
    }
    return result + rest;
}

QString ReplaceChar(const QString& text, QChar find, const QString& replacement)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        if (c == find)
            out += replacement;
        else
            out += c;
    }
    return out;
}

QString HtmlEscape(const QString& text)
{
    QString out;
    out.reserve(text.size() + text.size() / 8);
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '<':
            out += QLatin1String("&lt;");
            break;
        case '>':
            out += QLatin1String("&gt;");
            break;
        case '"':
            out += QLatin1String("&quot;");
            break;
        case '\'':
            out += QLatin1String("&#39;");
            break;
        default:
            out += c;
        }
    }
    return out;
}

QString ColorToHtml(qint64 color)
{
    // A colour is a 32-bit long: negative (system) colours give eight digits, never a sign.
    QString hex = QString::number(quint32(color), 16).toUpper();
    switch (hex.size()) {
    case 1:
        hex.prepend(QLatin1String("000000"));
        break;
    case 2:
        hex.prepend(QLatin1String("0000"));
        break;
    case 3:
        hex.prepend(QLatin1String("000"));
        break;
    case 4:
        hex.prepend(QLatin1String("00"));
        break;
    case 5:
        hex.prepend(QLatin1String("0"));
        break;
    default:
        break;
    }
    return hex.mid(4, 2) + hex.mid(2, 2) + hex.mid(0, 2);
}

QString ReadTextFile(const QString& path)
{
    if (path.isEmpty())
        return {};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    // Lines end at CR LF or a lone CR; a line with LF characters inside is split at each one.
    const QByteArray bytes = file.readAll();
    // UTF-8 when the bytes are valid UTF-8; otherwise the file comes from an older 8-bit
    // editor or a page in the Windows code page, and each byte is one character of it (the
    // euro sign and curly quotes included), so no character turns into a '?'.
    const QString all = TextCodec::decodeUtf8OrWindows1252(bytes);
    QString result;
    result.reserve(all.size() + all.size() / 16);
    qsizetype start = 0;
    const qsizetype n = all.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = all.at(i);
        if (c == u'\r' || c == u'\n') {
            result += QStringView(all).mid(start, i - start);
            result += QLatin1String("\r\n");
            if (c == u'\r' && i + 1 < n && all.at(i + 1) == u'\n')
                ++i;
            start = i + 1;
        }
    }
    if (start < n) {
        result += QStringView(all).mid(start);
        result += QLatin1String("\r\n");
    }
    return result;
}

void Pause(double seconds)
{
    // A monotonic clock does not jump at midnight or when the wall clock is set.
    QElapsedTimer timer;
    timer.start();
    const qint64 wanted = qint64(seconds * 1000);
    while (timer.elapsed() < wanted) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(5);
    }
}
