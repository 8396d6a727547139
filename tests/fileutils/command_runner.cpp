#include "fileutils/command_runner.h"

#include <sstream>

#include "host/run.h"

namespace QVTest {

CommandRun CommandRunner::Run(const Words& arguments, const Words& answers) const {
    Words words = {L"--config", m_settings.Path()};
    for (const std::wstring& answer : answers) words.insert(words.end(), {L"--answer", answer});
    // The host takes the library and its texts from beside itself.
    std::ostringstream out;
    std::ostringstream error;
    std::istringstream in;
    QVHost::HostEnvironment environment = {.out = out,
                                           .error = error,
                                           .in = in,
                                           .program = QV_HOST_PROGRAM,
                                           .outIsTerminal = false,
                                           .readAnswer = {},
                                           .progressWatch = {}};
    const int status = QVHost::RunQvHost(Joined(words, arguments), environment);
    return {status, out.str(), error.str()};
}

CommandRun CommandRunner::RunDriven(const Words& arguments, const std::function<void(DialogDriver&)>& person) const {
    CommandRun run;
    WhileDriving(person, [&] { run = Run(arguments, {L"ok"}); });
    return run;
}

Words Joined(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

testing::AssertionResult Holds(const std::string& text, const std::string& part) {
    const bool isFound = text.find(part) != std::string::npos;
    return isFound ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << '"' << part << "\" is not in: " << text;
}

}  // namespace QVTest
