#include "host/app/host_text.h"

#include <algorithm>
#include <cwctype>
#include <numeric>

namespace QVHost {
namespace {

/// The number of single characters to insert, remove or change, upper and lower case being equal, to get from one text
/// to the other.
size_t EditDistance(std::wstring_view left, std::wstring_view right) {
    std::vector<size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t l = 1; l <= left.size(); ++l) {
        size_t diagonal = row[0];
        row[0] = l;
        for (size_t r = 1; r <= right.size(); ++r) {
            const bool same = std::towlower(left[l - 1]) == std::towlower(right[r - 1]);
            const size_t changed = diagonal + (same ? 0 : 1);
            diagonal = row[r];
            row[r] = std::min({row[r] + 1, row[r - 1] + 1, changed});
        }
    }
    return row.back();
}

/// The known name nearest to `name`, the first of several; "" when none is near.
std::wstring NearestName(std::wstring_view name, const std::vector<std::wstring>& known) {
    std::wstring nearest;
    size_t best = std::max<size_t>(2, name.size() / 3) + 1;
    for (const std::wstring& candidate : known) {
        const size_t distance = EditDistance(name, candidate);
        if (distance >= best) continue;
        best = distance;
        nearest = candidate;
    }
    return nearest;
}

}  // namespace

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

std::wstring DidYouMean(std::wstring_view name, const std::vector<std::wstring>& known) {
    const std::wstring nearest = NearestName(name, known);
    return nearest.empty() ? L"" : L", did you mean " + nearest + L"?";
}

}  // namespace QVHost
