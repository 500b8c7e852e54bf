// Replies to list.

#include "tests/fuzz/Oracle.h"
#include "tests/fuzz/Target.h"

#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>

#include <algorithm>

namespace {

std::vector<Poco::JSON::Object::Ptr> EntriesOf(const Poco::JSON::Object& list,
                                               const std::string& key)
{
    const Poco::JSON::Array::Ptr array = list.getArray(key);
    if (array.isNull()) {
        throw Poco::NullPointerException();
    }
    std::vector<Poco::JSON::Object::Ptr> entries;
    for (unsigned int i = 0; i < array->size(); ++i) {
        entries.push_back(array->getObject(i));
    }
    return entries;
}

// Dereferencing the entry that is no object throws POCO's null pointer exception.
void ExpectTable(const Poco::JSON::Object& list, const std::string& key,
                 const std::string& nameHeading, Outcome& expected)
{
    const auto entries = EntriesOf(list, key);
    const bool heartbeat = std::any_of(entries.begin(), entries.end(),
                                       [](const auto& entry) { return entry->has("monitored"); });

    expected.out += Padded(nameHeading, 25) + Padded("STATE", 15) +
                    (heartbeat ? Padded("HEARTBEAT", 15) : "") + Padded("VERSION", 15) + "\n";
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

void ExpectList(const Poco::JSON::Object& list, Outcome& expected)
{
    const int code = CodeOf(list);
    if (code != 0) {
        expected.err += TextOf(list, "description") + "\n";
        expected.status = code;
        return;
    }
    ExpectTable(list, "services", "SERVICE NAME", expected);
    ExpectTable(list, "modules", "MODULE NAME", expected);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string reply(data, data + size);
    Outcome expected;
    expected.requests = {R"({"command":"list"})"};
    ReadExpected(reply, ExpectList, expected);
    ExpectRun({"quorlan", "--list"}, {reply}, expected);
    return 0;
}
