#include "host/window_answers.h"

#include "host/boundary.h"

namespace QVHost {
namespace {

constexpr WORD kPromptId = 100;
constexpr WORD kFieldId = 101;
constexpr WORD kStaticClass = 0x0082;  // class numbers of dialog templates
constexpr WORD kEditClass = 0x0081;
constexpr WORD kListClass = 0x0083;
constexpr WORD kButtonClass = 0x0080;

/// A dialog with a prompt, one field and two buttons, built in memory: the program has no other dialog, and so needs no
/// resource file. Sizes are in dialog units.
class DialogTemplate {
public:
    DialogTemplate(WORD fieldClass, DWORD fieldStyle, short fieldHeight) {
        const auto bottom = static_cast<short>(36 + fieldHeight);
        AddHeader(static_cast<short>(bottom + 26));
        AddControl(kPromptId, kStaticClass, SS_LEFT | SS_NOPREFIX, 8, 8, 224, 24);
        AddControl(kFieldId, fieldClass, WS_BORDER | WS_TABSTOP | fieldStyle, 8, 34, 224, fieldHeight);
        AddControl(IDOK, kButtonClass, BS_DEFPUSHBUTTON | WS_TABSTOP, 126, static_cast<short>(bottom + 6), 50, 14);
        AddControl(IDCANCEL, kButtonClass, BS_PUSHBUTTON | WS_TABSTOP, 182, static_cast<short>(bottom + 6), 50, 14);
    }
    const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(m_words.data()); }

private:
    void AddDouble(DWORD value) {
        m_words.push_back(LOWORD(value));
        m_words.push_back(HIWORD(value));
    }
    void AddPlace(short x, short y, short width, short height) {
        for (const short value : {x, y, width, height}) m_words.push_back(static_cast<WORD>(value));
    }
    void AddHeader(short height) {
        AddDouble(WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_CENTER);
        AddDouble(0);
        m_words.push_back(4);  // controls
        AddPlace(0, 0, 240, height);
        m_words.insert(m_words.end(), 3, 0);  // no menu, the usual class, the caption comes later
    }
    void AddControl(WORD id, WORD classNumber, DWORD style, short x, short y, short width, short height) {
        if (m_words.size() % 2 != 0) m_words.push_back(0);  // each control begins at a multiple of 4 bytes
        AddDouble(WS_CHILD | WS_VISIBLE | style);
        AddDouble(0);
        AddPlace(x, y, width, height);
        m_words.push_back(id);
        m_words.push_back(0xFFFF);
        m_words.push_back(classNumber);
        m_words.insert(m_words.end(), 2, 0);  // no text, no data
    }

    std::vector<WORD> m_words;
};

/// What the dialog shows, and what it gives back.
struct DialogState {
    const std::wstring& title;
    const std::wstring& prompt;
    const std::vector<std::wstring>* choices;  // null: the field is an edit
    uint32_t position;
    std::wstring text;
};

void Fill(HWND dialog, const DialogState& state) {
    SetWindowTextW(dialog, state.title.c_str());
    SetDlgItemTextW(dialog, kPromptId, state.prompt.c_str());
    SetDlgItemTextW(dialog, IDOK, L"OK");
    SetDlgItemTextW(dialog, IDCANCEL, L"Cancel");
    if (!state.choices) {
        SetDlgItemTextW(dialog, kFieldId, state.text.c_str());
        return;
    }
    for (const std::wstring& choice : *state.choices)
        SendDlgItemMessageW(dialog, kFieldId, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(choice.c_str()));
    SendDlgItemMessageW(dialog, kFieldId, LB_SETCURSEL, state.position, 0);
}

/// False when nothing is chosen: the dialog stays open then.
bool TakeOver(HWND dialog, DialogState& state) {
    const HWND field = GetDlgItem(dialog, kFieldId);
    if (state.choices) {
        const LRESULT position = SendMessageW(field, LB_GETCURSEL, 0, 0);
        state.position = static_cast<uint32_t>(position);
        return position != LB_ERR;
    }
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(field)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(field, text.data(), static_cast<int>(text.size()))));
    state.text = std::move(text);
    return true;
}

INT_PTR CALLBACK OnMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        GuardedCall([&] { Fill(dialog, *reinterpret_cast<const DialogState*>(lParam)); });
        return TRUE;
    }
    if (message != WM_COMMAND) return FALSE;
    auto& state = *reinterpret_cast<DialogState*>(GetWindowLongPtrW(dialog, DWLP_USER));
    const bool isAccepted = LOWORD(wParam) == IDOK && Guarded(false, [&] { return TakeOver(dialog, state); });
    if (!isAccepted && LOWORD(wParam) != IDCANCEL) return FALSE;
    EndDialog(dialog, isAccepted ? IDOK : IDCANCEL);
    return TRUE;
}

bool Show(const DialogTemplate& layout, DialogState& state) {
    return DialogBoxIndirectParamW(GetModuleHandleW(nullptr), layout.Get(), nullptr, OnMessage,
                                   reinterpret_cast<LPARAM>(&state)) == IDOK;
}

}  // namespace

uint32_t WindowAnswers::AnswerBox(const BoxQuestion& question) {
    const int button = MessageBoxW(nullptr, question.text.c_str(), question.caption.c_str(), question.style);
    // Without a display there is no box, and nobody who could answer.
    return button > 0 ? static_cast<uint32_t>(button) : SafeButton(question.style).id;
}

std::optional<uint32_t> WindowAnswers::Choose(const ChoiceQuestion& question) {
    DialogState state = {question.title, question.prompt, &question.choices, question.position, {}};
    if (!Show(DialogTemplate(kListClass, LBS_NOINTEGRALHEIGHT | WS_VSCROLL, 60), state)) return std::nullopt;
    return state.position;
}

std::optional<std::wstring> WindowAnswers::Enter(const InputQuestion& question) {
    DialogState state = {question.prompt, question.prompt, nullptr, 0, question.proposed};
    if (!Show(DialogTemplate(kEditClass, ES_AUTOHSCROLL, 14), state)) return std::nullopt;
    return state.text;
}

}  // namespace QVHost
