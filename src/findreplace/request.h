// request.h - what to find and what to put in its place, cut into items and converted to each encoding once a run.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "findreplace/characters.h"
#include "findreplace/options.h"
#include "textio/encoding.h"

namespace QVFindAndReplace {

/// A text in a document's encoding; nothing when it holds a character that the encoding does not have.
template <class CharT>
using Converted = std::optional<std::basic_string<CharT>>;

/// The find and replacement texts for documents of one encoding.
template <class CharT>
struct Items {
    std::vector<Converted<CharT>> find;
    std::vector<Converted<CharT>> replacement;
    Converted<CharT> wholeFind;
    Converted<CharT> wholeReplacement;
};

/// Converts to the thread's code page (EncodingKind::CodePage) or to UTF-8. An argument, so that the engine needs no
/// system call.
using NarrowConversion = std::function<Converted<char>(const WideString&, QVUtils::EncodingKind)>;

/// `text` cut into lines: CR LF, LF and a lone CR end an item; a last line without a break is one; nothing follows a
/// final break.
std::vector<WideString> SplitItems(const WideString& text);

/// One request, shared by all files of a run.
class Request {
public:
    /// `options`: Option bits; the texts as the user typed them.
    Request(uint32_t options, WideString find, WideString replacement, NarrowConversion toNarrow);

    uint32_t GetOptions() const noexcept { return m_options; }
    Mode GetMode() const noexcept { return ModeOf(m_options); }
    const WideString& GetFind() const noexcept { return m_find; }
    const WideString& GetReplacement() const noexcept { return m_replacement; }

    /// Items for 8-bit documents of this kind. Made on first use and kept for the run.
    const Items<char>& GetItems(QVUtils::EncodingKind kind, char);
    /// Items for UTF-16 documents: the texts as they are.
    const Items<WideChar>& GetItems(QVUtils::EncodingKind kind, WideChar);

    /// Nothing when the request can run in its mode. Else the message that the engine would fail with (code 87): shown
    /// to the user exactly so, odd spellings included.
    const char* FindFault() const;

private:
    uint32_t m_options;
    WideString m_find;
    WideString m_replacement;
    NarrowConversion m_toNarrow;
    std::vector<WideString> m_findItems;
    std::vector<WideString> m_replacementItems;
    std::optional<Items<char>> m_codePageItems;
    std::optional<Items<char>> m_utf8Items;
    std::optional<Items<WideChar>> m_wideItems;
};

}  // namespace QVFindAndReplace
