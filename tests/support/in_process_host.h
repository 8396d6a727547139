// in_process_host.h - the stand-in host and the built library in this process, so that a test can reach the calls of
// both.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "sdk/extension_info.h"
#include "sdk/plugin_interface.h"
#include "support/host_run.h"
#include "win32/module.h"
#include "win32/path.h"

namespace QVTest {

/// The library stays loaded while the object lives.
class InProcessHost {
public:
    InProcessHost()
        : m_library(
              LoadLibraryW(Win32::FullPath(std::wstring(Win32::FolderOf(QV_HOST_PROGRAM)) + L"QVUtils.dll").c_str())) {
        if (!m_library) ADD_FAILURE() << "the library cannot be loaded, error " << GetLastError();
    }

    /// A host's run, `arguments` as on its command line.
    HostRun Run(const std::vector<std::wstring>& arguments) const { return RunHost(QV_HOST_PROGRAM, arguments); }

    HMODULE Library() const { return m_library.Get(); }
    Quorvane::SDK::IPluginInterface* Create(uint32_t index) const {
        return Win32::FindFunction<Quorvane::SDK::CreateFunction>(m_library, "Create")(index);
    }
    /// The object with this index for which properties are asked.
    Quorvane::SDK::IFileProperties* CreateProperties() const {
        return reinterpret_cast<Quorvane::SDK::IFileProperties*>(Create(1));
    }
    void Delete(void* extension, uint32_t index) const {
        const auto remove = Win32::FindFunction<Quorvane::SDK::DeleteFunction>(m_library, "Delete");
        EXPECT_TRUE(remove(static_cast<Quorvane::SDK::IPluginInterface*>(extension), index));
    }
    static HMODULE Host() { return GetModuleHandleW(nullptr); }

private:
    Win32::Module m_library;
};

}  // namespace QVTest
