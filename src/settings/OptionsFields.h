#pragma once

#include <QString>

// Tidying of the Options dialog's fields when they lose the focus. Pure functions, so the
// rules can be checked without the window.

// "Host Image Dir": leading "\" and "/" go, trailing "\" go, and a non-empty result ends in
// "/" ("\images\" -> "images/", ".\" -> "./").
QString normalizeHostImageDir(const QString& text);
// "Web Images URL": trimmed, and a non-empty address ends in "/".
QString normalizeWebImagesUrl(const QString& text);
// Past days: an empty (or blank) field becomes "1"; anything else stays as typed.
QString normalizePastDays(const QString& text);
