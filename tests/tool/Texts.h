#pragma once

#include "tests/support/Poco.h"

#include <string>

// The texts that several commands share. POCO words what follows "; " and "due to "; where it
// differs between versions, tests/support/Poco.cpp has the words.

/// The POCO of the tool that is tested.
inline const PocoSeries& poco = PocoUnderTest();

inline const std::string connectionRefused =
    "Failed to connect to Vantrel at 127.0.0.1:7777; Connection refused\n";
inline const std::string noAnswer = "Vantrel failed to respond in time: 127.0.0.1:7777; Timeout\n";
inline const std::string debugModeIsOff =
    "Debug mode is disabled, set debugmode first with -d option\n";

inline const std::string badReply = "Failed to parse reply due to ";
inline const std::string emptyReply = badReply + poco.EndOfText() + "\n";
inline const std::string missingValue = badReply + "Invalid access: Can not convert empty value.\n";
inline const std::string nullPointer = badReply + "Null pointer\n";

// Requests and replies that many tests need and none is about.
inline const char* const engineStatusRequest = R"({"command":"engine-status"})";
inline const char* const debugModeOn = R"({"debugModeEnabled":true,"resultCode":0})";
inline const char* const debugModeOff = R"({"debugModeEnabled":false,"resultCode":0})";
inline const char* const accepted = R"({"description":"ok","resultCode":0})";
inline const char* const refused = R"({"description":"no","resultCode":3})";

// An ordinary status of the engine, and the report of it.
inline const char* const ordinaryStatus =
    R"({"safeModeEnabled":false,"debugModeEnabled":true,)"
    R"("state":"running","version":"1.0","build":"x","resultCode":0})";
inline const char* const ordinaryStatusReport = "Vantrel status\n"
                                                "------------------------------\n"
                                                "Safe mode:     disabled       \n"
                                                "Debug mode:    enabled        \n"
                                                "State:         running        \n"
                                                "Version:       1.0            \n"
                                                "Build info:    x              \n"
                                                "\n";
