// extension_services.h - the services object that one extension gets. Each operation refuses what a faulty extension
// may give it (null, foreign pointers, odd numbers) without harm.
#pragma once

#include "host/app/host_state.h"
#include "sdk/extension_info.h"
#include "sdk/host_services.h"

namespace QVHost {

class HostServices final : public Quorvane::SDK::IHostServices {
public:
    HostServices(HostState& state, uint32_t extension, const Quorvane::SDK::ExtensionInfo& record);

    void Release() override;
    HWND GetMainWindow() override;
    uint16_t GetTextModule(const char* extensionId) override;
    const wchar_t* GetText(Quorvane::SDK::TextId id) override;
    const wchar_t* GetModuleText(uint16_t module, Quorvane::SDK::TextId id) override;
    uint32_t RunHostCommand(uint32_t command, Quorvane::SDK::IFileList* list, uint32_t flags, uintptr_t zero) override;
    Quorvane::SDK::ICommandFactory* GetCommandFactory() override;
    Quorvane::SDK::IMenuBuilder* GetMenuBuilder() override;
    Quorvane::SDK::ICustomCommandRegistry* GetCustomCommandRegistry(const char* moduleName) override;
    /// A new service for each call; ended by its Release on the same thread. Path and mode say nothing to this host.
    Quorvane::SDK::IXmlService* GetXmlService(const wchar_t* path, uint32_t mode) override;
    Quorvane::SDK::ISettings* GetSettings() override;
    uint32_t GetConfigurationFolder(wchar_t* buffer, uint32_t capacity) override;
    void* AcquireService(uint32_t number, uint32_t zero, const wchar_t* path) override;
    void ReleaseService(void* service, uint32_t number) override;
    bool IsElevated() override;
    bool CanElevate() override;
    bool UseColumnD() override;
    bool UseColumnE() override;
    Quorvane::SDK::IFileList* CreateFileList() override;
    Quorvane::SDK::IProgress* OpenProgress(const wchar_t* title, uint32_t total) override;
    Quorvane::SDK::IChoiceList* CreateChoiceList() override;
    void Log(uint32_t level, uint32_t kind, const wchar_t* format, ...) override;
    uint32_t MessageBox(const wchar_t* message, const wchar_t* caption, uint32_t style) override;
    bool ShowInputDialog(Quorvane::SDK::TextId prompt, wchar_t* buffer, uint32_t capacity) override;
    bool ShowChoiceDialog(Quorvane::SDK::ChoiceRequest* request) override;

private:
    /// A service handed out: `face` is the pointer that the extension holds, `owner` keeps the object alive.
    struct Service {
        void* face;
        std::shared_ptr<void> owner;
    };

    template <class Face, class Object>
    void* KeepService(std::shared_ptr<Object> object);
    IPanelView::Items SelectedItems() const;
    IPanelView::Items FocusedGroup() const;
    bool MarkFiles(const FileList& list, uint32_t kind);
    DialogWords Words();

    HostState& m_state;
    uint32_t m_extension;
    std::wstring m_extensionId;
    std::wstring m_section;  // of the language file
    MenuBuilder m_menuBuilder;
    CommandFactory m_commandFactory;
    ExtensionSettings m_settings;
    std::mutex m_mutex;
    std::vector<Service> m_services;
};

}  // namespace QVHost
