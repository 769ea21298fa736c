#pragma once

#include "platform/Prompts.h"

#include <QString>
#include <QStringList>

#include <array>

struct OptionsRecord;

// Where the files of an upload come from: the item's three pictures, or the Ad Studio theme's
// five media files (background image, sound, border image, title image, inline image).
enum class UploadSource
{
    ItemPictures,
    AdStudioMedia
};

// The outcome of the upload command's checks: either go on to the FTP window with the slots
// filled, or show one message (and perhaps open the Options dialog) and stop.
struct UploadCheck
{
    bool proceed = false;
    std::array<QString, 6> files{}; // the upload slots as far as they were filled
    QString message;
    QString title = kDefaultTitle;
    PromptIcon icon = PromptIcon::None;
    bool openOptions = false;
};

// Looks for each named file on disk (trimmed, as an ordinary file), then for the FTP settings
// in the order host, port, user id, password, web root. Only the first failure is reported.
UploadCheck checkUpload(UploadSource source, const QStringList& paths,
                        const OptionsRecord& options);
