// host_objects.h - the smaller objects that IHostServices gives out directly: settings, progress, choices, XML.
#pragma once

#include <cstdint>

namespace Quorvane::SDK {

/// The host's settings store for this extension. `one` is always 1. A key that is missing answers false and leaves the
/// caller's value alone.
class ISettings {
public:
    virtual intptr_t Reserved0() { return 0; }  // slot 0
    virtual bool GetString(uint32_t one, const wchar_t* section, const wchar_t* key, wchar_t* buffer,
                           uint32_t capacity) = 0;  // slot 1: capacity in units
    virtual bool GetNumber(uint32_t one, const wchar_t* section, const wchar_t* key, uint32_t* value) = 0;  // slot 2
    virtual intptr_t Reserved3() { return 0; }                                                              // slot 3
    virtual intptr_t Reserved4() { return 0; }                                                              // slot 4
    virtual bool SetString(uint32_t one, const wchar_t* section, const wchar_t* key,
                           const wchar_t* text) = 0;                                                       // slot 5
    virtual bool SetNumber(uint32_t one, const wchar_t* section, const wchar_t* key, uint32_t value) = 0;  // slot 6

protected:
    ~ISettings() = default;
};

/// A run's progress display; its slots are this library's choice.
class IProgress {
public:
    virtual void Advance(uint32_t done, const wchar_t* currentItem) = 0;  // slot 0: items finished so far
    virtual bool IsCancelled() = 0;                                       // slot 1: the user asked to stop
    virtual void Close() = 0;                                             // slot 2: ends the object

protected:
    ~IProgress() = default;
};

/// The entries of a choice dialog; all slots but the last are this library's choice.
class IChoiceList {
public:
    virtual bool AddChoice(const wchar_t* text) = 0;       // slot 0
    virtual uint32_t GetCount() = 0;                       // slot 1
    virtual const wchar_t* GetChoice(uint32_t index) = 0;  // slot 2: null beyond the end
    virtual intptr_t Reserved3() { return 0; }             // slot 3
    virtual intptr_t Reserved4() { return 0; }             // slot 4
    virtual intptr_t Reserved5() { return 0; }             // slot 5
    virtual intptr_t Reserved6() { return 0; }             // slot 6
    virtual intptr_t Reserved7() { return 0; }             // slot 7
    virtual intptr_t Reserved8() { return 0; }             // slot 8
    virtual intptr_t Reserved9() { return 0; }             // slot 9
    virtual intptr_t Reserved10() { return 0; }            // slot 10
    virtual intptr_t Reserved11() { return 0; }            // slot 11
    virtual intptr_t Reserved12() { return 0; }            // slot 12
    virtual intptr_t Reserved13() { return 0; }            // slot 13
    virtual void Release() = 0;                            // slot 14

protected:
    ~IChoiceList() = default;
};

/// What a choice dialog asks. The field sizes are the host's, their order this library's choice.
struct ChoiceRequest {
    wchar_t prompt[256];
    wchar_t title[64];
    IChoiceList* choices;
    uint32_t position;  // in: the entry selected at first; out: the one chosen
};

class IXmlService;

/// One element of an XML document. Elements live as long as their document. Texts are copied as from IFileItem.
class IXmlElement {
public:
    virtual uint32_t GetName(wchar_t* buffer, uint32_t capacity) = 0;                        // slot 0
    virtual IXmlElement* FirstChild(const wchar_t* name) = 0;                                // slot 1
    virtual IXmlElement* NextSibling(const wchar_t* name) = 0;                               // slot 2
    virtual uint32_t GetText(wchar_t* buffer, uint32_t capacity) = 0;                        // slot 3
    virtual bool GetAttribute(const wchar_t* name, wchar_t* buffer, uint32_t capacity) = 0;  // slot 4
    virtual IXmlElement* AddChild(const wchar_t* name) = 0;                                  // slot 5
    virtual bool SetText(const wchar_t* text) = 0;                                           // slot 6
    virtual bool SetAttribute(const wchar_t* name, const wchar_t* value) = 0;                // slot 7

protected:
    ~IXmlElement() = default;
};

class IXmlDocument {
public:
    virtual IXmlElement* GetRoot() = 0;                        // slot 0
    virtual IXmlElement* CreateRoot(const wchar_t* name) = 0;  // slot 1
    virtual void Release() = 0;                                // slot 2

protected:
    ~IXmlDocument() = default;
};

/// The host's XML reader and writer. What the documents look like, and how one is built, is this library's choice.
class IXmlService {
public:
    virtual intptr_t Reserved0() { return 0; }                                                               // slot 0
    virtual IXmlDocument* CreateDocument() = 0;                                                              // slot 1
    virtual IXmlDocument* Load(const wchar_t* path, uint32_t zero) = 0;                                      // slot 2
    virtual bool Save(IXmlDocument* document, const wchar_t* path, uint32_t mode, const wchar_t* text) = 0;  // slot 3
    virtual uint32_t ReadText(IXmlDocument* document, wchar_t* buffer, uint32_t capacity) = 0;               // slot 4
    virtual intptr_t Reserved5() { return 0; }                                                               // slot 5
    virtual intptr_t Reserved6() { return 0; }                                                               // slot 6
    virtual intptr_t Reserved7() { return 0; }                                                               // slot 7
    virtual intptr_t Reserved8() { return 0; }                                                               // slot 8
    virtual intptr_t Reserved9() { return 0; }                                                               // slot 9
    virtual intptr_t Reserved10() { return 0; }                                                              // slot 10
    virtual intptr_t Reserved11() { return 0; }                                                              // slot 11
    virtual intptr_t Reserved12() { return 0; }                                                              // slot 12
    virtual intptr_t Reserved13() { return 0; }                                                              // slot 13
    virtual intptr_t Reserved14() { return 0; }                                                              // slot 14
    virtual intptr_t Reserved15() { return 0; }                                                              // slot 15
    virtual intptr_t Reserved16() { return 0; }                                                              // slot 16
    virtual intptr_t Reserved17() { return 0; }                                                              // slot 17
    virtual intptr_t Reserved18() { return 0; }                                                              // slot 18
    virtual intptr_t Reserved19() { return 0; }                                                              // slot 19
    virtual intptr_t Reserved20() { return 0; }                                                              // slot 20
    virtual intptr_t Reserved21() { return 0; }                                                              // slot 21
    virtual intptr_t Reserved22() { return 0; }                                                              // slot 22
    virtual intptr_t Reserved23() { return 0; }                                                              // slot 23
    virtual intptr_t Reserved24() { return 0; }                                                              // slot 24
    virtual intptr_t Reserved25() { return 0; }                                                              // slot 25
    virtual intptr_t Reserved26() { return 0; }                                                              // slot 26
    virtual intptr_t Reserved27() { return 0; }                                                              // slot 27
    virtual intptr_t Reserved28() { return 0; }                                                              // slot 28
    virtual void Release() = 0;                                                                              // slot 29

protected:
    ~IXmlService() = default;
};

}  // namespace Quorvane::SDK
