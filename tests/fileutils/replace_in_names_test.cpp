// Text replaced in names: what becomes of them, and the command with its dialog.
#include "fileutils/names/replace_in_names.h"

#include "fileutils/command_runner.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/names/names_resource.h"

namespace {

using FileUtils::NamePart;
using FileUtils::WithTextReplaced;
using namespace QVTest;

constexpr wchar_t kTitle[] = L"Replace text in names";

TEST(ReplaceInNames, MakesTheseNames) {
    const std::tuple<FileUtils::NameReplacement, const wchar_t*, const wchar_t*, const wchar_t*> cases[] = {
        {{L"a", L"b", false, NamePart::Name}, L"aA.a", L"bA.a", L"bA.b"},
        {{L"a", L"b", true, NamePart::Name}, L"aA.a", L"bb.a", L"bb.b"},
        {{L"a", L"b", false, NamePart::Extension}, L"aA.a", L"aA.b", L"aA.a"},
        {{L"A.a", L"x", false, NamePart::Both}, L"aA.a", L"ax", L"ax"},
        {{L"a", L"aa", false, NamePart::Both}, L"aba", L"aabaa", L"aabaa"},
        {{L"", L"x", false, NamePart::Both}, L"a", L"a", L"a"},
        {{L"\u00E4", L"x", true, NamePart::Name}, L"\u00C4.\u00C4", L"x.\u00C4", L"x.x"},
    };
    for (const auto& [request, name, file, folder] : cases) {
        EXPECT_EQ(WithTextReplaced(request, name, false), file);
        EXPECT_EQ(WithTextReplaced(request, name, true), folder);
    }
}

TEST(ReplaceInNames, ShowsTheNewNamesAndRenames) {
    const CommandRunner runner;
    const Words words = {L"command", L"30010", runner.Write(L"old one.txt", "1"), runner.Write(L"two.old", "2")};
    const HostRun run = runner.RunDriven(words, [](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(kTitle);
        EXPECT_FALSE(dialog.IsEnabled(IDOK));
        dialog.Enter(IDC_NAME_FIND, L"OLD");
        EXPECT_EQ(dialog.Text(IDC_REASON), L"No name holds this text.");
        dialog.PressLater(IDC_NAME_IGNORE_CASE);
        EXPECT_TRUE(WaitUntil([&] { return dialog.IsEnabled(IDOK); }));
        dialog.Enter(IDC_NAME_REPLACEMENT, L"new");
        EXPECT_EQ(dialog.Text(IDC_REASON), L"1 name will change.");
        EXPECT_EQ(SendMessageW(dialog.Control(IDC_NAME_PREVIEW), LB_GETCOUNT, 0, 0), 1);
        dialog.PressAndClose(IDOK);
    });
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(runner.List(), (Names{L"new one.txt", L"two.old"}));
}

}  // namespace
