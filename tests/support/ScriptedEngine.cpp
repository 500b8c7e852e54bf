#include "tests/support/ScriptedEngine.h"

#include "tests/support/EngineAddress.h"

#include <array>
#include <optional>

#include <fcntl.h>
#include <poll.h>

using Clock = std::chrono::steady_clock;

/// One connection while its script runs.
struct Script::Session
{
    Descriptor socket;
    std::string received;
    Clock::time_point lastSign = Clock::now();
    std::optional<std::chrono::duration<double>> patience; // known once the client has closed

    /// False at the client's end of file, or when the connection is broken.
    bool Read()
    {
        std::array<char, 65536> buffer{};
        const ssize_t count = recv(socket.Get(), buffer.data(), buffer.size(), 0);
        if (count <= 0) {
            if (!patience) {
                patience = Clock::now() - lastSign;
            }
            return false;
        }
        received.append(buffer.data(), static_cast<std::size_t>(count));
        return true;
    }

    void Send(std::string_view bytes)
    {
        while (!bytes.empty()) {
            const ssize_t count = send(socket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (count < 0) {
                return; // the client has gone, which the test sees from its side
            }
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        lastSign = Clock::now();
    }
};

namespace {

bool HoldsJsonObject(std::string_view text)
{
    int depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            i += c == '\\' ? 1 : 0;
            inString = c != '"';
        } else if (c == '"') {
            inString = true;
        } else if (c == '{') {
            ++depth;
        } else if (c == '}' && --depth == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

Script& Script::Add(std::function<void(Session&)> step)
{
    steps.push_back(std::move(step));
    return *this;
}

Script& Script::AwaitRequest()
{
    return Add([](Session& session) {
        while (!HoldsJsonObject(session.received) && session.Read()) {
        }
    });
}

Script& Script::AwaitClientClose()
{
    return Add([](Session& session) {
        while (session.Read()) {
        }
    });
}

Script& Script::Send(std::string bytes)
{
    return Add([bytes = std::move(bytes)](Session& session) { session.Send(bytes); });
}

Script& Script::SendInPieces(std::string bytes, std::size_t size, std::chrono::milliseconds pause)
{
    return Add([bytes = std::move(bytes), size, pause](Session& session) {
        for (std::size_t start = 0; start < bytes.size(); start += size) {
            std::this_thread::sleep_for(pause); // the pause itself is what the test is about
            session.Send(std::string_view(bytes).substr(start, size));
        }
    });
}

Script& Script::HalfClose()
{
    return Add([](Session& session) { shutdown(session.socket.Get(), SHUT_WR); });
}

Script& Script::CloseWithoutReading()
{
    return Add([](Session& session) { session.socket.Close(); });
}

Script& Script::Reset()
{
    return Add([](Session& session) {
        const linger atOnce{1, 0};
        setsockopt(session.socket.Get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        session.socket.Close();
    });
}

Script Reply(std::string reply)
{
    return Script().AwaitRequest().Send(std::move(reply));
}

ScriptedEngine::ScriptedEngine() : listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    Require(TryListen(listener), "listen on 127.0.0.1:7777");
    std::array<int, 2> ends{};
    Require(pipe2(ends.data(), O_CLOEXEC) == 0, "pipe");
    stopReader = Descriptor(ends[0]);
    stopWriter = Descriptor(ends[1]);
    thread = std::thread([this] { Serve(); });
}

ScriptedEngine::ScriptedEngine(std::initializer_list<const char*> replies) : ScriptedEngine()
{
    for (const char* const reply : replies) {
        OnConnection(Reply(reply));
    }
}

ScriptedEngine::~ScriptedEngine()
{
    Stop();
}

void ScriptedEngine::OnConnection(Script script)
{
    const std::lock_guard lock(mutex);
    scripts.push_back(std::move(script));
}

void ScriptedEngine::StopListeningAfter(std::size_t connectionCount)
{
    const std::lock_guard lock(mutex);
    connectionsLeft = connectionCount;
}

const std::vector<ScriptedEngine::Connection>& ScriptedEngine::Connections()
{
    Stop();
    return connections;
}

std::vector<std::string> ScriptedEngine::Requests()
{
    std::vector<std::string> requests;
    for (const Connection& connection : Connections()) {
        requests.push_back(connection.received);
    }
    return requests;
}

void ScriptedEngine::Serve()
{
    // A connection that waits to be accepted comes before the request to stop: the client may have
    // ended before the engine saw it.
    std::array<pollfd, 2> events{
        {{listener.Get(), POLLIN, 0}, {stopReader.Get(), POLLIN | POLLHUP, 0}}};
    while (poll(events.data(), events.size(), -1) > 0) {
        if (events[0].revents != 0) {
            Descriptor socket(accept4(listener.Get(), nullptr, nullptr, SOCK_CLOEXEC));
            const bool last = IsLastConnection();
            if (last) {
                listener.Close();
            }
            connections.push_back(Converse(std::move(socket)));
            if (last) {
                return;
            }
        } else if (events[1].revents != 0) {
            return;
        }
    }
}

ScriptedEngine::Connection ScriptedEngine::Converse(Descriptor socket)
{
    Script::Session session;
    session.socket = std::move(socket);
    for (const auto& step : NextScript().steps) {
        step(session);
    }
    if (session.socket.Get() >= 0) {
        shutdown(session.socket.Get(), SHUT_WR);
        while (session.Read()) {
        }
    }
    return {std::move(session.received), session.patience.value_or(Clock::duration::zero())};
}

bool ScriptedEngine::IsLastConnection()
{
    const std::lock_guard lock(mutex);
    return --connectionsLeft == 0;
}

Script ScriptedEngine::NextScript()
{
    const std::lock_guard lock(mutex);
    if (scripts.empty()) {
        return {};
    }
    Script script = std::move(scripts.front());
    scripts.pop_front();
    return script;
}

void ScriptedEngine::Stop()
{
    stopWriter.Close();
    if (thread.joinable()) {
        thread.join();
    }
    listener.Close();
}
