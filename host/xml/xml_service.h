// xml_service.h - the host's XML reader and writer, over the system's own (MSXML 6). Texts and attribute values come
// back exactly as they were given: blanks, quotes, line breaks and all.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "host/app/output.h"
#include "host/contract/shelf.h"
#include "sdk/host_objects.h"
#include "win32/com.h"

namespace QVHost {

class XmlDocument;

/// Belongs to the thread that made it, as does everything it hands out.
class XmlService final : public Quorvane::SDK::IXmlService {
public:
    /// The service is kept in `shelf` and leaves it by its Release. `output` is told what is wrong with a document.
    XmlService(Shelf<XmlService>& shelf, Output& output);
    XmlService(const XmlService&) = delete;
    XmlService& operator=(const XmlService&) = delete;
    ~XmlService();

    /// Null where the system has no MSXML.
    Quorvane::SDK::IXmlDocument* CreateDocument() override;
    /// Null for a file that cannot be read or is not well-formed; a note then says where it is not. Nothing that a
    /// document refers to is fetched.
    Quorvane::SDK::IXmlDocument* Load(const wchar_t* path, uint32_t zero) override;
    /// Mode 0: compact, nothing between elements; 1: with line breaks and tabs between them (see xml_layout.h for the
    /// blanks that count as nothing). All else of a document that was not changed stays as it was written, and so do
    /// declaration and encoding of any. `text` is not used. The file is replaced whole or left as it was: also where
    /// what would be written could not be read again as the same document.
    bool Save(Quorvane::SDK::IXmlDocument* document, const wchar_t* path, uint32_t mode, const wchar_t* text) override;
    /// The document as text, copied as from IFileItem.
    uint32_t ReadText(Quorvane::SDK::IXmlDocument* document, wchar_t* buffer, uint32_t capacity) override;
    void Release() override;

private:
    /// Not before there is a document to work on: starting it makes windows, and an extension that looks whether a file
    /// is there should not make everybody wait for that.
    void StartCom();
    /// 0 when `bytes` hold `document`, else a Windows error code.
    uint32_t Check(const XmlDocument& document, std::string_view bytes) const;

    Shelf<XmlService>& m_shelf;
    Output& m_output;
    std::optional<Win32::ComApartment> m_com;  // outlives the documents
    Shelf<XmlDocument> m_documents;
};

}  // namespace QVHost
