// self_test.h - what `qvhost selftest` tries, and with what.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/app/run.h"

namespace QVHost {

struct CheckResult {
    enum class Kind : uint8_t { Passed, Failed, NotAvailable };
    Kind kind = Kind::Passed;
    std::wstring reason = {};  // of the other two
};
CheckResult FailedBecause(std::wstring reason);
CheckResult NotAvailableBecause(std::wstring reason);

/// A folder for one check, and runs of the host in this process, which work on it as they would from a command line.
class Trial {
public:
    /// `folder` is there and empty. `volumeFlags`: what the file system can do, as the system numbers it. `common`:
    /// options that stand before the words of each run.
    Trial(std::wstring folder, uint32_t volumeFlags, const std::wstring& program, std::vector<std::wstring> common);

    struct Said {
        int status;
        std::wstring text;  // on one line
    };
    Said Run(const std::vector<std::wstring>& words) const;
    /// The same where it opens a window: presses `button` of the first dialog, closes all others. The sizes that do not
    /// fit on the screen are told in the text.
    Said RunInWindows(std::vector<std::wstring> words, int button) const;
    /// Replaces "old" in the file by "new", and looks at its content afterwards.
    CheckResult Replace(const std::wstring& file) const;

    const std::wstring& Folder() const { return m_folder; }
    uint32_t VolumeFlags() const { return m_volumeFlags; }
    std::wstring PathOf(std::wstring_view name) const;
    /// A new file that holds "old", at a path in the folder or below it. @throws HostError
    std::wstring MakeFile(std::wstring_view name) const;
    /// @throws HostError
    std::wstring MakeFolder(std::wstring_view name) const;

private:
    std::wstring m_folder;
    uint32_t m_volumeFlags;
    const std::wstring& m_program;
    std::vector<std::wstring> m_common;
};

struct Check {
    const wchar_t* name;
    CheckResult (*run)(const Trial& trial);
    bool needsElevation = false;  // the user is asked for administrator rights
};
std::span<const Check> AllChecks();

}  // namespace QVHost
