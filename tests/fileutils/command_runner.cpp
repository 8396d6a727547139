#include "fileutils/command_runner.h"

namespace QVTest {

HostRun CommandRunner::Run(const Words& arguments, const Words& answers) const {
    Words words = {L"--config", m_settings.Path()};
    for (const std::wstring& answer : answers) words.insert(words.end(), {L"--answer", answer});
    return RunHost(QV_HOST_PROGRAM, Joined(words, arguments));
}

HostRun CommandRunner::RunDriven(const Words& arguments, const std::function<void(DialogDriver&)>& person) const {
    HostRun run;
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
