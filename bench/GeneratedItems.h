#pragma once

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <cstdio>

// The folder holding a tb2.mdb of `items` generated items, made by scripts/make-items the first
// time it is asked for and kept under dataDir for later runs. `years` > 0 spreads the auctions
// over that many years; `deleted` > 0 leaves gaps in the keys, as if that percentage of the
// items ever entered had been deleted (each a folder of its own).
inline QString generatedItemsFolder(const QString& dataDir, int items, int years = 0,
                                    int deleted = 0)
{
    QString folder = dataDir + QStringLiteral("/items-%1").arg(items);
    QStringList options;
    if (years > 0) {
        folder += QStringLiteral("-years%1").arg(years);
        options << QStringLiteral("--years") << QString::number(years);
    }
    if (deleted > 0) {
        folder += QStringLiteral("-deleted%1").arg(deleted);
        options << QStringLiteral("--deleted") << QString::number(deleted);
    }
    const QString file = folder + QStringLiteral("/tb2.mdb");
    if (QFileInfo::exists(file))
        return folder;
    QDir().mkpath(folder);
    std::printf("generating %d items...\n", items);
    std::fflush(stdout);
    const int rc =
        QProcess::execute(QStringLiteral("/usr/bin/python3"),
                          QStringList{QStringLiteral(TALLYBID_SOURCE_DIR "/scripts/make-items"),
                                      QString::number(items), file} +
                              options);
    if (rc != 0)
        qFatal("scripts/make-items failed");
    return folder;
}
