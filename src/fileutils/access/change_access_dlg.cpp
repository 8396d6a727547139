#include "fileutils/access/change_access_dlg.h"

#include "fileutils/fileutils_resource.h"
#include "fileutils/fileutils_texts.h"
#include "win32/window_text.h"

namespace FileUtils {
namespace {

using namespace Ui;

using namespace Quorvane::SDK;

constexpr uint32_t kReadAndExecute = 0x1200A9;
constexpr ListEntry kRights[] = {
    {Text::ReadAndExecute, kReadAndExecute},
    {Text::ReadWriteAndExecute, 0x1201BF},  // read, write and execute
    {Text::Modify, 0x1301BF},               // and delete
    {Text::AllRights, 0x1F01FF},            // everything that can be done with a file
};

constexpr Anchor kAccessAnchors[] = {
    {IDC_ACCESS_NOTE, 0, 0, 100, 0},   {IDC_ACCESS_ACCOUNT, 0, 0, 100, 0}, {IDC_ACCESS_FIND, 100, 0, 100, 0},
    {IDC_ACCESS_RIGHTS, 0, 0, 100, 0}, {IDC_REASON, 0, 100, 100, 100},     {IDOK, 100, 100, 100, 100},
    {IDCANCEL, 100, 100, 100, 100},
};

std::wstring WithoutBlanks(const std::wstring& text) {
    const size_t first = text.find_first_not_of(L" \t");
    if (first == std::wstring::npos) return {};
    return text.substr(first, text.find_last_not_of(L" \t") - first + 1);
}

}  // namespace

ChangeAccessDlg::ChangeAccessDlg(HostTexts texts, std::wstring account, AccountExists exists, AccountPicker pick)
    : Dialog(IDD_CHANGE_ACCESS),
      m_texts(std::move(texts)),
      m_exists(std::move(exists)),
      m_pick(std::move(pick)),
      m_choice{std::move(account), kReadAndExecute} {}

std::optional<AccessChoice> ChangeAccessDlg::Show(HWND owner) {
    return ShowModal(owner) == IDOK ? std::optional(m_choice) : std::nullopt;
}

bool ChangeAccessDlg::OnInit() {
    MakeResizable(kAccessAnchors);
    FillCombo(Item(IDC_ACCESS_RIGHTS), m_texts, kRights, m_choice.mask, kReadAndExecute);
    SetTextOf(Item(IDC_ACCESS_ACCOUNT), m_choice.account);
    EnableWindow(Item(IDOK), !m_choice.account.empty());
    return true;
}

bool ChangeAccessDlg::OnCommand(int id, int notification) {
    if (id == IDOK) {
        Accept();
    } else if (id == IDC_ACCESS_FIND && notification == BN_CLICKED) {
        Pick();
    } else if (id == IDC_ACCESS_ACCOUNT && notification == EN_CHANGE) {
        SetTextOf(Item(IDC_REASON), {});
        EnableWindow(Item(IDOK), !FromControls().account.empty());
    } else {
        return false;
    }
    return true;
}

AccessChoice ChangeAccessDlg::FromControls() const {
    return {WithoutBlanks(Win32::WindowText(Item(IDC_ACCESS_ACCOUNT))), SelectedBit(Item(IDC_ACCESS_RIGHTS))};
}

void ChangeAccessDlg::Accept() {
    AccessChoice choice = FromControls();
    if (choice.account.empty() || choice.mask == 0) return;
    if (m_exists(choice.account)) {
        m_choice = std::move(choice);
        End(IDOK);
        return;
    }
    SetTextOf(Item(IDC_REASON), Say()(Text::NoSuchAccount));
    SetFocus(Item(IDC_ACCESS_ACCOUNT));
    SendMessageW(Item(IDC_ACCESS_ACCOUNT), EM_SETSEL, 0, -1);
}

void ChangeAccessDlg::Pick() {
    const std::wstring account = m_pick(GetWindow());
    if (!account.empty()) SetTextOf(Item(IDC_ACCESS_ACCOUNT), account);
}

}  // namespace FileUtils
