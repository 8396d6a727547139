// process.h - runs a command line and says what it cost.
#pragma once

#include <string>

namespace Bench {

struct Cost {
    double seconds = 0;        // wall time
    double processorTime = 0;  // seconds in user and system mode, of the process and of those it waited for
    long peakKilobytes = 0;    // the largest resident set of any of them
    int exitStatus = 0;
};

/// Runs `commandLine` in a shell with nothing to read; its output goes to `logFile`, which is written anew.
/// @throws std::runtime_error when no process can be started
Cost Run(const std::string& commandLine, const std::string& logFile);

}  // namespace Bench
