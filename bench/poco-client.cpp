// A minimal client of the engine with the tool's libraries: POCO's socket, its JSON parser and
// std::cout. It prints name, state and version of each entry.

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>
#include <Poco/Net/SocketAddress.h>
#include <Poco/Net/StreamSocket.h>

#include <array>
#include <iostream>
#include <string>

int main()
{
    const std::string request = R"({"command":"list"})";
    Poco::Net::StreamSocket engine(Poco::Net::SocketAddress("127.0.0.1", 7777));
    engine.sendBytes(request.data(), static_cast<int>(request.size()));

    std::string reply;
    std::array<char, 8192> block{};
    int size = 0;
    while ((size = engine.receiveBytes(block.data(), static_cast<int>(block.size()))) > 0) {
        reply.append(block.data(), static_cast<std::size_t>(size));
    }

    Poco::JSON::Parser parser;
    const auto list = parser.parse(reply).extract<Poco::JSON::Object::Ptr>();
    for (const char* const table : {"services", "modules"}) {
        const auto entries = list->getArray(table);
        for (unsigned int i = 0; i < entries->size(); ++i) {
            const auto entry = entries->getObject(i);
            std::cout << entry->getValue<std::string>("name") << ' '
                      << entry->getValue<std::string>("state") << ' '
                      << entry->getValue<std::string>("version") << std::endl;
        }
    }
}
