#pragma once

#include "engine/Reply.h"

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/Util/Application.h>

#include <string>
#include <vector>

/// The command-line tool. The handler of a command's option sends one request, prints one report
/// and leaves the outcome in exitCode. All of that happens inside init(), while POCO processes the
/// command line; main() only picks the exit status.
///
/// Members are grouped by the file that defines them:
///   app/Quorlan.cpp               run flow, exit status
///   app/Options.cpp               option table, the handler of "colors"
///   app/Screens.cpp               help and version screens
///   engine/Connection.cpp         one request out, one reply in
///   engine/Exchange.cpp           reply checking and what it means for the exit status
///   commands/ModuleCommands.cpp   the commands that answer with one sentence
///   commands/EngineStatus.cpp     the status report and the debug-mode query
///   commands/Listing.cpp          the tables of services and modules
///
/// An option handler takes the option's full name, which is also the request's command word, and
/// the option's argument, empty for an option without one.
class Quorlan: public Poco::Util::Application
{
public:
    // app/Quorlan.cpp

    /// The exit status: exitCode if it is set, otherwise EXIT_USAGE, with the help screen, for a
    /// run without any argument, otherwise EXIT_OK. The unprocessed arguments are not used.
    int main(const std::vector<std::string>& args) override;

    // app/Options.cpp
    void HandleColorsOption(const std::string& name, const std::string& value);

    // app/Screens.cpp. Both make POCO ignore every option that follows.
    void HandleHelpOption(const std::string& name, const std::string& value);
    void HandleVersionOption(const std::string& name, const std::string& value);

    // engine/Connection.cpp

    /// Sends the request over a connection of its own and collects the reply until the engine
    /// closes. Any text already in reply is dropped.
    ///
    /// False when the engine could not be reached or the socket failed outside a stream
    /// operation; one line on standard output says so. An engine that stops sending for five
    /// seconds, or whose connection breaks, is not such a failure: the result is true and reply
    /// holds the 8192-byte blocks that had arrived whole.
    static bool SendRequest(const Poco::JSON::Object& request, std::string& reply);

    // engine/Exchange.cpp

    /// Sends the request, gives the reply to handler, which prints the report, and only then
    /// stores the reply's "resultCode" in exitCode where it is not 0: a command that the
    /// engine refused has its report printed too. Sets EXIT_UNAVAILABLE if SendRequest failed.
    void ExecuteRequest(const Poco::JSON::Object& request, const ReplyHandler& handler);

    // commands/ModuleCommands.cpp
    void HandleModuleCommand(const std::string& name, const std::string& value);
    void HandleBooleanCommand(const std::string& name, const std::string& value);
    void HandleSimpleCommand(const std::string& name, const std::string& value);

    // commands/EngineStatus.cpp
    void HandleEngineStatusCommand(const std::string& name, const std::string& value);

    // commands/Listing.cpp
    void HandleListCommand(const std::string& name, const std::string& value);

protected:
    // app/Options.cpp
    void defineOptions(Poco::Util::OptionSet& options) override;

private:
    // app/Screens.cpp
    void displayHelp();

    // engine/Exchange.cpp

    /// Parses a reply and gives its root object to handler. Any POCO exception, also one from
    /// handler, ends as one line on standard error and EXIT_PROTOCOL in exitCode.
    void ReadReply(const std::string& reply, const ReplyHandler& handler);

    // commands/ModuleCommands.cpp

    /// Sends {command, key: value}, or the command alone where key is empty, and prints the
    /// reply's "description". A command that needs debug mode is not sent while the engine
    /// reports it off; a sentence on standard output says so and exitCode stays as it is.
    void HandleCommand(const std::string& command, const std::string& key,
                       const std::string& value);

    // commands/EngineStatus.cpp

    /// Asks the engine. If that fails or the reply has no usable flag, reports it, sets exitCode to
    /// EXIT_PROTOCOL and returns false.
    bool IsDebugModeEnabled();

    // commands/Listing.cpp

    /// Prints one table and the empty line after it on standard output, cell by cell as the
    /// values are read. Throws Poco::NullPointerException for a null array or an entry that is
    /// no object, and POCO's conversion errors for a value that is missing or cannot be converted.
    static void PrintModuleTable(const Poco::JSON::Array::Ptr& entries,
                                 const std::string& nameHeading);

    /// The process exit status. Set by ExecuteRequest, ReadReply and HandleListCommand, which
    /// never set it back to 0; read by main().
    int exitCode = 0;
};
