// answers.h - what a person would answer: to a message box, to a choice, to a request for a text. Everything that the
// host or an extension asks goes through IAnswers.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/app/output.h"
#include "win32/windows.h"

namespace QVHost {

struct BoxQuestion {
    std::wstring caption;
    std::wstring text;
    uint32_t style = 0;  // coded as MessageBoxW
};

/// What the windows of the host itself are made of, in the user's language.
struct DialogWords {
    std::wstring title = L"Input";  // of a question for a text
    std::wstring ok = L"OK";
    std::wstring cancel = L"Cancel";
};

struct ChoiceQuestion {
    std::wstring title;
    std::wstring prompt;
    std::vector<std::wstring> choices;
    uint32_t position = 0;  // of the choice proposed
    DialogWords words = {};
};

struct InputQuestion {
    std::wstring prompt;
    std::wstring proposed;
    DialogWords words = {};
};

class IAnswers {
public:
    virtual ~IAnswers() = default;
    /// A button of the box, coded as MessageBoxW.
    virtual uint32_t AnswerBox(const BoxQuestion& question) = 0;
    /// The position chosen; nothing when the choice was cancelled.
    virtual std::optional<uint32_t> Choose(const ChoiceQuestion& question) = 0;
    /// The text entered; nothing when the input was cancelled.
    virtual std::optional<std::wstring> Enter(const InputQuestion& question) = 0;
};

/// One button of a message box.
struct Button {
    uint32_t id;
    const wchar_t* word;  // what it is called in answers
};

/// The buttons that a style asks for; OK alone for a style that no box has.
std::vector<Button> ButtonsOf(uint32_t style);
/// The button that changes nothing: No, else Cancel, else what ends the matter.
Button SafeButton(uint32_t style);
/// "yes" for 6, and so on; "" for a number that is no button.
std::wstring WordOfButton(uint32_t id);
/// The position of the choice that reads as the answer says ("replace-all" also finds "Replace All").
std::optional<uint32_t> FindChoice(const std::vector<std::wstring>& choices, const std::wstring& answer);

/// Nobody is there: the safe button, choices and inputs cancelled.
class SafeAnswers final : public IAnswers {
public:
    uint32_t AnswerBox(const BoxQuestion& question) override;
    std::optional<uint32_t> Choose(const ChoiceQuestion& question) override;
    std::optional<std::wstring> Enter(const InputQuestion& question) override;
};

/// A list of answers, used up in order; the last one repeats. "cancel" cancels choices and inputs too. A box with one
/// button only uses up none. An answer that does not fit its question turns into the safe one, with a note.
class ScriptedAnswers final : public IAnswers {
public:
    /// `answers` has at least one.
    ScriptedAnswers(Output& output, std::vector<std::wstring> answers);
    uint32_t AnswerBox(const BoxQuestion& question) override;
    std::optional<uint32_t> Choose(const ChoiceQuestion& question) override;
    std::optional<std::wstring> Enter(const InputQuestion& question) override;

private:
    const std::wstring& Next();

    Output& m_output;
    std::vector<std::wstring> m_answers;
    size_t m_next = 0;
};

/// Asks on standard error and reads the answers by `readLine`, which gives nothing at the end of input. Questions that
/// are not understood are asked again.
class ConsoleAnswers final : public IAnswers {
public:
    using ReadLine = std::function<std::optional<std::wstring>()>;
    ConsoleAnswers(Output& output, ReadLine readLine);
    uint32_t AnswerBox(const BoxQuestion& question) override;
    std::optional<uint32_t> Choose(const ChoiceQuestion& question) override;
    std::optional<std::wstring> Enter(const InputQuestion& question) override;

private:
    Output& m_output;
    ReadLine m_readLine;
};

/// Asks a person in windows of the system, above the window of this thread that is in use.
class WindowAnswers final : public IAnswers {
public:
    uint32_t AnswerBox(const BoxQuestion& question) override;
    std::optional<uint32_t> Choose(const ChoiceQuestion& question) override;
    std::optional<std::wstring> Enter(const InputQuestion& question) override;
};

}  // namespace QVHost
