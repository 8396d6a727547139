#include "linesorter/line_compare.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <limits>
#include <numeric>

#include "win32/code_page.h"

namespace QVLineSorter {
namespace {

/// The rule before every comparison; `compare` gives the three-way result for two keys that are not empty.
template <class Compare>
bool LessUnlessEmpty(uint32_t leftLength, uint32_t rightLength, Compare&& compare) {
    if (leftLength == 0 || rightLength == 0) return leftLength == 0 && rightLength != 0;
    return compare() < 0;
}

}  // namespace

bool LineCompare_OrdinalA::Less(const char* left, uint32_t leftLength, const char* right, uint32_t rightLength) {
    return LessUnlessEmpty(leftLength, rightLength, [&] {
        const uint32_t length = std::min(leftLength, rightLength);
        return m_ignoreCase ? _strnicmp(left, right, length) : std::strncmp(left, right, length);
    });
}

std::array<uint8_t, 256> LineCompare_OrdinalA::ByteRanks() const {
    std::array<uint8_t, 256> ranks = {};
    if (!m_ignoreCase) {
        std::iota(ranks.begin(), ranks.end(), uint8_t{0});  // strncmp compares bytes as unsigned numbers
        return ranks;
    }
    std::array<char, 255> bytes;
    std::iota(bytes.begin(), bytes.end(), char{1});
    const auto compare = [](char left, char right) { return _strnicmp(&left, &right, 1); };
    std::stable_sort(bytes.begin(), bytes.end(), [&](char left, char right) { return compare(left, right) < 0; });
    uint8_t rank = 1;
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (i > 0 && compare(bytes[i - 1], bytes[i]) != 0) ++rank;
        ranks[static_cast<uint8_t>(bytes[i])] = rank;
    }
    return ranks;
}

bool LineCompare_OrdinalW::Less(const wchar_t* left, uint32_t leftLength, const wchar_t* right, uint32_t rightLength) {
    return LessUnlessEmpty(leftLength, rightLength, [&] {
        if (m_order.IsThere()) return m_order.Compare(left, leftLength, right, rightLength, m_ignoreCase);
        const uint32_t length = std::min(leftLength, rightLength);
        return m_ignoreCase ? _wcsnicmp(left, right, length) : std::wcsncmp(left, right, length);
    });
}

bool LineCompare_LanguageAware_StringCompareA::Less(const char* left, uint32_t leftLength, const char* right,
                                                    uint32_t rightLength) {
    return LessUnlessEmpty(leftLength, rightLength, [&] {
        return Win32::CompareInLanguage(kLanguageRules, left, leftLength, right, rightLength);
    });
}

bool LineCompare_LanguageAware_StringCompareEx<wchar_t>::Less(const wchar_t* left, uint32_t leftLength,
                                                              const wchar_t* right, uint32_t rightLength) {
    return LessUnlessEmpty(leftLength, rightLength,
                           [&] { return m_order.Compare(left, leftLength, right, rightLength); });
}

uint32_t LineCompare_LanguageAware_WFallback::ConversionBuffer::Convert(const char* key, uint32_t length) {
    constexpr uint32_t kSlack = 2;
    constexpr uint32_t kSmallest = 128;
    const uint32_t bytes = std::min<uint32_t>(length, std::numeric_limits<int32_t>::max());
    if (bytes > capacity) {
        const uint32_t newCapacity = std::max(bytes + kSlack, kSmallest);
        units = std::make_unique_for_overwrite<wchar_t[]>(newCapacity);
        capacity = newCapacity;
    }
    return Win32::FromCodePage({key, bytes}, Win32::kSystemCodePage, units.get(), capacity);
}

bool LineCompare_LanguageAware_WFallback::Less(const char* left, uint32_t leftLength, const char* right,
                                               uint32_t rightLength) {
    return LessUnlessEmpty(leftLength, rightLength, [&] {
        const uint32_t leftUnits = m_left.Convert(left, leftLength);
        const uint32_t rightUnits = m_right.Convert(right, rightLength);
        return m_order.Compare(m_left.units.get(), leftUnits, m_right.units.get(), rightUnits);
    });
}

uint32_t LineCompare_LanguageAware_WFallback::MakeSortKey(const char* key, uint32_t length, uint8_t* buffer,
                                                          uint32_t capacity) {
    const uint32_t units = m_left.Convert(key, length);
    return Win32::MakeSortKey(m_order.GetRules(), m_left.units.get(), units, buffer, capacity);
}

}  // namespace QVLineSorter
