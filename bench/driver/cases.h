// cases.h - what is measured: a job, how we do it, how the tools do it that a user would take instead.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "data.h"

namespace Bench {

/// Another tool, with its work in $W/out.peer.
struct Peer {
    std::string name;     // as a person calls it
    std::string program;  // which must be there
    std::string command;
};

/// All commands are for a shell with these variables: QV (the host's command line), D (the samples), W (a folder for
/// this case alone), LOOPS (the folder of our bare loops), WINE (runs a Windows program).
struct Case {
    std::string name = {};
    double limit = 0;       // ours / the fastest peer must not be above
    uint64_t amount = 0;    // of work: bytes, or things when `unit` says so
    std::string unit = {};  // "B", "lines", "files", "names", "starts"
    std::vector<std::string> samples = {};
    std::string prepare = {};      // before each run of ours, not timed
    std::string preparePeer = {};  // the same for a peer
    std::string ours = {};
    std::vector<Peer> peers = {};  // none: only memory is looked at
    std::string compare = {};      // succeeds when the results are as equal as they must be; "": nothing to compare
    uint64_t memoryLimit = 0;      // bytes; our peak must not be above, with what every process under Wine takes
    bool holdsWork = false;        // a text, lines, rows or paths: the peak grows with the work
};

constexpr uint64_t kMegabyte = 1'000'000;
constexpr uint64_t kIdleProcess = 13 * kMegabyte;
// Whatever goes through a file in blocks: the same for every size.
constexpr uint64_t kBlocksOnly = kIdleProcess + 12 * kMegabyte;
inline const char* const kFreshPeer = "rm -f $W/out.peer";
inline const char* const kEqual = "cmp $W/out.ours $W/out.peer";

std::vector<Case> AllCases(const Data& data);
/// Through a file of 10 GB, for which nothing but memory has a limit. They need as much space again.
std::vector<Case> LargeCases();

void AddSearches(std::vector<Case>& cases, const Data& data);
void AddSorts(std::vector<Case>& cases, const Data& data);

}  // namespace Bench
