#include "FtpTestServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

int unusedPort()
{
    const int s = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof addr;
    int port = 0;
    if (::bind(s, reinterpret_cast<sockaddr*>(&addr), sizeof addr) == 0 &&
        ::getsockname(s, reinterpret_cast<sockaddr*>(&addr), &len) == 0)
        port = ntohs(addr.sin_port);
    ::close(s);
    return port;
}

QByteArray binarySample(int size, int seed)
{
    // Every byte value, so line-end translation or a lost byte shows up.
    QByteArray bytes(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        bytes[i] = char((i * 7 + seed) & 0xff);
    return bytes;
}
