// The faults of the simulator: a table, and above it the steps that it is made of.

#include "sim/Faults.h"

#include "sim/Reply.h"
#include "sim/StartError.h"

#include <Poco/JSON/Array.h>
#include <Poco/Util/Application.h>

#include <algorithm>
#include <cstddef>

namespace sim {

namespace {

constexpr std::size_t hugeListLength = 100000; // about 7 megabytes

Poco::JSON::Object AskEngine(Engine& engine, const Poco::JSON::Object& request)
{
    return engine.Answer(request);
}

Poco::JSON::Object Refuse(Engine& /*engine*/, const Poco::JSON::Object& /*request*/)
{
    return MakeReply(ResultCode::FaultInjected, "Refused on purpose");
}

Poco::JSON::Object RefuseStatus(Engine& engine, const Poco::JSON::Object& request)
{
    Poco::JSON::Object reply = engine.Answer(request);
    if (Engine::CommandOf(request) == "engine-status") {
        reply.set("resultCode", static_cast<int>(ResultCode::FaultInjected));
        reply.set("description", "Refused on purpose");
    }
    return reply;
}

/// Red, a tab and two line ends around the text.
void Decorate(Poco::JSON::Object& object, const std::string& key)
{
    object.set(key, "\033[31m" + object.getValue<std::string>(key) + "\tred\033[0m\r\n");
}

Poco::JSON::Object AddControlCharacters(Engine& engine, const Poco::JSON::Object& request)
{
    Poco::JSON::Object reply = engine.Answer(request);
    Decorate(reply, "description");
    for (const char* const table : {"services", "modules"}) {
        const Poco::JSON::Array::Ptr entries = reply.getArray(table);
        for (unsigned int i = 0; entries && i < entries->size(); ++i) {
            Decorate(*entries->getObject(i), "name");
        }
    }
    return reply;
}

std::string InAnArray(const Poco::JSON::Object& reply)
{
    return "[" + Compact(reply) + "]";
}

std::string Garbage(const Poco::JSON::Object& /*reply*/)
{
    return "This is not JSON";
}

std::string Nothing(const Poco::JSON::Object& /*reply*/)
{
    return "";
}

std::string WithoutResultCode(const Poco::JSON::Object& reply)
{
    Poco::JSON::Object rest = reply;
    rest.remove("resultCode");
    return Compact(rest);
}

std::string WithHugeList(const Poco::JSON::Object& reply)
{
    const std::string begin = "\"modules\":[";
    std::string text = Compact(reply);
    const std::size_t found = text.find(begin);
    if (found == std::string::npos) {
        return text;
    }
    const std::size_t first = found + begin.size();
    // Like the modules after them: "monitored" is in every entry of a list or in none.
    const bool watched = text[first] == ']' || text.compare(first, 13, "{\"monitored\":") == 0;
    const std::string entry = std::string(R"({"name":"huge","state":"running","version":"1.0.0")") +
                              (watched ? R"(,"monitored":true})" : "}");
    const std::string next = "," + entry;
    std::string entries = entry;
    entries.reserve(hugeListLength * next.size());
    for (std::size_t i = 1; i < hugeListLength; ++i) {
        entries += next;
    }
    if (text[first] != ']') {
        entries += ',';
    }
    return text.insert(first, entries);
}

std::string FirstHalf(const Poco::JSON::Object& reply)
{
    const std::string text = Compact(reply);
    return text.substr(0, text.size() / 2);
}

void Send(ClientSocket& client, const std::string& text)
{
    client.Send(text);
    client.Finish();
}

void SendSlowly(ClientSocket& client, const std::string& text)
{
    client.SendSlowly(text);
    client.Finish();
}

void SendAndStay(ClientSocket& client, const std::string& text)
{
    client.Send(text);
    client.WaitForClientToLeave();
}

void SendAndReset(ClientSocket& client, const std::string& text)
{
    client.Send(text);
    client.ResetOnClose();
}

} // namespace

const Fault& NoFault()
{
    static const Fault none = {"", "", Reach::CarriedOut, AskEngine, Compact, Send};
    return none;
}

const std::vector<Fault>& AllFaults()
{
    // clang-format off
    static const std::vector<Fault> faults = {
        {"no-accept", "accepts no connection; takes no <command> and no <n>",
         Reach::Queued, AskEngine, Nothing, Send},
        {"close", "closes the connection without reading the request",
         Reach::Accepted, AskEngine, Nothing, Send},
        {"silent", "reads the request and never answers",
         Reach::CarriedOut, AskEngine, Nothing, SendAndStay},
        {"slow", "sends the reply a byte at a time",
         Reach::CarriedOut, AskEngine, Compact, SendSlowly},
        {"half", "sends half of the reply and closes",
         Reach::CarriedOut, AskEngine, FirstHalf, Send},
        {"reset", "sends half of the reply and resets the connection",
         Reach::CarriedOut, AskEngine, FirstHalf, SendAndReset},
        {"stay-open", "sends the reply and leaves the connection open",
         Reach::CarriedOut, AskEngine, Compact, SendAndStay},
        {"garbage", "replies with something that is not JSON",
         Reach::CarriedOut, AskEngine, Garbage, Send},
        {"wrong-type", "replies with a JSON array instead of an object",
         Reach::CarriedOut, AskEngine, InAnArray, Send},
        {"no-result-code", "leaves \"resultCode\" out of the reply",
         Reach::CarriedOut, AskEngine, WithoutResultCode, Send},
        {"error-code", "refuses every request with a code and a description",
         Reach::Read, Refuse, Compact, Send},
        {"refused-status", "refuses \"engine-status\" in a reply with all its members",
         Reach::CarriedOut, RefuseStatus, Compact, Send},
        {"control-characters", "puts escape sequences, tabs and line ends into texts",
         Reach::CarriedOut, AddControlCharacters, Compact, Send},
        {"huge", "answers \"list\" with many megabytes",
         Reach::CarriedOut, AskEngine, WithHugeList, Send},
    };
    // clang-format on
    return faults;
}

const Fault& FindFault(const std::string& name)
{
    const std::vector<Fault>& faults = AllFaults();
    const auto found = std::find_if(faults.begin(), faults.end(),
                                    [&name](const Fault& fault) { return name == fault.name; });
    if (found == faults.end()) {
        throw StartError(Poco::Util::Application::EXIT_USAGE,
                         "unknown fault \"" + name + "\" (--help lists them)");
    }
    return *found;
}

} // namespace sim
