// The commands with a dialog, from the menu to the bytes of the files.

#include "fileutils/command_runner.h"
#include "fileutils/fileutils_resource.h"

namespace {

using namespace QVTest;

constexpr wchar_t kFindTitle[] = L"Find and Replace in file(s)";
constexpr wchar_t kConfirmTitle[] = L"Confirm Replace";
constexpr wchar_t kSortTitle[] = L"Sort Lines";

TEST(FindAndReplaceCommand, AsksAboutEachMatchAndRemembersTheRequest) {
    CommandRunner host;
    const Words arguments = {L"command", L"30151", host.Write(L"a.txt", "one two one two one\r\n"),
                             host.Write(L"b.txt", "one\n"), host.Write(L"c.txt", "nothing\n")};
    const HostRun run = host.RunDriven(arguments, [](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(kFindTitle);
        dialog.Enter(IDC_FIND, L"one");
        dialog.Enter(IDC_REPLACEMENT, L"three");
        dialog.PressAndClose(IDOK);
        const DrivenDialog confirm = driver.WaitFor(kConfirmTitle);
        confirm.PressLater(IDOK);
        confirm.PressLater(IDC_ANSWER_FIND_NEXT);
        confirm.PressAndClose(IDC_ANSWER_REPLACE_ALL);  // for b.txt as well
    });
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(host.ReadAll(), (Contents{{L"a.txt", "three two one two three\r\n"},
                                        {L"a.txt.bak", "one two one two one\r\n"},
                                        {L"b.txt", "three\n"},
                                        {L"b.txt.bak", "one\n"},
                                        {L"c.txt", "nothing\n"}}));
    EXPECT_TRUE(Holds(run.out, "[Find and Replace] - 2 changes made to file : "));

    host.RunDriven(arguments, [](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(kFindTitle);
        EXPECT_EQ(dialog.Text(IDC_FIND), L"one");
        EXPECT_EQ(dialog.Text(IDC_REPLACEMENT), L"three");
        EXPECT_EQ(dialog.Selected(IDC_TARGET), 1);
        dialog.PressAndClose(IDCANCEL);
    });
}

TEST(FindAndReplaceCommand, FromAScriptAsksInTheDialogWhereTheHostHasAWindow) {
    CommandRunner host;
    const std::wstring file = L"FILE=" + host.Write(L"a.txt", "one one\n");
    const Words call = {L"call", L"FindAndReplace", file, L"FIND=one", L"REPLACEWITH=two", L"DELETE"};
    host.RunDriven(Joined({L"--windows"}, call), [](DialogDriver& driver) {
        const DrivenDialog confirm = driver.WaitFor(kConfirmTitle);
        confirm.PressLater(IDC_ANSWER_FIND_NEXT);
        confirm.PressAndClose(IDOK);
    });
    EXPECT_EQ(host.Read(L"a.txt"), "one two\n");
}

TEST(DialogCommands, WithoutASelectionShowNothing) {
    for (const wchar_t* id : {L"30150", L"30151"})
        EXPECT_EQ(CommandRunner().RunDriven({L"command", id}, [](DialogDriver&) {}).status, 0);
}

TEST(SortLinesCommand, SortsWhatTheDialogAsksForAndRemembersIt) {
    CommandRunner host;
    const Words arguments = {L"command", L"30150", host.Write(L"a.csv", "head\nb\na\n")};
    for (const wchar_t* keptOnTop : {L"0", L"1"})
        host.RunDriven(arguments, [&](DialogDriver& driver) {
            const DrivenDialog dialog = driver.WaitFor(kSortTitle);
            EXPECT_EQ(dialog.Text(IDC_KEEP_TOP), keptOnTop);
            dialog.Enter(IDC_KEEP_TOP, L"1");
            dialog.PressAndClose(*keptOnTop == L'0' ? IDOK : IDCANCEL);
        });
    EXPECT_EQ(host.ReadAll(), (Contents{{L"a.csv", "head\na\nb\n"}, {L"a.csv.bak", "head\nb\na\n"}}));
}

}  // namespace
