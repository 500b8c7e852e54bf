// The run flow after option processing: which exit status the run ends with.

#include "app/Quorlan.h"

#include <iostream>

int Quorlan::main(const std::vector<std::string>& /*args*/)
{
    if (exitCode != 0) {
        return exitCode;
    }
    // Any argument counts, also one that does nothing: a script that builds its command line from
    // parts and ends up with "--colors" alone has not asked for help.
    if (argv().size() > 1) {
        return EXIT_OK;
    }
    std::cout << "No command specified" << std::endl;
    displayHelp();
    return EXIT_USAGE;
}
