#pragma once

#include "tests/support/Descriptor.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

/// The one address that the tool talks to.
inline sockaddr_in EngineAddress()
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(7777);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// Makes a stream socket listen on the engine's address; false, with errno set, where it cannot.
inline bool TryListen(const Descriptor& socket)
{
    const int on = 1;
    const sockaddr_in address = EngineAddress();
    return setsockopt(socket.Get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == 0 &&
           bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
           listen(socket.Get(), SOMAXCONN) == 0;
}
