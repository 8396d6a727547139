// dialog_template.h - a dialog's layout built in memory: the program has few dialogs, and so needs no resource file.
#pragma once

#include <initializer_list>
#include <iterator>
#include <vector>

#include "win32/windows.h"

namespace QVHost {

/// Class numbers of dialog templates.
namespace ControlClass {
inline constexpr WORD Button = 0x0080;
inline constexpr WORD Edit = 0x0081;
inline constexpr WORD Static = 0x0082;
inline constexpr WORD List = 0x0083;
}  // namespace ControlClass

/// Sizes are in dialog units. Controls are visible and have no text yet.
struct DialogControl {
    WORD id;
    WORD classNumber;
    DWORD style;
    short x, y, width, height;
};

class DialogTemplate {
public:
    DialogTemplate(short width, short height, std::initializer_list<DialogControl> controls) {
        AddDouble(WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_CENTER | DS_SHELLFONT);
        AddDouble(0);
        m_words.push_back(static_cast<WORD>(controls.size()));
        AddPlace(0, 0, width, height);
        m_words.insert(m_words.end(), 3, 0);  // no menu, the usual class, the caption comes later
        m_words.push_back(kPoints);
        m_words.insert(m_words.end(), std::begin(kFont), std::end(kFont));
        for (const DialogControl& control : controls) AddControl(control);
    }
    const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(m_words.data()); }

private:
    /// The font that the system's own dialogs have; sizes of dialogs follow from it.
    static constexpr WORD kPoints = 8;
    static constexpr wchar_t kFont[] = L"MS Shell Dlg 2";

    void AddDouble(DWORD value) {
        m_words.push_back(LOWORD(value));
        m_words.push_back(HIWORD(value));
    }
    void AddPlace(short x, short y, short width, short height) {
        for (const short value : {x, y, width, height}) m_words.push_back(static_cast<WORD>(value));
    }
    void AddControl(const DialogControl& control) {
        if (m_words.size() % 2 != 0) m_words.push_back(0);  // each control begins at a multiple of 4 bytes
        AddDouble(WS_CHILD | WS_VISIBLE | control.style);
        AddDouble(0);
        AddPlace(control.x, control.y, control.width, control.height);
        m_words.push_back(control.id);
        m_words.push_back(0xFFFF);
        m_words.push_back(control.classNumber);
        m_words.insert(m_words.end(), 2, 0);  // no text, no data
    }

    std::vector<WORD> m_words;
};

}  // namespace QVHost
