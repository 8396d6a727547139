#include "findreplace/matching.h"

#include <algorithm>
#include <regex>

#include "findreplace/recording_callback.h"
#include "support/small_texts.h"
#include "support/string_writer.h"

using namespace QVFindAndReplace;
using namespace QVTest;
using namespace std::string_literals;
using QVUtils::EncodingKind;

namespace {

struct Outcome {
    std::string text;  // the saved text, narrowed
    uint64_t changes = 0;
    std::string error;  // its text, when it failed
    uint32_t code = 0;
};

/// Applies a request to a text and saves what came of it.
template <class CharT>
Outcome Apply(const std::string& text, uint32_t options, const std::wstring& find, const std::wstring& replacement,
              IFindAndReplaceCallback* callback = nullptr) {
    std::basic_string<CharT> wide;
    for (const char unit : text) wide += static_cast<CharT>(static_cast<unsigned char>(unit));
    TextDocumentT<CharT> document(sizeof(CharT) == 1 ? EncodingKind::CodePage : EncodingKind::Utf16);
    document.GetLines().Reset(wide);
    Request request(options, find, replacement, ToNarrow);
    Outcome outcome;
    try {
        outcome.changes = FindAndReplace(document, request, callback);
    } catch (const QVUtils::QVUtilsException& failure) {
        outcome.error = failure.what();
        outcome.code = failure.GetErrorCode();
        return outcome;
    }
    QVTest::StringWriter writer;
    auto style = QVUtils::LineBreak::None;
    document.GetLines().Save(writer, style);
    const auto* const units = reinterpret_cast<const CharT*>(writer.text.data());
    for (size_t i = 0; i < writer.text.size() / sizeof(CharT); ++i) outcome.text += static_cast<char>(units[i]);
    return outcome;
}

template <class CharT>
class Matching : public testing::Test {};
using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Matching, Widths);

constexpr uint32_t kOne = Option::ModeOne;
constexpr uint32_t kMany = Option::ModeMany;
constexpr uint32_t kManySame = Option::ModeManySame;
constexpr uint32_t kMultiline = Option::ModeMultiline;
constexpr uint32_t kWildcard = Option::Wildcard;
constexpr uint32_t kIgnoreCase = Option::IgnoreCase;

}  // namespace

/// Modes within lines, all of them, against the same carried out character by character.
TEST(Matching, InEverySmallTextIsThePlainOne) {
    for (const std::string& text : SmallTexts("abA"))
        for (const std::string pair : {"a\x1E",
                                       "a\x1E"
                                       "ba",
                                       "a\x1E"
                                       "aa",
                                       "ab\x1E"
                                       "a",
                                       "ab\x1E"
                                       "bab",
                                       "aa\x1E"
                                       "b",
                                       "aab\x1E"
                                       "Aab",
                                       "a\nb\x1E"
                                       "b\nab"})
            for (const int shape : {1, 9, 1 + 32}) RunTarget(QVFuzz::RunMatching, {shape}, pair + "\x1E\x1E" + text);
    for (const std::string& text : SmallTexts("ab\r\n"))
        for (const std::string pair : {"a\nb\x1E"
                                       "b\na",
                                       "b\n\x1E"
                                       "\nb\n",
                                       "a\n\nb\x1E"
                                       "b",
                                       "ab\x1E"
                                       "",
                                       "a\nab\x1E"
                                       "bba\n"
                                       "b"})
            for (const int shape : {4, 4 + 32}) RunTarget(QVFuzz::RunMatching, {shape}, pair + "\x1E\x1E" + text);
    for (const std::string& text : SmallTexts(std::string("a\0\nb", 4)))
        for (int shape = 0; shape < 4; ++shape)
            RunTarget(QVFuzz::RunMatching, {shape},
                      "a\nb\x1E"
                      "b\nX\x1E\x1E" +
                          text);
}

TYPED_TEST(Matching, EachModeReplacesItsWay) {
    const struct {
        const char* why;
        uint32_t options;
        std::string text;
        const wchar_t *find, *replacement;
        std::string expected;
        uint32_t changes;
    } cases[] = {
        {"an empty find text does nothing", kOne, "a", L"", L"x", "a", 0},
        {"many wins over same", kMany | kManySame, "a b", L"a\nb", L"1\n2", "1 2", 2},
        {"an empty item among others is passed over", kManySame, "a b", L"a\n\nb", L"x", "x x", 2},
        {"breaks take the style of the first", kOne, "a\r\na\na", L"a", L"b", "b\r\nb\r\nb", 3},
        {"a lone CR is lost", kOne, "a\ra", L"a", L"b", "bb", 2},
        {"wildcards", kOne | kWildcard, "abc   a.c ac", L"a?c", L"x", "x   x ac", 2},
        {"empty hits with nothing to put in", kOne | kWildcard, "ab", L"x{0}", L"", "ab", 3},
        {"a line in its replacement", kOne | kWildcard, "a\nab\nabc\nabcd\n", L"*", L"<*>", "<*>\n<*>\n<*>\n<*>\n", 4},
        {"something at every place", kOne | kWildcard, "ab", L"x{0}", L"y", "yayby", 3},
        {"large counts", kOne | kWildcard, std::string(90'001, 'x'), L"x{90000}", L"y", "yx", 1},
        {"two by one: the last line stays", kMultiline, "1a\nb2\n", L"a\nb", L"x", "1x\nb2\n", 1},
        {"two by three", kMultiline, "1a\nb2\n", L"a\nb", L"x\nn\ny", "1x\nn\ny2\n", 1},
        {"what follows the first item goes", kMultiline, "a tail\nb\n", L"a\nb", L"x\ny", "x\ny\n", 1},
        {"the last must begin its line", kMultiline, "a\n b\n", L"a\nb", L"x\ny", "a\n b\n", 0},
        {"three: whatever the middle holds", kMultiline, "a\nanything\nc\n", L"a\nb\nc", L"x\ny", "x\ny\n", 1},
        {"five: the first middle line counts", kMultiline, "a\nB\n?\n?\ne\n", L"a\nb\nc\nd\ne", L"x", "a\nB\n?\n?\ne\n",
         0},
        {"five: the last two do not", kMultiline, "a\nb\n?\n?\ne\n", L"a\nb\nc\nd\ne", L"x\ny", "x\ny\n", 1},
        {"again from the match's end", kMultiline, "a\nba\nb\n", L"a\nb", L"x\ny", "x\nyx\ny\n", 2},
        {"the table's end", kMultiline, "a\n", L"a\nb", L"x\ny", "a\n", 0},
        {"one line by two: the second follows the line", kMultiline, "1a2\n", L"a", L"x\ny", "1x2\ny\n", 1},
        {"after the last line, which gets no break", kMultiline, "1a2", L"a", L"x\ny", "1x2\ny", 1},
        {"after a lone CR, which is lost", kMultiline, "b\raaz\n", L"b", L"z--\n-y+", "z---y+\naaz\n", 1},
        {"no replacement line counts as an empty one", kMultiline, "1a2\n", L"a", L"", "12\n", 1},
        {"an empty last line fits everywhere", kMultiline, "a\nb\na\nb", L"a\n\n", L"x\ny", "x\nyb\nx\nyb", 2},
        {"an empty first line is found where the search stands", kMultiline, "q\nb\n", L"\nb", L"x\ny", "x\ny\n", 1},
        {"lines that were put there are not searched", kMultiline, "a\n", L"a", L"x\na", "x\na\n", 1},
    };
    for (const auto& c : cases) {
        const auto outcome = Apply<TypeParam>(c.text, c.options, c.find, c.replacement);
        EXPECT_EQ(outcome.text, c.expected) << c.why << " " << outcome.error;
        EXPECT_EQ(outcome.changes, c.changes) << c.why;
    }
}

TYPED_TEST(Matching, ManyMatchesStayLinear) {
    std::string text;
    for (int i = 0; i < 300'000; ++i) text += "a\nb\n";
    EXPECT_EQ(Apply<TypeParam>(text, kMultiline, L"a\nb", L"x\ny").changes, 300'000u);
    EXPECT_EQ(Apply<TypeParam>(text, kMultiline, L"a\n\n", L"x\ny").changes, 300'000u);
    std::ranges::replace(text, '\n', '.');
    const auto longer = Apply<TypeParam>(text, kOne, L"a", L"xya");
    EXPECT_EQ(longer.changes, 300'000u);
    EXPECT_EQ(longer.text.substr(longer.text.size() - 12), "xya.b.xya.b.");
}

TYPED_TEST(Matching, IgnoringCaseMeetsEveryLetterOf16Bits) {
    const bool isWide = sizeof(TypeParam) > 1;
    EXPECT_EQ(Apply<TypeParam>("\xC4pfel", kOne | kIgnoreCase, L"\xE4PFEL", L"x").changes, isWide ? 1u : 0u);
    EXPECT_EQ(Apply<TypeParam>("\xC4pfel", kOne | kIgnoreCase | kWildcard, L"?\xE4PF*", L"x").changes, 0u);
    EXPECT_EQ(Apply<TypeParam>("\xC4pfel", kOne | kIgnoreCase | kWildcard, L"\xE4{1}P*", L"x").text, "x");
}

// Which requests have a fault is the matter of the dialog's tests.
TYPED_TEST(Matching, RefusesWhatCannotWork) {
    const auto outcome = Apply<TypeParam>("ab - a", kMany, L"a\nb", L"x");
    EXPECT_EQ(std::pair(outcome.error, outcome.code), std::pair("Find and Replace item do not match"s, 87u));
    EXPECT_THROW(Apply<TypeParam>("", kOne | kWildcard, L"x{", L"y"), std::regex_error);
}

TEST(Matching, TextsThatTheEncodingCannotHoldAreNeverChangedOnTheWay) {
    EXPECT_EQ(Apply<char>("? 8 a", kOne, L"\x4E2D", L"x").text, "? 8 a");
    EXPECT_EQ(Apply<char>("? 8 a", kOne, L"\x221E", L"x").text, "? 8 a");
    const auto outcome = Apply<char>("a", kOne, L"a", L"\x4E2D");
    EXPECT_EQ(outcome.code, 1113u);
    EXPECT_EQ(Apply<char>("b", kOne, L"a", L"\x4E2D").error, "");
}

TYPED_TEST(Matching, AsksAboutEachMatchUntilAllAreWanted) {
    const struct {
        const char* why;
        std::vector<uint32_t> answers;
        std::string expected;
        uint32_t changes;
        size_t questions;
    } cases[] = {
        {"each", {Answer::Replace}, "xa xa\nxa\n", 3, 3},
        {"the second", {Answer::FindNext, Answer::ReplaceToo, Answer::FindNext}, "a xa\na\n", 1, 3},
        {"all from the second on", {Answer::FindNext, Answer::ReplaceAll}, "a xa\nxa\n", 2, 2},
        {"unknown answers skip", {4}, "a a\na\n", 0, 3},
    };
    for (const auto& c : cases) {
        RecordingCallback callback(c.answers);
        const auto outcome = Apply<TypeParam>("a a\na\n", kOne, L"a", L"xa", &callback);  // nothing is asked about that
        EXPECT_EQ(outcome.text, c.expected) << c.why;
        EXPECT_EQ(outcome.changes, c.changes) << c.why;
        EXPECT_EQ(callback.shown, std::vector<std::string>(c.questions, "a")) << c.why;
    }
}

TYPED_TEST(Matching, QuestionsShowTheMatchAlsoInLinesTooLongToShow) {
    const std::string text = "before\n" + std::string(5000, '.') + "hit" + std::string(5000, '.') + "\nafter\nfar\n";
    RecordingCallback callback({Answer::FindNext});
    Apply<TypeParam>(text, kOne, L"hit", L"x", &callback);
    ASSERT_EQ(callback.shown, std::vector<std::string>{"hit"});
    EXPECT_EQ(callback.matches[0].startLine, 1u);
    EXPECT_EQ(callback.matches[0].startColumn, 5000u);
    EXPECT_EQ(callback.matches[0].endColumn, 5003u);
    EXPECT_LT(callback.matches[0].contextOffset, 1100u);
}

TYPED_TEST(Matching, QuestionsShowTheMatchAlsoAfterZeroCharacters) {
    RecordingCallback callback({Answer::FindNext});
    Apply<TypeParam>(std::string("a\0b\nhit\0c\n", 10), kOne, L"hit", L"x", &callback);
    EXPECT_EQ(callback.shown, std::vector<std::string>{"hit"});
}
