#include "host/app/loaded_library.h"

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "win32/path.h"

namespace QVHost {
namespace {

using namespace Quorvane::SDK;

constexpr uint32_t kMostExtensions = 64;  // a library that answers every index must not keep the host busy forever
constexpr uint32_t kStarted = 1;

}  // namespace

LoadedLibrary::LoadedLibrary(const std::wstring& path) {
    // The altered search looks beside the library for what it needs, not beside this program.
    m_module.Reset(LoadLibraryExW(Win32::ExtendedPath(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!m_module) throw HostError(L"cannot load the library " + path + L": " + DescribeError(GetLastError()));
    m_create = Win32::FindFunction<CreateFunction>(m_module, "Create");
    m_delete = Win32::FindFunction<DeleteFunction>(m_module, "Delete");
    const auto getInfo = Win32::FindFunction<GetExtensionInfoFunction>(m_module, "GetExtensionInfo");
    if (!m_create || !m_delete || !getInfo)
        throw HostError(path + L" is no library of the file manager: it lacks Create, Delete or GetExtensionInfo");
    for (uint32_t index = 0; index < kMostExtensions; ++index) {
        ExtensionInfo record = {};
        if (!getInfo(index, &record)) break;
        m_extensions.push_back(record);
    }
}

LoadedExtension::LoadedExtension(const LoadedLibrary& library, uint32_t index, IHostServices& services)
    : m_library(library),
      m_index(index),
      m_isProvider((library.Extensions()[index].TypeFlags & kTypeProperties) != 0),
      m_object(library.Create(index)) {
    const ExtensionInfo& record = library.Extensions()[index];
    const std::wstring name = TextOfField(record.Name, std::size(record.Name));
    if (!m_object) throw HostError(L"the library does not make its extension \"" + name + L"\"");
    if (m_isProvider) {
        Properties()->SetHost(&services);
        Properties()->Init(&services);
        return;
    }
    m_object->SetHost(&services);
    if (m_object->Init(&services) == kStarted) return;
    m_object->Shutdown();
    library.Delete(m_object, index);
    throw HostError(L"the extension \"" + name + L"\" does not start");
}

LoadedExtension::~LoadedExtension() {
    Shutdown();
    m_library.Delete(m_object, m_index);
}

void LoadedExtension::Shutdown() {
    if (!m_isProvider && !m_isShutDown) m_object->Shutdown();
    m_isShutDown = true;
}

IFileProperties* LoadedExtension::Properties() const {
    // Create speaks of every extension as IPluginInterface; a provider is the other table.
    return m_isProvider ? reinterpret_cast<IFileProperties*>(m_object) : nullptr;
}

}  // namespace QVHost
