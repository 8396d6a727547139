// language.h - the texts for the text ids, from a language file.
//
// The file is UTF-8, one text a line: `2100m=Upper case`. `#` begins a comment line, empty lines are skipped, `\n` in a
// text is a line break and `\\` a backslash. A line `[QVBatchRename]` opens the section of that extension (its short
// name, or its id): texts below it are found by that extension alone, before the common ones above all sections. So two
// extensions may use one id for different texts.
#pragma once

#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/text_format.h"

namespace QVHost {

class LanguageTexts {
public:
    /// Reads the bytes of a language file. A line that says nothing usable is skipped and described in the result,
    /// with its number: "line 12: ...".
    std::vector<std::wstring> Read(std::string_view bytes);

    /// Never null; the pointer stays valid and the text unchanged as long as this object. A missing text shows as its
    /// id ("2100m"). Any thread may ask.
    const wchar_t* Find(const std::wstring& section, Quorvane::SDK::TextId id);

    /// The number by which an extension's section is asked for later; 0 stands for the common texts alone.
    uint16_t ModuleOf(const std::wstring& section);
    std::wstring SectionOf(uint16_t module);

    size_t Count() const { return m_texts.size(); }

private:
    using Key = std::pair<std::wstring, Quorvane::SDK::TextId>;

    std::wstring ReadLine(std::string_view line, std::wstring& section);

    std::mutex m_mutex;
    std::map<Key, std::wstring> m_texts;  // nodes keep their place: pointers into them are handed out
    std::map<Quorvane::SDK::TextId, std::wstring> m_missing;
    std::vector<std::wstring> m_modules;
};

/// "2100m"; an id whose category is no letter shows as a hexadecimal number.
std::wstring NameOfTextId(Quorvane::SDK::TextId id);

}  // namespace QVHost
