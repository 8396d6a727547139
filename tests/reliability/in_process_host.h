// in_process_host.h - the stand-in host and the built library in this process, so that a test can reach the calls of
// both.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "support/temporary_folder.h"
#include "win32/module.h"

namespace QVTest {

struct HostRun {
    int status = -1;
    std::string said;  // log lines, notes, results
};

/// The library stays loaded while the object lives.
class InProcessHost {
public:
    InProcessHost();

    /// A host's run, `arguments` as on its command line.
    HostRun Run(std::vector<std::wstring> arguments) const;

    HMODULE Library() const { return m_library.Get(); }
    static HMODULE Host() { return GetModuleHandleW(nullptr); }

private:
    Win32::Module m_library;
};

}  // namespace QVTest
