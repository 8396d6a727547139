#include "win32/text_order.h"

#include <algorithm>
#include <limits>

#include "win32/module.h"

namespace Win32 {
namespace {

static_assert(LanguageRule::IgnoreCase == NORM_IGNORECASE);
static_assert(LanguageRule::IgnoreCaseByLanguage == (NORM_LINGUISTIC_CASING | LINGUISTIC_IGNORECASE));
constexpr LCID kUserLocale = LOCALE_USER_DEFAULT;

using CompareStringOrdinalFunction = int(WINAPI*)(LPCWSTR, int, LPCWSTR, int, BOOL);
using CompareStringExFunction = int(WINAPI*)(LPCWSTR, DWORD, LPCWSTR, int, LPCWSTR, int, LPNLSVERSIONINFO, LPVOID,
                                             LPARAM);
using UpcaseFunction = WCHAR(WINAPI*)(WCHAR);

/// The system counts in signed numbers and takes a negative one for "up to the closing zero", which these texts do not
/// have.
int SystemLength(uint32_t length) {
    return static_cast<int>(std::min<uint32_t>(length, std::numeric_limits<int>::max()));
}

/// The system answers 1, 2, 3 for less, equal, greater and 0 for an error, which so counts as less.
int ThreeWay(int systemResult) {
    return systemResult - CSTR_EQUAL;
}

}  // namespace

struct OptionalSystemFunction::Library {
    Module module;
};

OptionalSystemFunction::OptionalSystemFunction(const char* name) {
    if (!name) return;
    m_library = std::make_unique<Library>();
    m_library->module = LoadSystemModule(L"kernel32.dll");
    m_address = FindFunction<void*>(m_library->module, name);
}

OptionalSystemFunction::~OptionalSystemFunction() = default;

OrdinalOrder::OrdinalOrder() : m_compareStringOrdinal("CompareStringOrdinal") {}

int OrdinalOrder::Compare(const wchar_t* left, uint32_t leftLength, const wchar_t* right, uint32_t rightLength,
                          bool ignoreCase) const {
    const auto compare = reinterpret_cast<CompareStringOrdinalFunction>(m_compareStringOrdinal.Get());
    return ThreeWay(compare(left, SystemLength(leftLength), right, SystemLength(rightLength), ignoreCase));
}

std::vector<wchar_t> OrdinalCaseTable() {
    // The table that CompareStringOrdinal uses is the one that file names are compared with; only this function shows
    // it.
    const Module system = LoadSystemModule(L"ntdll.dll");
    const auto upcase = FindFunction<UpcaseFunction>(system, "RtlUpcaseUnicodeChar");
    if (!upcase) return {};
    std::vector<wchar_t> table(0x10000);
    for (uint32_t unit = 0; unit < table.size(); ++unit) table[unit] = upcase(static_cast<wchar_t>(unit));
    return table;
}

uint32_t MakeSortKey(uint32_t rules, const wchar_t* text, uint32_t length, uint8_t* buffer, uint32_t capacity) {
    // For sort keys the system takes a buffer of bytes, whatever the parameter's type says.
    return static_cast<uint32_t>(LCMapStringW(kUserLocale, LCMAP_SORTKEY | rules, text, SystemLength(length),
                                              reinterpret_cast<wchar_t*>(buffer), SystemLength(capacity)));
}

uint32_t MakeSortKey(uint32_t rules, const char* text, uint32_t length, uint8_t* buffer, uint32_t capacity) {
    return static_cast<uint32_t>(LCMapStringA(kUserLocale, LCMAP_SORTKEY | rules, text, SystemLength(length),
                                              reinterpret_cast<char*>(buffer), SystemLength(capacity)));
}

int CompareInLanguage(uint32_t rules, const char* left, uint32_t leftLength, const char* right, uint32_t rightLength) {
    return ThreeWay(
        CompareStringA(kUserLocale, rules, left, SystemLength(leftLength), right, SystemLength(rightLength)));
}

LanguageOrder::LanguageOrder(uint32_t rules, bool useCompareStringEx)
    : m_rules(rules), m_compareStringEx(useCompareStringEx ? "CompareStringEx" : nullptr) {}

int LanguageOrder::Compare(const wchar_t* left, uint32_t leftLength, const wchar_t* right, uint32_t rightLength) const {
    const int leftUnits = SystemLength(leftLength);
    const int rightUnits = SystemLength(rightLength);
    constexpr const wchar_t* kUsersLocale = nullptr;
    if (const auto compare = reinterpret_cast<CompareStringExFunction>(m_compareStringEx.Get()))
        return ThreeWay(compare(kUsersLocale, m_rules, left, leftUnits, right, rightUnits, nullptr, nullptr, 0));
    return ThreeWay(CompareStringW(kUserLocale, m_rules, left, leftUnits, right, rightUnits));
}

}  // namespace Win32
