// bench_main.cpp - measures the library, through its host, against the tools that a user would take instead.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>

#include "cases.h"
#include "data.h"
#include "process.h"
#include "report.h"

namespace {

namespace fs = std::filesystem;
using namespace Bench;

// The most of n log n, from a hundred thousand to a million, with what a measurement is off by.
constexpr double kMostPower = 1.2;
constexpr uint64_t kFlat = 2 * kMegabyte;  // by which memory that does not grow may differ
// A peer that takes so many times as long as the fastest one in the first round is not run again.
constexpr double kNoRival = 1.4;

struct Options {
    std::vector<std::string> cases;  // parts of their names; none: all
    double scale = 1;
    int rounds = 3;
    bool showsGrowth = false;
    bool isLarge = false;
    fs::path work = "build/bench";
    fs::path memoryDisk = "/dev/shm";  // where both work, so that the disk is not what is measured
    fs::path binaries = "build/release/bin";
    fs::path loops = "build/release/bench/loops";
    fs::path wine = "cmake/run-under-wine";
};

bool IsWanted(const Options& options, const std::string& name) {
    if (options.cases.empty()) return true;
    for (const std::string& part : options.cases)
        if (name.find(part) != std::string::npos) return true;
    return false;
}

/// The folder that holds the samples of a scale.
fs::path SamplesOf(const Options& options, double scale) {
    return fs::absolute(options.work) / ("samples-" + std::to_string(static_cast<int>(scale * 1000)));
}

/// Tells the shell where everything is.
void SetVariables(const Options& options, const fs::path& samples, const fs::path& work) {
    const std::string wine = fs::absolute(options.wine).string();
    const std::string host = wine + " " + fs::absolute(options.binaries / "qvhost.exe").string();
    setenv("D", samples.c_str(), 1);
    setenv("W", work.c_str(), 1);
    setenv("WINE", wine.c_str(), 1);
    setenv("LOOPS", fs::absolute(options.loops).c_str(), 1);
    setenv("QV", (host + " --quiet --config " + (work / "config").string()).c_str(), 1);
}

struct Workshop {
    fs::path folder;
    std::string log;

    explicit Workshop(const Options& options)
        : folder((fs::is_directory(options.memoryDisk) ? options.memoryDisk : fs::absolute(options.work)) / "qv-bench"),
          log((options.work / "last.log").string()) {
        fs::remove_all(folder);
        fs::create_directories(folder);
    }
    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;
    ~Workshop() {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
};

bool IsCheaper(const Cost& cost, const Cost& best) {
    return best.seconds == 0 || cost.seconds < best.seconds;
}

/// Our command once, with what must come before it. @throws std::runtime_error when it fails
Cost RunOne(const std::string& prepare, const std::string& command, const std::string& log) {
    if (!prepare.empty() && Run(prepare, log).exitStatus != 0)
        throw std::runtime_error("the preparation failed, see " + log);
    const Cost cost = Run(command, log);
    if (cost.exitStatus != 0)
        throw std::runtime_error("ended with " + std::to_string(cost.exitStatus) + ", see " + log);
    return cost;
}

/// What is there of the case's peers.
std::vector<Peer> PeersThere(const Case& job, Result& result, const std::string& log) {
    std::vector<Peer> there;
    for (const Peer& peer : job.peers) {
        if (Run("command -v " + peer.program, log).exitStatus == 0)
            there.push_back(peer);
        else
            result.remark += "; " + peer.program + " is not installed";
    }
    return there;
}

/// One run of a peer, which the first one begins. False when its result is another than ours.
bool RunPeer(const Case& job, const Peer& peer, Result& result, const std::string& log) {
    const Cost cost = RunOne(job.preparePeer, peer.command, log);
    const auto known = std::ranges::find(result.peers, peer.name, &PeerResult::name);
    if (known != result.peers.end()) {
        if (IsCheaper(cost, known->cost)) known->cost = cost;
        return true;
    }
    result.peers.push_back({peer.name, cost});
    return job.compare.empty() || Run(job.compare, log).exitStatus == 0;
}

/// All in turns, so that what else the machine does meets all alike. The cheapest run of each counts: everything that
/// disturbs a run makes it longer.
Result Measure(const Case& job, const Options& options, const Data& data) {
    Result result;
    result.job = job;
    const Workshop workshop(options);
    SetVariables(options, SamplesOf(options, options.scale), workshop.folder);
    std::vector<Peer> peers = PeersThere(job, result, workshop.log);
    if (peers.empty() && !job.peers.empty()) {
        result.verdict = Verdict::PeerMissing;
        return result;
    }
    try {
        for (const std::string& sample : job.samples) data.Make(sample);
        bool isEqual = true;
        for (int round = 0; round < options.rounds; ++round) {
            const Cost ours = RunOne(job.prepare, job.ours, workshop.log);
            if (IsCheaper(ours, result.ours)) result.ours = ours;
            for (const Peer& peer : peers) {
                if (RunPeer(job, peer, result, workshop.log)) continue;
                isEqual = false;
                result.remark += "; " + peer.name + " has another result";
            }
            if (round > 0 || peers.empty()) continue;
            const double fastest = result.Fastest()->cost.seconds;
            std::erase_if(peers, [&](const Peer& peer) {
                const auto known = std::ranges::find(result.peers, peer.name, &PeerResult::name);
                return known->cost.seconds > kNoRival * fastest;
            });
        }
        const bool holds = result.Ratio() <= job.limit && result.PeakBytes() <= job.memoryLimit;
        result.verdict = !isEqual ? Verdict::Differs : holds ? Verdict::Holds : Verdict::Misses;
    } catch (const std::exception& error) {
        result.verdict = Verdict::Failed;
        result.remark = error.what();
    }
    return result;
}

/// A case with an eighth, a quarter, half and all of the work.
struct Step {
    double work = 1;
    Case job;
    Cost best;
};

Step MakeStep(const Options& options, const std::string& name, double work) {
    Step step = {work, {}, {}};
    const Data data(SamplesOf(options, options.scale * work), options.scale * work);
    for (const Case& job : AllCases(data))
        if (job.name == name) step.job = job;
    for (const std::string& sample : step.job.samples) data.Make(sample);
    return step;
}

/// The power of the work with which `cost` grows, by least squares of the logarithms.
double PowerOf(const std::vector<Step>& steps, const std::function<double(const Cost&)>& cost) {
    double x = 0, y = 0, xx = 0, xy = 0;
    for (const Step& step : steps) {
        const double work = std::log(step.work);
        const double value = std::log(std::max(cost(step.best), 1e-3));
        x += work, y += value, xx += work * work, xy += work * value;
    }
    const auto count = static_cast<double>(steps.size());
    return (count * xy - x * y) / (count * xx - x * x);
}

/// All in turns, like ours and its peers. `idle` is what an empty run costs.
Growth MeasureGrowth(const Options& options, const Case& job, const Cost& idle) {
    std::vector<Step> steps;
    for (const double work : {0.125, 0.25, 0.5, 1.0}) steps.push_back(MakeStep(options, job.name, work));
    for (int round = 0; round < options.rounds; ++round) {
        for (Step& step : steps) {
            const Workshop workshop(options);
            SetVariables(options, SamplesOf(options, options.scale * step.work), workshop.folder);
            const Cost cost = RunOne(step.job.prepare, step.job.ours, workshop.log);
            if (IsCheaper(cost, step.best)) step.best = cost;
        }
    }
    Growth growth = {.job = &job};
    for (const Step& step : steps) growth.costs.push_back(step.best);
    growth.timePower = PowerOf(steps, [&](const Cost& cost) { return cost.seconds - idle.seconds; });
    growth.memoryPower =
        PowerOf(steps, [&](const Cost& cost) { return double(std::max(cost.peakKilobytes - idle.peakKilobytes, 1L)); });
    const uint64_t more =
        1024 * uint64_t(std::max(growth.costs.back().peakKilobytes - growth.costs.front().peakKilobytes, 0L));
    const bool isMemoryRight = job.holdsWork ? growth.memoryPower <= kMostPower : more <= kFlat;
    growth.holds = growth.timePower <= kMostPower && isMemoryRight;
    return growth;
}

int ShowGrowth(const Options& options, const std::vector<Case>& cases) {
    Cost idle;
    for (const Case& job : cases) {
        if (job.name != "start") continue;
        const Workshop workshop(options);
        SetVariables(options, SamplesOf(options, options.scale), workshop.folder);
        idle = RunOne(job.prepare, job.ours, workshop.log);
        idle.seconds /= static_cast<double>(job.amount);
    }
    bool allHold = true;
    for (const Case& job : cases) {
        if (!IsWanted(options, job.name) || job.samples.empty()) continue;
        const Growth growth = MeasureGrowth(options, job, idle);
        PrintGrowth(growth);
        allHold &= growth.holds;
    }
    return allHold ? 0 : 1;
}

int ShowRatios(const Options& options, const std::vector<Case>& cases, const Data& data) {
    std::vector<Result> results;
    bool allHold = true;
    PrintHead();
    for (const Case& job : cases) {
        if (!IsWanted(options, job.name)) continue;
        results.push_back(Measure(job, options, data));
        PrintRow(results.back());
        allHold &= results.back().verdict == Verdict::Holds;
    }
    WriteResults((options.work / "results").string(), results, options.scale);
    return allHold ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    bool isQuick = false;
    CLI::App app("Measures the library against the tools that a user would take instead");
    app.add_flag(
        "--quick", isQuick,
        "Half the work, two rounds: under two minutes. Starting up then weighs more than the limits allow for");
    app.add_option("--case", options.cases, "Only cases with this in their name; repeatable")->allow_extra_args(false);
    app.add_option("--rounds", options.rounds, "Runs of each; the cheapest counts")->check(CLI::Range(1, 100));
    app.add_option("--scale", options.scale, "Times the usual amount of work")->check(CLI::Range(0.001, 20.0));
    app.add_flag("--growth", options.showsGrowth,
                 "How time and memory grow with 1, 2, 4, 8 times the work, without peers");
    app.add_flag("--large", options.isLarge, "Through 10 GB, on the disk of --work, which needs as much space");
    app.add_option("--work", options.work, "The folder for samples and results");
    app.add_option("--memory-disk", options.memoryDisk, "Where the jobs are done; a folder that is missing: in --work");
    CLI11_PARSE(app, argc, argv);
    if (options.isLarge) {
        options.memoryDisk = "";
        options.rounds = 1;
    }
    if (isQuick) {
        options.scale /= 2;
        options.rounds = 2;
    }
    try {
        fs::create_directories(options.work);
        const Data data(SamplesOf(options, options.scale), options.scale);
        const std::vector<Case> cases = options.isLarge ? LargeCases() : AllCases(data);
        return options.showsGrowth ? ShowGrowth(options, cases) : ShowRatios(options, cases, data);
    } catch (const std::exception& error) {
        std::cerr << "bench: " << error.what() << "\n";
        return 2;
    }
}
