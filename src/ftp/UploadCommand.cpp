#include "ftp/UploadCommand.h"

#include "ftp/texts.h"
#include "settings/OptionsRecord.h"

#include <QFileInfo>

namespace {
constexpr int kItemPictures = 3;
constexpr int kMediaFiles = 5;
} // namespace

UploadCheck checkUpload(UploadSource source, const QStringList& paths, const OptionsRecord& options)
{
    const bool media = source == UploadSource::AdStudioMedia;
    UploadCheck check;

    const int count = media ? kMediaFiles : kItemPictures;
    for (int i = 0; i < count && i < paths.size(); ++i) {
        const QString& field = paths.at(i);
        const QString path = field.trimmed();
        if (path.isEmpty())
            continue;
        if (!QFileInfo(path).isFile()) {
            check.message = (media ? FtpTexts::kCantFindFile : FtpTexts::kCantFindGraphic) + path +
                            FtpTexts::kUploadNotPerformed;
            return check;
        }
        check.files[std::size_t(i + 1)] = field;
    }

    const QString what = media ? FtpTexts::kFiles : FtpTexts::kImages;
    const std::pair<const QString*, const QString*> required[] = {
        {&options.remoteHost, &FtpTexts::kNeedRemoteHost},
        {&options.remotePort, &FtpTexts::kNeedRemotePort},
        {&options.ftpUserid, &FtpTexts::kNeedUserid},
        {&options.ftpPassword, &FtpTexts::kNeedPassword},
        {&options.imageLoc, &FtpTexts::kNeedWebRoot},
    };
    for (const auto& [value, text] : required) {
        if (value->trimmed().isEmpty()) {
            check.message = text->arg(what);
            check.title = FtpTexts::kMissingInformation;
            check.icon = PromptIcon::Exclamation;
            check.openOptions = true;
            return check;
        }
    }
    check.proceed = true;
    return check;
}
