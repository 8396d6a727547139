// text_order.h - how the system orders texts: by 16-bit values, and in the user's language. Lengths count characters:
// bytes or UTF-16 units; texts need no closing zero. Comparisons give a number below, at or above 0 for less, equal and
// greater, and one below 0 for an error.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace Win32 {

/// A function of kernel32.dll that is looked up at run time, with the library that it lives in.
class OptionalSystemFunction {
public:
    /// A library or function that is not found is no error: there is no address then. Null looks for nothing.
    explicit OptionalSystemFunction(const char* name);
    ~OptionalSystemFunction();
    OptionalSystemFunction(const OptionalSystemFunction&) = delete;
    OptionalSystemFunction& operator=(const OptionalSystemFunction&) = delete;

    void* Get() const noexcept { return m_address; }

private:
    struct Library;  // keeps the system's header out of here
    std::unique_ptr<Library> m_library;
    void* m_address = nullptr;
};

/// By 16-bit values, with or without case, whatever the user's language.
class OrdinalOrder {
public:
    OrdinalOrder();

    /// Without it, Compare must not be called.
    bool IsThere() const noexcept { return m_compareStringOrdinal.Get() != nullptr; }
    int Compare(const wchar_t* left, uint32_t leftLength, const wchar_t* right, uint32_t rightLength,
                bool ignoreCase) const;

private:
    OptionalSystemFunction m_compareStringOrdinal;
};

/// For each 16-bit character the one that the system's ordinal comparison takes for it when it ignores case; empty when
/// the system does not tell.
std::vector<wchar_t> OrdinalCaseTable();

/// What a language's order makes of texts. The values are the system's.
namespace LanguageRule {
inline constexpr uint32_t IgnoreCase = 0x00000001;            // NORM_IGNORECASE
inline constexpr uint32_t DigitsAsNumbers = 0x00000008;       // SORT_DIGITSASNUMBERS
inline constexpr uint32_t IgnoreCaseByLanguage = 0x08000010;  // NORM_LINGUISTIC_CASING | LINGUISTIC_IGNORECASE
}  // namespace LanguageRule

// A sort key is bytes whose order is the order of the comparison under the same rules (LanguageRule), with a zero byte
// at the end and sometimes inside. Both functions return their number with the last zero byte, or 0 when the system
// makes none or `capacity` bytes are too few; with capacity 0 they return the number needed.
uint32_t MakeSortKey(uint32_t rules, const wchar_t* text, uint32_t length, uint8_t* buffer, uint32_t capacity);
/// 8-bit text in the code page of the user's locale.
uint32_t MakeSortKey(uint32_t rules, const char* text, uint32_t length, uint8_t* buffer, uint32_t capacity);

/// 8-bit texts in the user's language, in the code page of the user's locale.
int CompareInLanguage(uint32_t rules, const char* left, uint32_t leftLength, const char* right, uint32_t rightLength);

/// UTF-16 texts in the user's language: by CompareStringEx, or by CompareStringW where it is missing or not wanted.
class LanguageOrder {
public:
    LanguageOrder(uint32_t rules, bool useCompareStringEx);

    uint32_t GetRules() const noexcept { return m_rules; }
    int Compare(const wchar_t* left, uint32_t leftLength, const wchar_t* right, uint32_t rightLength) const;

private:
    uint32_t m_rules;
    OptionalSystemFunction m_compareStringEx;
};

}  // namespace Win32
