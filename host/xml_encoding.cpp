#include "host/xml_encoding.h"

#include "host/text.h"
#include "win32/code_page.h"

namespace QVHost {
namespace {

constexpr std::wstring_view kDeclarationStart = L"<?xml ";
constexpr std::wstring_view kDeclarationEnd = L"?>";

struct EncodingName {
    const wchar_t* name;
    uint32_t codePage;
};
constexpr EncodingName kNames[] = {
    {L"utf-8", XmlEncoding::kUtf8},
    {L"us-ascii", 20127},
    {L"ascii", 20127},
    {L"iso-8859-1", 28591},
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
    {L"euc-kr", 949},
    {L"big5", 950},
};

/// The declaration that `text` begins with; "" when it begins with none.
std::wstring_view DeclarationOf(std::wstring_view text) {
    if (!text.starts_with(kDeclarationStart)) return {};
    const size_t end = text.find(kDeclarationEnd);
    return end == std::wstring_view::npos ? std::wstring_view() : text.substr(0, end + kDeclarationEnd.size());
}

/// The value of encoding="..." in a declaration; "" when it has none.
std::wstring_view NameIn(std::wstring_view declaration) {
    const size_t key = declaration.find(L"encoding");
    const size_t quote = key == std::wstring_view::npos ? key : declaration.find_first_of(L"\"'", key);
    if (quote == std::wstring_view::npos) return {};
    const std::wstring_view value = declaration.substr(quote + 1);
    return value.substr(0, value.find(declaration[quote]));
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

/// In a code page of 8 bits. Character by character only where the whole does not go.
std::string BytesInCodePage(std::wstring_view text, uint32_t codePage) {
    if (const auto whole = Win32::ToCodePage(text, codePage)) return *whole;
    std::string bytes;
    for (size_t at = 0; at < text.size(); ++at) {
        const bool isPair = text[at] >= 0xD800 && text[at] <= 0xDBFF && at + 1 < text.size();
        if (const auto one = Win32::ToCodePage(text.substr(at, isPair ? 2 : 1), codePage)) {
            bytes += *one;
        } else {
            const uint32_t low = isPair ? text[at + 1] - 0xDC00u : 0;
            const uint32_t character = isPair ? 0x10000 + ((text[at] - 0xD800u) << 10) + low : text[at];
            bytes += "&#" + std::to_string(character) + ";";
        }
        if (isPair) ++at;
    }
    return bytes;
}

}  // namespace

std::optional<XmlEncoding> EncodingOf(std::string_view bytes) {
    const bool isLittle = bytes.starts_with("\xFF\xFE");
    if (isLittle || bytes.starts_with("\xFE\xFF")) {
        const std::wstring text = Utf16Of(bytes.substr(2), !isLittle);
        return XmlEncoding{isLittle ? XmlEncoding::kUtf16 : XmlEncoding::kUtf16BigEndian,
                           std::wstring(DeclarationOf(text))};
    }
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    const std::string_view head = bytes.substr(0, bytes.find('>') + 1);  // a declaration is written in ASCII
    const std::wstring text(head.begin(), head.end());
    XmlEncoding encoding{XmlEncoding::kUtf8, std::wstring(DeclarationOf(text))};
    const std::wstring name(NameIn(encoding.declaration));
    if (name.empty()) return encoding;
    for (const EncodingName& row : kNames) {
        if (!EqualIgnoringCase(name, row.name)) continue;
        encoding.codePage = row.codePage;
        return encoding;
    }
    return std::nullopt;
}

std::string EncodedXml(const XmlEncoding& encoding, std::wstring_view text) {
    text.remove_prefix(DeclarationOf(text).size());
    const size_t start = text.find_first_not_of(L"\r\n");
    text.remove_prefix(start == std::wstring_view::npos ? 0 : start);
    std::wstring whole = encoding.declaration;
    if (!whole.empty()) whole += L'\n';
    whole += text;
    const bool isBigEndian = encoding.codePage == XmlEncoding::kUtf16BigEndian;
    if (isBigEndian || encoding.codePage == XmlEncoding::kUtf16) return BytesOfUtf16(L"\uFEFF" + whole, isBigEndian);
    return BytesInCodePage(whole, encoding.codePage);
}

}  // namespace QVHost
