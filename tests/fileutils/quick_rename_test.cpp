// Quick renames and the group rename: the names they make, and the commands from the selection to the folder.
#include "fileutils/names/quick_rename.h"

#include "fileutils/command_runner.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/names/replace_dlg.h"

namespace {

using FileUtils::QuickRenamed;
using namespace QVTest;

TEST(QuickRename, MakesTheseNames) {
    const std::tuple<uint32_t, const wchar_t*, const wchar_t*, const wchar_t*> cases[] = {
        {30000, L"az \u00E4\u044F.txt", L"AZ \u00E4\u044F.TXT", L"AZ \u00E4\u044F.TXT"},
        {30001, L"AZ \u00C4\u042F.TXT", L"az \u00E4\u044F.txt", L"az \u00E4\u044F.txt"},
        {30001, L"ISTANBUL", L"istanbul", L"istanbul"},
        {30002, L"my file_name.TXT", L"My File_Name.txt", L"My File_Name.Txt"},
        {30002, L"  x", L"  X", L"  X"},
        {30002, L".profile", L".profile", L".Profile"},
        {30002, L"mr. x", L"Mr. X", L"Mr. X"},
        {30003, L"a_b.c_d", L"a b.c_d", L"a b.c d"},
        {30007, L"a.b.c", L"a_b.c", L"a_b_c"},
    };
    for (const auto& [id, name, file, folder] : cases) {
        EXPECT_EQ(QuickRenamed(id, name, false), file) << id;
        EXPECT_EQ(QuickRenamed(id, name, true), folder) << id;
    }
}

TEST(QuickRename, LeavesOutWhatCannotBeAName) {
    const CommandRunner runner;
    const std::wstring good = runner.MakeFolder(L"a_b");
    const std::wstring bad = runner.MakeFolder(L"c_");
    HostRun run = runner.Run({L"command", L"30004", good, bad}, {L"ok"});
    EXPECT_TRUE(Holds(run.error, "Names that will change: 1.")) << run.error;
    EXPECT_TRUE(Holds(run.error, "\"c.\" cannot be a name: a name cannot end with a dot."));
    run = runner.Run({L"command", L"30003", bad}, {L"ok"});
    EXPECT_TRUE(Holds(run.error, "\"c \" cannot be a name: a name cannot end with a blank."));
    EXPECT_EQ(runner.List(), (Names{L"a.b", L"c_"}));
    run = runner.Run({L"command", L"30020", runner.Write(L"x.txt", "")}, {L"nul", L"ok"});
    EXPECT_TRUE(Holds(run.error, "\"nul.txt\" cannot be a name: the name is reserved for a device."));
}

TEST(RenameCommands, RenameTheSelectionAfterOneQuestion) {
    const struct {
        const wchar_t *id, *answer;
        Names after;
        const char* asked;
    } cases[] = {
        {L"30002", L"cancel", {L"a_b", L"a_b.jpg", L"a_b.x_y", L"a_b.z_q", L"b_b.jpg"}, "Names that will change: 5."},
        {L"30002", L"ok", {L"A_B", L"A_B.Z_Q", L"A_B.jpg", L"A_B.x_Y", L"B_B.jpg"}, "Names that will change: 5."},
        {L"30001", L"ok", {L"a_b", L"a_b.jpg", L"a_b.x_y", L"a_b.z_q", L"b_b.jpg"}, ""},  // none changes
        {L"30020", L"new", {L"a_b.z_q", L"b_b.jpg", L"new", L"new.jpg", L"new.x_y"}, "[question] "},
        {L"30020", L"b_b", {L"a_b.jpg", L"a_b.z_q", L"b_b", L"b_b.jpg", L"b_b.x_y"}, "a_b.jpg -> b_b.jpg: error 183"},
        {L"30020", L"cancel", {L"a_b", L"a_b.jpg", L"a_b.x_y", L"a_b.z_q", L"b_b.jpg"}, "[question] "},
    };
    for (const auto& c : cases) {
        const CommandRunner runner;
        Words words = {L"command", c.id};
        for (const wchar_t* name : {L"a_b.x_y", L"a_b.jpg", L"a_b", L"b_b.jpg"})
            words.push_back(runner.Write(name, "x"));
        words.push_back(runner.MakeFolder(L"a_b.z_q"));
        const HostRun run = runner.Run(words, {c.answer});
        EXPECT_EQ(run.status == 0, !Holds(run.error, "[not renamed] ")) << run.error;
        EXPECT_EQ(run.out, "");
        EXPECT_TRUE(*c.asked ? Holds(run.error, c.asked) : testing::AssertionResult(run.error.empty())) << run.error;
        EXPECT_EQ(runner.List(), c.after) << run.error;
    }
}

using FileUtils::NamePart;
using FileUtils::WithTextReplaced;

constexpr wchar_t kNamesTitle[] = L"Replace text in names";

TEST(ReplaceInNames, MakesTheseNames) {
    const std::tuple<FileUtils::NameReplacement, const wchar_t*, const wchar_t*, const wchar_t*> cases[] = {
        {{L"a", L"b", false, NamePart::Name}, L"aA.a", L"bA.a", L"bA.b"},
        {{L"a", L"b", false, NamePart::Extension}, L"aA.a", L"aA.b", L"aA.a"},
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
        const DrivenDialog dialog = driver.WaitFor(kNamesTitle);
        EXPECT_FALSE(dialog.IsEnabled(IDOK));
        dialog.Enter(IDC_NAME_FIND, L"OLD");
        EXPECT_EQ(dialog.Text(IDC_REASON), L"No name holds this text.");
        dialog.PressLater(IDC_NAME_IGNORE_CASE);
        EXPECT_TRUE(WaitUntil([&] { return dialog.IsEnabled(IDOK); }));
        dialog.Enter(IDC_NAME_REPLACEMENT, L"?");
        EXPECT_EQ(dialog.Text(IDC_REASON), L"\"old one.txt\": the character \"?\" cannot be in a name.");
        EXPECT_FALSE(dialog.IsEnabled(IDOK));
        dialog.Enter(IDC_NAME_REPLACEMENT, L"new");
        EXPECT_EQ(dialog.Text(IDC_REASON), L"1 name will change.");
        EXPECT_EQ(SendMessageW(dialog.Control(IDC_NAME_PREVIEW), LB_GETCOUNT, 0, 0), 1);
        dialog.PressAndClose(IDOK);
    });
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(runner.List(), (Names{L"new one.txt", L"two.old"}));
}

TEST(ReplaceInNames, LeavesOutNamesThatMeetOrAreThereAndSaysSoBefore) {
    const struct {
        const wchar_t *find, *replacement, *said, *first;
        Names after;  // nothing: it cannot start
    } cases[] = {
        {L"1",
         L"12",
         L"2 names will change.",
         L"a1  ->  a12",  // the other one frees the name
         {L"a12", L"a122", L"a4", L"ax", L"b4", L"xa"}},
        {L"a",
         L"b",
         L"4 names will change. 1 name stays as it is. \"a4\": \"b4\" is there already.",
         L"a4  ->  b4  (\"b4\" is there already)",
         {L"a4", L"b1", L"b12", L"b4", L"bx", L"xb"}},
        {L"x",
         L"",
         L"\"ax\": \"a\" would be the name of more than one item.",
         L"ax  ->  a  (\"a\" would be the name of more than one item)",
         {}},
    };
    for (const auto& c : cases) {
        const CommandRunner runner;
        runner.Write(L"b4", "");
        Words words = {L"command", L"30010"};
        for (const wchar_t* name : {L"a1", L"a12", L"a4", L"ax", L"xa"}) words.push_back(runner.Write(name, ""));
        const HostRun run = runner.RunDriven(words, [&](DialogDriver& driver) {
            const DrivenDialog dialog = driver.WaitFor(kNamesTitle);
            dialog.Enter(IDC_NAME_FIND, c.find);
            dialog.Enter(IDC_NAME_REPLACEMENT, c.replacement);
            EXPECT_EQ(dialog.Text(IDC_REASON), c.said);
            EXPECT_EQ(ShownText(dialog.Control(IDC_NAME_PREVIEW), LB_GETTEXT, 0), c.first);
            EXPECT_EQ(dialog.IsEnabled(IDOK), !c.after.empty());
            dialog.PressAndClose(c.after.empty() ? IDCANCEL : IDOK);
        });
        EXPECT_EQ(run.status, 0) << run.error;
        EXPECT_TRUE(c.after.empty() || runner.List() == c.after) << c.said;
    }
}

}  // namespace
