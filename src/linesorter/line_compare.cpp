#include "linesorter/line_compare.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <limits>
#include <numeric>

#include "win32/module.h"

namespace QVLineSorter {
namespace {

constexpr DWORD kLanguageFlags = NORM_LINGUISTIC_CASING | LINGUISTIC_IGNORECASE;
static_assert(kLanguageFlags == 0x08000010);
constexpr DWORD kDigitsAsNumbers = 0x00000008;  // SORT_DIGITSASNUMBERS, which older headers lack
constexpr LCID kUserLocale = LOCALE_USER_DEFAULT;

using CompareStringOrdinalFunction = int(WINAPI*)(LPCWSTR, int, LPCWSTR, int, BOOL);
using CompareStringExFunction = int(WINAPI*)(LPCWSTR, DWORD, LPCWSTR, int, LPCWSTR, int, LPNLSVERSIONINFO, LPVOID,
                                             LPARAM);
using UpcaseFunction = WCHAR(WINAPI*)(WCHAR);

/// The rule that stands before every comparison; `compare` gives the three-way result for two keys that are not empty.
template <class Compare>
bool LessUnlessEmpty(uint32_t leftLength, uint32_t rightLength, Compare&& compare) {
    if (leftLength == 0 || rightLength == 0) return leftLength == 0 && rightLength != 0;
    return compare() < 0;
}

/// The system counts in signed numbers and takes a negative one for "up to the closing zero", which keys do not have.
int SystemLength(uint32_t length) {
    return static_cast<int>(std::min<uint32_t>(length, std::numeric_limits<int>::max()));
}

/// The system answers 1, 2, 3 for less, equal, greater and 0 for an error, which so counts as less.
int ThreeWay(int systemResult) {
    return systemResult - CSTR_EQUAL;
}

}  // namespace

struct OptionalSystemFunction::Library {
    Win32::Module module;
};

OptionalSystemFunction::OptionalSystemFunction(const char* name) {
    if (!name) return;
    m_library = std::make_unique<Library>();
    m_library->module = Win32::LoadSystemModule(L"kernel32.dll");
    m_address = Win32::FindFunction<void*>(m_library->module, name);
}

OptionalSystemFunction::~OptionalSystemFunction() = default;

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

LineCompare_OrdinalW::LineCompare_OrdinalW(bool ignoreCase)
    : m_ignoreCase(ignoreCase), m_compareStringOrdinal("CompareStringOrdinal") {}

bool LineCompare_OrdinalW::Less(const wchar_t* left, uint32_t leftLength, const wchar_t* right, uint32_t rightLength) {
    return LessUnlessEmpty(leftLength, rightLength, [&] {
        if (const auto compare = reinterpret_cast<CompareStringOrdinalFunction>(m_compareStringOrdinal.Get()))
            return ThreeWay(compare(left, SystemLength(leftLength), right, SystemLength(rightLength), m_ignoreCase));
        const uint32_t length = std::min(leftLength, rightLength);
        return m_ignoreCase ? _wcsnicmp(left, right, length) : std::wcsncmp(left, right, length);
    });
}

std::vector<wchar_t> OrdinalCaseTable() {
    // The table behind CompareStringOrdinal is the one that file names are compared with; only this function shows it.
    const Win32::Module system = Win32::LoadSystemModule(L"ntdll.dll");
    const auto upcase = Win32::FindFunction<UpcaseFunction>(system, "RtlUpcaseUnicodeChar");
    if (!upcase) return {};
    std::vector<wchar_t> table(0x10000);
    for (uint32_t unit = 0; unit < table.size(); ++unit) table[unit] = upcase(static_cast<wchar_t>(unit));
    return table;
}

LineCompare_LanguageAware_StringCompareA::LineCompare_LanguageAware_StringCompareA()
    : m_flags(kLanguageFlags), m_locale(kUserLocale) {}

bool LineCompare_LanguageAware_StringCompareA::Less(const char* left, uint32_t leftLength, const char* right,
                                                    uint32_t rightLength) {
    return LessUnlessEmpty(leftLength, rightLength, [&] {
        return ThreeWay(
            CompareStringA(m_locale, m_flags, left, SystemLength(leftLength), right, SystemLength(rightLength)));
    });
}

uint32_t LineCompare_LanguageAware_StringCompareA::MakeSortKey(const char* key, uint32_t length, uint8_t* buffer,
                                                               uint32_t capacity) const {
    // For sort keys the system takes a buffer of bytes, whatever the parameter's type says.
    return static_cast<uint32_t>(LCMapStringA(m_locale, LCMAP_SORTKEY | m_flags, key, SystemLength(length),
                                              reinterpret_cast<char*>(buffer), SystemLength(capacity)));
}

LanguageComparison::LanguageComparison(bool digitsAsNumbers, bool useCompareStringEx)
    : m_flags(digitsAsNumbers ? kLanguageFlags | kDigitsAsNumbers : kLanguageFlags),
      m_locale(kUserLocale),
      m_compareStringEx(useCompareStringEx ? "CompareStringEx" : nullptr) {}

int LanguageComparison::Compare(const wchar_t* left, uint32_t leftLength, const wchar_t* right,
                                uint32_t rightLength) const {
    const int leftUnits = SystemLength(leftLength);
    const int rightUnits = SystemLength(rightLength);
    if (const auto compare = reinterpret_cast<CompareStringExFunction>(m_compareStringEx.Get()))
        return ThreeWay(compare(m_localeName, m_flags, left, leftUnits, right, rightUnits, nullptr, nullptr, 0));
    return ThreeWay(CompareStringW(m_locale, m_flags, left, leftUnits, right, rightUnits));
}

uint32_t LanguageComparison::MakeSortKey(const wchar_t* key, uint32_t length, uint8_t* buffer,
                                         uint32_t capacity) const {
    return static_cast<uint32_t>(LCMapStringW(m_locale, LCMAP_SORTKEY | m_flags, key, SystemLength(length),
                                              reinterpret_cast<wchar_t*>(buffer), SystemLength(capacity)));
}

bool LineCompare_LanguageAware_StringCompareEx<wchar_t>::Less(const wchar_t* left, uint32_t leftLength,
                                                              const wchar_t* right, uint32_t rightLength) {
    return LessUnlessEmpty(leftLength, rightLength,
                           [&] { return m_comparison.Compare(left, leftLength, right, rightLength); });
}

uint32_t LineCompare_LanguageAware_WFallback::ConversionBuffer::Convert(const char* key, uint32_t length) {
    constexpr uint32_t kSlack = 2;
    constexpr uint32_t kSmallest = 128;
    const auto bytes = static_cast<uint32_t>(SystemLength(length));
    if (bytes > capacity) {
        const uint32_t newCapacity = std::max(bytes + kSlack, kSmallest);
        units = std::make_unique_for_overwrite<wchar_t[]>(newCapacity);
        capacity = newCapacity;
    }
    return static_cast<uint32_t>(
        MultiByteToWideChar(CP_ACP, 0, key, SystemLength(length), units.get(), SystemLength(capacity)));
}

bool LineCompare_LanguageAware_WFallback::Less(const char* left, uint32_t leftLength, const char* right,
                                               uint32_t rightLength) {
    return LessUnlessEmpty(leftLength, rightLength, [&] {
        const uint32_t leftUnits = m_left.Convert(left, leftLength);
        const uint32_t rightUnits = m_right.Convert(right, rightLength);
        return m_comparison.Compare(m_left.units.get(), leftUnits, m_right.units.get(), rightUnits);
    });
}

uint32_t LineCompare_LanguageAware_WFallback::MakeSortKey(const char* key, uint32_t length, uint8_t* buffer,
                                                          uint32_t capacity) {
    const uint32_t units = m_left.Convert(key, length);
    return m_comparison.MakeSortKey(m_left.units.get(), units, buffer, capacity);
}

}  // namespace QVLineSorter
