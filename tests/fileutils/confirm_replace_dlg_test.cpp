#include "fileutils/find_replace/confirm_replace_dlg.h"

#include <atomic>

#include <gtest/gtest.h>

#include "fileutils/fileutils_resource.h"
#include "support/dialog_driver.h"

namespace {

using FileUtils::ConfirmQuestion;
using QVTest::DrivenDialog;
namespace Answer = QVFindAndReplace::Answer;

constexpr wchar_t kWord[] = L"\u00E9t\u00E9";
constexpr wchar_t kWordInCodePage[] = L"\u00C3\u00A9t\u00C3\u00A9";

ConfirmQuestion Question(const std::wstring& before, const std::wstring& match, const std::wstring& after) {
    ConfirmQuestion question;
    question.fileName = L"C:\\letters\\order.txt";
    question.context = before + match + after;
    question.replacement = L"new";
    question.match.startLine = question.match.endLine = 11;
    question.match.contextOffset = static_cast<uint32_t>(before.size());
    question.match.contextLength = static_cast<uint32_t>(match.size());
    return question;
}

/// An 8-bit question: a word of UTF-8, also taken for one of the code page.
ConfirmQuestion NarrowQuestion() {
    const std::string word = "\xC3\xA9t\xC3\xA9";
    ConfirmQuestion question = Question(std::wstring(kWordInCodePage) + L" ", kWordInCodePage, L"!");
    question.kind = QVUtils::EncodingKind::Utf8;
    question.rawContext = word + " " + word + "!";
    question.rawReplacement = word;
    question.replacement = kWordInCodePage;
    question.rawOffset = static_cast<uint32_t>(word.size() + 1);
    question.rawLength = static_cast<uint32_t>(word.size());
    return question;
}

std::wstring MatchIn(const FileUtils::MatchView& view) {
    return view.context.substr(view.matchOffset, view.matchLength);
}

TEST(MatchView, CutsLongLinesAroundTheMatchAndNotAtIt) {
    const std::wstring longText(1000, L'x');
    std::wstring pairs;
    for (int i = 0; i < 500; ++i) pairs += L"\xD83D\xDE00";
    const struct {
        const char* why;
        std::wstring before, match, after, context, marked;
    } cases[] = {
        {"all of it fits", L"a\r\nb ", L"match", L" c\r\nd", L"a\r\nb match c\r\nd", L"match"},
        {"a line that is too long", longText, L"match", longText,
         L"\u2026" + std::wstring(60, L'x') + L"match" + std::wstring(120, L'x') + L"\u2026", L"match"},
        {"a match that is too long", L"a", longText, L"b", L"a" + std::wstring(400, L'x') + L"\u2026b",
         std::wstring(400, L'x') + L"\u2026"},
        {"long lines around", longText + L"\r\n", L"m", L"\r\n" + longText,
         std::wstring(200, L'x') + L"\u2026\r\nm\r\n" + std::wstring(200, L'x') + L"\u2026", L"m"},
        {"characters of two units stay whole", L"a" + pairs, L"m", L"", L"\u2026" + pairs.substr(0, 60) + L"m", L"m"},
    };
    for (const auto& c : cases) {
        const FileUtils::MatchView view = FileUtils::ViewOf(Question(c.before, c.match, c.after), false);
        EXPECT_EQ(view.context, c.context) << c.why;
        EXPECT_EQ(MatchIn(view), c.marked) << c.why;
    }
    ConfirmQuestion cut = NarrowQuestion();  // a zero byte ended the context before the match
    cut.rawContext.resize(3);
    EXPECT_EQ(MatchIn(FileUtils::ViewOf(cut, true)), L"");
}

/// As if pressed on the keyboard, with the focus on Replace.
void Type(const DrivenDialog& shown, UINT message, WPARAM key) {
    PostMessageW(shown.Control(IDOK), message, key, message == WM_SYSCHAR ? 1 << 29 : 1);
}

/// One window asks about each match; the person looks, changes the reading, moves it, and answers.
TEST(ConfirmReplaceDlg, IsOneWindowForARunAndTakesEachAnswer) {
    const HWND panel =
        CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    // In front is a window of the host that is not owned by its main window.
    const HWND front =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    SetActiveWindow(front);
    FileUtils::ConfirmReplaceDlg dialog(panel);
    const ConfirmQuestion plain = Question(L"one\r\nthe ", L"match", L" here");
    ConfirmQuestion narrow = NarrowQuestion();
    narrow.fileNumber = narrow.fileCount = narrow.matchNumber = 2;
    HWND window = nullptr;
    RECT moved = {};
    std::vector<uint32_t> answers;
    QVTest::WhileShown(
        L"Confirm Replace",
        [&](const DrivenDialog& shown) {
            window = shown.Window();
            EXPECT_FALSE(IsWindowEnabled(panel) || IsWindowEnabled(front));
            EXPECT_EQ(GetWindow(window, GW_OWNER), front);
            EXPECT_EQ(shown.Text(IDC_MATCH_FILE), L"C:\\letters\\order.txt");
            EXPECT_EQ(shown.Text(IDC_MATCH_FILE_LABEL), L"F&ile 1 of 1:");
            EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT_LABEL), L"&Match 1 in line 12:");
            EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT), L"one\r\nthe match here");
            EXPECT_EQ(shown.Text(IDC_MATCH_REPLACEMENT), L"new");
            const HWND context = shown.Control(IDC_MATCH_CONTEXT);
            EXPECT_EQ(SendMessageW(context, EM_GETSEL, 0, 0), MAKELRESULT(9, 14));
            EXPECT_TRUE(GetWindowLongW(context, GWL_STYLE) & ES_NOHIDESEL);
            EXPECT_FALSE(shown.IsEnabled(IDC_SWITCH_UTF8)) << "UTF-16 reads in one way only";
            EXPECT_TRUE(QVTest::WaitUntil([&] { return shown.Focus() == IDOK; }));
            GetWindowRect(shown.Window(), &moved);
            OffsetRect(&moved, -40, -30);
            SetWindowPos(shown.Window(), nullptr, moved.left, moved.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
            Type(shown, WM_CHAR, L'a');  // a letter without Alt presses nothing
            shown.PressLater(IDOK);
            EXPECT_TRUE(QVTest::WaitUntil([&] { return shown.Text(IDC_MATCH_FILE_LABEL) == L"F&ile 2 of 2:"; }));
            EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT_LABEL), L"&Match 2 in line 12:");
            const auto expectReading = [&](const std::wstring& word) {
                EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT), word + L" " + word + L"!");
                EXPECT_EQ(shown.Text(IDC_MATCH_REPLACEMENT), word);
                shown.Press(IDC_SWITCH_UTF8);
            };
            for (const wchar_t* word : {kWord, kWordInCodePage, kWord}) expectReading(word);
            shown.PressLater(IDC_ANSWER_FIND_NEXT);
        },
        [&] {
            answers = {dialog.Ask(plain), dialog.Ask(narrow)};
        });
    EXPECT_EQ(answers, (std::vector<uint32_t>{Answer::Replace, Answer::FindNext}));
    EXPECT_TRUE(IsWindow(window));
    dialog.Close();
    EXPECT_TRUE(!IsWindow(window) && IsWindowEnabled(panel) && IsWindowEnabled(front));
    DestroyWindow(front);
    for (const auto& [button, answer] :
         {std::pair{IDC_ANSWER_REPLACE_ALL, Answer::ReplaceAll}, {IDCANCEL, Answer::Cancel}})
        QVTest::WhileShown(
            L"Confirm Replace",
            [&, pressed = button](const DrivenDialog& shown) {
                RECT now = {};
                GetWindowRect(shown.Window(), &now);
                EXPECT_TRUE(EqualRect(&now, &moved));
                shown.PressAndClose(pressed);
            },
            [&, expected = answer] { EXPECT_EQ(dialog.Ask(plain), expected); });
    DestroyWindow(panel);
}

/// All keys come while the first match is shown, and others take some of them from the queue.
TEST(ConfirmReplaceDlg, LosesNoKeyThatComesBeforeTheNextQuestion) {
    FileUtils::ConfirmReplaceDlg dialog(nullptr);
    ConfirmQuestion first = Question(L"the ", L"match", L" here");
    ConfirmQuestion second = first;
    second.fileNumber = 2;
    std::vector<uint32_t> answers;
    std::atomic<bool> isTyped = false;
    QVTest::WhileShown(
        L"Confirm Replace",
        [&](const DrivenDialog& shown) {
            for (int i = 0; i < 5; ++i) Type(shown, WM_KEYDOWN, VK_RETURN);
            for (const wchar_t key : {L'f', L'k', L'k', L'f'}) Type(shown, WM_SYSCHAR, key);
            Type(shown, WM_KEYDOWN, VK_RETURN);
            isTyped = true;
        },
        [&] {
            answers.push_back(dialog.Ask(first));
            EXPECT_TRUE(QVTest::WaitUntil([&] { return isTyped.load(); }));
            const auto countIs = [&](size_t count) { return answers.size() == count; };
            // A progress window of the host, which knows nothing of keys of other windows; then a message about the
            // file.
            MSG message = {};
            for (int i = 0; i < 2; ++i) {
                PeekMessageW(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE);
                DispatchMessageW(&message);
            }
            dialog.Close();
            while (!countIs(7)) answers.push_back(dialog.Ask(first));
            while (!countIs(9)) answers.push_back(dialog.Ask(second));
            EXPECT_FALSE(dialog.IsCancelled());
            PostMessageW(FindWindowW(L"#32770", L"Confirm Replace"), WM_KEYDOWN, VK_ESCAPE, 1);
            EXPECT_TRUE(dialog.IsCancelled());
        });
    std::vector<uint32_t> expected(5, Answer::Replace);
    // The second "Skip File" was pressed for the file that was over with the first.
    expected.insert(expected.end(), {Answer::FindNext, FileUtils::kSkipFile, Answer::FindNext, Answer::Replace});
    EXPECT_EQ(answers, expected);
}

}  // namespace
