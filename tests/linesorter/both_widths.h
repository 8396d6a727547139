// both_widths.h - one table of ASCII cases serves the 8-bit and the 16-bit form of what is tested.
#pragma once

#include <string>
#include <string_view>

namespace QVTest {

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
