#include "aftersale/frmCleanup.h"

#include "aftersale/frmEndingAuction.h"
#include "aftersale/texts.h"
#include "ftp/UploadCommandUi.h"
#include "platform/Prompts.h"
#include "platform/SettingsStore.h"
#include "platform/WindowFitUi.h"
#include "settings/AppContext.h"
#include "settings/SettingsCatalogue.h"
#include "settings/frmOptions.h"
#include "ui_frmCleanup.h"

#include <QCheckBox>
#include <QFile>
#include <QPushButton>

#include <iterator>

namespace {

const QString kRemoveImages = QStringLiteral("RemoveImages");

// The picture slots of UploadFiles the clean-up works on; 4 and 5 are never filled for an item.
constexpr int kFirstPicture = 1;
constexpr int kLastPicture = 3;

} // namespace

frmCleanup::frmCleanup(AppContext& ctx, std::function<void()> releasePreviews,
                       std::function<frmEndingAuction*()> endingWindow, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), ui(std::make_unique<Ui::frmCleanup>()),
      m_releasePreviews(std::move(releasePreviews)), m_endingWindow(std::move(endingWindow))
{
    ui->setupUi(this);
    remember(ui->chkEraseHDImgs, QStringLiteral("EraseHDImgs"));
    remember(ui->chkEraseWebImgs, QStringLiteral("EraseWebImgs"));
    remember(ui->chkLeaveFeedback, QStringLiteral("LeaveFeedbackNow"));
    connect(ui->cmdOk, &QPushButton::clicked, this, &frmCleanup::cmdOk_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmCleanup::close);
    fitToScreen(*this);
}

frmCleanup::~frmCleanup() = default;

void frmCleanup::remember(QCheckBox* box, const QString& key)
{
    const QString stored =
        m_ctx.store.get(Settings::kApp, Settings::kOptions, key, QStringLiteral("1")).trimmed();
    bool isNumber = false;
    const int value = stored.toInt(&isNumber);
    box->setChecked(!isNumber || value != 0);
    // Saved on the click itself, so the choice holds even when the dialog is cancelled.
    connect(box, &QCheckBox::clicked, this, [this, key](bool checked) {
        m_ctx.store.save(Settings::kApp, Settings::kOptions, key,
                         checked ? QStringLiteral("1") : QStringLiteral("0"));
    });
}

void frmCleanup::cmdOk_Click()
{
    if (ui->chkEraseHDImgs->isChecked())
        eraseLocalPictures();
    if (ui->chkEraseWebImgs->isChecked() && !eraseWebPictures())
        return;
    if (ui->chkLeaveFeedback->isChecked())
        leaveFeedback();
    close();
}

void frmCleanup::eraseLocalPictures()
{
    for (int slot = kFirstPicture; slot <= kLastPicture; ++slot) {
        const QString path = m_ctx.state.uploadFiles[slot].trimmed();
        if (path.isEmpty() || !QFile::exists(path))
            continue;
        if (m_releasePreviews)
            m_releasePreviews();
        // A file that cannot go is left in place without a word.
        QFile::remove(path);
    }
}

bool frmCleanup::eraseWebPictures()
{
    const OptionsRecord& o = m_ctx.state.options;
    QString problem;
    if (o.remoteHost.trimmed().isEmpty())
        problem = AfterSaleTexts::kNoRemoteHost;
    else if (o.remotePort.trimmed().isEmpty())
        problem = AfterSaleTexts::kNoRemotePort;
    if (!problem.isEmpty()) {
        m_ctx.prompts.message(problem, AfterSaleTexts::kMissingInformationTitle,
                              PromptIcon::Exclamation);
        frmOptions dialog(m_ctx, this);
        dialog.exec();
        return false;
    }
    // Only the pictures go: slots 4 and 5 are emptied so nothing else is named for removal.
    for (int slot = kLastPicture + 1; slot < int(std::size(m_ctx.state.uploadFiles)); ++slot)
        m_ctx.state.uploadFiles[slot].clear();
    m_ctx.state.ftpAction = kRemoveImages;
    // Owned by the item window: the FTP session outlives this dialog, which closes right away.
    showFtpWindow(m_ctx, parentWidget());
    return true;
}

void frmCleanup::leaveFeedback()
{
    frmEndingAuction* ending = m_endingWindow ? m_endingWindow() : nullptr;
    if (!ending)
        return;
    // The command writes and opens the feedback page; the clean-up counts the duty as done
    // even when no page came back to fill.
    ending->mnuFeedbackLeave_Click();
    if (auto* done = ending->findChild<QCheckBox*>(QStringLiteral("chkFeedbackComplete")))
        done->setChecked(true);
}
