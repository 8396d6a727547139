// name_edit.h - a field over a cell of the list, in which one name is typed.
#pragma once

#include <functional>
#include <string>

#include "win32/windows.h"

namespace BatchRename {

class NameEdit {
public:
    enum class Next : uint8_t { Nothing, RowBelow, RowAbove };
    /// What was typed, and where to go on. Not called for a field that is left by Escape.
    using Done = std::function<void(const std::wstring& name, Next next)>;

    NameEdit() = default;
    ~NameEdit() { Close(false); }
    NameEdit(const NameEdit&) = delete;
    NameEdit& operator=(const NameEdit&) = delete;

    /// The name is in the field, all but its extension selected.
    void Open(HWND list, const RECT& cell, const std::wstring& name, Done done);
    void Close(bool isDone, Next next = Next::Nothing);
    bool IsOpen() const { return m_field != nullptr; }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    bool OnKey(WPARAM key);

    HWND m_field = nullptr;
    WNDPROC m_control = nullptr;  // the system's
    Done m_done;
};

}  // namespace BatchRename
