// The option table: what a user can type and which handler it reaches.

#include "app/Quorlan.h"
#include "term/Styles.h"

#include <Poco/Util/Option.h>
#include <Poco/Util/OptionCallback.h>
#include <Poco/Util/OptionSet.h>
#include <Poco/Util/RegExpValidator.h>

namespace {

struct OptionRow
{
    const char* fullName;
    const char* shortName;
    const char* description;
    const char* group;
    bool repeatable;
    const char* argument;  // nullptr: the option takes none
    const char* validator; // nullptr where there is no argument
    void (Quorlan::*handler)(const std::string& name, const std::string& value);
};

constexpr const char* noShortName = "";
constexpr const char* noGroup = "";

// At most one option of this group may be given in a run. POCO counts every occurrence, and does so
// first: an option given twice fails as incompatible with itself, repeatable or not.
constexpr const char* commandGroup = "command";

constexpr bool once = false;
constexpr bool repeatable = true;

// The validator anchors the match at the start by itself.
constexpr const char* moduleName = "[0-9A-Za-z]{1,16}$";
constexpr const char* trueOrFalse = "^(?i)(true|false)$";

// "monitor" reads as if it started monitoring; the engine's command of that name stops it.
constexpr OptionRow optionTable[] = {
    {"help", "h", "Display help information", noGroup, once, nullptr, nullptr,
     &Quorlan::HandleHelpOption},
    {"version", "v", "Display version information of this application", noGroup, once, nullptr,
     nullptr, &Quorlan::HandleVersionOption},
    {"colors", noShortName, "Use colors in the output", noGroup, once, nullptr, nullptr,
     &Quorlan::HandleColorsOption},
    {"update", noShortName, "Request modules update", noGroup, once, nullptr, nullptr,
     &Quorlan::HandleSimpleCommand},
    {"update-status", noShortName, "Return the status of the modules update", noGroup, once,
     nullptr, nullptr, &Quorlan::HandleSimpleCommand},
    {"debug", "d", "Enter debug mode (true, false)", commandGroup, once, "<enable>", trueOrFalse,
     &Quorlan::HandleBooleanCommand},
    {"start", "s", "Start a mirtaq module", commandGroup, repeatable, "<module>", moduleName,
     &Quorlan::HandleModuleCommand},
    {"stop", "p", "Stop a mirtaq module", commandGroup, repeatable, "<module>", moduleName,
     &Quorlan::HandleModuleCommand},
    {"restart", "r", "Restart a mirtaq module", commandGroup, repeatable, "<module>", moduleName,
     &Quorlan::HandleModuleCommand},
    {"reconfigure", "c", "Reconfigure a running mirtaq module model", commandGroup, repeatable,
     "<module>", moduleName, &Quorlan::HandleModuleCommand},
    {"list", "l", "List all known mirtaq services and modules", commandGroup, once, nullptr,
     nullptr, &Quorlan::HandleListCommand},
    {"status", "u", "Return the status of a mirtaq module", commandGroup, repeatable, "<module>",
     moduleName, &Quorlan::HandleModuleCommand},
    {"engine-status", "e", "Return the status of the Vantrel", commandGroup, repeatable, nullptr,
     nullptr, &Quorlan::HandleEngineStatusCommand},
    {"pid", "i", "Return the PID of a module", commandGroup, repeatable, "<module>", moduleName,
     &Quorlan::HandleModuleCommand},
    {"monitor", "m", "Stop heartbeat monitoring of a module", commandGroup, repeatable, "<module>",
     moduleName, &Quorlan::HandleModuleCommand},
};

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
        if (row.argument != nullptr) {
            option.argument(row.argument)
                .validator(new Poco::Util::RegExpValidator(row.validator)); // option takes it over
        }
        options.addOption(option);
    }
}

void Quorlan::HandleColorsOption(const std::string& /*name*/, const std::string& /*value*/)
{
    useColors = true;
}
