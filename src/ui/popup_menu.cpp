#include "ui/popup_menu.h"

namespace Ui {

int PopupMenu::Add(const std::wstring& text, bool isEnabled) {
    const UINT flags = MF_STRING | (isEnabled ? MF_ENABLED : MF_GRAYED);
    AppendMenuW(m_menu.Get(), flags, static_cast<UINT_PTR>(m_count) + 1,
                text.c_str());  // 0 means that nothing was chosen
    return m_count++;
}

void PopupMenu::AddSeparator() {
    AppendMenuW(m_menu.Get(), MF_SEPARATOR, 0, nullptr);
}

int PopupMenu::AddList(const std::wstring& title, const std::vector<std::wstring>& texts) {
    const int first = m_count;
    const HMENU list = CreatePopupMenu();
    for (const std::wstring& text : texts)
        AppendMenuW(list, MF_STRING, static_cast<UINT_PTR>(m_count++) + 1, text.c_str());
    // From here on it belongs to the menu above.
    const UINT flags = MF_POPUP | (texts.empty() ? MF_GRAYED : MF_ENABLED);
    if (!AppendMenuW(m_menu.Get(), flags, reinterpret_cast<UINT_PTR>(list), title.c_str())) DestroyMenu(list);
    return first;
}

int PopupMenu::Show(HWND owner, HWND button) {
    RECT rect = {};
    GetWindowRect(button, &rect);
    TPMPARAMS keepClear = {sizeof(keepClear), rect};
    return TrackPopupMenuEx(m_menu.Get(), TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON | TPM_VERTICAL, rect.left,
                            rect.bottom, owner, &keepClear) -
           1;
}

std::wstring MenuText(std::wstring_view name) {
    std::wstring text;
    for (const wchar_t unit : name) {
        if (unit == L'&') text += L'&';
        text += unit == L'\t' ? L' ' : unit;
    }
    return text;
}

}  // namespace Ui
