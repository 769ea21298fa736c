#pragma once

#include <QDialog>

#include <functional>
#include <memory>

namespace Ui {
class frmCleanup;
}
class QCheckBox;
class frmEndingAuction;
struct AppContext;

// The clean-up after an auction: erases the item's pictures (UploadFiles slots 1 to 3) from the
// disk and from the web space, and leaves feedback for the buyer, as the seller ticks them. The
// ticks are remembered. Shown modeless; Ok runs the ticked actions and closes.
class frmCleanup : public QDialog
{
    Q_OBJECT
public:
    // releasePreviews: lets go of the item window's picture previews, so no file is held open.
    // endingWindow: the ending-auction window standing on the item (opened if needed), or
    // nullptr when there is none.
    frmCleanup(AppContext& ctx, std::function<void()> releasePreviews,
               std::function<frmEndingAuction*()> endingWindow, QWidget* parent = nullptr);
    ~frmCleanup() override;

    void cmdOk_Click();

private:
    // A check box whose state is kept under a setting of the "Options" section.
    void remember(QCheckBox* box, const QString& key);
    void eraseLocalPictures();
    // False when a FTP setting is missing: the seller has been told and sent to Options.
    bool eraseWebPictures();
    void leaveFeedback();

    AppContext& m_ctx;
    std::unique_ptr<Ui::frmCleanup> ui;
    std::function<void()> m_releasePreviews;
    std::function<frmEndingAuction*()> m_endingWindow;
};
