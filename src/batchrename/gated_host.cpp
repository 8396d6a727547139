#include "batchrename/gated_host.h"

#include <cstdarg>
#include <cwchar>
#include <deque>
#include <memory>

namespace BatchRename {

using namespace Quorvane::SDK;

bool HostGate::Enter() {
    const std::lock_guard lock(m_lock);
    if (m_isClosed) return false;
    ++m_calls;
    return true;
}

void HostGate::Leave() {
    const std::lock_guard lock(m_lock);
    if (--m_calls == 0) m_isEmpty.WakeAll();
}

void HostGate::Close() {
    const std::lock_guard lock(m_lock);
    m_isClosed = true;
}

void HostGate::WaitForCalls(DWORD milliseconds) {
    std::unique_lock lock(m_lock);
    m_isEmpty.WaitUntil(
        lock, [&] { return m_calls == 0; }, milliseconds);
}

namespace {

/// An object of the host with the gate before it.
template <class Interface>
class Gated : public Interface {
public:
    Gated(HostGate& gate, Interface* object) : m_gate(gate), m_object(object) {}

    /// Null: the host has none.
    Interface* Object() const { return m_object; }
    void SetObject(Interface* object) { m_object = object; }

protected:
    ~Gated() = default;

    template <class Result, class Call>
    Result Pass(Result closed, Call&& call) {
        return m_gate.Pass(closed, [&] { return call(*m_object); });
    }
    template <class Call>
    void PassOn(Call&& call) {
        Pass(false, [&](Interface& object) {
            call(object);
            return true;
        });
    }
    HostGate& Gate() const { return m_gate; }

private:
    HostGate& m_gate;
    Interface* m_object;
};

class GatedFileOperations final : public Gated<IFileOperations> {
public:
    using Interface = IFileOperations;
    using Gated::Gated;

    bool Exists(const wchar_t*) override { return false; }
    IFileItem* CreateFileItem(const wchar_t*, uint32_t) override { return nullptr; }
    bool SetFileList(IFileList*) override { return false; }
    IRenameBatch* CreateRenameBatch() override { return nullptr; }
    void EndRenameBatch(IRenameBatch*) override {}
    uint32_t CommitRenameBatch(IRenameBatch*, uint32_t) override { return ERROR_NOT_SUPPORTED; }
    uint32_t RenameRows(const RenameRowInfo* rows, uint32_t count, IRenameResultCallback* callback) override {
        return Pass(0u, [&](IFileOperations& files) { return files.RenameRows(rows, count, callback); });
    }
    bool GetPropertyText(const wchar_t* path, const wchar_t* name, const wchar_t* format, wchar_t* buffer,
                         uint32_t capacity) override {
        return Pass(
            false, [&](IFileOperations& files) { return files.GetPropertyText(path, name, format, buffer, capacity); });
    }
    bool GetPropertyName(uint32_t index, wchar_t* buffer, uint32_t capacity) override {
        return Pass(false, [&](IFileOperations& files) { return files.GetPropertyName(index, buffer, capacity); });
    }
};

class GatedFolderRefresh final : public Gated<IFolderRefresh> {
public:
    using Interface = IFolderRefresh;
    using Gated::Gated;

    void RefreshFolder(const wchar_t* location) override {
        PassOn([&](IFolderRefresh& folders) { folders.RefreshFolder(location); });
    }
};

class GatedElement;

/// The elements of a document, which live as long as it does.
using Elements = std::deque<GatedElement>;

class GatedElement final : public Gated<IXmlElement> {
public:
    GatedElement(HostGate& gate, Elements& elements, IXmlElement* element)
        : Gated(gate, element), m_elements(elements) {}

    /// `find` gives one of the host's, or null. The place is made first: what the host gives must not be lost.
    template <class Find>
    static IXmlElement* Add(HostGate& gate, Elements& elements, Find&& find) {
        elements.emplace_back(gate, elements, nullptr);
        GatedElement& added = elements.back();
        added.SetObject(gate.Pass(static_cast<IXmlElement*>(nullptr), find));
        if (added.Object()) return &added;
        elements.pop_back();
        return nullptr;
    }

    uint32_t GetName(wchar_t* buffer, uint32_t capacity) override {
        return Pass(0u, [&](IXmlElement& element) { return element.GetName(buffer, capacity); });
    }
    IXmlElement* FirstChild(const wchar_t* name) override {
        return Add(Gate(), m_elements, [&] { return Object()->FirstChild(name); });
    }
    IXmlElement* NextSibling(const wchar_t* name) override {
        return Add(Gate(), m_elements, [&] { return Object()->NextSibling(name); });
    }
    uint32_t GetText(wchar_t* buffer, uint32_t capacity) override {
        return Pass(0u, [&](IXmlElement& element) { return element.GetText(buffer, capacity); });
    }
    bool GetAttribute(const wchar_t* name, wchar_t* buffer, uint32_t capacity) override {
        return Pass(false, [&](IXmlElement& element) { return element.GetAttribute(name, buffer, capacity); });
    }
    IXmlElement* AddChild(const wchar_t* name) override {
        return Add(Gate(), m_elements, [&] { return Object()->AddChild(name); });
    }
    bool SetText(const wchar_t* text) override {
        return Pass(false, [&](IXmlElement& element) { return element.SetText(text); });
    }
    bool SetAttribute(const wchar_t* name, const wchar_t* value) override {
        return Pass(false, [&](IXmlElement& element) { return element.SetAttribute(name, value); });
    }

private:
    Elements& m_elements;
};

class GatedDocument final : public Gated<IXmlDocument> {
public:
    using Gated::Gated;

    IXmlElement* GetRoot() override {
        return GatedElement::Add(Gate(), m_elements, [&] { return Object()->GetRoot(); });
    }
    IXmlElement* CreateRoot(const wchar_t* name) override {
        return GatedElement::Add(Gate(), m_elements, [&] { return Object()->CreateRoot(name); });
    }
    void Release() override {
        const std::unique_ptr<GatedDocument> self(this);
        PassOn([](auto& object) { object.Release(); });
    }

private:
    Elements m_elements;
};

class GatedXmlService final : public Gated<IXmlService> {
public:
    using Gated::Gated;

    IXmlDocument* CreateDocument() override {
        return MakeDocument([](IXmlService& xml) { return xml.CreateDocument(); });
    }
    IXmlDocument* Load(const wchar_t* path, uint32_t zero) override {
        return MakeDocument([&](IXmlService& xml) { return xml.Load(path, zero); });
    }
    bool Save(IXmlDocument* document, const wchar_t* path, uint32_t mode, const wchar_t* text) override {
        IXmlDocument* const hosts = static_cast<GatedDocument*>(document)->Object();
        return Pass(false, [&](IXmlService& xml) { return xml.Save(hosts, path, mode, text); });
    }
    uint32_t ReadText(IXmlDocument* document, wchar_t* buffer, uint32_t capacity) override {
        IXmlDocument* const hosts = static_cast<GatedDocument*>(document)->Object();
        return Pass(0u, [&](IXmlService& xml) { return xml.ReadText(hosts, buffer, capacity); });
    }
    void Release() override {
        const std::unique_ptr<GatedXmlService> self(this);
        PassOn([](auto& object) { object.Release(); });
    }

private:
    template <class Make>
    IXmlDocument* MakeDocument(Make&& make) {
        auto document = std::make_unique<GatedDocument>(Gate(), nullptr);
        document->SetObject(Pass(static_cast<IXmlDocument*>(nullptr), make));
        return document->Object() ? document.release() : nullptr;
    }
};

}  // namespace

template <class Result, class Call>
Result GatedHost::Pass(Result closed, Call&& call) {
    IHostServices* const services = m_services;
    return services ? m_gate.Pass(closed, [&] { return call(*services); }) : closed;
}

const wchar_t* GatedHost::GetModuleText(uint16_t module, TextId id) {
    {
        // The window asks for the same texts at each row that it shows.
        const std::lock_guard lock(m_textLock);
        if (const auto known = m_texts.find({module, id}); known != m_texts.end()) return known->second.c_str();
    }
    const std::wstring text = Pass(std::wstring(), [&](IHostServices& services) {
        const wchar_t* const found = services.GetModuleText(module, id);
        return std::wstring(found ? found : L"");
    });
    const std::lock_guard lock(m_textLock);
    return m_texts.emplace(std::pair(module, id), text).first->second.c_str();
}

uint32_t GatedHost::RunHostCommand(uint32_t command, IFileList* list, uint32_t flags, uintptr_t zero) {
    return Pass(0u, [&](IHostServices& services) { return services.RunHostCommand(command, list, flags, zero); });
}

IXmlService* GatedHost::GetXmlService(const wchar_t* path, uint32_t mode) {
    auto service = std::make_unique<GatedXmlService>(m_gate, nullptr);
    service->SetObject(Pass(static_cast<IXmlService*>(nullptr),
                            [&](IHostServices& services) { return services.GetXmlService(path, mode); }));
    return service->Object() ? service.release() : nullptr;
}

ISettings* GatedHost::GetSettings() {
    return &m_settings;
}

uint32_t GatedHost::GetConfigurationFolder(wchar_t* buffer, uint32_t capacity) {
    return Pass(0u, [&](IHostServices& services) { return services.GetConfigurationFolder(buffer, capacity); });
}

template <class Gated>
void* GatedHost::Acquire(uint32_t number, const wchar_t* path) {
    using Interface = typename Gated::Interface;
    auto service = std::make_unique<Gated>(m_gate, nullptr);
    service->SetObject(Pass(static_cast<Interface*>(nullptr), [&](IHostServices& services) {
        return static_cast<Interface*>(services.AcquireService(number, 0, path));
    }));
    return service->Object() ? static_cast<Interface*>(service.release()) : nullptr;
}

template <class Gated>
void GatedHost::GiveBack(void* service, uint32_t number) {
    const std::unique_ptr<Gated> gated(static_cast<Gated*>(static_cast<typename Gated::Interface*>(service)));
    Pass(false, [&](IHostServices& services) {
        services.ReleaseService(gated->Object(), number);
        return true;
    });
}

void* GatedHost::AcquireService(uint32_t number, uint32_t, const wchar_t* path) {
    switch (number) {
        case ServiceNumber::FileOperations: return Acquire<GatedFileOperations>(number, path);
        case ServiceNumber::FolderRefresh: return Acquire<GatedFolderRefresh>(number, path);
        default: return nullptr;
    }
}

void GatedHost::ReleaseService(void* service, uint32_t number) {
    if (number == ServiceNumber::FileOperations) GiveBack<GatedFileOperations>(service, number);
    if (number == ServiceNumber::FolderRefresh) GiveBack<GatedFolderRefresh>(service, number);
}

void GatedHost::Log(uint32_t level, uint32_t kind, const wchar_t* format, ...) {
    // Written out here: an argument list cannot be handed on. Without memory the bare line has to do.
    std::wstring text;
    va_list arguments;
    va_start(arguments, format);
    try {
        va_list measured;
        va_copy(measured, arguments);
        const int length = _vscwprintf(format, measured);
        va_end(measured);
        if (length > 0) {
            text.resize(static_cast<size_t>(length));
            _vsnwprintf(text.data(), text.size() + 1, format, arguments);
        }
    } catch (const std::bad_alloc&) {
        text.clear();
    }
    va_end(arguments);
    Pass(false, [&](IHostServices& services) {
        services.Log(level, kind, L"%s", text.empty() ? format : text.c_str());
        return true;
    });
}

template <class Use>
bool GatedHost::Settings::Pass(Use&& use) {
    ISettings* const settings =
        m_host.Pass(static_cast<ISettings*>(nullptr), [](IHostServices& services) { return services.GetSettings(); });
    return settings && m_host.m_gate.Pass(false, [&] { return use(*settings); });
}

bool GatedHost::Settings::GetString(uint32_t one, const wchar_t* section, const wchar_t* key, wchar_t* buffer,
                                    uint32_t capacity) {
    return Pass([&](ISettings& settings) { return settings.GetString(one, section, key, buffer, capacity); });
}

bool GatedHost::Settings::GetNumber(uint32_t one, const wchar_t* section, const wchar_t* key, uint32_t* value) {
    return Pass([&](ISettings& settings) { return settings.GetNumber(one, section, key, value); });
}

bool GatedHost::Settings::SetString(uint32_t one, const wchar_t* section, const wchar_t* key, const wchar_t* text) {
    return Pass([&](ISettings& settings) { return settings.SetString(one, section, key, text); });
}

bool GatedHost::Settings::SetNumber(uint32_t one, const wchar_t* section, const wchar_t* key, uint32_t value) {
    return Pass([&](ISettings& settings) { return settings.SetNumber(one, section, key, value); });
}

}  // namespace BatchRename
