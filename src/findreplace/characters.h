// characters.h - the characters of texts, and where those of several units begin and end.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace QVFindAndReplace {

/// UTF-16 text of this platform: its wide characters on Windows, char16_t where those are larger.
#ifdef _WIN32
using WideChar = wchar_t;
#else
using WideChar = char16_t;
#endif
using WideString = std::basic_string<WideChar>;

/// A UTF-8 character has at most this many units, a UTF-16 one fewer.
inline constexpr size_t kMostUnits = 4;

/// True when the place between two pieces of text lies inside of a UTF-16 character.
inline bool CutsCharacter(std::basic_string_view<WideChar> before, std::basic_string_view<WideChar> after) {
    if (before.empty() || after.empty()) return false;
    return (before.back() & 0xFC00) == 0xD800 && (after.front() & 0xFC00) == 0xDC00;
}

/// The same for UTF-8. Bytes that are no whole character can be cut everywhere.
inline bool CutsCharacter(std::string_view before, std::string_view after) {
    const auto goesOn = [](char byte) { return (byte & 0xC0) == 0x80; };
    if (after.empty() || !goesOn(after.front())) return false;
    size_t passed = 0;  // units of the character in front of the place
    while (passed < before.size() && passed < kMostUnits && goesOn(before[before.size() - 1 - passed])) ++passed;
    if (passed == before.size()) return false;
    const auto lead = static_cast<unsigned char>(before[before.size() - 1 - passed]);
    ++passed;
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || passed >= length || after.size() < length - passed) return false;
    const std::string_view rest = after.substr(0, length - passed);
    return std::all_of(rest.begin(), rest.end(), goesOn);
}

}  // namespace QVFindAndReplace
