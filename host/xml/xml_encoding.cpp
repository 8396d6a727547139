#include "host/xml/xml_text.h"

#include <algorithm>

#include "host/app/host_text.h"
#include "win32/code_page.h"

namespace QVHost {
namespace {

constexpr std::string_view kDeclarationStart = "<?xml";
constexpr std::string_view kDeclarationEnd = "?>";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kUtf16BigEndianMark = "\xFE\xFF";

struct EncodingName {
    const wchar_t* name;
    uint32_t codePage;
};
constexpr EncodingName kNames[] = {
    {L"utf-8", XmlEncoding::kUtf8},
    {L"utf8", XmlEncoding::kUtf8},
    {L"us-ascii", 20127},
    {L"ascii", 20127},
    {L"iso-8859-1", 28591},
    {L"latin1", 28591},
    {L"iso-8859-2", 28592},
    {L"iso-8859-3", 28593},
    {L"iso-8859-4", 28594},
    {L"iso-8859-5", 28595},
    {L"iso-8859-6", 28596},
    {L"iso-8859-7", 28597},
    {L"iso-8859-8", 28598},
    {L"iso-8859-9", 28599},
    {L"iso-8859-13", 28603},
    {L"iso-8859-15", 28605},
    {L"windows-1250", 1250},
    {L"windows-1251", 1251},
    {L"windows-1252", 1252},
    {L"windows-1253", 1253},
    {L"windows-1254", 1254},
    {L"windows-1255", 1255},
    {L"windows-1256", 1256},
    {L"windows-1257", 1257},
    {L"windows-1258", 1258},
    {L"koi8-r", 20866},
    {L"shift_jis", 932},
    {L"gb2312", 936},
    {L"gbk", 936},
    {L"gb18030", 54936},
    {L"euc-jp", 20932},
    {L"euc-kr", 949},
    {L"big5", 950},
};

/// encoding="..." in a declaration: the whole of it, and the value. Both are "" when it has none.
struct DeclaredEncoding {
    std::string_view whole;
    std::string_view name;
};
DeclaredEncoding EncodingIn(std::string_view declaration) {
    size_t at = std::min(kDeclarationStart.size(), declaration.size());
    for (;;) {
        const size_t begin = declaration.find_first_not_of(kXmlBlanks, at);
        const size_t sign = declaration.find('=', begin);
        const size_t quote = declaration.find_first_not_of(kXmlBlanks, sign == declaration.npos ? sign : sign + 1);
        if (quote == declaration.npos || (declaration[quote] != '"' && declaration[quote] != '\'')) return {};
        const size_t end = declaration.find(declaration[quote], quote + 1);
        if (end == declaration.npos) return {};
        const std::string_view key = declaration.substr(begin, declaration.find_first_of(" \t\r\n=", begin) - begin);
        at = end + 1;
        if (key == "encoding")
            return {declaration.substr(begin, at - begin), declaration.substr(quote + 1, end - quote - 1)};
    }
}

std::wstring Utf16Of(std::string_view bytes, bool isBigEndian) {
    std::wstring text;
    for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const auto first = static_cast<uint8_t>(bytes[at]);
        const auto second = static_cast<uint8_t>(bytes[at + 1]);
        text += static_cast<wchar_t>(isBigEndian ? first << 8 | second : second << 8 | first);
    }
    return text;
}

std::string BytesOfUtf16(std::wstring_view text, bool isBigEndian) {
    std::string bytes;
    bytes.reserve(text.size() * 2);
    for (const wchar_t unit : text) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += isBigEndian ? high : low;
        bytes += isBigEndian ? low : high;
    }
    return bytes;
}

bool IsUtf16(uint32_t codePage) {
    return codePage == XmlEncoding::kUtf16 || codePage == XmlEncoding::kUtf16BigEndian;
}

/// The encoding that the first bytes show, by a mark or, in UTF-16, by their zeros; nothing when they do not.
std::optional<XmlEncoding> EncodingByBytes(std::string_view bytes) {
    if (bytes.starts_with(kUtf8Mark)) return XmlEncoding{XmlEncoding::kUtf8, true};
    if (bytes.starts_with(kUtf16Mark)) return XmlEncoding{XmlEncoding::kUtf16, true};
    if (bytes.starts_with(kUtf16BigEndianMark)) return XmlEncoding{XmlEncoding::kUtf16BigEndian, true};
    if (bytes.size() < 2) return std::nullopt;
    if (bytes[0] != 0 && bytes[1] == 0) return XmlEncoding{XmlEncoding::kUtf16, false};
    if (bytes[0] == 0 && bytes[1] != 0) return XmlEncoding{XmlEncoding::kUtf16BigEndian, false};
    return std::nullopt;
}

std::string_view MarkOf(const XmlEncoding& encoding) {
    if (!encoding.hasMark) return {};
    if (!IsUtf16(encoding.codePage)) return kUtf8Mark;
    return encoding.codePage == XmlEncoding::kUtf16 ? kUtf16Mark : kUtf16BigEndianMark;
}

/// The code page of a declared encoding, whose bytes are those of ASCII at least in a declaration; 0 when it is not
/// known here.
uint32_t CodePageOf(std::string_view name) {
    if (name.empty()) return XmlEncoding::kUtf8;
    const std::wstring wide(name.begin(), name.end());
    for (const EncodingName& row : kNames)
        if (EqualIgnoringCase(wide, row.name)) return row.codePage;
    return 0;
}

std::string TextOf(const XmlEncoding& encoding, std::string_view content) {
    if (encoding.codePage == XmlEncoding::kUtf8) return std::string(content);
    if (IsUtf16(encoding.codePage)) return ToUtf8(Utf16Of(content, encoding.codePage == XmlEncoding::kUtf16BigEndian));
    return ToUtf8(Win32::FromCodePage(content, encoding.codePage));
}

bool ComesBack(const XmlEncoding& encoding, std::string_view content) {
    return EncodeXml({encoding.codePage, false}, TextOf(encoding, content)) == content;
}

/// The bytes of the longest beginning that comes back as it was.
size_t SoundSize(const XmlEncoding& encoding, std::string_view content) {
    constexpr size_t kLongestCharacter = 4;  // bytes
    // Where a character is cut a beginning does not come back; one a few bytes shorter does.
    const auto sound = [&](size_t size) {
        for (size_t cut = 0; cut < kLongestCharacter && cut <= size; ++cut)
            if (ComesBack(encoding, content.substr(0, size - cut))) return std::optional(size - cut);
        return std::optional<size_t>();
    };
    size_t known = 0;
    for (size_t broken = content.size(); broken - known > 1;) {
        const size_t middle = known + (broken - known) / 2;
        (sound(middle) ? known : broken) = middle;
    }
    return sound(known).value_or(0);
}

}  // namespace

std::wstring Describe(XmlPlace place) {
    return L"line " + std::to_wstring(place.line) + L", column " + std::to_wstring(place.column);
}

std::optional<DecodedXml> DecodeXml(std::string_view bytes, std::wstring& why) {
    DecodedXml result;
    if (const auto shown = EncodingByBytes(bytes)) {
        result.encoding = *shown;
    } else {
        const std::string_view name = EncodingIn(XmlDeclarationOf(bytes)).name;
        result.encoding.codePage = CodePageOf(name);
        if (result.encoding.codePage == 0) {
            why = L"line 1, column 1: it cannot be read in the encoding that it declares, " +
                  std::wstring(name.begin(), name.end());
            return std::nullopt;
        }
    }
    const std::string_view content = bytes.substr(MarkOf(result.encoding).size());
    result.text = TextOf(result.encoding, content);
    if (result.encoding.codePage == XmlEncoding::kUtf8 || ComesBack(result.encoding, content)) return result;
    const std::string before = TextOf(result.encoding, content.substr(0, SoundSize(result.encoding, content)));
    why = Describe(PlaceIn(before, before.size())) + L": what stands here means nothing in the file's encoding";
    return std::nullopt;
}

std::optional<std::string> EncodeXml(const XmlEncoding& encoding, std::string_view text) {
    std::string bytes(MarkOf(encoding));
    if (encoding.codePage == XmlEncoding::kUtf8) return bytes.append(text);
    const std::optional<std::wstring> wide = FromUtf8(text);
    if (!wide) return std::nullopt;
    if (IsUtf16(encoding.codePage))
        return bytes += BytesOfUtf16(*wide, encoding.codePage == XmlEncoding::kUtf16BigEndian);
    return Win32::ToCodePage(*wide, encoding.codePage);
}

std::string_view XmlDeclarationOf(std::string_view text) {
    const bool begins = text.starts_with(kDeclarationStart) && text.size() > kDeclarationStart.size() &&
                        kXmlBlanks.find(text[kDeclarationStart.size()]) != std::string_view::npos;
    const size_t end = begins ? text.find(kDeclarationEnd) : std::string_view::npos;
    return end == std::string_view::npos ? std::string_view() : text.substr(0, end + kDeclarationEnd.size());
}

std::string WithoutDeclaredEncoding(std::string text) {
    const std::string_view whole = EncodingIn(XmlDeclarationOf(text)).whole;
    if (whole.empty()) return text;
    char* const begin = text.data() + (whole.data() - text.data());
    std::replace_if(
        begin, begin + whole.size(), [](char byte) { return byte != '\r' && byte != '\n'; }, ' ');
    return text;
}

}  // namespace QVHost
