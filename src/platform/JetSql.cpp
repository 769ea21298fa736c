#include "platform/JetSql.h"

#include <QDateTime>
#include <QList>
#include <QVariant>
#include <cstring>

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

// ---------------------------------------------------------------- find criteria

namespace {

struct Token
{
    enum Kind
    {
        End,
        Name,    // text: the name as spelled
        Word,    // text: upper-case keyword
        Literal, // value
        Symbol   // text: = <> < > <= >= ( ) ,
    } kind = End;
    QString text;
    QVariant value;
};

const QStringList& keywords()
{
    static const QStringList words{QStringLiteral("AND"),     QStringLiteral("OR"),
                                   QStringLiteral("NOT"),     QStringLiteral("LIKE"),
                                   QStringLiteral("BETWEEN"), QStringLiteral("IN"),
                                   QStringLiteral("IS"),      QStringLiteral("NULL")};
    return words;
}

class CriteriaParser
{
public:
    CriteriaParser(const QString& text, const QStringList& columns)
        : m_text(text), m_columns(columns)
    {
    }

    JetCriteria run()
    {
        // The whole text is read into tokens first: a text that cannot be read at all (an open
        // quote) is told apart from one that reads but does not make a condition.
        for (;;) {
            lex();
            if (!m_error.isEmpty())
                return {{}, {}, m_error, true};
            m_tokens.append(m_token);
            if (m_token.kind == Token::End)
                break;
        }
        advance();
        expression();
        if (m_error.isEmpty() && m_token.kind != Token::End)
            fail(QStringLiteral("unexpected %1").arg(describe()));
        if (!m_error.isEmpty())
            return {{}, {}, m_error, false};
        return {m_sql, m_values, {}, false};
    }

private:
    void fail(const QString& why)
    {
        if (m_error.isEmpty())
            m_error = why;
        m_token = {};
    }

    QString describe() const
    {
        return m_token.kind == Token::End ? QStringLiteral("end of the criteria")
                                          : QStringLiteral("'%1'").arg(m_token.text);
    }

    QString columnNamed(const QString& name) const
    {
        for (const QString& c : m_columns) {
            if (c.compare(name, Qt::CaseInsensitive) == 0)
                return c;
        }
        return {};
    }

    void name(const QString& spelled) { m_token = {Token::Name, spelled, {}}; }

    void advance() { m_token = m_tokens.value(m_next++); }

    // Reads the next token of the text into m_token.
    void lex()
    {
        const qsizetype n = m_text.size();
        while (m_pos < n && m_text.at(m_pos).isSpace())
            ++m_pos;
        if (m_pos >= n) {
            m_token = {};
            return;
        }
        const QChar c = m_text.at(m_pos);
        const qsizetype start = m_pos;
        if (c == u'\'' || c == u'"') {
            QString body;
            qsizetype j = m_pos + 1;
            for (;; ++j) {
                if (j >= n)
                    return fail(
                        QStringLiteral("a quoted text is not closed: %1").arg(m_text.mid(start)));
                if (m_text.at(j) == c) {
                    if (j + 1 < n && m_text.at(j + 1) == c) { // doubled quote inside the text
                        body += c;
                        ++j;
                        continue;
                    }
                    break;
                }
                body += m_text.at(j);
            }
            m_pos = j + 1;
            m_token = {Token::Literal, m_text.mid(start, m_pos - start), body};
        } else if (c == u'#') {
            const qsizetype j = m_text.indexOf(u'#', m_pos + 1);
            const auto date =
                j < 0 ? std::nullopt : dateLiteral(m_text.mid(m_pos + 1, j - m_pos - 1));
            if (!date)
                return fail(QStringLiteral("not a date: %1").arg(m_text.mid(start)));
            m_pos = j + 1;
            m_token = {Token::Literal, m_text.mid(start, m_pos - start), *date};
        } else if (c == u'[') {
            const qsizetype j = m_text.indexOf(u']', m_pos + 1);
            if (j < 0)
                return fail(QStringLiteral("a [name] is not closed: %1").arg(m_text.mid(start)));
            m_pos = j + 1;
            name(m_text.mid(start + 1, j - start - 1));
        } else if (c.isDigit() || (c == u'.' && m_pos + 1 < n && m_text.at(m_pos + 1).isDigit())) {
            qsizetype j = m_pos;
            while (j < n && (m_text.at(j).isDigit() || m_text.at(j) == u'.'))
                ++j;
            const QString number = m_text.mid(m_pos, j - m_pos);
            m_pos = j;
            bool ok = false;
            QVariant value = number.toLongLong(&ok);
            if (!ok)
                value = number.toDouble(&ok);
            // "1.2.3" reads, but as nothing a condition can use.
            m_token = ok ? Token{Token::Literal, number, value} : Token{Token::Symbol, number, {}};
        } else if (c.isLetter() || c == u'_') {
            qsizetype j = m_pos;
            while (j < n && (m_text.at(j).isLetterOrNumber() || m_text.at(j) == u'_'))
                ++j;
            QString word = m_text.mid(m_pos, j - m_pos);
            // Items.Column names the same column.
            if (word.compare(QLatin1String("Items"), Qt::CaseInsensitive) == 0 && j < n &&
                m_text.at(j) == u'.') {
                qsizetype k = j + 1;
                if (k < n && m_text.at(k) == u'[') {
                    const qsizetype close = m_text.indexOf(u']', k + 1);
                    if (close < 0)
                        return fail(
                            QStringLiteral("a [name] is not closed: %1").arg(m_text.mid(start)));
                    m_pos = close + 1;
                    return name(m_text.mid(k + 1, close - k - 1));
                }
                while (k < n && (m_text.at(k).isLetterOrNumber() || m_text.at(k) == u'_'))
                    ++k;
                word = m_text.mid(j + 1, k - j - 1);
                j = k;
            }
            m_pos = j;
            const QString upper = word.toUpper();
            if (upper == QLatin1String("YES") || upper == QLatin1String("TRUE"))
                m_token = {Token::Literal, word, 1};
            else if (upper == QLatin1String("NO") || upper == QLatin1String("FALSE"))
                m_token = {Token::Literal, word, 0};
            else if (keywords().contains(upper))
                m_token = {Token::Word, upper, {}};
            else
                name(word);
        } else {
            static const QStringList symbols{
                QStringLiteral("<>"), QStringLiteral("<="), QStringLiteral(">="),
                QStringLiteral("="),  QStringLiteral("<"),  QStringLiteral(">"),
                QStringLiteral("("),  QStringLiteral(")"),  QStringLiteral(","),
                QStringLiteral("-"),  QStringLiteral("+")};
            for (const QString& s : symbols) {
                if (QStringView(m_text).mid(m_pos).startsWith(s)) {
                    m_pos += s.size();
                    m_token = {Token::Symbol, s, {}};
                    return;
                }
            }
            // Read as a symbol no condition uses, so the text fails as a condition.
            ++m_pos;
            m_token = {Token::Symbol, QString(c), {}};
        }
    }

    bool isWord(const char* word) const
    {
        return m_token.kind == Token::Word && m_token.text == QLatin1String(word);
    }
    bool isSymbol(const char* symbol) const
    {
        return m_token.kind == Token::Symbol && m_token.text == QLatin1String(symbol);
    }
    void expect(bool present, const char* what)
    {
        if (!present)
            return fail(
                QStringLiteral("%1 expected before %2").arg(QLatin1String(what), describe()));
        advance();
    }

    void expression()
    {
        conjunction();
        while (m_error.isEmpty() && isWord("OR")) {
            m_sql += QLatin1String(" OR ");
            advance();
            conjunction();
        }
    }

    void conjunction()
    {
        negation();
        while (m_error.isEmpty() && isWord("AND")) {
            m_sql += QLatin1String(" AND ");
            advance();
            negation();
        }
    }

    void negation()
    {
        if (isWord("NOT")) {
            m_sql += QLatin1String("NOT ");
            advance();
            return negation();
        }
        predicate();
    }

    void predicate()
    {
        operand();
        if (!m_error.isEmpty())
            return;
        static const QStringList comparisons{QStringLiteral("="),  QStringLiteral("<>"),
                                             QStringLiteral("<"),  QStringLiteral(">"),
                                             QStringLiteral("<="), QStringLiteral(">=")};
        if (m_token.kind == Token::Symbol && comparisons.contains(m_token.text)) {
            m_sql += u' ' + m_token.text + u' ';
            advance();
            return operand();
        }
        if (isWord("IS")) {
            m_sql += QLatin1String(" IS ");
            advance();
            if (isWord("NOT")) {
                m_sql += QLatin1String("NOT ");
                advance();
            }
            m_sql += QLatin1String("NULL");
            return expect(isWord("NULL"), "NULL");
        }
        if (isWord("NOT")) {
            m_sql += QLatin1String(" NOT");
            advance();
            if (!isWord("LIKE") && !isWord("BETWEEN") && !isWord("IN"))
                return fail(
                    QStringLiteral("LIKE, BETWEEN or IN expected before %1").arg(describe()));
        }
        if (isWord("LIKE")) {
            m_sql += QLatin1String(" LIKE ");
            advance();
            return operand();
        }
        if (isWord("BETWEEN")) {
            m_sql += QLatin1String(" BETWEEN ");
            advance();
            operand();
            m_sql += QLatin1String(" AND ");
            expect(isWord("AND"), "AND");
            return operand();
        }
        if (isWord("IN")) {
            m_sql += QLatin1String(" IN (");
            advance();
            expect(isSymbol("("), "(");
            for (;;) {
                operand();
                if (!m_error.isEmpty() || !isSymbol(","))
                    break;
                m_sql += QLatin1String(", ");
                advance();
            }
            m_sql += u')';
            expect(isSymbol(")"), ")");
        }
    }

    void operand()
    {
        if (!m_error.isEmpty())
            return;
        if (isSymbol("(")) {
            m_sql += u'(';
            advance();
            expression();
            m_sql += u')';
            return expect(isSymbol(")"), ")");
        }
        if (isSymbol("-") || isSymbol("+")) {
            const bool negative = isSymbol("-");
            advance();
            if (m_token.kind != Token::Literal || !m_token.value.canConvert<double>() ||
                m_token.value.typeId() == QMetaType::QString)
                return fail(QStringLiteral("a number expected before %1").arg(describe()));
            QVariant v = m_token.value;
            if (negative)
                v = v.typeId() == QMetaType::Double ? QVariant(-v.toDouble())
                                                    : QVariant(-v.toLongLong());
            m_sql += u'?';
            m_values << v;
            return advance();
        }
        if (m_token.kind == Token::Name) {
            const QString column = columnNamed(m_token.text);
            if (column.isEmpty())
                return fail(QStringLiteral("'%1' is not a column of the items").arg(m_token.text));
            m_sql += u'"' + column + u'"';
            return advance();
        }
        if (m_token.kind == Token::Literal) {
            m_sql += u'?';
            m_values << m_token.value;
            return advance();
        }
        if (isWord("NULL")) {
            m_sql += QLatin1String("NULL");
            return advance();
        }
        fail(QStringLiteral("a column or a value expected before %1").arg(describe()));
    }

    const QString m_text;
    const QStringList m_columns;
    qsizetype m_pos = 0;
    QList<Token> m_tokens;
    qsizetype m_next = 0;
    Token m_token;
    QString m_sql;
    QVariantList m_values;
    QString m_error;
};

} // namespace

JetCriteria parseJetCriteria(const QString& jet, const QStringList& columns)
{
    return CriteriaParser(jet, columns).run();
}
// ---------------------------------------------------------------- LIKE

namespace {

bool isAscii(const char* text, qsizetype size)
{
    qsizetype i = 0;
    // Eight bytes at a time: descriptions run to several KB.
    for (; i + 8 <= size; i += 8) {
        quint64 word;
        std::memcpy(&word, text + i, 8);
        if (word & 0x8080808080808080ULL)
            return false;
    }
    for (; i < size; ++i) {
        if (static_cast<unsigned char>(text[i]) & 0x80)
            return false;
    }
    return true;
}

inline unsigned char lowerAscii(unsigned char c)
{
    return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c;
}

// Whether the lower-case needle, from its second byte on, follows at text.
bool restEqualsFolded(const char* text, const QByteArray& needle)
{
    for (qsizetype i = 1; i < needle.size(); ++i) {
        if (lowerAscii(static_cast<unsigned char>(text[i])) !=
            static_cast<unsigned char>(needle.at(i)))
            return false;
    }
    return true;
}

// First place at or after from where the lower-case needle occurs, letter case ignored; -1 when
// none. Jumps between candidates with memchr on both cases of the first letter.
qsizetype findFolded(const char* text, qsizetype size, qsizetype from, const QByteArray& needle)
{
    const qsizetype last = size - needle.size(); // last place a match can start
    if (from > last)
        return -1;
    if (needle.isEmpty())
        return from;
    const unsigned char lower = static_cast<unsigned char>(needle.at(0));
    const unsigned char upper = lower >= 'a' && lower <= 'z' ? lower - ('a' - 'A') : lower;
    const auto next = [&](unsigned char c, qsizetype at) -> qsizetype {
        if (at > last)
            return -1;
        const void* hit = std::memchr(text + at, c, size_t(last - at + 1));
        return hit ? static_cast<const char*>(hit) - text : -1;
    };
    qsizetype nextLower = next(lower, from);
    qsizetype nextUpper = upper == lower ? -1 : next(upper, from);
    while (nextLower >= 0 || nextUpper >= 0) {
        const bool takeLower = nextUpper < 0 || (nextLower >= 0 && nextLower < nextUpper);
        const qsizetype at = takeLower ? nextLower : nextUpper;
        if (restEqualsFolded(text + at, needle))
            return at;
        if (takeLower)
            nextLower = next(lower, at + 1);
        else
            nextUpper = next(upper, at + 1);
    }
    return -1;
}

bool matchesOne(const JetPatternItem& item, QChar c)
{
    switch (item.kind) {
    case JetPatternItem::One:
        return true;
    case JetPatternItem::Digit:
        return c.isDigit();
    case JetPatternItem::Literal:
        return item.chars.at(0) == c;
    case JetPatternItem::Set: {
        bool in = item.chars.contains(c);
        for (const auto& r : item.ranges)
            in = in || (c >= r.first && c <= r.second);
        return in != item.negated;
    }
    case JetPatternItem::Any:
        break;
    }
    return false;
}

} // namespace

JetLikePattern::JetLikePattern(const QString& pattern) : m_pattern(pattern)
{
    using K = JetPatternItem;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern.at(i);
        if (c == u'*') {
            if (m_items.isEmpty() || m_items.last().kind != K::Any)
                m_items.append({K::Any, {}, {}, false});
        } else if (c == u'?') {
            m_items.append({K::One, {}, {}, false});
        } else if (c == u'#') {
            m_items.append({K::Digit, {}, {}, false});
        } else if (c == u'[' && pattern.indexOf(u']', i + 1) > i + 1) {
            const qsizetype end = pattern.indexOf(u']', i + 1);
            JetPatternItem set{K::Set, {}, {}, false};
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
            m_items.append(set);
            i = end;
        } else {
            m_items.append({K::Literal, QString(c.toCaseFolded()), {}, false});
        }
    }

    // Plain characters and '*' over ASCII can be matched on the stored bytes: a non-ASCII
    // character can then only stand where a '*' is, and no other letter folds to ASCII but the
    // Kelvin sign and the long s, which are looked out for separately.
    m_bytePath = true;
    QByteArray segment;
    for (const JetPatternItem& item : std::as_const(m_items)) {
        if (item.kind == K::Any) {
            m_segments.append(segment);
            segment.clear();
        } else if (item.kind == K::Literal && item.chars.at(0).unicode() < 0x80) {
            const char b = char(item.chars.at(0).unicode());
            segment += b;
            m_foldsFromNonAscii = m_foldsFromNonAscii || b == 'k' || b == 's';
        } else {
            m_bytePath = false;
            break;
        }
    }
    if (m_bytePath) {
        m_segments.append(segment);
    } else {
        m_segments.clear();
    }
}

bool JetLikePattern::matches(const char* utf8, qsizetype size) const
{
    if (m_bytePath) {
        static constexpr char kKelvin[] = "\xE2\x84\xAA";
        static constexpr char kLongS[] = "\xC5\xBF";
        const bool folds =
            m_foldsFromNonAscii && !isAscii(utf8, size) &&
            (memmem(utf8, size_t(size), kKelvin, 3) || memmem(utf8, size_t(size), kLongS, 2));
        if (!folds)
            return matchesBytes(utf8, size);
    }
    return matchesFolded(QString::fromUtf8(utf8, size).toCaseFolded());
}

bool JetLikePattern::matchesBytes(const char* text, qsizetype size) const
{
    const qsizetype count = m_segments.size();
    if (count == 1) // no '*': the whole value
        return size == m_segments.first().size() &&
               (size == 0 || findFolded(text, size, 0, m_segments.first()) == 0);
    const QByteArray& first = m_segments.first();
    const QByteArray& last = m_segments.last();
    if (first.size() + last.size() > size)
        return false;
    qsizetype pos = 0;
    if (!first.isEmpty()) {
        if (findFolded(text, first.size(), 0, first) != 0)
            return false;
        pos = first.size();
    }
    const qsizetype end = size - last.size();
    for (qsizetype i = 1; i + 1 < count; ++i) {
        const qsizetype at = findFolded(text, end, pos, m_segments.at(i));
        if (at < 0)
            return false;
        pos = at + m_segments.at(i).size();
    }
    return last.isEmpty() || findFolded(text, size, end, last) == end;
}

bool JetLikePattern::matchesFolded(const QString& text) const
{
    // Greedy match with backtracking to the last '*': linear in practice, no recursion.
    qsizetype p = 0, t = 0, starP = -1, starT = 0;
    while (t < text.size()) {
        if (p < m_items.size() && m_items.at(p).kind == JetPatternItem::Any) {
            starP = p++;
            starT = t;
        } else if (p < m_items.size() && matchesOne(m_items.at(p), text.at(t))) {
            ++p;
            ++t;
        } else if (starP >= 0) {
            p = starP + 1;
            t = ++starT;
        } else {
            return false;
        }
    }
    while (p < m_items.size() && m_items.at(p).kind == JetPatternItem::Any)
        ++p;
    return p == m_items.size();
}

bool jetLike(const QString& pattern, const QString& value)
{
    const QByteArray utf8 = value.toUtf8();
    return JetLikePattern(pattern).matches(utf8.constData(), utf8.size());
}
