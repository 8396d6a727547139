#include "rename/case_conversion.h"

#include <algorithm>

#include "rename/rename_options.h"
#include "win32/text.h"

namespace BatchRename {
namespace {

void Lower(std::wstring& text) {
    std::ranges::transform(text, text.begin(), Win32::LowerAscii<wchar_t>);
}

void Upper(std::wstring& text) {
    std::ranges::transform(text, text.begin(), Win32::UpperAscii<wchar_t>);
}

void CapitaliseWords(std::wstring& name) {
    bool isWordStart = true;
    for (wchar_t& unit : name) {
        unit = isWordStart ? Win32::UpperWide(unit) : Win32::LowerWide(unit);
        isWordStart = unit == L' ' || unit == L'.' || unit == L'_';
    }
}

}  // namespace

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
            if (!name.empty()) name.front() = Win32::UpperWide(name.front());
            break;
        default: break;
    }
}

}  // namespace BatchRename
