#include "host/questions/answers.h"

#include "host/contract/host_boundary.h"
#include "host/questions/dialog_template.h"
#include "win32/window_text.h"

namespace QVHost {
namespace {

constexpr WORD kPromptId = 100;
constexpr WORD kFieldId = 101;

/// A dialog with a prompt, one field and two buttons.
DialogTemplate Layout(WORD fieldClass, DWORD fieldStyle, short fieldHeight) {
    const auto buttons = static_cast<short>(42 + fieldHeight);
    return DialogTemplate(240, static_cast<short>(buttons + 20),
                          {{kPromptId, ControlClass::Static, SS_LEFT | SS_NOPREFIX, 8, 8, 224, 24},
                           {kFieldId, fieldClass, WS_BORDER | WS_TABSTOP | fieldStyle, 8, 34, 224, fieldHeight},
                           {IDOK, ControlClass::Button, BS_DEFPUSHBUTTON | WS_TABSTOP, 126, buttons, 50, 14},
                           {IDCANCEL, ControlClass::Button, BS_PUSHBUTTON | WS_TABSTOP, 182, buttons, 50, 14}});
}

/// What the dialog shows, and what it gives back.
struct DialogState {
    const std::wstring& title;
    const std::wstring& prompt;
    const DialogWords& words;
    const std::vector<std::wstring>* choices;  // null: the field is an edit
    uint32_t position;
    std::wstring text;
};

void Fill(HWND dialog, const DialogState& state) {
    SetWindowTextW(dialog, state.title.c_str());
    SetDlgItemTextW(dialog, kPromptId, state.prompt.c_str());
    SetDlgItemTextW(dialog, IDOK, state.words.ok.c_str());
    SetDlgItemTextW(dialog, IDCANCEL, state.words.cancel.c_str());
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
    state.text = Win32::WindowText(field);
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
    return DialogBoxIndirectParamW(GetModuleHandleW(nullptr), layout.Get(), GetActiveWindow(), OnMessage,
                                   reinterpret_cast<LPARAM>(&state)) == IDOK;
}

}  // namespace

uint32_t WindowAnswers::AnswerBox(const BoxQuestion& question) {
    const int button = MessageBoxW(GetActiveWindow(), question.text.c_str(), question.caption.c_str(), question.style);
    // Without a display there is no box, and nobody who could answer.
    return button > 0 ? static_cast<uint32_t>(button) : SafeButton(question.style).id;
}

std::optional<uint32_t> WindowAnswers::Choose(const ChoiceQuestion& question) {
    DialogState state = {question.title, question.prompt, question.words, &question.choices, question.position, {}};
    if (!Show(Layout(ControlClass::List, LBS_NOINTEGRALHEIGHT | WS_VSCROLL, 60), state)) return std::nullopt;
    return state.position;
}

std::optional<std::wstring> WindowAnswers::Enter(const InputQuestion& question) {
    DialogState state = {question.words.title, question.prompt, question.words, nullptr, 0, question.proposed};
    if (!Show(Layout(ControlClass::Edit, ES_AUTOHSCROLL, 14), state)) return std::nullopt;
    return state.text;
}

}  // namespace QVHost
