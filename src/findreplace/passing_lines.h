// passing_lines.h - replaces text over several lines as a text passes in blocks of whole lines, without a table of
// them. What comes of the text is what the engine (matching.h) gives; requests for which it would take the table are
// left to the engine.
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

template <class CharT>
class PassingLines {
public:
    using Text = std::basic_string<CharT>;
    using View = std::basic_string_view<CharT>;

    /// Nothing for requests that are the engine's.
    static std::optional<PassingLines> Make(Request& request, QVUtils::EncodingKind kind);

    /// What becomes of a block of whole lines that begins where the last one ended, but for what was left of that. The
    /// result is valid until the next call, and as long as `block`. Its breaks are of many kinds where those of the
    /// block are. Adds to `changes`.
    View Replace(View block, bool isLast, uint64_t& changes);

    /// Units at the end of the block given last that are to be given once more: a match may begin there, and end in
    /// lines that follow.
    size_t GetLeft() const noexcept { return m_left; }

private:
    /// Where the lines of a match lie: how its first one ends, where the next one and the last one begin.
    struct Place {
        const CharT* lineEnd;
        uint8_t breakLength;
        const CharT* next;
        const CharT* last;
    };

    PassingLines(std::vector<Text> find, std::vector<Text> replacement);
    bool IsInDeadLine(const CharT*& from, const CharT* hit);
    bool FindRest(const CharT* hit, Place& place) const;
    bool Fits(const Place& place) const;
    void PutReplacement(const Place& place);
    const CharT* GoOn(const CharT* last) const;

    std::vector<Text> m_find;
    std::vector<Text> m_replacement;
    QVUtils::SequenceFinder<CharT> m_finder;  // of the first find line
    const CharT* m_end = nullptr;             // of the block
    bool m_hasZero = false;
    size_t m_left = 0;
    PassingText<CharT> m_out;
};

}  // namespace QVFindAndReplace
