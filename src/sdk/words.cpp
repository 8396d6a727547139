#include "sdk/words.h"

#include <algorithm>
#include <array>
#include <optional>

namespace Quorvane::SDK {
namespace {

constexpr size_t kArguments = 2;

/// What stands for the placeholders of a pattern in a text that was made by it; nothing for a text of another pattern.
std::optional<std::array<std::wstring_view, kArguments>> ArgumentsIn(std::wstring_view text,
                                                                     std::wstring_view pattern) {
    std::array<std::wstring_view, kArguments> arguments;
    for (size_t count = 0;; ++count) {
        const size_t mark = pattern.find(L'%');
        if (mark == std::wstring_view::npos) return text == pattern ? std::optional(arguments) : std::nullopt;
        if (count == kArguments || !text.starts_with(pattern.substr(0, mark))) return std::nullopt;
        text.remove_prefix(mark);
        pattern.remove_prefix(mark + 2);  // the placeholders of these patterns are %s
        const std::wstring_view next = pattern.substr(0, pattern.find(L'%'));
        const size_t end = next == pattern ? text.size() - std::min(text.size(), next.size()) : text.find(next);
        if (end > text.size()) return std::nullopt;
        arguments[count] = text.substr(0, end);
        text.remove_prefix(end);
    }
}

}  // namespace

bool IsHostText(const wchar_t* text, TextId id) {
    if (!text || !*text) return false;
    return text != std::to_wstring(id >> 16) + static_cast<wchar_t>(id & 0xFF);
}

std::wstring Words::operator()(const OwnText& text, std::initializer_list<TextArgument> arguments) const {
    const wchar_t* const hosts = m_texts ? m_texts(text.id) : nullptr;
    return FormatText(hosts && IsHostText(hosts, text.id) ? hosts : text.english, arguments);
}

std::wstring Words::Translated(std::wstring_view english, std::initializer_list<std::span<const OwnText>> known) const {
    for (const std::span<const OwnText> texts : known)
        for (const OwnText& text : texts)
            if (const auto arguments = ArgumentsIn(english, text.english))
                return (*this)(text, {Translated((*arguments)[0], known), Translated((*arguments)[1], known)});
    return std::wstring(english);
}

}  // namespace Quorvane::SDK
