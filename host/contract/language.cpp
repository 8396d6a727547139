#include "host/contract/language.h"

#include <algorithm>
#include <charconv>
#include <cwchar>

#include "host/app/host_text.h"

namespace QVHost {
namespace {

using Quorvane::SDK::MakeTextId;
using Quorvane::SDK::TextId;

constexpr uint32_t kHighestNumber = 0xFFFF;

/// The text with `\n` and `\\` resolved; any other backslash stays, so that a path in a text reads as it is meant.
std::wstring Unescaped(std::wstring_view text) {
    std::wstring result;
    for (size_t at = 0; at < text.size(); ++at) {
        const wchar_t next = at + 1 < text.size() ? text[at + 1] : L'\0';
        if (text[at] == L'\\' && (next == L'n' || next == L'\\')) {
            result += next == L'n' ? L'\n' : L'\\';
            ++at;
        } else {
            result += text[at];
        }
    }
    return result;
}

/// The id in `name` ("2100m"), or kNoText.
TextId ParseTextId(std::string_view name) {
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error != std::errc() || number > kHighestNumber || end + 1 != name.data() + name.size()) return 0;
    return *end >= 'a' && *end <= 'z' ? MakeTextId(number, *end) : Quorvane::SDK::kNoText;
}

}  // namespace

std::vector<std::wstring> LanguageTexts::Read(std::string_view bytes) {
    std::vector<std::wstring> faults;
    std::wstring section;
    size_t number = 0;
    const std::lock_guard lock(m_mutex);
    for (const std::string_view line : LinesOf(bytes)) {
        ++number;
        const std::wstring fault = ReadLine(line, section);
        if (!fault.empty()) faults.push_back(L"line " + std::to_wstring(number) + L": " + fault);
    }
    return faults;
}

std::wstring LanguageTexts::ReadLine(std::string_view line, std::wstring& section) {
    if (line.empty() || line.front() == '#') return {};
    const std::optional<std::wstring> text = FromUtf8(line);
    if (!text) return L"is not UTF-8";
    if (line.front() == '[' && line.back() == ']') {
        section = text->substr(1, text->size() - 2);
        return {};
    }
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos) return L"has no =";
    const TextId id = ParseTextId(line.substr(0, equals));
    if (id == Quorvane::SDK::kNoText) return L"does not begin with a text id such as 2100m";
    // The id is ASCII, so the equals sign is at the same place in both forms.
    const auto [place, isNew] = m_texts.emplace(Key(section, id), Unescaped(text->substr(equals + 1)));
    return isNew ? std::wstring() : L"gives " + NameOfTextId(id) + L" a second time; the first text stays";
}

const wchar_t* LanguageTexts::Find(const std::wstring& section, TextId id) {
    const std::lock_guard lock(m_mutex);
    for (const std::wstring& place : {section, std::wstring()}) {
        const auto text = m_texts.find(Key(place, id));
        if (text != m_texts.end()) return text->second.c_str();
    }
    return m_missing.try_emplace(id, NameOfTextId(id)).first->second.c_str();
}

uint16_t LanguageTexts::ModuleOf(const std::wstring& section) {
    const std::lock_guard lock(m_mutex);
    const auto known = std::find(m_modules.begin(), m_modules.end(), section);
    const size_t index = static_cast<size_t>(known - m_modules.begin());
    if (index >= kHighestNumber) return 0;
    if (known == m_modules.end()) m_modules.push_back(section);
    return static_cast<uint16_t>(index + 1);
}

std::wstring LanguageTexts::SectionOf(uint16_t module) {
    const std::lock_guard lock(m_mutex);
    return module >= 1 && module <= m_modules.size() ? m_modules[module - 1u] : std::wstring();
}

std::wstring NameOfTextId(TextId id) {
    const uint32_t category = id & 0xFFFF;
    if (category >= 'a' && category <= 'z') return std::to_wstring(id >> 16) + static_cast<wchar_t>(category);
    wchar_t hex[16] = {};
    std::swprintf(hex, std::size(hex), L"0x%08X", id);
    return hex;
}

}  // namespace QVHost
