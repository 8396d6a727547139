// passing_pairs.h - replaces plain items in a text as it passes in blocks, without a table of its lines. What comes of
// the text is what the engine (matching.h) gives; requests for which it would take the table are left to the engine.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "findreplace/passing_text.h"
#include "findreplace/request.h"
#include "textio/byte_search.h"
#include "textio/encoding.h"

namespace QVFindAndReplace {

/// One item and what takes its place.
template <class CharT>
class PassingPair {
public:
    using Text = std::basic_string<CharT>;
    using View = std::basic_string_view<CharT>;

    /// False where it takes more than the text around a hit to say what becomes of it: items and replacements with line
    /// breaks or zero characters, items that could cut a character.
    static bool CanReplace(const Text& item, const Text& replacement, QVUtils::EncodingKind kind);

    PassingPair(const Text& item, const Text& replacement);

    /// What becomes of a block that begins where the last one ended, but for what was left of that. It ends with a
    /// line, or with the text, when `endsLine`; else it lies inside of one and has no break. The result lies in `out`,
    /// which is emptied first, or in the block. Adds to `changes`.
    View Replace(View block, bool endsLine, PassingText<CharT>& out, uint64_t& changes);

    /// Units at the end of the block given last that are to be given once more: only what follows says what becomes of
    /// them. 0 where the block ended a line.
    size_t GetLeft() const noexcept { return m_left; }

private:
    const CharT* BeginSearch();
    const CharT* Skip(const CharT* from);
    const CharT* NextHit(const CharT* from);
    const CharT* FindZero(const CharT* begin, const CharT* end);
    const CharT* PutReplacement(const CharT* hit, PassingText<CharT>& out, uint64_t& count);
    size_t OverlapWith(View following) const;

    Text m_item;
    Text m_replacement;
    QVUtils::SequenceFinder<CharT> m_finder;
    // Lengths of the item's beginnings with which the replacement ends, the longest first: a hit can begin there.
    std::vector<size_t> m_overlaps;
    View m_block;
    const CharT* m_end = nullptr;  // of the block
    bool m_endsLine = false;
    std::optional<bool> m_hasZero;  // has the block such a character? Nothing while nobody has looked
    size_t m_skip = 0;              // units of the line ahead that the position jumps over
    bool m_isLineDone = false;      // nothing more is found in the line ahead
    size_t m_left = 0;
};

/// The pairs of a request, one after the other over each block.
template <class CharT>
class PassingPairs {
public:
    using View = std::basic_string_view<CharT>;

    /// Nothing for requests that are the engine's.
    static std::optional<PassingPairs> Make(Request& request, QVUtils::EncodingKind kind);

    /// As PassingPair. The result is valid until the next call, and as long as `block`.
    View Replace(View block, bool endsLine, uint64_t& changes);
    size_t GetLeft() const noexcept { return m_left; }

private:
    struct Stage {
        PassingPair<CharT> pair;
        std::basic_string<CharT> left;  // of what the stage before it gave
    };

    std::vector<Stage> m_stages;
    PassingText<CharT> m_texts[2];  // what comes of a stage goes into the one where its own text does not lie
    size_t m_left = 0;
};

}  // namespace QVFindAndReplace
