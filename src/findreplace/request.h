// request.h - what to find and what to put in its place, cut into items and converted to each encoding once a run; the
// options of a run, and the characters that a match may not cut.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "textio/byte_search.h"
#include "textio/encoding.h"

namespace QVFindAndReplace {

/// UTF-16 text of this platform: its wide characters on Windows, char16_t where those are larger.
#ifdef _WIN32
using WideChar = wchar_t;
#else
using WideChar = char16_t;
#endif
using WideString = std::basic_string<WideChar>;

/// A UTF-8 character has at most this many units, a UTF-16 one fewer.
inline constexpr size_t kMostUnits = 4;

/// True when the place between two pieces of text lies inside of a UTF-16 character.
inline bool CutsCharacter(std::basic_string_view<WideChar> before, std::basic_string_view<WideChar> after) {
    if (before.empty() || after.empty()) return false;
    return (before.back() & 0xFC00) == 0xD800 && (after.front() & 0xFC00) == 0xDC00;
}

/// The same for UTF-8. Bytes that are no whole character can be cut everywhere.
inline bool CutsCharacter(std::string_view before, std::string_view after) {
    const auto goesOn = [](char byte) { return (byte & 0xC0) == 0x80; };
    if (after.empty() || !goesOn(after.front())) return false;
    size_t passed = 0;  // units of the character in front of the place
    while (passed < before.size() && passed < kMostUnits && goesOn(before[before.size() - 1 - passed])) ++passed;
    if (passed == before.size()) return false;
    const auto lead = static_cast<unsigned char>(before[before.size() - 1 - passed]);
    ++passed;
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || passed >= length || after.size() < length - passed) return false;
    const std::string_view rest = after.substr(0, length - passed);
    return std::all_of(rest.begin(), rest.end(), goesOn);
}

namespace Option {
inline constexpr uint32_t ModeOne = 0x1;
inline constexpr uint32_t ModeMany = 0x2;
inline constexpr uint32_t ModeManySame = 0x4;
inline constexpr uint32_t ModeMultiline = 0x8;
inline constexpr uint32_t IgnoreCase = 0x100;
inline constexpr uint32_t ReplaceAll = 0x200;         // no questions
inline constexpr uint32_t RegularExpression = 0x400;  // stored, but the engine never looks at it
inline constexpr uint32_t ForceUtf8 = 0x800;          // 8-bit text counts as UTF-8
inline constexpr uint32_t Silent = 0x1000;            // no dialogs and no message boxes
inline constexpr uint32_t Wildcard = 0x2000;
inline constexpr uint32_t SaveAs = 0x10000000;  // write to a separate target
inline constexpr uint32_t KeepBackup = 0x20000000;
inline constexpr uint32_t DropBackup = 0x40000000;  // back up while writing, delete the backup afterwards
inline constexpr uint32_t Overwrite = 0x80000000;   // of an existing "Save as" target
}  // namespace Option

enum class Mode { None, One, Many, ManySame, Multiline };

/// The mode of an option word; when several bits are set, the most particular mode wins.
constexpr Mode ModeOf(uint32_t options) {
    if (options & Option::ModeMultiline) return Mode::Multiline;
    if (options & Option::ModeMany) return Mode::Many;
    if (options & Option::ModeManySame) return Mode::ManySame;
    if (options & Option::ModeOne) return Mode::One;
    return Mode::None;
}

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

/// An item, and what takes its place.
template <class CharT>
using ItemPair = std::pair<const Converted<CharT>*, const Converted<CharT>*>;

/// What a request looks for in single lines, in the order in which it is applied. Of Mode::Multiline the first find
/// item by the first replacement item. Where there is no replacement item the whole text, which then is empty, is one.
template <class CharT>
std::vector<ItemPair<CharT>> PairsOf(const Items<CharT>& items, Mode mode) {
    const Converted<CharT>* const shared =
        items.replacement.empty() ? &items.wholeReplacement : &items.replacement.front();
    std::vector<ItemPair<CharT>> pairs;
    if (mode == Mode::None) return {{&items.wholeFind, &items.wholeReplacement}};
    for (size_t i = 0; i < items.find.size(); ++i) {
        pairs.emplace_back(&items.find[i], mode == Mode::Many ? &items.replacement[i] : shared);
        if (mode == Mode::One || mode == Mode::Multiline) break;
    }
    return pairs;
}

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

    /// The letters that count as one in documents of this kind where wildcards ignore case: by the thread's code page;
    /// A to Z in UTF-8, whose bytes are no letters; every letter in UTF-16. Made on first use and kept for the run.
    const QVUtils::CaseFolding<char>& GetFolding(QVUtils::EncodingKind kind, char);
    const QVUtils::CaseFolding<WideChar>& GetFolding(QVUtils::EncodingKind kind, WideChar);

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
    std::optional<QVUtils::CaseFolding<char>> m_codePageFolding;
};

}  // namespace QVFindAndReplace
