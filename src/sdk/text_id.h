// text_id.h - texts are named by number; the host resolves the numbers from its language files.
#pragma once

#include <cstdint>

namespace Quorvane::SDK {

/// High 16 bits: the text number. Low 16 bits: a category letter.
using TextId = uint32_t;

constexpr TextId MakeTextId(uint32_t number, char category) {
    return number << 16 | static_cast<uint8_t>(category);
}

// One literal per category, so that text 2100 of category "m" reads 2100_m.
inline namespace TextIdLiterals {
constexpr TextId operator""_m(unsigned long long number) {
    return MakeTextId(static_cast<uint32_t>(number), 'm');
}
constexpr TextId operator""_c(unsigned long long number) {
    return MakeTextId(static_cast<uint32_t>(number), 'c');
}
constexpr TextId operator""_d(unsigned long long number) {
    return MakeTextId(static_cast<uint32_t>(number), 'd');
}
constexpr TextId operator""_e(unsigned long long number) {
    return MakeTextId(static_cast<uint32_t>(number), 'e');
}
constexpr TextId operator""_g(unsigned long long number) {
    return MakeTextId(static_cast<uint32_t>(number), 'g');
}
constexpr TextId operator""_p(unsigned long long number) {
    return MakeTextId(static_cast<uint32_t>(number), 'p');
}
}  // namespace TextIdLiterals

static_assert(2100_m == 0x0834006D);

inline constexpr TextId kNoText = 0;

}  // namespace Quorvane::SDK
