#pragma once

#include "tests/support/Process.h"

#include <string>
#include <vector>

/// Which of the tool's streams are a pseudo-terminal; the others are pipes.
enum class Terminal { None, Output, Error, Both };

/// Runs the tool to its end, with standard input empty.
///
/// It is the binary of the same build, or the one that the environment variable QUORLAN_BINARY
/// names; QUORLAN_LAUNCHER may hold words, with spaces between them, to put in front of
/// it, such as an emulator.
Outcome RunTool(const std::vector<std::string>& arguments, Terminal terminal = Terminal::None);

/// The same under another name: a link to the tool whose last path component is name.
Outcome RunToolAs(const std::string& name, const std::vector<std::string>& arguments);

/// The pieces in which a run writes its standard output, each as long as one write of the system.
std::vector<std::string> WritesOfTool(const std::vector<std::string>& arguments);

/// Runs a script of the shell, in which $QUORLAN stands for the tool with what is in front of it.
Outcome RunShell(const std::string& script);

/// Splits a command line at its spaces, for tests that read better with one.
std::vector<std::string> Words(const std::string& line);
