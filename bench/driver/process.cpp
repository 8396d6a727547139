#include "process.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <chrono>
#include <stdexcept>

namespace Bench {
namespace {

double SecondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

[[noreturn]] void BecomeShell(const std::string& commandLine, const std::string& logFile) {
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    const int log = open(logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    dup2(nothing, STDIN_FILENO);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    execl("/bin/sh", "sh", "-c", commandLine.c_str(), static_cast<char*>(nullptr));
    _exit(127);
}

}  // namespace

Cost Run(const std::string& commandLine, const std::string& logFile) {
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("no process can be started");
    if (child == 0) BecomeShell(commandLine, logFile);
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    Cost cost;
    cost.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    cost.processorTime = SecondsOf(usage.ru_utime) + SecondsOf(usage.ru_stime);
    cost.peakKilobytes = usage.ru_maxrss;
    cost.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128;
    return cost;
}

}  // namespace Bench
