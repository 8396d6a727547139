#include "findreplace/request.h"

#include "textio/line_splitter.h"

namespace QVFindAndReplace {
namespace {

/// All texts of a request through one conversion.
template <class CharT, class Convert>
Items<CharT> ConvertAll(const std::vector<WideString>& find, const std::vector<WideString>& replacement,
                        const WideString& wholeFind, const WideString& wholeReplacement, Convert&& convert) {
    Items<CharT> items;
    for (const WideString& item : find) items.find.push_back(convert(item));
    for (const WideString& item : replacement) items.replacement.push_back(convert(item));
    items.wholeFind = convert(wholeFind);
    items.wholeReplacement = convert(wholeReplacement);
    return items;
}

}  // namespace

std::vector<WideString> SplitItems(const WideString& text) {
    std::vector<WideString> items;
    const WideChar* position = text.data();
    const WideChar* const end = position + text.size();
    while (position != end) {
        const auto line = QVUtils::FindLineEnd(position, end);
        items.emplace_back(position, line.textEnd);
        position = line.nextLine;
    }
    return items;
}

Request::Request(uint32_t options, WideString find, WideString replacement, NarrowConversion toNarrow)
    : m_options(options),
      m_find(std::move(find)),
      m_replacement(std::move(replacement)),
      m_toNarrow(std::move(toNarrow)),
      m_findItems(SplitItems(m_find)),
      m_replacementItems(SplitItems(m_replacement)) {}

const Items<char>& Request::GetItems(QVUtils::EncodingKind kind, char) {
    std::optional<Items<char>>& items = kind == QVUtils::EncodingKind::Utf8 ? m_utf8Items : m_codePageItems;
    if (!items) {
        items = ConvertAll<char>(m_findItems, m_replacementItems, m_find, m_replacement,
                                 [&](const WideString& text) { return m_toNarrow(text, kind); });
    }
    return *items;
}

const Items<WideChar>& Request::GetItems(QVUtils::EncodingKind, WideChar) {
    if (!m_wideItems) {
        m_wideItems = ConvertAll<WideChar>(m_findItems, m_replacementItems, m_find, m_replacement,
                                           [](const WideString& text) { return Converted<WideChar>(text); });
    }
    return *m_wideItems;
}

const QVUtils::CaseFolding<char>& Request::GetFolding(QVUtils::EncodingKind kind, char) {
    if (kind == QVUtils::EncodingKind::Utf8) return QVUtils::PlainCaseFolding<char>();
    if (m_codePageFolding) return *m_codePageFolding;
    m_codePageFolding.emplace();
    const QVUtils::CaseFolding<WideChar>& wide = QVUtils::PlainCaseFolding<WideChar>();
    const auto byteOf = [&](WideChar unit) {
        const Converted<char> bytes = m_toNarrow(WideString(1, unit), kind);
        return bytes && bytes->size() == 1 ? bytes->front() : '\0';
    };
    for (uint32_t index = 0x80; index < 0xD800; ++index) {
        const auto unit = static_cast<WideChar>(index);
        if (wide(unit) == unit) continue;
        const char byte = byteOf(unit);
        const char folded = byte == 0 ? '\0' : byteOf(wide(unit));
        if (folded != 0) m_codePageFolding->Equate(byte, folded);
    }
    return *m_codePageFolding;
}

const QVUtils::CaseFolding<WideChar>& Request::GetFolding(QVUtils::EncodingKind, WideChar) {
    return QVUtils::PlainCaseFolding<WideChar>();
}

const char* Request::FindFault() const {
    switch (GetMode()) {
        case Mode::None: return m_find.empty() ? "Find match are too short. Atleast one character need" : nullptr;
        case Mode::One:
            // An empty find text with something to put in its place does nothing and says nothing. compatibility: 6
            return m_find.empty() && m_replacement.empty() ? "Find match are too short. Atleast one character need"
                                                           : nullptr;
        case Mode::Many:
            if (m_findItems.empty()) return "To few find items. Atleast one must be set";
            return m_findItems.size() != m_replacementItems.size() ? "Find and Replace item do not match" : nullptr;
        case Mode::ManySame:
        case Mode::Multiline: return m_findItems.empty() ? "To few find items. Atleast one must be set" : nullptr;
    }
    return nullptr;
}

}  // namespace QVFindAndReplace
