#include "ftp/UploadCommandUi.h"

#include "ftp/frmFTP.h"
#include "ftp/texts.h"
#include "platform/Prompts.h"
#include "settings/AppContext.h"

frmFTP* showFtpWindow(AppContext& ctx, QWidget* parent,
                      const std::optional<PictureTools::WebCopyOptions>& webCopies)
{
    auto* window = new frmFTP(ctx, parent);
    window->setAttribute(Qt::WA_DeleteOnClose);
    if (webCopies)
        window->sendWebCopies(*webCopies);
    window->show();
    return window;
}

frmFTP* runUploadCommand(AppContext& ctx, UploadSource source, const QStringList& paths,
                         QWidget* parent, const std::function<void()>& openOptions)
{
    const UploadCheck check = checkUpload(source, paths, ctx.state.options);
    // The slots are cleared and filled as far as the checks got, even when they stop.
    std::copy(check.files.begin(), check.files.end(), std::begin(ctx.state.uploadFiles));
    if (!check.proceed) {
        ctx.prompts.message(check.message, check.title, check.icon, PromptButtons::Ok);
        if (check.openOptions && openOptions)
            openOptions();
        return nullptr;
    }
    ctx.state.ftpAction = FtpTexts::kUploadImages;
    // Theme media (backgrounds, borders, sounds) are artwork and go as they are.
    const OptionsRecord& options = ctx.state.options;
    std::optional<PictureTools::WebCopyOptions> webCopies;
    if (source == UploadSource::ItemPictures && options.resizeForWeb)
        webCopies =
            PictureTools::WebCopyOptions{options.resizeLongestSide, options.resizeJpegQuality};
    return showFtpWindow(ctx, parent, webCopies);
}
