#include "host/app/host_text.h"

#include <algorithm>

#include "win32/handle.h"

namespace QVHost {
uint32_t CopyText(std::wstring_view text, wchar_t* buffer, uint32_t capacity) {
    if (buffer && capacity > 0) {
        const size_t copied = std::min<size_t>(text.size(), capacity - 1);
        text.copy(buffer, copied);
        buffer[copied] = L'\0';
    }
    return static_cast<uint32_t>(text.size());
}

std::wstring TextOfField(const wchar_t* field, size_t size) {
    return std::wstring(field, std::find(field, field + size, L'\0'));
}

std::wstring TextOfField(const char* field, size_t size) {
    return std::wstring(field, std::find(field, field + size, '\0'));
}

std::wstring TextOrEmpty(const wchar_t* text) {
    return text ? std::wstring(text) : std::wstring();
}

std::wstring OnOneLine(std::wstring_view text) {
    std::wstring line;
    AppendOnOneLine(line, text);
    return line;
}

void AppendOnOneLine(std::wstring& line, std::wstring_view text) {
    if (std::ranges::none_of(text, [](wchar_t unit) { return unit == L'\r' || unit == L'\n'; })) {
        line += text;
        return;
    }
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n') continue;
        line += text[at] == L'\r' || text[at] == L'\n' ? L' ' : text[at];
    }
}

std::vector<std::string_view> LinesOf(std::string_view bytes) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(kMark)) bytes.remove_prefix(kMark.size());
    std::vector<std::string_view> lines;
    while (!bytes.empty()) {
        const size_t end = std::min(bytes.find('\n'), bytes.size());
        std::string_view line = bytes.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        lines.push_back(line);
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    return lines;
}

std::wstring DescribeError(uint32_t code) {
    std::wstring description = L"error " + std::to_wstring(code);
    wchar_t* raw = nullptr;
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, code, 0, reinterpret_cast<wchar_t*>(&raw), 0, nullptr);
    const Win32::LocalMemory owner(raw);
    if (length == 0) return description;
    std::wstring line = OnOneLine(Win32::Trimmed({raw, length}));
    // Some of the system's texts leave a place for the name, which stands in front of ours.
    if (const size_t place = line.find(L"%1"); place != std::wstring::npos) line.replace(place, 2, L"the file");
    return description + L" (" + line + L")";
}

}  // namespace QVHost
