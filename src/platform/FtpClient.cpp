#include "platform/FtpClient.h"

class FtpClient::CurlHandle
{
};

struct FtpClient::Request
{
};

FtpClient::FtpClient(QObject* parent) : QObject(parent) {}
FtpClient::~FtpClient() = default;

void FtpClient::setTimeoutSeconds(int seconds)
{
    m_timeoutSeconds = seconds;
}

FtpClient::Result FtpClient::connectToHost(const QString&, int, const QString&, const QString&)
{
    return {22025, {}};
}
FtpClient::Result FtpClient::changeDirectory(const QString&)
{
    return {22025, {}};
}
FtpClient::Result FtpClient::putFile(const QString&, const QString&)
{
    return {22025, {}};
}
FtpClient::Result FtpClient::deleteFile(const QString&)
{
    return {22025, {}};
}
FtpClient::Result FtpClient::disconnectFromHost()
{
    return {};
}
void FtpClient::cancel()
{
    m_cancel = true;
}
FtpClient::Result FtpClient::perform(Request&)
{
    return {};
}
QString FtpClient::urlFor(const QString&, const QString&) const
{
    return {};
}
