// short_copy.h - copies pieces of text most of which are short: words, lines, what lies between two hits. A call for
// each would cost more than the copy.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace QVUtils {

/// Word by word, the last of which may overlap the one before. At least one word.
template <size_t kWord>
void CopyWords(char* to, const char* from, size_t size) {
    for (size_t at = 0; at + kWord < size; at += kWord) std::memcpy(to + at, from + at, kWord);
    std::memcpy(to + size - kWord, from + size - kWord, kWord);
}

/// As memcpy, for bytes that do not overlap.
inline void CopyBytes(void* to, const void* from, size_t size) {
    constexpr size_t kLong = 512;
    auto* const bytes = static_cast<char*>(to);
    const auto* const source = static_cast<const char*>(from);
    if (size > kLong)
        std::memcpy(bytes, source, size);
    else if (size >= 16)
        CopyWords<16>(bytes, source, size);
    else if (size >= 4)
        CopyWords<4>(bytes, source, size);
    else
        std::copy(source, source + size, bytes);
}

}  // namespace QVUtils
