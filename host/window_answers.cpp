#include "host/window_answers.h"

namespace QVHost {

uint32_t WindowAnswers::AnswerBox(const BoxQuestion& question) {
    const int button = MessageBoxW(nullptr, question.text.c_str(), question.caption.c_str(), question.style);
    // Without a display there is no box, and nobody who could answer.
    return button > 0 ? static_cast<uint32_t>(button) : SafeButton(question.style).id;
}

std::optional<uint32_t> WindowAnswers::Choose(const ChoiceQuestion&) {
    return std::nullopt;
}
std::optional<std::wstring> WindowAnswers::Enter(const InputQuestion&) {
    return std::nullopt;
}

}  // namespace QVHost
