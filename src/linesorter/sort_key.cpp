#include "linesorter/sort_key.h"

#include <algorithm>

#include "textio/byte_search.h"

namespace QVLineSorter {
namespace {

template <class CharT>
constexpr bool IsSpaceOrTab(CharT unit) {
    return unit == CharT(' ') || unit == CharT('\t');
}

template <class CharT>
const CharT* FindSeparator(const CharT* begin, const CharT* end, std::optional<CharT> separator) {
    return separator ? QVUtils::FindUnit(begin, end, *separator) : end;
}

}  // namespace

template <class CharT>
KeySpan FindKey(std::basic_string_view<CharT> line, const KeyRule<CharT>& rule) {
    const CharT* const begin = line.data();
    const CharT* const end = begin + line.size();
    const CharT* key = begin + std::min<size_t>(rule.lineOffset, line.size());
    bool isMissing = rule.lineOffset > 0 && rule.lineOffset >= line.size();
    if (rule.skipLeadingSpaces) key = std::find_if_not(key, end, IsSpaceOrTab<CharT>);

    const CharT* keyEnd = key;  // stays here for "to the end of the line"
    if (rule.kind == KeyRule<CharT>::Kind::Substring) {
        if (rule.substringLength > 0) {
            if (rule.substringLength < static_cast<size_t>(end - key)) keyEnd = key + rule.substringLength;
        } else if (rule.endAtWhiteSpace) {
            keyEnd = std::find_if(key, end, IsSpaceOrTab<CharT>);
        } else if (rule.endAtCharacter) {
            keyEnd = FindSeparator(key, end, rule.separator);
        }
    } else if (rule.kind == KeyRule<CharT>::Kind::Item) {
        if (rule.itemNumber == 0) key = end;  // no item has this number
        isMissing = isMissing || rule.itemNumber == 0;
        for (uint32_t item = 1; item < rule.itemNumber && !isMissing; ++item) {
            key = FindSeparator(key, end, rule.separator);
            isMissing = key == end;
            if (!isMissing) ++key;
        }
        keyEnd = FindSeparator(key, end, rule.separator);
    }
    return {static_cast<uint32_t>(key - begin), static_cast<uint32_t>(keyEnd - key), isMissing};
}

template KeySpan FindKey(std::string_view, const KeyRule<char>&);
#ifdef _WIN32
template KeySpan FindKey(std::wstring_view, const KeyRule<wchar_t>&);
#else
template KeySpan FindKey(std::u16string_view, const KeyRule<char16_t>&);
#endif

}  // namespace QVLineSorter
