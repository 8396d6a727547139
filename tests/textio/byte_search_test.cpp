#include "textio/byte_search.h"

#include <algorithm>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "win32/text.h"

using namespace QVUtils;

namespace {

template <class CharT>
class ByteSearch : public testing::Test {};
using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(ByteSearch, Widths);

template <class CharT>
bool StandsAt(const std::basic_string<CharT>& text, size_t at, const std::basic_string<CharT>& item, bool ignoreCase) {
    const auto fold = [=](CharT unit) {
        if (!ignoreCase) return unit;
        return sizeof(CharT) > 1 && unit == CharT(0xE4) ? CharT(0xC4) : Win32::UpperAscii(unit);
    };
    return std::ranges::equal(text.substr(at, item.size()), item, {}, fold, fold);
}

template <class CharT>
std::basic_string<CharT> RandomText(std::mt19937& random, size_t length) {
    // Few letters, so that beginnings and ends meet often; the characters beside the letters show a wrong case bit.
    static constexpr char kUnits[] = "aAbBzZ@[`{\r\n\xE4\xC4";
    std::basic_string<CharT> text;
    while (text.size() < length)
        text += static_cast<CharT>(static_cast<uint8_t>(kUnits[random() % (sizeof(kUnits) - 1)]));
    return text;
}

}  // namespace

TYPED_TEST(ByteSearch, FindsWhatTheObviousLoopFinds) {
    using CharT = TypeParam;
    std::mt19937 random(1);
    for (int round = 0; round < 20'000; ++round) {
        const auto text = RandomText<CharT>(random, random() % 70);
        auto item = RandomText<CharT>(random, 1 + random() % 4);
        if (random() % 2 == 0 && !text.empty()) {
            // A piece of the text that is there, or would be but for one unit.
            item = text.substr(random() % text.size(), 1 + random() % 20);
            if (random() % 2 == 0) item[random() % item.size()] = CharT('a');
        }
        const bool ignoreCase = random() % 2 == 0;
        const SequenceFinder<CharT> finder(item, ignoreCase ? &PlainCaseFolding<CharT>() : nullptr);
        const CharT* const begin = text.data();
        const CharT* const end = begin + text.size();

        size_t first = text.size();
        size_t last = text.size();
        for (size_t at = 0; at + item.size() <= text.size(); ++at) {
            if (!StandsAt(text, at, item, ignoreCase)) continue;
            if (first == text.size()) first = at;
            last = at;
        }
        ASSERT_EQ(finder.FindFirst(begin, end) - begin, std::ptrdiff_t(first));
        ASSERT_EQ(finder.FindLast(begin, end) - begin, std::ptrdiff_t(last));
        ASSERT_EQ(FindUnit(begin, end, item[0]) - begin, std::ptrdiff_t(std::min(text.find(item[0]), text.size())));
        const CharT breaks[] = {CharT('\r'), CharT('\n'), 0};
        // Pairs all along, and often one that is not whole.
        std::basic_string<CharT> lines;
        while (lines.size() < text.size()) lines += random() % 3 ? CharT('a') : CharT('\n');
        for (size_t at = 0; (at = lines.find(CharT('\n'), at)) != lines.npos; at += 2) lines.insert(at, 1, CharT('\r'));
        if (random() % 2 == 0 && !lines.empty()) lines.erase(random() % lines.size(), 1);
        bool isWhole = lines.empty() || lines.front() != CharT('\n');
        for (size_t at = 0; at < lines.size(); ++at)
            isWhole = isWhole && (lines[at] == CharT('\r')) == (at + 1 < lines.size() && lines[at + 1] == CharT('\n'));
        ASSERT_EQ(HasOnlyCrLf(lines.data(), lines.data() + lines.size()), isWhole);
        ASSERT_EQ(FindLineBreak(begin, end) - begin, std::ptrdiff_t(std::min(text.find_first_of(breaks), text.size())));
    }
}

// Four blocks at once, then one at a time, then the rest.
TYPED_TEST(ByteSearch, FindsTheFirstOfTwoBreaksWhereverItLiesInALongText) {
    using CharT = TypeParam;
    for (size_t place = 0; place < 200; ++place) {
        for (const size_t rest : {0, 1, 9, 80}) {
            const auto text = std::basic_string<CharT>(place, CharT('a')) + CharT('\n') +
                              std::basic_string<CharT>(rest, CharT('a')) + CharT('\n');
            const CharT* const begin = text.data();
            ASSERT_EQ(FindUnit(begin, begin + text.size(), CharT('\n')) - begin, std::ptrdiff_t(place));
            ASSERT_EQ(FindLineBreak(begin, begin + text.size()) - begin, std::ptrdiff_t(place));
            ASSERT_EQ(FindLineBreak(begin, begin + place), begin + place);
        }
    }
}
