// The order of a language, in the languages that the system has: as the system compares line by line.
#include "linesorter/language_order.h"

#include <algorithm>
#include <set>

#include "fuzz/plain_order.h"
#include "linesorter/sample_lines.h"
#include "support/replaced_imports.h"

namespace {

using namespace QVFuzz;

// The replaced functions are plain ones, so what they use is global.
std::wstring g_locale;
LCID g_number = 0;

template <class Function>
Function* Original(const char* name, Function*) {
    return reinterpret_cast<Function*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name));
}

int WINAPI CompareW(LCID, DWORD rules, LPCWCH left, int leftLength, LPCWCH right, int rightLength) {
    return CompareStringEx(g_locale.c_str(), rules, left, leftLength, right, rightLength, nullptr, nullptr, 0);
}
int WINAPI CompareA(LCID, DWORD rules, LPCCH left, int leftLength, LPCCH right, int rightLength) {
    return Original("CompareStringA", &CompareStringA)(g_number, rules, left, leftLength, right, rightLength);
}
int WINAPI MapW(LCID, DWORD rules, LPCWSTR text, int length, LPWSTR buffer, int capacity) {
    return LCMapStringEx(g_locale.c_str(), rules, text, length, buffer, capacity, nullptr, nullptr, 0);
}
int WINAPI MapA(LCID, DWORD rules, LPCSTR text, int length, LPSTR buffer, int capacity) {
    return Original("LCMapStringA", &LCMapStringA)(g_number, rules, text, length, buffer, capacity);
}

/// Letters that weigh together somewhere, accents, what is ignored, and numbers.
constexpr const wchar_t* kParts[] = {
    L"c",     L"h",     L"ch",     L"l",      L"d",      L"z",      L"s",     L"g",      L"y",
    L"n",     L"t",     L"j",      L"a",      L"aa",     L"e",      L"o",     L"C",      L"H",
    L"A",     L"-",     L"'",      L".",      L" ",      L"1",      L"02",    L"10",     L"v",
    L"w",     L"i",     L"I",      L"\x301",  L"\xAD",   L"\x200D", L"\xE9",  L"\xF4",   L"\xDF",
    L"\xE6",  L"\xFC",  L"\x10D",  L"\x17E",  L"\x127",  L"\x131",  L"\x130", L"\x43E",  L"\x438",
    L"\x306", L"\x439", L"\x3042", L"\x30FC", L"\x4E2D", L"\xE40",  L"\xE01", L"\xAC00", L"\x644\x627"};

BOOL CALLBACK AddLocale(LPWSTR name, DWORD, LPARAM list) {
    reinterpret_cast<std::vector<std::wstring>*>(list)->emplace_back(name);
    return TRUE;
}

/// One locale of all that order the parts, and pairs of letters, alike.
std::vector<std::wstring> DifferentLocales() {
    std::vector<std::wstring> all, different;
    EnumSystemLocalesEx(AddLocale, LOCALE_WINDOWS, reinterpret_cast<LPARAM>(&all), nullptr);
    std::wstring probe;
    for (const wchar_t* const part : kParts) (probe += part) += L'b';
    for (wchar_t first = L'a'; first <= L'z'; ++first)
        for (wchar_t second = L'a'; second <= L'z'; ++second) ((probe += first) += second) += L' ';
    std::set<std::vector<uint8_t>> keys;
    for (const std::wstring& name : all) {
        std::vector<uint8_t> key(1 << 14);
        LCMapStringEx(name.c_str(), LCMAP_SORTKEY | kLanguageRules, probe.c_str(), static_cast<int>(probe.size()),
                      reinterpret_cast<LPWSTR>(key.data()), static_cast<int>(key.size()), nullptr, nullptr, 0);
        if (keys.insert(std::move(key)).second) different.push_back(name);
    }
    return different;
}

template <class CharT>
Lines<CharT> Words(uint32_t seed) {
    QVTest::Random random(seed);
    const std::basic_string<CharT> beginning = QVTest::As<CharT>("chch");
    Lines<CharT> words;
    while (words.size() < 400) {
        // Some begin alike, so that groups are made.
        std::basic_string<CharT> word = random.Below(3) == 0 ? beginning : std::basic_string<CharT>();
        for (uint32_t more = random.Below(9); more > 0; --more) {
            const std::wstring_view part = kParts[random.Below(std::size(kParts))];
            // 8-bit text has bytes of its code page, whatever they are there.
            for (const wchar_t unit : part) word += static_cast<CharT>(sizeof(CharT) == 2 || unit < 256 ? unit : 0xE8);
        }
        words.push_back(std::move(word));
    }
    return words;
}

template <class CharT, class Compare>
void ExpectTheSystemsOrder(Compare&& compare, uint32_t options, uint32_t seed) {
    const Lines<CharT> lines = Words<CharT>(seed);
    Lines<CharT> expected = lines;
    std::ranges::stable_sort(expected, [&](const auto& left, const auto& right) {
        return compare.Less(left.data(), static_cast<uint32_t>(left.size()), right.data(),
                            static_cast<uint32_t>(right.size()));
    });
    SortRequest request;
    request.options = kLanguage | options;
    auto data = Load(lines);
    Sort(data, request, {});
    EXPECT_TRUE(Texts(data) == expected) << std::string(g_locale.begin(), g_locale.end()) << ", options " << options
                                         << ", " << sizeof(CharT) << " bytes a character";
}

TEST(LanguageOrder, IsThatOfTheSystemInEachLanguage) {
    const HMODULE program = GetModuleHandleW(nullptr);
    const QVTest::ReplacedImport compareW(program, "CompareStringW", reinterpret_cast<void*>(CompareW)),
        compareA(program, "CompareStringA", reinterpret_cast<void*>(CompareA)),
        mapW(program, "LCMapStringW", reinterpret_cast<void*>(MapW)),
        mapA(program, "LCMapStringA", reinterpret_cast<void*>(MapA));
    const std::vector<std::wstring> locales = DifferentLocales();
    ASSERT_GT(locales.size(), 20u);
    uint32_t seed = 0;
    for (const std::wstring& locale : locales) {
        g_locale = locale;
        g_number = LocaleNameToLCID(locale.c_str(), 0);
        for (const bool isNatural : {false, true})
            ExpectTheSystemsOrder<wchar_t>(LineCompare_LanguageAware_StringCompareEx<wchar_t>(isNatural, false),
                                           Option::NoCompareStringEx | (isNatural ? Option::NaturalNumbers : 0),
                                           ++seed);
        if (g_number != 0 && g_number != LOCALE_CUSTOM_UNSPECIFIED)
            ExpectTheSystemsOrder<char>(LineCompare_LanguageAware_StringCompareA(), 0, ++seed);
    }
}

}  // namespace
