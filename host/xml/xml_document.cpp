#include "host/xml/xml_document.h"

#include <shlwapi.h>
#include <algorithm>

#include "host/app/host_text.h"
#include "host/contract/host_boundary.h"
#include "host/xml/bstr.h"
#include "host/xml/xml_text.h"
#include "win32/text.h"

namespace QVHost {

Win32::ComPtr<IStream> StreamOf(std::string_view bytes) {
    const auto* const first = reinterpret_cast<const BYTE*>(bytes.data());
    Win32::ComPtr<IStream> stream;
    *stream.GetAddressOf() = SHCreateMemStream(first, static_cast<UINT>(bytes.size()));
    return stream;
}

uint32_t ReadStream(IStream& stream, std::string& bytes) {
    STATSTG state = {};
    const LARGE_INTEGER start = {};
    if (FAILED(stream.Stat(&state, STATFLAG_NONAME)) || FAILED(stream.Seek(start, STREAM_SEEK_SET, nullptr)))
        return ERROR_READ_FAULT;
    std::string content(static_cast<size_t>(state.cbSize.QuadPart), '\0');
    ULONG read = 0;
    if (FAILED(stream.Read(content.data(), static_cast<ULONG>(content.size()), &read)) || read != content.size())
        return ERROR_READ_FAULT;
    bytes = std::move(content);
    return ERROR_SUCCESS;
}

namespace {

/// False for what no XML text can hold: most control characters, half a surrogate pair.
bool IsXmlText(std::wstring_view text) {
    for (size_t at = 0; at < text.size(); ++at) {
        const wchar_t unit = text[at];
        if (Win32::IsHighSurrogate(unit)) {
            if (++at == text.size() || !Win32::IsLowSurrogate(text[at])) return false;
            continue;
        }
        const bool isHalfPair = Win32::IsLowSurrogate(unit);
        const bool isControl = unit < L' ' && unit != L'\t' && unit != L'\n' && unit != L'\r';
        if (isHalfPair || isControl || unit == 0xFFFE || unit == 0xFFFF) return false;
    }
    return true;
}

bool IsElement(IXMLDOMNode* node) {
    DOMNodeType type = NODE_INVALID;
    return node && SUCCEEDED(node->get_nodeType(&type)) && type == NODE_ELEMENT;
}

std::wstring NameOf(IXMLDOMNode* node) {
    Bstr name;
    node->get_nodeName(name.Receive());
    return std::wstring(name.View());
}

/// A Windows error code where the result holds one.
uint32_t CodeOf(HRESULT result) {
    if (SUCCEEDED(result)) return ERROR_SUCCESS;
    return HRESULT_FACILITY(result) == FACILITY_WIN32 ? static_cast<uint32_t>(HRESULT_CODE(result))
                                                      : static_cast<uint32_t>(result);
}

}  // namespace

uint32_t XmlElement::GetName(wchar_t* buffer, uint32_t capacity) {
    return Guarded(0u, [&] { return CopyText(NameOf(m_node.Get()), buffer, capacity); });
}

Quorvane::SDK::IXmlElement* XmlElement::FirstNamed(Win32::ComPtr<IXMLDOMNode> node, const wchar_t* name) {
    while (node && !(IsElement(node.Get()) && (!name || NameOf(node.Get()) == name))) {
        Win32::ComPtr<IXMLDOMNode> next;
        node->get_nextSibling(&next);
        node = std::move(next);
    }
    return m_document.ElementOf(Win32::InterfaceOf<IXMLDOMElement>(node, IID_IXMLDOMElement));
}

Quorvane::SDK::IXmlElement* XmlElement::FirstChild(const wchar_t* name) {
    return Guarded<Quorvane::SDK::IXmlElement*>(nullptr, [&] {
        Win32::ComPtr<IXMLDOMNode> first;
        m_node->get_firstChild(&first);
        return FirstNamed(std::move(first), name);
    });
}

Quorvane::SDK::IXmlElement* XmlElement::NextSibling(const wchar_t* name) {
    return Guarded<Quorvane::SDK::IXmlElement*>(nullptr, [&] {
        Win32::ComPtr<IXMLDOMNode> next;
        m_node->get_nextSibling(&next);
        return FirstNamed(std::move(next), name);
    });
}

uint32_t XmlElement::GetText(wchar_t* buffer, uint32_t capacity) {
    return Guarded(0u, [&] {
        // Piece by piece: the text of the element as a whole comes without the blanks at its ends.
        std::wstring text;
        Win32::ComPtr<IXMLDOMNode> child;
        m_node->get_firstChild(&child);
        while (child) {
            DOMNodeType type = NODE_INVALID;
            child->get_nodeType(&type);
            Win32::ComPtr<IXMLDOMCharacterData> piece;
            if (type == NODE_TEXT || type == NODE_CDATA_SECTION)
                piece = Win32::InterfaceOf<IXMLDOMCharacterData>(child, IID_IXMLDOMCharacterData);
            Bstr data;
            if (piece && SUCCEEDED(piece->get_data(data.Receive()))) text += data.View();
            Win32::ComPtr<IXMLDOMNode> next;
            child->get_nextSibling(&next);
            child = std::move(next);
        }
        return CopyText(text, buffer, capacity);
    });
}

bool XmlElement::GetAttribute(const wchar_t* name, wchar_t* buffer, uint32_t capacity) {
    return Guarded(false, [&] {
        if (!name) return false;
        const Bstr key(name);
        Win32::ComPtr<IXMLDOMAttribute> attribute;
        if (m_node->getAttributeNode(key.Get(), &attribute) != S_OK || !attribute) return false;
        VARIANT value = {};
        if (FAILED(attribute->get_nodeValue(&value))) return false;
        const bool isText = value.vt == VT_BSTR;
        if (isText)
            CopyText(value.bstrVal ? std::wstring_view(value.bstrVal, SysStringLen(value.bstrVal)) : L"", buffer,
                     capacity);
        VariantClear(&value);
        return isText;
    });
}

Quorvane::SDK::IXmlElement* XmlElement::AddChild(const wchar_t* name) {
    return Guarded<Quorvane::SDK::IXmlElement*>(nullptr, [&]() -> Quorvane::SDK::IXmlElement* {
        Win32::ComPtr<IXMLDOMElement> child = m_document.NewElement(name);
        m_document.OnChange();
        if (!child || FAILED(m_node->appendChild(child.Get(), nullptr))) return nullptr;
        return m_document.ElementOf(std::move(child));
    });
}

bool XmlElement::SetText(const wchar_t* text) {
    return Guarded(false, [&] {
        if (!text || !IsXmlText(text)) return false;
        m_document.OnChange();
        return SUCCEEDED(m_node->put_text(Bstr(text).Get()));
    });
}

bool XmlElement::SetAttribute(const wchar_t* name, const wchar_t* value) {
    return Guarded(false, [&] {
        if (!name || !value || !IsXmlText(value)) return false;
        m_document.OnChange();
        const Bstr key(name);
        const Bstr content(value);
        return SUCCEEDED(m_node->setAttribute(key.Get(), TextVariant(content)));
    });
}

XmlElement* XmlDocument::ElementOf(Win32::ComPtr<IXMLDOMElement> node) {
    if (!node) return nullptr;
    std::unique_ptr<XmlElement>& element = m_elements[node.Get()];
    if (!element) element = std::make_unique<XmlElement>(*this, std::move(node));
    return element.get();
}

Win32::ComPtr<IXMLDOMElement> XmlDocument::NewElement(const wchar_t* name) {
    Win32::ComPtr<IXMLDOMElement> element;
    if (name && *name) m_document->createElement(Bstr(name).Get(), &element);
    return element;
}

Quorvane::SDK::IXmlElement* XmlDocument::GetRoot() {
    return Guarded<Quorvane::SDK::IXmlElement*>(nullptr, [&] {
        Win32::ComPtr<IXMLDOMElement> root;
        m_document->get_documentElement(&root);
        return ElementOf(std::move(root));
    });
}

Quorvane::SDK::IXmlElement* XmlDocument::CreateRoot(const wchar_t* name) {
    return Guarded<Quorvane::SDK::IXmlElement*>(nullptr, [&]() -> Quorvane::SDK::IXmlElement* {
        if (GetRoot()) return nullptr;
        OnChange();
        Win32::ComPtr<IXMLDOMElement> root = NewElement(name);
        if (!root || FAILED(m_document->appendChild(root.Get(), nullptr))) return nullptr;
        return ElementOf(std::move(root));
    });
}

void XmlDocument::Release() {
    GuardedCall([&] { m_shelf.Remove(this); });
}

uint32_t XmlDocument::ToText(std::string& text) const {
    if (!m_isChanged) {
        text = m_source.text;
        return ERROR_SUCCESS;
    }
    // The elements know neither its document type nor its entities.
    if (m_source.text.find("<!DOCTYPE") != std::string::npos) return ERROR_NOT_SUPPORTED;
    const Win32::ComPtr<IStream> stream = StreamOf({});
    if (!stream) return ERROR_OUTOFMEMORY;
    std::string written;
    uint32_t error = CodeOf(m_document->save(ObjectVariant(stream.Get())));
    if (error == ERROR_SUCCESS) error = ReadStream(*stream.Get(), written);
    if (error != ERROR_SUCCESS) return error;
    // The parser was given no encoding, so that every system's writer writes UTF-8; the declaration is the source's.
    std::string_view rest = written;
    rest.remove_prefix(XmlDeclarationOf(rest).size());
    rest.remove_prefix(std::min(rest.find_first_not_of("\r\n"), rest.size()));
    const std::string_view lineBreak = LineBreakOf(m_source.text);
    text = XmlDeclarationOf(m_source.text);
    if (!text.empty()) text += lineBreak;
    for (const char byte : rest)
        if (byte == '\n')
            text += lineBreak;
        else
            text += byte;
    return ERROR_SUCCESS;
}

uint32_t XmlDocument::ToBytes(bool isReadable, std::string& bytes) const {
    std::string text;
    if (const uint32_t error = ToText(text)) return error;
    const std::optional<std::string> laidOut = isReadable ? ReadableXml(text) : CompactXml(text);
    if (!laidOut) return ERROR_INVALID_DATA;
    std::optional<std::string> encoded = EncodeXml(m_source.encoding, *laidOut);
    if (!encoded) return ERROR_NO_UNICODE_TRANSLATION;
    bytes = *std::move(encoded);
    return ERROR_SUCCESS;
}

}  // namespace QVHost
