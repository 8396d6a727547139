#include "fileutils/names/replace_dlg.h"

#include <algorithm>

#include "fileutils/commands.h"
#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/fileutils_texts.h"
#include "fileutils/names/rename_items.h"
#include "sdk/owners.h"
#include "ui/controls.h"
#include "win32/file_name.h"
#include "win32/path.h"
#include "win32/text.h"
#include "win32/window_text.h"

namespace FileUtils {
namespace {

using namespace Ui;

constexpr size_t kLongestPreview = 100;  // names; more than anybody reads
constexpr WPARAM kLongestName = 255;     // units of a name
constexpr wchar_t kArrow[] = L"  ->  ";

// In the order of NamePart.
constexpr Quorvane::SDK::OwnText kParts[] = {Text::PartName, Text::PartExtension, Text::PartBoth};

constexpr Anchor kReplaceAnchors[] = {
    {IDC_NAME_FIND, 0, 0, 100, 0},  {IDC_NAME_REPLACEMENT, 0, 0, 100, 0}, {IDC_NAME_PREVIEW, 0, 0, 100, 100},
    {IDC_REASON, 0, 100, 100, 100}, {IDOK, 100, 100, 100, 100},           {IDCANCEL, 100, 100, 100, 100},
};

/// In words, for the first new name that cannot be one; "" when all can.
std::wstring FaultOf(const std::vector<NameChange>& changes) {
    const auto change = std::ranges::find_if_not(changes, Win32::IsFileName, &NameChange::to);
    if (change == changes.end()) return {};
    return L"\"" + change->to + L"\": " + Win32::DescribeNameFault(change->to, Win32::CheckFileName(change->to)) + L'.';
}

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
    MakeResizable(kReplaceAnchors);
    for (const Quorvane::SDK::OwnText& part : kParts)
        SendMessageW(Item(IDC_NAME_PART), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Say()(part).c_str()));
    SendMessageW(Item(IDC_NAME_PART), CB_SETCURSEL, 0, 0);
    for (const int edit : {IDC_NAME_FIND, IDC_NAME_REPLACEMENT})
        SendMessageW(Item(edit), EM_LIMITTEXT, kLongestName, 0);
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
    const std::wstring fault = FaultOf(changes);
    const Quorvane::SDK::Words say = Say();
    SetTextOf(Item(IDC_REASON), request.find.empty() ? say(Text::NothingToFind)
                                : !fault.empty()     ? Reason(fault, say)
                                : count == 0         ? say(Text::NoNameHoldsIt)
                                                     : say(Text::NamesChange, count));
    const bool canEnd = count > 0 && fault.empty();
    EnableWindow(Item(IDOK), canEnd);
    return canEnd;
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

namespace {

using namespace Quorvane::SDK;

/// What the preview needs of an item, read once: it is computed at every key.
struct NamedItem {
    IFileItem* item;
    std::wstring name;
    bool isFolder;
};

std::vector<NamedItem> NamedItemsOf(IFileList& list) {
    std::vector<NamedItem> items;
    for (IFileItem* const item : ItemsOf(list)) items.push_back({item, NameOf(*item), IsFolder(*item)});
    return items;
}

}  // namespace

uint32_t RunReplaceInNames(IHostServices& host, uint32_t) {
    const Owned<IFileList> list = GatherSelection(host, SelectionFlags::Names);
    if (!list || list->GetCount() == 0) return 1;
    const std::vector<NamedItem> items = NamedItemsOf(*list);
    CReplaceDlg dialog([&](const NameReplacement& request) {
        std::vector<NameChange> changes;
        for (const NamedItem& item : items) {
            std::wstring name = WithTextReplaced(request, item.name, item.isFolder);
            if (name != item.name) changes.push_back({item.name, std::move(name)});
        }
        return changes;
    });
    dialog.UseHost(DialogHostFor(host, IDD_REPLACE_IN_NAMES));
    const std::optional<NameReplacement> request = dialog.Show(host.GetMainWindow());
    if (!request) return 1;
    std::vector<ItemRename> renames;
    for (const NamedItem& item : items) {
        std::wstring name = WithTextReplaced(*request, item.name, item.isFolder);
        if (name != item.name) renames.push_back({item.item, std::move(name)});
    }
    RenameInOneBatch(host, renames);
    return 1;
}

}  // namespace FileUtils
