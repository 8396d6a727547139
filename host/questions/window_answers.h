// window_answers.h - asks a person in windows of the system, above the window of this thread that is in use.
#pragma once

#include "host/questions/answers.h"

namespace QVHost {

class WindowAnswers final : public IAnswers {
public:
    uint32_t AnswerBox(const BoxQuestion& question) override;
    std::optional<uint32_t> Choose(const ChoiceQuestion& question) override;
    std::optional<std::wstring> Enter(const InputQuestion& question) override;
};

}  // namespace QVHost
