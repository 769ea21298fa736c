#pragma once

#include <QString>

class Prompts;

// The error codes a mail failure is reported with, and the texts the user reads for them.
namespace SmtpError {
inline constexpr int kFirst = 22201;
inline constexpr int kLast = 22219;
} // namespace SmtpError

// The explanation for one code (22201..22219); "Error #" + code for any other code.
QString smtpErrorText(int code);
// The whole text of the failure box: the lead-in, a blank line, then smtpErrorText(code). A
// non-empty notice (failures of the secure-mail settings, which the codes cannot tell apart)
// follows after another blank line.
QString smtpErrorMessage(int code, const QString& notice = {});
// Shows the failure box ("Connection failed", exclamation icon, OK).
void ShowSmtpError(Prompts& prompts, int code, const QString& notice = {});

// What a failure of the secure-mail settings means, read after the code's text.
namespace SmtpNotice {
QString certificateNotTrusted();
QString secureConnectionFailed();
QString startTlsNotOffered();
QString signInRefused();
QString signInRequired();
QString unknownSecurity(const QString& setting);
} // namespace SmtpNotice
