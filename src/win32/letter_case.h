// letter_case.h - upper and lower case of names, the same for every user.
#pragma once

#include <string>
#include <string_view>

namespace Win32 {

/// Unit by unit, all scripts, by the system's own table and not by the user's language: a name must not come out
/// otherwise on a Turkish system. The length never changes ("ß" stays).
std::wstring ToUpperCase(std::wstring_view text);
std::wstring ToLowerCase(std::wstring_view text);

}  // namespace Win32
