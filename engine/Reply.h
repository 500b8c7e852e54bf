#pragma once

#include <Poco/JSON/Object.h>

#include <functional>

/// Takes what a command needs from the root object of the engine's reply, usually to print its
/// report. Ownership is shared.
///
/// A required member is read with Object::getValue<T>: a value of that type as it
/// stands, another through POCO's conversion; a missing or null one throws
/// Poco::InvalidAccessException.
using ReplyHandler = std::function<void(Poco::JSON::Object::Ptr reply)>;
