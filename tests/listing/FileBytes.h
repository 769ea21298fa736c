#pragma once

#include <QDir>
#include <QFile>

// Whole files for byte-for-byte comparisons; a file that cannot be read gives an empty array.
inline QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline bool writeAll(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(path.left(path.lastIndexOf(u'/')));
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}
