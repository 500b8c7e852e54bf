#pragma once

#include "tests/fuzz/Run.h"

#include <Poco/JSON/Object.h>

#include <functional>
#include <string>

/// What a run must show, built up by a report as it reads a reply: what was added before a value
/// that can't be read stays.
using Report = std::function<void(const Poco::JSON::Object& reply, Outcome& expected)>;

/// Reads reply, which must be a JSON object, with report. A reply that can't be read, by either,
/// is expected to add the failure line and to end with status 76; the result is then false.
bool ReadExpected(const std::string& reply, const Report& report, Outcome& expected);

/// The report of the commands that answer with one sentence.
void ExpectSentence(const Poco::JSON::Object& reply, Outcome& expected);

/// Member values, through POCO's conversions. POCO's exceptions pass.
std::string TextOf(const Poco::JSON::Object& reply, const std::string& key);
bool FlagOf(const Poco::JSON::Object& reply, const std::string& key);
int CodeOf(const Poco::JSON::Object& reply);

/// text, filled up with blanks to width bytes.
std::string Padded(const std::string& text, std::size_t width);

/// Runs words with replies, plain and on a terminal, and ends the process with both sides printed
/// if the plain run is not as expected, or if the run on a terminal differs by more than styles.
void ExpectRun(const Words& words, const Replies& replies, const Outcome& expected);

/// Ends the process with the outcome and the broken rule printed unless holds.
void Require(bool holds, const char* rule, const Outcome& outcome);
