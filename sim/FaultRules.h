#pragma once

#include "sim/Faults.h"
#include "sim/Request.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace sim {

/// A fault and the requests that meet it.
struct FaultRule
{
    const Fault* fault = nullptr;
    std::string command;      ///< Empty: any.
    std::uint64_t number = 0; ///< The how manyth of these requests, from 1; 0: every one.

    bool FitsEveryRequest() const { return command.empty() && number == 0; }
};

/// Reads NAME[:COMMAND][@N]. Throws StartError with EXIT_USAGE.
FaultRule ParseFaultRule(const std::string& text);

/// Decides which fault a connection meets: that of the first rule that fits. Many threads may use
/// it at once.
class FaultRules
{
public:
    explicit FaultRules(std::vector<FaultRule> initial = {});

    /// Counts requests from 1 again.
    void Replace(std::vector<FaultRule> newRules);

    /// True if no connection is to be accepted at all.
    bool AcceptNobody();

    /// The fault of a connection whose request need not be read; null if it depends on the request.
    const Fault* WithoutRequest();

    /// The fault of a connection with this request, which is counted unless it is empty.
    const Fault& For(const Request& request);

private:
    std::mutex mutex; // guards everything below
    std::vector<FaultRule> rules;
    std::uint64_t requests = 0;
    std::map<std::string, std::uint64_t> requestsOfCommand;
};

} // namespace sim
