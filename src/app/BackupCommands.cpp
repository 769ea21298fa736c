#include "app/BackupCommands.h"

#include "app/Backups.h"
#include "app/texts.h"
#include "platform/Prompts.h"
#include "platform/WaitCursor.h"
#include "settings/AppContext.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QProgressBar>
#include <QProgressDialog>

namespace BackupCommands {

namespace {

// A modal progress dialog with Cancel, shown at once: from the first step on, clicks go
// nowhere but to it.
class Progress
{
public:
    Progress(QWidget* owner, const QString& label) : m_dialog(label, tr("Cancel"), 0, 0, owner)
    {
        m_dialog.setObjectName(QStringLiteral("dlgBackupProgress"));
        m_dialog.setWindowTitle(kDefaultTitle);
        m_dialog.setWindowModality(Qt::ApplicationModal);
        m_dialog.setMinimumDuration(0);
        m_dialog.setAutoClose(false);
        m_dialog.setAutoReset(false);
        m_dialog.setValue(0);
    }
    BackupProgress callback()
    {
        return [this](int done, int total) {
            m_dialog.setMaximum(std::max(total, 1));
            m_dialog.setValue(std::min(done, std::max(total, 1)));
            return !m_dialog.wasCanceled();
        };
    }
    // While pages go into the open connection nothing else may use it, so from here on no
    // events are processed (no timer, no paint that reads items): the bar repaints itself and
    // there is no Cancel.
    BackupProgress sealedCallback(const QString& label)
    {
        m_dialog.setLabelText(label);
        m_dialog.setCancelButton(nullptr);
        m_dialog.repaint();
        auto* bar = m_dialog.findChild<QProgressBar*>();
        return [bar](int done, int total) {
            if (bar) {
                bar->setMaximum(std::max(total, 1));
                bar->setValue(std::min(done, std::max(total, 1)));
            }
            return true;
        };
    }

private:
    static QString tr(const char* text) { return QCoreApplication::translate("Backups", text); }
    QProgressDialog m_dialog;
};

bool sameFile(const QString& a, const QString& b)
{
    const QString ca = QFileInfo(a).canonicalFilePath();
    return !ca.isEmpty() && ca == QFileInfo(b).canonicalFilePath();
}

// The backup that start-up makes may still be being written: a copy or a restore asked for now
// waits for it, so the two never write the same folder at once.
void waitForStartupBackup(const AppContext& ctx)
{
    if (ctx.state.waitForStartupBackup) {
        const WaitCursor busy;
        ctx.state.waitForStartupBackup();
    }
}

} // namespace

void backUpNow(AppContext& ctx, QWidget* owner)
{
    waitForStartupBackup(ctx);
    const QString folder = Backups::folderOf(ctx.state.appPath);
    QDir().mkpath(folder);
    const QString path = ctx.prompts.saveFileName(
        Texts::kBackupTitle, folder + u'/' + Backups::fileName(QDateTime::currentDateTime()),
        Texts::kBackupFilter);
    if (path.isEmpty())
        return;
    if (sameFile(path, ctx.state.databasePath)) {
        ctx.prompts.message(Texts::kBackupIsLive, Texts::kBackupTitle, PromptIcon::Exclamation);
        return;
    }
    BackupOutcome outcome;
    {
        Progress progress(owner, Texts::kBackingUp);
        outcome = backupDatabaseFile(ctx.state.databasePath, path, progress.callback());
    }
    if (outcome.cancelled)
        return;
    if (!outcome.ok()) {
        ctx.prompts.message(Texts::backupFailed(outcome.error), Texts::kBackupTitle,
                            PromptIcon::Exclamation);
        return;
    }
    ctx.prompts.message(Texts::backupMade(QDir::toNativeSeparators(path)), Texts::kBackupTitle,
                        PromptIcon::Information);
}

bool restoreBackup(AppContext& ctx, QWidget* owner, const std::function<void()>& reopen)
{
    waitForStartupBackup(ctx);
    const QString folder = Backups::folderOf(ctx.state.appPath);
    const QString path =
        ctx.prompts.openFileName(Texts::kRestoreTitle, folder, Texts::kBackupFilter);
    if (path.isEmpty())
        return false;
    const auto refuse = [&](const QString& problem) {
        ctx.prompts.message(Texts::restoreRefused(problem), Texts::kRestoreTitle,
                            PromptIcon::Exclamation);
        return false;
    };
    if (sameFile(path, ctx.state.databasePath))
        return refuse(Texts::kBackupIsLive);
    const BackupCheck check = checkBackupFile(path, itemColumns(ctx.itemDatabase));
    if (!check.ok())
        return refuse(check.problem);
    if (ctx.prompts.message(Texts::restoreAsk(QDir::toNativeSeparators(path), check.itemCount,
                                              QDir::toNativeSeparators(folder)),
                            Texts::kRestoreTitle, PromptIcon::Question,
                            PromptButtons::YesNo) != PromptAnswer::Yes)
        return false;

    // Windows that show items write what was typed into them now, into the items being
    // backed up, and do not outlive the rows they were reading.
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w != owner && w->isVisible())
            w->close();

    if (!QDir().mkpath(folder))
        return refuse(
            QStringLiteral("The folder %1 cannot be made.").arg(QDir::toNativeSeparators(folder)));
    const QString safetyCopy = Backups::newPath(folder, QDateTime::currentDateTime());
    BackupOutcome outcome;
    {
        Progress progress(owner, Texts::kBackingUp);
        outcome = backupDatabaseFile(ctx.state.databasePath, safetyCopy, progress.callback());
        if (outcome.ok()) {
            outcome = restoreDatabaseFrom(ctx.itemDatabase, path,
                                          progress.sealedCallback(Texts::kRestoring));
        }
    }
    if (outcome.cancelled)
        return false;
    if (!outcome.ok())
        return refuse(outcome.error);
    reopen();
    ctx.prompts.message(Texts::restoreDone(check.itemCount, QDir::toNativeSeparators(safetyCopy)),
                        Texts::kRestoreTitle, PromptIcon::Information);
    return true;
}

} // namespace BackupCommands
