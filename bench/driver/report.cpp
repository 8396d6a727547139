#include "report.h"

#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace Bench {
namespace {

const char* TextOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::Holds: return "holds";
        case Verdict::Misses: return "MISSES";
        case Verdict::Differs: return "DIFFERS";
        case Verdict::PeerMissing: return "NO PEER";
        default: return "FAILED";
    }
}

/// "640 MB/s", or "2,100,000 lines/s" without the commas.
std::string SpeedOf(const Result& result) {
    char text[48];
    const double speed = static_cast<double>(result.job.amount) / result.ours.seconds;
    if (result.job.unit == "B")
        std::snprintf(text, sizeof(text), "%.0f MB/s", speed / 1e6);
    else
        std::snprintf(text, sizeof(text), "%.0f %s/s", speed, result.job.unit.c_str());
    return text;
}

double Megabytes(uint64_t bytes) {
    return static_cast<double>(bytes) / 1e6;
}

}  // namespace

void PrintHead() {
    std::printf("%-24s %8s %-18s %8s %6s %6s %8s %18s %12s  %s\n", "case", "ours", "peer", "theirs", "ratio", "limit",
                "verdict", "speed", "memory", "aim");
}

void PrintRow(const Result& result) {
    const Case& job = result.job;
    if (result.verdict == Verdict::PeerMissing || result.verdict == Verdict::Failed) {
        std::printf("%-24s %8s %-18s %s: %s\n", job.name.c_str(), "", job.peer.name.c_str(), TextOf(result.verdict),
                    result.remark.c_str());
    } else {
        std::printf("%-24s %6.2f s %-18s %6.2f s %6.2f %6.2f %8s %18s %4.0f of %3.0f MB  %s\n", job.name.c_str(),
                    result.ours.seconds, job.peer.name.c_str(), result.peer.seconds, result.Ratio(), job.peer.limit,
                    TextOf(result.verdict), SpeedOf(result).c_str(), Megabytes(result.PeakBytes()),
                    Megabytes(job.memoryLimit), job.peer.aim.c_str());
    }
    std::fflush(stdout);
}

void PrintGrowth(const Growth& growth, double limit) {
    const auto megabytes = [](const Cost& cost) { return Megabytes(static_cast<uint64_t>(cost.peakKilobytes) * 1024); };
    std::printf("%-24s %6.2f s %4.0f MB; twice the work %6.2f s %4.0f MB: %.2f times the time (limit %.1f)%s\n",
                growth.name.c_str(), growth.once.seconds, megabytes(growth.once), growth.twice.seconds,
                megabytes(growth.twice), growth.Factor(), limit, growth.Factor() > limit ? "  MISSES" : "");
    std::fflush(stdout);
}

void WriteJson(const std::string& path, const std::vector<Result>& results, double scale) {
    nlohmann::json rows = nlohmann::json::array();
    for (const Result& result : results)
        rows.push_back({{"case", result.job.name},
                        {"peer", result.job.peer.name},
                        {"seconds", result.ours.seconds},
                        {"peerSeconds", result.peer.seconds},
                        {"processorSeconds", result.ours.processorTime},
                        {"peerProcessorSeconds", result.peer.processorTime},
                        {"ratio", result.Ratio()},
                        {"limit", result.job.peer.limit},
                        {"amount", result.job.amount},
                        {"unit", result.job.unit},
                        {"peakKilobytes", result.ours.peakKilobytes},
                        {"memoryLimitBytes", result.job.memoryLimit},
                        {"peerPeakKilobytes", result.peer.peakKilobytes},
                        {"verdict", TextOf(result.verdict)},
                        {"remark", result.remark}});
    std::ofstream file(path);
    file << nlohmann::json{{"scale", scale}, {"cases", rows}}.dump(2) << "\n";
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path);
}

}  // namespace Bench
