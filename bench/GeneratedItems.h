#pragma once

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QString>

#include <cstdio>

// The folder holding a tb2.mdb of `items` generated items, made by scripts/make-items the first
// time it is asked for and kept under dataDir for later runs.
inline QString generatedItemsFolder(const QString& dataDir, int items)
{
    const QString folder = dataDir + QStringLiteral("/items-%1").arg(items);
    const QString file = folder + QStringLiteral("/tb2.mdb");
    if (QFileInfo::exists(file))
        return folder;
    QDir().mkpath(folder);
    std::printf("generating %d items...\n", items);
    std::fflush(stdout);
    const int rc = QProcess::execute(
        QStringLiteral("/usr/bin/python3"),
        {QStringLiteral(TALLYBID_SOURCE_DIR "/scripts/make-items"), QString::number(items), file});
    if (rc != 0)
        qFatal("scripts/make-items failed");
    return folder;
}
