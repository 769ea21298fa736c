#include "platform/PrintedWindows.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>

// Defined when the windows are linked in; otherwise the module supplies it.
extern "C" const TbPrintedWindowMakers* tb_printed_window_makers() __attribute__((weak));

namespace {

const TbPrintedWindowMakers* loadedMakers(QString& why)
{
    if (tb_printed_window_makers)
        return tb_printed_window_makers();
    static const TbPrintedWindowMakers* made = nullptr;
    if (made)
        return made;
    const QStringList candidates =
        PrintedWindows::moduleCandidates(QCoreApplication::applicationDirPath());
    QStringList problems;
    for (const QString& path : candidates) {
        if (!QFileInfo::exists(path))
            continue;
        // Kept loaded for the rest of the run: its windows may be open until the end.
        QLibrary module(path);
        module.setLoadHints(QLibrary::PreventUnloadHint);
        using Makers = const TbPrintedWindowMakers* (*)();
        if (const auto makers =
                reinterpret_cast<Makers>(module.resolve("tb_printed_window_makers")))
            return made = makers();
        problems << module.errorString();
    }
    why = problems.isEmpty()
              ? QStringLiteral("The file %1 is missing; install Tallybid again.")
                    .arg(QDir::toNativeSeparators(candidates.constLast()))
              : QStringLiteral("%1\nInstall Tallybid again.").arg(problems.join(u'\n'));
    return nullptr;
}

} // namespace

namespace PrintedWindows {

QStringList moduleCandidates(const QString& programDir)
{
    const QString file = QStringLiteral(TB_PRINTING_MODULE);
    return {programDir + u'/' + file,
            QDir::cleanPath(programDir + QLatin1String("/" TB_MODULES_FROM_BIN "/") + file)};
}

QWidget* makeReports(AppContext& ctx, QWidget* parent, QString& why)
{
    const TbPrintedWindowMakers* makers = loadedMakers(why);
    return makers ? makers->reports(ctx, parent) : nullptr;
}

QWidget* makePaperwork(AppContext& ctx, PaperKind kind, const QString& html,
                       const QString& baseName, QWidget* parent, QString& why)
{
    const TbPrintedWindowMakers* makers = loadedMakers(why);
    return makers ? makers->paperwork(ctx, kind, html, baseName, parent) : nullptr;
}

} // namespace PrintedWindows
