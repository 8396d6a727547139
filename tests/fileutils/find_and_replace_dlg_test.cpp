#include "fileutils/find_replace/find_and_replace_dlg.h"

#include <gtest/gtest.h>

#include "fileutils/fileutils_resource.h"
#include "host/contract/language.h"
#include "host/contract/whole_file.h"
#include "support/dialog_driver.h"
#include "support/temporary_folder.h"
#include "ui/host_texts.h"
#include "win32/path.h"

namespace {

using FileUtils::FindAndReplaceRequest;
using QVTest::DrivenDialog;
namespace Option = QVFindAndReplace::Option;

/// The texts as they ship.
Ui::HostTexts TextsOf(const wchar_t* language) {
    const auto texts = std::make_shared<QVHost::LanguageTexts>();
    std::string bytes;
    EXPECT_EQ(QVHost::ReadWholeFile(std::wstring(Win32::FolderOf(QV_HOST_PROGRAM)) + L"\\" + language, bytes), 0u);
    EXPECT_TRUE(texts->Read(bytes).empty());
    return [texts](Quorvane::SDK::TextId id) { return texts->Find(L"", id); };
}

TEST(FindAndReplaceRules, SayWhyARequestCannotStart) {
    const wchar_t* const kShort = L"Find match are too short. Atleast one character need";
    const wchar_t* const kFew = L"To few find items. Atleast one must be set";
    const struct {
        const char* why;
        FindAndReplaceRequest request;
        std::wstring reason;  // how it begins; "" when it can start
        std::vector<std::wstring> files = {L"C:\\a.txt"};
    } cases[] = {
        {"a text is enough", {L"a", L"", Option::ModeOne, L""}, L""},
        {"nothing to find", {L"", L"", Option::ModeOne, L""}, kShort},
        {"nothing to find, and the run would say nothing", {L"", L"b", Option::ModeOne, L""}, L"There is no text"},
        {"one looks for the first line", {L"\r\na", L"b", Option::ModeOne, L""}, L"There is no text"},
        {"many without any", {L"", L"b", Option::ModeMany, L""}, kFew},
        {"counts agree, a last break opens no item", {L"a\r\nb\r\n", L"x\r\ny", Option::ModeMany, L""}, L""},
        {"lines", {L"", L"x", Option::ModeMultiline, L""}, kFew},
        {"a bad wildcard", {L"x{2", L"y", Option::ModeOne | Option::Wildcard, L""}, L"This wildcard"},
        {"braces are text without wildcards", {L"x{2", L"y", Option::ModeOne, L""}, L""},
        {"many use each", {L"a\r\n{", L"y\r\nz", Option::ModeMany | Option::Wildcard, L""}, L"This wildcard"},
        {"no name to save as", {L"a", L"", Option::ModeOne | Option::SaveAs, L""}, L"Save as needs"},
        {"a path is no name", {L"a", L"", Option::ModeOne | Option::SaveAs, L"x\\*.*"}, L"A file name has none"},
        {"a pattern is one", {L"a", L"", Option::ModeOne | Option::SaveAs, L"*_new.*"}, L""},
        {"one name for one file", {L"a", L"", Option::ModeOne | Option::SaveAs, L"x.txt"}, L""},
        {"one name for several",
         {L"a", L"", Option::ModeOne | Option::SaveAs, L"x.*"},
         L"Several files would be saved as x.TXT.",
         {L"C:\\a.txt", L"C:\\b.c", L"C:\\B.TXT"}},
        {"one name in each folder", {L"a", L"", Option::ModeOne | Option::SaveAs, L"x"}, L"", {L"C:\\a", L"C:\\d\\a"}},
        {"other targets take no name", {L"a", L"", Option::ModeOne | Option::KeepBackup, L"?"}, L""},
    };
    for (const auto& c : cases) {
        const std::wstring reason = FileUtils::WhyNotStart(c.request, c.files);
        EXPECT_EQ(reason.substr(0, c.reason.size()), c.reason) << c.why;
        EXPECT_EQ(reason.empty(), c.reason.empty()) << c.why;
    }
}

/// One dialog opens with what another gave back.
TEST(FindAndReplaceDlg, FillsARequestThatCanStartAndOpensWithIt) {
    std::optional<FindAndReplaceRequest> request = FindAndReplaceRequest();
    const auto show = [&](const std::function<void(const DrivenDialog&)>& person) {
        FileUtils::FindAndReplaceDlg dialog(QVTest::EchoTexts(), {L"C:\\a.txt", L"C:\\b.txt"}, *request);
        QVTest::WhileShown(L"Find and Replace in file(s)", person, [&] { request = dialog.Show(nullptr); });
        ASSERT_TRUE(request);
    };
    show([](const DrivenDialog& dialog) {
        EXPECT_FALSE(dialog.IsEnabled(IDOK));
        EXPECT_EQ(dialog.Text(IDC_REASON), L"Find match are too short. Atleast one character need");
        SendMessageW(dialog.Window(), WM_COMMAND, IDOK, 0);  // a disabled button is no reason to trust
        EXPECT_TRUE(IsWindow(dialog.Window()));
        EXPECT_EQ(dialog.Selected(IDC_TARGET), 1);
        EXPECT_EQ(dialog.Selected(IDC_MODE), 0);
        dialog.Enter(IDC_FIND, L"a{");
        EXPECT_TRUE(dialog.IsEnabled(IDOK));
        dialog.Check(IDC_WILDCARD, true);
        EXPECT_FALSE(dialog.IsEnabled(IDOK));
        dialog.Select(IDC_MODE, 3);
        dialog.Check(IDC_IGNORE_CASE, true);
        dialog.Select(IDC_TARGET, 0);
        EXPECT_TRUE(dialog.IsEnabled(IDC_FILE_NAME));
        EXPECT_EQ(dialog.Text(IDC_FILE_NAME), L"*_new.*");
        dialog.Enter(IDC_FILE_NAME, L"*.mine");
        for (const int target : {1, 0}) dialog.Select(IDC_TARGET, target);
        dialog.PressAndClose(IDOK);
    });
    EXPECT_EQ(request->options, Option::SaveAs | Option::ModeMultiline | Option::Wildcard | Option::IgnoreCase);
    EXPECT_EQ(request->targetPattern, L"*.mine");
    const uint32_t options = Option::DropBackup | Option::ModeMany | Option::Wildcard | Option::IgnoreCase |
                             Option::ForceUtf8 | Option::Silent | Option::RegularExpression | Option::ReplaceAll;
    request = {L"a\nb", L"x\r\ny", options, L"n.*"};
    show([](const DrivenDialog& dialog) {
        EXPECT_EQ(dialog.Entries(IDC_TARGET), (std::vector<std::wstring>{L"508d", L"428d", L"429d"}));
        EXPECT_EQ(dialog.Entries(IDC_MODE), (std::vector<std::wstring>{L"511d", L"512d", L"513d", L"514d"}));
        EXPECT_EQ(dialog.Selected(IDC_TARGET), 2);
        EXPECT_EQ(dialog.Selected(IDC_MODE), 1);
        EXPECT_EQ(dialog.Text(IDC_FIND), L"a\r\nb");
        EXPECT_FALSE(dialog.IsEnabled(IDC_FILE_NAME));
        EXPECT_FALSE(dialog.IsVisible(IDC_REPLACE_ALL));
        EXPECT_EQ(dialog.Focus(), IDC_FIND);
        dialog.PressAndClose(IDOK);
    });
    EXPECT_EQ(request->options, options);
    EXPECT_EQ(request->find + request->replacement, L"a\r\nbx\r\ny");
}

TEST(FindAndReplaceRules, TellWhatACountSays) {
    const Ui::HostTexts english = TextsOf(L"qvhost-english.txt");
    const auto line = [&](size_t files, const FileUtils::CountSummary& count, const wchar_t* find = L"a",
                          uint32_t options = 0) {
        return FileUtils::DescribeCount(english, {find, L"", options}, files, count);
    };
    const FileUtils::CountSummary much = {.matches = 12, .filesWithMatches = 3, .notText = 1, .utf8 = 2};
    EXPECT_EQ(line(3, {}), L"No match.");
    EXPECT_EQ(line(1, {.matches = 1, .filesWithMatches = 1}), L"1 match in this file.");
    EXPECT_EQ(line(5, much), L"12 matches in 3 of 5 files. 1 file is not text. 2 files hold UTF-8: tick Force UTF8.");
    EXPECT_EQ(FileUtils::DescribeCount(TextsOf(L"qvhost-german.txt"), {L"a"}, 5, much),
              L"12 Treffer in 3 von 5 Dateien. 1 Datei ist kein Text. 2 Dateien enthalten UTF-8: \"Als UTF-8 lesen\" "
              L"ankreuzen.");
    EXPECT_EQ(line(2, {.matches = 9,
                       .filesWithMatches = 1,
                       .loneBreaks = 1,
                       .mixedBreaks = 2,
                       .failed = 1,
                       .failure = "Bad",
                       .isWhole = false}),
              L"At least 9 matches in 1 of 2 files. 1 file would fail: Bad. 1 file loses its lone line ends (CR). "
              L"Line ends become one kind in 2 files.");
    const FileUtils::CountSummary eightBit = {.eightBit = 1};
    constexpr uint32_t kWildcard = Option::IgnoreCase | Option::Wildcard;
    EXPECT_EQ(line(1, eightBit, L"a", Option::IgnoreCase),
              L"No match. Ignore case has no effect in 8-bit text without wildcards.");
    EXPECT_EQ(line(1, eightBit, L"\xE4", kWildcard), L"No match. In 8-bit text the case of A to Z alone is ignored.");
    EXPECT_EQ(line(1, eightBit, L"1", Option::IgnoreCase) + line(1, eightBit, L"a", kWildcard), L"No match.No match.");
    const std::tuple<FindAndReplaceRequest, std::wstring> unused[] = {
        {{L"a\r\nb", L"c", Option::ModeOne}, L"548d"},
        {{L"a", L"b\nc", Option::ModeOne}, L"548d"},
        {{L"a\r\n", L"c", Option::ModeOne}, L""},
        {{L"a\nb", L"c\nd", Option::ModeManySame}, L"549d"},
        {{L"a\nb", L"c\nd", Option::ModeMultiline}, L""},
        {{L"a", L"c", Option::ModeMultiline | Option::Wildcard}, L"550d"},
    };
    for (const auto& [request, said] : unused) EXPECT_EQ(FileUtils::DescribeUnused(QVTest::EchoTexts(), request), said);
}

/// The dialog counts what it shows, over real files, while it can be started all the time.
TEST(FindAndReplaceDlg, CountsWhatTheRequestWouldDo) {
    const QVTest::TemporaryFolder folder;
    const std::vector<std::wstring> files = {folder.Write(L"a.txt", "foo bar foo\n"), folder.Write(L"b.txt", "bar\n"),
                                             folder.Write(L"c.txt", "W\xC3\xB6rter foo\r\n"),
                                             folder.Write(L"d.bin", "foo\x01\x02\x03\x04\x05")};
    const QVTest::Contents before = folder.ReadAll();
    FileUtils::FindAndReplaceDlg dialog(TextsOf(L"qvhost-english.txt"), files, {L"bar", L"x", Option::ModeOne, L""});
    QVTest::WhileShown(
        L"Find and Replace in file(s)",
        [](const DrivenDialog& shown) {
            const auto expectLine = [&](const std::wstring& line) {
                EXPECT_TRUE(shown.IsEnabled(IDOK));
                EXPECT_TRUE(QVTest::WaitUntil([&] { return shown.Text(IDC_REASON) == line; }));
                EXPECT_EQ(shown.Text(IDC_REASON), line);
            };
            expectLine(L"2 matches in 2 of 4 files. 1 file is not text.");
            shown.Enter(IDC_FIND, L"foo\r\nx");
            expectLine(L"3 matches in 2 of 4 files. 1 file is not text. Only the first lines are used in this mode.");
            shown.Enter(IDC_FIND, L"W\xF6rter");
            expectLine(L"No match. 1 file is not text. 1 file holds UTF-8: tick Force UTF8.");
            shown.Check(IDC_FORCE_UTF8, true);
            expectLine(L"1 match in 1 of 4 files. 1 file is not text.");
            shown.Enter(IDC_FIND, L"");
            EXPECT_FALSE(shown.IsEnabled(IDOK));
            shown.PressAndClose(IDCANCEL);
        },
        [&] { dialog.Show(nullptr); });
    EXPECT_EQ(folder.ReadAll(), before);
}

}  // namespace
