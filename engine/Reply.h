#pragma once

#include <Poco/JSON/Object.h>

#include <functional>

/// Takes what a command needs from the root object of the engine's reply, usually to print its
/// report. Ownership is shared.
///
/// A required member is read with Object::getValue<T>. A value of type T is taken as it is; POCO
/// converts any other. A missing or null member throws Poco::InvalidAccessException.
using ReplyHandler = std::function<void(Poco::JSON::Object::Ptr reply)>;
