// run.h - one run of the host, from the words of its command line to its exit status. The program and the tests both
// come in here.
#pragma once

#include <functional>
#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "host/app/run_progress.h"

namespace QVHost {

/// The world around a run.
struct HostEnvironment {
    std::ostream& out;
    std::ostream& error;
    std::istream& in;      // for --files-from -
    std::wstring program;  // full path of qvhost.exe: its neighbours are the defaults
    bool outIsTerminal = false;
    std::function<std::optional<std::wstring>()> readAnswer;  // a line from the console; empty: there is no console
    ProgressWatch progressWatch;
};

/// The exit status: 0 handled and nothing failed; 1 not handled, stopped, or something failed - the output included;
/// 2 wrong use, nothing was run.
int RunQvHost(const std::vector<std::wstring>& arguments, HostEnvironment& environment);

}  // namespace QVHost
