#include "host/xml/xml_document.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "host/app/host_text.h"
#include "host/xml/bstr.h"
#include "win32/com.h"
#include "win32/module.h"

#include <xmllite.h>

namespace QVHost {
namespace {

constexpr IID kXmlReader = {0x7279FC81, 0x709D, 0x4095, {0xB6, 0x3D, 0x69, 0xFE, 0x4B, 0x0D, 0x90, 0x30}};

using Place = std::pair<UINT, UINT>;  // line and column, from 1

constexpr int kMostReadsInPlace = 3;

/// After the last character. A column counts characters.
Place EndOf(std::string_view utf8) {
    const size_t lineBreak = utf8.rfind('\n');
    const std::string_view line = lineBreak == std::string_view::npos ? utf8 : utf8.substr(lineBreak + 1);
    const auto isFirstByte = [](char byte) { return (byte & 0xC0) != 0x80; };
    return {static_cast<UINT>(std::ranges::count(utf8, '\n') + 1),
            static_cast<UINT>(std::ranges::count_if(line, isFirstByte) + 1)};
}

/// Where the system's light reader stops; nothing when it reads to the end or does not exist. The parser of documents
/// does not tell the place on every system.
std::optional<Place> FaultPlace(std::string_view bytes) {
    using CreateReader = HRESULT(WINAPI*)(REFIID, void**, IMalloc*);
    const Win32::Module library = Win32::LoadSystemModule(L"xmllite.dll");  // first: it must go after the reader
    const auto createReader = Win32::FindFunction<CreateReader>(library, "CreateXmlReader");
    Win32::ComPtr<IXmlReader> reader;
    const Win32::ComPtr<IStream> stream = StreamOf(bytes);
    if (!createReader || !stream || FAILED(createReader(kXmlReader, &reader, nullptr)) ||
        FAILED(reader->SetInput(stream.Get())))
        return std::nullopt;
    Place furthest(0, 0);
    for (int readsInPlace = 0; readsInPlace < kMostReadsInPlace; ++readsInPlace) {
        XmlNodeType type = XmlNodeType_None;
        const HRESULT result = reader->Read(&type);
        if (result == S_FALSE) return std::nullopt;
        Place place(0, 0);
        reader->GetLineNumber(&place.first);
        reader->GetLinePosition(&place.second);
        if (result != S_OK && place.first == 0) return std::nullopt;  // an empty file has no place
        if (result != S_OK) return place;
        if (place <= furthest) continue;
        furthest = place;
        readsInPlace = 0;
    }
    // Where a file ends inside an element, after text or blanks, some readers give those again for ever.
    return EndOf(bytes);
}

}  // namespace

std::wstring FaultOf(IXMLDOMDocument2& document, std::string_view bytes) {
    Win32::ComPtr<IXMLDOMParseError> fault;
    if (FAILED(document.get_parseError(&fault)) || !fault) return {};
    LONG line = 0;
    LONG column = 0;
    Bstr reason;
    fault->get_line(&line);
    fault->get_linepos(&column);
    fault->get_reason(reason.Receive());
    std::wstring place;
    if (line > 0) {
        place = L"line " + std::to_wstring(line) + L", column " + std::to_wstring(column);
    } else if (const auto found = FaultPlace(bytes)) {
        place = L"line " + std::to_wstring(found->first) + L", column " + std::to_wstring(found->second);
    } else {
        return {};
    }
    const std::wstring why = OnOneLine(reason.View());
    return why.empty() ? place : place + L": " + why;
}

}  // namespace QVHost
