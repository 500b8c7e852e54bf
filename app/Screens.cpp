// The help and version screens, on standard output.

#include "app/BuildInfo.h"
#include "app/Quorlan.h"

#include <Poco/Util/HelpFormatter.h>

#include <iostream>

void Quorlan::displayHelp()
{
    Poco::Util::HelpFormatter formatter(options());
    formatter.setCommand(commandName());
    formatter.setUsage("OPTIONS");
    formatter.setHeader("Application to control Vantrel / manage module applications");
    formatter.format(std::cout);
}

void Quorlan::HandleHelpOption(const std::string& /*name*/, const std::string& /*value*/)
{
    displayHelp();
    stopOptionsProcessing();
}

void Quorlan::HandleVersionOption(const std::string& /*name*/, const std::string& /*value*/)
{
    std::cout << "quorlan v" << versionText << std::endl;
    std::cout << "(build info: " << buildInfoText << ")" << std::endl;
    stopOptionsProcessing();
}
