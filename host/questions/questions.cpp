#include "host/questions/questions.h"

#include "host/app/host_text.h"
#include "host/contract/host_boundary.h"

namespace QVHost {

void Questions::Record(const std::wstring& caption, const std::wstring& text, const std::wstring& answer) {
    m_output.Note(L"[question] " + OnOneLine(caption) + L": " + OnOneLine(text) + L" -> " + OnOneLine(answer));
}

uint32_t Questions::Box(const BoxQuestion& question) {
    m_output.Flush();
    const uint32_t button = m_answers->AnswerBox(question);
    Record(question.caption, question.text, WordOfButton(button));
    return button;
}

std::optional<uint32_t> Questions::Choice(const ChoiceQuestion& question) {
    m_output.Flush();
    std::optional<uint32_t> position = m_answers->Choose(question);
    if (position && *position >= question.choices.size()) position.reset();
    Record(question.title, question.prompt, position ? question.choices[*position] : L"cancel");
    return position;
}

std::optional<std::wstring> Questions::Input(const InputQuestion& question, size_t longest) {
    m_output.Flush();
    std::optional<std::wstring> text = m_answers->Enter(question);
    if (text && text->size() > longest) {
        m_output.Note(L"[note] the text entered is longer than " + std::to_wstring(longest) +
                      L" units; the input is cancelled");
        text.reset();
    }
    Record(L"Input", question.prompt, text ? *text : L"cancel");
    return text;
}

bool ChoiceList::AddChoice(const wchar_t* text) {
    return Guarded(false, [&] {
        if (!text) return false;
        m_choices.emplace_back(text);
        return true;
    });
}

uint32_t ChoiceList::GetCount() {
    return static_cast<uint32_t>(m_choices.size());
}

const wchar_t* ChoiceList::GetChoice(uint32_t index) {
    return index < m_choices.size() ? m_choices[index].c_str() : nullptr;
}

void ChoiceList::Release() {
    GuardedCall([&] { m_shelf.Remove(this); });
}

}  // namespace QVHost
