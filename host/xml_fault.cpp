#include "host/xml_fault.h"

#include <optional>
#include <utility>

#include "host/bstr.h"
#include "host/memory_stream.h"
#include "host/text.h"
#include "win32/com.h"
#include "win32/module.h"

#include <xmllite.h>

namespace QVHost {
namespace {

constexpr IID kXmlReader = {0x7279FC81, 0x709D, 0x4095, {0xB6, 0x3D, 0x69, 0xFE, 0x4B, 0x0D, 0x90, 0x30}};

/// Line and column, from 1, where the system's light reader stops; nothing when it reads to the end or does not
/// exist. The parser of documents does not tell the place on every system.
std::optional<std::pair<UINT, UINT>> FaultPlace(std::string_view bytes) {
    using CreateReader = HRESULT(WINAPI*)(REFIID, void**, IMalloc*);
    const Win32::Module library = Win32::LoadSystemModule(L"xmllite.dll");  // first: it must go after the reader
    const auto createReader = Win32::FindFunction<CreateReader>(library, "CreateXmlReader");
    Win32::ComPointer<IXmlReader> reader;
    const Win32::ComPointer<IStream> stream = StreamOf(bytes);
    if (!createReader || !stream || FAILED(createReader(kXmlReader, reader.ReceiveUntyped(), nullptr)) ||
        FAILED(reader->SetInput(stream.Get())))
        return std::nullopt;
    HRESULT result = S_OK;
    XmlNodeType type = XmlNodeType_None;
    while (result == S_OK) result = reader->Read(&type);
    if (result == S_FALSE) return std::nullopt;
    UINT line = 0;
    UINT column = 0;
    reader->GetLineNumber(&line);
    reader->GetLinePosition(&column);
    if (line == 0) return std::nullopt;  // an empty file has no place
    return std::pair(line, column);
}

}  // namespace

std::wstring FaultOf(IXMLDOMDocument2& document, std::string_view bytes) {
    Win32::ComPointer<IXMLDOMParseError> fault;
    if (FAILED(document.get_parseError(fault.Receive())) || !fault) return {};
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
