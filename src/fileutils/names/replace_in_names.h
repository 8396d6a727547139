// replace_in_names.h - one text for another in names. Texts in, texts out.
#pragma once

#include <string>
#include <string_view>

#include "fileutils/names/replace_dlg.h"

namespace FileUtils {

/// `name` with every place where the text to find stands replaced, from left to right; what was put in is not looked
/// at again. An empty text to find changes nothing. Ignoring case follows the system's table of letters.
std::wstring WithTextReplaced(const NameReplacement& replacement, std::wstring_view name, bool isFolder);

}  // namespace FileUtils
