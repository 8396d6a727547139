#include "textio/byte_search.h"

#include <bit>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace QVUtils {
namespace {

template <class Word>
bool EqualWord(const char* left, const char* right) {
    Word leftWord;
    Word rightWord;
    std::memcpy(&leftWord, left, sizeof(Word));
    std::memcpy(&rightWord, right, sizeof(Word));
    return leftWord == rightWord;
}

/// Word by word, the last of which may overlap the one before: items are short, and a call would cost more.
template <class Word>
bool EqualWords(const char* left, const char* right, size_t size) {
    for (size_t at = 0; at + sizeof(Word) < size; at += sizeof(Word))
        if (!EqualWord<Word>(left + at, right + at)) return false;
    return EqualWord<Word>(left + size - sizeof(Word), right + size - sizeof(Word));
}

bool EqualBytes(const void* left, const void* right, size_t size) {
    const auto* const leftBytes = static_cast<const char*>(left);
    const auto* const rightBytes = static_cast<const char*>(right);
    if (size >= sizeof(uint64_t)) return EqualWords<uint64_t>(leftBytes, rightBytes, size);
    if (size >= sizeof(uint32_t)) return EqualWords<uint32_t>(leftBytes, rightBytes, size);
    return EqualWords<uint8_t>(leftBytes, rightBytes, size);
}

/// `length`: at least 1.
template <class CharT>
bool EqualUnits(const CharT* left, const CharT* right, size_t length, bool ignoreCase) {
    if (!ignoreCase) return EqualBytes(left, right, length * sizeof(CharT));
    for (size_t i = 0; i < length; ++i)
        if (left[i] != right[i] && FoldCase(left[i]) != FoldCase(right[i])) return false;
    return true;
}

#ifdef __SSE2__

/// Sixteen bytes of text as units of CharT. A mask holds one bit for each byte; the bits of one unit are equal.
template <class CharT>
struct Block {
    static constexpr size_t kUnits = 16 / sizeof(CharT);

    static __m128i Load(const CharT* text) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text)); }
    static __m128i Fill(CharT unit) {
        if constexpr (sizeof(CharT) == 1)
            return _mm_set1_epi8(static_cast<char>(unit));
        else
            return _mm_set1_epi16(static_cast<short>(unit));
    }
    static __m128i Equal(__m128i left, __m128i right) {
        if constexpr (sizeof(CharT) == 1)
            return _mm_cmpeq_epi8(left, right);
        else
            return _mm_cmpeq_epi16(left, right);
    }
    static uint32_t Mask(__m128i equal) { return static_cast<uint32_t>(_mm_movemask_epi8(equal)); }
    static size_t FirstUnit(uint32_t mask) { return static_cast<size_t>(std::countr_zero(mask)) / sizeof(CharT); }
    static size_t LastUnit(uint32_t mask) { return static_cast<size_t>(31 - std::countl_zero(mask)) / sizeof(CharT); }
    /// The mask without the bits of unit `index`.
    static uint32_t Without(uint32_t mask, size_t index) {
        constexpr uint32_t kUnitBits = (1u << sizeof(CharT)) - 1;
        return mask & ~(kUnitBits << (index * sizeof(CharT)));
    }
};

/// Compares a block with one unit; a letter whose case is ignored meets its other case by setting the bit between them.
template <class CharT>
class UnitTest {
public:
    UnitTest(CharT unit, bool ignoreCase) {
        const CharT folded = FoldCase(unit);
        const bool letter = ignoreCase && folded >= CharT('a') && folded <= CharT('z');
        m_unit = Block<CharT>::Fill(letter ? folded : unit);
        m_caseBit = Block<CharT>::Fill(letter ? CharT(0x20) : CharT(0));
    }
    __m128i operator()(const CharT* text) const {
        return Block<CharT>::Equal(_mm_or_si128(Block<CharT>::Load(text), m_caseBit), m_unit);
    }

private:
    __m128i m_unit;
    __m128i m_caseBit;
};

#endif

}  // namespace

template <class CharT>
const CharT* FindLineBreak(const CharT* begin, const CharT* end) {
#ifdef __SSE2__
    using B = Block<CharT>;
    const __m128i cr = B::Fill(CharT('\r'));
    const __m128i lf = B::Fill(CharT('\n'));
    for (; static_cast<size_t>(end - begin) >= B::kUnits; begin += B::kUnits) {
        const __m128i block = B::Load(begin);
        const uint32_t mask = B::Mask(_mm_or_si128(B::Equal(block, cr), B::Equal(block, lf)));
        if (mask != 0) return begin + B::FirstUnit(mask);
    }
#endif
    while (begin != end && *begin != CharT('\r') && *begin != CharT('\n')) ++begin;
    return begin;
}

template <class CharT>
const CharT* FindUnit(const CharT* begin, const CharT* end, CharT unit) {
#ifdef __SSE2__
    using B = Block<CharT>;
    const __m128i wanted = B::Fill(unit);
    for (; static_cast<size_t>(end - begin) >= B::kUnits; begin += B::kUnits) {
        const uint32_t mask = B::Mask(B::Equal(B::Load(begin), wanted));
        if (mask != 0) return begin + B::FirstUnit(mask);
    }
#endif
    while (begin != end && *begin != unit) ++begin;
    return begin;
}

template <class CharT>
const CharT* FindSequence(const CharT* begin, const CharT* end, const CharT* item, size_t length, bool ignoreCase) {
    if (length == 0) return begin;
    if (static_cast<size_t>(end - begin) < length) return end;
    const CharT* const lastStart = end - length;
#ifdef __SSE2__
    using B = Block<CharT>;
    const UnitTest<CharT> first(item[0], ignoreCase);
    const UnitTest<CharT> last(item[length - 1], ignoreCase);
    // Both loads stay inside the text as long as the second one does, which begins length - 1 units further on.
    for (; static_cast<size_t>(end - begin) >= length - 1 + B::kUnits; begin += B::kUnits) {
        uint32_t mask = B::Mask(_mm_and_si128(first(begin), last(begin + length - 1)));
        while (mask != 0) {
            const size_t index = B::FirstUnit(mask);
            if (EqualUnits(begin + index, item, length, ignoreCase)) return begin + index;
            mask = B::Without(mask, index);
        }
    }
#endif
    for (; begin <= lastStart; ++begin)
        if (EqualUnits(begin, item, length, ignoreCase)) return begin;
    return end;
}

template <class CharT>
const CharT* FindLastSequence(const CharT* begin, const CharT* end, const CharT* item, size_t length, bool ignoreCase) {
    if (length == 0 || static_cast<size_t>(end - begin) < length) return end;
    const CharT* after = end - length + 1;  // one after the places still to be looked at
#ifdef __SSE2__
    using B = Block<CharT>;
    const UnitTest<CharT> first(item[0], ignoreCase);
    const UnitTest<CharT> last(item[length - 1], ignoreCase);
    for (; static_cast<size_t>(after - begin) >= B::kUnits; after -= B::kUnits) {
        const CharT* const block = after - B::kUnits;
        uint32_t mask = B::Mask(_mm_and_si128(first(block), last(block + length - 1)));
        while (mask != 0) {
            const size_t index = B::LastUnit(mask);
            if (EqualUnits(block + index, item, length, ignoreCase)) return block + index;
            mask = B::Without(mask, index);
        }
    }
#endif
    while (after != begin) {
        --after;
        if (EqualUnits(after, item, length, ignoreCase)) return after;
    }
    return end;
}

// Byte text, and 16-bit text under the name that it has on this platform.
#define QV_INSTANTIATE(CharT)                                                                   \
    template const CharT* FindLineBreak(const CharT*, const CharT*);                            \
    template const CharT* FindUnit(const CharT*, const CharT*, CharT);                          \
    template const CharT* FindSequence(const CharT*, const CharT*, const CharT*, size_t, bool); \
    template const CharT* FindLastSequence(const CharT*, const CharT*, const CharT*, size_t, bool);
QV_INSTANTIATE(char)
#ifdef _WIN32
QV_INSTANTIATE(wchar_t)
#else
QV_INSTANTIATE(char16_t)
#endif
#undef QV_INSTANTIATE

}  // namespace QVUtils
