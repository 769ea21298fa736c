#pragma once

#include "platform/PictureTools.h"

#include <QList>
#include <QString>

#include <array>

// What one opening of the FTP window does, worked out before a byte is sent: the directory to
// change to and, per file, the status line to show and the operation to run.

// The request the caller leaves in the shared state, plus the connection settings in use.
struct FtpSessionInput
{
    QString action;                 // "UploadImages", "RemoveImages", anything else = connect only
    std::array<QString, 6> files{}; // slots 1..5; slot 0 and empty slots are skipped
    QString host;
    QString auctionDir;
    bool uploadRelative = true;
};

struct FtpStep
{
    enum class Kind
    {
        Delete,
        Put
    };
    Kind kind = Kind::Put;
    QString statusLine;
    QString localPath;  // put: the trimmed local path
    QString remoteName; // the trimmed file-name part of the slot
};

struct FtpPlan
{
    QString directory; // "" = stay in the login directory
    QList<FtpStep> steps;
};

// "./dir" (relative) or "/dir" (absolute); "" when no auction directory is set.
QString ftpRemoteDirectory(const QString& auctionDir, bool relative);
// "Relative", "Absolute", or "" when no auction directory is set.
QString ftpPathKind(const QString& auctionDir, bool relative);

QString ftpConnectingLine(const QString& host);
QString ftpDeletingLine(const QString& auctionDir, const QString& name, const QString& host);
QString ftpTransferringLine(const QString& localPath, const QString& host, const QString& kind,
                            const QString& auctionDir, const QString& name);

// Upload and remove runs get a directory change and one step per filled slot; any other action
// gets neither.
FtpPlan planFtpSession(const FtpSessionInput& input);

// The file a put sends. A picture larger than the options allow, or stored on its side, goes as
// an upright, smaller copy written to copyPath; anything that needs no copy or cannot be copied
// (not a picture, a type that cannot be written, a full disk) goes as it is. The seller's file
// is only read.
QString fileToSend(const QString& localPath, const QString& copyPath,
                   const PictureTools::WebCopyOptions& options);

// The session's memory of failures (FtpErrorCode) and the switch that silences them
// (FtpUploadMode).
struct FtpErrorState
{
    int errorCode = 0;
    QString uploadMode;

    // A failure reported by the client. True when the user is to be told (the caller then
    // shows the box); code 25751 and a silenced session change nothing.
    bool report(int code);
};
