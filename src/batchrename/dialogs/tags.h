// tags.h - the tags as the menu offers them, and the text of a property tag.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "sdk/text_id.h"

namespace BatchRename {

/// One line of the tag menu.
struct TagEntry {
    const wchar_t* tag;  // null: a separator
    Quorvane::SDK::TextId text;
};

/// In the order of the menu; the entry for property tags comes behind them.
std::span<const TagEntry> TagEntries();

/// A part of a property's value.
struct SubString {
    int32_t start = 1;  // counted from 1
    int32_t length = 0;
};

/// "[?size]", or with a part "[?size,2,3]".
std::wstring PropertyTag(const std::wstring& property, const SubString* part);

}  // namespace BatchRename
