// The custom command "SortLines", from its parameters to the file's bytes.

#include "fileutils/command_runner.h"

namespace {

using namespace QVTest;

/// Sorts a.txt of the runner's folder.
HostRun Sort(const CommandRunner& runner, const Words& parameters, const Words& answers = {}) {
    return runner.Run(Joined({L"call", L"SortLines", L"FILE=" + (runner / L"a.txt")}, parameters), answers);
}

TEST(SortLinesCommand, SortsByEveryParameter) {
    const std::tuple<Words, const char*, const char*> cases[] = {
        {{}, "b\nA\na\n", "A\na\nb\n"},
        {{L"IGNORECASE", L"REVERSE"}, "b\na\nA\n", "b\nA\na\n"},
        {{L"LANGUAGEORDER"}, "b\nB\na\nA\n", "a\nA\nb\nB\n"},
        {{L"LANGUAGEORDER", L"NATRUALNUMORDER"}, "file10\nfile9\n", "file9\nfile10\n"},
        {{L"KEEPTOP=1", L"KEEPBOTTOM=1"}, "z\nc\nb\na\n", "z\nb\nc\na\n"},
        {{L"LINEOFFSET=3"}, "xxb\nyya\nz\n", "z\nyya\nxxb\n"},
        {{L"LINEOFFSET=1", L"SKIPLEADINGSPACE"}, " b\n\ta\n  c\n", "\ta\n b\n  c\n"},
        {{L"SORTBY=substring", L"SUBSTRLEN=1"}, "bz\nay\nbx\n", "ay\nbz\nbx\n"},
        {{L"SORTBY=substring", L"ENDCHAR=;"}, "b;1\nb;0\na;2\n", "a;2\nb;1\nb;0\n"},
        {{L"SORTBY=substring", L"ENDATWHITESPACE"}, "b 1\nb 0\na 2\n", "a 2\nb 1\nb 0\n"},
        {{L"SORTBY=item", L"ITEMSEP=,", L"ITEM=2", L"SORTAS=num"}, "x,10\ny,9\nz,-1\n", "z,-1\ny,9\nx,10\n"},
        {{L"SORTBY=item", L"ITEMSEP=\\t", L"ITEM=2"}, "x\tb\ny\ta\n", "y\ta\nx\tb\n"},
        {{L"SORTBY=line", L"SORTAS=num"}, "10\n9\n", "10\n9\n"},
        {{L"SORTAS=date", L"DATEFORMAT=%d/%m/%Y"}, "01/02/2020\n31/12/2019\n", "31/12/2019\n01/02/2020\n"},
    };
    for (const auto& [parameters, before, after] : cases) {
        const CommandRunner runner;
        runner.Write(L"a.txt", before);
        const HostRun run = Sort(runner, Joined(parameters, {L"OVERWRITE", L"SILENT"}));
        EXPECT_EQ(run.status, 0) << run.out << run.error;
        EXPECT_EQ(runner.Read(L"a.txt"), after) << testing::PrintToString(parameters);
        EXPECT_TRUE(Holds(run.out, "[SortLines] - Sorted lines in file : "));
    }
}

TEST(SortLinesCommand, LeavesTheFileAloneForABadParameterAndSaysWhich) {
    const std::pair<Words, const char*> cases[] = {
        {{L"SORTBY=word"}, "SORTBY : \"word\" is none of line, substring, item"},
        {{L"SORTAS=size"}, "SORTAS : \"size\" is none of text, num, date"},
        {{L"ITEM=x"}, "ITEM : \"x\" is not a number of 0 or more"},
        {{L"ITEM=4294967296"}, "ITEM : \"4294967296\" is too large"},
        {{L"SUBSTRLEN=64", L"SORTAS=num"}, "SUBSTRLEN : is above 63, the longest number key"},
        {{L"ITEMSEP=ab"}, "ITEMSEP : \"ab\" is not one character (\\t stands for a tab)"},
        {{L"ENDCHAR="}, "ENDCHAR : \"\" is not one character (\\t stands for a tab)"},
        {{L"SORTAS=date", L"DATEFORMAT=%d %Z"}, "DATEFORMAT : uses %Z, which is not supported"},
        {{L"SORTAS=date", L"DATEFORMAT=" + std::wstring(128, L'x')}, "DATEFORMAT : is longer than 127 characters"},
    };
    for (const auto& [parameters, logged] : cases) {
        const CommandRunner runner;
        runner.Write(L"a.txt", "b\na\n");
        const HostRun run = Sort(runner, Joined(parameters, {L"OVERWRITE", L"SILENT"}));
        EXPECT_EQ(run.status, 1) << run.out;
        EXPECT_EQ(run.out, std::string("[Custom Cmd - SortLines] - ") + logged + "\n");
        EXPECT_EQ(runner.ReadAll(), (Contents{{L"a.txt", "b\na\n"}})) << logged;
    }
}

TEST(SortLinesCommand, NotesWhatHasNoEffectAndWhatLinesLack) {
    const std::pair<Words, const char*> cases[] = {
        {Words(), ""},
        {{L"TARGET=new.txt", L"KEEPBACKUP"}, "TARGET is not used together with KEEPBACKUP or DELETE\n"},
        {{L"KEEPBACKUP", L"DELETE"}, "DELETE is not used together with KEEPBACKUP"},
        {{L"SORTBY=item", L"ITEMSEP=,"}, "SORTBY=item without ITEM : no line has a key, and the order stays"},
        {{L"SORTBY=item", L"ITEM=1"}, "SORTBY=item without ITEMSEP : each line is one item"},
        {{L"ITEM=1"}, "ITEM is not used without SORTBY=item"},
        {{L"SORTBY=substring", L"SUBSTRLEN=2", L"ENDCHAR=,"}, "ENDCHAR is not used together with SUBSTRLEN"},
        {{L"SORTBY=line", L"SORTAS=num"}, "SORTBY=line : entire lines have no number and no date, and the order stays"},
        {{L"SORTAS=date"}, "SORTAS=date without DATEFORMAT : no line has a date, and the order stays"},
        {{L"SORTAS=num", L"LANGUAGEORDER"}, "LANGUAGEORDER is not used together with SORTAS=num or SORTAS=date"},
        {{L"NATRUALNUMORDER"}, "NATRUALNUMORDER is not used without LANGUAGEORDER"},
        {{L"SORTAS=num"}, "2 of 3 lines have no number"},
        {{L"SORTAS=num", L"KEEPBOTTOM=2"}, "1 of 1 line has no number"},
        {{L"SORTAS=date", L"DATEFORMAT=%Y-%m-%d"}, "3 of 3 lines have no date that fits the format"},
        {{L"LINEOFFSET=4", L"KEEPTOP=1"}, "1 of 2 lines ends before the place where the key begins"},
    };
    for (const auto& [parameters, note] : cases) {
        const CommandRunner runner;
        runner.Write(L"a.txt", "xyz\nb\n1,2,3\n");
        const HostRun run = Sort(runner, Joined(parameters, {L"OVERWRITE", L"SILENT"}));
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(Holds(run.out, "[SortLines] - Note : "), *note != '\0') << run.out;
        EXPECT_TRUE(Holds(run.out, note)) << run.out;
    }
}

TEST(SortLinesCommand, RefusesOneTargetForSeveralFilesOfAList) {
    const std::tuple<Words, int, const char*> cases[] = {
        {{L"TARGET=New.*"}, 2, "would be written to New.txt"},
        {{L"TARGET=*_new.*"}, 0, ""},
        {{L"TARGET=New.*", L"KEEPBACKUP"}, 0, ""},
    };
    for (const auto& [parameters, status, reason] : cases) {
        const CommandRunner runner;
        std::wstring list = L"\xFEFF";
        for (const wchar_t* name : {L"a.txt", L"b.txt"}) list += runner.Write(name, "b\na\n") + L"\n";
        const std::wstring file = runner.Write(L"list", Utf16(list));
        const HostRun run =
            runner.Run(Joined({L"call", L"SortLines", L"FILE={}", L"SILENT", L"--files-from", file}, parameters));
        EXPECT_EQ(run.status, status) << run.error;
        EXPECT_TRUE(Holds(run.error, reason));
        EXPECT_EQ(runner.List().size(), status == 0 ? 5u : 3u) << "refused before anything is written";
    }
}

// What is asked and overwritten is held by the tests of the run over files.
TEST(SortLinesCommand, TellsWhatBecameOfTheFile) {
    const struct {
        Words parameters;
        std::string said;
        const char* before = "b\na\n";
        Words answers = {};
        int status = 1;
    } cases[] = {
        {{}, "[skipped]", "b\na\n", {L"no", L"ok"}},
        {{}, "1223", "b\na\n", {L"cancel"}},
        {{L"TARGET=*:x", L"SILENT"}, "[SortLines] - Error : The target cannot be a file name : "},
        {{L"TARGET=*:x", L"SILENT"}, "( ErrorCode : 123 )\n[SortLines] - Failed to sortline in file : "},
        {{L"DELETE", L"SILENT"}, "- Error : Text format not supported ( ErrorCode : 1630 )\n", "\xEF\xBB\xBF\n"},
        {{L"TARGET=new.txt", L"DELETE", L"SILENT"}, "[SortLines] - Note : TARGET is not used", "a\nb\n", {}, 0},
    };
    for (const auto& c : cases) {
        const CommandRunner runner;
        runner.Write(L"a.txt", c.before);
        const HostRun run = Sort(runner, c.parameters, c.answers);
        EXPECT_TRUE(run.status == c.status && Holds(run.Said(), c.said)) << run.Said();
        EXPECT_EQ(runner.ReadAll(), (Contents{{L"a.txt", c.before}}));
    }
    EXPECT_TRUE(Holds(Sort(CommandRunner(), {L"SILENT"}).out, "a.txt not found\n"));
}

}  // namespace
