// recording_callback.h - a callback that answers from a list and keeps what it is told.
#pragma once

#include <string>
#include <vector>

#include "findreplace/callback.h"
#include "win32/code_page.h"

namespace QVTest {

class RecordingCallback final : public QVFindAndReplace::IFindAndReplaceCallback {
public:
    /// Answers in order; the last one repeats.
    explicit RecordingCallback(std::vector<uint32_t> answers) : m_answers(std::move(answers)) {}

    void SetCurrentFile(const wchar_t*) override {}
    void EndOfFile() override {}
    void ReportErrorW(const wchar_t* text, uint32_t code) override {
        errors.emplace_back(Win32::ToCodePage(text, Win32::kUtf8CodePage).value_or("?"), code);
    }
    void ReportErrorA(const char* text, uint32_t code) override { errors.emplace_back(text, code); }
    uint32_t ConfirmW(const wchar_t* context, QVUtils::EncodingKind, const QVFindAndReplace::Match& match,
                      const wchar_t* replacement, uint32_t length) override {
        return Answer(Win32::ToCodePage(context, Win32::kUtf8CodePage).value_or("?"), match,
                      Win32::ToCodePage(replacement, Win32::kUtf8CodePage).value_or("?"), length);
    }
    uint32_t ConfirmA(const char* context, QVUtils::EncodingKind, const QVFindAndReplace::Match& match,
                      const char* replacement, uint32_t length) override {
        return Answer(context, match, replacement, length);
    }
    bool IsCancelled() override { return isCancelled; }

    std::vector<std::pair<std::string, uint32_t>> errors;
    std::vector<std::string> shown;  // each match as its context shows it
    std::vector<QVFindAndReplace::Match> matches;
    std::string lastReplacement;
    uint32_t lastLength = 0;
    bool isCancelled = false;

private:
    uint32_t Answer(const std::string& context, const QVFindAndReplace::Match& match, const std::string& replacement,
                    uint32_t length) {
        shown.push_back(context.substr(match.contextOffset, match.contextLength));
        matches.push_back(match);
        lastReplacement = replacement;
        lastLength = length;
        const uint32_t answer = m_answers[std::min(m_next++, m_answers.size() - 1)];
        if (answer == QVFindAndReplace::Answer::Cancel) isCancelled = true;
        return answer;
    }

    std::vector<uint32_t> m_answers;
    size_t m_next = 0;
};

/// The conversions that the system offers.
inline QVFindAndReplace::Converted<char> ToNarrow(const std::wstring& text, QVUtils::EncodingKind kind) {
    return Win32::ToCodePage(text, kind == QVUtils::EncodingKind::Utf8 ? Win32::kUtf8CodePage : Win32::kThreadCodePage);
}

}  // namespace QVTest
