// bench_main.cpp - measures the library, through its host, against the tools that a user would take instead.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

#include "cases.h"
#include "data.h"
#include "process.h"
#include "report.h"

namespace {

namespace fs = std::filesystem;
using namespace Bench;

// The most of n log n, from a hundred thousand to a million, with what a measurement is off by.
constexpr double kMostPower = 1.2;
constexpr double kFlatKilobytes = 2000;  // by which memory that does not grow may differ
constexpr int kMostRounds = 5;
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

/// `what`, and the last line of the log: the next case writes that anew.
std::runtime_error FailureOf(const std::string& what, const std::string& log) {
    std::ifstream file(log);
    std::string last;
    for (std::string line; std::getline(file, line);)
        if (!line.empty()) last = line;
    return std::runtime_error(what + ": " + (last.empty() ? "without a word" : last));
}

/// Our command once, with what must come before it. @throws std::runtime_error when it fails
Cost RunOne(const std::string& prepare, const std::string& command, const std::string& log) {
    if (!prepare.empty() && Run(prepare, log).exitStatus != 0) throw FailureOf("the preparation failed", log);
    const Cost cost = Run(command, log);
    if (cost.exitStatus != 0) throw FailureOf("ended with " + std::to_string(cost.exitStatus), log);
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
    Options options;
    Case job;
    Cost best;
};

Step MakeStep(Options options, const std::string& name, double work) {
    options.scale *= work;
    Step step = {options, {}, {}};
    const Data data(SamplesOf(options, options.scale), options.scale);
    for (const Case& job : AllCases(data))
        if (job.name == name) step.job = job;
    for (const std::string& sample : step.job.samples) data.Make(sample);
    return step;
}

/// The power of the work with which something grows that was measured with once, twice, four and eight times the work:
/// of base + share * work^power, the one nearest to what was measured. What a run costs without work does not count. 0
/// where all that was measured is within `noise`.
double PowerOf(const std::vector<double>& measured, double noise) {
    const auto count = static_cast<double>(measured.size());
    const double mean = std::accumulate(measured.begin(), measured.end(), 0.0) / count;
    if (measured.back() - measured.front() <= noise) return 0;
    double nearest = 0, least = std::numeric_limits<double>::max();
    for (double power = 0.05; power < 4; power += 0.01) {
        std::vector<double> work;
        for (size_t step = 0; step < measured.size(); ++step)
            work.push_back(std::pow(2.0, static_cast<double>(step) * power));
        const double meanWork = std::accumulate(work.begin(), work.end(), 0.0) / count;
        double products = 0, squares = 0, off = 0;
        for (size_t step = 0; step < work.size(); ++step) {
            products += (work[step] - meanWork) * (measured[step] - mean);
            squares += std::pow(work[step] - meanWork, 2);
        }
        const double share = products / squares;
        for (size_t step = 0; step < work.size(); ++step)
            off += std::pow(measured[step] - mean - share * (work[step] - meanWork), 2);
        if (off < least) {
            least = off;
            nearest = power;
        }
    }
    return nearest;
}

/// What the cheapest run of each step tells.
Growth GrowthOf(const Case& job, const std::vector<Step>& steps) {
    Growth growth = {.job = &job};
    std::vector<double> seconds, kilobytes;
    for (const Step& step : steps) {
        growth.costs.push_back(step.best);
        seconds.push_back(step.best.processorTime);
        kilobytes.push_back(static_cast<double>(step.best.peakKilobytes));
    }
    growth.timePower = PowerOf(seconds, 0.01);
    growth.memoryPower = PowerOf(kilobytes, 100);
    const bool isFlat = kilobytes.back() - kilobytes.front() <= kFlatKilobytes;
    growth.holds = growth.timePower <= kMostPower && (isFlat || (job.holdsWork && growth.memoryPower <= kMostPower));
    return growth;
}

/// All in turns, like ours and its peers, in processor time: waiting does not grow with the work. What seems to grow
/// too much is run up to kMostRounds times as often: the cheapest run of each step comes close to what the work costs,
/// and true growth stays.
Growth MeasureGrowth(const Options& options, const Case& job) {
    std::vector<Step> steps;
    for (const double work : {0.125, 0.25, 0.5, 1.0}) steps.push_back(MakeStep(options, job.name, work));
    Growth growth;
    for (int round = 0; round < options.rounds || (!growth.holds && round < kMostRounds * options.rounds); ++round) {
        for (Step& step : steps) {
            const Workshop workshop(options);
            SetVariables(options, SamplesOf(step.options, step.options.scale), workshop.folder);
            const Cost cost = RunOne(step.job.prepare, step.job.ours, workshop.log);
            if (round == 0 || cost.processorTime < step.best.processorTime) step.best = cost;
        }
        growth = GrowthOf(job, steps);
    }
    return growth;
}

int ShowGrowth(const Options& options, const std::vector<Case>& cases) {
    bool allHold = true;
    for (const Case& job : cases) {
        if (!IsWanted(options, job.name) || job.samples.empty()) continue;
        const Growth growth = MeasureGrowth(options, job);
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
