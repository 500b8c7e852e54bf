#pragma once

#include <Poco/Net/ServerSocket.h>
#include <Poco/Net/SocketAddress.h>

namespace sim {

/// Where the client looks for the engine: 127.0.0.1:7777.
Poco::Net::SocketAddress EngineAddress();

/// Listens there. Throws StartError with EXIT_UNAVAILABLE if that fails.
Poco::Net::ServerSocket Listen();

} // namespace sim
