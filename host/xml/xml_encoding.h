// xml_encoding.h - how a document's bytes are encoded, and its text without that. Bytes and texts only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace QVHost {

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
/// else in UTF-8. Nothing, and the reason, for an encoding that is not known here and for bytes that would not come
/// back from it as they were.
std::optional<DecodedXml> DecodeXml(std::string_view bytes, std::wstring& why);

/// A document's bytes; nothing when the encoding lacks one of its characters.
std::optional<std::string> EncodeXml(const XmlEncoding& encoding, std::string_view text);

/// The declaration that a UTF-8 text begins with, <?xml ... ?>; "" when it begins with none.
std::string_view XmlDeclarationOf(std::string_view text);

/// `text` for a parser: with blanks in place of the encoding that it declares, since it is in UTF-8 by now. All else
/// keeps its place.
std::string WithoutDeclaredEncoding(std::string text);

}  // namespace QVHost
