// Text replaced in names: what becomes of them, and the command with its dialog.
#include "fileutils/replace_in_names.h"

#include <gtest/gtest.h>

#include "fileutils/command_runner.h"
#include "support/dialog_driver.h"
#include "ui/resource.h"

namespace {

using FileUtils::WithTextReplaced;
using QVTest::CommandRun;
using QVTest::CommandRunner;
using QVTest::DialogDriver;
using QVTest::DrivenDialog;
using Ui::NamePart;
using Names = std::vector<std::wstring>;

TEST(ReplaceInNames, MakesTheseNames) {
    const struct {
        Ui::NameReplacement request;
        const wchar_t* name;
        const wchar_t* file;
        const wchar_t* folder;
    } cases[] = {
        {{L"a", L"b", false, NamePart::Name}, L"aA.a", L"bA.a", L"bA.b"},
        {{L"a", L"b", true, NamePart::Name}, L"aA.a", L"bb.a", L"bb.b"},
        {{L"a", L"b", false, NamePart::Extension}, L"aA.a", L"aA.b", L"aA.a"},
        {{L"a", L"b", false, NamePart::Both}, L"aA.a", L"bA.b", L"bA.b"},
        {{L"A.a", L"x", false, NamePart::Both}, L"aA.a", L"ax", L"ax"},
        {{L"a", L"aa", false, NamePart::Both}, L"aba", L"aabaa", L"aabaa"},
        {{L"aa", L"a", false, NamePart::Both}, L"aaaaa", L"aaa", L"aaa"},
        {{L"", L"x", false, NamePart::Both}, L"a", L"a", L"a"},
        {{L"\u00E4", L"x", true, NamePart::Name}, L"\u00C4.\u00C4", L"x.\u00C4", L"x.x"},
        {{L"a", L"", false, NamePart::Name}, L"ab.", L"b.", L"b."},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(WithTextReplaced(c.request, c.name, false), c.file);
        EXPECT_EQ(WithTextReplaced(c.request, c.name, true), c.folder);
    }
}

TEST(ReplaceInNames, ShowsTheNewNamesAndRenames) {
    const CommandRunner runner;
    const std::wstring first = runner.Folder().Write(L"old one.txt", "1");
    const std::wstring second = runner.Folder().Write(L"two.old", "2");
    const auto run = [&](const std::function<void(DialogDriver&)>& script) {
        CommandRun result;
        QVTest::WhileDriving(script, [&] { result = runner.Run({L"command", L"30010", first, second}, {L"ok"}); });
        return result;
    };
    run([](DialogDriver& driver) { driver.WaitFor(L"Replace text in names").PressAndClose(IDCANCEL); });
    EXPECT_EQ(runner.Folder().List(), (Names{L"old one.txt", L"two.old"}));

    const CommandRun result = run([](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(L"Replace text in names");
        EXPECT_FALSE(dialog.IsEnabled(IDOK));
        dialog.Enter(IDC_NAME_FIND, L"OLD");
        EXPECT_EQ(dialog.Text(IDC_REASON), L"No name holds this text.");
        dialog.PressLater(IDC_NAME_IGNORE_CASE);
        EXPECT_TRUE(QVTest::WaitUntil([&] { return dialog.IsEnabled(IDOK); }));
        dialog.Enter(IDC_NAME_REPLACEMENT, L"new");
        EXPECT_EQ(dialog.Text(IDC_REASON), L"1 name will change.");
        EXPECT_EQ(SendMessageW(dialog.Control(IDC_NAME_PREVIEW), LB_GETCOUNT, 0, 0), 1);
        dialog.PressAndClose(IDOK);
    });
    EXPECT_EQ(result.status, 0) << result.notes;
    EXPECT_EQ(runner.Folder().List(), (Names{L"new one.txt", L"two.old"}));
}

}  // namespace
