// tags.h - the menu of the tags of a template, and the text of a property tag.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ui/controls.h"

namespace BatchRename {

/// What was chosen in the tag menu: a tag, or, with an empty text, the dialog for property tags.
std::optional<std::wstring> PickTag(HWND owner, HWND button, const Ui::HostTexts& texts);

/// A part of a property's value.
struct SubString {
    int32_t start = 1;  // counted from 1
    int32_t length = 0;
};

/// "[?size]", or with a part "[?size,2,3]".
std::wstring PropertyTag(const std::wstring& property, const SubString* part);

}  // namespace BatchRename
