#include "fileutils/find_replace/confirm_replace_dlg.h"

#include <gtest/gtest.h>

#include "fileutils/find_replace/find_replace_resource.h"
#include "support/dialog_driver.h"

namespace {

using FileUtils::ConfirmQuestion;
using QVTest::DrivenDialog;
using QVUtils::EncodingKind;
namespace Answer = QVFindAndReplace::Answer;

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

constexpr wchar_t kAsUtf8[] = L"\u00E9t\u00E9 \u00E9t\u00E9!";
constexpr wchar_t kInCodePage[] = L"\u00C3\u00A9t\u00C3\u00A9 \u00C3\u00A9t\u00C3\u00A9!";

/// An 8-bit question: a word of UTF-8, also taken for one of the code page.
ConfirmQuestion NarrowQuestion() {
    const std::string word = "\xC3\xA9t\xC3\xA9";
    const std::wstring decoded = L"\u00C3\u00A9t\u00C3\u00A9";
    ConfirmQuestion question = Question(decoded + L" ", decoded, L"!");
    question.kind = EncodingKind::Utf8;
    question.rawContext = word + " " + word + "!";
    question.rawReplacement = word;
    question.replacement = decoded;
    question.rawOffset = static_cast<uint32_t>(word.size() + 1);
    question.rawLength = static_cast<uint32_t>(word.size());
    return question;
}

/// What the dialog answers when `person` sits in front of it.
uint32_t Ask(FileUtils::ConfirmReplaceDlg& dialog, const ConfirmQuestion& question,
             const std::function<void(const DrivenDialog&)>& person) {
    uint32_t answer = 0;
    QVTest::WhileShown(L"Confirm Replace", person, [&] { answer = dialog.Ask(question); });
    return answer;
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
        {"an empty match", L"ab", L"", L"cd", L"abcd", L""},
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
}

TEST(MatchView, ReadsBytesAsUtf8OrInTheCodePage) {
    const ConfirmQuestion utf8 = NarrowQuestion();
    EXPECT_EQ(MatchIn(FileUtils::ViewOf(utf8, true)), L"\u00E9t\u00E9");
    EXPECT_EQ(MatchIn(FileUtils::ViewOf(utf8, false)), L"\u00C3\u00A9t\u00C3\u00A9");
    ConfirmQuestion cut = utf8;  // a zero byte ended the context before the match
    cut.rawContext.resize(3);
    EXPECT_EQ(MatchIn(FileUtils::ViewOf(cut, true)), L"");
}

TEST(ConfirmReplaceDlg, EachButtonIsAnAnswerAndSoAreEnterAndEscape) {
    const struct {
        int button;  // 0: the key
        WPARAM key;
        uint32_t answer;
    } cases[] = {
        {IDOK, 0, Answer::Replace},      {IDC_ANSWER_REPLACE_ALL, 0, Answer::ReplaceAll},
        {IDCANCEL, 0, Answer::Cancel},   {IDC_ANSWER_FIND_NEXT, 0, Answer::FindNext},
        {0, VK_RETURN, Answer::Replace}, {0, VK_ESCAPE, Answer::Cancel},
    };
    FileUtils::ConfirmReplaceDlg dialog(nullptr);
    for (const auto& c : cases) {
        const auto person = [&](const DrivenDialog& shown) {
            c.button ? shown.PressLater(c.button) : shown.Key(c.key);
            shown.WaitUntilClosed();
        };
        EXPECT_EQ(Ask(dialog, Question(L"a ", L"b", L" c"), person), c.answer) << c.button << ' ' << c.key;
    }
}

TEST(ConfirmReplaceDlg, ShowsTheMatchSelectedWhateverHasTheFocus) {
    FileUtils::ConfirmReplaceDlg dialog(nullptr);
    Ask(dialog, Question(L"one\r\nthe ", L"match", L" here"), [](const DrivenDialog& shown) {
        EXPECT_EQ(shown.Text(IDC_MATCH_FILE), L"C:\\letters\\order.txt");
        EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT_LABEL), L"&Match in line 12:");
        EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT), L"one\r\nthe match here");
        EXPECT_EQ(shown.Text(IDC_MATCH_REPLACEMENT), L"new");
        EXPECT_EQ(SendMessageW(shown.Control(IDC_MATCH_CONTEXT), EM_GETSEL, 0, 0), MAKELRESULT(9, 14));
        EXPECT_TRUE(GetWindowLongW(shown.Control(IDC_MATCH_CONTEXT), GWL_STYLE) & ES_NOHIDESEL);
        EXPECT_FALSE(shown.IsEnabled(IDC_SWITCH_UTF8));  // UTF-16 reads in one way only
        EXPECT_EQ(shown.Focus(), IDOK);
        shown.PressAndClose(IDOK);
    });
}

TEST(ConfirmReplaceDlg, SwitchesTheReadingOfBytesAndStaysOpen) {
    FileUtils::ConfirmReplaceDlg dialog(nullptr);
    const auto person = [](const DrivenDialog& shown) {
        EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT), kAsUtf8);
        shown.Press(IDC_SWITCH_UTF8);
        EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT), kInCodePage);
        EXPECT_EQ(shown.Text(IDC_MATCH_REPLACEMENT), L"\u00C3\u00A9t\u00C3\u00A9");
        shown.Press(IDC_SWITCH_UTF8);
        EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT), kAsUtf8);
        shown.PressAndClose(IDC_ANSWER_FIND_NEXT);
    };
    EXPECT_EQ(Ask(dialog, NarrowQuestion(), person), Answer::FindNext);
}

TEST(ConfirmReplaceDlg, OpensAgainWhereItWas) {
    FileUtils::ConfirmReplaceDlg dialog(nullptr);
    RECT moved = {};
    Ask(dialog, Question(L"", L"b", L""), [&](const DrivenDialog& shown) {
        GetWindowRect(shown.Window(), &moved);
        OffsetRect(&moved, -40, -30);
        SetWindowPos(shown.Window(), nullptr, moved.left, moved.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        shown.PressAndClose(IDOK);
    });
    Ask(dialog, Question(L"", L"b", L""), [&](const DrivenDialog& shown) {
        RECT now = {};
        GetWindowRect(shown.Window(), &now);
        EXPECT_TRUE(EqualRect(&now, &moved));
        shown.PressAndClose(IDOK);
    });
}

}  // namespace
