// numbers.h - numbers as people type them into the rule panel.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <limits>
#include <string>

namespace BatchRename {

/// The decimal number at the beginning of the text, with its sign; 0 where there is none. Cut to 32 bits.
inline int32_t NumberOf(const std::wstring& text) {
    constexpr long long kSmallest = std::numeric_limits<int32_t>::min();
    constexpr long long kLargest = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::clamp(std::wcstoll(text.c_str(), nullptr, 10), kSmallest, kLargest));
}

}  // namespace BatchRename
