// line_compare.h - which of two keys comes first. The classes say it pair by pair, with the comparisons of the C
// runtime and the system; how a whole file is sorted with them is sort_lines.h's work.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "win32/text_order.h"

namespace QVLineSorter {

/// Order of two keys. Lengths count characters. In all classes an empty key comes before every other and equals an
/// empty one; a comparison that the system refuses counts as "less". One object serves one sort on one thread.
template <class CharT>
class LineCompare_TextBase {
public:
    virtual ~LineCompare_TextBase() = default;
    LineCompare_TextBase() = default;
    LineCompare_TextBase(const LineCompare_TextBase&) = delete;
    LineCompare_TextBase& operator=(const LineCompare_TextBase&) = delete;

    /// True when the left key comes strictly before the right one.
    virtual bool Less(const CharT* left, uint32_t leftLength, const CharT* right, uint32_t rightLength) = 0;
};

/// Byte by byte, by the C runtime, over the length of the shorter key. A key that the other one begins with is
/// therefore equal to it (compatibility: 12): "abc" and "abcd" keep their order. So this is no consistent order of more
/// than two keys, and no sort may be given it; ordinal_order.h says what order comes of it.
class LineCompare_OrdinalA final : public LineCompare_TextBase<char> {
public:
    explicit LineCompare_OrdinalA(bool ignoreCase) : m_ignoreCase(ignoreCase) {}
    bool Less(const char* left, uint32_t leftLength, const char* right, uint32_t rightLength) override;

    /// For each byte its place among all bytes in this order; equal ones have the same place, zero has place 0 and no
    /// other byte has. Asked from the runtime itself, whose idea of letters follows the process's locale.
    std::array<uint8_t, 256> ByteRanks() const;

private:
    bool m_ignoreCase;
};

/// By 16-bit values. With the system's comparison the shorter of two keys that begin alike comes first; without it, the
/// runtime's has the same rule as LineCompare_OrdinalA.
class LineCompare_OrdinalW final : public LineCompare_TextBase<wchar_t> {
public:
    explicit LineCompare_OrdinalW(bool ignoreCase) : m_ignoreCase(ignoreCase) {}
    bool Less(const wchar_t* left, uint32_t leftLength, const wchar_t* right, uint32_t rightLength) override;

    bool HasSystemComparison() const noexcept { return m_order.IsThere(); }

private:
    bool m_ignoreCase;
    Win32::OrdinalOrder m_order;
};

/// The language-aware classes always ignore case.
inline constexpr uint32_t kLanguageRules = Win32::LanguageRule::IgnoreCaseByLanguage;
constexpr uint32_t LanguageRules(bool digitsAsNumbers) {
    return digitsAsNumbers ? kLanguageRules | Win32::LanguageRule::DigitsAsNumbers : kLanguageRules;
}

// Each of them can also give a key's sort key: bytes whose order is the order of
// Less, with a zero byte at the end (and sometimes inside). `MakeSortKey` returns their number with the last zero byte,
// or 0 when the system makes none or `capacity` bytes are too few; with capacity 0 it returns the number needed.

/// 8-bit keys, by the system's 8-bit comparison in the user's locale.
class LineCompare_LanguageAware_StringCompareA final : public LineCompare_TextBase<char> {
public:
    bool Less(const char* left, uint32_t leftLength, const char* right, uint32_t rightLength) override;
    uint32_t MakeSortKey(const char* key, uint32_t length, uint8_t* buffer, uint32_t capacity) const {
        return Win32::MakeSortKey(kLanguageRules, key, length, buffer, capacity);
    }
};

template <class CharT>
class LineCompare_LanguageAware_StringCompareEx;

template <>
class LineCompare_LanguageAware_StringCompareEx<wchar_t> : public LineCompare_TextBase<wchar_t> {
public:
    LineCompare_LanguageAware_StringCompareEx(bool digitsAsNumbers, bool useCompareStringEx)
        : m_order(LanguageRules(digitsAsNumbers), useCompareStringEx) {}
    bool Less(const wchar_t* left, uint32_t leftLength, const wchar_t* right, uint32_t rightLength) override;
    uint32_t MakeSortKey(const wchar_t* key, uint32_t length, uint8_t* buffer, uint32_t capacity) const {
        return Win32::MakeSortKey(m_order.GetRules(), key, length, buffer, capacity);
    }

private:
    Win32::LanguageOrder m_order;
};

/// 8-bit keys have no such comparison of their own: a derived class converts them.
template <>
class LineCompare_LanguageAware_StringCompareEx<char> : public LineCompare_TextBase<char> {
protected:
    LineCompare_LanguageAware_StringCompareEx(bool digitsAsNumbers, bool useCompareStringEx)
        : m_order(LanguageRules(digitsAsNumbers), useCompareStringEx) {}

    Win32::LanguageOrder m_order;
};

/// 8-bit keys converted to UTF-16, digits as numbers. The keys are in the system's code page.
class LineCompare_LanguageAware_WFallback final : public LineCompare_LanguageAware_StringCompareEx<char> {
public:
    LineCompare_LanguageAware_WFallback() : LineCompare_LanguageAware_StringCompareEx<char>(true, true) {}
    bool Less(const char* left, uint32_t leftLength, const char* right, uint32_t rightLength) override;
    uint32_t MakeSortKey(const char* key, uint32_t length, uint8_t* buffer, uint32_t capacity);

private:
    /// Grows only, so that a sort allocates for a key longer than any before it and for no other.
    struct ConversionBuffer {
        /// Converts the whole key and returns its length in UTF-16 units. That length, not the number of bytes, is what
        /// is compared: in a multi-byte code page the rest of the buffer belongs to another key.
        uint32_t Convert(const char* key, uint32_t length);

        uint32_t capacity = 0;
        std::unique_ptr<wchar_t[]> units;
    };

    ConversionBuffer m_left;
    ConversionBuffer m_right;
};

}  // namespace QVLineSorter
