#pragma once

#include "tests/support/Descriptor.h"

#include <chrono>
#include <iosfwd>
#include <string>
#include <string_view>

/// All that a client was sent, and how the connection ended.
struct Answer
{
    enum class End { Closed, Reset };

    std::string bytes;
    End end = End::Closed;

    bool operator==(const Answer& other) const;
};
void PrintTo(const Answer& answer, std::ostream* stream);

/// A client that sends what the test says. Once it is connected, failures of the connection are not
/// thrown but are part of the answer.
class Client
{
public:
    /// Connects. Throws std::system_error when nobody listens.
    Client();

    Client& Send(std::string_view bytes);
    /// Sends each byte on its own.
    Client& SendBytewise(std::string_view bytes);
    /// Ends the client's own side; the answer can still be received.
    Client& HalfClose();
    /// Breaks the connection.
    void Reset();

    /// True as soon as something was sent or the connection ended; false if the time passes first.
    bool HearsWithin(std::chrono::milliseconds time) const;

    /// Waits for this many bytes, or for the end of the connection.
    std::string ReceiveBytes(std::size_t size);

    /// Waits until the simulator has ended the connection.
    Answer Receive();

    /// How many TCP segments with data have arrived.
    unsigned SegmentsReceived() const;

private:
    Descriptor socket;
    bool broken = false; // seen by a send; a receive no longer reports it then
};

/// A whole conversation: sends the request and waits for the end of the answer.
Answer Ask(std::string_view request);

/// The answer of a refusal; the description as it is in the JSON.
Answer Refusal(int resultCode, const std::string& description);
