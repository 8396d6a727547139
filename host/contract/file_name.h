// file_name.h - what may be the name of a file or folder.
#pragma once

#include <string_view>

namespace QVHost {

/// False for "", ".", "..", what holds a separator, a wildcard or another character that no name may have, and what
/// ends with a dot or a blank.
bool IsFileName(std::wstring_view name);

}  // namespace QVHost
