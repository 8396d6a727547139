#include "win32/letter_case.h"

#include "win32/windows.h"

namespace Win32 {
namespace {

std::wstring Mapped(std::wstring_view text, DWORD mapping) {
    std::wstring result(text);
    const int length = static_cast<int>(text.size());
    // With these flags alone one unit becomes one unit. A text that cannot be mapped stays as it is.
    if (length > 0) LCMapStringW(LOCALE_INVARIANT, mapping, text.data(), length, result.data(), length);
    return result;
}

}  // namespace

std::wstring ToUpperCase(std::wstring_view text) {
    return Mapped(text, LCMAP_UPPERCASE);
}

std::wstring ToLowerCase(std::wstring_view text) {
    return Mapped(text, LCMAP_LOWERCASE);
}

}  // namespace Win32
