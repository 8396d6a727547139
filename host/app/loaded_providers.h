// loaded_providers.h - the library's providers of file properties alone, for runs that need nothing else of it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/app/loaded_library.h"
#include "host/contract/extension_services.h"

namespace QVHost {

class LoadedProviders {
public:
    /// Their columns join those of `state`, and are good as long as this object.
    /// @throws HostError when the library cannot be loaded
    LoadedProviders(HostState& state, const std::wstring& libraryPath);

private:
    LoadedLibrary m_library;
    std::vector<std::unique_ptr<HostServices>> m_services;
    std::vector<std::unique_ptr<LoadedExtension>> m_extensions;
};

}  // namespace QVHost
