#include "host/app/loaded_providers.h"

namespace QVHost {

LoadedProviders::LoadedProviders(HostState& state, const std::wstring& libraryPath) : m_library(libraryPath) {
    for (uint32_t index = 0; index < m_library.Extensions().size(); ++index) {
        const Quorvane::SDK::ExtensionInfo& record = m_library.Extensions()[index];
        if ((record.TypeFlags & kTypeProperties) == 0) continue;
        m_services.push_back(std::make_unique<HostServices>(state, index, record));
        m_extensions.push_back(std::make_unique<LoadedExtension>(m_library, index, *m_services.back()));
        state.columns.AddProvider(state.propertyColumns[index], *m_extensions.back()->Properties());
    }
}

}  // namespace QVHost
