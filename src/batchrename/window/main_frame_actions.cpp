// main_frame_actions.cpp - the window between its model, its panes, its threads and its dialogs.
#include <algorithm>
#include <system_error>
#include <utility>

#include "batchrename/batchrename_texts.h"
#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrename/dialogs/profile_menu.h"
#include "batchrename/dialogs/rename_dialog_pages.h"
#include "batchrename/dialogs/undo_manager_dlg.h"
#include "batchrename/host_properties.h"
#include "batchrename/rule_context.h"
#include "batchrename/window/main_frame.h"
#include "ui/guide.h"
#include "win32/path.h"
#include "win32/window_text.h"

#include <shellapi.h>

namespace BatchRename {
namespace {

/// Tells a dialog of this thread that it was cancelled.
BOOL CALLBACK CancelDialog(HWND window, LPARAM) {
    wchar_t name[16] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    if (std::wstring_view(name) == L"#32770") EndDialog(window, IDCANCEL);
    return TRUE;
}

}  // namespace

const wchar_t* BatchRenameMainFrame::Text(Quorvane::SDK::TextId id) const {
    const wchar_t* const text =
        m_environment.services ? m_environment.services->GetModuleText(m_environment.context.hostValue, id) : nullptr;
    return text ? text : L"";
}

// --- what the model has done

void BatchRenameMainFrame::RequestPreview(PreviewRequest request, int delay) {
    m_preview->Request(std::move(request), delay);
}

bool BatchRenameMainFrame::BeginRun(RunRequest request, bool isRecorded) {
    request.time = LocalTimeNow();
    if (isRecorded) {
        request.journal = &m_environment.context.undo;
        request.journal->SetDurable(IsUndoDurable(m_environment.services));
    }
    m_environment.context.isStopped = m_environment.isClosing.load();
    m_startTime = GetTickCount64();
    try {
        m_run->Start(std::move(request));
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

void BatchRenameMainFrame::Ask(const std::wstring& question) {
    const int answer = AskBox(question, MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2);
    m_model.OnAnswer(answer == IDYES && !m_environment.isClosing);
}

void BatchRenameMainFrame::EndDialogs() {
    EndMenu();
    EnumThreadWindows(GetCurrentThreadId(), CancelDialog, 0);
}

void BatchRenameMainFrame::ShowStatus(const std::wstring& text) {
    // Setting it tells screen readers, so the same text is not set twice.
    if (Win32::WindowText(m_statusBar) != text)
        SendMessageW(m_statusBar, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void BatchRenameMainFrame::ShowTitle(bool isRestoring) {
    SetWindowTextW(m_window, isRestoring ? kRestoreTitle : kFrameTitle);
}

// --- what the panes tell

void BatchRenameMainFrame::OnRuleChanged() {
    m_model.OnRuleChanged(m_panel->Rule(), LocalTimeNow());
}

void BatchRenameMainFrame::OnButton(int id) {
    switch (id) {
        case IDC_START:
            m_list.EndEdit();
            return m_model.OnStart(GetTickCount64() - m_startTime <= GetDoubleClickTime());
        case IDC_UNDO: return OpenUndoManager();
        case IDC_PROFILES: return OpenProfiles();
        case IDC_RESET_LIST: return m_model.OnResetRows();
        case IDC_CLOSE: PostMessageW(m_window, WM_CLOSE, 0, 0); return;
        default: return m_model.OnChoices(m_panel->Choices());
    }
}

void BatchRenameMainFrame::OnRows(RowAction action, const std::vector<bool>& isMarked) {
    if (m_model.IsRunning() && action != RowAction::OpenFolder) return static_cast<void>(MessageBeep(MB_OK));
    switch (action) {
        case RowAction::Name: return ShowStatus(Say(Text::NamesOfSession));
        case RowAction::Check: return m_model.OnCheckRows(isMarked, true);
        case RowAction::Uncheck: return m_model.OnCheckRows(isMarked, false);
        case RowAction::TakeOut: return m_model.OnRemoveRows(isMarked);
        case RowAction::Keep: return m_model.OnKeepRows(isMarked);
        case RowAction::OpenFolder: return OpenFolderOf(isMarked);
        default: return;  // the list's own
    }
}

/// Of the first row that is marked, with the item selected in it.
void BatchRenameMainFrame::OpenFolderOf(const std::vector<bool>& isMarked) {
    const auto first = std::ranges::find(isMarked, true);
    if (first == isMarked.end()) return;
    const BatchRenameItem& row = *(*m_model.Rows().Rows())[static_cast<size_t>(first - isMarked.begin())];
    const std::wstring arguments = L"/select,\"" + Win32::JoinPath(row.location, row.currentName) + L'"';
    const HINSTANCE result =
        ShellExecuteW(m_window, nullptr, L"explorer.exe", arguments.c_str(), nullptr, SW_SHOWNORMAL);
    // 32 and less are errors.
    if (reinterpret_cast<INT_PTR>(result) <= 32) ShowStatus(Say(Text::FolderNotOpened, {row.location}));
}

std::vector<std::wstring> BatchRenameMainFrame::PropertyNames() const {
    return m_environment.services ? PropertyNamesOf(*m_environment.services) : std::vector<std::wstring>();
}

// --- dialogs

Ui::DialogHost BatchRenameMainFrame::DialogHostFor(WORD dialog) const {
    Quorvane::SDK::IHostServices* const services = m_environment.services;
    return {Texts(), services ? services->GetSettings() : nullptr, &PageOf(dialog)};
}

void BatchRenameMainFrame::OpenGuide() {
    RunModal([this] { Ui::OpenGuide(m_window, PageOf(IDD_RULE_PANEL).topic, Texts()); });
}

void BatchRenameMainFrame::RunModal(const std::function<void()>& body) {
    {
        struct OpenDialog {
            explicit OpenDialog(FrameModel& frame) : model(frame) { model.OnDialogOpened(); }
            ~OpenDialog() { model.OnDialogClosed(); }
            OpenDialog(const OpenDialog&) = delete;
            OpenDialog& operator=(const OpenDialog&) = delete;
            FrameModel& model;
        } const dialog(m_model);
        body();
    }
    TakeRows();
}

int BatchRenameMainFrame::AskBox(const std::wstring& text, UINT style) {
    int answer = 0;
    RunModal([&] { answer = MessageBoxW(m_window, text.c_str(), kFrameTitle, style); });
    return answer;
}

void BatchRenameMainFrame::OpenUndoManager() {
    std::optional<SessionChoice> choice;
    BatchRenameUndoManagerDlg dialog(m_environment.context.undo);
    dialog.UseHost(DialogHostFor(IDD_UNDO_MANAGER));
    RunModal([&] { choice = dialog.Show(m_window); });
    if (choice && !m_environment.isClosing) m_model.LoadSession(std::move(choice->session), std::move(choice->entries));
}

void BatchRenameMainFrame::OpenProfiles() {
    std::optional<ProfileChoice> choice;
    RunModal([&] {
        choice = PickProfile(m_window, m_panel->Button(IDC_PROFILES), m_environment.profiles.Profiles(), Texts());
    });
    if (!choice || m_environment.isClosing) return;
    if (choice->action == ProfileAction::SaveAs) return SaveProfile();
    if (choice->action == ProfileAction::Load) {
        m_panel->SetRule(RuleOf(choice->profile));
        return OnRuleChanged();
    }
    const std::wstring& name = choice->profile.name;
    const std::wstring question = Say(Text::DeleteThisProfile, {name});
    if (AskBox(question, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) != IDYES) return;
    m_environment.profiles.Delete(name);
    ReportProfiles();
}

void BatchRenameMainFrame::SaveProfile() {
    std::optional<std::wstring> name;
    SaveProfileDlg dialog(m_environment.profiles.Profiles());
    dialog.UseHost(DialogHostFor(IDD_SAVE_PROFILE));
    RunModal([&] { name = dialog.Show(m_window); });
    if (!name || m_environment.isClosing) return;
    m_environment.profiles.Set(ProfileOf(*name, m_panel->Rule()));
    ReportProfiles();
}

void BatchRenameMainFrame::ReportProfiles() {
    if (m_environment.profiles.Save() && m_environment.profiles.WasWritten())
        return ShowStatus(Say(Text::ProfilesSaved));
    AskBox(Say(Text::ProfilesNotSaved), MB_OK | MB_ICONWARNING);
}

}  // namespace BatchRename
