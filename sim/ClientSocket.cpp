#include "sim/ClientSocket.h"

#include <Poco/Net/Socket.h>
#include <Poco/Timespan.h>

#include <thread>

namespace sim {

namespace {

constexpr std::chrono::milliseconds pauseBetweenBytes(10);
constexpr std::chrono::seconds timeToLeave(5);
constexpr std::size_t bufferSize = 4096;

Poco::Timespan TimeLeft(Deadline deadline)
{
    const auto left = deadline - std::chrono::steady_clock::now();
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(left).count();
    return {micros > 0 ? micros : 0};
}

} // namespace

ClientSocket::ClientSocket(const Poco::Net::StreamSocket& socket) : socket(socket) {}

std::optional<std::size_t> ClientSocket::Receive(char* buffer, std::size_t size, Deadline deadline)
{
    if (!socket.poll(TimeLeft(deadline), Poco::Net::Socket::SELECT_READ)) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(socket.receiveBytes(buffer, static_cast<int>(size)));
}

void ClientSocket::Send(const std::string& bytes)
{
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const int count = static_cast<int>(bytes.size() - sent);
        sent += static_cast<std::size_t>(socket.sendBytes(bytes.data() + sent, count));
    }
}

void ClientSocket::SendSlowly(const std::string& bytes)
{
    socket.setNoDelay(true);
    for (const char byte : bytes) {
        std::this_thread::sleep_for(pauseBetweenBytes);
        Send(std::string(1, byte));
    }
}

void ClientSocket::WaitForClientToLeave()
{
    char buffer[bufferSize];
    while (socket.receiveBytes(buffer, bufferSize) > 0) {
    }
}

void ClientSocket::Finish()
{
    socket.shutdownSend();
    const Deadline deadline = std::chrono::steady_clock::now() + timeToLeave;
    char buffer[bufferSize];
    while (Receive(buffer, sizeof buffer, deadline).value_or(0) > 0) {
    }
}

void ClientSocket::ResetOnClose()
{
    socket.setLinger(true, 0);
}

} // namespace sim
