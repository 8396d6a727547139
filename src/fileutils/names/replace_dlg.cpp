#include "fileutils/names/replace_dlg.h"

#include <algorithm>

#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/fileutils_texts.h"
#include "ui/controls.h"
#include "win32/file_name.h"
#include "win32/path.h"
#include "win32/text.h"
#include "win32/window_text.h"

namespace FileUtils {
namespace {

using namespace Ui;

constexpr size_t kLongestPreview = 100;  // names; more than anybody reads
constexpr wchar_t kArrow[] = L"  ->  ";

// In the order of NamePart.
constexpr Quorvane::SDK::OwnText kParts[] = {Text::PartName, Text::PartExtension, Text::PartBoth};

constexpr Anchor kReplaceAnchors[] = {
    {IDC_NAME_FIND, 0, 0, 100, 0},  {IDC_NAME_REPLACEMENT, 0, 0, 100, 0}, {IDC_NAME_PREVIEW, 0, 0, 100, 100},
    {IDC_REASON, 0, 100, 100, 100}, {IDOK, 100, 100, 100, 100},           {IDCANCEL, 100, 100, 100, 100},
};

/// In words, for the first name that cannot be changed so; "" when all can.
std::wstring FirstFault(const std::vector<NameChange>& changes) {
    const auto change = std::ranges::find_if_not(changes, &std::wstring::empty, &NameChange::fault);
    return change == changes.end() ? L"" : L"\"" + change->from + L"\": " + change->fault + L'.';
}

/// Those with a fault first: there may be more names than anybody looks through.
std::vector<std::wstring> PreviewOf(std::vector<NameChange> changes, const Quorvane::SDK::Words& say) {
    std::stable_partition(changes.begin(), changes.end(),
                          [](const NameChange& change) { return !change.fault.empty(); });
    std::vector<std::wstring> lines;
    for (const NameChange& change : changes) {
        if (lines.size() == kLongestPreview) {
            lines.push_back(L"\u2026");
            break;
        }
        lines.push_back(change.from + kArrow + change.to);
        if (!change.fault.empty()) lines.back() += L"  (" + Reason(change.fault, say) + L')';
    }
    return lines;
}

}  // namespace

CReplaceDlg::CReplaceDlg(Changes changes) : Dialog(IDD_REPLACE_IN_NAMES), m_changes(std::move(changes)) {}

std::optional<NameReplacement> CReplaceDlg::Show(HWND owner) {
    return ShowModal(owner) == IDOK ? std::optional(m_request) : std::nullopt;
}

bool CReplaceDlg::OnInit() {
    MakeResizable(kReplaceAnchors);
    for (const Quorvane::SDK::OwnText& part : kParts)
        SendMessageW(Item(IDC_NAME_PART), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Say()(part).c_str()));
    SendMessageW(Item(IDC_NAME_PART), CB_SETCURSEL, 0, 0);
    for (const int edit : {IDC_NAME_FIND, IDC_NAME_REPLACEMENT})
        SendMessageW(Item(edit), EM_LIMITTEXT, Win32::kLongestName, 0);
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
    const Quorvane::SDK::Words say = Say();
    FillList(Item(IDC_NAME_PREVIEW), PreviewOf(changes, say));
    const auto stays = static_cast<size_t>(
        std::ranges::count_if(changes, [](const NameChange& change) { return !change.fault.empty(); }));
    const size_t count = changes.size() - stays;
    std::wstring text = request.find.empty() ? say(Text::NothingToFind) : say(Text::NoNameHoldsIt);
    if (!changes.empty()) text = count > 0 ? say(Text::NamesChange, count) : L"";
    if (stays > 0) {
        if (count > 0) text += L' ' + say(Text::NamesStay, stays) + L' ';
        text += Reason(FirstFault(changes), say);
    }
    SetTextOf(Item(IDC_REASON), text);
    EnableWindow(Item(IDOK), count > 0);
    return count > 0;
}

namespace {

std::wstring Replaced(const NameReplacement& replacement, std::wstring_view text) {
    // Lower case has the length of the text itself, so that places found in one are places of the other.
    const std::wstring folded = replacement.ignoreCase ? Win32::ToLowerCase(text) : std::wstring(text);
    const std::wstring wanted = replacement.ignoreCase ? Win32::ToLowerCase(replacement.find) : replacement.find;
    std::wstring result;
    size_t at = 0;
    for (size_t found; (found = folded.find(wanted, at)) != std::wstring::npos; at = found + wanted.size()) {
        result += text.substr(at, found - at);
        result += replacement.replacement;
    }
    result += text.substr(at);
    return result;
}

}  // namespace

std::wstring WithTextReplaced(const NameReplacement& replacement, std::wstring_view name, bool isFolder) {
    if (replacement.find.empty()) return std::wstring(name);
    // In both parts the dot between them counts as text like any other.
    if (replacement.part == NamePart::Both) return Replaced(replacement, name);
    const Win32::NameParts parts = isFolder ? Win32::NameParts{name, {}, false} : Win32::SplitAtLastDot(name);
    std::wstring result;
    const bool inName = replacement.part == NamePart::Name;
    result += inName ? Replaced(replacement, parts.stem) : std::wstring(parts.stem);
    if (parts.hasDot) result += L'.';
    result += inName ? std::wstring(parts.extension) : Replaced(replacement, parts.extension);
    return result;
}

}  // namespace FileUtils
