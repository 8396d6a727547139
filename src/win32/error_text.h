// error_text.h - what the system says of an error.
#pragma once

#include <cstdint>
#include <string>

namespace Win32 {

/// The system's text for a Windows error code, in the user's language and without blanks and line breaks at its ends;
/// "" when it has none.
std::wstring SystemErrorText(uint32_t code);

/// The same after the number and on one line, "error 5 (Access denied.)", for a message that has named the file.
std::wstring DescribeError(uint32_t code);

}  // namespace Win32
