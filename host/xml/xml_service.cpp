#include "host/xml/xml_service.h"

#include <string>

#include "host/app/host_text.h"
#include "host/app/unix_paths.h"
#include "host/contract/host_boundary.h"
#include "host/contract/whole_file.h"
#include "host/xml/bstr.h"
#include "host/xml/xml_document.h"
#include "host/xml/xml_text.h"
#include "textio/replace_file.h"
#include "win32/path.h"
#include "win32/text.h"

namespace QVHost {
namespace {

constexpr uint32_t kIndented = 1;

// The compiler's headers stop short of version 6; its numbers are public.
constexpr CLSID kDomDocument60 = {0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
constexpr IID kDomDocument2 = {0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

Win32::ComPtr<IXMLDOMDocument2> NewDocument() {
    auto document = Win32::MakeComObject<IXMLDOMDocument2>(kDomDocument60, kDomDocument2);
    if (!document) return document;
    document->put_async(VARIANT_FALSE);
    document->put_validateOnParse(VARIANT_FALSE);
    document->put_resolveExternals(VARIANT_FALSE);
    // Else a text of blanks alone, or blanks at a text's ends, would be lost.
    document->put_preserveWhiteSpace(VARIANT_TRUE);
    return document;
}

/// Loads a document's text into `document`, which is new.
bool LoadText(IXMLDOMDocument2& document, const std::string& text) {
    const Win32::ComPtr<IStream> stream = StreamOf(WithoutEntities(WithoutDeclaredEncoding(text)));
    VARIANT_BOOL isLoaded = VARIANT_FALSE;
    return stream && document.load(ObjectVariant(stream.Get()), &isLoaded) == S_OK && isLoaded == VARIANT_TRUE;
}

/// What the parser says of a text that it has not loaded, with the place where it tells one.
std::wstring FaultOf(IXMLDOMDocument2& document) {
    Win32::ComPtr<IXMLDOMParseError> fault;
    LONG line = 0;
    LONG column = 0;
    Bstr reason;
    if (SUCCEEDED(document.get_parseError(&fault)) && fault) {
        fault->get_line(&line);
        fault->get_linepos(&column);
        fault->get_reason(reason.Receive());
    }
    const std::wstring place =
        line > 0 ? L"line " + std::to_wstring(line) + L", column " + std::to_wstring(column) + L": " : std::wstring();
    return place + L"the system's reader refuses it " + OnOneLine(reason.View());
}

/// What the parser has made of a document, as text.
std::string TextOf(IXMLDOMDocument2& document) {
    Bstr text;
    document.get_xml(text.Receive());
    return ToUtf8(text.View());
}

/// What was read from `target` goes the way of all files that are worked on, anything else is a record. Windows error
/// code, 0 for success; `note` is the reason in words, or what is to be said of a success.
uint32_t Write(XmlDocument& document, const std::wstring& target, const std::string& bytes, std::wstring& note) try {
    std::optional<Win32::FileState> original;
    if (document.origin && Win32::EqualIgnoringCase(document.origin->path, target)) original = document.origin->state;
    Win32::RemoveLeftovers(std::wstring(Win32::FolderOf(target)));
    const uint32_t error = QVUtils::ReplaceFileContent(
        {.target = target, .mayOverwrite = true, .isRecord = !original},
        [&](QVUtils::DataWriter& writer) { QVUtils::WriteAll(writer, bytes.data(), bytes.size()); }, original);
    document.origin.reset();
    if (error != ERROR_SUCCESS) note = L"the backup (.bak) cannot be deleted: " + DescribeError(error);
    return ERROR_SUCCESS;
} catch (const QVUtils::QVUtilsException& failure) {
    const std::string_view text = failure.what();
    note.assign(text.begin(), text.end()).append(L": ").append(DescribeError(failure.GetErrorCode()));
    return failure.GetErrorCode();
}

std::string WithoutBlanks(std::string text) {
    std::erase_if(text, [](char byte) { return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n'; });
    return text;
}

/// True when two documents differ in nothing but blanks that count as nothing: in their texts, and in what the parser
/// has made of them. That must not depend on what this program thinks an element is, and is compared without any
/// blanks, since some systems' parsers lay out what they are asked for; the texts hold what the parser does not see.
bool HoldTheSame(IXMLDOMDocument2& one, const std::string& oneText, IXMLDOMDocument2& other,
                 const std::string& otherText) {
    const std::string tree = WithoutBlanks(TextOf(one));
    return !tree.empty() && tree == WithoutBlanks(TextOf(other)) &&
           WithoutBlanks(oneText) == WithoutBlanks(otherText) && ContentOfXml(oneText) == ContentOfXml(otherText);
}

}  // namespace

XmlService::XmlService(Shelf<XmlService>& shelf, Output& output) : m_shelf(shelf), m_output(output) {}

XmlService::~XmlService() = default;

void XmlService::StartCom() {
    if (!m_com) m_com.emplace();
}

Quorvane::SDK::IXmlDocument* XmlService::CreateDocument() {
    return Guarded<Quorvane::SDK::IXmlDocument*>(nullptr, [&]() -> Quorvane::SDK::IXmlDocument* {
        StartCom();
        Win32::ComPtr<IXMLDOMDocument2> document = NewDocument();
        if (!document) return nullptr;
        DecodedXml nothingYet;
        nothingYet.text = R"(<?xml version="1.0" encoding="UTF-8"?>)";
        return m_documents.Keep(std::make_shared<XmlDocument>(m_documents, std::move(document), std::move(nothingYet)));
    });
}

Quorvane::SDK::IXmlDocument* XmlService::Load(const wchar_t* path, uint32_t) {
    return Guarded<Quorvane::SDK::IXmlDocument*>(nullptr, [&]() -> Quorvane::SDK::IXmlDocument* {
        if (!path || !*path) return nullptr;
        const std::wstring file = FullUserPath(path);
        std::string bytes;
        std::optional<Win32::FileState> state;
        if (const uint32_t error = ReadWholeFile(file, bytes, state)) {
            // That there is none is an answer, and for a document that is kept between runs the usual one at first.
            const bool isMissing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
            if (!isMissing) m_output.Note(L"[xml] " + file + L": " + DescribeError(error));
            return nullptr;
        }
        StartCom();
        Win32::ComPtr<IXMLDOMDocument2> document = NewDocument();
        if (!document) return nullptr;
        std::wstring why;
        std::optional<DecodedXml> source = DecodeXml(bytes, why);
        if (!source) {
            m_output.Note(L"[xml] " + file + L", " + why);
            return nullptr;
        }
        if (const std::optional<XmlFault> fault = FindXmlFault(source->text)) {
            const std::string_view reason = fault->reason;
            m_output.Note(L"[xml] " + file + L", " + Describe(PlaceIn(source->text, fault->offset)) + L": " +
                          std::wstring(reason.begin(), reason.end()));
            return nullptr;
        }
        if (!LoadText(*document.Get(), source->text)) {
            m_output.Note(L"[xml] " + file + L", " + FaultOf(*document.Get()));
            return nullptr;
        }
        auto loaded = std::make_shared<XmlDocument>(m_documents, std::move(document), *std::move(source));
        loaded->origin = {file, *std::move(state)};
        return m_documents.Keep(std::move(loaded));
    });
}

uint32_t XmlService::Check(const XmlDocument& document, std::string_view bytes) const {
    std::wstring why;
    const std::optional<DecodedXml> again = DecodeXml(bytes, why);
    const Win32::ComPtr<IXMLDOMDocument2> parsed = again ? NewDocument() : Win32::ComPtr<IXMLDOMDocument2>();
    if (!parsed || !LoadText(*parsed.Get(), again->text)) return ERROR_INVALID_DATA;
    // An element that got an empty text is written in another way than one that was read so.
    if (document.IsChanged()) return ERROR_SUCCESS;
    std::string source;
    document.ToText(source);
    const bool isSame = HoldTheSame(*parsed.Get(), again->text, *document.Document(), source);
    return isSame ? ERROR_SUCCESS : ERROR_INVALID_DATA;
}

bool XmlService::Save(Quorvane::SDK::IXmlDocument* document, const wchar_t* path, uint32_t mode, const wchar_t*) {
    return Guarded(false, [&] {
        const std::shared_ptr<XmlDocument> known = m_documents.Find(document);
        if (!known || !path || !*path) return false;
        const std::wstring target = FullUserPath(path);
        std::string bytes;
        uint32_t error = known->ToBytes(mode == kIndented, bytes);
        if (error == ERROR_SUCCESS) error = Check(*known, bytes);
        std::wstring note;
        if (error == ERROR_SUCCESS)
            error = Write(*known, target, bytes, note);
        else
            note = DescribeError(error);
        // The answer is a plain yes or no: the reason is for the reader of standard error.
        if (!note.empty()) m_output.Note(L"[xml] " + target + L": " + note);
        return error == ERROR_SUCCESS;
    });
}

uint32_t XmlService::ReadText(Quorvane::SDK::IXmlDocument* document, wchar_t* buffer, uint32_t capacity) {
    return Guarded(0u, [&] {
        const std::shared_ptr<XmlDocument> known = m_documents.Find(document);
        std::string text;
        if (known) known->ToText(text);
        return CopyText(Wide(text), buffer, capacity);
    });
}

void XmlService::Release() {
    GuardedCall([&] { m_shelf.Remove(this); });
}

}  // namespace QVHost
