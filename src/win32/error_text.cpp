#include "win32/error_text.h"

#include <algorithm>

#include "win32/handle.h"
#include "win32/text.h"

namespace Win32 {

std::wstring SystemErrorText(uint32_t code) {
    wchar_t* raw = nullptr;
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, code, 0, reinterpret_cast<wchar_t*>(&raw), 0, nullptr);
    const LocalMemory owner(raw);
    return std::wstring(Trimmed({raw, length}));
}

std::wstring DescribeError(uint32_t code) {
    std::wstring description = L"error " + std::to_wstring(code);
    std::wstring line = SystemErrorText(code);
    if (line.empty()) return description;
    std::erase(line, L'\r');
    std::ranges::replace(line, L'\n', L' ');
    // Some of the system's texts leave a place for the name, which stands in front of ours.
    if (const size_t place = line.find(L"%1"); place != std::wstring::npos) line.replace(place, 2, L"the file");
    return description + L" (" + line + L")";
}

}  // namespace Win32
