#pragma once

#include <Poco/JSON/Object.h>

#include <functional>

/// Prints a command's report from the root object of the engine's reply. Ownership is shared.
///
/// A member that the report needs is read with Object::getValue<T>: a value of that type as it
/// stands, another through POCO's conversion; a missing or null one throws
/// Poco::InvalidAccessException.
using ReplyHandler = std::function<void(Poco::JSON::Object::Ptr reply)>;
