// target_pattern.h - the "File name" field of the dialogs: what can stand in it, and what is proposed.
#pragma once

#include <span>
#include <string>

namespace FileUtils {

/// Why these files cannot be saved as `pattern` says, for people to read; "" when each can, with a name of its own.
std::wstring WhyNotATarget(const std::wstring& pattern, std::span<const std::wstring> files);

/// What the field should hold when a target is chosen: what is there, and for "Save as" without any a proposal.
std::wstring ProposedFileName(bool savesAs, const std::wstring& present, const wchar_t* proposal);

}  // namespace FileUtils
