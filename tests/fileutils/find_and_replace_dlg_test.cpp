#include "fileutils/find_replace/find_and_replace_dlg.h"

#include <gtest/gtest.h>

#include "fileutils/fileutils_resource.h"
#include "support/dialog_driver.h"
#include "ui/host_texts.h"

namespace {

using FileUtils::FindAndReplaceRequest;
using QVTest::DrivenDialog;
namespace Option = QVFindAndReplace::Option;

TEST(FindAndReplaceRules, SayWhyARequestCannotStart) {
    const wchar_t* const kShort = L"Find match are too short. Atleast one character need";
    const wchar_t* const kFew = L"To few find items. Atleast one must be set";
    const struct {
        const char* why;
        FindAndReplaceRequest request;
        std::wstring reason;  // how it begins; "" when it can start
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
        {"other targets take no name", {L"a", L"", Option::ModeOne | Option::KeepBackup, L"?"}, L""},
    };
    for (const auto& c : cases) {
        const std::wstring reason = FileUtils::WhyNotStart(c.request);
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
        EXPECT_TRUE(dialog.IsEnabled(IDOK) && dialog.Text(IDC_REASON).empty());
        dialog.Check(IDC_WILDCARD, true);
        EXPECT_FALSE(dialog.IsEnabled(IDOK));
        dialog.Select(IDC_MODE, 3);
        dialog.Check(IDC_IGNORE_CASE, true);
        dialog.Select(IDC_TARGET, 0);
        EXPECT_TRUE(dialog.IsEnabled(IDC_FILE_NAME));
        EXPECT_EQ(dialog.Text(IDC_FILE_NAME), L"*_new.*");
        dialog.Enter(IDC_FILE_NAME, L"mine.txt");
        for (const int target : {1, 0}) dialog.Select(IDC_TARGET, target);
        dialog.PressAndClose(IDOK);
    });
    EXPECT_EQ(request->options, Option::SaveAs | Option::ModeMultiline | Option::Wildcard | Option::IgnoreCase);
    EXPECT_EQ(request->targetPattern, L"mine.txt");
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

}  // namespace
