// host_text.h - short helpers for texts: lines, copies into an extension's buffers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "win32/error_text.h"
#include "win32/text.h"

namespace QVHost {

using Win32::DescribeError;
using Win32::EqualIgnoringCase;
using Win32::FromUtf8;
using Win32::ToUtf8;
using Win32::Wide;

/// Copies as the contract says: at most `capacity` units with the closing zero. The result is the whole text's length
/// in units; a null buffer or no capacity only asks for it.
uint32_t CopyText(std::wstring_view text, wchar_t* buffer, uint32_t capacity);

/// The text up to the first zero, at most `size` units: fields of records need not end with a zero.
std::wstring TextOfField(const wchar_t* field, size_t size);
std::wstring TextOfField(const char* field, size_t size);

/// "" for null.
std::wstring TextOrEmpty(const wchar_t* text);

/// Each line break (CR LF counts once) as one blank.
std::wstring OnOneLine(std::wstring_view text);
/// Appends the same.
void AppendOnOneLine(std::wstring& line, std::wstring_view text);

/// The lines of a text file's bytes: LF or CR LF ends a line, a final one opens none, a UTF-8 mark is skipped.
std::vector<std::string_view> LinesOf(std::string_view bytes);

/// ", did you mean NAME?" with the known name that somebody probably meant, or "" when none is near (more than a third
/// of `name`, and more than two characters, would have to change).
std::wstring DidYouMean(std::wstring_view name, const std::vector<std::wstring>& known);

}  // namespace QVHost
