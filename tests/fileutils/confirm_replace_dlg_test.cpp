#include "fileutils/find_replace/confirm_replace_dlg.h"

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

/// One dialog asks about three matches; the person looks, changes the reading, moves it, and answers.
TEST(ConfirmReplaceDlg, ShowsEachMatchWhereItWasAndTakesEachAnswer) {
    FileUtils::ConfirmReplaceDlg dialog(nullptr);
    const auto ask = [&](const ConfirmQuestion& question, const std::function<void(const DrivenDialog&)>& person) {
        uint32_t answer = 0;
        QVTest::WhileShown(L"Confirm Replace", person, [&] { answer = dialog.Ask(question); });
        return answer;
    };
    RECT moved = {};
    const ConfirmQuestion plain = Question(L"one\r\nthe ", L"match", L" here");
    EXPECT_EQ(ask(plain,
                  [&](const DrivenDialog& shown) {
                      EXPECT_EQ(shown.Text(IDC_MATCH_FILE), L"C:\\letters\\order.txt");
                      EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT_LABEL), L"&Match in line 12:");
                      EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT), L"one\r\nthe match here");
                      EXPECT_EQ(shown.Text(IDC_MATCH_REPLACEMENT), L"new");
                      const HWND context = shown.Control(IDC_MATCH_CONTEXT);
                      EXPECT_EQ(SendMessageW(context, EM_GETSEL, 0, 0), MAKELRESULT(9, 14));
                      EXPECT_TRUE(GetWindowLongW(context, GWL_STYLE) & ES_NOHIDESEL);
                      EXPECT_FALSE(shown.IsEnabled(IDC_SWITCH_UTF8)) << "UTF-16 reads in one way only";
                      EXPECT_EQ(shown.Focus(), IDOK);
                      GetWindowRect(shown.Window(), &moved);
                      OffsetRect(&moved, -40, -30);
                      SetWindowPos(shown.Window(), nullptr, moved.left, moved.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
                      shown.PressAndClose(IDOK);
                  }),
              Answer::Replace);
    EXPECT_EQ(ask(NarrowQuestion(),
                  [&](const DrivenDialog& shown) {
                      RECT now = {};
                      GetWindowRect(shown.Window(), &now);
                      EXPECT_TRUE(EqualRect(&now, &moved));
                      const auto expectReading = [&](const std::wstring& word) {
                          EXPECT_EQ(shown.Text(IDC_MATCH_CONTEXT), word + L" " + word + L"!");
                          EXPECT_EQ(shown.Text(IDC_MATCH_REPLACEMENT), word);
                          shown.Press(IDC_SWITCH_UTF8);
                      };
                      for (const wchar_t* word : {kWord, kWordInCodePage, kWord}) expectReading(word);
                      shown.PressAndClose(IDC_ANSWER_FIND_NEXT);
                  }),
              Answer::FindNext);
    const auto press = [](int button) { return [=](const DrivenDialog& shown) { shown.PressAndClose(button); }; };
    EXPECT_EQ(ask(plain, press(IDC_ANSWER_REPLACE_ALL)), Answer::ReplaceAll);
    EXPECT_EQ(ask(plain, press(IDCANCEL)), Answer::Cancel);
}

}  // namespace
