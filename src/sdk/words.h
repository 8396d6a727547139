// words.h - texts of our own that the host's language files may have: each with its number, and with the English that
// is shown where the host has none.
#pragma once

#include <functional>
#include <span>
#include <utility>

#include "sdk/text_format.h"

namespace Quorvane::SDK {

struct OwnText {
    TextId id;
    const wchar_t* english;  // with placeholders as FormatText knows them
};

/// The text for one, and the one for any other number: the languages of the files have no more forms.
struct CountedText {
    OwnText one;
    OwnText others;
};

/// False for "" and null, and for the name of the id ("2100m"), which is what a host may show for a text that it has
/// not.
bool IsHostText(const wchar_t* text, TextId id);

/// Says our own texts in the host's language.
class Words {
public:
    using Texts = std::function<const wchar_t*(TextId)>;

    /// In English.
    Words() = default;
    /// Asked at each text, on the caller's thread.
    explicit Words(Texts texts) : m_texts(std::move(texts)) {}

    std::wstring operator()(const OwnText& text, std::initializer_list<TextArgument> arguments = {}) const;
    std::wstring operator()(const CountedText& text, uint64_t count) const { return (*this)(text, count, {count}); }
    /// `arguments` are all of them, the number included.
    std::wstring operator()(const CountedText& text, uint64_t count,
                            std::initializer_list<TextArgument> arguments) const {
        return (*this)(count == 1 ? text.one : text.others, arguments);
    }

    /// `english`, as the engines say it for logs and scripts, in the host's language: it is looked for among `known`,
    /// and so are the texts that stand in its first two placeholders. What is not known stays as it is.
    std::wstring Translated(std::wstring_view english, std::initializer_list<std::span<const OwnText>> known) const;

private:
    Texts m_texts;
};

}  // namespace Quorvane::SDK
