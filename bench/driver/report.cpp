#include "report.h"

#include <algorithm>
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

/// "GNU sed 0.33, perl 0.40", the fastest first.
std::string PeersOf(const Result& result) {
    std::vector<PeerResult> peers = result.peers;
    std::ranges::sort(peers, {}, [](const PeerResult& peer) { return peer.cost.seconds; });
    std::string text;
    for (const PeerResult& peer : peers) {
        char seconds[32];
        std::snprintf(seconds, sizeof(seconds), " %.2f", peer.cost.seconds);
        text += (text.empty() ? "" : ", ") + peer.name + seconds;
    }
    return text;
}

}  // namespace

const PeerResult* Result::Fastest() const {
    const auto fastest = std::ranges::min_element(peers, {}, [](const PeerResult& peer) { return peer.cost.seconds; });
    return fastest == peers.end() ? nullptr : &*fastest;
}

double Result::Ratio() const {
    const PeerResult* const fastest = Fastest();
    return fastest && fastest->cost.seconds > 0 ? ours.seconds / fastest->cost.seconds : 0;
}

void PrintHead() {
    std::printf("%-36s %8s %6s %6s %8s %18s %14s  %s\n", "case", "ours", "ratio", "limit", "verdict", "speed", "memory",
                "the others, in seconds");
}

void PrintRow(const Result& result) {
    const Case& job = result.job;
    if (result.verdict == Verdict::PeerMissing || result.verdict == Verdict::Failed)
        std::printf("%-36s %s: %s\n", job.name.c_str(), TextOf(result.verdict), result.remark.c_str());
    else
        std::printf("%-36s %6.2f s %6.2f %6.2f %8s %18s %4.0f of %4.0f MB  %s%s\n", job.name.c_str(),
                    result.ours.seconds, result.Ratio(), job.limit, TextOf(result.verdict), SpeedOf(result).c_str(),
                    Megabytes(result.PeakBytes()), Megabytes(job.memoryLimit), PeersOf(result).c_str(),
                    result.remark.c_str());
    std::fflush(stdout);
}

void PrintGrowth(const Growth& growth) {
    std::printf("%-36s", growth.job->name.c_str());
    for (const Cost& cost : growth.costs) std::printf(" %6.2f s", cost.processorTime);
    std::printf("  power %5.2f ", growth.timePower);
    for (const Cost& cost : growth.costs) std::printf(" %4ld", cost.peakKilobytes / 1000);
    std::printf(" MB  power %5.2f %s\n", growth.memoryPower, growth.holds ? "holds" : "MISSES");
    std::fflush(stdout);
}

void WriteResults(const std::string& path, const std::vector<Result>& results, double scale) {
    nlohmann::json rows = nlohmann::json::array();
    std::ofstream table(path + ".md");
    table
        << "| case | ours | the others, in seconds | ratio | limit | speed | memory |\n|---|---|---|---|---|---|---|\n";
    for (const Result& result : results) {
        nlohmann::json peers = nlohmann::json::object();
        for (const PeerResult& peer : result.peers)
            peers[peer.name] = {{"seconds", peer.cost.seconds},
                                {"processorSeconds", peer.cost.processorTime},
                                {"peakKilobytes", peer.cost.peakKilobytes}};
        rows.push_back({{"case", result.job.name},
                        {"seconds", result.ours.seconds},
                        {"processorSeconds", result.ours.processorTime},
                        {"peers", peers},
                        {"ratio", result.Ratio()},
                        {"limit", result.job.limit},
                        {"amount", result.job.amount},
                        {"unit", result.job.unit},
                        {"peakKilobytes", result.ours.peakKilobytes},
                        {"memoryLimitBytes", result.job.memoryLimit},
                        {"verdict", TextOf(result.verdict)},
                        {"remark", result.remark}});
        char text[400];
        std::snprintf(text, sizeof(text), "| %s | %.2f | %s | %.2f%s | %.2f | %s | %.0f MB |\n",
                      result.job.name.c_str(), result.ours.seconds, PeersOf(result).c_str(), result.Ratio(),
                      result.verdict == Verdict::Holds ? "" : " (missed)", result.job.limit, SpeedOf(result).c_str(),
                      Megabytes(result.PeakBytes()));
        table << text;
    }
    std::ofstream file(path + ".json");
    file << nlohmann::json{{"scale", scale}, {"cases", rows}}.dump(2) << "\n";
    file.close();
    table.close();
    if (!file || !table) throw std::runtime_error("cannot write " + path);
}

}  // namespace Bench
