// sample_lines.h - generated lines with everything that orders disagree about: common beginnings, beginnings of each
// other, equal and empty lines, and whatever letters a test gives.
#pragma once

#include <cstdint>
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

/// Each begins with a part of another one, in any order, and goes on with up to `longest` of `letters`: Latin ones,
/// which are the same characters in code page 1252 and in UTF-16.
template <class CharT>
std::vector<std::basic_string<CharT>> SampleLines(size_t count, uint32_t seed, std::basic_string<CharT> letters,
                                                  uint32_t longest) {
    Random random(seed);
    std::vector<std::basic_string<CharT>> lines;
    while (lines.size() < count) {
        std::basic_string<CharT> line;
        if (random.Below(3) > 0 && !lines.empty()) line = lines[random.Below(static_cast<uint32_t>(lines.size()))];
        if (random.Below(3) == 0) line.resize(random.Below(static_cast<uint32_t>(line.size() + 1)));
        for (uint32_t more = random.Below(longest); more > 0; --more)
            line += letters[random.Below(static_cast<uint32_t>(letters.size()))];
        lines.push_back(line);
    }
    return lines;
}

/// Of the characters up to U+00FF.
template <class CharT>
std::basic_string<CharT> As(std::string_view latin) {
    std::basic_string<CharT> text;
    for (const char unit : latin) text += static_cast<CharT>(unit & 0xFF);
    return text;
}

/// Calls `test` with a character of each type.
template <class Test>
void InBothWidths(Test&& test) {
    test(char{});
    test(wchar_t{});
}

}  // namespace QVTest
