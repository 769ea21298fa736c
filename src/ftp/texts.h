#pragma once

#include <QString>

// Every text the picture-publishing windows show, in one place.
namespace FtpTexts {

// FTP window
inline const QString kCaption = QStringLiteral("FTP");
inline const QString kConnecting = QStringLiteral("Connecting to ");
inline const QString kConnected = QStringLiteral("Connected.");
inline const QString kLoggingOff = QStringLiteral("Logging off.  Bye!");
inline const QString kDeleting = QStringLiteral("Deleting Image file ");
inline const QString kFromHost = QStringLiteral(" from FTP Host ");
inline const QString kTransferring = QStringLiteral("Transferring Image file ");
inline const QString kToHost = QStringLiteral(" to FTP Host: ");
inline const QString kInto = QStringLiteral(" into ");
inline const QString kPath = QStringLiteral(" path ");
inline const QString kRelative = QStringLiteral("Relative");
inline const QString kAbsolute = QStringLiteral("Absolute");

// Requests a caller leaves for the FTP window
inline const QString kUploadImages = QStringLiteral("UploadImages");
inline const QString kRemoveImages = QStringLiteral("RemoveImages");
// While the upload mode holds this, failures are not reported.
inline const QString kUploadDummy = QStringLiteral("UploadDummy");

// Upload command
inline const QString kMissingInformation = QStringLiteral("Missing Information");
inline const QString kCantFindGraphic = QStringLiteral("Can't find graphic file: ");
inline const QString kCantFindFile = QStringLiteral("Can't find file: ");
inline const QString kUploadNotPerformed = QStringLiteral(". Upload not performed.");

// The missing-setting messages; %1 is "images" or "files".
inline const QString kNeedRemoteHost =
    QStringLiteral("A Remote Host must be specified on the options screen before uploading %1.");
inline const QString kNeedRemotePort =
    QStringLiteral("A Remote Port must be specified on the options screen before uploading %1.");
inline const QString kNeedUserid =
    QStringLiteral("An FTP Userid must be specified before uploading %1.  Please supply on the "
                   "Options panel under the ISP Properties tab.");
inline const QString kNeedPassword =
    QStringLiteral("An FTP Password must be specified before uploading %1.  Please supply on the "
                   "Options panel under the ISP Properties tab.");
inline const QString kNeedWebRoot =
    QStringLiteral("A Web Root Location must be specified before uploading %1.  Please supply on "
                   "the Options panel under the ISP Properties tab.");
inline const QString kImages = QStringLiteral("images");
inline const QString kFiles = QStringLiteral("files");

} // namespace FtpTexts
