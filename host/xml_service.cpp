#include "host/xml_service.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "host/boundary.h"
#include "host/text.h"
#include "host/unix_paths.h"
#include "host/whole_file.h"
#include "host/xml_encoding.h"
#include "win32/files.h"
#include "win32/module.h"
#include "win32/windows.h"

#include <msxml2.h>
#include <ole2.h>
#include <shlwapi.h>
#include <xmllite.h>

namespace QVHost {
namespace {

constexpr uint32_t kIndented = 1;

// The compiler's headers stop short of version 6; its numbers are public.
constexpr CLSID kDomDocument60 = {0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
constexpr IID kXmlReader = {0x7279FC81, 0x709D, 0x4095, {0xB6, 0x3D, 0x69, 0xFE, 0x4B, 0x0D, 0x90, 0x30}};
constexpr IID kDomDocument2 = {0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

/// Owns one reference to a COM object.
template <class Interface>
class ComPtr {
public:
    ComPtr() = default;
    explicit ComPtr(Interface* raw) : m_raw(raw) {}
    ComPtr(ComPtr&& other) noexcept : m_raw(std::exchange(other.m_raw, nullptr)) {}
    ComPtr& operator=(ComPtr&& other) noexcept {
        std::swap(m_raw, other.m_raw);
        return *this;
    }
    ~ComPtr() {
        if (m_raw) m_raw->Release();
    }

    explicit operator bool() const { return m_raw != nullptr; }
    Interface* operator->() const { return m_raw; }
    Interface* Get() const { return m_raw; }
    /// For a call that puts a new object here.
    Interface** Receive() {
        *this = ComPtr();
        return &m_raw;
    }
    template <class Other>
    ComPtr<Other> As(REFIID id) const {
        ComPtr<Other> other;
        if (m_raw) m_raw->QueryInterface(id, reinterpret_cast<void**>(other.Receive()));
        return other;
    }

private:
    Interface* m_raw = nullptr;
};

class Bstr {
public:
    Bstr() = default;
    explicit Bstr(std::wstring_view text) : m_raw(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    ~Bstr() { SysFreeString(m_raw); }

    BSTR Get() const { return m_raw; }
    BSTR* Receive() { return &m_raw; }
    std::wstring_view View() const {
        return m_raw ? std::wstring_view(m_raw, SysStringLen(m_raw)) : std::wstring_view();
    }

private:
    BSTR m_raw = nullptr;
};

/// A text argument; the string must outlive it.
VARIANT TextVariant(const Bstr& text) {
    VARIANT variant = {};
    variant.vt = VT_BSTR;
    variant.bstrVal = text.Get();
    return variant;
}

ComPtr<IXMLDOMDocument2> NewDocument() {
    ComPtr<IXMLDOMDocument2> document;
    CoCreateInstance(kDomDocument60, nullptr, CLSCTX_INPROC_SERVER, kDomDocument2,
                     reinterpret_cast<void**>(document.Receive()));
    if (!document) return document;
    document->put_async(VARIANT_FALSE);
    document->put_validateOnParse(VARIANT_FALSE);
    document->put_resolveExternals(VARIANT_FALSE);
    // Else a text of blanks alone, or blanks at a text's ends, would be lost.
    document->put_preserveWhiteSpace(VARIANT_TRUE);
    return document;
}

/// False for what no XML text can hold: most control characters, half a surrogate pair.
bool IsXmlText(std::wstring_view text) {
    for (size_t at = 0; at < text.size(); ++at) {
        const wchar_t unit = text[at];
        if (unit >= 0xD800 && unit <= 0xDBFF) {
            if (++at == text.size() || text[at] < 0xDC00 || text[at] > 0xDFFF) return false;
            continue;
        }
        const bool isHalfPair = unit >= 0xDC00 && unit <= 0xDFFF;
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

bool IsBlankText(const ComPtr<IXMLDOMNode>& node) {
    const auto text = node.As<IXMLDOMCharacterData>(IID_IXMLDOMCharacterData);
    Bstr data;
    if (!text || FAILED(text->get_data(data.Receive()))) return false;
    return data.View().find_first_not_of(L" \t\r\n") == std::wstring_view::npos;
}

/// True for an element that asks for its blanks to be kept.
bool KeepsBlanks(IXMLDOMNode* node) {
    ComPtr<IXMLDOMElement> element;
    node->QueryInterface(IID_IXMLDOMElement, reinterpret_cast<void**>(element.Receive()));
    ComPtr<IXMLDOMAttribute> attribute;
    if (!element || element->getAttributeNode(Bstr(L"xml:space").Get(), attribute.Receive()) != S_OK || !attribute)
        return false;
    Bstr value;
    return SUCCEEDED(attribute->get_text(value.Receive())) && value.View() == L"preserve";
}

/// Line and column, from 1, where the system's light reader stops; nothing when it reads the file to its end, cannot
/// open it, or does not exist. The reader above does not tell the place on every system.
std::optional<std::pair<UINT, UINT>> FaultPlace(const std::wstring& path) {
    using CreateReader = HRESULT(WINAPI*)(REFIID, void**, IMalloc*);
    const Win32::Module library = Win32::LoadSystemModule(L"xmllite.dll");  // first: it must go after the reader
    const auto createReader = Win32::FindFunction<CreateReader>(library, "CreateXmlReader");
    ComPtr<IXmlReader> reader;
    ComPtr<IStream> stream;
    if (!createReader || FAILED(createReader(kXmlReader, reinterpret_cast<void**>(reader.Receive()), nullptr)) ||
        FAILED(SHCreateStreamOnFileEx(path.c_str(), STGM_READ | STGM_SHARE_DENY_NONE, 0, FALSE, nullptr,
                                      stream.Receive())) ||
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

/// Where and why a document is not well-formed; "" when that is not what is wrong.
std::wstring FaultOf(IXMLDOMDocument2* document, const std::wstring& path) {
    ComPtr<IXMLDOMParseError> fault;
    if (FAILED(document->get_parseError(fault.Receive())) || !fault) return {};
    LONG line = 0;
    LONG column = 0;
    Bstr reason;
    fault->get_line(&line);
    fault->get_linepos(&column);
    fault->get_reason(reason.Receive());
    std::wstring place;
    if (line > 0) {
        place = L"line " + std::to_wstring(line) + L", column " + std::to_wstring(column);
    } else if (const auto found = FaultPlace(path)) {
        place = L"line " + std::to_wstring(found->first) + L", column " + std::to_wstring(found->second);
    } else {
        return {};
    }
    const std::wstring why = OnOneLine(reason.View());
    return why.empty() ? place : place + L": " + why;
}

/// A Windows error code where the result holds one.
uint32_t CodeOf(HRESULT result) {
    if (SUCCEEDED(result)) return ERROR_SUCCESS;
    return HRESULT_FACILITY(result) == FACILITY_WIN32 ? static_cast<uint32_t>(HRESULT_CODE(result))
                                                      : static_cast<uint32_t>(result);
}

}  // namespace

/// An element. Lives with its document, which owns it.
class XmlElement final : public Quorvane::SDK::IXmlElement {
public:
    XmlElement(XmlDocument& document, ComPtr<IXMLDOMElement> node) : m_document(document), m_node(std::move(node)) {}

    uint32_t GetName(wchar_t* buffer, uint32_t capacity) override;
    Quorvane::SDK::IXmlElement* FirstChild(const wchar_t* name) override;
    Quorvane::SDK::IXmlElement* NextSibling(const wchar_t* name) override;
    uint32_t GetText(wchar_t* buffer, uint32_t capacity) override;
    bool GetAttribute(const wchar_t* name, wchar_t* buffer, uint32_t capacity) override;
    Quorvane::SDK::IXmlElement* AddChild(const wchar_t* name) override;
    bool SetText(const wchar_t* text) override;
    bool SetAttribute(const wchar_t* name, const wchar_t* value) override;

private:
    /// `node` or the first element behind it that has the name; null: any name.
    Quorvane::SDK::IXmlElement* FirstNamed(ComPtr<IXMLDOMNode> node, const wchar_t* name);

    XmlDocument& m_document;
    ComPtr<IXMLDOMElement> m_node;
};

class XmlDocument final : public Quorvane::SDK::IXmlDocument {
public:
    /// Without an encoding the document cannot be saved.
    XmlDocument(Shelf<XmlDocument>& shelf, ComPtr<IXMLDOMDocument2> document, std::optional<XmlEncoding> encoding)
        : m_shelf(shelf), m_document(std::move(document)), m_encoding(std::move(encoding)) {}

    Quorvane::SDK::IXmlElement* GetRoot() override;
    Quorvane::SDK::IXmlElement* CreateRoot(const wchar_t* name) override;
    void Release() override;

    IXMLDOMDocument2* Document() const { return m_document.Get(); }
    /// Writes the document to a new file, in its encoding. Afterwards it may be without its declaration.
    /// A Windows error code, 0 for success.
    uint32_t SaveAs(const std::wstring& path) const;
    /// The one object that stands for this node; null for null.
    XmlElement* ElementOf(ComPtr<IXMLDOMElement> node);
    ComPtr<IXMLDOMElement> NewElement(const wchar_t* name);
    /// Takes the blanks between elements away. An element with text of its own stays as it is.
    void Compact();
    /// Puts line breaks and tabs between the elements of a compact document.
    void Indent();

private:
    void CompactChildren(IXMLDOMElement* parent);
    void IndentChildren(IXMLDOMNode* parent, const std::wstring& lineStart);
    void InsertBlank(IXMLDOMNode* parent, const std::wstring& blank, IXMLDOMNode* before);

    Shelf<XmlDocument>& m_shelf;
    ComPtr<IXMLDOMDocument2> m_document;
    std::optional<XmlEncoding> m_encoding;
    std::map<IXMLDOMElement*, std::unique_ptr<XmlElement>> m_elements;
};

uint32_t XmlElement::GetName(wchar_t* buffer, uint32_t capacity) {
    return Guarded(0u, [&] { return CopyText(NameOf(m_node.Get()), buffer, capacity); });
}

Quorvane::SDK::IXmlElement* XmlElement::FirstNamed(ComPtr<IXMLDOMNode> node, const wchar_t* name) {
    while (node && !(IsElement(node.Get()) && (!name || NameOf(node.Get()) == name))) {
        ComPtr<IXMLDOMNode> next;
        node->get_nextSibling(next.Receive());
        node = std::move(next);
    }
    return m_document.ElementOf(node.As<IXMLDOMElement>(IID_IXMLDOMElement));
}

Quorvane::SDK::IXmlElement* XmlElement::FirstChild(const wchar_t* name) {
    return Guarded<Quorvane::SDK::IXmlElement*>(nullptr, [&] {
        ComPtr<IXMLDOMNode> first;
        m_node->get_firstChild(first.Receive());
        return FirstNamed(std::move(first), name);
    });
}

Quorvane::SDK::IXmlElement* XmlElement::NextSibling(const wchar_t* name) {
    return Guarded<Quorvane::SDK::IXmlElement*>(nullptr, [&] {
        ComPtr<IXMLDOMNode> next;
        m_node->get_nextSibling(next.Receive());
        return FirstNamed(std::move(next), name);
    });
}

uint32_t XmlElement::GetText(wchar_t* buffer, uint32_t capacity) {
    return Guarded(0u, [&] {
        // Piece by piece: the text of the element as a whole comes without the blanks at its ends.
        std::wstring text;
        ComPtr<IXMLDOMNode> child;
        m_node->get_firstChild(child.Receive());
        while (child) {
            DOMNodeType type = NODE_INVALID;
            child->get_nodeType(&type);
            ComPtr<IXMLDOMCharacterData> piece;
            if (type == NODE_TEXT || type == NODE_CDATA_SECTION)
                piece = child.As<IXMLDOMCharacterData>(IID_IXMLDOMCharacterData);
            Bstr data;
            if (piece && SUCCEEDED(piece->get_data(data.Receive()))) text += data.View();
            ComPtr<IXMLDOMNode> next;
            child->get_nextSibling(next.Receive());
            child = std::move(next);
        }
        return CopyText(text, buffer, capacity);
    });
}

bool XmlElement::GetAttribute(const wchar_t* name, wchar_t* buffer, uint32_t capacity) {
    return Guarded(false, [&] {
        if (!name) return false;
        const Bstr key(name);
        ComPtr<IXMLDOMAttribute> attribute;
        if (m_node->getAttributeNode(key.Get(), attribute.Receive()) != S_OK || !attribute) return false;
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
        ComPtr<IXMLDOMElement> child = m_document.NewElement(name);
        if (!child || FAILED(m_node->appendChild(child.Get(), nullptr))) return nullptr;
        return m_document.ElementOf(std::move(child));
    });
}

bool XmlElement::SetText(const wchar_t* text) {
    return Guarded(false, [&] {
        if (!text || !IsXmlText(text)) return false;
        return SUCCEEDED(m_node->put_text(Bstr(text).Get()));
    });
}

bool XmlElement::SetAttribute(const wchar_t* name, const wchar_t* value) {
    return Guarded(false, [&] {
        if (!name || !value || !IsXmlText(value)) return false;
        const Bstr key(name);
        const Bstr content(value);
        return SUCCEEDED(m_node->setAttribute(key.Get(), TextVariant(content)));
    });
}

XmlElement* XmlDocument::ElementOf(ComPtr<IXMLDOMElement> node) {
    if (!node) return nullptr;
    std::unique_ptr<XmlElement>& element = m_elements[node.Get()];
    if (!element) element = std::make_unique<XmlElement>(*this, std::move(node));
    return element.get();
}

ComPtr<IXMLDOMElement> XmlDocument::NewElement(const wchar_t* name) {
    ComPtr<IXMLDOMElement> element;
    if (name && *name) m_document->createElement(Bstr(name).Get(), element.Receive());
    return element;
}

Quorvane::SDK::IXmlElement* XmlDocument::GetRoot() {
    return Guarded<Quorvane::SDK::IXmlElement*>(nullptr, [&] {
        ComPtr<IXMLDOMElement> root;
        m_document->get_documentElement(root.Receive());
        return ElementOf(std::move(root));
    });
}

Quorvane::SDK::IXmlElement* XmlDocument::CreateRoot(const wchar_t* name) {
    return Guarded<Quorvane::SDK::IXmlElement*>(nullptr, [&]() -> Quorvane::SDK::IXmlElement* {
        if (GetRoot()) return nullptr;
        ComPtr<IXMLDOMElement> root = NewElement(name);
        if (!root || FAILED(m_document->appendChild(root.Get(), nullptr))) return nullptr;
        return ElementOf(std::move(root));
    });
}

void XmlDocument::Release() {
    GuardedCall([&] { m_shelf.Remove(this); });
}

void XmlDocument::CompactChildren(IXMLDOMElement* parent) {
    if (KeepsBlanks(parent)) return;
    std::vector<ComPtr<IXMLDOMNode>> blanks;
    std::vector<ComPtr<IXMLDOMElement>> elements;
    bool hasText = false;
    ComPtr<IXMLDOMNode> child;
    parent->get_firstChild(child.Receive());
    while (child) {
        DOMNodeType type = NODE_INVALID;
        child->get_nodeType(&type);
        ComPtr<IXMLDOMNode> next;
        child->get_nextSibling(next.Receive());
        if (type == NODE_ELEMENT) elements.push_back(child.As<IXMLDOMElement>(IID_IXMLDOMElement));
        if (type == NODE_CDATA_SECTION || type == NODE_ENTITY_REFERENCE) hasText = true;
        if (type == NODE_TEXT && !IsBlankText(child)) hasText = true;
        if (type == NODE_TEXT) blanks.push_back(std::move(child));
        child = std::move(next);
    }
    if (hasText || elements.empty()) blanks.clear();
    for (const ComPtr<IXMLDOMNode>& blank : blanks) parent->removeChild(blank.Get(), nullptr);
    for (const ComPtr<IXMLDOMElement>& element : elements)
        if (element) CompactChildren(element.Get());
}

void XmlDocument::InsertBlank(IXMLDOMNode* parent, const std::wstring& blank, IXMLDOMNode* before) {
    ComPtr<IXMLDOMText> text;
    if (FAILED(m_document->createTextNode(Bstr(blank).Get(), text.Receive()))) return;
    VARIANT place = {};
    if (before) {
        place.vt = VT_UNKNOWN;
        place.punkVal = before;
    }
    parent->insertBefore(text.Get(), place, nullptr);
}

void XmlDocument::IndentChildren(IXMLDOMNode* parent, const std::wstring& lineStart) {
    if (KeepsBlanks(parent)) return;
    std::vector<ComPtr<IXMLDOMNode>> children;
    ComPtr<IXMLDOMNode> child;
    parent->get_firstChild(child.Receive());
    while (child) {
        DOMNodeType type = NODE_INVALID;
        child->get_nodeType(&type);
        if (type == NODE_TEXT || type == NODE_CDATA_SECTION || type == NODE_ENTITY_REFERENCE) return;
        ComPtr<IXMLDOMNode> next;
        child->get_nextSibling(next.Receive());
        children.push_back(std::move(child));
        child = std::move(next);
    }
    if (children.empty()) return;
    for (const ComPtr<IXMLDOMNode>& each : children) {
        InsertBlank(parent, lineStart + L'\t', each.Get());
        if (IsElement(each.Get())) IndentChildren(each.Get(), lineStart + L'\t');
    }
    InsertBlank(parent, lineStart, nullptr);
}

uint32_t XmlDocument::SaveAs(const std::wstring& path) const {
    if (!m_encoding) return ERROR_NOT_SUPPORTED;
    const Bstr name(path);
    if (m_encoding->codePage == XmlEncoding::kUtf8) return CodeOf(m_document->save(TextVariant(name)));
    // Not every system's writer follows a declaration of another encoding; some write UTF-8 under its name. Without a
    // declaration all write UTF-8, which is then put into the document's own encoding.
    ComPtr<IXMLDOMNode> declaration;
    m_document->get_firstChild(declaration.Receive());
    if (declaration && NameOf(declaration.Get()) == L"xml") m_document->removeChild(declaration.Get(), nullptr);
    std::string bytes;
    uint32_t error = CodeOf(m_document->save(TextVariant(name)));
    if (error == ERROR_SUCCESS) error = ReadWholeFile(path, bytes);
    if (error != ERROR_SUCCESS) return error;
    const std::optional<std::wstring> text = FromUtf8(bytes);
    return text ? ReplaceWholeFile(path, EncodedXml(*m_encoding, *text)) : ERROR_NO_UNICODE_TRANSLATION;
}

void XmlDocument::Compact() {
    ComPtr<IXMLDOMElement> root;
    m_document->get_documentElement(root.Receive());
    if (root) CompactChildren(root.Get());
}

void XmlDocument::Indent() {
    ComPtr<IXMLDOMElement> root;
    m_document->get_documentElement(root.Receive());
    if (root) IndentChildren(root.Get(), L"\n");
}

XmlService::XmlService(Shelf<XmlService>& shelf, Output& output) : m_shelf(shelf), m_output(output) {}

XmlService::~XmlService() {
    m_documents.Clear();  // before COM goes
    if (m_hasCom) CoUninitialize();
}

void XmlService::StartCom() {
    if (!m_hasCom) m_hasCom = SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
}

Quorvane::SDK::IXmlDocument* XmlService::CreateDocument() {
    return Guarded<Quorvane::SDK::IXmlDocument*>(nullptr, [&]() -> Quorvane::SDK::IXmlDocument* {
        StartCom();
        ComPtr<IXMLDOMDocument2> document = NewDocument();
        if (!document) return nullptr;
        ComPtr<IXMLDOMProcessingInstruction> declaration;
        if (SUCCEEDED(document->createProcessingInstruction(
                Bstr(L"xml").Get(), Bstr(L"version=\"1.0\" encoding=\"UTF-8\"").Get(), declaration.Receive())))
            document->appendChild(declaration.Get(), nullptr);
        return m_documents.Keep(std::make_shared<XmlDocument>(m_documents, std::move(document), XmlEncoding()));
    });
}

Quorvane::SDK::IXmlDocument* XmlService::Load(const wchar_t* path, uint32_t) {
    return Guarded<Quorvane::SDK::IXmlDocument*>(nullptr, [&]() -> Quorvane::SDK::IXmlDocument* {
        if (!path || !*path) return nullptr;
        const std::wstring file = FullUserPath(path);
        std::string bytes;
        if (const uint32_t error = ReadWholeFile(file, bytes)) {
            // That there is none is an answer, and for a document that is kept between runs the usual one at first.
            const bool isMissing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
            if (!isMissing) m_output.Note(L"[xml] " + file + L": " + DescribeError(error));
            return nullptr;
        }
        StartCom();
        const Bstr source(file);
        ComPtr<IXMLDOMDocument2> document = NewDocument();
        if (!document) return nullptr;
        VARIANT_BOOL isLoaded = VARIANT_FALSE;
        if (document->load(TextVariant(source), &isLoaded) != S_OK || isLoaded != VARIANT_TRUE) {
            const std::wstring fault = FaultOf(document.Get(), file);
            if (!fault.empty()) m_output.Note(L"[xml] " + file + L", " + fault);
            return nullptr;
        }
        return m_documents.Keep(std::make_shared<XmlDocument>(m_documents, std::move(document), EncodingOf(bytes)));
    });
}

bool XmlService::Save(Quorvane::SDK::IXmlDocument* document, const wchar_t* path, uint32_t mode, const wchar_t*) {
    return Guarded(false, [&] {
        const std::shared_ptr<XmlDocument> known = m_documents.Find(document);
        if (!known || !path || !*path) return false;
        known->Compact();
        if (mode == kIndented) known->Indent();
        const std::wstring target = FullUserPath(path);
        const std::wstring beside = target + L"." + std::to_wstring(GetCurrentProcessId()) + L".new";
        uint32_t error = known->SaveAs(beside);
        if (error == ERROR_SUCCESS) {
            if (Win32::Exists(target)) Win32::CarryOverAttributesAndAccess(target, beside);
            error = Win32::MoveFileOver(beside, target);
        }
        if (error == ERROR_SUCCESS) return true;
        Win32::RemoveFile(beside);
        // The answer is a plain no: the reason is for whoever reads along.
        m_output.Note(L"[xml] " + target + L": " + DescribeError(error));
        return false;
    });
}

uint32_t XmlService::ReadText(Quorvane::SDK::IXmlDocument* document, wchar_t* buffer, uint32_t capacity) {
    return Guarded(0u, [&] {
        const std::shared_ptr<XmlDocument> known = m_documents.Find(document);
        Bstr text;
        if (known) known->Document()->get_xml(text.Receive());
        return CopyText(text.View(), buffer, capacity);
    });
}

void XmlService::Release() {
    GuardedCall([&] { m_shelf.Remove(this); });
}

}  // namespace QVHost
