// The commands with a dialog, from the menu to the bytes of the files.
#include <gtest/gtest.h>

#include "fileutils/command_runner.h"
#include "support/dialog_driver.h"
#include "ui/resource.h"

namespace {

using QVTest::CommandRun;
using QVTest::CommandRunner;
using QVTest::DialogDriver;
using QVTest::DrivenDialog;
using QVTest::WhileDriving;

constexpr wchar_t kFindTitle[] = L"Find and Replace in file(s)";
constexpr wchar_t kConfirmTitle[] = L"Confirm Replace";
constexpr wchar_t kSortTitle[] = L"Sort Lines";

CommandRun RunDriven(const CommandRunner& host, std::vector<std::wstring> arguments,
                     const std::function<void(DialogDriver&)>& script) {
    CommandRun run;
    WhileDriving(script, [&] { run = host.Run(std::move(arguments), {L"ok"}); });
    return run;
}

TEST(FindAndReplaceCommand, AsksAboutEachMatchAndRemembersTheRequest) {
    CommandRunner host;
    host.Folder().Write(L"a.txt", "one two one two one\r\n");
    host.Folder().Write(L"b.txt", "one\n");
    host.Folder().Write(L"c.txt", "nothing\n");
    const std::vector<std::wstring> arguments = {L"command", L"30151", host.Folder() / L"a.txt",
                                                 host.Folder() / L"b.txt", host.Folder() / L"c.txt"};
    const CommandRun run = RunDriven(host, arguments, [](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(kFindTitle);
        EXPECT_EQ(dialog.Text(IDC_FIND), L"");
        EXPECT_EQ(dialog.Entries(IDC_MODE)[3], L"A text of several lines");
        dialog.Enter(IDC_FIND, L"one");
        dialog.Enter(IDC_REPLACEMENT, L"three");
        dialog.PressAndClose(IDOK);
        driver.WaitFor(kConfirmTitle).PressAndClose(IDOK);
        driver.WaitFor(kConfirmTitle).PressAndClose(IDC_ANSWER_FIND_NEXT);
        driver.WaitFor(kConfirmTitle).PressAndClose(IDC_ANSWER_REPLACE_ALL);  // for b.txt as well
    });
    EXPECT_EQ(run.status, 0) << run.notes;
    EXPECT_EQ(host.Folder().Read(L"a.txt"), "three two one two three\r\n");
    EXPECT_EQ(host.Folder().Read(L"a.txt.bak"), "one two one two one\r\n");
    EXPECT_EQ(host.Folder().Read(L"b.txt"), "three\n");
    EXPECT_EQ(host.Folder().Read(L"c.txt"), "nothing\n");
    EXPECT_NE(run.log.find("[Find and Replace] - 2 changes made to file : "), std::string::npos) << run.log;

    RunDriven(host, arguments, [](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(kFindTitle);
        EXPECT_EQ(dialog.Text(IDC_FIND), L"one");
        EXPECT_EQ(dialog.Text(IDC_REPLACEMENT), L"three");
        EXPECT_EQ(dialog.Selected(IDC_TARGET), 1);
        dialog.PressAndClose(IDCANCEL);
    });
}

TEST(FindAndReplaceCommand, CancelInTheQuestionLeavesTheFileAlone) {
    CommandRunner host;
    host.Folder().Write(L"a.txt", "one one\n");
    const CommandRun run = RunDriven(host, {L"command", L"30151", host.Folder() / L"a.txt"}, [](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(kFindTitle);
        dialog.Enter(IDC_FIND, L"one");
        dialog.Enter(IDC_REPLACEMENT, L"two");
        dialog.PressAndClose(IDOK);
        driver.WaitFor(kConfirmTitle).PressAndClose(IDOK);
        driver.WaitFor(kConfirmTitle).PressAndClose(IDCANCEL);
    });
    EXPECT_EQ(host.Folder().Read(L"a.txt"), "one one\n");
    EXPECT_NE(run.log.find("[Find and Replace] - Operation cancelled"), std::string::npos) << run.log;
}

TEST(FindAndReplaceCommand, SaveAsWritesBesideTheOriginal) {
    CommandRunner host;
    host.Folder().Write(L"a.txt", "one\n");
    RunDriven(host, {L"command", L"30151", host.Folder() / L"a.txt"}, [](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(kFindTitle);
        dialog.Enter(IDC_FIND, L"one");
        dialog.Enter(IDC_REPLACEMENT, L"two");
        dialog.Select(IDC_TARGET, 0);
        dialog.Check(IDC_SILENT, true);
        dialog.PressAndClose(IDOK);
    });
    EXPECT_EQ(host.Folder().Read(L"a.txt"), "one\n");
    EXPECT_EQ(host.Folder().Read(L"a_new.txt"), "two\n");
}

TEST(FindAndReplaceCommand, FromAScriptAsksInTheDialogWhereTheHostHasAWindow) {
    CommandRunner host;
    host.Folder().Write(L"a.txt", "one one\n");
    const std::wstring file = L"FILE=" + (host.Folder() / L"a.txt");
    const std::vector<std::wstring> call = {L"call",     L"FindAndReplace",  file,
                                            L"FIND=one", L"REPLACEWITH=two", L"DELETE"};
    std::vector<std::wstring> withWindows = call;
    withWindows.insert(withWindows.begin(), L"--windows");
    RunDriven(host, withWindows, [](DialogDriver& driver) {
        driver.WaitFor(kConfirmTitle).PressAndClose(IDC_ANSWER_FIND_NEXT);
        driver.WaitFor(kConfirmTitle).PressAndClose(IDOK);
    });
    EXPECT_EQ(host.Folder().Read(L"a.txt"), "one two\n");
    // Without one the answers come from the command line, and no window opens.
    EXPECT_EQ(host.Run(call, {L"replace"}).status, 0);
    EXPECT_EQ(host.Folder().Read(L"a.txt"), "two two\n");
}

TEST(FindAndReplaceCommand, WithoutASelectionShowsNothing) {
    CommandRunner host;
    EXPECT_EQ(RunDriven(host, {L"command", L"30151"}, [](DialogDriver&) {}).status, 0);
    EXPECT_EQ(RunDriven(host, {L"command", L"30150"}, [](DialogDriver&) {}).status, 0);
}

TEST(SortLinesCommand, SortsWhatTheDialogAsksForAndRemembersIt) {
    CommandRunner host;
    host.Folder().Write(L"a.csv", "head;0\r\nb;1\r\na;10\r\nc;2\r\n");
    const std::vector<std::wstring> arguments = {L"command", L"30150", host.Folder() / L"a.csv"};
    const CommandRun run = RunDriven(host, arguments, [](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(kSortTitle);
        dialog.Enter(IDC_KEEP_TOP, L"1");
        dialog.Press(IDC_KEY_ITEM);
        dialog.Enter(IDC_ITEM_SEPARATOR, L";");
        dialog.Enter(IDC_ITEM_NUMBER, L"2");
        dialog.Select(IDC_SORT_METHOD, 1);
        dialog.Check(IDC_REVERSE, true);
        dialog.PressAndClose(IDOK);
    });
    EXPECT_EQ(run.status, 0) << run.notes;
    EXPECT_EQ(host.Folder().Read(L"a.csv"), "head;0\r\na;10\r\nc;2\r\nb;1\r\n");
    EXPECT_EQ(host.Folder().Read(L"a.csv.bak"), "head;0\r\nb;1\r\na;10\r\nc;2\r\n");
    RunDriven(host, arguments, [](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(kSortTitle);
        EXPECT_EQ(dialog.Text(IDC_KEEP_TOP), L"1");
        EXPECT_EQ(dialog.Text(IDC_ITEM_SEPARATOR), L";");
        EXPECT_TRUE(dialog.IsChecked(IDC_KEY_ITEM));
        EXPECT_TRUE(dialog.IsChecked(IDC_REVERSE));
        dialog.PressAndClose(IDCANCEL);
    });
}

}  // namespace
