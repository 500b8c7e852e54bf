// A library to preload into a program: chosen calls that the program and its libraries make to
// the C library fail as the system may make them fail, or move fewer bytes than asked.
//
// Environment, read at each call:
//   FAULT_CALL   the call: socket, connect, setsockopt, fcntl, send, recv or close
//   FAULT_NTH    the first one that fails, from 1; none if it is not given
//   FAULT_TIMES  how many fail in a row; 1 if it is not given
//   FAULT_ERRNO  the error number that they fail with
//   FAULT_LIMIT  the most bytes that one send moves
//   FAULT_MARK   a file that is made when a call fails, so that a test that goes from the first
//                call to the last knows when there are no more
//   FAULT_LOG    a file that lists each receive time-out, in microseconds, and each change of a
//                descriptor's flags, a line each
//
// Calls that the C library makes by itself, such as the writes of a standard stream, don't come
// here.

#include "tests/fault-injection/FaultInjector.h"

#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <fstream>
#include <string>

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/time.h>

using fault::Fails;

namespace {

std::size_t Limited(std::size_t size)
{
    const auto limit = static_cast<std::size_t>(fault::Number("FAULT_LIMIT", 0));
    return limit != 0 ? std::min(size, limit) : size;
}

// The function that a call would have reached without this library.
template <typename Function>
Function* Next(Function& /*call*/, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void Log(const std::string& line)
{
    if (const char* const path = std::getenv("FAULT_LOG")) {
        std::ofstream(path, std::ios::app) << line << "\n";
    }
}

} // namespace

extern "C" {

int socket(int domain, int type, int protocol) noexcept
{
    return Fails("socket") ? -1 : Next(socket, "socket")(domain, type, protocol);
}

int connect(int descriptor, const sockaddr* address, socklen_t length)
{
    return Fails("connect") ? -1 : Next(connect, "connect")(descriptor, address, length);
}

int setsockopt(int descriptor, int level, int name, const void* value, socklen_t length) noexcept
{
    if (level == SOL_SOCKET && name == SO_RCVTIMEO) {
        const auto& wait = *static_cast<const timeval*>(value);
        Log("wait " + std::to_string(wait.tv_sec * 1000000 + wait.tv_usec));
    }
    return Fails("setsockopt")
               ? -1
               : Next(setsockopt, "setsockopt")(descriptor, level, name, value, length);
}

ssize_t send(int descriptor, const void* data, std::size_t size, int flags)
{
    return Fails("send") ? -1 : Next(send, "send")(descriptor, data, Limited(size), flags);
}

ssize_t recv(int descriptor, void* data, std::size_t size, int flags)
{
    return Fails("recv") ? -1 : Next(recv, "recv")(descriptor, data, size, flags);
}

// Linux closes the descriptor whatever it reports.
int close(int descriptor)
{
    const int result = Next(close, "close")(descriptor);
    return Fails("close") ? -1 : result;
}

int fcntl(int descriptor, int command, ...)
{
    va_list rest;
    va_start(rest, command);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    if (command == F_SETFL) {
        Log("flags");
    }
    return Fails("fcntl") ? -1 : Next(fcntl, "fcntl64")(descriptor, command, argument);
}

int fcntl64(int descriptor, int command, ...) __attribute__((alias("fcntl")));

} // extern "C"
