// xml_text.h - XML documents as texts, without a parser: how their bytes are encoded, and the blanks between their
// elements. Works on the text as it was written, so that whatever it holds (references, quotes, prefixes, document
// types) comes back as it was.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace QVHost {

inline constexpr std::string_view kXmlBlanks = " \t\r\n";  // white space in XML 1.0, section 2.3

struct XmlEncoding {
    static constexpr uint32_t kUtf16 = 1200;
    static constexpr uint32_t kUtf16BigEndian = 1201;
    static constexpr uint32_t kUtf8 = 65001;

    uint32_t codePage = kUtf8;
    bool hasMark = false;  // a byte-order mark begins the file
};

struct DecodedXml {
    XmlEncoding encoding;
    std::string text;  // UTF-8, without the mark; the declaration stands in it as it was
};

/// The text of a document: in the encoding that its mark or its first bytes show, else in the one that it declares,
/// else in UTF-8. Nothing, and the reason with its place, for an encoding that is not known here and for bytes that
/// would not come back from it as they were. Bytes that pass for UTF-8 are given as they are: FindXmlFault looks at
/// them.
std::optional<DecodedXml> DecodeXml(std::string_view bytes, std::wstring& why);

/// A document's bytes; nothing when the encoding lacks one of its characters.
std::optional<std::string> EncodeXml(const XmlEncoding& encoding, std::string_view text);

/// The declaration that a UTF-8 text begins with, <?xml ... ?>; "" when it begins with none.
std::string_view XmlDeclarationOf(std::string_view text);

/// `text` for a parser: with blanks in place of the encoding that it declares, since it is in UTF-8 by now. All else
/// keeps its place.
std::string WithoutDeclaredEncoding(std::string text);

/// `text` for a parser: without its document type, and then with its references to entities as text ("&amp;name;"). So
/// no parser, whatever its settings, fetches anything, takes the time or the memory that entities within entities
/// would, or refuses the document type. What has none stays as it is.
std::string WithoutEntities(std::string text);

/// The document type that `text` begins with, with the declarations in it; "" when it has no end.
std::string_view XmlDocumentTypeAt(std::string_view text);

/// Entities that need no declaration.
inline constexpr std::array<std::string_view, 5> kXmlEntities = {"amp", "lt", "gt", "quot", "apos"};

/// Why a text is no document, and where: as a number of bytes.
struct XmlFault {
    size_t offset = 0;
    const char* reason = "";
};
/// The first fault of a UTF-8 text without its mark: what is not well-formed by XML 1.0, and what would make parsers
/// slow (elements more than 250 deep, or with more than 500 attributes). Document types and namespaces are not looked
/// into. Takes time in proportion to the text.
std::optional<XmlFault> FindXmlFault(std::string_view text);

/// From 1; a line ends with LF, CR LF or CR, a column counts characters.
struct XmlPlace {
    size_t line = 1;
    size_t column = 1;
};
XmlPlace PlaceIn(std::string_view text, size_t offset);
/// "line L, column C"
std::wstring Describe(XmlPlace place);

// The layout of a document; UTF-8 in, UTF-8 out.
//
// Blanks count as nothing only in an element that has other elements and no text, and not below
// xml:space="preserve". References and CDATA sections are text, and so are blanks without a line break that separate
// two elements of which one holds text: "<b>Hello</b> <i>World</i>". Everything in an element with text stays as it
// is, and so does a whole document whose document type speaks of xml:space.
//
// Each is nothing for a text that is no document: its brackets do not end, or its elements do not.

/// Without the blanks that count as nothing.
std::optional<std::string> CompactXml(std::string_view text);

/// With a line break and tabs between the elements instead of such blanks; line breaks are like the text's first one.
std::optional<std::string> ReadableXml(std::string_view text);

/// As CompactXml, and without the blanks before and after the root: two layouts of one document become equal.
std::optional<std::string> ContentOfXml(std::string_view text);

/// The line break that a text's lines end with, as its first one; "\n" when it has none.
std::string_view LineBreakOf(std::string_view text);

}  // namespace QVHost
