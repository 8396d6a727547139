#include "fileutils/find_replace/confirm_replace_dlg.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "fileutils/fileutils_resource.h"
#include "fileutils/fileutils_texts.h"
#include "ui/controls.h"
#include "win32/code_page.h"
#include "win32/text.h"

namespace FileUtils {
namespace {

using namespace Ui;

using QVUtils::EncodingKind;
namespace Answer = QVFindAndReplace::Answer;

constexpr size_t kBeforeMatch = 60;  // units of the match's line that are shown before it
constexpr size_t kAfterMatch = 120;  // and after it
constexpr size_t kLongestMatch = 400;
constexpr size_t kLongestLine = 200;  // of the lines around it
constexpr size_t kLongestReplacement = 4000;
constexpr wchar_t kObjectOfWindow[] = L"QVUtils.ConfirmReplace";
constexpr wchar_t kEllipsis = L'\u2026';

constexpr Anchor kConfirmAnchors[] = {
    {IDC_MATCH_FILE, 0, 0, 100, 0},
    {IDC_MATCH_CONTEXT, 0, 0, 100, 60},
    {IDC_MATCH_REPLACEMENT_LABEL, 0, 60, 100, 60},
    {IDC_MATCH_REPLACEMENT, 0, 60, 100, 100},
    {IDOK, 0, 100, 0, 100},
    {IDC_ANSWER_REPLACE_ALL, 0, 100, 0, 100},
    {IDC_ANSWER_FIND_NEXT, 0, 100, 0, 100},
    {IDC_ANSWER_SKIP_FILE, 0, 100, 0, 100},
    {IDCANCEL, 0, 100, 0, 100},
    {IDC_SWITCH_UTF8, 100, 100, 100, 100},
};

struct AnswerRow {
    int button;
    uint32_t answer;
};
constexpr AnswerRow kAnswers[] = {
    {IDOK, Answer::Replace},
    {IDC_ANSWER_REPLACE_ALL, Answer::ReplaceAll},
    {IDC_ANSWER_FIND_NEXT, Answer::FindNext},
    {IDC_ANSWER_SKIP_FILE, kSkipFile},
    {IDCANCEL, Answer::Cancel},
};

/// A cut at `at` would leave half a character: the cut one unit earlier does not.
size_t CutBefore(std::wstring_view text, size_t at) {
    return at > 0 && at < text.size() && Win32::IsLowSurrogate(text[at]) ? at - 1 : at;
}

std::wstring Head(std::wstring_view text, size_t longest) {
    if (text.size() <= longest) return std::wstring(text);
    return std::wstring(text.substr(0, CutBefore(text, longest))) + kEllipsis;
}

std::wstring Tail(std::wstring_view text, size_t longest) {
    if (text.size() <= longest) return std::wstring(text);
    return kEllipsis + std::wstring(text.substr(CutBefore(text, text.size() - longest)));
}

/// The texts as they are to be read, whole.
MatchView Decoded(const ConfirmQuestion& question, bool asUtf8) {
    if (question.kind == EncodingKind::Utf16 || !asUtf8)
        return {question.context, question.match.contextOffset, question.match.contextLength, question.replacement};
    const std::string_view raw = question.rawContext;
    const size_t offset = std::min<size_t>(question.rawOffset, raw.size());
    const auto decode = [](std::string_view bytes) { return Win32::FromCodePage(bytes, Win32::kUtf8CodePage); };
    MatchView view;
    view.context = decode(raw.substr(0, offset));
    view.matchOffset = view.context.size();
    const std::wstring match = decode(raw.substr(offset, question.rawLength));
    view.matchLength = match.size();
    view.context += match;
    if (raw.size() - offset > question.rawLength) view.context += decode(raw.substr(offset + question.rawLength));
    view.replacement = decode(question.rawReplacement);
    return view;
}

/// Adds `lines` (parts between CR LF), each cut at its end.
void AddLines(std::wstring& text, std::wstring_view lines) {
    while (!lines.empty()) {
        const size_t end = std::min(lines.find(L"\r\n"), lines.size());
        text += Head(lines.substr(0, end), kLongestLine);
        if (end == lines.size()) return;
        text += L"\r\n";
        lines.remove_prefix(end + 2);
    }
}

}  // namespace

MatchView ViewOf(const ConfirmQuestion& question, bool asUtf8) {
    const MatchView whole = Decoded(question, asUtf8);
    const std::wstring_view context = whole.context;
    const size_t start = std::min(whole.matchOffset, context.size());
    const size_t end = start + std::min(whole.matchLength, context.size() - start);
    const size_t lineBreak = context.substr(0, start).rfind(L"\r\n");
    const size_t lineStart = lineBreak == std::wstring_view::npos ? 0 : lineBreak + 2;
    const size_t lineEnd = std::min(context.find(L"\r\n", end), context.size());

    MatchView view;
    AddLines(view.context, context.substr(0, lineStart));
    view.context += Tail(context.substr(lineStart, start - lineStart), kBeforeMatch);
    view.matchOffset = view.context.size();
    view.context += Head(context.substr(start, end - start), kLongestMatch);
    view.matchLength = view.context.size() - view.matchOffset;
    view.context += Head(context.substr(end, lineEnd - end), kAfterMatch);
    AddLines(view.context, context.substr(lineEnd));
    view.replacement = Head(whole.replacement, kLongestReplacement);
    return view;
}

ConfirmReplaceDlg::ConfirmReplaceDlg(HWND mainWindow) : Dialog(IDD_CONFIRM_REPLACE), m_mainWindow(mainWindow) {}

ConfirmReplaceDlg::~ConfirmReplaceDlg() {
    Close();
}

uint32_t ConfirmReplaceDlg::Ask(const ConfirmQuestion& question) {
    // Pressed while the last question was still to be seen.
    TakeInput();
    // Each file begins as what it was found to be.
    if (!GetWindow() || question.fileNumber != m_shownFile) m_showsUtf8 = question.kind == EncodingKind::Utf8;
    m_question = question;
    if (!GetWindow()) Open();
    ShowQuestion();
    const uint32_t answer = WaitForAnswer();
    if (answer == Answer::ReplaceAll || answer == Answer::Cancel) {
        Close();
        m_pressed.clear();
    }
    return answer;
}

void ConfirmReplaceDlg::Close() {
    TakeInput();
    m_hook.Reset();
    // First: a window that cannot be activated would leave the front to another program.
    EnableOthers();
    if (GetWindow()) End(IDCANCEL);
}

bool ConfirmReplaceDlg::IsCancelled() {
    TakeInput();
    return !m_pressed.empty() && m_pressed.front().answer == Answer::Cancel;
}

void ConfirmReplaceDlg::Open() {
    const HWND active = GetActiveWindow();
    const HWND owner = active ? active : m_mainWindow;
    ShowModeless(owner);
    SetPropW(GetWindow(), kObjectOfWindow, this);
    m_hook.Reset(SetWindowsHookExW(WH_GETMESSAGE, FilterMessages, nullptr, GetCurrentThreadId()));
    DisableOthers(owner);
    ShowWindow(GetWindow(), SW_SHOW);
    SetFocus(Item(IDOK));
}

void ConfirmReplaceDlg::DisableOthers(HWND owner) {
    const auto disable = [&](HWND window) {
        if (!IsWindow(window) || !IsWindowEnabled(window)) return;
        m_disabled.push_back(window);
        EnableWindow(window, FALSE);
    };
    for (HWND window = owner; window; window = ::GetWindow(window, GW_OWNER)) disable(GetAncestor(window, GA_ROOT));
    disable(m_mainWindow);
}

void ConfirmReplaceDlg::EnableOthers() noexcept {
    for (const HWND window : m_disabled) EnableWindow(window, TRUE);
    m_disabled.clear();
}

bool ConfirmReplaceDlg::OnInit() {
    MakeResizable(kConfirmAnchors);
    if (m_place)
        MoveWindow(GetWindow(), m_place->left, m_place->top, m_place->right - m_place->left,
                   m_place->bottom - m_place->top, FALSE);
    SetFocus(Item(IDOK));
    return false;
}

void ConfirmReplaceDlg::ShowQuestion() {
    m_shownFile = m_question.fileNumber;
    SetTextOf(Item(IDC_MATCH_FILE_LABEL), Say()(Text::FileOfFiles, {m_question.fileNumber, m_question.fileCount}));
    SetTextOf(Item(IDC_MATCH_FILE), m_question.fileName);
    // Of a path that is too long, its end says more.
    SendMessageW(Item(IDC_MATCH_FILE), EM_SETSEL, m_question.fileName.size(),
                 static_cast<LPARAM>(m_question.fileName.size()));
    SendMessageW(Item(IDC_MATCH_FILE), EM_SCROLLCARET, 0, 0);
    SetTextOf(Item(IDC_MATCH_CONTEXT_LABEL),
              Say()(Text::MatchInLine, {m_question.matchNumber, m_question.match.startLine + 1}));
    // UTF-16 can be read in one way only.
    EnableWindow(Item(IDC_SWITCH_UTF8), m_question.kind != EncodingKind::Utf16);
    ShowMatch();
}

void ConfirmReplaceDlg::ShowMatch() {
    const MatchView view = ViewOf(m_question, m_showsUtf8);
    const HWND context = Item(IDC_MATCH_CONTEXT);
    SetTextOf(context, view.context);
    // From its end to its start: the caret goes to the start, which is what must be in sight.
    SendMessageW(context, EM_SETSEL, view.matchOffset + view.matchLength, static_cast<LPARAM>(view.matchOffset));
    SendMessageW(context, EM_SCROLLCARET, 0, 0);
    SetTextOf(Item(IDC_MATCH_REPLACEMENT), WithEditBreaks(view.replacement));
}

uint32_t ConfirmReplaceDlg::WaitForAnswer() {
    for (;;) {
        if (const auto answer = NextAnswer()) return *answer;
        if (const std::exception_ptr failure = std::exchange(m_failure, nullptr)) std::rethrow_exception(failure);
        if (!GetWindow()) return Answer::Cancel;
        MSG message = {};
        const BOOL isMessage = GetMessageW(&message, nullptr, 0, 0);
        // Not ours to swallow.
        if (isMessage == 0) PostQuitMessage(static_cast<int>(message.wParam));
        if (isMessage <= 0) return Answer::Cancel;
        if (HandleKey(message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

std::optional<uint32_t> ConfirmReplaceDlg::NextAnswer() {
    while (!m_pressed.empty()) {
        const Pressed pressed = m_pressed.front();
        m_pressed.pop_front();
        if (pressed.answer != kSkipFile || pressed.fileNumber == m_question.fileNumber) return pressed.answer;
    }
    return std::nullopt;
}

void ConfirmReplaceDlg::TakeInput() {
    struct Range {
        UINT first, last;
    };
    for (const Range range : {Range{WM_KEYFIRST, WM_KEYLAST}, Range{WM_MOUSEFIRST, WM_MOUSELAST}}) {
        MSG message = {};
        while (GetWindow() && PeekMessageW(&message, GetWindow(), range.first, range.last, PM_REMOVE))
            if (!HandleKey(message)) DispatchMessageW(&message);
    }
}

bool ConfirmReplaceDlg::HandleKey(MSG& message) {
    const bool isKey = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
    const HWND window = GetWindow();
    if (!isKey || !window || (message.hwnd != window && !IsChild(window, message.hwnd))) return false;
    bool isDone = true;
    m_pressesFocused = message.message == WM_KEYDOWN || message.message == WM_KEYUP;
    // A letter without Alt presses nothing.
    if (message.message == WM_CHAR)
        DispatchMessageW(&message);
    else
        isDone = IsDialogMessageW(window, &message) != FALSE;
    m_pressesFocused = false;
    return isDone;
}

LRESULT CALLBACK ConfirmReplaceDlg::FilterMessages(int code, WPARAM wParam, LPARAM lParam) noexcept {
    auto* const message = reinterpret_cast<MSG*>(lParam);
    if (code == HC_ACTION && wParam == PM_REMOVE && message->hwnd) {
        const HWND root = GetAncestor(message->hwnd, GA_ROOT);
        auto* const self = static_cast<ConfirmReplaceDlg*>(GetPropW(root, kObjectOfWindow));
        if (self && self->HandleKey(*message)) message->message = WM_NULL;
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

bool ConfirmReplaceDlg::OnCommand(int id, int) {
    if (id == IDC_SWITCH_UTF8) {
        m_showsUtf8 = !m_showsUtf8;
        ShowMatch();
        return true;
    }
    const auto* const row = std::ranges::find(kAnswers, id, &AnswerRow::button);
    if (row == std::end(kAnswers)) return false;
    m_pressed.push_back({row->answer, m_shownFile});
    // Enter replaces, whatever was clicked or pressed with Alt before; only who goes to another button presses that.
    if (!m_pressesFocused) SendMessageW(GetWindow(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(IDOK)), TRUE);
    return true;
}

bool ConfirmReplaceDlg::OnMessage(UINT message, WPARAM, LPARAM) {
    if (message != WM_DESTROY) return false;
    RECT rect = {};
    if (GetWindowRect(GetWindow(), &rect)) m_place = rect;
    RemovePropW(GetWindow(), kObjectOfWindow);
    EnableOthers();
    return false;
}

}  // namespace FileUtils
