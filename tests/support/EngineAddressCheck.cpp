#include "tests/support/PrivateNetwork.h"

#include <exception>
#include <iostream>

int main()
{
    try {
        ClaimEngineAddress();
        const std::string reason = WhyEngineAddressIsTaken();
        if (reason.empty()) {
            return 0;
        }
        std::cerr << reason << std::endl;
    } catch (const std::exception& exception) {
        std::cerr << exception.what() << std::endl;
    }
    return 1;
}
