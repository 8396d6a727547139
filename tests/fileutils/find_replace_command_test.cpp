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
    const std::string failed = "[Find and Replace] - Failed to Find/Replace text in : ";
    const std::string changed = " changes made to file : ";
    const struct {
        const wchar_t* name;
        Words parameters;
        std::string logged;
        const char *last, *noted;
        int status = 1;
    } cases[] = {
        {L"f.txt", {L"FIND="}, "", "", "[result] error 87 "},
        {L"f.txt", {L"DELETE"}, "", "", "[result] error 87 "},
        {L"f.txt", {L"FIND=a{", L"WILDCARD", L"DELETE"}, "", " ( ErrorCode : 14 )\n", "[failed] "},
        {L"", {L"FIND=a", L"DELETE"}, "", "Unable to open file ( ErrorCode : 5 )\n", "[failed] "},
        {L"none.txt", {L"FIND=a"}, "", "none.txt not found\n", "[result] error 2 "},
        {L"f.txt", {L"FIND=a", L"TARGET=no/t"}, "", "target is : ", ""},
        {L"f.txt",
         {L"FIND=a", L"TARGET=taken.txt"},
         "[Find and Replace] - File already exists. Do not",
         "",
         "[failed] "},
        {L"f.txt", {L"FIND=a", L"TARGET=NUL"}, "[Find and Replace] Error : The target cannot be a", failed.c_str(), ""},
        {L"binary.bin", {L"FIND=a", L"DELETE"}, "", "Unsupported file format ( ErrorCode : 11 )\n", "[done] ", 0},
        {L"utf8.txt", {L"FIND=\xF6", L"DELETE"}, "[Find and Replace] - 0" + changed, "] - Note : ", "[done] ", 0},
        {L"utf8.txt", {L"FIND=\xF6", L"DELETE", L"FORCEUTF8"}, "[Find and Replace] - 1" + changed, "", "[done] ", 0},
        {L"f.txt",
         {L"FIND=a", L"KEEPBACKUP", L"DELETE", L"TARGET=t.txt"},
         "[Find and Replace] - 2" + changed,
         "\n[Find and Replace] - Note : TARGET is not used",
         "[done] ",
         0},
    };
    const HostRun cancelled =
        Replace(folder, L"f.txt", {L"FIND=a", L"REPLACEWITH=b", L"DELETE"}, {L"replace", L"cancel"});
    EXPECT_TRUE(cancelled.out.starts_with(failed)) << cancelled.out;
    EXPECT_TRUE(Holds(cancelled.out, "\n[Find and Replace] - Operation cancelled\n"));
    for (const auto& c : cases) {
        const HostRun run = Replace(folder, c.name, Joined(c.parameters, {L"REPLACEWITH=b", L"SILENT"}));
        EXPECT_EQ(run.status, c.status) << testing::PrintToString(c.parameters);
        EXPECT_TRUE(run.out.starts_with(c.logged)) << run.out;
        EXPECT_TRUE(Holds(run.out, c.last));
        EXPECT_TRUE(run.error.starts_with(c.noted)) << run.error;
    }
    EXPECT_EQ(folder.Read(L"f.txt") + folder.Read(L"f.txt.bak") + folder.Read(L"taken.txt"), "b b\na a\nx");
    EXPECT_EQ(folder.List().size(), 5u);
}
