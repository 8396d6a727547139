// report.h - the figures as a table for people and as a file for programs.
#pragma once

#include <string>
#include <vector>

#include "cases.h"
#include "process.h"

namespace Bench {

enum class Verdict { Holds, Misses, Differs, Failed, PeerMissing };

struct PeerResult {
    std::string name;
    Cost cost;  // the cheapest run
};

struct Result {
    Case job;
    Cost ours;                      // the cheapest run
    std::vector<PeerResult> peers;  // those that are there
    Verdict verdict = Verdict::Failed;
    std::string remark;  // why it failed

    /// Null when there is none.
    const PeerResult* Fastest() const;
    /// Of the times of ours and of the fastest peer; 0 when there is none.
    double Ratio() const;
    uint64_t PeakBytes() const { return static_cast<uint64_t>(ours.peakKilobytes) * 1024; }
};

/// Costs of 1, 2, 4 and 8 times the work, and the power of the work with which they grow: 1 when twice the work costs
/// twice as much.
struct Growth {
    const Case* job = nullptr;
    std::vector<Cost> costs = {};
    double timePower = 0;
    double memoryPower = 0;
    bool holds = false;
};

void PrintHead();
void PrintRow(const Result& result);
void PrintGrowth(const Growth& growth);

/// One JSON object a case, and the same as a table for people beside it (".md"). @throws std::runtime_error when a file
/// cannot be written
void WriteResults(const std::string& path, const std::vector<Result>& results, double scale);

}  // namespace Bench
