#include "ui/guide.h"

#include "ui/activation_context.h"
#include "win32/com.h"
#include "win32/error_text.h"
#include "win32/files.h"
#include "win32/module.h"
#include "win32/path.h"
#include "win32/window_text.h"

#include <shellapi.h>

namespace Ui {
namespace {

void Tell(HWND owner, const std::wstring& text) {
    MessageBoxW(owner, text.c_str(), Win32::WindowText(owner).c_str(), MB_OK | MB_ICONINFORMATION);
}

/// By what shows such files here, or by `program`, a program of the system's. Windows error code.
DWORD Open(HWND owner, const std::wstring& file, const wchar_t* program = nullptr) {
    const Win32::ComApartment apartment;  // what shows the page may be asked by COM
    SHELLEXECUTEINFOW request = {};
    request.cbSize = sizeof(request);
    request.fMask = SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI;
    request.hwnd = owner;
    request.lpVerb = L"open";
    const std::wstring place = program ? Win32::JoinPath(Win32::SystemFolder(), program) : file;
    const std::wstring argument = L'"' + file + L'"';
    request.lpFile = place.c_str();
    if (program) request.lpParameters = argument.c_str();
    request.nShow = SW_SHOWNORMAL;
    return ShellExecuteExW(&request) ? ERROR_SUCCESS : GetLastError();
}

}  // namespace

GuidePlace PlaceOfGuide(const std::wstring& folder, const std::wstring& topic) {
    GuidePlace place = {Win32::JoinPath(folder, L"docs\\help\\" + topic + L".html"), {}};
    // build\PRESET\bin of a checkout.
    const auto above = [](std::wstring_view path) { return Win32::WithoutSeparator(Win32::FolderOf(path)); };
    const std::wstring_view build = above(above(folder));
    if (Win32::FileNameOf(folder) == L"bin" && Win32::FileNameOf(build) == L"build")
        place.text = Win32::JoinPath(above(build), L"docs\\user-guide.md");
    return place;
}

void OpenGuide(HWND owner, const std::wstring& topic, const HostTexts& texts) {
    const std::wstring module = Win32::PathOfModule(OwnModule());
    OpenGuide(owner, PlaceOfGuide(std::wstring(Win32::WithoutSeparator(Win32::FolderOf(module))), topic), texts);
}

void OpenGuide(HWND owner, const GuidePlace& place, const HostTexts& texts) {
    const bool isPacked = Win32::Exists(place.page);
    const std::wstring& file = isPacked || place.text.empty() ? place.page : place.text;
    if (!isPacked && !Win32::Exists(file))
        return Tell(owner, Quorvane::SDK::FormatText(texts(Text::GuideMissing), {file}));
    // A text of that kind seldom has a program of its own.
    if (const DWORD error = Open(owner, file, isPacked ? nullptr : L"notepad.exe"))
        Tell(owner, Quorvane::SDK::FormatText(texts(Text::GuideNotOpened), {file, Win32::DescribeError(error)}));
}

}  // namespace Ui
