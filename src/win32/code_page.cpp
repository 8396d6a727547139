#include "win32/code_page.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "win32/windows.h"

namespace Win32 {
namespace {

int CheckedLength(size_t length) {
    if (length > static_cast<size_t>(std::numeric_limits<int>::max())) throw std::length_error("Text is too long");
    return static_cast<int>(length);
}

}  // namespace

bool IsUtf8(uint32_t codePage) {
    CPINFOEXW info = {};
    return codePage == kUtf8CodePage || (GetCPInfoExW(codePage, 0, &info) && info.CodePage == kUtf8CodePage);
}

bool IsValidUtf8(std::string_view text) {
    if (text.empty()) return true;
    if (text.size() > static_cast<size_t>(std::numeric_limits<int>::max())) return false;
    return MultiByteToWideChar(kUtf8CodePage, MB_ERR_INVALID_CHARS, text.data(), static_cast<int>(text.size()), nullptr,
                               0) > 0;
}

std::optional<std::string> ToCodePage(std::wstring_view text, uint32_t codePage) {
    if (text.empty()) return std::string();
    const int length = CheckedLength(text.size());
    const bool utf8 = IsUtf8(codePage);
    // For UTF-8 the system takes neither the best-fit flag nor the "used default" pointer; there the only thing that
    // cannot be represented is half a surrogate pair.
    const DWORD flags = utf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS;
    BOOL lossy = FALSE;
    BOOL* const lossyOut = utf8 ? nullptr : &lossy;
    const int needed = WideCharToMultiByte(codePage, flags, text.data(), length, nullptr, 0, nullptr, lossyOut);
    if (needed <= 0 || lossy) return std::nullopt;
    std::string result(static_cast<size_t>(needed), '\0');
    const int written =
        WideCharToMultiByte(codePage, flags, text.data(), length, result.data(), needed, nullptr, lossyOut);
    if (written <= 0 || lossy) return std::nullopt;
    result.resize(static_cast<size_t>(written));
    return result;
}

std::wstring FromCodePage(std::string_view text, uint32_t codePage) {
    if (text.empty()) return {};
    const int length = CheckedLength(text.size());
    const int needed = MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
    if (needed <= 0) return {};
    std::wstring result(static_cast<size_t>(needed), L'\0');
    result.resize(FromCodePage(text, codePage, result.data(), static_cast<uint32_t>(needed)));
    return result;
}

uint32_t FromCodePage(std::string_view text, uint32_t codePage, wchar_t* buffer, uint32_t capacity) {
    const int units = static_cast<int>(std::min<uint32_t>(capacity, std::numeric_limits<int>::max()));
    return static_cast<uint32_t>(
        MultiByteToWideChar(codePage, 0, text.data(), CheckedLength(text.size()), buffer, units));
}

}  // namespace Win32
