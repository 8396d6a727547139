#include "linesorter/sort_lines.h"

#include <algorithm>
#include <random>

#include "fuzz/plain_order.h"
#include "linesorter/sample_lines.h"

namespace {

using namespace QVFuzz;
using QVTest::As;

template <class CharT>
void ExpectThePlainOrder(const Lines<CharT>& lines, const char* what) {
    const auto dateFormat = As<CharT>("%d.%m.%y");
    for (const KeyRule<CharT>& rule : KeyRules<CharT>())
        for (const uint32_t order : kOrders)
            for (const uint32_t reverse : {0u, Option::Reverse}) {
                SortRequest request;
                request.options = order | reverse;
                auto data = Load(lines);
                CutKeys(data, rule);
                Sort(data, request, dateFormat);
                ASSERT_EQ(Texts(data), SortedPlainly(lines, request, rule, dateFormat))
                    << what << ", options " << std::hex << request.options << ", key rule " << int(rule.kind);
            }
}

TEST(SortLines, GivesThePlainOrderForEveryKeyAndOrder) {
    QVTest::InBothWidths([]<class CharT>(CharT) {
        auto letters = As<CharT>("aAbBzZ-_'.,019 \t\xE9\xC9\xE4\xDF\xF1\xB2\xE6oe");
        if constexpr (sizeof(CharT) > 1) letters += L"\x4E2D\x0130\xFF21\x0301\x0436";
        ExpectThePlainOrder(QVTest::SampleLines<CharT>(400, 1, letters, 20), "all kinds of lines");
        auto alike = QVTest::SampleLines<CharT>(300, 5, letters, 90);
        for (auto& line : alike) line.insert(0, As<CharT>("what all lines begin with "));
        ExpectThePlainOrder(alike, "lines that begin alike");
        ExpectThePlainOrder(QVTest::SampleLines<CharT>(200, 2, letters + CharT(0), 20), "zero characters");
        auto beginnings = QVTest::SampleLines<CharT>(400, 3, As<CharT>("abAB"), 12);
        for (size_t at = 7; at < 400; at += 99) (beginnings[at] += CharT(0)) += CharT('b');
        ExpectThePlainOrder(beginnings, "lines that begin others");
        std::ranges::shuffle(beginnings, std::minstd_rand(1));
        ExpectThePlainOrder(beginnings, "the same shuffled");
        // A hyphen's place is weighed last, as a number whose second byte is zero here; what differs comes after it.
        Lines<CharT> hyphens;
        for (size_t i = 0; i < 40; ++i) {
            std::basic_string<CharT> line(401, CharT('a'));
            line.insert(255, 1, CharT('-'));
            line.insert(257 + i * 17 % 140, 1, CharT('-'));
            hyphens.push_back(line);
        }
        ExpectThePlainOrder(hyphens, "hyphens in long lines");
        ExpectThePlainOrder(Lines<CharT>(), "no line");
        ExpectThePlainOrder(Lines<CharT>(3), "empty lines");

        QVTest::Random random(3);
        Lines<CharT> dates;
        const auto below = [&](uint32_t limit) { return std::to_string(random.Below(limit)) + "."; };
        for (int i = 0; i < 300; ++i)
            dates.push_back(As<CharT>(below(32) + below(14) + below(100) + "," + below(9) + below(9) + "99"));
        ExpectThePlainOrder(dates, "dates");
    });
}

// Enough lines that only the beginnings' sort keys are made.
TEST(SortLines, SortKeysOfBeginningsGiveThePlainOrder) {
    QVTest::InBothWidths([]<class CharT>(CharT) {
        for (const char* letters : {"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ 01",
                                    "abcdefghijklmnopqrstuvwxyz0123456789;,.:_!?#$%&()*+/<=>@[]^{|}~\"",
                                    "abcdefghijklmnopqrstABCDEFGHIJ -'01239\xE9\xDF"}) {
            const auto lines = QVTest::SampleLines<CharT>(6000, 4, As<CharT>(letters), 24);
            for (const uint32_t natural : {0u, Option::NaturalNumbers}) {
                SortRequest request;
                request.options = kLanguage | natural;
                const auto expected = SortedPlainly(lines, request, KeyRule<CharT>(), {});
                for (const uint32_t threads : {0u, 3u}) {
                    auto data = Load(lines);
                    Sort(data, request, {}, threads);
                    ASSERT_TRUE(Texts(data) == expected) << "with " << threads << " threads";
                }
            }
        }
    });
}

TEST(SortLines, KeepsTopAndBottomAndNeverOverflows) {
    const Lines<char> lines = {"d", "", "c", "b", "", "a"};
    const struct {
        const char* why;
        uint32_t top, bottom, options;
        Lines<char> expected;
    } cases[] = {
        {"empty keys come first", 0, 0, 0, {"", "", "a", "b", "c", "d"}},
        {"only the middle is reversed", 1, 1, Option::Reverse, {"d", "c", "b", "", "", "a"}},
        {"blank lines go from the middle only", 2, 1, Option::RemoveBlankLines, {"d", "", "b", "c", "a"}},
        {"more on top than there is", 4294967295, 4294967295, Option::RemoveBlankLines, lines},
    };
    for (const auto& c : cases) {
        SortRequest request;
        request.keepTop = c.top;
        request.keepBottom = c.bottom;
        request.options = Option::AsText | c.options;
        auto data = Load(lines);
        Sort(data, request, {});
        if (request.Has(Option::RemoveBlankLines)) RemoveBlankLines(data, request);
        EXPECT_EQ(Texts(data), c.expected) << c.why;
    }
}

}  // namespace
