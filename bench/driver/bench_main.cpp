// bench_main.cpp - measures the library, through its host, against the tools that a user would take instead.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "cases.h"
#include "data.h"
#include "process.h"
#include "report.h"

namespace {

namespace fs = std::filesystem;
using namespace Bench;

constexpr double kGrowthLimit = 2.1;  // times the cost for twice the work; so 4.4 times for four times

struct Options {
    std::vector<std::string> cases;  // parts of their names; none: all
    double scale = 1;
    int rounds = 5;
    bool showsGrowth = false;
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

/// Both in turns, so that what else the machine does meets both alike. The cheapest run of each counts: everything that
/// disturbs a run makes it longer.
Result Measure(const Case& job, const Options& options, const Data& data) {
    Result result;
    result.job = job;
    const Workshop workshop(options);
    SetVariables(options, SamplesOf(options, options.scale), workshop.folder);
    if (Run("command -v " + job.peer.program, workshop.log).exitStatus != 0) {
        result.verdict = Verdict::PeerMissing;
        result.remark = job.peer.program + " is not installed";
        return result;
    }
    try {
        for (const std::string& sample : job.samples) data.Make(sample);
        for (int round = 0; round < options.rounds; ++round) {
            const Cost ours = RunOne(job.prepare, job.ours, workshop.log);
            if (IsCheaper(ours, result.ours)) result.ours = ours;
            const Cost peer = RunOne(job.preparePeer, job.peerCommand, workshop.log);
            if (IsCheaper(peer, result.peer)) result.peer = peer;
        }
        const bool isEqual = job.compare.empty() || Run(job.compare, workshop.log).exitStatus == 0;
        const bool holds = result.Ratio() <= job.peer.limit && result.PeakBytes() <= job.memoryLimit;
        result.verdict = !isEqual ? Verdict::Differs : holds ? Verdict::Holds : Verdict::Misses;
    } catch (const std::exception& error) {
        result.verdict = Verdict::Failed;
        result.remark = error.what();
    }
    return result;
}

/// One scale of a case, for a growth run.
struct Half {
    Case job;
    fs::path samples;
    Cost best;
};

Half MakeHalf(const Options& options, const std::string& name, double scale) {
    Half half;
    half.samples = SamplesOf(options, scale);
    const Data data(half.samples, scale);
    for (const Case& job : AllCases(data))
        if (job.name == name) half.job = job;
    for (const std::string& sample : half.job.samples) data.Make(sample);
    return half;
}

/// Both in turns, like ours and a peer.
Growth MeasureGrowth(const Options& options, const std::string& name) {
    Half halves[] = {MakeHalf(options, name, options.scale / 2), MakeHalf(options, name, options.scale)};
    for (int round = 0; round < options.rounds; ++round) {
        for (Half& half : halves) {
            const Workshop workshop(options);
            SetVariables(options, half.samples, workshop.folder);
            const Cost cost = RunOne(half.job.prepare, half.job.ours, workshop.log);
            if (IsCheaper(cost, half.best)) half.best = cost;
        }
    }
    return {name, halves[0].best, halves[1].best};
}

int ShowGrowth(const Options& options, const std::vector<Case>& cases) {
    bool allHold = true;
    for (const Case& job : cases) {
        if (!IsWanted(options, job.name)) continue;
        const Growth growth = MeasureGrowth(options, job.name);
        PrintGrowth(growth, kGrowthLimit);
        allHold &= growth.Factor() <= kGrowthLimit;
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
    WriteJson((options.work / "results.json").string(), results, options.scale);
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
    app.add_flag("--growth", options.showsGrowth, "How much longer twice the work takes, instead of ratios");
    app.add_option("--work", options.work, "The folder for samples and results");
    app.add_option("--memory-disk", options.memoryDisk, "Where the jobs are done; a folder that is missing: in --work");
    CLI11_PARSE(app, argc, argv);
    if (isQuick) {
        options.scale /= 2;
        options.rounds = 2;
    }
    try {
        fs::create_directories(options.work);
        const Data data(SamplesOf(options, options.scale), options.scale);
        const std::vector<Case> cases = AllCases(data);
        return options.showsGrowth ? ShowGrowth(options, cases) : ShowRatios(options, cases, data);
    } catch (const std::exception& error) {
        std::cerr << "bench: " << error.what() << "\n";
        return 2;
    }
}
