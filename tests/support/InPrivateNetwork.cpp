// Runs a command that has the engine's address for itself, for tests that are no C++ programs.
//
// Usage: in-private-network COMMAND [ARGUMENT]...
//
// Exit status: the command's; 64 without a command, 69 where the address can't be had, 127 where
// the command can't be run.

#include "tests/support/EngineAddress.h"
#include "tests/support/PrivateNetwork.h"

#include <cerrno>
#include <cstring>
#include <exception>
#include <iostream>
#include <sys/socket.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::cerr << "usage: in-private-network COMMAND [ARGUMENT]...\n";
        return 64;
    }
    try {
        ClaimEngineAddress();
        const Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        Require(TryListen(socket),
                "listen on 127.0.0.1:7777 (\"ss -ltnp 'sport = :7777'\" shows who does)");
    } catch (const std::exception& exception) {
        std::cerr << "in-private-network: " << exception.what() << '\n';
        return 69;
    }
    execvp(argv[1], argv + 1);
    std::cerr << "in-private-network: " << argv[1] << ": " << std::strerror(errno) << '\n';
    return 127;
}
