#include "tests/sim/e2e/Client.h"

#include "tests/support/EngineAddress.h"

#include <array>
#include <ostream>

#include <linux/tcp.h>
#include <poll.h>
#include <sys/socket.h>

bool Answer::operator==(const Answer& other) const
{
    return bytes == other.bytes && end == other.end;
}

void PrintTo(const Answer& answer, std::ostream* stream)
{
    *stream << answer.bytes << (answer.end == Answer::End::Closed ? " (closed)" : " (reset)");
}

Client::Client() : socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    const sockaddr_in address = EngineAddress();
    Require(connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
            "connect to 127.0.0.1:7777");
    const int on = 1;
    Require(setsockopt(socket.Get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) == 0, "no delay");
}

Client& Client::Send(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = send(socket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count < 0) {
            broken = true;
            break;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return *this;
}

Client& Client::SendBytewise(std::string_view bytes)
{
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        Send(bytes.substr(i, 1));
    }
    return *this;
}

Client& Client::HalfClose()
{
    shutdown(socket.Get(), SHUT_WR);
    return *this;
}

void Client::Reset()
{
    const linger atOnce{1, 0};
    Require(setsockopt(socket.Get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce) == 0, "linger");
    socket.Close();
}

bool Client::HearsWithin(std::chrono::milliseconds time) const
{
    pollfd event{socket.Get(), POLLIN, 0};
    return poll(&event, 1, static_cast<int>(time.count())) > 0;
}

std::string Client::ReceiveBytes(std::size_t size)
{
    std::string bytes(size, '\0');
    const ssize_t count = recv(socket.Get(), bytes.data(), size, MSG_WAITALL);
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

Answer Client::Receive()
{
    Answer answer;
    std::array<char, 65536> buffer{};
    ssize_t count = 0;
    while ((count = recv(socket.Get(), buffer.data(), buffer.size(), 0)) > 0) {
        answer.bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
    answer.end = count == 0 && !broken ? Answer::End::Closed : Answer::End::Reset;
    return answer;
}

unsigned Client::SegmentsReceived() const
{
    tcp_info info{};
    socklen_t size = sizeof info;
    Require(getsockopt(socket.Get(), IPPROTO_TCP, TCP_INFO, &info, &size) == 0, "TCP_INFO");
    return info.tcpi_data_segs_in;
}

Answer Ask(std::string_view request)
{
    return Client().Send(request).Receive();
}

Answer Refusal(int resultCode, const std::string& description)
{
    return {R"({"description":")" + description + R"(","resultCode":)" +
            std::to_string(resultCode) + "}"};
}
