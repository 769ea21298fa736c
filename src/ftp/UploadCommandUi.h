#pragma once

#include "ftp/UploadCommand.h"
#include "platform/PictureTools.h"

#include <QStringList>

#include <functional>
#include <optional>

struct AppContext;
class QWidget;
class frmFTP;

// Opens the FTP window for the request already left in ctx.state (ftpAction, uploadFiles):
// modeless, owned by parent, deleted when closed. The session starts as soon as it shows.
// With webCopies, pictures go as upright copies no larger than it allows.
frmFTP* showFtpWindow(AppContext& ctx, QWidget* parent,
                      const std::optional<PictureTools::WebCopyOptions>& webCopies = {});

// The Upload command of the item window (ItemPictures: the three picture fields) and of the
// Ad Studio (AdStudioMedia: its five media fields, in slot order). Checks the files and the FTP
// settings; on the first failure shows its message, calls openOptions() when a setting is
// missing, and returns nullptr. Otherwise asks for "UploadImages" and returns the FTP window.
// Item pictures are resized for the web on the way when the settings ask for it.
frmFTP* runUploadCommand(AppContext& ctx, UploadSource source, const QStringList& paths,
                         QWidget* parent, const std::function<void()>& openOptions);
