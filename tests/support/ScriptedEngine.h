#pragma once

#include "tests/support/Descriptor.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <initializer_list>
#include <limits>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

/// What the engine does with one connection, as steps in order. After the last step the engine
/// closes: it ends its own side, reads on until the client has closed, and so sees every byte that
/// the client sent.
class Script
{
public:
    /// Reads until one JSON object is complete.
    Script& AwaitRequest();
    /// Reads until the client closes.
    Script& AwaitClientClose();
    Script& Send(std::string bytes);
    /// Sends the bytes in pieces of size, a pause before each.
    Script& SendInPieces(std::string bytes, std::size_t size, std::chrono::milliseconds pause);
    /// Ends the engine's own side and goes on reading.
    Script& HalfClose();
    /// Closes without reading what the client may have sent.
    Script& CloseWithoutReading();
    /// Breaks the connection; the client's next read or write fails.
    Script& Reset();

private:
    friend class ScriptedEngine;
    struct Session;
    Script& Add(std::function<void(Session&)> step);

    std::vector<std::function<void(Session&)>> steps;
};

/// The usual conversation: read the request, send the reply, close.
Script Reply(std::string reply);

/// An engine on 127.0.0.1:7777 that does with each connection what the test told it, in order, and
/// keeps what it received. A connection without a script is closed; it counts as received too.
class ScriptedEngine
{
public:
    struct Connection
    {
        std::string received;
        /// From the engine's last byte, or the accept, to the client's close; 0 where the engine
        /// was the first to leave.
        std::chrono::duration<double> patience{};
    };

    /// Throws std::system_error when the address cannot be listened on.
    ScriptedEngine();
    /// An engine that replies to each connection in turn.
    ScriptedEngine(std::initializer_list<const char*> replies);
    ~ScriptedEngine();
    ScriptedEngine(const ScriptedEngine&) = delete;
    ScriptedEngine& operator=(const ScriptedEngine&) = delete;

    /// Adds the script of the next connection.
    void OnConnection(Script script);

    /// Refuses every connection after the given number of them. The last one is served only once
    /// the listener is closed, so that the client cannot be faster.
    void StopListeningAfter(std::size_t connectionCount);

    /// Stops listening, waits for the last connection to end and returns what came in, a connection
    /// each.
    const std::vector<Connection>& Connections();
    /// The same, as the bytes alone.
    std::vector<std::string> Requests();

private:
    void Serve();
    Connection Converse(Descriptor socket);
    bool IsLastConnection();
    Script NextScript();
    void Stop();

    Descriptor listener;
    Descriptor stopReader;
    Descriptor stopWriter;
    std::mutex mutex; // guards the next two; connections belongs to the thread until it is joined
    std::deque<Script> scripts;
    std::size_t connectionsLeft = std::numeric_limits<std::size_t>::max();
    std::vector<Connection> connections;
    std::thread thread;
};
