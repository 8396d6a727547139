// writing_commands.h - every command that writes files, with files to work on: the list that all tests of failures
// walk.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "support/temporary_folder.h"

namespace QVTest {

struct WritingCommand {
    const char* name;
    std::vector<std::wstring> arguments;  // of the host; "{folder}" stands for the folder of the files
    Contents files;                       // all names that belong to one file begin with the same letter
    /// What is left when the last step fails, beside the file as it was; its name is logged.
    const wchar_t* keptBeside = nullptr;
};

const std::vector<WritingCommand>& WritingCommands();

inline bool Holds(const Contents& contents, const std::wstring& name, const std::string& content) {
    const auto file = contents.find(name);
    return file != contents.end() && file->second == content;
}
/// Whether a file is as it was, under its own name or its backup's, or done.
inline bool IsSafe(const std::wstring& name, const std::string& before, const Contents& done, const Contents& now) {
    return Holds(now, name, before) || Holds(now, name + L".bak", before) ||
           (done.contains(name) && Holds(now, name, done.at(name)));
}
/// Each file is as it was, under whatever name, or done, where `done` is what the command leaves undisturbed.
void ExpectNothingLost(const WritingCommand& command, const Contents& done, const Contents& now);
/// A suite of all of them: of class `Suite`, which takes a WritingCommand.
#define QV_WITH_EVERY_WRITING_COMMAND(Suite)                                             \
    INSTANTIATE_TEST_SUITE_P(Every, Suite, testing::ValuesIn(QVTest::WritingCommands()), \
                             [](const auto& instance) { return "Command" + std::to_string(instance.index); })

inline void PrintTo(const WritingCommand& command, std::ostream* out) {
    *out << command.name;
}

/// The command's files in a folder of their own, and what a host is to be told to work on them.
class WorkFolder {
public:
    explicit WorkFolder(const WritingCommand& command);

    const std::wstring& Path() const { return m_folder.Path(); }
    std::vector<std::wstring> Arguments() const;
    Contents Read() const { return m_folder.ReadAll(); }
    /// The folder with the host's settings.
    const TemporaryFolder& Settings() const { return m_settings; }

private:
    const WritingCommand& m_command;
    TemporaryFolder m_folder;
    TemporaryFolder m_settings;
};

}  // namespace QVTest
