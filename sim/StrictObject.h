#pragma once

#include <Poco/Dynamic/Var.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace sim {

/// A JSON object whose members are read without any conversion. Whatever is not as expected
/// throws Error with a message that says where in the file it is, such as
/// modules[2]: "state" is missing.
class StrictObject
{
public:
    using Error = std::runtime_error;

    /// The path says where in the file the object is; it is empty for the root.
    StrictObject(const Poco::Dynamic::Var& json, std::string path);

    bool Has(const std::string& key) const;
    Poco::Dynamic::Var Member(const std::string& key) const;
    /// A non-empty string.
    std::string Text(const std::string& key) const;
    bool Flag(const std::string& key) const;
    /// A number from 0 to max.
    double Number(const std::string& key, int max) const;
    Poco::JSON::Array::Ptr Array(const std::string& key) const;

    void AllowOnly(const std::vector<std::string>& keys) const;
    std::string PathOf(const std::string& key) const;
    [[noreturn]] void Fail(const std::string& problem) const;

private:
    Poco::JSON::Object::Ptr object;
    std::string path;
};

} // namespace sim
