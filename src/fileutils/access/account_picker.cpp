#include "fileutils/access/account_picker.h"

#include <memory>

#include "win32/com.h"
#include "win32/text.h"

#include <objsel.h>

namespace FileUtils {
namespace {

constexpr std::wstring_view kPrefix = L"WinNT://";

bool HasPrefix(std::wstring_view path) {
    return Win32::EqualIgnoringCase(path.substr(0, kPrefix.size()), kPrefix);
}

/// Cuts the last part off a path; it is the whole path when there is no separator.
std::wstring_view TakeLastPart(std::wstring_view& path) {
    const size_t separator = path.rfind(L'/');
    const std::wstring_view part = separator == std::wstring_view::npos ? path : path.substr(separator + 1);
    path = separator == std::wstring_view::npos ? std::wstring_view() : path.substr(0, separator);
    return part;
}

/// The accounts of this machine and of every domain that it trusts, users and groups of all kinds.
DSOP_SCOPE_INIT_INFO ScopeOfAccounts() {
    DSOP_SCOPE_INIT_INFO scope = {};
    scope.cbSize = sizeof(scope);
    scope.flType = DSOP_SCOPE_TYPE_TARGET_COMPUTER | DSOP_SCOPE_TYPE_UPLEVEL_JOINED_DOMAIN |
                   DSOP_SCOPE_TYPE_DOWNLEVEL_JOINED_DOMAIN | DSOP_SCOPE_TYPE_ENTERPRISE_DOMAIN |
                   DSOP_SCOPE_TYPE_EXTERNAL_UPLEVEL_DOMAIN | DSOP_SCOPE_TYPE_EXTERNAL_DOWNLEVEL_DOMAIN |
                   DSOP_SCOPE_TYPE_GLOBAL_CATALOG | DSOP_SCOPE_TYPE_WORKGROUP;
    // Paths of this provider name the domain; those of the directory's own provider do not.
    scope.flScope = DSOP_SCOPE_FLAG_WANT_PROVIDER_WINNT | DSOP_SCOPE_FLAG_WANT_DOWNLEVEL_BUILTIN_PATH;
    scope.FilterFlags.Uplevel.flBothModes = DSOP_FILTER_USERS | DSOP_FILTER_BUILTIN_GROUPS |
                                            DSOP_FILTER_WELL_KNOWN_PRINCIPALS | DSOP_FILTER_UNIVERSAL_GROUPS_SE |
                                            DSOP_FILTER_GLOBAL_GROUPS_SE | DSOP_FILTER_DOMAIN_LOCAL_GROUPS_SE;
    scope.FilterFlags.flDownlevel = DSOP_DOWNLEVEL_FILTER_USERS | DSOP_DOWNLEVEL_FILTER_LOCAL_GROUPS |
                                    DSOP_DOWNLEVEL_FILTER_GLOBAL_GROUPS | DSOP_DOWNLEVEL_FILTER_ALL_WELLKNOWN_SIDS;
    return scope;
}

Win32::ComPtr<IDsObjectPicker> MakePicker() {
    auto picker = Win32::MakeComObject<IDsObjectPicker>(CLSID_DsObjectPicker, IID_IDsObjectPicker);
    if (!picker) return picker;
    DSOP_SCOPE_INIT_INFO scope = ScopeOfAccounts();
    DSOP_INIT_INFO setup = {};
    setup.cbSize = sizeof(setup);
    setup.cDsScopeInfos = 1;
    setup.aDsScopeInfos = &scope;
    if (FAILED(picker->Initialize(&setup))) return {};
    return picker;
}

std::wstring FirstAccountIn(const DS_SELECTION_LIST& list) {
    if (list.cItems == 0) return {};
    const DS_SELECTION& first = list.aDsSelection[0];
    return AccountOfSelection(first.pwzADsPath ? first.pwzADsPath : L"", first.pwzName ? first.pwzName : L"");
}

/// A chosen account travels as a block of memory, in a format of the clipboard.
std::wstring AccountIn(IDataObject& selection) {
    FORMATETC format = {};
    format.cfFormat = static_cast<CLIPFORMAT>(RegisterClipboardFormatW(CFSTR_DSOP_DS_SELECTION_LIST));
    format.dwAspect = DVASPECT_CONTENT;
    format.lindex = -1;
    format.tymed = TYMED_HGLOBAL;
    STGMEDIUM medium = {};
    if (FAILED(selection.GetData(&format, &medium))) return {};
    const std::unique_ptr<STGMEDIUM, decltype(&ReleaseStgMedium)> release(&medium, ReleaseStgMedium);
    const auto* const list = static_cast<const DS_SELECTION_LIST*>(GlobalLock(medium.hGlobal));
    if (!list) return {};
    const std::unique_ptr<void, decltype(&GlobalUnlock)> unlock(medium.hGlobal, GlobalUnlock);
    return FirstAccountIn(*list);
}

}  // namespace

std::wstring AccountOfSelection(std::wstring_view directoryPath, std::wstring_view name) {
    if (!HasPrefix(directoryPath)) return std::wstring(name);
    std::wstring_view path = directoryPath.substr(kPrefix.size());
    path = path.substr(0, path.find(L','));
    std::wstring account(TakeLastPart(path));
    const std::wstring_view domain = TakeLastPart(path);
    if (account.empty()) return std::wstring(name);
    return domain.empty() ? account : std::wstring(domain) + L'\\' + account;
}

std::wstring PickAccount(HWND owner) {
    const Win32::ComApartment apartment;
    const Win32::ComPtr<IDsObjectPicker> picker = MakePicker();
    Win32::ComPtr<IDataObject> selection;
    // Cancelling succeeds too, with another code.
    if (!picker || picker->InvokeDialog(owner, &selection) != S_OK || !selection) return {};
    return AccountIn(*selection.Get());
}

}  // namespace FileUtils
