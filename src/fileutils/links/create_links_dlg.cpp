#include "fileutils/links/create_links_dlg.h"

#include <algorithm>
#include <unordered_set>

#include "fileutils/fileutils_resource.h"
#include "ui/controls.h"
#include "win32/path.h"
#include "win32/text.h"
#include "win32/window_text.h"

namespace FileUtils {
namespace {

using namespace Ui;

constexpr uint32_t kJunction = 2;
constexpr uint32_t kSymbolicLink = 3;
constexpr uint32_t kShortcut = 4;
constexpr wchar_t kShortcutExtension[] = L".lnk";
constexpr wchar_t kArrow[] = L"  ->  ";

// In the order of their numbers, from 1.
constexpr const wchar_t* kKinds[] = {L"Hard link", L"Junction", L"Symbolic link", L"Shortcut"};

constexpr Anchor kAnchors[] = {
    {IDC_LINK_FOLDER, 0, 0, 100, 0},   {IDC_LINK_TARGETS, 0, 0, 100, 100},  {IDC_LINK_NAME_LABEL, 0, 100, 0, 100},
    {IDC_LINK_NAME, 0, 100, 100, 100}, {IDC_LINK_AS_ADMIN, 0, 100, 0, 100}, {IDC_REASON, 0, 100, 100, 100},
    {IDOK, 100, 100, 100, 100},        {IDCANCEL, 100, 100, 100, 100},
};

bool IsSamePath(const std::wstring& left, const std::wstring& right) {
    return Win32::EqualIgnoringCase(Win32::FullPath(left), Win32::FullPath(right));
}

/// The kind that most people mean: what needs no privilege and fits all targets.
uint32_t ProposedType(const std::vector<LinkTarget>& targets) {
    const auto folders = std::ranges::count(targets, true, &LinkTarget::isFolder);
    if (folders == 0) return 1;
    return static_cast<size_t>(folders) == targets.size() ? kJunction : kSymbolicLink;
}

}  // namespace

std::wstring ProposedLinkName(const LinkTarget& target, const std::wstring& folder) {
    std::wstring name(Win32::FileNameOf(target.path));
    if (!IsSamePath(Win32::JoinPath(folder, name), target.path)) return name;
    const Win32::NameParts parts = target.isFolder ? Win32::NameParts{name, {}, false} : Win32::SplitAtLastDot(name);
    std::wstring proposed = std::wstring(parts.stem) + L" - link";
    if (parts.hasDot) proposed += L'.' + std::wstring(parts.extension);
    return proposed;
}

std::wstring LinkPath(uint32_t type, const std::wstring& folder, const std::wstring& name) {
    std::wstring path = Win32::JoinPath(folder, name);
    const size_t length = std::size(kShortcutExtension) - 1;
    const bool endsSo =
        path.size() >= length && Win32::EqualIgnoringCase(path.substr(path.size() - length), kShortcutExtension);
    if (type == kShortcut && !name.empty() && !endsSo) path += kShortcutExtension;
    return path;
}

CreateLinksDlg::CreateLinksDlg(std::vector<LinkTarget> targets, bool canElevate, LinkCheck whyNot)
    : Dialog(IDD_CREATE_LINKS),
      m_targets(std::move(targets)),
      m_names(m_targets.size()),
      m_isTyped(m_targets.size()),
      m_checked(m_targets.size()),
      m_canElevate(canElevate),
      m_whyNot(std::move(whyNot)) {}

std::optional<CreateLinksRequest> CreateLinksDlg::Show(HWND owner) {
    return ShowModal(owner) == IDOK ? std::optional(m_request) : std::nullopt;
}

bool CreateLinksDlg::OnInit() {
    MakeResizable(kAnchors);
    for (const wchar_t* kind : kKinds)
        SendMessageW(Item(IDC_LINK_KIND), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(kind));
    SendMessageW(Item(IDC_LINK_KIND), CB_SETCURSEL, ProposedType(m_targets) - 1, 0);
    SetTextOf(Item(IDC_LINK_FOLDER), std::wstring(Win32::WithoutSeparator(Win32::FolderOf(m_targets.front().path))));
    EnableWindow(Item(IDC_LINK_AS_ADMIN), m_canElevate);
    ProposeNames();
    ShowLinks();
    ShowSelectedName();
    Refresh();
    return true;
}

bool CreateLinksDlg::OnCommand(int id, int notification) {
    if (id == IDOK) {
        CreateLinksRequest request = FromControls();
        if (!FaultOf(request).empty()) return true;
        m_request = std::move(request);
        End(IDOK);
        return true;
    }
    if (id == IDC_LINK_TARGETS && notification == LBN_SELCHANGE) {
        ShowSelectedName();
        return true;
    }
    if (id == IDC_LINK_KIND && notification == CBN_SELCHANGE) {
        ShowLinks();
    } else if (id == IDC_LINK_FOLDER && notification == EN_CHANGE) {
        const std::vector<std::wstring> before = m_names;
        ProposeNames();
        if (m_names != before) ShowLinks();
        ShowSelectedName();
    } else if (id == IDC_LINK_NAME && notification == EN_CHANGE) {
        const std::wstring name = Win32::WindowText(Item(IDC_LINK_NAME));
        if (name == m_names[Selected()]) return true;
        m_names[Selected()] = name;
        m_isTyped[Selected()] = true;
        ShowLink(Selected());
    } else {
        return false;
    }
    Refresh();
    return true;
}

uint32_t CreateLinksDlg::Type() const {
    return static_cast<uint32_t>(SendMessageW(Item(IDC_LINK_KIND), CB_GETCURSEL, 0, 0) + 1);
}

size_t CreateLinksDlg::Selected() const {
    const LRESULT row = SendMessageW(Item(IDC_LINK_TARGETS), LB_GETCURSEL, 0, 0);
    return row < 0 ? 0 : static_cast<size_t>(row);
}

void CreateLinksDlg::ProposeNames() {
    const std::wstring folder = Win32::WindowText(Item(IDC_LINK_FOLDER));
    for (size_t row = 0; row < m_targets.size(); ++row)
        if (!m_isTyped[row]) m_names[row] = ProposedLinkName(m_targets[row], folder);
}

void CreateLinksDlg::ShowSelectedName() {
    SetTextOf(Item(IDC_LINK_NAME), m_names[Selected()]);
}

std::wstring CreateLinksDlg::LineOf(size_t row) const {
    return LinkPath(Type(), L"", m_names[row]) + kArrow + m_targets[row].path;
}

void CreateLinksDlg::ShowLinks() {
    const size_t selected = Selected();
    std::vector<std::wstring> lines;
    for (size_t row = 0; row < m_targets.size(); ++row) lines.push_back(LineOf(row));
    const HWND list = Item(IDC_LINK_TARGETS);
    SendMessageW(list, LB_RESETCONTENT, 0, 0);
    FillList(list, lines);
    SendMessageW(list, LB_SETCURSEL, selected, 0);
}

void CreateLinksDlg::ShowLink(size_t row) {
    const HWND list = Item(IDC_LINK_TARGETS);
    ReplaceInList(list, row, LineOf(row));
    SendMessageW(list, LB_SETCURSEL, row, 0);
}

CreateLinksRequest CreateLinksDlg::FromControls() const {
    CreateLinksRequest request = {Type(), m_canElevate && IsChecked(Item(IDC_LINK_AS_ADMIN)), {}};
    const std::wstring folder = Win32::WindowText(Item(IDC_LINK_FOLDER));
    for (const std::wstring& name : m_names) request.links.push_back(LinkPath(request.type, folder, name));
    return request;
}

std::wstring CreateLinksDlg::FaultOf(const CreateLinksRequest& request) {
    if (Win32::WindowText(Item(IDC_LINK_FOLDER)).empty()) return L"A folder is needed.";
    std::unordered_set<std::wstring> taken;
    for (size_t row = 0; row < request.links.size(); ++row) {
        if (m_names[row].empty()) return L"A link has no name: " + m_targets[row].path;
        const std::wstring& link = request.links[row];
        // All lie in one folder, and what only means the same name ("a.", "b\..\a") is refused as a name.
        if (!taken.insert(Win32::ToUpperCase(link)).second) return L"Two links have the same name: " + m_names[row];
        Checked& checked = m_checked[row];
        if (checked.type != request.type || checked.link != link)
            checked = {request.type, link, m_whyNot(request.type, link, m_targets[row])};
        if (!checked.fault.empty()) return checked.fault;
    }
    return {};
}

void CreateLinksDlg::Refresh() {
    const std::wstring fault = FaultOf(FromControls());
    SetTextOf(Item(IDC_REASON), fault);
    EnableWindow(Item(IDOK), fault.empty());
}

}  // namespace FileUtils
