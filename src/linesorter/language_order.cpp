#include "linesorter/language_order.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "linesorter/line_compare.h"
#include "win32/code_page.h"

namespace QVLineSorter {
namespace {

using KeyView = std::basic_string_view<uint8_t>;

/// The part of a sort key that has the characters' weights.
KeyView WeightsOf(KeyView key) {
    return {key.data(),
            static_cast<size_t>(std::ranges::find_if(key, [](uint8_t byte) { return byte <= 1; }) - key.begin())};
}

}  // namespace

template <class CharT>
uint32_t SortKeyMaker<CharT>::MakeInto(std::basic_string_view<CharT> text, uint8_t* buffer, uint32_t capacity) {
    const uint32_t rules = LanguageRules(m_digitsAsNumbers);
    if constexpr (sizeof(CharT) == 1) {
        if (m_digitsAsNumbers) {
            // The comparison takes digits as numbers in 16-bit text only.
            if (m_converted.size() < text.size()) m_converted.resize(text.size() + text.size() / 2);
            const uint32_t units = Win32::FromCodePage(text, Win32::kSystemCodePage, m_converted.data(),
                                                       static_cast<uint32_t>(m_converted.size()));
            return Win32::MakeSortKey(rules, m_converted.data(), units, buffer, capacity);
        }
    }
    return Win32::MakeSortKey(rules, text.data(), static_cast<uint32_t>(text.size()), buffer, capacity);
}

template <class CharT>
KeyView SortKeyMaker<CharT>::Make(std::basic_string_view<CharT> text) {
    constexpr size_t kUsual = 1 << 16;
    if (text.empty()) return {};
    // Enough for nearly every text, so that the system need not be asked twice.
    const size_t usual = std::min(text.size() * 6 + 64, kUsual);
    if (m_key.size() < usual) m_key.resize(usual * 2);
    uint32_t size = MakeInto(text, m_key.data(), static_cast<uint32_t>(m_key.size()));
    if (size == 0) {
        const uint32_t needed = MakeInto(text, nullptr, 0);
        if (needed > m_key.size()) m_key.resize(needed);
        if (needed != 0) size = MakeInto(text, m_key.data(), needed);
    }
    if (size == 0) throw NoSortKey();
    return {m_key.data(), size - 1};
}

template <class CharT>
PlainWeights<CharT>::PlainWeights(SortKeyMaker<CharT>& maker) {
    m_weights.fill(kNotPlain);
    for (uint32_t value = 1; value < kCount; ++value) {
        const auto unit = static_cast<CharT>(value);
        const KeyView weights = WeightsOf(maker.Make({&unit, 1}));
        if (weights.empty()) m_weights[value] = kNone;
        if (weights.size() == 2) m_weights[value] = static_cast<uint16_t>(weights[0] << 8 | weights[1]);
    }
    if (AddUp(maker, EveryPair())) return;
    DropLettersThatWeighTogether(maker);
    if (!AddUp(maker, EveryPair())) m_weights.fill(kNotPlain);
}

/// Whether the weights of a text's characters are the text's weights.
template <class CharT>
bool PlainWeights<CharT>::AddUp(SortKeyMaker<CharT>& maker, std::basic_string_view<CharT> text) const {
    std::vector<uint8_t> expected;
    expected.reserve(2 * text.size());
    for (const CharT unit : text) {
        const uint16_t weight = Of(unit);
        if (weight == kNone) continue;
        expected.push_back(static_cast<uint8_t>(weight >> 8));
        expected.push_back(static_cast<uint8_t>(weight));
    }
    return std::ranges::equal(WeightsOf(maker.Make(text)), expected);
}

template <class CharT>
void PlainWeights<CharT>::DropLettersThatWeighTogether(SortKeyMaker<CharT>& maker) {
    std::array<bool, kCount> areTogether = {};
    static constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (const char first : kLetters)
        for (const char second : kLetters) {
            const CharT pair[] = {static_cast<CharT>(first), static_cast<CharT>(second)};
            if (!IsPlain(pair[0]) || !IsPlain(pair[1]) || AddUp(maker, {pair, 2})) continue;
            areTogether[static_cast<uint8_t>(first)] = areTogether[static_cast<uint8_t>(second)] = true;
        }
    for (uint32_t value = 0; value < kCount; ++value)
        if (areTogether[value]) m_weights[value] = kNotPlain;
}

/// A text with each plain character before and after each other one, and each two letters around a mark that words have
/// inside: some languages have a letter that is written so.
template <class CharT>
std::basic_string<CharT> PlainWeights<CharT>::EveryPair() const {
    std::basic_string<CharT> plain;
    for (uint32_t value = 0; value < kCount; ++value)
        if (m_weights[value] != kNotPlain) plain += static_cast<CharT>(value);
    std::basic_string<CharT> text;
    for (size_t first = 0; first < plain.size(); ++first) {
        text += plain[first];
        for (size_t second = first; second < plain.size(); ++second) (text += plain[second]) += plain[first];
    }
    for (const CharT mark : {CharT('\''), CharT('-'), CharT('.'), static_cast<CharT>(0xB7)})
        for (char first = 'a'; first <= 'z'; ++first)
            for (char second = 'a'; second <= 'z'; ++second) {
                const CharT word[] = {static_cast<CharT>(first), mark, static_cast<CharT>(second)};
                if (std::ranges::all_of(word, [this](CharT unit) { return IsPlain(unit); })) text.append(word, 3);
            }
    return text;
}

template <class CharT>
void LanguageReader<CharT>::SetPivot(uint32_t index, size_t) {
    m_isPivotWhole = false;
    m_pivotText = TextOf(index);
    Read(index, kLongestCommon + kUnits, m_pivot);
    m_isPivotWhole = m_hasWholeKeys;
}

template <class CharT>
Chunk LanguageReader<CharT>::ChunkAt(uint32_t index, size_t depth) {
    Read(index, depth + kUnits, m_key);
    const size_t common = CommonLength(m_key, m_pivot, depth);
    if (common < depth)
        return common == m_key.size || m_key.bytes[common] < m_pivot.bytes[common] ? kBeforePivot : kAfterPivot;
    if (depth == m_key.size) return kEndsWithPivot;
    std::memset(m_key.bytes.data() + m_key.size, 0, kUnits);
    const uint8_t* const from = m_key.bytes.data() + depth;
    return {LoadBytes(from), static_cast<uint32_t>(LoadBytes(from + 4))};
}

template <class CharT>
int LanguageReader<CharT>::Compare(uint32_t left, uint32_t right, size_t from) {
    const bool hasWholeKeys = m_hasWholeKeys;
    if (TextOf(left) == TextOf(right)) return 0;
    for (size_t wanted = from + 4 * kUnits;; wanted *= 4) {
        Read(left, wanted, m_key);
        Read(right, wanted, m_other);
        const size_t common = CommonLength(m_key, m_other, m_key.size);
        const bool leftEnds = common == m_key.size;
        const bool rightEnds = common == m_other.size;
        if (!leftEnds && !rightEnds) {
            SetPhase(hasWholeKeys ? 1 : 0);
            return m_key.bytes[common] < m_other.bytes[common] ? -1 : 1;
        }
        // One that is as long as asked for may go on.
        const bool isLeftWhole = m_hasWholeKeys || m_key.size < wanted;
        const bool isRightWhole = m_hasWholeKeys || m_other.size < wanted;
        if (!isLeftWhole || !isRightWhole) {
            if (leftEnds && isLeftWhole && !rightEnds) return -1;
            if (rightEnds && isRightWhole && !leftEnds) return 1;
            continue;
        }
        if (leftEnds != rightEnds || m_hasWholeKeys) {
            SetPhase(hasWholeKeys ? 1 : 0);
            return leftEnds == rightEnds ? 0 : leftEnds ? -1 : 1;
        }
        SetPhase(1);
    }
}

/// Of each member as many bytes after the first `from` as lines usually differ in.
template <class CharT>
void LanguageReader<CharT>::Keep(std::span<KeyedIndex> members, size_t from) {
    constexpr size_t kKept = 256;
    m_keptBytes.clear();
    m_kept.clear();
    for (KeyedIndex& member : members) {
        Read(member.index, from + kKept, m_key);
        std::memset(m_key.bytes.data() + m_key.size, 0, kUnits);
        const size_t begin = std::min(from, m_key.size);
        const size_t end = std::min(from + kKept, m_key.size);
        member.key = LoadBytes(m_key.bytes.data() + begin);
        member.tail = static_cast<uint32_t>(m_kept.size());
        m_kept.push_back({m_keptBytes.size(), end - begin, m_key.size < from + kKept});
        m_keptBytes.insert(m_keptBytes.end(), m_key.bytes.data() + begin, m_key.bytes.data() + end);
    }
}

template <class CharT>
int LanguageReader<CharT>::CompareKept(uint32_t left, uint32_t right) const {
    const Kept& one = m_kept[left];
    const Kept& other = m_kept[right];
    const size_t common = std::min(one.size, other.size);  // where it is 0 there may be no memory to compare in
    const int order =
        common == 0 ? 0 : std::memcmp(m_keptBytes.data() + one.begin, m_keptBytes.data() + other.begin, common);
    if (order != 0 || one.size == other.size) return order;
    return one.size < other.size ? -1 : 1;
}

template <class CharT>
void LanguageReader<CharT>::Read(uint32_t index, size_t wanted, Bytes& key) {
    const View text = TextOf(index);
    if (m_isPivotWhole && text == m_pivotText)  // lines that are the same have one key
        key = m_pivot;
    else if (m_hasWholeKeys)
        ReadWhole(text, key);
    else if (!ReadPlain(text, wanted, key))
        ReadWeights(text, wanted, key);
}

/// False when a character is not plain, and may change what was read before it.
template <class CharT>
bool LanguageReader<CharT>::ReadPlain(View text, size_t wanted, Bytes& key) const {
    size_t used = 0;
    key.Resize(std::min(wanted, 2 * text.size()) + 2);
    for (size_t at = 0; at < text.size(); ++at) {
        const uint16_t weight = m_weights->Of(text[at]);
        if (weight == PlainWeights<CharT>::kNotPlain) return false;
        if (used >= wanted) break;  // the character after the last one is plain too
        if (weight == PlainWeights<CharT>::kNone) continue;
        key.bytes[used++] = static_cast<uint8_t>(weight >> 8);
        key.bytes[used++] = static_cast<uint8_t>(weight);
    }
    key.size = used;
    return true;
}

/// By the system, from as much of the text as gives so many bytes.
template <class CharT>
void LanguageReader<CharT>::ReadWeights(View text, size_t wanted, Bytes& key) {
    for (size_t window = wanted / 2 + 8;; window *= 2) {
        const size_t cut = SafeCut(text, window);
        const KeyView weights = WeightsOf(m_maker.Make(text.substr(0, cut)));
        if (weights.size() < wanted && cut < text.size()) continue;
        key.Resize(weights.size());
        std::ranges::copy(weights, key.bytes.begin());
        return;
    }
}

/// The first place from `from` on where the text may be cut without changing the weights of what stands before: between
/// two plain characters.
template <class CharT>
size_t LanguageReader<CharT>::SafeCut(View text, size_t from) const {
    for (size_t at = from; at < text.size(); ++at)
        if (m_weights->IsPlain(text[at - 1]) && m_weights->IsPlain(text[at])) return at;
    return text.size();
}

/// Some bytes inside a key are zero, while a chunk takes a zero for the end. So 0 is read as 1 1 and 1 as 1 2, which
/// changes the order of no two keys.
template <class CharT>
void LanguageReader<CharT>::ReadWhole(View text, Bytes& key) {
    const KeyView whole = m_maker.Make(text);
    const auto escaped = std::ranges::count_if(whole, [](uint8_t byte) { return byte <= 1; });
    key.Resize(whole.size() + static_cast<size_t>(escaped));
    uint8_t* next = key.bytes.data();
    for (const uint8_t byte : whole) {
        if (byte <= 1) *next++ = 1;
        *next++ = byte <= 1 ? byte + 1 : byte;
    }
}

template <class CharT>
size_t LanguageReader<CharT>::CommonLength(const Bytes& left, const Bytes& right, size_t limit) {
    const size_t end = std::min({limit, left.size, right.size});
    const auto* const begin = left.bytes.data();
    return static_cast<size_t>(std::mismatch(begin, begin + end, right.bytes.data()).first - begin);
}

template class SortKeyMaker<char>;
template class SortKeyMaker<wchar_t>;
template class PlainWeights<char>;
template class PlainWeights<wchar_t>;
template class LanguageReader<char>;
template class LanguageReader<wchar_t>;

}  // namespace QVLineSorter
