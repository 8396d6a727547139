#include "sdk/text_format.h"

namespace Quorvane::SDK {
namespace {

/// Length in units of the placeholder that `text` begins with (the percent sign included), 0 when it begins with none.
size_t PlaceholderLength(std::wstring_view text) {
    for (const std::wstring_view prefix : {L"I64", L"ll", L"l", L"h", L""}) {
        const size_t letter = 1 + prefix.size();
        if (!text.substr(1).starts_with(prefix) || letter >= text.size()) continue;
        if (std::wstring_view(L"duis").find(text[letter]) != std::wstring_view::npos) return letter + 1;
    }
    return 0;
}

}  // namespace

std::wstring FormatText(std::wstring_view pattern, std::initializer_list<TextArgument> arguments) {
    std::wstring result;
    const TextArgument* next = arguments.begin();
    while (!pattern.empty()) {
        const size_t literal = std::min(pattern.find(L'%'), pattern.size());
        result += pattern.substr(0, literal);
        pattern.remove_prefix(literal);
        if (pattern.empty()) break;
        if (pattern.starts_with(L"%%")) {
            result += L'%';
            pattern.remove_prefix(2);
            continue;
        }
        const size_t length = PlaceholderLength(pattern);
        if (length > 0 && next != arguments.end()) {
            result += (next++)->Text();
            pattern.remove_prefix(length);
        } else {
            result += L'%';
            pattern.remove_prefix(1);
        }
    }
    return result;
}

}  // namespace Quorvane::SDK
