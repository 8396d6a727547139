#include "textio/byte_search.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include "win32/text.h"

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

constexpr size_t kMostLike = 4;  // units that count as one and are still looked for many at a time

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

/// The bits of the four blocks at `text` for which `test` holds.
template <class CharT, class Test>
uint64_t MarkFour(const CharT* text, Test test) {
    using B = Block<CharT>;
    uint64_t marks = 0;
    for (size_t block = 0; block < 4; ++block)
        marks |= uint64_t{B::Mask(test(B::Load(text + block * B::kUnits)))} << (16 * block);
    return marks;
}

/// Moves `at` to the first unit for which `test` holds. Without such a unit in whole blocks: false, and `at` stands at
/// the rest of the text. Four blocks at once: a line is mostly longer than one.
template <class CharT, class Test>
bool FindInBlocks(const CharT*& at, const CharT* end, Test test) {
    using B = Block<CharT>;
    for (; static_cast<size_t>(end - at) >= 4 * B::kUnits; at += 4 * B::kUnits) {
        const uint64_t marks = MarkFour(at, test);
        if (marks == 0) continue;
        at += static_cast<size_t>(std::countr_zero(marks)) / sizeof(CharT);
        return true;
    }
    for (; static_cast<size_t>(end - at) >= B::kUnits; at += B::kUnits) {
        const uint32_t mask = B::Mask(test(B::Load(at)));
        if (mask == 0) continue;
        at += B::FirstUnit(mask);
        return true;
    }
    return false;
}

/// Compares a block with up to kLike units that count as one.
template <class CharT, size_t kLike>
class UnitTest {
public:
    explicit UnitTest(const std::vector<CharT>& units) {
        for (size_t i = 0; i < kLike; ++i) m_units[i] = Block<CharT>::Fill(units[std::min(i, units.size() - 1)]);
    }
    __m128i operator()(const CharT* text) const {
        const __m128i block = Block<CharT>::Load(text);
        __m128i equal = Block<CharT>::Equal(block, m_units[0]);
        for (size_t i = 1; i < kLike; ++i) equal = _mm_or_si128(equal, Block<CharT>::Equal(block, m_units[i]));
        return equal;
    }

private:
    __m128i m_units[kLike];
};

#endif

}  // namespace

template <class CharT>
const CharT* FindLineBreak(const CharT* begin, const CharT* end) {
#ifdef __SSE2__
    using B = Block<CharT>;
    const __m128i cr = B::Fill(CharT('\r'));
    const __m128i lf = B::Fill(CharT('\n'));
    const auto isBreak = [=](__m128i block) { return _mm_or_si128(B::Equal(block, cr), B::Equal(block, lf)); };
    if (FindInBlocks(begin, end, isBreak)) return begin;
#endif
    while (begin != end && *begin != CharT('\r') && *begin != CharT('\n')) ++begin;
    return begin;
}

template <class CharT>
bool HasOnlyCrLf(const CharT* begin, const CharT* end) {
    const CharT* at = begin;
#ifdef __SSE2__
    using B = Block<CharT>;
    const __m128i cr = B::Fill(CharT('\r'));
    const __m128i lf = B::Fill(CharT('\n'));
    // Each place is looked at together with the one before it, so a pair is seen wherever it lies.
    if (begin != end && *begin == CharT('\n')) return false;
    for (; static_cast<size_t>(end - at) > B::kUnits; at += B::kUnits)
        if (B::Mask(B::Equal(B::Load(at), cr)) != B::Mask(B::Equal(B::Load(at + 1), lf))) return false;
#endif
    for (; at != end; ++at) {
        const bool isCr = *at == CharT('\r');
        if (isCr != (at + 1 != end && at[1] == CharT('\n'))) return false;
    }
    return begin == end || *begin != CharT('\n');
}

template <class CharT>
LineBegins CountLineBegins(const CharT* begin, const CharT* end) {
    LineBegins found;
#ifdef __SSE2__
    using B = Block<CharT>;
    const __m128i cr = B::Fill(CharT('\r'));
    const __m128i lf = B::Fill(CharT('\n'));
    const __m128i zero = _mm_setzero_si128();
    __m128i zeros = zero;
    while (static_cast<size_t>(end - begin) >= B::kUnits) {
        // Each byte counts its own hits, and so many that it does not overflow.
        const size_t blocks = std::min<size_t>(static_cast<size_t>(end - begin) / B::kUnits, 255);
        __m128i counts = zero;
        for (const CharT* const stop = begin + blocks * B::kUnits; begin != stop; begin += B::kUnits) {
            const __m128i units = B::Load(begin);
            const __m128i before = B::Load(begin - 1);
            const __m128i isBegin =
                _mm_or_si128(B::Equal(before, lf), _mm_andnot_si128(B::Equal(units, lf), B::Equal(before, cr)));
            counts = _mm_sub_epi8(counts, isBegin);
            zeros = _mm_or_si128(zeros, B::Equal(units, zero));
        }
        const __m128i sums = _mm_sad_epu8(counts, zero);
        const auto bytes = static_cast<size_t>(_mm_cvtsi128_si64(_mm_add_epi64(sums, _mm_unpackhi_epi64(sums, sums))));
        found.lines += bytes / sizeof(CharT);
    }
    found.hasZero = B::Mask(zeros) != 0;
#endif
    for (; begin != end; ++begin) {
        if (begin[-1] == CharT('\n') || (begin[-1] == CharT('\r') && *begin != CharT('\n'))) ++found.lines;
        found.hasZero = found.hasZero || *begin == CharT(0);
    }
    return found;
}

template <class CharT>
const CharT* FindUnit(const CharT* begin, const CharT* end, CharT unit) {
#ifdef __SSE2__
    using B = Block<CharT>;
    const __m128i wanted = B::Fill(unit);
    if (FindInBlocks(begin, end, [=](__m128i block) { return B::Equal(block, wanted); })) return begin;
#endif
    while (begin != end && *begin != unit) ++begin;
    return begin;
}

uint64_t MarkUnits(const char* begin, const char* end, char unit) {
#ifdef __SSE2__
    using B = Block<char>;
    const __m128i wanted = B::Fill(unit);
    if (static_cast<size_t>(end - begin) >= kMarks)
        return MarkFour(begin, [=](__m128i block) { return B::Equal(block, wanted); });
#endif
    uint64_t marks = 0;
    const size_t count = std::min(static_cast<size_t>(end - begin), kMarks);
    for (size_t at = 0; at < count; ++at) marks |= uint64_t{begin[at] == unit} << at;
    return marks;
}

template <class CharT>
CaseFolding<CharT>::CaseFolding() : m_folded(size_t{1} << 8 * sizeof(CharT)) {
    for (size_t index = 0; index < m_folded.size(); ++index) {
        const auto unit = static_cast<CharT>(index);
        if constexpr (sizeof(CharT) > 1)
            m_folded[index] = static_cast<CharT>(Win32::UpperWide(static_cast<wchar_t>(unit)));
        else
            m_folded[index] = Win32::UpperAscii(unit);
        if (m_folded[index] != unit) m_others.push_back(unit);
    }
}

template <class CharT>
void CaseFolding<CharT>::Equate(CharT unit, CharT other) {
    m_folded[Index(unit)] = (*this)(other);
    m_others.push_back(unit);
}

template <class CharT>
std::vector<CharT> CaseFolding<CharT>::UnitsLike(CharT unit) const {
    // What stands for others stands for itself.
    std::vector<CharT> units = {(*this)(unit)};
    for (const CharT other : m_others)
        if ((*this)(other) == units.front()) units.push_back(other);
    return units;
}

template <class CharT>
const CaseFolding<CharT>& PlainCaseFolding() {
    static const CaseFolding<CharT> folding;
    return folding;
}

template <class CharT>
SequenceFinder<CharT>::SequenceFinder(std::basic_string<CharT> text, const CaseFolding<CharT>* folding)
    : m_text(std::move(text)), m_folding(folding) {
    if (m_text.empty()) return;
    m_first = folding ? folding->UnitsLike(m_text.front()) : std::vector<CharT>{m_text.front()};
    m_last = folding ? folding->UnitsLike(m_text.back()) : std::vector<CharT>{m_text.back()};
    if (folding) std::ranges::transform(m_text, m_text.begin(), std::cref(*folding));
}

template <class CharT>
bool SequenceFinder<CharT>::StandsAt(const CharT* at) const {
    if (!m_folding) return EqualBytes(at, m_text.data(), m_text.size() * sizeof(CharT));
    for (size_t i = 0; i < m_text.size(); ++i)
        if ((*m_folding)(at[i]) != m_text[i]) return false;
    return true;
}

template <class CharT>
const CharT* SequenceFinder<CharT>::FindFirst(const CharT* begin, const CharT* end) const {
    if (m_text.empty()) return begin;
    switch (std::max(m_first.size(), m_last.size())) {
        case 1: return FindFirstBy<1>(begin, end);
        case 2: return FindFirstBy<2>(begin, end);
        default: return FindFirstBy<kMostLike>(begin, end);
    }
}

template <class CharT>
const CharT* SequenceFinder<CharT>::FindLast(const CharT* begin, const CharT* end) const {
    if (m_text.empty()) return end;
    switch (std::max(m_first.size(), m_last.size())) {
        case 1: return FindLastBy<1>(begin, end);
        case 2: return FindLastBy<2>(begin, end);
        default: return FindLastBy<kMostLike>(begin, end);
    }
}

template <class CharT>
template <size_t kUnits>
const CharT* SequenceFinder<CharT>::FindFirstBy(const CharT* begin, const CharT* end) const {
    const size_t length = m_text.size();
    if (static_cast<size_t>(end - begin) < length) return end;
    const CharT* const lastStart = end - length;
#ifdef __SSE2__
    using B = Block<CharT>;
    if (std::max(m_first.size(), m_last.size()) <= kUnits) {
        const UnitTest<CharT, kUnits> first(m_first);
        const UnitTest<CharT, kUnits> last(m_last);
        // Both loads stay inside the text as long as the second one does, which begins length - 1 units further on.
        for (; static_cast<size_t>(end - begin) >= length - 1 + B::kUnits; begin += B::kUnits) {
            uint32_t mask = B::Mask(_mm_and_si128(first(begin), last(begin + length - 1)));
            while (mask != 0) {
                const size_t index = B::FirstUnit(mask);
                if (StandsAt(begin + index)) return begin + index;
                mask = B::Without(mask, index);
            }
        }
    }
#endif
    for (; begin <= lastStart; ++begin)
        if (StandsAt(begin)) return begin;
    return end;
}

template <class CharT>
template <size_t kUnits>
const CharT* SequenceFinder<CharT>::FindLastBy(const CharT* begin, const CharT* end) const {
    const size_t length = m_text.size();
    if (static_cast<size_t>(end - begin) < length) return end;
    const CharT* after = end - length + 1;  // one after the places still to be looked at
#ifdef __SSE2__
    using B = Block<CharT>;
    if (std::max(m_first.size(), m_last.size()) <= kUnits) {
        const UnitTest<CharT, kUnits> first(m_first);
        const UnitTest<CharT, kUnits> last(m_last);
        for (; static_cast<size_t>(after - begin) >= B::kUnits; after -= B::kUnits) {
            const CharT* const block = after - B::kUnits;
            uint32_t mask = B::Mask(_mm_and_si128(first(block), last(block + length - 1)));
            while (mask != 0) {
                const size_t index = B::LastUnit(mask);
                if (StandsAt(block + index)) return block + index;
                mask = B::Without(mask, index);
            }
        }
    }
#endif
    while (after != begin) {
        --after;
        if (StandsAt(after)) return after;
    }
    return end;
}

// Byte text, and 16-bit text under the name that it has on this platform.
#define QV_INSTANTIATE(CharT)                                        \
    template class CaseFolding<CharT>;                               \
    template class SequenceFinder<CharT>;                            \
    template const CaseFolding<CharT>& PlainCaseFolding();           \
    template const CharT* FindLineBreak(const CharT*, const CharT*); \
    template LineBegins CountLineBegins(const CharT*, const CharT*); \
    template bool HasOnlyCrLf(const CharT*, const CharT*);           \
    template const CharT* FindUnit(const CharT*, const CharT*, CharT);
QV_INSTANTIATE(char)
#ifdef _WIN32
QV_INSTANTIATE(wchar_t)
#else
QV_INSTANTIATE(char16_t)
#endif
#undef QV_INSTANTIATE

}  // namespace QVUtils
