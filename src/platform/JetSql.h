#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QVariantList>
#include <optional>

// The record sources and search criteria of the item windows are written in the Jet dialect:
// Yes/No/True/False, double-quoted strings, [bracketed] names, #date# literals and LIKE patterns
// with * ? # wildcards compared without letter case. These routines carry them over to SQLite.

struct JetTranslation
{
    QString sql;   // the SQLite text when ok
    QString error; // why the text could not be carried over
    bool ok() const { return error.isEmpty(); }
};

JetTranslation translateJet(const QString& jet);

// Jet LIKE: * any run, ? any one character, # one digit, [abc] [a-z] [!abc] character lists;
// letters compared without case (Unicode case folding). The SQLite like() of every connection
// the program opens is replaced by this one.
bool jetLike(const QString& pattern, const QString& value);

// A find criteria carried over to SQLite: the condition with every literal as a ? placeholder,
// and the literals in order.
struct JetCriteria
{
    QString sql;
    QVariantList values;
    QString error;           // why the criteria was refused
    bool unreadable = false; // the text itself cannot be read (an open quote, a bad #date#)
    bool ok() const { return error.isEmpty(); }
};

// Reads a find criteria: column names (bare, [bracketed] or Items.-qualified), literals
// ('text', "text", numbers, #dates#, Yes/No/True/False, Null), comparisons, [NOT] LIKE,
// [NOT] BETWEEN .. AND .., [NOT] IN (..), IS [NOT] NULL, AND/OR/NOT and parentheses. Anything
// else (another table, a sub-query, a second statement, a comment) is refused, so the text
// typed into a search can only ever test columns of the row.
JetCriteria parseJetCriteria(const QString& jet, const QStringList& columns);

// One step of a compiled LIKE pattern.
struct JetPatternItem
{
    enum Kind
    {
        Any,
        One,
        Digit,
        Literal,
        Set
    } kind;
    QString chars; // Literal: the folded character; Set: its single folded characters
    QList<QPair<QChar, QChar>> ranges;
    bool negated = false;
};

// A Jet LIKE pattern compiled once and matched against many values (UTF-8 as SQLite hands
// them over). Patterns of plain characters and * over ASCII text are matched on the bytes
// directly; everything else goes through Unicode case folding, with the same results.
class JetLikePattern
{
public:
    explicit JetLikePattern(const QString& pattern);
    bool matches(const char* utf8, qsizetype size) const;
    QString pattern() const { return m_pattern; }

private:
    bool matchesBytes(const char* text, qsizetype size) const;
    bool matchesFolded(const QString& folded) const;

    QString m_pattern;
    QList<JetPatternItem> m_items;
    bool m_bytePath = false;          // only ASCII literals and '*'
    QList<QByteArray> m_segments;     // the pattern split at '*', lower-case ASCII
    bool m_foldsFromNonAscii = false; // holds 'k' or 's', which two non-ASCII letters fold to
};
