#include "host/app/host_text.h"

#include <algorithm>

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

}  // namespace QVHost
