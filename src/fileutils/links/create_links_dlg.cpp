#include "fileutils/links/create_links_dlg.h"

#include <algorithm>

#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/fileutils_texts.h"
#include "fileutils/links/link_creation.h"
#include "ui/controls.h"
#include "win32/path.h"
#include "win32/window_text.h"

namespace FileUtils {
namespace {

using namespace Ui;

constexpr UINT kLinksAreChecked = WM_APP;
constexpr UINT_PTR kPatienceTimer = 1;
constexpr UINT kPatienceMilliseconds = 300;

// In the order of their numbers, from 1.
constexpr Quorvane::SDK::OwnText kKinds[] = {Text::HardLink, Text::Junction, Text::SymbolicLink, Text::Shortcut};

constexpr ListColumn kColumns[] = {{Text::LinkColumn, 400}, {Text::TargetColumn, 800}};

constexpr Anchor kLinkAnchors[] = {
    {IDC_LINK_FOLDER, 0, 0, 100, 0},    {IDC_LINK_PICK_FOLDER, 100, 0, 100, 0},
    {IDC_LINK_TARGETS, 0, 0, 100, 100}, {IDC_LINK_NAME_LABEL, 0, 100, 0, 100},
    {IDC_LINK_NAME, 0, 100, 100, 100},  {IDC_LINK_AS_ADMIN, 0, 100, 0, 100},
    {IDC_REASON, 0, 100, 100, 100},     {IDOK, 100, 100, 100, 100},
    {IDCANCEL, 100, 100, 100, 100},
};

/// The kind that most people mean: what needs no privilege and fits all targets.
uint32_t ProposedType(const std::vector<LinkTarget>& targets) {
    const auto folders = std::ranges::count(targets, true, &LinkTarget::isFolder);
    if (folders == 0) return LinkType::HardLink;
    return static_cast<size_t>(folders) == targets.size() ? LinkType::Junction : LinkType::SymbolicLink;
}

}  // namespace

CreateLinksDlg::CreateLinksDlg(std::vector<LinkTarget> targets, bool canElevate, LinkCheck whyNot, FolderPicker pick)
    : Dialog(IDD_CREATE_LINKS),
      m_names(std::move(targets)),
      m_canElevate(canElevate),
      m_pick(std::move(pick)),
      m_thread(std::move(whyNot), [this] { PostMessageW(GetWindow(), kLinksAreChecked, 0, 0); }) {}

std::optional<CreateLinksRequest> CreateLinksDlg::Show(HWND owner) {
    return ShowModal(owner) == IDOK ? m_request : std::nullopt;
}

bool CreateLinksDlg::OnInit() {
    MakeResizable(kLinkAnchors);
    for (const Quorvane::SDK::OwnText& kind : kKinds)
        SendMessageW(Item(IDC_LINK_KIND), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Say()(kind).c_str()));
    SendMessageW(Item(IDC_LINK_KIND), CB_SETCURSEL, ProposedType(m_names.Targets()) - 1, 0);
    EnableWindow(Item(IDC_LINK_AS_ADMIN), m_canElevate);
    const HWND list = Item(IDC_LINK_TARGETS);
    AddColumns(list, kColumns, Say());
    m_names.SetFolder(std::wstring(Win32::WithoutSeparator(Win32::FolderOf(m_names.Targets().front().path))));
    SetTextOf(Item(IDC_LINK_FOLDER), m_names.Folder());
    SendMessageW(list, LVM_SETITEMCOUNT, m_names.Targets().size(), 0);
    SelectRow(list, 0);
    EnableWindow(Item(IDOK), FALSE);
    Refresh();
    return true;
}

bool CreateLinksDlg::OnCommand(int id, int notification) {
    if (id == IDOK) {
        Accept();
        return true;
    }
    if (id == IDC_LINK_PICK_FOLDER && notification == BN_CLICKED) {
        const std::wstring folder = m_pick(GetWindow(), Win32::WindowText(Item(IDC_LINK_FOLDER)));
        if (!folder.empty()) SetTextOf(Item(IDC_LINK_FOLDER), folder);
        return true;
    }
    if (id == IDC_LINK_FOLDER && notification == EN_CHANGE) {
        m_names.SetFolder(Win32::WindowText(Item(IDC_LINK_FOLDER)));
        ShowSelectedName();
    } else if (id == IDC_LINK_NAME && notification == EN_CHANGE) {
        const std::wstring name = Win32::WindowText(Item(IDC_LINK_NAME));
        if (name == m_names.NameOf(Selected())) return true;
        m_names.SetName(Selected(), name);
    } else if (id != IDC_LINK_KIND || notification != CBN_SELCHANGE) {
        return false;
    }
    InvalidateRect(Item(IDC_LINK_TARGETS), nullptr, FALSE);
    Refresh();
    return true;
}

bool CreateLinksDlg::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NOTIFY) return OnNotify(*reinterpret_cast<const NMHDR*>(lParam), lParam);
    if (message == WM_TIMER && wParam == kPatienceTimer) {
        KillTimer(GetWindow(), kPatienceTimer);
        if (!m_isChecked) SetTextOf(Item(IDC_REASON), Say()(Text::LookingAtLinks));
        return true;
    }
    if (message != kLinksAreChecked) return false;
    if (const auto fault = m_thread.Take(); fault && !m_isChecked) ShowFault(Reason(*fault, Say()));
    return true;
}

bool CreateLinksDlg::OnNotify(const NMHDR& header, LPARAM lParam) {
    if (header.idFrom != IDC_LINK_TARGETS) return false;
    if (header.code == LVN_ITEMCHANGED) ShowSelectedName();
    if (header.code == LVN_GETDISPINFOW) FillCell(reinterpret_cast<NMLVDISPINFOW*>(lParam)->item);
    return header.code == LVN_ITEMCHANGED || header.code == LVN_GETDISPINFOW;
}

uint32_t CreateLinksDlg::Type() const {
    return static_cast<uint32_t>(SendMessageW(Item(IDC_LINK_KIND), CB_GETCURSEL, 0, 0) + 1);
}

size_t CreateLinksDlg::Selected() const {
    const int row = SelectedRow(Item(IDC_LINK_TARGETS));
    return row < 0 ? 0 : static_cast<size_t>(row);
}

void CreateLinksDlg::ShowSelectedName() {
    SetTextOf(Item(IDC_LINK_NAME), m_names.NameOf(Selected()));
}

void CreateLinksDlg::FillCell(LVITEMW& cell) const {
    const auto row = static_cast<size_t>(cell.iItem);
    if (!(cell.mask & LVIF_TEXT) || row >= m_names.Targets().size()) return;
    FillItemText(cell.pszText, cell.cchTextMax,
                 cell.iSubItem == 0 ? LinkPath(Type(), L"", m_names.NameOf(row)) : m_names.Targets()[row].path);
}

void CreateLinksDlg::Accept() {
    if (!m_isChecked) {
        m_endsWhenChecked = true;
        return;
    }
    if (!IsWindowEnabled(Item(IDOK))) return;
    m_request = FromControls();
    End(IDOK);
}

void CreateLinksDlg::Refresh() {
    m_endsWhenChecked = false;
    if (m_names.Folder().empty()) {
        ShowFault(Say()(Text::FolderNeeded));
        return;
    }
    m_isChecked = false;
    SetTimer(GetWindow(), kPatienceTimer, kPatienceMilliseconds, nullptr);
    m_thread.Request(m_names, Type());
}

void CreateLinksDlg::ShowFault(const std::wstring& fault) {
    m_isChecked = true;
    SetTextOf(Item(IDC_REASON), fault);
    EnableWindow(Item(IDOK), fault.empty());
    if (std::exchange(m_endsWhenChecked, false)) Accept();
}

CreateLinksRequest CreateLinksDlg::FromControls() const {
    CreateLinksRequest request = {Type(), m_canElevate && IsChecked(Item(IDC_LINK_AS_ADMIN)), {}};
    for (size_t row = 0; row < m_names.Targets().size(); ++row)
        request.links.push_back(m_names.LinkOf(request.type, row));
    return request;
}

}  // namespace FileUtils
