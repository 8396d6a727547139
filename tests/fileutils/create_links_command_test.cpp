// "Create links": the names proposed, what is refused beforehand, and the command with its dialog.

#include <atomic>

#include "fileutils/command_runner.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/links/create_links_dlg.h"
#include "fileutils/links/link_rules.h"
#include "win32/files.h"
#include "win32/handle.h"

namespace {

using namespace QVTest;

constexpr wchar_t kLinksTitle[] = L"Create links";

/// What the dialog says once it has looked at the links.
testing::AssertionResult Says(const DrivenDialog& dialog, const std::wstring& reason) {
    const bool isSaid =
        WaitUntil([&] { return dialog.Text(IDC_REASON) == reason && dialog.IsEnabled(IDOK) == reason.empty(); });
    return isSaid ? testing::AssertionSuccess()
                  : testing::AssertionFailure() << testing::PrintToString(dialog.Text(IDC_REASON));
}

TEST(LinkNames, AreProposedBesideAndElsewhere) {
    const std::tuple<FileUtils::LinkTarget, const wchar_t*, const wchar_t*> cases[] = {
        {{L"C:\\a\\b.tar.gz", false}, L"C:\\x", L"C:\\x\\b.tar.gz"},
        {{L"C:\\a\\b.tar.gz", false}, L"c:\\x\\..\\A\\", L"c:\\x\\..\\A\\b.tar - link.gz"},
        {{L"C:\\a\\b.c", true}, L"C:\\a", L"C:\\a\\b.c - link"},
        {{L"C:\\b", false}, L"C:\\", L"C:\\b - link"},
    };
    for (const auto& [target, folder, link] : cases) {
        FileUtils::LinkNames names({target});
        names.SetFolder(folder);
        EXPECT_EQ(names.LinkOf(1, 0), link);
        names.SetName(0, L"typed");
        names.SetFolder(L"C:\\y");
        EXPECT_EQ(names.LinkOf(4, 0), L"C:\\y\\typed.lnk");
    }
    EXPECT_EQ(FileUtils::LinkPath(4, L"C:\\a\\", L"b.LNK"), L"C:\\a\\b.LNK");
}

TEST(LinkRules, RefuseWhatCannotWork) {
    const TemporaryFolder folder;
    const std::wstring file = folder.Write(L"file", "x");
    const std::wstring link = folder / L"link";
    const struct {
        const char* why;
        uint32_t type;
        std::wstring link, target;
        bool targetIsFolder;
        const wchar_t* reason;  // its beginning; "": none
    } cases[] = {
        {"in another case", 1, folder / L"FILE", file, false, L"This name is in use: FILE"},
        {"a hard link to a file", 1, link, file, false, L""},
        {"a name in use", 3, file, folder.Path(), true, L"This name is in use: file"},
        {"no name", 3, folder / L"a?", file, false, L"This cannot be a name: a?"},
        {"a missing folder", 4, folder / L"no\\a.lnk", file, false, L"There is no folder "},
        {"a hard link to a folder", 1, link, folder.Path(), true, L"A hard link cannot lead to a folder: "},
        {"another volume", 1, link, L"Z:\\x", false, L"A hard link cannot lead to another volume: "},
        {"a junction to a file", 2, link, file, false, L"A junction cannot lead to a file: "},
        {"a junction to a share", 2, link, L"\\\\a\\b", true, L"A junction cannot lead to another computer: "},
    };
    FileUtils::LinkRules rules;
    for (const auto& c : cases) {
        const std::wstring reason = rules.WhyNot(c.type, c.link, c.target, c.targetIsFolder);
        EXPECT_TRUE(reason.starts_with(c.reason)) << c.why << testing::PrintToString(reason);
        EXPECT_EQ(reason.empty(), *c.reason == 0) << c.why << testing::PrintToString(reason);
    }
}

TEST(CreateLinksCommand, MakesOneLinkForEachTarget) {
    const CommandRunner runner;
    const std::wstring first = runner.Write(L"a.txt", "1");
    const std::wstring second = runner.Write(L"b", "2");
    const HostRun run = runner.RunDriven({L"command", L"30350", first, second}, [](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(kLinksTitle);
        EXPECT_FALSE(dialog.IsEnabled(IDC_LINK_AS_ADMIN));
        EXPECT_EQ(dialog.Selected(IDC_LINK_KIND), 0);
        EXPECT_EQ(dialog.Text(IDC_LINK_NAME), L"a - link.txt");
        EXPECT_TRUE(Says(dialog, L""));
        dialog.Enter(IDC_LINK_NAME, L"b");
        EXPECT_TRUE(Says(dialog, L"This name is in use: b"));
        dialog.Enter(IDC_LINK_NAME, L"c.txt");
        EXPECT_TRUE(Says(dialog, L""));
        dialog.PressAndClose(IDOK);
    });
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_TRUE(Win32::IsSameFile(first, runner / L"c.txt"));
    EXPECT_TRUE(Win32::IsSameFile(second, runner / L"b - link"));
}

TEST(CreateLinksDlg, AsksAboutALinkOnlyWhenItIsAnotherAndNotOnItsThread) {
    std::vector<FileUtils::LinkTarget> targets;
    for (int number = 0; number < 20000; ++number) targets.push_back({L"C:\\t\\" + std::to_wstring(number), false});
    std::atomic<size_t> asked = 0;
    const DWORD windowThread = GetCurrentThreadId();
    const auto check = [&](uint32_t, const std::wstring&, const FileUtils::LinkTarget&) {
        EXPECT_NE(GetCurrentThreadId(), windowThread);
        ++asked;
        return std::wstring();
    };
    // The first time a folder is chosen, the second time none.
    const auto pick = [](HWND, const std::wstring& before) { return before.empty() ? L"C:\\u" : L""; };
    FileUtils::CreateLinksDlg dialog(targets, false, check, pick);
    std::optional<FileUtils::CreateLinksRequest> request;
    const auto person = [&](const DrivenDialog& open) {
        EXPECT_TRUE(Says(open, L""));
        EXPECT_EQ(asked.exchange(0), targets.size());
        open.Enter(IDC_LINK_NAME, L"1999 - LINK");
        EXPECT_TRUE(Says(open, L"Two links have the same name: 1999 - link"));
        open.Enter(IDC_LINK_NAME, L"\u00C4 - link");
        EXPECT_TRUE(Says(open, L""));
        EXPECT_LE(asked.exchange(0), 26u) << "one for each letter";
        const HWND list = open.Control(IDC_LINK_TARGETS);
        EXPECT_EQ(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0), 20000);
        EXPECT_EQ(CellOf(list, 0, 0) + L" " + CellOf(list, 19999, 1), L"\u00C4 - link C:\\t\\19999");
        open.Enter(IDC_LINK_FOLDER, L"");
        EXPECT_TRUE(Says(open, L"A folder is needed."));
        for (int time = 0; time < 2; ++time) open.Press(IDC_LINK_PICK_FOLDER);
        open.PressAndClose(IDOK);
    };
    WhileShown(kLinksTitle, person, [&] { request = dialog.Show(nullptr); });
    ASSERT_TRUE(request);
    EXPECT_EQ(request->links.front(), L"C:\\u\\\u00C4 - link");
    EXPECT_EQ(request->links.back(), L"C:\\u\\19999");
}

TEST(CreateLinksDlg, WaitsForNoCheckThatIsVoidAndShowsNothingOfIt) {
    std::atomic<int> begun = 0;
    const Win32::KernelHandle goesOn[] = {Win32::KernelHandle(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
                                          Win32::KernelHandle(CreateEventW(nullptr, TRUE, FALSE, nullptr))};
    const auto check = [&](uint32_t, const std::wstring& link, const FileUtils::LinkTarget&) -> std::wstring {
        if (const int number = begun++; number < 2) WaitForSingleObject(goesOn[number].Get(), 10000);
        return link.ends_with(L"bad") ? L"bad" : L"";
    };
    FileUtils::CreateLinksDlg dialog({{L"C:\\a", false}}, true, check, {});
    const auto person = [&](const DrivenDialog& open) {
        EXPECT_TRUE(WaitUntil([&] { return begun == 1; }));
        SetWindowTextW(open.Control(IDC_LINK_NAME), L"bad");
        EXPECT_TRUE(WaitUntil([&] { return open.Text(IDC_REASON) == L"Looking at the links..."; }));
        SetEvent(goesOn[0].Get());
        EXPECT_TRUE(WaitUntil([&] { return begun == 2; }));
        open.PressLater(IDC_LINK_AS_ADMIN);  // what was posted before has arrived when this has
        EXPECT_TRUE(WaitUntil([&] { return open.IsChecked(IDC_LINK_AS_ADMIN); }));
        SetEvent(goesOn[1].Get());
        EXPECT_TRUE(Says(open, L"bad"));
        open.PressAndClose(IDCANCEL);
    };
    WhileShown(kLinksTitle, person, [&] { EXPECT_FALSE(dialog.Show(nullptr)); });
}

TEST(CreateLinksCommand, SaysHowManyLinksFailedAlsoAsAdministrator) {
    const CommandRunner runner;
    // Here no junction can be made.
    const Words words = {L"command", L"30350", runner.MakeFolder(L"sub"), L"--can-elevate"};
    const HostRun run = runner.RunDriven(words, [](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(kLinksTitle);
        EXPECT_TRUE(Says(dialog, L""));
        dialog.Check(IDC_LINK_AS_ADMIN, true);
        dialog.PressAndClose(IDOK);
    });
    EXPECT_TRUE(Holds(run.out, "\nFailed to create link (Junction) (Error : 13) ")) << run.out;
    EXPECT_TRUE(Holds(run.error, "The link could not be created."));
    EXPECT_EQ(runner.List(), Names{L"sub"});
}

}  // namespace
