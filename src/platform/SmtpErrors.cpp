#include "platform/SmtpErrors.h"

#include "platform/Prompts.h"

#include <array>

namespace {

constexpr std::array<const char*, SmtpError::kLast - SmtpError::kFirst + 1> kTexts = {
    /* 22201 */ "Invalid handle to SMTP Client.",
    /* 22202 */ "Invalid parameter passed to function.",
    /* 22203 */ "Cannot initialize socket library.",
    /* 22204 */ "Cannot allocate memory.",
    /* 22205 */
    "Cannot resolve host name.  The name specified in Remote Mail Host does not exist.  Please "
    "check with your ISP for the correct Mail Server.",
    /* 22206 */ "Cannot create socket",
    /* 22207 */ "Cannot connect to remote server.",
    /* 22208 */ "Cannot select socket.",
    /* 22209 */ "Timeout reading socket.",
    /* 22210 */ "Invalid SMTP Server response.",
    /* 22211 */ "Cannot read socket.",
    /* 22212 */ "Cannot write socket.",
    /* 22213 */ "Server connection in use.",
    /* 22214 */ "No return address specified.",
    /* 22215 */ "No recipients specified.",
    /* 22216 */ "Server receiving message data.",
    /* 22217 */ "No message data received.",
    /* 22218 */ "Server connection is closed.",
    /* 22219 */ "Client operation was cancelled.",
};

const QString kLeadIn = QStringLiteral("The attempt to connect failed with the following message:");
const QString kTitle = QStringLiteral("Connection failed");
const QString kBlankLine = QStringLiteral("\r\n\r\n");

} // namespace

QString smtpErrorText(int code)
{
    if (code < SmtpError::kFirst || code > SmtpError::kLast)
        return QStringLiteral("Error #") + QString::number(code);
    return QString::fromLatin1(kTexts[std::size_t(code - SmtpError::kFirst)]);
}

QString smtpErrorMessage(int code, const QString& notice)
{
    QString text = kLeadIn + kBlankLine + smtpErrorText(code);
    if (!notice.isEmpty())
        text += kBlankLine + notice;
    return text;
}

void ShowSmtpError(Prompts& prompts, int code, const QString& notice)
{
    prompts.message(smtpErrorMessage(code, notice), kTitle, PromptIcon::Exclamation,
                    PromptButtons::Ok);
}

namespace SmtpNotice {

QString certificateNotTrusted()
{
    return QStringLiteral(
        "The mail server's certificate is not trusted by this computer, or it was made out to "
        "another host name, so nothing was sent.  Check Remote Mail Host and Security on the "
        "ISP Properties tab.");
}

QString secureConnectionFailed()
{
    return QStringLiteral("A secure connection to the mail server could not be made.  Check "
                          "Remote Mail Port and Security on the ISP Properties tab.");
}

QString startTlsNotOffered()
{
    return QStringLiteral("The mail server does not offer STARTTLS.  Check Remote Mail Port and "
                          "Security on the ISP Properties tab.");
}

QString signInRefused()
{
    return QStringLiteral("The mail server refused the Mail User Name or Mail Password.  Check "
                          "them on the ISP Properties tab.");
}

QString signInRequired()
{
    return QStringLiteral(
        "The mail server takes mail only after you sign in, or only over a secure connection.  "
        "Fill in Security, Mail User Name and Mail Password on the ISP Properties tab.");
}

QString unknownSecurity(const QString& setting)
{
    return QStringLiteral("The mail Security setting \"") + setting +
           QStringLiteral("\" is not known.  Choose one on the ISP Properties tab.");
}

} // namespace SmtpNotice
