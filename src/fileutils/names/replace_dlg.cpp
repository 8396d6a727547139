#include "fileutils/names/replace_dlg.h"

#include "fileutils/fileutils_resource.h"
#include "fileutils/names/names_resource.h"
#include "ui/controls.h"
#include "win32/window_text.h"

namespace FileUtils {
namespace {

using namespace Ui;

constexpr size_t kLongestPreview = 100;  // names; more than anybody reads
constexpr WPARAM kLongestText = 255;     // units of a name
constexpr wchar_t kArrow[] = L"  ->  ";

// In the order of NamePart.
constexpr const wchar_t* kParts[] = {L"the name", L"the extension", L"name and extension"};

constexpr Anchor kAnchors[] = {
    {IDC_NAME_FIND, 0, 0, 100, 0},  {IDC_NAME_REPLACEMENT, 0, 0, 100, 0}, {IDC_NAME_PREVIEW, 0, 0, 100, 100},
    {IDC_REASON, 0, 100, 100, 100}, {IDOK, 100, 100, 100, 100},           {IDCANCEL, 100, 100, 100, 100},
};

std::vector<std::wstring> PreviewOf(const std::vector<NameChange>& changes) {
    std::vector<std::wstring> lines;
    for (const NameChange& change : changes) {
        if (lines.size() == kLongestPreview) {
            lines.push_back(L"\u2026");
            break;
        }
        lines.push_back(change.from + kArrow + change.to);
    }
    return lines;
}

}  // namespace

CReplaceDlg::CReplaceDlg(Changes changes) : Dialog(IDD_REPLACE_IN_NAMES), m_changes(std::move(changes)) {}

std::optional<NameReplacement> CReplaceDlg::Show(HWND owner) {
    return ShowModal(owner) == IDOK ? std::optional(m_request) : std::nullopt;
}

bool CReplaceDlg::OnInit() {
    MakeResizable(kAnchors);
    for (const wchar_t* part : kParts)
        SendMessageW(Item(IDC_NAME_PART), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(part));
    SendMessageW(Item(IDC_NAME_PART), CB_SETCURSEL, 0, 0);
    for (const int edit : {IDC_NAME_FIND, IDC_NAME_REPLACEMENT})
        SendMessageW(Item(edit), EM_LIMITTEXT, kLongestText, 0);
    Refresh();
    return true;
}

bool CReplaceDlg::OnCommand(int id, int notification) {
    if (id == IDOK) {
        if (!Refresh()) return true;
        m_request = FromControls();
        End(IDOK);
        return true;
    }
    if (id == IDCANCEL || id == IDC_NAME_PREVIEW) return false;
    if (notification != BN_CLICKED && notification != CBN_SELCHANGE && notification != EN_CHANGE) return false;
    Refresh();
    return true;
}

NameReplacement CReplaceDlg::FromControls() const {
    const LRESULT part = SendMessageW(Item(IDC_NAME_PART), CB_GETCURSEL, 0, 0);
    return {Win32::WindowText(Item(IDC_NAME_FIND)), Win32::WindowText(Item(IDC_NAME_REPLACEMENT)),
            IsChecked(Item(IDC_NAME_IGNORE_CASE)), part > 0 ? static_cast<NamePart>(part) : NamePart::Name};
}

bool CReplaceDlg::Refresh() {
    const NameReplacement request = FromControls();
    const std::vector<NameChange> changes = m_changes(request);
    SendMessageW(Item(IDC_NAME_PREVIEW), LB_RESETCONTENT, 0, 0);
    FillList(Item(IDC_NAME_PREVIEW), PreviewOf(changes));
    const size_t count = changes.size();
    SetTextOf(Item(IDC_REASON), request.find.empty() ? L"There is no text to find."
                                : count == 0         ? L"No name holds this text."
                                : count == 1         ? L"1 name will change."
                                                     : std::to_wstring(count) + L" names will change.");
    EnableWindow(Item(IDOK), count > 0);
    return count > 0;
}

}  // namespace FileUtils
