// loaded_library.h - the library in memory and the extensions made from it, each ended in the right order.
#pragma once

#include <string>
#include <vector>

#include "sdk/extension_info.h"
#include "sdk/host_services.h"
#include "sdk/plugin_interface.h"
#include "win32/module.h"

namespace QVHost {

/// The bit of `TypeFlags` by which this host knows a provider of file properties.
inline constexpr uint32_t kTypeProperties = 0x200000;

class LoadedLibrary {
public:
    /// @throws HostError when the file cannot be loaded or lacks an export
    explicit LoadedLibrary(const std::wstring& path);

    /// The description records, by index.
    const std::vector<Quorvane::SDK::ExtensionInfo>& Extensions() const { return m_extensions; }
    Quorvane::SDK::IPluginInterface* Create(uint32_t index) const { return m_create(index); }
    void Delete(Quorvane::SDK::IPluginInterface* object, uint32_t index) const { m_delete(object, index); }

private:
    Win32::Module m_module;
    Quorvane::SDK::CreateFunction m_create = nullptr;
    Quorvane::SDK::DeleteFunction m_delete = nullptr;
    std::vector<Quorvane::SDK::ExtensionInfo> m_extensions;
};

/// One extension, driven as the contract says: SetHost, Init, its calls, Shutdown, Delete.
class LoadedExtension {
public:
    /// @throws HostError when the extension cannot be made or does not start
    LoadedExtension(const LoadedLibrary& library, uint32_t index, Quorvane::SDK::IHostServices& services);
    LoadedExtension(const LoadedExtension&) = delete;
    LoadedExtension& operator=(const LoadedExtension&) = delete;
    ~LoadedExtension();

    /// Ends what it has running, with bounded waits; afterwards it takes no calls. The destructor does it otherwise.
    void Shutdown();

    uint32_t Index() const { return m_index; }
    /// Null for a provider of file properties, which has no commands.
    Quorvane::SDK::IPluginInterface* Commands() const { return m_isProvider ? nullptr : m_object; }
    Quorvane::SDK::IFileProperties* Properties() const;

private:
    const LoadedLibrary& m_library;
    uint32_t m_index;
    bool m_isProvider;
    bool m_isShutDown = false;
    Quorvane::SDK::IPluginInterface* m_object;
};

}  // namespace QVHost
