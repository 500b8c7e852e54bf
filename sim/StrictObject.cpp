#include "sim/StrictObject.h"

#include "sim/Log.h"

#include <algorithm>
#include <typeinfo>
#include <utility>

namespace sim {

StrictObject::StrictObject(const Poco::Dynamic::Var& json, std::string path) : path(std::move(path))
{
    if (json.isEmpty() || json.type() != typeid(Poco::JSON::Object::Ptr)) {
        Fail("not a JSON object");
    }
    object = json.extract<Poco::JSON::Object::Ptr>();
}

bool StrictObject::Has(const std::string& key) const
{
    return object->has(key);
}

Poco::Dynamic::Var StrictObject::Member(const std::string& key) const
{
    if (!Has(key)) {
        Fail("\"" + key + "\" is missing");
    }
    return object->get(key);
}

std::string StrictObject::Text(const std::string& key) const
{
    const Poco::Dynamic::Var member = Member(key);
    if (!member.isString() || member.extract<std::string>().empty()) {
        Fail("\"" + key + "\" is not a non-empty string");
    }
    return member.extract<std::string>();
}

bool StrictObject::Flag(const std::string& key) const
{
    const Poco::Dynamic::Var member = Member(key);
    if (!member.isBoolean()) {
        Fail("\"" + key + "\" is neither true nor false");
    }
    return member.extract<bool>();
}

double StrictObject::Number(const std::string& key, int max) const
{
    const Poco::Dynamic::Var member = Member(key);
    const bool isNumber = member.isNumeric() && !member.isBoolean();
    const double number = isNumber ? member.convert<double>() : -1;
    if (!(number >= 0 && number <= max)) {
        Fail("\"" + key + "\" is not a number from 0 to " + std::to_string(max));
    }
    return number;
}

Poco::JSON::Array::Ptr StrictObject::Array(const std::string& key) const
{
    Member(key);
    if (!object->isArray(key)) {
        Fail("\"" + key + "\" is not an array");
    }
    return object->getArray(key);
}

void StrictObject::AllowOnly(const std::vector<std::string>& keys) const
{
    for (const auto& member : *object) {
        if (std::find(keys.begin(), keys.end(), member.first) == keys.end()) {
            Fail("unknown member \"" + Printable(member.first) + "\"");
        }
    }
}

std::string StrictObject::PathOf(const std::string& key) const
{
    return path.empty() ? key : path + "." + key;
}

void StrictObject::Fail(const std::string& problem) const
{
    throw Error(path.empty() ? problem : path + ": " + problem);
}

} // namespace sim
