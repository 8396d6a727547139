#include "findreplace/line_edit.h"

#include <optional>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "findreplace/line_matcher.h"
#include "findreplace/wildcard.h"

using namespace QVFindAndReplace;

namespace {

/// The rules about the position, and about matches in what the last replacement put there, written down literally on a
/// whole string.
std::string ReplaceLiterally(std::string line, LineMatcher<char>& matcher, const std::string& replacement,
                             std::mt19937* skips, int& changes) {
    size_t column = 0;
    std::optional<size_t> putEnd;
    for (Span span; column <= line.size() && changes < 1000;) {
        if (!matcher.Find(std::string_view(line).substr(column), span)) break;
        const size_t start = column + span.start;
        const bool wasAtEnd = start == line.size();
        const size_t step = span.length == 0 ? 1 : 0;
        if (putEnd && column <= *putEnd && start + span.length <= *putEnd) {
            column = column < *putEnd ? *putEnd : column + 1;
            continue;
        }
        column = start + span.length + step;
        if (!skips || (*skips)() % 2) {
            line.replace(start, span.length, replacement);
            ++changes;
            if (!replacement.empty()) putEnd = start + replacement.size();
            if (span.length == 0) column = start + replacement.size() + step;
        }
        if (span.length == 0 && wasAtEnd) break;
    }
    return line;
}

std::string ReplaceByEdit(const std::string& line, LineMatcher<char>& matcher, const std::string& replacement,
                          std::mt19937* skips, int& changes) {
    LineEdit<char> edit;
    edit.Begin(line);
    for (Span span; changes < 1000 && !edit.IsFinished() && matcher.Find(edit.GetAhead(), span);) {
        if (edit.PassReplacement(span)) continue;
        if (!skips || (*skips)() % 2) {
            edit.Replace(span, replacement, matcher);
            ++changes;
        } else {
            edit.Skip(span);
        }
    }
    return edit.GetPart(0, 1'000'000);
}

std::string RandomText(std::mt19937& random, size_t longest, const std::string& units) {
    std::string text;
    for (size_t length = random() % (longest + 1); text.size() < length;) text += units[random() % units.size()];
    return text;
}

}  // namespace

TEST(LineEdit, MovesThePositionAsTheRuleSaysAndAlwaysEnds) {
    std::mt19937 random(2);
    for (int round = 0; round < 60'000; ++round) {
        const std::string line = RandomText(random, 14, "aab");
        const std::string replacement = RandomText(random, 5, "abc");
        const int kind = static_cast<int>(random() % 3);
        const std::string item =
            RandomText(random, 3, kind == 2 ? "ab?*" : "ab") + (kind == 2 && round % 5 == 0 ? "b{0}" : "");
        const auto matcher =
            kind == 2 ? MakeWildcardMatcher<char>(item, false) : MakePlainMatcher<char>(item, kind == 1);
        std::mt19937 skips(static_cast<uint32_t>(round));
        std::mt19937 sameSkips(static_cast<uint32_t>(round));
        const bool withSkips = round % 2 == 0;
        int expectedChanges = 0;
        int changes = 0;
        const std::string expected =
            ReplaceLiterally(line, *matcher, replacement, withSkips ? &skips : nullptr, expectedChanges);
        ASSERT_EQ(ReplaceByEdit(line, *matcher, replacement, withSkips ? &sameSkips : nullptr, changes), expected)
            << line << " find " << item << " replace " << replacement;
        ASSERT_EQ(changes, expectedChanges);
        ASSERT_LT(changes, 1000);
    }
}

TEST(LineEdit, AMillionLongerReplacementsInOneLineStayLinear) {
    std::string line;
    for (int i = 0; i < 1'000'000; ++i) line += "ab";
    const auto matcher = MakePlainMatcher<char>("a", false);
    LineEdit<char> edit;
    edit.Begin(line);
    int changes = 0;
    for (Span span; !edit.IsFinished() && matcher->Find(edit.GetAhead(), span); ++changes)
        edit.Replace(span, "xyz", *matcher);
    EXPECT_EQ(changes, 1'000'000);
    EXPECT_EQ(edit.GetPart(0, 12), "xyzbxyzbxyzb");
    EXPECT_EQ(edit.GetDone().size() + edit.GetAhead().size(), 4'000'000u);
}
