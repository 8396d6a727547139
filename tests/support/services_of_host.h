// services_of_host.h - the stand-in host's services in the test's own process, without a library: for code of the
// library that is called directly. For tests that link the host's module.
#pragma once

#include <functional>
#include <sstream>
#include <utility>

#include <gtest/gtest.h>

#include "host/app/session.h"
#include "host/contract/extension_services.h"
#include "host/contract/panel_view.h"
#include "host/contract/whole_file.h"
#include "sdk/extension_info.h"
#include "sdk/plugin_interface.h"
#include "support/host_run.h"
#include "support/temporary_folder.h"
#include "win32/module.h"
#include "win32/path.h"

namespace QVTest {

class ServicesOfHost {
public:
    /// `options` as on the host's command line; `program` is qvhost.exe, whose neighbour has the texts.
    explicit ServicesOfHost(const std::wstring& program, QVHost::HostOptions options = {})
        : m_environment(EnvironmentOf(m_out, m_notes, m_in, program)),
          m_output(m_out, m_notes, true),
          m_state(QVHost::MakeHostState(WithSettings(std::move(options)), m_environment, m_output)),
          m_services(m_state, 0, {}) {
        std::string texts;
        const std::wstring folder(Win32::FolderOf(program));
        EXPECT_EQ(QVHost::ReadWholeFile(folder + L"qvhost-english.txt", texts), 0u);
        m_state.texts.Read(texts);
    }

    QVHost::HostServices& Services() { return m_services; }
    QVHost::HostState& State() { return m_state; }
    /// An item of the panel's selection.
    QVHost::FileItem& Select(const std::wstring& path) {
        m_state.selection.push_back(m_state.files.MakeItem(path));
        return *m_state.selection.back();
    }
    /// Log lines; and questions with their answers.
    std::string Log() const { return m_out.str(); }
    std::string Notes() const { return m_notes.str(); }
    /// The folder with the host's settings.
    const TemporaryFolder& Settings() const { return m_settings; }

private:
    QVHost::HostOptions WithSettings(QVHost::HostOptions options) const {
        options.config = m_settings.Path();
        return options;
    }

    TemporaryFolder m_settings;
    std::ostringstream m_out;
    std::ostringstream m_notes;
    std::istringstream m_in;
    QVHost::HostEnvironment m_environment;
    QVHost::Output m_output;
    QVHost::HostState m_state;
    QVHost::HostServices m_services;
};

class FakePanel final : public QVHost::IPanelView {
public:
    FakePanel(std::function<Items()> selection, std::function<void(const std::wstring&)> onFolderChanged)
        : m_selection(std::move(selection)), m_onFolderChanged(std::move(onFolderChanged)) {}

    Items SelectedItems() override { return m_selection(); }
    Items FocusedGroup() override { return {}; }
    void ShowLine(std::wstring_view, QVHost::Tone) override {}
    void MarkFile(const std::wstring&, uint32_t) override {}
    void FileRenamed(const std::wstring&, const std::wstring&) override {}
    void FolderChanged(const std::wstring& folder) override { m_onFolderChanged(folder); }

private:
    std::function<Items()> m_selection;
    std::function<void(const std::wstring&)> m_onFolderChanged;
};

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
