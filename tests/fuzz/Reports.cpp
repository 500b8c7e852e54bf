// What the tool must show, worked out a second time with POCO alone and without streams, so that
// the tool's own reading and printing are checked against it.

#include "tests/fuzz/Reports.h"

#include <Poco/Dynamic/Var.h>
#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Parser.h>

#include <algorithm>

namespace {

std::string TextOf(const Poco::JSON::Object& reply, const char* key)
{
    return reply.get(key).convert<std::string>();
}

bool FlagOf(const Poco::JSON::Object& reply, const char* key)
{
    return reply.get(key).convert<bool>();
}

int CodeOf(const Poco::JSON::Object& reply)
{
    return reply.get("resultCode").convert<int>();
}

std::string Padded(const std::string& text, std::size_t width)
{
    return text.size() < width ? text + std::string(width - text.size(), ' ') : text;
}

// A list without the array, or with an entry that is no object, throws POCO's null pointer
// exception where it is used.
void ExpectTable(const Poco::JSON::Object& list, const char* key, const char* nameHeading,
                 RunResult& expected)
{
    const Poco::JSON::Array::Ptr array = list.getArray(key);
    std::vector<Poco::JSON::Object::Ptr> entries;
    for (unsigned int i = 0; i < array->size(); ++i) {
        entries.push_back(array->getObject(i));
    }
    const bool heartbeat = std::any_of(entries.begin(), entries.end(),
                                       [](const auto& entry) { return entry->has("monitored"); });

    expected.out += Padded(nameHeading, 25) + "STATE          " +
                    (heartbeat ? "HEARTBEAT      " : "") + "VERSION        \n";
    expected.out += std::string(heartbeat ? 70 : 55, '-') + "\n";
    expected.out += entries.empty() ? "None are loaded!\n" : "";
    for (const auto& entry : entries) {
        expected.out += Padded(TextOf(*entry, "name"), 25);
        expected.out += Padded(TextOf(*entry, "state"), 15);
        if (heartbeat) {
            expected.out += Padded(FlagOf(*entry, "monitored") ? "yes" : "no", 15);
        }
        expected.out += Padded(TextOf(*entry, "version"), 15) + "\n";
    }
    expected.out += "\n";
}

} // namespace

void ExpectSentence(const Poco::JSON::Object& reply, RunResult& expected)
{
    expected.out += TextOf(reply, "description") + "\n";
    expected.status = CodeOf(reply);
}

void ExpectStatus(const Poco::JSON::Object& reply, RunResult& expected)
{
    const auto text = [&reply](const char* key) {
        return Padded(TextOf(reply, key), 15) + "\n";
    };
    const auto flag = [&reply](const char* key) {
        return FlagOf(reply, key) ? "enabled        \n" : "disabled       \n";
    };

    // In two steps, as a label is printed even if its value can't be read.
    expected.out += "Vantrel status\n------------------------------\nSafe mode:     ";
    expected.out += flag("safeModeEnabled");
    expected.out += "Debug mode:    ";
    expected.out += flag("debugModeEnabled");
    expected.out += "State:         ";
    expected.out += text("state");
    expected.out += "Version:       ";
    expected.out += text("version");
    expected.out += "Build info:    ";
    expected.out += reply.isNull("build") ? "<not available>\n" : text("build");
    expected.out += "\n";
    expected.status = CodeOf(reply);
}

void ExpectList(const Poco::JSON::Object& reply, RunResult& expected)
{
    const int code = CodeOf(reply);
    if (code != 0) {
        expected.err += TextOf(reply, "description") + "\n";
        expected.status = code;
        return;
    }
    ExpectTable(reply, "services", "SERVICE NAME", expected);
    ExpectTable(reply, "modules", "MODULE NAME", expected);
}

void ReadExpected(const std::string& reply, const Report& report, RunResult& expected)
{
    try {
        Poco::JSON::Parser parser;
        report(*parser.parse(reply).extract<Poco::JSON::Object::Ptr>(), expected);
    } catch (const Poco::Exception& exception) {
        expected.err += "Failed to parse reply due to " + exception.displayText() + "\n";
        expected.status = 76;
    }
}
