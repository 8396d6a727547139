#include "batchrename/host_properties.h"

#include "win32/path.h"

namespace BatchRename {

using namespace Quorvane::SDK;

namespace {

// Buffers have one unit more than the host is told of: the text ends there whatever the host does.
constexpr uint32_t kValueCapacity = 4096;  // units; no name takes more
constexpr uint32_t kNameCapacity = 256;
constexpr uint32_t kMostNames = 4096;  // a host that answers every index must not keep the dialog busy for ever

}  // namespace

bool HostProperties::GetProperty(const BatchRenameItem& row, const std::wstring& name, const std::wstring& format,
                                 std::wstring& value) {
    if (!m_files) return false;
    wchar_t buffer[kValueCapacity + 1] = {};
    const std::wstring path = Win32::JoinPath(row.location, row.currentName);
    const bool isKnown = m_files->GetPropertyText(path.c_str(), name.c_str(), format.c_str(), buffer, kValueCapacity);
    value = buffer;
    return isKnown;
}

std::vector<std::wstring> PropertyNamesOf(IHostServices& services) {
    std::vector<std::wstring> names;
    const AcquiredService<IFileOperations> files(services, ServiceNumber::FileOperations);
    if (!files) return names;
    wchar_t name[kNameCapacity + 1] = {};
    for (uint32_t index = 0; index < kMostNames && files->GetPropertyName(index, name, kNameCapacity); ++index)
        names.emplace_back(name);
    return names;
}

}  // namespace BatchRename
