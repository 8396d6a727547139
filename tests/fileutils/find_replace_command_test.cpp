// find_replace_command_test.cpp - "FindAndReplace" from a script, as a user runs it.
#include <gtest/gtest.h>

#include "fileutils/command_runner.h"
#include "win32/handle.h"

using QVTest::CommandRun;
using QVTest::CommandRunner;
using Arguments = std::vector<std::wstring>;
using Names = std::vector<std::wstring>;

namespace {

class FindAndReplace : public testing::Test {
protected:
    /// Runs the command on `name` with more parameters.
    CommandRun Run(const wchar_t* name, const Arguments& parameters, const Arguments& answers = {}) const {
        Arguments arguments = {L"call", L"FindAndReplace", L"FILE=" + (m_runner.Folder() / name)};
        arguments.insert(arguments.end(), parameters.begin(), parameters.end());
        return m_runner.Run(arguments, answers);
    }

    CommandRunner m_runner;
    const QVTest::TemporaryFolder& m_folder = m_runner.Folder();
};

}  // namespace

TEST_F(FindAndReplace, TakesItsParametersAsScriptsGiveThem) {
    const struct {
        const char* why;
        Arguments parameters;
        std::string expected;
    } cases[] = {
        {"one by default", {L"FIND=a", L"REPLACEWITH=x"}, "x B [b,c] x\nb\n"},
        {"brackets and commas are text", {L"FIND=[b,c]", L"REPLACEWITH=[c,b]"}, "a B [c,b] a\nb\n"},
        {"blanks and equal signs too", {L"FIND= a", L"REPLACEWITH= = "}, "a B [b,c] = \nb\n"},
        {"a mode in any case", {L"FIND=a\\nb", L"REPLACEWITH=x", L"MODE=manysame"}, "x B [x,c] x\nx\n"},
        {"an unknown mode is one", {L"FIND=a\\nb", L"REPLACEWITH=x", L"MODE=Any"}, "x B [b,c] x\nb\n"},
        {"line breaks in both", {L"FIND=a\\nb", L"REPLACEWITH=1\\n2", L"MODE=Multiline"}, "1\n2\n"},
        {"case counts, whatever is asked", {L"FIND=b", L"REPLACEWITH=x", L"IGNORECASE"}, "a B [x,c] a\nx\n"},
        {"wildcards", {L"FIND=B*", L"REPLACEWITH=x", L"WILDCARD"}, "a x\nb\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        m_folder.Write(L"f.txt", "a B [b,c] a\nb\n");
        Arguments parameters = c.parameters;
        parameters.insert(parameters.end(), {L"DELETE", L"SILENT"});
        EXPECT_EQ(Run(L"f.txt", parameters).status, 0);
        EXPECT_EQ(m_folder.Read(L"f.txt"), c.expected);
    }
    EXPECT_EQ(m_folder.List(), Names{L"f.txt"});
}

TEST_F(FindAndReplace, WritesWhereItIsToldAndKeepsWhatItIsTold) {
    const struct {
        const char* why;
        Arguments parameters;
        std::vector<std::pair<std::wstring, std::string>> expected;
    } cases[] = {
        {"a target", {L"TARGET=new.txt"}, {{L"f.txt", "a"}, {L"new.txt", "b"}}},
        {"a pattern", {L"TARGET=*_2.*"}, {{L"f.txt", "a"}, {L"f_2.txt", "b"}}},
        {"itself, with leave", {L"OVERWRITE"}, {{L"f.txt", "b"}}},
        {"itself, without", {}, {{L"f.txt", "a"}}},
        {"a backup", {L"KEEPBACKUP"}, {{L"f.txt", "b"}, {L"f.txt.bak", "a"}}},
        {"a backup wins", {L"KEEPBACKUP", L"DELETE"}, {{L"f.txt", "b"}, {L"f.txt.bak", "a"}}},
        {"no backup", {L"DELETE"}, {{L"f.txt", "b"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        const CommandRunner runner;
        runner.Folder().Write(L"f.txt", "a");
        Arguments arguments = {L"call",   L"FindAndReplace", L"FILE=" + (runner.Folder() / L"f.txt"),
                               L"FIND=a", L"SILENT",         L"REPLACEWITH=b"};
        arguments.insert(arguments.end(), c.parameters.begin(), c.parameters.end());
        runner.Run(arguments);
        Names names;
        for (const auto& [name, content] : c.expected) {
            names.push_back(name);
            EXPECT_EQ(runner.Folder().Read(name), content);
        }
        EXPECT_EQ(runner.Folder().List(), names);
    }
}

TEST_F(FindAndReplace, LogsEachFileAndHandsTheListsBack) {
    const std::wstring path = m_folder.Write(L"f.txt", "a a\n");
    const CommandRun done = Run(L"f.txt", {L"FIND=a", L"REPLACEWITH=b", L"DELETE", L"SILENT"});
    EXPECT_EQ(done.status, 0);
    EXPECT_EQ(done.log.find("[Find and Replace] - 2 changes made to file : "), 0u) << done.log;
    EXPECT_EQ(done.notes.find("[done] "), 0u) << done.notes;
    EXPECT_EQ(done.notes.find("[question]"), std::string::npos);

    m_folder.Write(L"taken.txt", "x");
    const CommandRun failed = Run(L"f.txt", {L"FIND=b", L"REPLACEWITH=c", L"TARGET=taken.txt", L"SILENT"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.log.find("[Find and Replace] - File already exists. Do not overwrite : "), 0u) << failed.log;
    EXPECT_NE(failed.notes.find("[failed] "), std::string::npos);

    m_folder.Write(L"binary.bin", std::string("\x01\x02\x03\x04\x05", 5));
    const CommandRun binary = Run(L"binary.bin", {L"FIND=b", L"REPLACEWITH=c", L"DELETE", L"SILENT"});
    EXPECT_EQ(binary.status, 0) << "done, with no changes";
    EXPECT_EQ(binary.log.find("[Find and Replace] Error : File is not detected as a text file. Unsupported file format "
                              "( ErrorCode : 11 )\n[Find and Replace] - 0 changes made to file : "),
              0u)
        << binary.log;
}

TEST_F(FindAndReplace, WithoutItsRequiredParametersItDoesNothing) {
    m_folder.Write(L"f.txt", "a");
    EXPECT_EQ(Run(L"f.txt", {L"REPLACEWITH=b", L"DELETE"}).status, 1);
    EXPECT_EQ(Run(L"f.txt", {L"FIND=", L"REPLACEWITH=b", L"DELETE"}).status, 1);
    EXPECT_EQ(Run(L"f.txt", {L"FIND=a", L"REPLACEWITH=", L"DELETE"}).status, 1);
    EXPECT_EQ(m_runner.Run({L"call", L"FindAndReplace", L"FIND=a", L"REPLACEWITH=b"}).status, 1);
    const CommandRun missing = Run(L"none.txt", {L"FIND=a", L"REPLACEWITH=b"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.log.find("[Custom Cmd - FindAndReplace] - FILE : "), 0u) << missing.log;
    EXPECT_NE(missing.log.find("none.txt not found\n"), std::string::npos);
    EXPECT_EQ(m_folder.Read(L"f.txt"), "a");
}

TEST_F(FindAndReplace, AsksAboutMatchesAndTakesTheAnswer) {
    const struct {
        Arguments answers;
        int status;
        std::string expected;
        std::string log;
    } cases[] = {
        {{L"replace"}, 0, "b b\nb\n", "[Find and Replace] - 3 changes made to file"},
        {{L"find-next", L"replace-all"}, 0, "a b\nb\n", "[Find and Replace] - 2 changes made to file"},
        {{L"replace", L"cancel"}, 1, "a a\na\n", "[Find and Replace] - Failed to Find/Replace text in : "},
    };
    for (const auto& c : cases) {
        m_folder.Write(L"f.txt", "a a\na\n");
        const CommandRun run = Run(L"f.txt", {L"FIND=a", L"REPLACEWITH=b", L"DELETE"}, c.answers);
        EXPECT_EQ(run.status, c.status);
        EXPECT_EQ(m_folder.Read(L"f.txt"), c.expected);
        EXPECT_EQ(run.log.find(c.log), 0u) << run.log;
    }
    const CommandRun cancelled = Run(L"f.txt", {L"FIND=a", L"REPLACEWITH=b", L"DELETE"}, {L"cancel"});
    EXPECT_NE(cancelled.log.find("\n[Find and Replace] - Operation cancelled\n"), std::string::npos) << cancelled.log;
    const CommandRun multiline =
        Run(L"f.txt", {L"FIND=a", L"REPLACEWITH=b", L"MODE=Multiline", L"DELETE"}, {L"cancel"});
    EXPECT_EQ(multiline.log.find("[Find and Replace] - 1 changes made to file"), 0u) << multiline.log;
    EXPECT_EQ(m_folder.Read(L"f.txt"), "a a\na\n");
}

TEST_F(FindAndReplace, AsksBeforeATargetIsOverwritten) {
    const struct {
        const wchar_t* answer;
        int status;
        std::string expected;
    } cases[] = {{L"no", 1, "old"}, {L"cancel", 1, "old"}, {L"yes", 0, "b"}};
    for (const auto& c : cases) {
        m_folder.Write(L"f.txt", "a");
        m_folder.Write(L"old.txt", "old");
        const CommandRun run =
            Run(L"f.txt", {L"FIND=a", L"REPLACEWITH=b", L"TARGET=old.txt", L"REPLACEALL"}, {c.answer});
        EXPECT_EQ(run.status, c.status);
        EXPECT_EQ(m_folder.Read(L"old.txt"), c.expected);
        EXPECT_EQ(m_folder.Read(L"f.txt"), "a");
    }
}

TEST_F(FindAndReplace, ALockedFileFailsAndStaysWhole) {
    const std::wstring path = m_folder.Write(L"f.txt", "a");
    {
        const Win32::FileHandle holder(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        const CommandRun run = Run(L"f.txt", {L"FIND=a", L"REPLACEWITH=b", L"DELETE", L"SILENT"});
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.log.find("Unable to open file ( ErrorCode : 32 )"), std::string::npos) << run.log;
    }
    EXPECT_EQ(m_folder.Read(L"f.txt"), "a");
    EXPECT_EQ(m_folder.List(), Names{L"f.txt"});
}

TEST_F(FindAndReplace, LargeFilesPassInBlocksWithAllTheirBytes) {
    // The first change lies far behind the first block; the breaks take the style of the first line everywhere.
    std::string text;
    std::string expected;
    for (int i = 0; i < 40'000; ++i) {
        const bool hit = i >= 30'000 && i % 1000 == 0;
        const std::string line = "line " + std::to_string(i);
        text += line + (hit ? " needle" : "") + (i % 3 ? "\n" : "\r\n");
        expected += line + (hit ? " pin" : "") + "\r\n";
    }
    m_folder.Write(L"f.txt", text);
    const CommandRun run = Run(L"f.txt", {L"FIND=needle", L"REPLACEWITH=pin", L"DELETE", L"SILENT"});
    EXPECT_EQ(run.log.find("[Find and Replace] - 10 changes made to file"), 0u) << run.log;
    EXPECT_TRUE(m_folder.Read(L"f.txt") == expected);
}
