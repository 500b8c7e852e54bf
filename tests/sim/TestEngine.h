#pragma once

#include "sim/Engine.h"
#include "sim/Reply.h"
#include "sim/StateFile.h"

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

#include <chrono>
#include <string>
#include <utility>

/// An engine whose requests and replies are texts and whose clock the test moves.
class TestEngine
{
public:
    explicit TestEngine(sim::State state = sim::DefaultState())
        : engine(std::move(state), [this] { return time; })
    {
    }

    std::string Answer(const std::string& request) { return sim::Compact(AnswerObject(request)); }

    /// The answer to a command on a module.
    std::string Command(const std::string& command, const std::string& module)
    {
        return Answer(R"({"command":")" + command + R"(","module":")" + module + "\"}");
    }

    std::string Description(const std::string& request)
    {
        return AnswerObject(request).getValue<std::string>("description");
    }

    /// The entry of a service or module in the list, as compact JSON; empty if there is none.
    std::string Row(const std::string& name)
    {
        const Poco::JSON::Object::Ptr list = Parsed(Answer(R"({"command":"list"})"));
        for (const char* table : {"services", "modules"}) {
            const Poco::JSON::Array::Ptr rows = list->getArray(table);
            for (unsigned int i = 0; i < rows->size(); ++i) {
                if (rows->getObject(i)->getValue<std::string>("name") == name) {
                    return sim::Compact(*rows->getObject(i));
                }
            }
        }
        return "";
    }

    /// The engine, for what is no request.
    sim::Engine& Get() { return engine; }

    void EnableDebugMode() { Answer(R"({"command":"debug","boolean":"true"})"); }

    void Pass(std::chrono::milliseconds duration) { time += duration; }

private:
    Poco::JSON::Object AnswerObject(const std::string& request)
    {
        return engine.Answer(*Parsed(request));
    }

    static Poco::JSON::Object::Ptr Parsed(const std::string& json)
    {
        return Poco::JSON::Parser().parse(json).extract<Poco::JSON::Object::Ptr>();
    }

    sim::TimePoint time;
    sim::Engine engine;
};
