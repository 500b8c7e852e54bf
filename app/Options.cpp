// The option table: what a user can type and which handler it reaches.

#include "app/Quorlan.h"
#include "term/Styles.h"

#include <Poco/Util/Option.h>
#include <Poco/Util/OptionCallback.h>
#include <Poco/Util/OptionSet.h>
#include <Poco/Util/RegExpValidator.h>

namespace {

struct Argument
{
    const char* placeholder; // nullptr: the option takes no argument
    const char* pattern;
};

struct OptionRow
{
    const char* fullName;
    const char* shortName;
    const char* description;
    const char* group;
    bool repeatable;
    Argument argument;
    void (Quorlan::*handler)(const std::string& name, const std::string& value);
};

constexpr const char* noShortName = "";
constexpr const char* noGroup = "";

// At most one option of this group may be given in a run. POCO counts every occurrence, and does so
// first: an option given twice fails as incompatible with itself, repeatable or not.
constexpr const char* commandGroup = "command";

constexpr bool once = false;
constexpr bool repeatable = true;

constexpr Argument none{nullptr, nullptr};
// The validator matches from the start of the argument.
constexpr Argument moduleName{"<module>", "[0-9A-Za-z]{1,16}$"};
constexpr Argument trueOrFalse{"<enable>", "^(?i)(true|false)$"};

// --monitor stops monitoring, despite its name; the engine's command does the same.
// clang-format off
constexpr OptionRow optionTable[] = {
    {"help", "h", "Display help information",
     noGroup, once, none, &Quorlan::HandleHelpOption},
    {"version", "v", "Display version information of this application",
     noGroup, once, none, &Quorlan::HandleVersionOption},
    {"colors", noShortName, "Use colors in the output",
     noGroup, once, none, &Quorlan::HandleColorsOption},
    {"update", noShortName, "Request modules update",
     noGroup, once, none, &Quorlan::HandleSimpleCommand},
    {"update-status", noShortName, "Return the status of the modules update",
     noGroup, once, none, &Quorlan::HandleSimpleCommand},
    {"debug", "d", "Enter debug mode (true, false)",
     commandGroup, once, trueOrFalse, &Quorlan::HandleBooleanCommand},
    {"start", "s", "Start a mirtaq module",
     commandGroup, repeatable, moduleName, &Quorlan::HandleModuleCommand},
    {"stop", "p", "Stop a mirtaq module",
     commandGroup, repeatable, moduleName, &Quorlan::HandleModuleCommand},
    {"restart", "r", "Restart a mirtaq module",
     commandGroup, repeatable, moduleName, &Quorlan::HandleModuleCommand},
    {"reconfigure", "c", "Reconfigure a running mirtaq module model",
     commandGroup, repeatable, moduleName, &Quorlan::HandleModuleCommand},
    {"list", "l", "List all known mirtaq services and modules",
     commandGroup, once, none, &Quorlan::HandleListCommand},
    {"status", "u", "Return the status of a mirtaq module",
     commandGroup, repeatable, moduleName, &Quorlan::HandleModuleCommand},
    {"engine-status", "e", "Return the status of the Vantrel",
     commandGroup, repeatable, none, &Quorlan::HandleEngineStatusCommand},
    {"pid", "i", "Return the PID of a module",
     commandGroup, repeatable, moduleName, &Quorlan::HandleModuleCommand},
    {"monitor", "m", "Stop heartbeat monitoring of a module",
     commandGroup, repeatable, moduleName, &Quorlan::HandleModuleCommand},
};
// clang-format on

} // namespace

void Quorlan::defineOptions(Poco::Util::OptionSet& options)
{
    using Poco::Util::Option;

    Application::defineOptions(options);
    for (const OptionRow& row : optionTable) {
        Option option(row.fullName, row.shortName, row.description, false);
        option.repeatable(row.repeatable)
            .group(row.group)
            .callback(Poco::Util::OptionCallback<Quorlan>(this, row.handler));
        if (row.argument.placeholder != nullptr) {
            auto* const validator = new Poco::Util::RegExpValidator(row.argument.pattern);
            option.argument(row.argument.placeholder).validator(validator); // which it owns then
        }
        options.addOption(option);
    }
}

void Quorlan::HandleColorsOption(const std::string& /*name*/, const std::string& /*value*/)
{
    useColors = true;
}
