#include "ui/confirm_replace_dlg.h"

#include <gtest/gtest.h>

#include "support/dialog_driver.h"
#include "ui/resource.h"

namespace {

using QVFindAndReplace::ConfirmQuestion;
using QVTest::DialogDriver;
using QVTest::DrivenDialog;
using QVTest::WhileDriving;
using QVUtils::EncodingKind;
namespace Answer = QVFindAndReplace::Answer;

constexpr wchar_t kTitle[] = L"Confirm Replace";

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

/// An 8-bit question: "\xE9t\xE9" in code page 1252, or the same word in UTF-8.
ConfirmQuestion NarrowQuestion(EncodingKind kind, const std::string& word, const std::wstring& decoded) {
    ConfirmQuestion question = Question(decoded + L" ", decoded, L"!");
    question.kind = kind;
    question.rawContext = word + " " + word + "!";
    question.rawReplacement = word;
    question.replacement = decoded;
    question.rawOffset = static_cast<uint32_t>(word.size() + 1);
    question.rawLength = static_cast<uint32_t>(word.size());
    return question;
}

std::wstring MatchIn(const Ui::MatchView& view) {
    return view.context.substr(view.matchOffset, view.matchLength);
}

TEST(MatchView, CutsLongLinesAroundTheMatchAndNotAtIt) {
    const std::wstring longText(1000, L'x');
    const std::wstring pairs = [] {
        std::wstring text;
        for (int i = 0; i < 500; ++i) text += L"\xD83D\xDE00";
        return text;
    }();
    const struct {
        const char* why;
        std::wstring before, match, after;
        std::wstring context;
        std::wstring marked;
    } cases[] = {
        {"all of it fits", L"a\r\nb ", L"match", L" c\r\nd", L"a\r\nb match c\r\nd", L"match"},
        {"nothing else in the line", L"", L"match", L"", L"match", L"match"},
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
        const Ui::MatchView view = Ui::ViewOf(Question(c.before, c.match, c.after), false);
        EXPECT_EQ(view.context, c.context) << c.why;
        EXPECT_EQ(MatchIn(view), c.marked) << c.why;
    }
}

TEST(MatchView, ReadsBytesAsUtf8OrInTheCodePage) {
    const ConfirmQuestion utf8 = NarrowQuestion(EncodingKind::Utf8, "\xC3\xA9t\xC3\xA9", L"\u00C3\u00A9t\u00C3\u00A9");
    EXPECT_EQ(MatchIn(Ui::ViewOf(utf8, true)), L"\u00E9t\u00E9");
    EXPECT_EQ(Ui::ViewOf(utf8, true).replacement, L"\u00E9t\u00E9");
    EXPECT_EQ(Ui::ViewOf(utf8, true).context, L"\u00E9t\u00E9 \u00E9t\u00E9!");
    EXPECT_EQ(MatchIn(Ui::ViewOf(utf8, false)), L"\u00C3\u00A9t\u00C3\u00A9");
    ConfirmQuestion cut = utf8;  // a zero byte ended the context before the match
    cut.rawContext.resize(3);
    EXPECT_EQ(MatchIn(Ui::ViewOf(cut, true)), L"");
}

TEST(ConfirmReplaceDlg, EachButtonIsAnAnswer) {
    const struct {
        int button;
        uint32_t answer;
    } cases[] = {{IDOK, Answer::Replace},
                 {IDC_ANSWER_REPLACE_ALL, Answer::ReplaceAll},
                 {IDC_ANSWER_FIND_NEXT, Answer::FindNext},
                 {IDCANCEL, Answer::Cancel}};
    Ui::ConfirmReplaceDlg dialog(nullptr);
    for (const auto& c : cases) {
        WhileDriving([&](DialogDriver& driver) { driver.WaitFor(kTitle).PressAndClose(c.button); },
                     [&] { EXPECT_EQ(dialog.Ask(Question(L"a ", L"b", L" c")), c.answer); });
    }
}

TEST(ConfirmReplaceDlg, EnterReplacesAndEscapeCancels) {
    Ui::ConfirmReplaceDlg dialog(nullptr);
    const auto pressing = [](WPARAM key) {
        return [key](DialogDriver& driver) {
            const DrivenDialog shown = driver.WaitFor(kTitle);
            shown.Key(key);
            shown.WaitUntilClosed();
        };
    };
    WhileDriving(pressing(VK_RETURN), [&] { EXPECT_EQ(dialog.Ask(Question(L"", L"b", L"")), Answer::Replace); });
    WhileDriving(pressing(VK_ESCAPE), [&] { EXPECT_EQ(dialog.Ask(Question(L"", L"b", L"")), Answer::Cancel); });
}

TEST(ConfirmReplaceDlg, ShowsTheMatchSelectedWhateverHasTheFocus) {
    Ui::ConfirmReplaceDlg dialog(nullptr);
    const auto person = [](DialogDriver& driver) {
        const DrivenDialog shown = driver.WaitFor(kTitle);
        EXPECT_EQ(shown.Text(IDC_MATCH_FILE), L"C:\\letters\\order.txt");
        EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT_LABEL), L"&Match in line 12:");
        EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT), L"one\r\nthe match here");
        EXPECT_EQ(shown.Text(IDC_MATCH_REPLACEMENT), L"new");
        const LRESULT selection = SendMessageW(shown.Control(IDC_MATCH_CONTEXT), EM_GETSEL, 0, 0);
        EXPECT_EQ(LOWORD(selection), 9);
        EXPECT_EQ(HIWORD(selection), 14);
        EXPECT_TRUE(GetWindowLongW(shown.Control(IDC_MATCH_CONTEXT), GWL_STYLE) & ES_NOHIDESEL);
        EXPECT_FALSE(shown.IsEnabled(IDC_SWITCH_UTF8));  // UTF-16 reads in one way only
        EXPECT_EQ(shown.Focus(), IDOK);
        shown.PressAndClose(IDOK);
    };
    WhileDriving(person, [&] { dialog.Ask(Question(L"one\r\nthe ", L"match", L" here")); });
}

TEST(ConfirmReplaceDlg, SwitchesTheReadingOfBytesAndStaysOpen) {
    Ui::ConfirmReplaceDlg dialog(nullptr);
    const auto person = [](DialogDriver& driver) {
        const DrivenDialog shown = driver.WaitFor(kTitle);
        EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT), L"\u00E9t\u00E9 \u00E9t\u00E9!");
        shown.Press(IDC_SWITCH_UTF8);
        EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT), L"\u00C3\u00A9t\u00C3\u00A9 \u00C3\u00A9t\u00C3\u00A9!");
        EXPECT_EQ(shown.Text(IDC_MATCH_REPLACEMENT), L"\u00C3\u00A9t\u00C3\u00A9");
        shown.Press(IDC_SWITCH_UTF8);
        EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT), L"\u00E9t\u00E9 \u00E9t\u00E9!");
        shown.PressAndClose(IDC_ANSWER_FIND_NEXT);
    };
    const ConfirmQuestion question =
        NarrowQuestion(EncodingKind::Utf8, "\xC3\xA9t\xC3\xA9", L"\u00C3\u00A9t\u00C3\u00A9");
    WhileDriving(person, [&] { EXPECT_EQ(dialog.Ask(question), Answer::FindNext); });
}

TEST(ConfirmReplaceDlg, OpensAgainWhereItWas) {
    Ui::ConfirmReplaceDlg dialog(nullptr);
    RECT moved = {};
    WhileDriving(
        [&](DialogDriver& driver) {
            const DrivenDialog shown = driver.WaitFor(kTitle);
            GetWindowRect(shown.Window(), &moved);
            OffsetRect(&moved, -40, -30);
            SetWindowPos(shown.Window(), nullptr, moved.left, moved.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
            shown.PressAndClose(IDOK);
        },
        [&] { dialog.Ask(Question(L"", L"b", L"")); });
    WhileDriving(
        [&](DialogDriver& driver) {
            const DrivenDialog shown = driver.WaitFor(kTitle);
            RECT now = {};
            GetWindowRect(shown.Window(), &now);
            EXPECT_TRUE(EqualRect(&now, &moved));
            shown.PressAndClose(IDOK);
        },
        [&] { dialog.Ask(Question(L"", L"b", L"")); });
}

}  // namespace
