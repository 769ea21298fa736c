#pragma once

#include <QKeyEvent>
#include <QString>

// Boxes that take only certain characters: a typed character outside `allowed` is refused
// (the caller beeps and drops it). Backspace, editing and navigation keys and shortcuts pass.
inline bool isRefusedKey(const QKeyEvent* key, const QString& allowed)
{
    const QString t = key->text();
    if (t.isEmpty() || !t.at(0).isPrint())
        return false;
    if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;
    for (const QChar c : t)
        if (!allowed.contains(c))
            return true;
    return false;
}

inline const QString kDigits = QStringLiteral("0123456789");
