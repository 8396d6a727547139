// mime_header.h - the few lines before the Base64 text: what is written there, and what is believed of what others
// wrote there. Bytes and texts only.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace FileUtils {

/// Bytes of a file in which the name is looked for, and in which the header must end.
inline constexpr size_t kNameArea = 1023;
inline constexpr size_t kHeaderArea = 64 * 1024;

/// The header of a file called `name` (in the code page in which it is written), its empty line included.
std::string MimeHeader(std::string_view name);

/// The name that the header in `bytes` (the file's beginning) gives, in the code page it is written in. "" when there
/// is none: the first line does not hold "MIME-Version", or the second no name="...".
std::string_view NameInHeader(std::string_view bytes);

/// Where the Base64 text begins in `bytes` (the file's beginning), 0 when no header comes first.
///
/// A header is what every mail program writes: lines of a field's name, a colon and a value, or of blanks and more of
/// the value above, and the empty line at their end. Among the fields must be one of MIME, so that no text that only
/// looks like one is thrown away; Base64 text never holds a colon. With a name in the header, lines that are no fields
/// are let pass as well: then the header ends at the first empty line, the fourth or a later one, of the first 11 lines
/// in 4096 bytes.
size_t HeaderSize(std::string_view bytes);

}  // namespace FileUtils
