// small_texts.h - every small text for a fuzz target, which knows the plain rules and ends the program where they are
// broken. The fuzzer finds what is far off; this leaves out nothing near.
#pragma once

#include <string>
#include <vector>

#include "fuzz/targets.h"

namespace QVTest {

/// All texts of up to six of these units.
inline std::vector<std::string> SmallTexts(const std::string& units) {
    std::vector<std::string> texts = {""};
    for (size_t at = 0; texts[at].size() < 6; ++at)
        for (const char unit : units) texts.push_back(texts[at] + unit);
    return texts;
}

/// With the numbers as single bytes in front of the text.
inline void RunTarget(void (*target)(QVFuzz::Bytes), std::initializer_list<int> numbers, const std::string& text) {
    std::vector<uint8_t> bytes;
    for (const int number : numbers) bytes.push_back(static_cast<uint8_t>(number));
    bytes.insert(bytes.end(), text.begin(), text.end());
    target(bytes);
}

}  // namespace QVTest
