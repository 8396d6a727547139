// link_rules.h - which links cannot work, told before anything is made.
#pragma once

#include <cstdint>
#include <string>

namespace FileUtils {

/// Why a link of this LinkType cannot be made, in a sentence for people; "" when nothing speaks against it: a name that
/// exists or cannot be one, a folder that does not exist, a hard link to a folder or to another volume, a junction to a
/// file or to another machine.
std::wstring WhyNoLink(uint32_t type, const std::wstring& link, const std::wstring& target, bool targetIsFolder);

}  // namespace FileUtils
