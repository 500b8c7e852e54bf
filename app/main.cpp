#include "app/Quorlan.h"

#include <Poco/AutoPtr.h>
#include <Poco/Exception.h>

int main(int argc, char** argv)
{
    Poco::AutoPtr<Quorlan> quorlan(new Quorlan);
    try {
        quorlan->init(argc, argv);
    } catch (const Poco::Exception& exception) {
        quorlan->logger().log(exception);
        return Quorlan::EXIT_CONFIG;
    }
    return quorlan->run();
}
