#include "win32/text.h"

#include <algorithm>

namespace Win32 {
std::wstring ToUpperCase(std::wstring_view text) {
    std::wstring result(text);
    std::ranges::transform(result, result.begin(), UpperWide);
    return result;
}

std::wstring ToLowerCase(std::wstring_view text) {
    std::wstring result(text);
    std::ranges::transform(result, result.begin(), LowerWide);
    return result;
}

bool EqualIgnoringCase(std::wstring_view left, std::wstring_view right) {
    return std::ranges::equal(left, right, [](wchar_t a, wchar_t b) { return a == b || UpperWide(a) == UpperWide(b); });
}

std::wstring_view Trimmed(std::wstring_view text) {
    while (!text.empty() && text.front() <= L' ') text.remove_prefix(1);
    while (!text.empty() && text.back() <= L' ') text.remove_suffix(1);
    return text;
}

}  // namespace Win32
