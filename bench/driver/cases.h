// cases.h - what is measured: a job, how we do it, how the tool does it that a user would take instead.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "data.h"

namespace Bench {

/// What a case is measured against.
struct Peer {
    std::string name;     // the other tool, as a person calls it
    std::string program;  // which must be there
    double limit;         // ours / peer must not be above
    std::string aim;      // what to get near to after that
};

/// All commands are for a shell with these variables: QV (the host's command line), D (the samples), W (a folder for
/// this case alone), LOOPS (the folder of our bare loops), WINE (runs a Windows program).
struct Case {
    std::string name;
    Peer peer;
    uint64_t amount;   // of work: bytes, or things when `unit` says so
    std::string unit;  // "B", "lines", "files", "names"
    std::vector<std::string> samples;
    std::string prepare;      // before each run of ours, not timed
    std::string preparePeer;  // the same for the peer
    std::string ours;
    std::string peerCommand;
    std::string compare;  // succeeds when the results are as equal as they must be; "" when there is nothing to compare
    uint64_t memoryLimit;  // bytes; our peak must not be above, with what every process under Wine takes
};

std::vector<Case> AllCases(const Data& data);

}  // namespace Bench
