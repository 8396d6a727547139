#include "host/app/json_report.h"

#include <cstdio>

#include "win32/text.h"

namespace QVHost {
namespace {

constexpr uint64_t kSchema = 1;

JsonValue TextOrNull(const std::wstring& text) {
    return text.empty() ? JsonValue() : JsonValue(text);
}

void AppendEscape(std::string& json, wchar_t unit) {
    char escape[8] = {};
    std::snprintf(escape, sizeof(escape), "\\u%04x", static_cast<unsigned>(unit));
    json += escape;
}

/// True for a unit that stands for itself: neither the syntax's, nor a control character, nor part of a character that
/// two units make.
bool IsPlain(wchar_t unit) {
    return unit >= L' ' && unit != L'"' && unit != L'\\' && unit != L'\x7F' && !Win32::IsSurrogate(unit);
}

void AppendText(std::string& json, std::wstring_view text) {
    json += '"';
    while (!text.empty()) {
        size_t taken = 0;
        while (taken < text.size() && IsPlain(text[taken])) ++taken;
        const bool isPair =
            taken == 0 && text.size() > 1 && Win32::IsHighSurrogate(text[0]) && Win32::IsLowSurrogate(text[1]);
        if (isPair) taken = 2;
        if (taken > 0) {
            json += Win32::ToUtf8(text.substr(0, taken));
        } else {
            taken = 1;
            if (text.front() == L'"' || text.front() == L'\\')
                (json += '\\') += static_cast<char>(text.front());
            else
                AppendEscape(json, text.front());
        }
        text.remove_prefix(taken);
    }
    json += '"';
}

void AppendObject(std::string& json, const JsonFields& fields) {
    json += '{';
    const char* separator = "";
    for (const auto& [key, value] : fields) {
        json += separator;
        AppendText(json, Win32::Wide(key));
        json += ": ";
        AppendJson(json, value);
        separator = ", ";
    }
    json += '}';
}

void AppendElement(std::string& list, const JsonFields& fields) {
    list += list.empty() ? "\n  " : ",\n  ";
    AppendObject(list, fields);
}

}  // namespace

void AppendJson(std::string& json, const JsonValue& value) {
    if (const auto* const text = std::get_if<std::wstring>(&value))
        AppendText(json, *text);
    else if (const auto* const number = std::get_if<uint64_t>(&value))
        json += std::to_string(*number);
    else
        json += "null";
}

JsonFields ItemFields(const std::wstring& path, const std::wstring& newPath, const std::wstring& state, uint32_t code,
                      const std::wstring& reason) {
    return {{"path", path},
            {"newPath", TextOrNull(newPath)},
            {"state", state},
            {"code", uint64_t{code}},
            {"reason", TextOrNull(reason)}};
}

void Report::SetCommand(const std::wstring& command, const std::wstring& name) {
    m_command = command;
    m_name = TextOrNull(name);
}

void Report::AddItem(const JsonFields& item) {
    AppendElement(m_items, item);
    for (const auto& [key, value] : item)
        if (const auto* const state = std::get_if<std::wstring>(&value); state && key == "state") ++m_counts[*state];
}

void Report::AddMessage(const char* kind, std::wstring_view text) {
    AppendElement(m_messages, {{"kind", std::wstring(kind, kind + std::char_traits<char>::length(kind))},
                               {"text", std::wstring(text)}});
}

void Report::SetResult(uint32_t code, const std::wstring& text) {
    if (m_code != 0) return;
    m_code = code;
    m_result = TextOrNull(text);
}

std::string Report::Text(int status) const {
    std::string json = "{";
    const auto add = [&](const char* key, const JsonValue& value) {
        json.append("\"").append(key).append("\": ");
        AppendJson(json, value);
        json += ",\n ";
    };
    add("schema", kSchema);
    add("program", Win32::Wide("qvhost " QV_VERSION));
    add("command", m_command);
    add("name", m_name);
    add("status", static_cast<uint64_t>(status));
    add("code", m_code);
    add("result", m_result);
    JsonFields counts;
    for (const auto& [state, count] : m_counts) counts.emplace_back(Win32::ToUtf8(state), count);
    json += "\"counts\": ";
    AppendObject(json, counts);
    json += ",\n \"items\": [" + m_items + "],\n \"messages\": [" + m_messages + "]}\n";
    return json;
}

}  // namespace QVHost
