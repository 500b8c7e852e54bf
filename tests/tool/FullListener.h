#pragma once

#include "tests/support/Descriptor.h"
#include "tests/support/EngineAddress.h"

/// An engine that never accepts and whose queue is full: the kernel drops every further connection,
/// so that nobody answers it.
class FullListener
{
public:
    FullListener()
    {
        Require(TryListen(listener) && listen(listener.Get(), 0) == 0, "listen");
        const sockaddr_in address = EngineAddress();
        Require(
            connect(queued.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
            "connect");
    }

private:
    Descriptor listener{socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    Descriptor queued{socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
};
