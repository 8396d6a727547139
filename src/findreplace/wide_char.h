// wide_char.h - UTF-16 text of this platform: its wide characters on Windows, char16_t where those are larger.
#pragma once

#include <string>

namespace QVFindAndReplace {

#ifdef _WIN32
using WideChar = wchar_t;
#else
using WideChar = char16_t;
#endif
using WideString = std::basic_string<WideChar>;

}  // namespace QVFindAndReplace
