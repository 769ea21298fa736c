#include "ftp/FtpSession.h"

#include "ftp/texts.h"
#include "platform/FtpErrors.h"
#include "platform/TextRoutines.h"

QString ftpRemoteDirectory(const QString& auctionDir, bool relative)
{
    if (auctionDir.isEmpty())
        return {};
    return (relative ? QStringLiteral("./") : QStringLiteral("/")) + auctionDir;
}

QString ftpPathKind(const QString& auctionDir, bool relative)
{
    if (auctionDir.isEmpty())
        return {};
    return relative ? FtpTexts::kRelative : FtpTexts::kAbsolute;
}

QString ftpConnectingLine(const QString& host)
{
    return FtpTexts::kConnecting + host;
}

QString ftpDeletingLine(const QString& auctionDir, const QString& name, const QString& host)
{
    return FtpTexts::kDeleting + auctionDir + name + FtpTexts::kFromHost + host;
}

QString ftpTransferringLine(const QString& localPath, const QString& host, const QString& kind,
                            const QString& auctionDir, const QString& name)
{
    return FtpTexts::kTransferring + localPath + FtpTexts::kToHost + host + FtpTexts::kInto + kind +
           FtpTexts::kPath + auctionDir + name;
}

FtpPlan planFtpSession(const FtpSessionInput& in)
{
    FtpPlan plan;
    const bool removing = in.action == FtpTexts::kRemoveImages;
    if (!removing && in.action != FtpTexts::kUploadImages)
        return plan;
    plan.directory = ftpRemoteDirectory(in.auctionDir, in.uploadRelative);
    const QString kind = ftpPathKind(in.auctionDir, in.uploadRelative);
    for (std::size_t slot = 1; slot < in.files.size(); ++slot) {
        const QString& path = in.files[slot];
        if (path.isEmpty())
            continue;
        FtpStep step;
        step.remoteName = FileNameOfPath(path).trimmed();
        if (removing) {
            step.kind = FtpStep::Kind::Delete;
            step.statusLine = ftpDeletingLine(in.auctionDir, FileNameOfPath(path), in.host);
        } else {
            step.kind = FtpStep::Kind::Put;
            step.localPath = path.trimmed();
            step.statusLine =
                ftpTransferringLine(path, in.host, kind, in.auctionDir, step.remoteName);
        }
        plan.steps << step;
    }
    return plan;
}

QString fileToSend(const QString& localPath, const QString& copyPath,
                   const PictureTools::WebCopyOptions& options)
{
    const PictureTools::WebCopy copy = PictureTools::makeWebCopy(localPath, copyPath, options);
    return copy.outcome == PictureTools::WebCopy::Outcome::Written ? copyPath : localPath;
}

bool FtpErrorState::report(int code)
{
    if (uploadMode == FtpTexts::kUploadDummy || code == FtpError::kIgnored)
        return false;
    errorCode = code;
    return true;
}
