// rename_rule.h - one rename rule: compiled once, then asked for the new name of every row. Knows no disk, no host and
// no window; what a name is worth on disk is the planner's question.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "rename/calendar_time.h"
#include "rename/name_template.h"
#include "rename/rename_item.h"
#include "rename/rename_options.h"
#include "rename/search_and_replace_items.h"

namespace BatchRename {

struct CounterSettings {
    int32_t start = 1;
    int32_t step = 1;
    int32_t digits = 2;

    bool operator==(const CounterSettings&) const = default;
};

/// A rule as the user writes it.
struct RuleDefinition {
    std::wstring nameTemplate = L"[N]";
    std::wstring extensionTemplate = L"[E]";
    CounterSettings counter;
    SharedItems items;     // null: none
    uint32_t options = 0;  // RenameOption bits
};

/// Answers property tags.
class IPropertySource {
public:
    /// False when the property is unknown. One that this row does not have is "".
    virtual bool GetProperty(const BatchRenameItem& row, const std::wstring& name, const std::wstring& format,
                             std::wstring& value) = 0;

protected:
    ~IPropertySource() = default;
};

class RenameRule {
public:
    /// The rule that leaves every name as it is. `properties` may be null and must outlive the rule.
    explicit RenameRule(IPropertySource* properties = nullptr);

    /// Compiles the definition and restarts all counters; date and time tags give `now` from here on.
    /// @throws RegexFault when an expression does not compile; the rule then keeps its former state. The window finds
    ///     out before, by CheckRegularExpressions.
    bool SetRule(const RuleDefinition& definition, const CalendarTime& now);

    /// Sets the row's new name and fault. Rows are to come in list order: the counters count them.
    ///
    /// - A row that is left out keeps its name and is not counted, so that the names that are given have no gaps.
    /// - A name given by hand stands in the place of the rule's, and is counted like that: the others keep theirs.
    /// - A row whose state is RowState::Restore has its new name already.
    bool Compute(BatchRenameItem& row);

    /// Whether the last of the pairs that are not skipped found its text in the row computed last.
    bool HasLastPairMatched() const { return m_hasLastPairMatched; }

    /// True when a name depends on how many rows were computed before it.
    bool UsesCounter() const;

private:
    void AppendToken(Token& token, const BatchRenameItem& row, std::wstring& text);
    void AppendCounter(Token& token, std::wstring& text);
    void AppendProperty(const Token& token, const BatchRenameItem& row, std::wstring& text);

    IPropertySource* m_properties;
    std::vector<Token> m_nameTokens;
    std::vector<Token> m_extensionTokens;
    CalendarTime m_time;
    SearchAndReplace m_search;
    uint32_t m_options = 0;
    int32_t m_counter = 1;
    CounterSettings m_counterSettings;

    // Of the row being computed.
    std::wstring_view m_base;
    std::wstring_view m_extension;
    RuleFault m_fault = RuleFault::None;
    bool m_hasLastPairMatched = false;
    // Kept from row to row for their memory.
    std::wstring m_newBase;
    std::wstring m_newExtension;
};

/// What "[F]" stands for: the name of the folder that holds the item. For the root of a drive its letter, for the root
/// of a share the share's name.
std::wstring_view FolderNameOf(std::wstring_view location);

/// In words.
std::wstring DescribeRuleFault(RuleFault fault);

}  // namespace BatchRename
