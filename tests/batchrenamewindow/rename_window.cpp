#include "batchrenamewindow/rename_window.h"

#include <stdexcept>

#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrename/window/main_frame.h"
#include "host/app/command_line.h"
#include "host/app/run.h"
#include "host/app/session.h"
#include "support/dialog_driver.h"
#include "support/host_run.h"

namespace QVTest {

RenameWindow::RenameWindow(const Words& names, const std::string& profiles) {
    if (!profiles.empty()) m_settings.Write(L"BatchRenameProfiles.xml", profiles);
    m_environment = std::make_unique<QVHost::HostEnvironment>(EnvironmentOf(m_out, m_error, m_in, QV_HOST_PROGRAM));
    m_output = std::make_unique<QVHost::Output>(m_out, m_error, false);
    const QVHost::HostOptions options =
        QVHost::ParseCommandLine({L"--config", m_settings.Path(), L"command", L"31000"});
    m_session = std::make_unique<QVHost::Session>(options, *m_environment, *m_output);
    m_session->StartExtensions();
    m_hurried = std::make_unique<HurriedLibrary>(GetModuleHandleW(L"QVUtils.dll"));
    for (const std::wstring& name : names) m_files.Write(name, std::string(name.begin(), name.end()));
}

void RenameWindow::RunCommand(const Words& names) {
    m_session->State().selection.clear();
    for (const std::wstring& name : names)
        m_session->State().selection.push_back(m_session->State().files.MakeItem(m_files / name));
    m_session->Extensions()[2]->Commands()->OnCommand(31000, 0, 0);
}

void RenameWindow::Open(const Words& names) {
    RunCommand(names);
    const auto isThere = [&] {
        return Frame() && SendMessageW(List(), LVM_GETITEMCOUNT, 0, 0) == static_cast<LRESULT>(names.size()) &&
               Status().find(L" will be") != std::wstring::npos;
    };
    if (!WaitFor(isThere)) throw std::runtime_error("the window does not show its rows");
}

void RenameWindow::EndHost() {
    m_hurried.reset();
    m_session.reset();
    m_output.reset();
}

HWND RenameWindow::Frame() const {
    return FindOwnWindow(BatchRename::kFrameClass);
}

DrivenDialog RenameWindow::Panel() const {
    return DrivenDialog(FindWindowExW(Frame(), nullptr, L"#32770", nullptr));
}

bool RenameWindow::WaitFor(const std::function<bool()>& isTrue) {
    const ULONGLONG end = GetTickCount64() + 10000;
    bool isReached = false;
    const UINT_PTR looks = SetTimer(nullptr, 0, 10, nullptr);
    QVHost::PumpWhile(*m_session, [&] { return !(isReached = isTrue()) && GetTickCount64() < end; });
    KillTimer(nullptr, looks);
    return isReached;
}

bool RenameWindow::WaitForStatus(const std::wstring& text) {
    return WaitFor([&] { return Status() == text; });
}

void RenameWindow::AddPair(const std::wstring& find, const std::wstring& replaceWith) const {
    Panel().PressLater(IDC_ITEM_NEW);
    const DrivenDialog dialog = Dialog(L"Search and Replace");
    dialog.Enter(IDC_ITEM_FIND, find);
    dialog.Enter(IDC_ITEM_REPLACE, replaceWith);
    dialog.PressAndClose(IDOK);
}

}  // namespace QVTest
