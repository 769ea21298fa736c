#pragma once

#include <QString>
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
