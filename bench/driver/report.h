// report.h - the figures as a table for people and as a file for programs.
#pragma once

#include <string>
#include <vector>

#include "cases.h"
#include "process.h"

namespace Bench {

enum class Verdict { Holds, Misses, Differs, Failed, PeerMissing };

struct Result {
    Case job;
    Cost ours;  // the cheapest run of each
    Cost peer;
    Verdict verdict = Verdict::Failed;
    std::string remark;  // why it failed

    double Ratio() const { return peer.seconds > 0 ? ours.seconds / peer.seconds : 0; }
    uint64_t PeakBytes() const { return static_cast<uint64_t>(ours.peakKilobytes) * 1024; }
};

/// How much longer twice the work takes.
struct Growth {
    std::string name;
    Cost once;   // for the work
    Cost twice;  // for twice the work
    double Factor() const { return once.seconds > 0 ? twice.seconds / once.seconds : 0; }
};

void PrintHead();
void PrintRow(const Result& result);
void PrintGrowth(const Growth& growth, double limit);

/// One JSON object a case. @throws std::runtime_error when the file cannot be written
void WriteJson(const std::string& path, const std::vector<Result>& results, double scale);

}  // namespace Bench
