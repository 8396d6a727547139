// rename_window.h - a host with the library in this process, and the Batch Rename window that it opened, as a person
// sees it: rows, fields, buttons. All waits are for something to be so, and bounded.
#pragma once

#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "batchrename/dialogs/batchrename_resource.h"
#include "host/app/session.h"
#include "support/dialog_driver.h"
#include "support/replaced_imports.h"
#include "support/temporary_folder.h"

namespace QVTest {

using Words = std::vector<std::wstring>;

class RenameWindow {
public:
    /// `profiles`: what the file of profiles holds; "": there is none.
    explicit RenameWindow(const Words& names, const std::string& profiles = {});
    /// Shuts the library down and unloads it, whatever the window is at.
    ~RenameWindow() { EndHost(); }

    /// Runs the command on files of the folder, which must exist.
    void Open(const Words& names);
    /// The same without waiting for the window and its rows.
    void RunCommand(const Words& names);
    /// SetHost to Delete are over afterwards.
    void EndHost();

    const TemporaryFolder& Files() const { return m_files; }
    QVHost::HostState& Host() { return m_session->State(); }
    Words NamesOnDisk() const { return m_files.List(); }

    HWND Frame() const;
    HWND List() const { return GetDlgItem(Frame(), 2000); }
    DWORD Thread() const { return GetWindowThreadProcessId(Frame(), nullptr); }
    DrivenDialog Panel() const;
    /// A dialog or message box of the window's thread.
    DrivenDialog Dialog(const std::wstring& title) const { return DialogDriver(Thread()).WaitFor(title); }

    std::wstring Cell(int row, int column) const { return CellOf(List(), row, column); }
    Words Column(int column) const { return ColumnOf(List(), column); }
    std::wstring Status() const { return ShownText(GetDlgItem(Frame(), IDC_STATUS_BAR), SB_GETTEXTW, 0); }
    /// What the host has logged so far.
    std::string Log() const { return m_out.str() + m_error.str(); }
    /// Handles the host's messages meanwhile. False after ten seconds.
    bool WaitFor(const std::function<bool()>& isTrue);
    bool WaitForStatus(const std::wstring& text);
    /// Adds a find and replace pair by its dialog.
    void AddPair(const std::wstring& find, const std::wstring& replaceWith) const;

private:
    TemporaryFolder m_files;
    TemporaryFolder m_settings;
    std::ostringstream m_out;
    std::ostringstream m_error;
    std::istringstream m_in;
    std::unique_ptr<QVHost::HostEnvironment> m_environment;
    std::unique_ptr<QVHost::Output> m_output;
    std::unique_ptr<QVHost::Session> m_session;
    std::unique_ptr<HurriedLibrary> m_hurried;
};

inline constexpr int kNewName = 1;
inline constexpr int kState = 2;

}  // namespace QVTest
