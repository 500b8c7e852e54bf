// What the simulator can do wrong on purpose. The table says it all; the steps are above it.

#include "sim/Faults.h"

#include "sim/Reply.h"
#include "sim/StartError.h"

#include <Poco/JSON/Array.h>
#include <Poco/Util/Application.h>

#include <algorithm>

namespace sim {

namespace {

constexpr int hugeListLength = 100000; // some 7 megabytes

Poco::JSON::Object AskEngine(Engine& engine, const Poco::JSON::Object& request)
{
    return engine.Answer(request);
}

Poco::JSON::Object Refuse(Engine& /*engine*/, const Poco::JSON::Object& /*request*/)
{
    return MakeReply(ResultCode::faultInjected, "Refused on purpose");
}

Poco::JSON::Object AskEngineAndEnlarge(Engine& engine, const Poco::JSON::Object& request)
{
    Poco::JSON::Object reply = engine.Answer(request);
    if (Poco::JSON::Array::Ptr modules = reply.getArray("modules")) {
        for (int i = 0; i < hugeListLength; ++i) {
            Poco::JSON::Object entry;
            entry.set("name", "huge" + std::to_string(i));
            entry.set("state", "running");
            entry.set("version", "1.0.0");
            entry.set("monitored", true);
            modules->add(entry);
        }
        reply.set("modules", modules); // getArray may have given a copy
    }
    return reply;
}

std::string InAnArray(const Poco::JSON::Object& reply)
{
    return "[" + Compact(reply) + "]";
}

std::string Garbage(const Poco::JSON::Object& /*reply*/)
{
    return "This is not JSON\n";
}

std::string WithoutResultCode(const Poco::JSON::Object& reply)
{
    Poco::JSON::Object rest = reply;
    rest.remove("resultCode");
    return Compact(rest);
}

std::string FirstHalf(const std::string& text)
{
    return text.substr(0, text.size() / 2);
}

void SendWhole(Channel& channel, const std::string& text)
{
    channel.Send(text);
    channel.Finish();
}

void SendNothingAndClose(Channel& channel, const std::string& /*text*/)
{
    channel.Finish();
}

void SendNothing(Channel& channel, const std::string& /*text*/)
{
    channel.WaitForClientToLeave();
}

void SendSlowly(Channel& channel, const std::string& text)
{
    channel.SendSlowly(text);
    channel.Finish();
}

void SendHalf(Channel& channel, const std::string& text)
{
    SendWhole(channel, FirstHalf(text));
}

void SendHalfAndReset(Channel& channel, const std::string& text)
{
    channel.Send(FirstHalf(text));
    channel.ResetOnClose();
}

} // namespace

const Fault& NoFault()
{
    static const Fault none = {"", "", true, AskEngine, Compact, SendWhole};
    return none;
}

const std::vector<Fault>& AllFaults()
{
    static const std::vector<Fault> faults = {
        {"close", "closes the connection at once after accepting it", false, AskEngine, Compact,
         SendNothingAndClose},
        {"silent", "reads the request and never answers", true, AskEngine, Compact, SendNothing},
        {"slow", "sends the reply a byte at a time, 100 bytes a second", true, AskEngine, Compact,
         SendSlowly},
        {"half", "sends half of the reply and closes", true, AskEngine, Compact, SendHalf},
        {"garbage", "replies with something that is not JSON", true, AskEngine, Garbage, SendWhole},
        {"wrong-type", "replies with a JSON array in place of the object", true, AskEngine,
         InAnArray, SendWhole},
        {"no-result-code", "leaves \"resultCode\" out of the reply", true, AskEngine,
         WithoutResultCode, SendWhole},
        {"error-code", "refuses every request with a code and a sentence", true, Refuse, Compact,
         SendWhole},
        {"huge", "answers \"list\" with many megabytes", true, AskEngineAndEnlarge, Compact,
         SendWhole},
        {"reset", "sends half of the reply and resets the connection", true, AskEngine, Compact,
         SendHalfAndReset},
    };
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
