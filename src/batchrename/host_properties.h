// host_properties.h - property tags ask the host, through its file operations.
#pragma once

#include "rename/rename_rule.h"
#include "sdk/owners.h"

namespace BatchRename {

/// To be made and used on one thread.
class HostProperties final : public IPropertySource {
public:
    explicit HostProperties(Quorvane::SDK::IHostServices& services)
        : m_files(services, Quorvane::SDK::ServiceNumber::FileOperations) {}

    bool GetProperty(const BatchRenameItem& row, const std::wstring& name, const std::wstring& format,
                     std::wstring& value) override;

private:
    Quorvane::SDK::AcquiredService<Quorvane::SDK::IFileOperations> m_files;
};

/// The names of the properties that the host knows, in its order.
std::vector<std::wstring> PropertyNamesOf(Quorvane::SDK::IHostServices& services);

}  // namespace BatchRename
