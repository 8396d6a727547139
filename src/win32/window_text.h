// window_text.h - the text of a window or control.
#pragma once

#include <string>

#include "win32/windows.h"

namespace Win32 {

/// The whole text, of any length.
inline std::wstring WindowText(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

}  // namespace Win32
