#include "tests/fault-injection/InjectedFault.h"

#include "tests/support/Descriptor.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

void SetVariable(const char* name, const std::string& value)
{
    Require(setenv(name, value.c_str(), 1) == 0, name);
}

// Only the loader and the preloaded libraries read them; the tool has no environment variables.
constexpr const char* variables[] = {"LD_PRELOAD",  "FAULT_CALL",  "FAULT_NTH",  "FAULT_TIMES",
                                     "FAULT_ERRNO", "FAULT_LIMIT", "FAULT_MARK", "FAULT_LOG"};

} // namespace

InjectedFault::InjectedFault(const std::string& library, const std::string& call)
    : folder(fs::temp_directory_path() / "quorlan-fault-XXXXXX")
{
    Require(mkdtemp(folder.data()) != nullptr, folder);
    mark = folder + "/happened";
    SetVariable("LD_PRELOAD", library);
    SetVariable("FAULT_CALL", call);
    SetVariable("FAULT_MARK", mark);
    SetVariable("FAULT_LOG", folder + "/log");
    // A sanitizer's own library wants to come first, but works after another, too.
    SetVariable("ASAN_OPTIONS", "verify_asan_link_order=0");
}

InjectedFault InjectedFault::OfCall(const std::string& call, int nth, int error, int times)
{
    SetVariable("FAULT_NTH", std::to_string(nth));
    SetVariable("FAULT_TIMES", std::to_string(times));
    SetVariable("FAULT_ERRNO", std::to_string(error));
    return {SOCKET_FAULTS, call};
}

InjectedFault InjectedFault::OfAllocation(int nth)
{
    SetVariable("FAULT_NTH", std::to_string(nth));
    SetVariable("FAULT_ERRNO", std::to_string(ENOMEM));
    return {ALLOCATION_FAULTS, "malloc"};
}

InjectedFault InjectedFault::ShortSends(int limit)
{
    SetVariable("FAULT_LIMIT", std::to_string(limit));
    return {SOCKET_FAULTS, "send"};
}

InjectedFault InjectedFault::None()
{
    return {SOCKET_FAULTS, "none"};
}

InjectedFault::~InjectedFault()
{
    for (const char* const variable : variables) {
        unsetenv(variable);
    }
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

bool InjectedFault::Happened() const
{
    return fs::exists(mark);
}

std::string InjectedFault::SocketSettings() const
{
    std::ostringstream text;
    text << std::ifstream(folder + "/log").rdbuf();
    return text.str();
}

void UseBuiltTool()
{
    unsetenv("QUORLAN_BINARY");
    unsetenv("QUORLAN_LAUNCHER");
}

void UseBuiltToolWithoutSanitizers()
{
    UseBuiltTool();
    SetVariable("QUORLAN_BINARY", TOOL_WITHOUT_SANITIZERS);
}
