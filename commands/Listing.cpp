// The tables of services and modules.

#include "app/Quorlan.h"
#include "engine/Request.h"
#include "term/Field.h"
#include "term/Styles.h"

#include <iostream>
#include <string_view>

namespace {

constexpr std::size_t nameWidth = 25;
constexpr std::size_t stateWidth = 15;
constexpr std::size_t heartbeatWidth = 15;
constexpr std::size_t versionWidth = 15;

Manipulator StateColor(const std::string& state)
{
    if (state == "running") {
        return Green;
    }
    if (state == "stopped" || state == "terminated") {
        return Red;
    }
    return Yellow;
}

void PrintHeading(std::string_view text, std::size_t width)
{
    std::cout << Bold << Field{text, width} << Reset;
}

// One entry with the member is enough to show the column; then every entry must have it.
bool HasHeartbeatColumn(const Poco::JSON::Array& entries)
{
    for (unsigned int i = 0; i < entries.size(); ++i) {
        if (entries.getObject(i)->has("monitored")) {
            return true;
        }
    }
    return false;
}

void PrintRow(const Poco::JSON::Object::Ptr& entry, bool showHeartbeat)
{
    std::cout << Field{entry->getValue<std::string>("name"), nameWidth};

    const auto state = entry->getValue<std::string>("state");
    std::cout << StateColor(state) << Field{state, stateWidth} << Reset;

    if (showHeartbeat) {
        const bool monitored = entry->getValue<bool>("monitored");
        std::cout << (monitored ? Green : Red) << Field{monitored ? "yes" : "no", heartbeatWidth}
                  << Reset;
    }

    std::cout << Field{entry->getValue<std::string>("version"), versionWidth} << std::endl;
}

} // namespace

void Quorlan::HandleListCommand(const std::string& /*name*/, const std::string& /*value*/)
{
    std::string reply;
    if (!SendRequest(MakeRequest("list"), reply)) {
        exitCode = EXIT_UNAVAILABLE;
        return;
    }
    ReadReply(reply, [this](const Poco::JSON::Object::Ptr& list) {
        // Checked first, unlike in ExecuteRequest: a refused list has no tables to print.
        const int resultCode = list->getValue<int>("resultCode");
        if (resultCode != 0) {
            std::cerr << list->getValue<std::string>("description") << std::endl;
            exitCode = resultCode;
            return;
        }
        PrintModuleTable(list->getArray("services"), "SERVICE NAME");
        PrintModuleTable(list->getArray("modules"), "MODULE NAME");
    });
}

void Quorlan::PrintModuleTable(const Poco::JSON::Array::Ptr& entries,
                               const std::string& nameHeading)
{
    // A null array throws here, before anything is printed.
    const bool showHeartbeat = HasHeartbeatColumn(*entries);

    PrintHeading(nameHeading, nameWidth);
    PrintHeading("STATE", stateWidth);
    if (showHeartbeat) {
        PrintHeading("HEARTBEAT", heartbeatWidth);
    }
    PrintHeading("VERSION", versionWidth);
    std::cout << std::endl;

    const std::size_t tableWidth =
        nameWidth + stateWidth + (showHeartbeat ? heartbeatWidth : 0) + versionWidth;
    std::cout << std::string(tableWidth, '-') << std::endl;

    const std::size_t count = entries->size();
    if (count == 0) {
        std::cout << "None are loaded!" << std::endl;
    }
    for (unsigned int i = 0; i < count; ++i) {
        PrintRow(entries->getObject(i), showHeartbeat);
    }
    std::cout << std::endl;
}
