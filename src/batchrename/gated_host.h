// gated_host.h - the host's services as the window's threads use them: through a gate that the extension object closes.
// A thread may outlive the extension, and then the services may be gone.
#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "sdk/host_services.h"
#include "win32/system_lock.h"

namespace BatchRename {

/// Lets calls of the host through until it is closed.
class HostGate {
public:
    /// Runs `call` and gives its result; once the gate is closed, does not and gives `closed`.
    template <class Result, class Call>
    Result Pass(Result closed, Call&& call) {
        if (!Enter()) return closed;
        const Passage passage(*this);
        return std::forward<Call>(call)();
    }
    /// From here on nothing passes. Calls that have passed go on: nobody can recall them.
    void Close();
    /// Waits until the calls that have passed are over, at most so many milliseconds.
    void WaitForCalls(DWORD milliseconds);

private:
    class Passage {
    public:
        explicit Passage(HostGate& gate) : m_gate(gate) {}
        ~Passage() { m_gate.Leave(); }
        Passage(const Passage&) = delete;
        Passage& operator=(const Passage&) = delete;

    private:
        HostGate& m_gate;
    };
    bool Enter();
    void Leave();

    // The system's lock, since it needs no memory: services are given back in destructors, when there may be none.
    Win32::SystemLock m_lock;
    Win32::SystemCondition m_isEmpty;
    bool m_isClosed = false;
    uint32_t m_calls = 0;  // under way
};

/// Any thread may call it. Once it is closed every operation answers as a host that has nothing to offer, and so do
/// from the beginning those that the window does not use. The objects that it gives out keep to the same gate, and are
/// used no longer than this object lives; its texts are copies, which live as long.
class GatedHost final : public Quorvane::SDK::IHostServices {
public:
    /// Null: there is no host.
    void SetServices(Quorvane::SDK::IHostServices* services) { m_services = services; }
    void Close() { m_gate.Close(); }
    void WaitForCalls(DWORD milliseconds) { m_gate.WaitForCalls(milliseconds); }

    void Release() override {}
    HWND GetMainWindow() override { return nullptr; }
    uint16_t GetTextModule(const char*) override { return 0; }
    const wchar_t* GetText(Quorvane::SDK::TextId) override { return L""; }
    const wchar_t* GetModuleText(uint16_t module, Quorvane::SDK::TextId id) override;
    uint32_t RunHostCommand(uint32_t command, Quorvane::SDK::IFileList* list, uint32_t flags, uintptr_t zero) override;
    Quorvane::SDK::ICommandFactory* GetCommandFactory() override { return nullptr; }
    Quorvane::SDK::IMenuBuilder* GetMenuBuilder() override { return nullptr; }
    Quorvane::SDK::ICustomCommandRegistry* GetCustomCommandRegistry(const char*) override { return nullptr; }
    Quorvane::SDK::IXmlService* GetXmlService(const wchar_t* path, uint32_t mode) override;
    Quorvane::SDK::ISettings* GetSettings() override;
    uint32_t GetConfigurationFolder(wchar_t* buffer, uint32_t capacity) override;
    void* AcquireService(uint32_t number, uint32_t zero, const wchar_t* path) override;
    void ReleaseService(void* service, uint32_t number) override;
    bool IsElevated() override { return false; }
    bool CanElevate() override { return false; }
    bool UseColumnD() override { return false; }
    bool UseColumnE() override { return false; }
    Quorvane::SDK::IFileList* CreateFileList() override { return nullptr; }
    Quorvane::SDK::IProgress* OpenProgress(const wchar_t*, uint32_t) override { return nullptr; }
    Quorvane::SDK::IChoiceList* CreateChoiceList() override { return nullptr; }
    void Log(uint32_t level, uint32_t kind, const wchar_t* format, ...) override;
    uint32_t MessageBox(const wchar_t*, const wchar_t*, uint32_t) override { return 0; }
    bool ShowInputDialog(Quorvane::SDK::TextId, wchar_t*, uint32_t) override { return false; }
    bool ShowChoiceDialog(Quorvane::SDK::ChoiceRequest*) override { return false; }

private:
    class Settings final : public Quorvane::SDK::ISettings {
    public:
        explicit Settings(GatedHost& host) : m_host(host) {}
        bool GetString(uint32_t one, const wchar_t* section, const wchar_t* key, wchar_t* buffer,
                       uint32_t capacity) override;
        bool GetNumber(uint32_t one, const wchar_t* section, const wchar_t* key, uint32_t* value) override;
        bool SetString(uint32_t one, const wchar_t* section, const wchar_t* key, const wchar_t* text) override;
        bool SetNumber(uint32_t one, const wchar_t* section, const wchar_t* key, uint32_t value) override;

    private:
        template <class Use>
        bool Pass(Use&& use);

        GatedHost& m_host;
    };

    /// Runs `call` on the host, where there is one.
    template <class Result, class Call>
    Result Pass(Result closed, Call&& call);
    template <class Gated>
    void* Acquire(uint32_t number, const wchar_t* path);
    template <class Gated>
    void GiveBack(void* service, uint32_t number);

    HostGate m_gate;
    std::atomic<Quorvane::SDK::IHostServices*> m_services = nullptr;
    Settings m_settings{*this};
    std::mutex m_textLock;
    std::map<std::pair<uint16_t, Quorvane::SDK::TextId>, std::wstring> m_texts;  // by module
};

}  // namespace BatchRename
