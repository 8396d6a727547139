// command_runner.h - runs commands of the library in the stand-in host, in this process, on files of a folder of its
// own.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/dialog_driver.h"
#include "support/host_run.h"
#include "support/temporary_folder.h"

namespace QVTest {

using Words = std::vector<std::wstring>;
using Names = std::vector<std::wstring>;

/// `words`, then `more`.
inline Words Joined(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

/// The folder that the commands work on, and the host that runs them.
class CommandRunner : public TemporaryFolder {
public:
    /// `arguments` as on the host's command line, the subcommand first; `answers` to its questions in order. Log lines
    /// are on the standard output; questions with their answers, results and the lists handed back beside it.
    HostRun Run(const Words& arguments, const Words& answers = {}) const {
        Words words = {L"--config", m_settings.Path()};
        for (const std::wstring& answer : answers) words.insert(words.end(), {L"--answer", answer});
        return RunHost(QV_HOST_PROGRAM, Joined(words, arguments));
    }
    /// The same with a person in front of the dialogs; questions beside them are answered with "ok".
    HostRun RunDriven(const Words& arguments, const std::function<void(DialogDriver&)>& person) const {
        HostRun run;
        WhileDriving(person, [&] { run = Run(arguments, {L"ok"}); });
        return run;
    }

private:
    TemporaryFolder m_settings;
};

inline testing::AssertionResult Holds(const std::string& text, const std::string& part) {
    const bool isFound = text.find(part) != std::string::npos;
    return isFound ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << '"' << part << "\" is not in: " << text;
}

}  // namespace QVTest
