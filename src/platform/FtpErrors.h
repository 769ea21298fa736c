#pragma once

#include <QString>

class Prompts;

// The error codes an FTP failure is reported with, and the texts the user reads for them.
namespace FtpError {
inline constexpr int kFirst = 22001;
inline constexpr int kLast = 22052;
// Passed over in silence by the transfer window: it never counts as a failure.
inline constexpr int kIgnored = 25751;
} // namespace FtpError

// The explanation for one code (22001..22052); "Error #" + code for any other code.
QString ftpErrorText(int code);
// The whole text of the failure box: the lead-in, a blank line, then ftpErrorText(code).
QString ftpErrorMessage(int code);
// Shows the failure box ("Connection failed", exclamation icon, OK).
void ShowFtpError(Prompts& prompts, int code);
// Same, but stays silent while the last FTP request was a removal ("RemoveImages"): removing
// pictures that are already gone is not worth a box.
void ShowFtpError(Prompts& prompts, int code, const QString& ftpAction);
