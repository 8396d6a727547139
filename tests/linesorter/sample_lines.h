// sample_lines.h - generated lines with everything that orders disagree about: accents, case, digits, hyphens, blanks,
// common beginnings, beginnings of each other, equal and empty lines, lines of hundreds of characters.
#pragma once

#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace QVTest {

/// The same numbers in every run.
class Random {
public:
    explicit Random(uint32_t seed) : m_state(seed) {}
    uint32_t Below(uint32_t limit) {
        m_state = m_state * 1664525 + 1013904223;
        return static_cast<uint32_t>(uint64_t{m_state >> 4} * limit >> 28);
    }

private:
    uint32_t m_state;
};

/// Lines without line breaks and zero characters. The 8-bit ones hold Latin letters with accents of the upper half.
template <class CharT>
std::vector<std::basic_string<CharT>> SampleLines(size_t count, uint32_t seed) {
    Random random(seed);
    // The bytes above 0xA0 are the same characters in code page 1252 and in UTF-16.
    static constexpr unsigned char kLetters[] = "aAbBzZ-_'.,019 \t\xE9\xC9\xE4\xDF\xF1\xB2\xE6oe";
    static constexpr CharT kWide[] = {static_cast<CharT>(0x4E2D), static_cast<CharT>(0x0130),
                                      static_cast<CharT>(0xFF21), static_cast<CharT>(0x0301),
                                      static_cast<CharT>(0x0436)};
    std::vector<std::basic_string<CharT>> lines;
    while (lines.size() < count) {
        const uint32_t kind = random.Below(10);
        std::basic_string<CharT> line;
        if (kind < 3 && !lines.empty()) line = lines[random.Below(static_cast<uint32_t>(lines.size()))];
        if (kind == 0) line.resize(random.Below(static_cast<uint32_t>(line.size() + 1)));
        const uint32_t more = kind == 9 ? random.Below(300) : kind < 2 ? 0 : random.Below(20);
        for (uint32_t i = 0; i < more; ++i) {
            if (sizeof(CharT) == 2 && random.Below(15) == 0)
                line += kWide[random.Below(std::size(kWide))];
            else
                line += static_cast<CharT>(kLetters[random.Below(sizeof kLetters - 1)]);
        }
        lines.push_back(line);
    }
    return lines;
}

template <class CharT>
std::basic_string<CharT> As(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

/// Calls `test` with a character of each type.
template <class Test>
void InBothWidths(Test&& test) {
    test(char{});
    test(wchar_t{});
}

}  // namespace QVTest
