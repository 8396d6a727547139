#include "win32/shortcut.h"

#include "win32/com.h"
#include "win32/path.h"
#include "win32/text.h"

#include <shlobj.h>

namespace Win32 {
namespace {

constexpr int kLongestText = 32768;  // units: no command line is longer

/// What one of the shell's getters writes into a buffer; "" when it fails.
template <class Get>
std::wstring TextFrom(const Get& get) {
    std::wstring text(kLongestText, L'\0');
    if (FAILED(get(text.data()))) return {};
    text.resize(text.find(L'\0'));
    return text;
}

/// A shell may cut a path that is too long for it, and say that all went well.
bool SetTarget(IShellLinkW& link, const std::wstring& target) {
    if (FAILED(link.SetPath(target.c_str()))) return false;
    if (target.size() < MAX_PATH) return true;
    const std::wstring kept = TextFrom([&](wchar_t* to) { return link.GetPath(to, kLongestText, nullptr, 0); });
    return EqualIgnoringCase(FileNameOf(kept), FileNameOf(target));
}

}  // namespace

uint32_t SaveShortcut(const std::wstring& file, const Shortcut& shortcut) {
    const ComApartment apartment;
    const auto link = MakeComObject<IShellLinkW>(CLSID_ShellLink, IID_IShellLinkW);
    const auto disk = InterfaceOf<IPersistFile>(link, IID_IPersistFile);
    if (!disk) return ERROR_PATH_NOT_FOUND;
    const bool isSaved =
        SetTarget(*link.Get(), shortcut.target) &&
        (shortcut.arguments.empty() || SUCCEEDED(link->SetArguments(shortcut.arguments.c_str()))) &&
        (shortcut.workingFolder.empty() || SUCCEEDED(link->SetWorkingDirectory(shortcut.workingFolder.c_str()))) &&
        (shortcut.description.empty() || SUCCEEDED(link->SetDescription(shortcut.description.c_str()))) &&
        SUCCEEDED(disk->Save(file.c_str(), TRUE));
    return isSaved ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
}

std::optional<Shortcut> ReadShortcut(const std::wstring& file) {
    const ComApartment apartment;
    const auto link = MakeComObject<IShellLinkW>(CLSID_ShellLink, IID_IShellLinkW);
    const auto disk = InterfaceOf<IPersistFile>(link, IID_IPersistFile);
    if (!disk || FAILED(disk->Load(file.c_str(), STGM_READ))) return std::nullopt;
    Shortcut shortcut;
    shortcut.target = TextFrom([&](wchar_t* to) { return link->GetPath(to, kLongestText, nullptr, 0); });
    shortcut.arguments = TextFrom([&](wchar_t* to) { return link->GetArguments(to, kLongestText); });
    shortcut.workingFolder = TextFrom([&](wchar_t* to) { return link->GetWorkingDirectory(to, kLongestText); });
    shortcut.description = TextFrom([&](wchar_t* to) { return link->GetDescription(to, kLongestText); });
    if (shortcut.target.empty()) return std::nullopt;
    return shortcut;
}

}  // namespace Win32
