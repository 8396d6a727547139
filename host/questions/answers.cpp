#include "host/questions/answers.h"

#include <algorithm>
#include <cwchar>

#include "host/app/host_text.h"
#include "win32/text.h"

namespace QVHost {
namespace {

constexpr Button kOk = {IDOK, L"ok"};
constexpr Button kCancel = {IDCANCEL, L"cancel"};
constexpr Button kAbort = {IDABORT, L"abort"};
constexpr Button kRetry = {IDRETRY, L"retry"};
constexpr Button kIgnore = {IDIGNORE, L"ignore"};
constexpr Button kYes = {IDYES, L"yes"};
constexpr Button kNo = {IDNO, L"no"};
constexpr Button kTryAgain = {IDTRYAGAIN, L"try-again"};
constexpr Button kContinue = {IDCONTINUE, L"continue"};
constexpr Button kAllButtons[] = {kOk, kCancel, kAbort, kRetry, kIgnore, kYes, kNo, kTryAgain, kContinue};

constexpr const wchar_t* kCancelWord = L"cancel";

const Button* FindButton(const std::vector<Button>& buttons, const std::wstring& word) {
    const auto found =
        std::ranges::find_if(buttons, [&](const Button& button) { return EqualIgnoringCase(button.word, word); });
    return found == buttons.end() ? nullptr : &*found;
}

std::wstring ListOfWords(const std::vector<Button>& buttons) {
    std::wstring words;
    for (const Button& button : buttons) words += (words.empty() ? L"" : L"/") + std::wstring(button.word);
    return words;
}

}  // namespace

std::vector<Button> ButtonsOf(uint32_t style) {
    switch (style & MB_TYPEMASK) {
        case MB_OKCANCEL: return {kOk, kCancel};
        case MB_ABORTRETRYIGNORE: return {kAbort, kRetry, kIgnore};
        case MB_YESNOCANCEL: return {kYes, kNo, kCancel};
        case MB_YESNO: return {kYes, kNo};
        case MB_RETRYCANCEL: return {kRetry, kCancel};
        case MB_CANCELTRYCONTINUE: return {kCancel, kTryAgain, kContinue};
        default: return {kOk};
    }
}

Button SafeButton(uint32_t style) {
    const std::vector<Button> buttons = ButtonsOf(style);
    for (const Button& safe : {kNo, kCancel, kAbort})
        if (FindButton(buttons, safe.word)) return safe;
    return buttons.front();
}

std::wstring WordOfButton(uint32_t id) {
    const auto* button = std::ranges::find(kAllButtons, id, &Button::id);
    return button == std::end(kAllButtons) ? L"" : button->word;
}

std::optional<uint32_t> FindChoice(const std::vector<std::wstring>& choices, const std::wstring& answer) {
    std::wstring spaced = answer;
    std::ranges::replace(spaced, L'-', L' ');
    for (const std::wstring& wanted : {answer, spaced})
        for (size_t at = 0; at < choices.size(); ++at)
            if (EqualIgnoringCase(choices[at], wanted)) return static_cast<uint32_t>(at);
    return std::nullopt;
}

uint32_t SafeAnswers::AnswerBox(const BoxQuestion& question) {
    return SafeButton(question.style).id;
}
std::optional<uint32_t> SafeAnswers::Choose(const ChoiceQuestion&) {
    return std::nullopt;
}
std::optional<std::wstring> SafeAnswers::Enter(const InputQuestion&) {
    return std::nullopt;
}

ScriptedAnswers::ScriptedAnswers(Output& output, std::vector<std::wstring> answers)
    : m_output(output), m_answers(std::move(answers)) {}

const std::wstring& ScriptedAnswers::Next() {
    const size_t at = std::min(m_next++, m_answers.size() - 1);
    return m_answers[at];
}

uint32_t ScriptedAnswers::AnswerBox(const BoxQuestion& question) {
    const std::vector<Button> buttons = ButtonsOf(question.style);
    if (buttons.size() == 1) return buttons.front().id;
    const std::wstring& answer = Next();
    if (const Button* button = FindButton(buttons, answer)) return button->id;
    const Button safe = SafeButton(question.style);
    m_output.Note(L"[note] \"" + answer + L"\" is no button of the next question (" + ListOfWords(buttons) +
                  L"); the answer is " + safe.word);
    return safe.id;
}

std::optional<uint32_t> ScriptedAnswers::Choose(const ChoiceQuestion& question) {
    const std::wstring& answer = Next();
    if (EqualIgnoringCase(answer, kCancelWord)) return std::nullopt;
    const std::optional<uint32_t> position = FindChoice(question.choices, answer);
    if (!position) m_output.Note(L"[note] \"" + answer + L"\" is none of the next question's choices; it is cancelled");
    return position;
}

std::optional<std::wstring> ScriptedAnswers::Enter(const InputQuestion&) {
    const std::wstring& answer = Next();
    if (EqualIgnoringCase(answer, kCancelWord)) return std::nullopt;
    return answer;
}

ConsoleAnswers::ConsoleAnswers(Output& output, ReadLine readLine) : m_output(output), m_readLine(std::move(readLine)) {}

uint32_t ConsoleAnswers::AnswerBox(const BoxQuestion& question) {
    const std::vector<Button> buttons = ButtonsOf(question.style);
    if (buttons.size() == 1) return buttons.front().id;
    m_output.Note(question.caption + L"\n" + question.text);
    for (;;) {
        m_output.Prompt(ListOfWords(buttons) + L"? ");
        const std::optional<std::wstring> line = m_readLine();
        if (!line) return SafeButton(question.style).id;
        if (const Button* button = FindButton(buttons, *line)) return button->id;
    }
}

std::optional<uint32_t> ConsoleAnswers::Choose(const ChoiceQuestion& question) {
    m_output.Note(question.title + L"\n" + question.prompt);
    for (size_t at = 0; at < question.choices.size(); ++at)
        m_output.Note(L"  " + std::to_wstring(at + 1) + L"  " + question.choices[at]);
    for (;;) {
        m_output.Prompt(L"1 to " + std::to_wstring(question.choices.size()) + L", nothing to cancel: ");
        const std::optional<std::wstring> line = m_readLine();
        if (!line || line->empty() || EqualIgnoringCase(*line, kCancelWord)) return std::nullopt;
        const uint32_t number = Win32::WholeNumber<uint32_t>(*line).value_or(0);
        if (number >= 1 && number <= question.choices.size()) return number - 1;
        if (const auto position = FindChoice(question.choices, *line)) return position;
    }
}

std::optional<std::wstring> ConsoleAnswers::Enter(const InputQuestion& question) {
    m_output.Prompt(question.prompt + L" [" + question.proposed + L"]: ");
    std::optional<std::wstring> line = m_readLine();
    // The proposal stands in brackets, so nothing entered means that it is right.
    if (line && line->empty()) return question.proposed;
    return line;
}

}  // namespace QVHost
