// questions.h - asks through IAnswers and leaves a line on standard error for each question and its answer:
// "[question] CAPTION: TEXT -> ANSWER".
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/contract/shelf.h"
#include "host/questions/answers.h"
#include "sdk/host_objects.h"

namespace QVHost {

class Questions {
public:
    Questions(Output& output, std::unique_ptr<IAnswers> answers) : m_output(output), m_answers(std::move(answers)) {}

    uint32_t Box(const BoxQuestion& question);
    std::optional<uint32_t> Choice(const ChoiceQuestion& question);
    /// A text of more than `longest` units counts as cancelled, with a note: cut short it would be another text.
    std::optional<std::wstring> Input(const InputQuestion& question, size_t longest);

private:
    void Record(const std::wstring& caption, const std::wstring& text, const std::wstring& answer);

    Output& m_output;
    std::unique_ptr<IAnswers> m_answers;
};

/// The entries of a choice dialog, as an extension fills them.
class ChoiceList final : public Quorvane::SDK::IChoiceList {
public:
    explicit ChoiceList(Shelf<ChoiceList>& shelf) : m_shelf(shelf) {}

    bool AddChoice(const wchar_t* text) override;
    uint32_t GetCount() override;
    const wchar_t* GetChoice(uint32_t index) override;
    void Release() override;

    const std::vector<std::wstring>& Choices() const { return m_choices; }

private:
    Shelf<ChoiceList>& m_shelf;
    std::vector<std::wstring> m_choices;
};

}  // namespace QVHost
