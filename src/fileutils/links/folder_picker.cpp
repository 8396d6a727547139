#include "fileutils/links/folder_picker.h"

#include <memory>

#include "win32/com.h"

#include <shlobj.h>

namespace FileUtils {

std::wstring PickFolder(HWND owner, const std::wstring& folder) {
    const Win32::ComApartment apartment;
    const auto dialog = Win32::MakeComObject<IFileOpenDialog>(CLSID_FileOpenDialog, IID_IFileOpenDialog);
    DWORD options = 0;
    if (!dialog || FAILED(dialog->GetOptions(&options)) ||
        FAILED(dialog->SetOptions(options | FOS_PICKFOLDERS | FOS_FORCEFILESYSTEM | FOS_NOCHANGEDIR)))
        return {};
    Win32::ComPtr<IShellItem> begin;
    if (SUCCEEDED(SHCreateItemFromParsingName(folder.c_str(), nullptr, IID_IShellItem, &begin)))
        dialog->SetFolder(begin.Get());
    Win32::ComPtr<IShellItem> chosen;
    PWSTR text = nullptr;
    // Cancelling is a failure of Show.
    if (FAILED(dialog->Show(owner)) || FAILED(dialog->GetResult(&chosen)) ||
        FAILED(chosen->GetDisplayName(SIGDN_FILESYSPATH, &text)))
        return {};
    const std::unique_ptr<wchar_t, decltype(&CoTaskMemFree)> path(text, CoTaskMemFree);
    return path.get();
}

}  // namespace FileUtils
