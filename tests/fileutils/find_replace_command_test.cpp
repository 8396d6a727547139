// find_replace_command_test.cpp - "FindAndReplace" from a script, as a user runs it.

#include "fileutils/command_runner.h"
#include "win32/text.h"

using namespace QVTest;

namespace {

/// Runs the command on `name` with more parameters.
HostRun Replace(const CommandRunner& folder, const wchar_t* name, const Words& parameters, const Words& answers = {}) {
    return folder.Run(Joined({L"call", L"FindAndReplace", L"FILE=" + (folder / name)}, parameters), answers);
}

}  // namespace

TEST(FindAndReplace, TakesItsParametersAsScriptsGiveThem) {
    const CommandRunner folder;
    const std::tuple<const char*, Words, std::string> cases[] = {
        {"one by default", {L"FIND=a", L"REPLACEWITH=x"}, "x B [b,c] x\nb\n"},
        {"brackets and commas are text", {L"FIND=[b,c]", L"REPLACEWITH=[c,b]"}, "a B [c,b] a\nb\n"},
        {"a mode in any case", {L"FIND=a\\nb", L"REPLACEWITH=x", L"MODE=manysame"}, "x B [x,c] x\nx\n"},
        {"line breaks in both", {L"FIND=a\\nb", L"REPLACEWITH=1\\n2", L"MODE=Multiline"}, "1\n2\n"},
        {"case counts, whatever is asked", {L"FIND=b", L"REPLACEWITH=x", L"IGNORECASE"}, "a B [x,c] a\nx\n"},
        {"wildcards", {L"FIND=B*", L"REPLACEWITH=x", L"WILDCARD"}, "a x\nb\n"},
        {"over itself", {L"FIND=B", L"REPLACEWITH=x", L"TARGET=*.*", L"OVERWRITE"}, "a x [b,c] a\nb\n"},
    };
    for (const auto& [why, parameters, expected] : cases) {
        SCOPED_TRACE(why);
        folder.Write(L"f.txt", "a B [b,c] a\nb\n");
        const Words more = parameters.back() == L"OVERWRITE" ? Words{L"SILENT"} : Words{L"DELETE", L"SILENT"};
        EXPECT_EQ(Replace(folder, L"f.txt", Joined(parameters, more)).status, 0);
        EXPECT_EQ(folder.ReadAll(), (Contents{{L"f.txt", expected}}));
    }
}

TEST(FindAndReplace, LogsEachFileAndHandsTheListsBack) {
    const CommandRunner folder;
    folder.Write(L"f.txt", "a a\n");
    folder.Write(L"taken.txt", "x");
    folder.Write(L"utf8.txt", "a W\xC3\xB6rter\n");
    folder.Write(L"binary.bin", "\x01\x02\x03\x04\x05");
    const struct {
        const wchar_t* name;
        Words parameters;
        const char* said;
        int status = 1;
        Words answers = {};
    } cases[] = {
        {L"f.txt", {L"FIND=", L"SILENT"}, "[result] error 87 "},
        {L"f.txt", {L"SILENT"}, "[result] error 87 "},
        {L"f.txt", {L"FIND=a{", L"WILDCARD", L"DELETE", L"SILENT"}, " ( ErrorCode : 14 )\n"},
        {L"", {L"FIND=a", L"DELETE", L"SILENT"}, "Unable to open file ( ErrorCode : 5 )\n"},
        {L"none.txt", {L"FIND=a", L"SILENT"}, "none.txt not found\n"},
        {L"f.txt", {L"FIND=a", L"TARGET=no/t", L"SILENT"}, "target is : "},
        {L"f.txt", {L"FIND=a", L"DELETE"}, "[Find and Replace] - Failed to Find", 1, {L"replace", L"cancel"}},
        {L"f.txt", {L"FIND=a", L"DELETE"}, "\n[Find and Replace] - Operation cancelled\n", 1, {L"replace", L"cancel"}},
        {L"f.txt", {L"FIND=a", L"TARGET=taken.txt", L"SILENT"}, "- File already exists. Do not overwrite : "},
        {L"f.txt", {L"FIND=a", L"TARGET=NUL", L"SILENT"}, " Error : The target cannot be a file name : "},
        {L"binary.bin", {L"FIND=a", L"DELETE", L"SILENT"}, "Unsupported file format ( ErrorCode : 11 )\n[Find and", 0},
        {L"utf8.txt", {L"FIND=\xF6", L"DELETE", L"SILENT"}, "utf8.txt\n[Find and Replace] - Note : ", 0},
        {L"utf8.txt", {L"FIND=\xF6", L"DELETE", L"FORCEUTF8", L"SILENT"}, "] - 1 changes made to file : ", 0},
        {L"f.txt", {L"FIND=a", L"KEEPBACKUP", L"TARGET=t.txt", L"SILENT"}, "] - Note : TARGET is not used", 0},
    };
    for (const auto& c : cases) {
        const HostRun run = Replace(folder, c.name, Joined(c.parameters, {L"REPLACEWITH=b"}), c.answers);
        EXPECT_EQ(run.status, c.status) << testing::PrintToString(c.parameters);
        EXPECT_TRUE(Holds(run.Said(), c.said)) << testing::PrintToString(c.parameters);
    }
    EXPECT_EQ(folder.Read(L"f.txt") + folder.Read(L"f.txt.bak") + folder.Read(L"taken.txt"), "b b\na a\nx");
    EXPECT_EQ(folder.List().size(), 5u);
}
