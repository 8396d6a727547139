// code_page.h - between UTF-16 and the 8-bit code pages, without silent loss.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Win32 {

inline constexpr uint32_t kSystemCodePage = 0;  // CP_ACP: of the system, for programs without Unicode
inline constexpr uint32_t kThreadCodePage = 3;  // CP_THREAD_ACP: follows the thread's locale
inline constexpr uint32_t kUtf8CodePage = 65001;

/// True for UTF-8 itself, and for the thread's code page where a language has no other one, or where the user chose
/// UTF-8 for everything.
bool IsUtf8(uint32_t codePage);

/// True when the bytes are UTF-8 throughout. Beyond 2 GB always false.
bool IsValidUtf8(std::string_view text);

/// `text` in the code page, or nothing when a character of it cannot be represented there: no best-fit letters, no
/// "?" in its place, no lone surrogates in UTF-8. "" gives "".
std::optional<std::string> ToCodePage(std::wstring_view text, uint32_t codePage);

/// `text` decoded from the code page. Bytes that mean nothing there come out as the system's replacement character:
/// this is for showing text to people, not for text that is written back.
std::wstring FromCodePage(std::string_view text, uint32_t codePage);
/// The same into `capacity` units; gives the number written, 0 when they are too few.
uint32_t FromCodePage(std::string_view text, uint32_t codePage, wchar_t* buffer, uint32_t capacity);

}  // namespace Win32
