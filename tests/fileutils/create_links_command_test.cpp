// "Create links": the names proposed, what is refused beforehand, and the command with its dialog.

#include "fileutils/command_runner.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/links/create_links_dlg.h"
#include "fileutils/links/link_rules.h"
#include "win32/files.h"

namespace {

using namespace QVTest;

constexpr wchar_t kTitle[] = L"Create links";

TEST(LinkNames, AreProposedBesideAndElsewhere) {
    EXPECT_EQ(FileUtils::ProposedLinkName({L"C:\\a\\b.tar.gz", false}, L"C:\\x"), L"b.tar.gz");
    EXPECT_EQ(FileUtils::ProposedLinkName({L"C:\\a\\b.tar.gz", false}, L"c:\\A\\"), L"b.tar - link.gz");
    EXPECT_EQ(FileUtils::ProposedLinkName({L"C:\\a\\b.c", true}, L"C:\\a"), L"b.c - link");
    EXPECT_EQ(FileUtils::LinkPath(4, L"C:\\a", L"b.txt"), L"C:\\a\\b.txt.lnk");
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
        const DrivenDialog dialog = driver.WaitFor(kTitle);
        EXPECT_FALSE(dialog.IsEnabled(IDC_LINK_AS_ADMIN));
        EXPECT_EQ(dialog.Selected(IDC_LINK_KIND), 0);
        EXPECT_EQ(dialog.Text(IDC_LINK_NAME), L"a - link.txt");
        EXPECT_TRUE(dialog.IsEnabled(IDOK)) << testing::PrintToString(dialog.Text(IDC_REASON));
        dialog.Enter(IDC_LINK_NAME, L"b");
        EXPECT_FALSE(dialog.IsEnabled(IDOK));
        EXPECT_EQ(dialog.Text(IDC_REASON), L"This name is in use: b");
        dialog.Enter(IDC_LINK_NAME, L"c.txt");
        dialog.PressAndClose(IDOK);
    });
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_TRUE(Win32::IsSameFile(first, runner / L"c.txt"));
    EXPECT_TRUE(Win32::IsSameFile(second, runner / L"b - link"));
}

TEST(CreateLinksDlg, AsksAboutALinkOnlyWhenItIsAnother) {
    std::vector<FileUtils::LinkTarget> targets;
    for (int number = 0; number < 2000; ++number) targets.push_back({L"C:\\t\\" + std::to_wstring(number), false});
    size_t asked = 0;
    FileUtils::CreateLinksDlg dialog(targets, false, [&](uint32_t, const std::wstring&, const FileUtils::LinkTarget&) {
        ++asked;
        return std::wstring();
    });
    std::optional<FileUtils::CreateLinksRequest> request;
    const auto person = [&](const DrivenDialog& open) {
        EXPECT_EQ(std::exchange(asked, 0), targets.size());
        open.Enter(IDC_LINK_NAME, L"1999 - LINK");
        EXPECT_EQ(open.Text(IDC_REASON), L"Two links have the same name: 1999 - link");
        open.Enter(IDC_LINK_NAME, L"\u00C4 - link");
        EXPECT_TRUE(open.IsEnabled(IDOK));
        EXPECT_LE(std::exchange(asked, 0), 26u) << "one for each letter";
        EXPECT_EQ(SendMessageW(open.Control(IDC_LINK_TARGETS), LB_GETCOUNT, 0, 0), 2000);
        open.PressAndClose(IDOK);
    };
    WhileShown(kTitle, person, [&] { request = dialog.Show(nullptr); });
    ASSERT_TRUE(request);
    EXPECT_EQ(request->links.front(), L"C:\\t\\\u00C4 - link");
    EXPECT_EQ(request->links.back(), L"C:\\t\\1999 - link");
}

TEST(CreateLinksCommand, SaysHowManyLinksFailedAlsoAsAdministrator) {
    const CommandRunner runner;
    // Here no junction can be made.
    const Words words = {L"command", L"30350", runner.MakeFolder(L"sub"), L"--can-elevate"};
    const HostRun run = runner.RunDriven(words, [](DialogDriver& driver) {
        const DrivenDialog dialog = driver.WaitFor(kTitle);
        dialog.Check(IDC_LINK_AS_ADMIN, true);
        dialog.PressAndClose(IDOK);
    });
    EXPECT_TRUE(Holds(run.out, "\nFailed to create link (Junction) (Error : 13) ")) << run.out;
    EXPECT_TRUE(Holds(run.error, "1 of 1 links could not be created."));
    EXPECT_EQ(runner.List(), Names{L"sub"});
}

}  // namespace
