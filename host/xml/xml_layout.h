// xml_layout.h - the blanks between the elements of an XML document. Works on the text as it was written, so that
// whatever else it holds (references, quotes, prefixes, document types) comes back as it was. UTF-8 in, UTF-8 out.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace QVHost {

/// Blanks count as nothing only in an element that has other elements and no text, and not below
/// xml:space="preserve". References and CDATA sections are text, and so are blanks without a line break that separate
/// two elements of which one holds text: "<b>Hello</b> <i>World</i>". Everything in an element with text stays as it
/// is, and so does a whole document whose document type speaks of xml:space.
///
/// Each is nothing for a text that is no document: its brackets do not end, or its elements do not.

/// Without the blanks that count as nothing.
std::optional<std::string> CompactXml(std::string_view text);

/// With a line break and tabs between the elements instead of such blanks; line breaks are like the text's first one.
std::optional<std::string> ReadableXml(std::string_view text);

/// As CompactXml, and without the blanks before and after the root: two layouts of one document become equal.
std::optional<std::string> ContentOfXml(std::string_view text);

/// The line break that a text's lines end with, as its first one; "\n" when it has none.
std::string_view LineBreakOf(std::string_view text);

}  // namespace QVHost
