#include "platform/FtpErrors.h"

#include "platform/Prompts.h"

#include <array>

namespace {
// Line breaks as the texts were written: "/" in the table below is one CR LF, "//" two.
#define CRLF "\r\n"
#define CRLF2 "\r\n\r\n"

constexpr std::array<const char*, FtpError::kLast - FtpError::kFirst + 1> kTexts = {
    /* 22001 */ "No free handles.",
    /* 22002 */ "Cannot allocate memory.",
    /* 22003 */ "Not session owner",
    /* 22004 */ "Cannot initialize network.",
    /* 22005 */
    "Invalid host name.  " CRLF2 "Possible causes:" CRLF2
    "1. The server name could not be found.  Double check your Remote FTP Host setting with your "
    "ISP. " CRLF2
    "2. If you are using AOL, this error can occur if you are connected at too high a speed for "
    "AOL's upload process.  Attempt to connect with another phone number, or contact AOL "
    "Support." CRLF "3. You may not be connected to your ISP. Check your connection.",
    /* 22006 */ "Cannot create socket.",
    /* 22007 */ "Cannot accept connection.",
    /* 22008 */
    "Cannot connect to server.Possible causes:" CRLF2
    "1. You may not be connected to your ISP. Check your connection.",
    /* 22009 */ "Cannot get peer information.",
    /* 22010 */ "Cannot bind socket.",
    /* 22011 */ "Cannot listen for connection.",
    /* 22012 */ "Invalid parameter passed to function.",
    /* 22013 */ "Invalid handle passed to function.",
    /* 22014 */
    "Cannot select socket.  " CRLF2 "Possible causes:" CRLF2
    "1. Incorrect FTP Port, check with your ISP.",
    /* 22015 */ "Cannot read socket.",
    /* 22016 */
    "Cannot write socket.  " CRLF2 "Possible causes:" CRLF2
    "1. Your web space is full.  Delete some files and try again.",
    /* 22017 */ "End of data.",
    /* 22018 */ "Connection in use.",
    /* 22019 */ "Connection not in use.",
    /* 22020 */ "Timeout on socket operation.",
    /* 22021 */ "Internal synchronization error.",
    /* 22022 */ "Remote server closed connection.",
    /* 22023 */ "Remote server is not ready, try again.",
    /* 22024 */ "Remote server is not available.",
    /* 22025 */ "Unknown problem with remote server.",
    /* 22026 */ "Unable to create data connection.",
    /* 22027 */ "Data connection already open.",
    /* 22028 */ "Data connection is closed.",
    /* 22029 */ "File transfer aborted.",
    /* 22030 */ "Data connection is read only.",
    /* 22031 */ "Data connection is write only.",
    /* 22032 */ "Unable to set file type.",
    /* 22033 */ "Data connection is passive.",
    /* 22034 */ "Cannot determine server address.",
    /* 22035 */ "Cannot create local file.",
    /* 22036 */ "Cannot open local file.",
    /* 22037 */ "Cannot read local file.",
    /* 22038 */ "Cannot write local file.",
    /* 22039 */
    "Cannot login to remote server. The server was found, but a login could not be performed.  "
    "Possible causes are an incorrect userid, or incorrect password",
    /* 22040 */ "Cannot open data connection.",
    /* 22041 */ "Remote file unavailable.",
    /* 22042 */ "Insufficient storage space.",
    /* 22043 */ "Command not recognized.",
    /* 22044 */ "Invalid command argument.",
    /* 22045 */ "Command not implemented.",
    /* 22046 */ "Invalid command sequence.",
    /* 22047 */ "Not logged in on server.",
    /* 22048 */ "Account required for storing files.",
    /* 22049 */
    "Cannot access file on server.Possible causes:" CRLF2
    "1. Your Web Images URL, or Host Upload Dir are not set correctly." CRLF
    "2. This error is also known to be reported incorrectly when connecting" CRLF
    "   to some ISP's.  Please click OK, and check to see if your file uploaded, and" CRLF
    "   ignore this error if so.",
    /* 22050 */ "File exceeded storage allocation.",
    /* 22051 */
    "Invalid file name.  " CRLF2 "Possible causes:" CRLF2
    "1. Your web space is full.  Delete some files and try again." CRLF
    "2. Your filename has blanks or special characters that the host won't accept.",
    /* 22052 */ "Unexpected server error.",
};

#undef CRLF
#undef CRLF2

const QString kLeadIn = QStringLiteral("The attempt to connect failed with the following message:");
const QString kTitle = QStringLiteral("Connection failed");
const QString kRemoveAction = QStringLiteral("RemoveImages");
} // namespace

QString ftpErrorText(int code)
{
    if (code < FtpError::kFirst || code > FtpError::kLast)
        return QStringLiteral("Error #") + QString::number(code);
    return QString::fromLatin1(kTexts[std::size_t(code - FtpError::kFirst)]);
}

QString ftpErrorMessage(int code)
{
    return kLeadIn + QStringLiteral("\r\n\r\n") + ftpErrorText(code);
}

void ShowFtpError(Prompts& prompts, int code)
{
    prompts.message(ftpErrorMessage(code), kTitle, PromptIcon::Exclamation, PromptButtons::Ok);
}

void ShowFtpError(Prompts& prompts, int code, const QString& ftpAction)
{
    if (ftpAction == kRemoveAction)
        return;
    ShowFtpError(prompts, code);
}
