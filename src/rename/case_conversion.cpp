#include "rename/case_conversion.h"

#include <algorithm>
#include <array>
#include <memory>

#include "rename/rename_options.h"
#include "win32/windows.h"

namespace BatchRename {
namespace {

constexpr size_t kUnits = 0x10000;

/// Every UTF-16 unit and what the system makes of it: asked for once, because a call for each name would cost more than
/// the rest of the rule.
class CaseTable {
public:
    explicit CaseTable(DWORD mapping) : m_units(std::make_unique<std::array<wchar_t, kUnits>>()) {
        auto all = std::make_unique<std::array<wchar_t, kUnits>>();
        for (size_t unit = 0; unit < kUnits; ++unit) (*all)[unit] = static_cast<wchar_t>(unit);
        *m_units = *all;
        // Not through zero: a text's end would be a matter of opinion.
        LCMapStringW(LOCALE_INVARIANT, mapping, all->data() + 1, static_cast<int>(kUnits - 1), m_units->data() + 1,
                     static_cast<int>(kUnits - 1));
    }
    wchar_t operator[](wchar_t unit) const { return (*m_units)[unit]; }

private:
    std::unique_ptr<std::array<wchar_t, kUnits>> m_units;
};

void Lower(std::wstring& text) {
    std::ranges::transform(text, text.begin(), LowerAscii);
}

void Upper(std::wstring& text) {
    std::ranges::transform(text, text.begin(), UpperAscii);
}

void CapitaliseWords(std::wstring& name) {
    bool isWordStart = true;
    for (wchar_t& unit : name) {
        unit = isWordStart ? UpperWide(unit) : LowerWide(unit);
        isWordStart = unit == L' ' || unit == L'.' || unit == L'_';
    }
}

}  // namespace

wchar_t UpperWide(wchar_t unit) {
    if (unit < 0x80) return UpperAscii(unit);
    static const CaseTable table(LCMAP_UPPERCASE);
    return table[unit];
}

wchar_t LowerWide(wchar_t unit) {
    if (unit < 0x80) return LowerAscii(unit);
    static const CaseTable table(LCMAP_LOWERCASE);
    return table[unit];
}

void ApplyCase(std::wstring& name, std::wstring& extension, uint32_t options) {
    const uint32_t choice = options & RenameOption::CaseMask;
    switch (choice & (0u - choice)) {  // the lowest bit alone
        case RenameOption::LowerBoth:
            Lower(name);
            Lower(extension);
            break;
        case RenameOption::UpperBoth:
            Upper(name);
            Upper(extension);
            break;
        case RenameOption::LowerName: Lower(name); break;
        case RenameOption::UpperName: Upper(name); break;
        case RenameOption::LowerExtension: Lower(extension); break;
        case RenameOption::UpperExtension: Upper(extension); break;
        case RenameOption::CapitaliseWords: CapitaliseWords(name); break;
        case RenameOption::Sentence:
            Lower(name);
            if (!name.empty()) name.front() = UpperWide(name.front());
            break;
        default: break;
    }
}

}  // namespace BatchRename
