#pragma once

#include "tests/fuzz/Run.h"

#include <Poco/JSON/Object.h>

#include <functional>
#include <string>

/// Adds what the tool must show for a reply. What was added before a member that can't be read
/// stays.
using Report = std::function<void(const Poco::JSON::Object& reply, RunResult& expected)>;

void ExpectSentence(const Poco::JSON::Object& reply, RunResult& expected);
void ExpectStatus(const Poco::JSON::Object& reply, RunResult& expected);
void ExpectList(const Poco::JSON::Object& reply, RunResult& expected);

/// Reads a reply, which must be a JSON object, with report. If either fails, the tool must print
/// the failure line and end with status 76.
void ReadExpected(const std::string& reply, const Report& report, RunResult& expected);
