#include "platform/JetSql.h"

#include <QDateTime>
#include <QList>

namespace {

bool isWordChar(QChar c)
{
    return c.isLetterOrNumber() || c == u'_';
}

QString quoted(const QString& text)
{
    QString out = text;
    out.replace(u'\'', QLatin1String("''"));
    return u'\'' + out + u'\'';
}

std::optional<QString> dateLiteral(const QString& body)
{
    static const char* const formats[] = {
        "M/d/yyyy H:mm:ss", "M/d/yyyy h:mm:ss AP", "M/d/yyyy H:mm",      "M/d/yyyy h:mm AP",
        "M/d/yyyy",         "yyyy-MM-dd",          "yyyy-MM-dd HH:mm:ss"};
    const QString t = body.trimmed();
    for (const char* f : formats) {
        const QDateTime dt = QDateTime::fromString(t, QString::fromLatin1(f));
        // The form dates are stored in, midnight included, so = and < compare like dates.
        if (dt.isValid())
            return dt.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    }
    return std::nullopt;
}

} // namespace

JetTranslation translateJet(const QString& jet)
{
    QString out;
    out.reserve(jet.size() + 16);
    const qsizetype n = jet.size();
    qsizetype i = 0;
    while (i < n) {
        const QChar c = jet.at(i);
        if (c == u'\'' || c == u'"') {
            QString body;
            qsizetype j = i + 1;
            bool closed = false;
            while (j < n) {
                if (jet.at(j) == c) {
                    if (j + 1 < n && jet.at(j + 1) == c) { // doubled quote inside the string
                        body += c;
                        j += 2;
                        continue;
                    }
                    closed = true;
                    break;
                }
                body += jet.at(j++);
            }
            if (!closed)
                return {{}, QStringLiteral("a quoted text is not closed: %1").arg(jet.mid(i))};
            out += quoted(body);
            i = j + 1;
        } else if (c == u'[') {
            const qsizetype j = jet.indexOf(u']', i + 1);
            if (j < 0)
                return {{}, QStringLiteral("a [name] is not closed: %1").arg(jet.mid(i))};
            QString name = jet.mid(i + 1, j - i - 1);
            name.replace(u'"', QLatin1String("\"\""));
            out += u'"' + name + u'"';
            i = j + 1;
        } else if (c == u'#') {
            const qsizetype j = jet.indexOf(u'#', i + 1);
            const auto date = j < 0 ? std::nullopt : dateLiteral(jet.mid(i + 1, j - i - 1));
            if (!date)
                return {{}, QStringLiteral("not a date: %1").arg(jet.mid(i))};
            out += quoted(*date);
            i = j + 1;
        } else if (isWordChar(c)) {
            qsizetype j = i;
            while (j < n && isWordChar(jet.at(j)))
                ++j;
            const QString word = jet.mid(i, j - i);
            if (word.compare(QLatin1String("Yes"), Qt::CaseInsensitive) == 0 ||
                word.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
                out += u'1';
            else if (word.compare(QLatin1String("No"), Qt::CaseInsensitive) == 0 ||
                     word.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
                out += u'0';
            else
                out += word;
            i = j;
        } else {
            out += c;
            ++i;
        }
    }
    return {out, {}};
}

namespace {

struct PatternItem
{
    enum Kind
    {
        Any,
        One,
        Digit,
        Literal,
        Set
    } kind;
    QString chars; // Literal: the character; Set: single characters
    QList<QPair<QChar, QChar>> ranges;
    bool negated = false;
};

QList<PatternItem> compile(const QString& pattern)
{
    QList<PatternItem> items;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern.at(i);
        if (c == u'*') {
            if (items.isEmpty() || items.last().kind != PatternItem::Any)
                items.append({PatternItem::Any, {}, {}, false});
        } else if (c == u'?') {
            items.append({PatternItem::One, {}, {}, false});
        } else if (c == u'#') {
            items.append({PatternItem::Digit, {}, {}, false});
        } else if (c == u'[' && pattern.indexOf(u']', i + 1) > i + 1) {
            const qsizetype end = pattern.indexOf(u']', i + 1);
            PatternItem set{PatternItem::Set, {}, {}, false};
            qsizetype k = i + 1;
            if (pattern.at(k) == u'!' && k + 1 < end) {
                set.negated = true;
                ++k;
            }
            for (; k < end; ++k) {
                if (k + 2 < end && pattern.at(k + 1) == u'-') {
                    set.ranges.append(
                        {pattern.at(k).toCaseFolded(), pattern.at(k + 2).toCaseFolded()});
                    k += 2;
                } else {
                    set.chars += pattern.at(k).toCaseFolded();
                }
            }
            items.append(set);
            i = end;
        } else {
            items.append({PatternItem::Literal, QString(c.toCaseFolded()), {}, false});
        }
    }
    return items;
}

bool matchesOne(const PatternItem& item, QChar c)
{
    switch (item.kind) {
    case PatternItem::One:
        return true;
    case PatternItem::Digit:
        return c.isDigit();
    case PatternItem::Literal:
        return item.chars.at(0) == c;
    case PatternItem::Set: {
        bool in = item.chars.contains(c);
        for (const auto& r : item.ranges)
            in = in || (c >= r.first && c <= r.second);
        return in != item.negated;
    }
    case PatternItem::Any:
        break;
    }
    return false;
}

} // namespace

bool jetLike(const QString& pattern, const QString& value)
{
    const QList<PatternItem> items = compile(pattern);
    const QString text = value.toCaseFolded();
    // Greedy match with backtracking to the last '*': linear in practice, no recursion.
    qsizetype p = 0, t = 0, starP = -1, starT = 0;
    while (t < text.size()) {
        if (p < items.size() && items.at(p).kind == PatternItem::Any) {
            starP = p++;
            starT = t;
        } else if (p < items.size() && matchesOne(items.at(p), text.at(t))) {
            ++p;
            ++t;
        } else if (starP >= 0) {
            p = starP + 1;
            t = ++starT;
        } else {
            return false;
        }
    }
    while (p < items.size() && items.at(p).kind == PatternItem::Any)
        ++p;
    return p == items.size();
}
