#include "ui/controls.h"

#include <commctrl.h>
#include <algorithm>
#include <cstring>
#include <limits>

#include "win32/handle.h"
#include "win32/text.h"
#include "win32/window_text.h"

namespace Ui {
namespace {

constexpr WPARAM kListMargin = 8;  // pixels

struct GlobalMemoryTraits {
    using Raw = HGLOBAL;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { GlobalFree(raw); }
};

/// Finds the widest of some texts, in pixels, as a control shows them.
class TextMeter {
public:
    explicit TextMeter(HWND control)
        : m_control(control),
          m_context(GetDC(control)),
          m_fontBefore(SelectObject(m_context, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)))) {}
    ~TextMeter() {
        SelectObject(m_context, m_fontBefore);
        ReleaseDC(m_control, m_context);
    }
    TextMeter(const TextMeter&) = delete;
    TextMeter& operator=(const TextMeter&) = delete;

    void Add(std::wstring_view text) {
        SIZE size = {};
        GetTextExtentPoint32W(m_context, text.data(), static_cast<int>(text.size()), &size);
        m_widest = std::max(m_widest, size.cx);
    }
    LONG Widest() const { return m_widest; }

private:
    HWND m_control;
    HDC m_context;
    HGDIOBJ m_fontBefore;
    LONG m_widest = 0;
};

}  // namespace

void SetTextOf(HWND control, const std::wstring& text) {
    if (Win32::WindowText(control) != text) SetWindowTextW(control, text.c_str());
}

bool IsChecked(HWND box) {
    return SendMessageW(box, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void SetChecked(HWND box, bool isChecked) {
    SendMessageW(box, BM_SETCHECK, isChecked ? BST_CHECKED : BST_UNCHECKED, 0);
}

bool SelectAllByKey(const MSG& message) {
    constexpr WPARAM kCtrlA = 1;  // as a character
    const bool isKey = message.message == WM_CHAR && message.wParam == kCtrlA;
    if (!isKey || !(SendMessageW(message.hwnd, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL)) return false;
    SendMessageW(message.hwnd, EM_SETSEL, 0, -1);
    return true;
}

void SetBoxes(HWND dialog, std::span<const OptionBox> boxes, uint32_t options) {
    for (const OptionBox& box : boxes) SetChecked(GetDlgItem(dialog, box.control), (options & box.bit) != 0);
}

uint32_t BitsOfBoxes(HWND dialog, std::span<const OptionBox> boxes) {
    uint32_t bits = 0;
    for (const OptionBox& box : boxes)
        if (IsChecked(GetDlgItem(dialog, box.control))) bits |= box.bit;
    return bits;
}

void FillCombo(HWND combo, const HostTexts& texts, std::span<const ListEntry> entries, uint32_t options,
               uint32_t otherwise) {
    const bool isKnown = std::ranges::any_of(entries, [&](const ListEntry& entry) { return options & entry.bit; });
    const uint32_t wanted = isKnown ? options : otherwise;
    bool isSelected = false;
    TextMeter meter(combo);
    for (const ListEntry& entry : entries) {
        const wchar_t* const text = texts(entry.text);
        meter.Add(text);
        const LRESULT index = SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
        if (index < 0) continue;
        SendMessageW(combo, CB_SETITEMDATA, static_cast<WPARAM>(index), static_cast<LPARAM>(entry.bit));
        if (isSelected || !(wanted & entry.bit)) continue;
        SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
        isSelected = true;
    }
    // In another language the entries may be longer than the field: the open list shows them whole.
    const int margin = GetSystemMetrics(SM_CXVSCROLL);
    SendMessageW(combo, CB_SETDROPPEDWIDTH, static_cast<WPARAM>(meter.Widest()) + static_cast<WPARAM>(margin), 0);
}

uint32_t SelectedBit(HWND combo) {
    const LRESULT index = SendMessageW(combo, CB_GETCURSEL, 0, 0);
    if (index < 0) return 0;
    return static_cast<uint32_t>(SendMessageW(combo, CB_GETITEMDATA, static_cast<WPARAM>(index), 0));
}

void FillList(HWND list, std::span<const std::wstring> paths) {
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    TextMeter meter(list);
    for (const std::wstring& path : paths) {
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(path.c_str()));
        meter.Add(path);
    }
    SendMessageW(list, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(meter.Widest()) + kListMargin, 0);
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
}

std::wstring WithEditBreaks(std::wstring_view text) {
    std::wstring result;
    result.reserve(text.size());
    for (size_t at = 0; at < text.size(); ++at) {
        const bool isBreak = text[at] == L'\r' || text[at] == L'\n';
        if (isBreak)
            result += L"\r\n";
        else
            result += text[at];
        if (text[at] == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n') ++at;
    }
    return result;
}

std::optional<uint32_t> NumberFromText(std::wstring_view text) {
    const auto isBlank = [](wchar_t unit) { return unit == L' ' || unit == L'\t'; };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text.empty() ? 0 : Win32::WholeNumber<uint32_t>(text);
}

void EnableWithLabel(HWND control, bool isEnabled) {
    // A key that leads to a disabled field would seem dead, so its label is disabled with it.
    EnableWindow(GetWindow(control, GW_HWNDPREV), isEnabled);
    EnableWindow(control, isEnabled);
}

namespace {

constexpr int kUnit = 16;
constexpr wchar_t kSample[] = L"abcdefghijklmnopqrstuvwxyz";

}  // namespace

bool IsListView(HWND window) {
    wchar_t name[32] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return std::wstring_view(name) == WC_LISTVIEWW;
}

void AddColumns(HWND list, std::span<const ListColumn> columns, const Quorvane::SDK::Words& say) {
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    const LRESULT sample = SendMessageW(list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(kSample));
    const int character = std::max(static_cast<int>(sample) / 26, 1);
    int index = 0;
    for (const ListColumn& column : columns) {
        std::wstring title = say(column.title);
        LVCOLUMNW added = {};
        added.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        added.pszText = title.data();
        added.cx = column.width * character / kUnit;
        added.iSubItem = index;
        SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(index++), reinterpret_cast<LPARAM>(&added));
    }
}

void SetListText(HWND list, int row, int column, const std::wstring& text) {
    std::wstring copy = text;
    LVITEMW item = {};
    item.mask = LVIF_TEXT;
    item.iItem = row;
    item.iSubItem = column;
    item.pszText = copy.data();
    SendMessageW(list, column == 0 ? LVM_INSERTITEMW : LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

int SelectedRow(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

int FocusedRow(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
}

void SelectRow(HWND list, int row) {
    LVITEMW state = {};
    state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&state));
    state.state = state.stateMask;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&state));
    SendMessageW(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
}

void FillItemText(LPWSTR buffer, int capacity, const std::wstring& text) {
    if (!buffer || capacity <= 0) return;
    const size_t length = std::min(text.size(), static_cast<size_t>(capacity) - 1);
    std::copy_n(text.data(), length, buffer);
    buffer[length] = L'\0';
}

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

void PutOnClipboard(HWND owner, const std::wstring& text) {
    const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
    Win32::UniqueHandle<GlobalMemoryTraits> memory(GlobalAlloc(GMEM_MOVEABLE, bytes));
    void* const target = memory ? GlobalLock(memory.Get()) : nullptr;
    if (!target || !OpenClipboard(owner)) return;
    std::memcpy(target, text.c_str(), bytes);
    GlobalUnlock(memory.Get());
    EmptyClipboard();
    if (SetClipboardData(CF_UNICODETEXT, memory.Get())) memory.Release();  // it is the clipboard's now
    CloseClipboard();
}

}  // namespace Ui
