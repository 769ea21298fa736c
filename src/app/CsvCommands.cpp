#include "app/CsvCommands.h"

#include "app/frmImport.h"
#include "app/texts.h"
#include "db/ItemCsv.h"
#include "platform/Prompts.h"
#include "settings/AppContext.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProgressDialog>

namespace CsvCommands {

void exportItems(AppContext& ctx, QWidget* owner, const QList<qint64>& ids)
{
    const QString path = ctx.prompts.saveFileName(
        Texts::kExportTitle, ctx.appFile(QStringLiteral("items.csv")), Texts::kCsvFilter);
    if (path.isEmpty())
        return;
    ItemCsv::Outcome outcome;
    {
        QProgressDialog progress(Texts::kExporting, QCoreApplication::translate("Csv", "Cancel"), 0,
                                 int(std::max<qsizetype>(ids.size(), 1)), owner);
        progress.setObjectName(QStringLiteral("dlgExportProgress"));
        progress.setWindowTitle(Texts::kExportTitle);
        progress.setWindowModality(Qt::ApplicationModal);
        progress.setMinimumDuration(500);
        outcome = ItemCsv::exportItems(ctx.itemDatabase, ids, path,
                                       [&progress](qsizetype done, qsizetype) {
                                           progress.setValue(int(done));
                                           return !progress.wasCanceled();
                                       });
    }
    if (outcome.cancelled)
        return;
    if (!outcome.ok()) {
        ctx.prompts.message(Texts::exportFailed(outcome.error), Texts::kExportTitle,
                            PromptIcon::Exclamation);
        return;
    }
    ctx.prompts.message(Texts::exportDone(outcome.count, QDir::toNativeSeparators(path)),
                        Texts::kExportTitle, PromptIcon::Information);
}

bool importItems(AppContext& ctx, QWidget* owner)
{
    const QString path =
        ctx.prompts.openFileName(Texts::kImportTitle, ctx.state.appPath, Texts::kCsvFilter);
    if (path.isEmpty())
        return false;
    ItemCsv::ImportPlan plan = ItemCsv::planImportFile(path);
    if (!plan.ok()) {
        ctx.prompts.message(Texts::importRefused(plan.error), Texts::kImportTitle,
                            PromptIcon::Exclamation);
        return false;
    }
    frmImport dialog(ctx, std::move(plan), QFileInfo(path).fileName(), owner);
    return dialog.exec() == QDialog::Accepted && dialog.outcome().count > 0;
}

} // namespace CsvCommands
