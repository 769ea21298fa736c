#pragma once

#include <QString>

// The small text, file and waiting routines every part of the program shares. String
// comparison is exact (letter case counts) throughout.

// The characters after the last "\" or "/"; the whole text when there is none.
QString FileNameOfPath(const QString& path);
// Replaces the first occurrence of find.
QString ReplaceFirst(const QString& text, const QString& find, const QString& replacement);
// Replaces occurrences of find, keeping only the segment before the last occurrence: each
// occurrence overwrites what was gathered so far. With one occurrence this is an ordinary
// replacement. The seller report reader depends on exactly this behaviour.
QString ReplaceAll(const QString& text, const QString& find, const QString& replacement);
// Replaces every occurrence of one character.
QString ReplaceChar(const QString& text, QChar find, const QString& replacement);
// < > " ' become entities; the ampersand and everything else stay as they are.
QString HtmlEscape(const QString& text);
// A colour number (red in the low byte) as the six hex digits of an HTML colour, red first.
// A single-digit colour is padded to seven digits and so comes out as "000000".
QString ColorToHtml(qint64 color);
// The whole file with every line ended by CR LF; "" for an empty path; on a read error, the
// text read so far.
QString ReadTextFile(const QString& path);
// Waits the given seconds while the windows stay live.
void Pause(double seconds);
