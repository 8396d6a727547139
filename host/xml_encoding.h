// xml_encoding.h - how a document's bytes are encoded, and other text in the same encoding. Bytes and texts only.
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
    std::wstring declaration;  // <?xml ... ?> as it stands; "" for none
};

/// The encoding of a document that begins with `bytes`: by its byte-order mark, else by its declaration, else UTF-8.
/// Nothing for an encoding that is not known here.
std::optional<XmlEncoding> EncodingOf(std::string_view bytes);

/// A document's text in an encoding, the declaration before it instead of the text's own; with a mark in UTF-16.
/// Characters that the encoding does not have become references.
std::string EncodedXml(const XmlEncoding& encoding, std::wstring_view text);

}  // namespace QVHost
