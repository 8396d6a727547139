// json_report.h - what a run has done and said, as one JSON document for other programs (`--json`).
//
// The document is an object: "schema" (1), "program", "command" (the subcommand), "name" (which command, or what to do
// with undo; or null), "items", "messages" (each with "kind", "log" or "note", and "text"), "counts" (items by their
// state), "code" and "result" of the custom command, "status" (the exit status). Members may be added under the same
// schema number; none is taken away or gets another meaning. docs/scripts.md describes the items of each subcommand.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace QVHost {

/// Null, a text, or a number.
using JsonValue = std::variant<std::nullptr_t, std::wstring, uint64_t>;
/// The members of an object, in the order in which they are written.
using JsonFields = std::vector<std::pair<std::string, JsonValue>>;

/// Appends the value. Control characters are escaped; so is a lone surrogate, which file names may hold and UTF-8 may
/// not: the reader gets back exactly these UTF-16 units.
void AppendJson(std::string& json, const JsonValue& value);

/// What was done to a file or folder; `reason`, `newPath`: null where they are "".
JsonFields ItemFields(const std::wstring& path, const std::wstring& newPath, const std::wstring& state, uint32_t code,
                      const std::wstring& reason);

/// Not for several threads at once.
class Report {
public:
    /// From the options of a run, once they are known.
    void SetCommand(const std::wstring& command, const std::wstring& name);
    void AddItem(const JsonFields& item);
    void AddMessage(const char* kind, std::wstring_view text);
    /// Of a custom command: the system's code and what the command says; of several the first with a code.
    void SetResult(uint32_t code, const std::wstring& text);
    /// The whole document, its last line ended too.
    std::string Text(int status) const;

private:
    JsonValue m_command;
    JsonValue m_name;
    JsonValue m_result;
    uint64_t m_code = 0;
    std::string m_items;  // both as they will stand in the document
    std::string m_messages;
    std::map<std::wstring, uint64_t> m_counts;
};

}  // namespace QVHost
