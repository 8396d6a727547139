// target_pattern.h - the "File name" field of the dialogs: what can stand in it, and what is proposed.
#pragma once

#include <string>

namespace FileUtils {

/// Why this cannot be the file name of "Save as", for people to read; "" when it can.
std::wstring WhyNotAFileName(const std::wstring& pattern);

/// What the field should hold when a target is chosen: what is there, and for "Save as" without any a proposal.
std::wstring ProposedFileName(bool savesAs, const std::wstring& present, const wchar_t* proposal);

}  // namespace FileUtils
