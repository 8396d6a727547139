// xml_document.h - an XML document and its elements as extensions see them, over the system's own (MSXML 6).
#pragma once

#include <msxml2.h>
#include <objidl.h>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "host/contract/shelf.h"
#include "host/xml/xml_text.h"
#include "sdk/host_objects.h"
#include "win32/com.h"
#include "win32/successor.h"

namespace QVHost {

/// A stream that holds a copy of `bytes` and stands at their beginning; none where memory has run out.
Win32::ComPtr<IStream> StreamOf(std::string_view bytes);

/// All that `stream` holds, wherever it stands. A Windows error code, 0 for success.
uint32_t ReadStream(IStream& stream, std::string& bytes);

class XmlDocument;

/// An element. Lives with its document, which owns it.
class XmlElement final : public Quorvane::SDK::IXmlElement {
public:
    XmlElement(XmlDocument& document, Win32::ComPtr<IXMLDOMElement> node)
        : m_document(document), m_node(std::move(node)) {}

    uint32_t GetName(wchar_t* buffer, uint32_t capacity) override;
    Quorvane::SDK::IXmlElement* FirstChild(const wchar_t* name) override;
    Quorvane::SDK::IXmlElement* NextSibling(const wchar_t* name) override;
    uint32_t GetText(wchar_t* buffer, uint32_t capacity) override;
    bool GetAttribute(const wchar_t* name, wchar_t* buffer, uint32_t capacity) override;
    Quorvane::SDK::IXmlElement* AddChild(const wchar_t* name) override;
    bool SetText(const wchar_t* text) override;
    bool SetAttribute(const wchar_t* name, const wchar_t* value) override;

private:
    /// `node` or the first element after it that has the name; null: any name.
    Quorvane::SDK::IXmlElement* FirstNamed(Win32::ComPtr<IXMLDOMNode> node, const wchar_t* name);

    XmlDocument& m_document;
    Win32::ComPtr<IXMLDOMElement> m_node;
};

class XmlDocument final : public Quorvane::SDK::IXmlDocument {
public:
    /// `source`: what the document was read from; of a new one the declaration.
    XmlDocument(Shelf<XmlDocument>& shelf, Win32::ComPtr<IXMLDOMDocument2> document, DecodedXml source)
        : m_shelf(shelf), m_document(std::move(document)), m_source(std::move(source)) {}

    Quorvane::SDK::IXmlElement* GetRoot() override;
    Quorvane::SDK::IXmlElement* CreateRoot(const wchar_t* name) override;
    void Release() override;

    IXMLDOMDocument2* Document() const { return m_document.Get(); }
    /// The document as text in UTF-8: what it was read from, unless it has been changed since. A Windows error code, 0
    /// for success; so below.
    uint32_t ToText(std::string& text) const;
    /// The document as the bytes of a file, in its encoding.
    uint32_t ToBytes(bool isReadable, std::string& bytes) const;
    /// The file that the document was read from, as it was then; nothing when it has been written since.
    struct Origin {
        std::wstring path;
        Win32::FileState state;
    };
    std::optional<Origin> origin;
    /// From here on the elements are the document, and its text is made of them.
    void OnChange() { m_isChanged = true; }
    bool IsChanged() const { return m_isChanged; }
    /// The one object that stands for this node; null for null.
    XmlElement* ElementOf(Win32::ComPtr<IXMLDOMElement> node);
    Win32::ComPtr<IXMLDOMElement> NewElement(const wchar_t* name);

private:
    Shelf<XmlDocument>& m_shelf;
    Win32::ComPtr<IXMLDOMDocument2> m_document;
    DecodedXml m_source;
    bool m_isChanged = false;
    std::map<IXMLDOMElement*, std::unique_ptr<XmlElement>> m_elements;
};

}  // namespace QVHost
