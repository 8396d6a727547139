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
        {L"utf8.txt", {L"FIND=a", L"DELETE"}, "(line 1): [a] W\xC3\xB6rter -> [b] -> Find Next\n", 0, {L"find-next"}},
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

TEST(FindAndReplace, ShowsWhatItWouldDoAndWritesNothing) {
    const CommandRunner folder;
    const std::string notes = "a W\xC3\xB6rter\nb\r\nc\rd";
    const std::tuple<std::string, Words, std::string, int> cases[] = {
        {"a b\nb\na\n",
         {L"FIND=a", L"DELETE", L"SILENT"},
         "--- PATH\n1- a b\n1+ \xC3\xB6 b\n3- a\n3+ \xC3\xB6\n[Find and "
         "Replace] - Preview : 2 changes in 2 lines, nothing is written : PATH\n",
         0},
        {"a\n", {L"FIND=a{", L"WILDCARD"}, "[Find and Replace] - Preview : The file would fail: ", 1},
        {"a\x01\x02\x03\x04", {L"FIND=a"}, " - Preview : The file is not text and would be left alone : PATH\n", 0},
        {notes, {L"FIND=a"}, " - Note : All line ends become the kind of the first : PATH\n", 0},
        {notes, {L"FIND=a"}, " - Note : Lone carriage returns (CR) are lost when the file is written : PATH\n", 0},
        {notes,
         {L"FIND=x"},
         "0 changes in 0 lines, nothing is written : PATH\n[Find and Replace] - Note : The file looks "
         "like UTF-8 and was read in the system's code page; with FORCEUTF8",
         0},
    };
    for (const auto& [content, parameters, expected, status] : cases) {
        folder.Write(L"f.txt", content);
        const HostRun run = Replace(folder, L"f.txt", Joined({L"--preview", L"REPLACEWITH=\xF6"}, parameters));
        std::string said = expected;
        for (size_t at = 0; (at = said.find("PATH")) != std::string::npos;)
            said.replace(at, 4, Win32::ToUtf8(folder / L"f.txt"));
        EXPECT_EQ(run.status, status) << expected;
        EXPECT_TRUE(Holds(run.out, said));
        EXPECT_EQ(folder.ReadAll(), (Contents{{L"f.txt", content}})) << expected;
    }
    const HostRun sort = folder.Run({L"call", L"SortLines", L"FILE=" + (folder / L"f.txt"), L"--preview"});
    EXPECT_TRUE(sort.status == 2 && Holds(sort.error, "SortLines has no preview"));
}

TEST(FindAndReplace, NotesMatchesThatAnotherRunWouldGet) {
    const CommandRunner folder;
    const std::tuple<const char*, Words, std::string, Words> cases[] = {
        {"jumped over", {L"FIND=foo", L"REPLACEWITH=x", L"SILENT"}, "Note : 2 matches left; run again : ", {}},
        {"put there", {L"FIND=foo", L"REPLACEWITH=(foo)", L"SILENT"}, "", {}},
        {"left by choice", {L"FIND=foo", L"REPLACEWITH=bar"}, "", {L"find-next", L"replace"}},
    };
    for (const auto& [why, parameters, said, answers] : cases) {
        folder.Write(L"f.txt", "foo foo foo foo\n");
        const HostRun run = Replace(folder, L"f.txt", Joined(parameters, {L"DELETE"}), answers);
        EXPECT_EQ(run.out.find("Note : ") == std::string::npos, said.empty()) << why << run.out;
        EXPECT_TRUE(Holds(run.out, said)) << why;
    }
}

TEST(FindAndReplace, SkipsTheRestOfAFile) {
    const CommandRunner folder;
    folder.Write(L"f.txt", "a a a a\n");
    const HostRun run = Replace(folder, L"f.txt", {L"FIND=a", L"REPLACEWITH=x", L"DELETE"},
                                {L"find-next", L"replace", L"skip-file", L"replace"});
    EXPECT_EQ(folder.Read(L"f.txt"), "a x a a\n");
    EXPECT_TRUE(Holds(run.out, "] - 1 changes made to file : "));
}
