#include "fileutils/find_replace/find_and_replace_callback.h"

#include "win32/code_page.h"

namespace FileUtils {
namespace {

using QVFindAndReplace::Match;
namespace Answer = QVFindAndReplace::Answer;
namespace Option = QVFindAndReplace::Option;

template <class CharT>
std::basic_string<CharT> ReplacementText(const CharT* text, uint32_t length) {
    return length == QVFindAndReplace::kZeroTerminated ? std::basic_string<CharT>(text)
                                                       : std::basic_string<CharT>(text, length);
}

uint32_t DecodedLength(std::string_view bytes) {
    return static_cast<uint32_t>(Win32::FromCodePage(bytes, Win32::kThreadCodePage).size());
}

}  // namespace

void FindAndReplaceCallback::ReportErrorW(const wchar_t* text, uint32_t code) {
    m_lastErrorCode = code;
    const std::wstring message = std::wstring(L"[Find and Replace] Error : ") + (text ? text : L"[Unknown]") +
                                 L" ( ErrorCode : " + std::to_wstring(code) + L" )";
    m_host.Log(Quorvane::SDK::kLogLevel, Quorvane::SDK::LogKind::Failure, L"%s", message.c_str());
    if (m_options & Option::Silent) return;
    m_confirmation.Close();
    m_host.MessageBox(message.c_str(), L"Error", MB_OK | MB_ICONERROR);
}

void FindAndReplaceCallback::ReportErrorA(const char* text, uint32_t code) {
    ReportErrorW(text ? Win32::FromCodePage(text, Win32::kThreadCodePage).c_str() : nullptr, code);
}

uint32_t FindAndReplaceCallback::ConfirmW(const wchar_t* context, QVUtils::EncodingKind kind, const Match& match,
                                          const wchar_t* replacement, uint32_t replacementLength) {
    if (const auto answer = SettledAnswer()) return *answer;
    ConfirmQuestion question;
    question.context = context;
    question.replacement = ReplacementText(replacement, replacementLength);
    question.kind = kind;
    question.match = match;
    return Ask(std::move(question));
}

uint32_t FindAndReplaceCallback::ConfirmA(const char* context, QVUtils::EncodingKind kind, const Match& match,
                                          const char* replacement, uint32_t replacementLength) {
    if (const auto answer = SettledAnswer()) return *answer;
    ConfirmQuestion question;
    question.rawContext = context;
    question.rawReplacement = ReplacementText(replacement, replacementLength);
    question.rawOffset = match.contextOffset;
    question.rawLength = match.contextLength;
    question.context = Win32::FromCodePage(question.rawContext, Win32::kThreadCodePage);
    question.replacement = Win32::FromCodePage(question.rawReplacement, Win32::kThreadCodePage);
    question.kind = kind;
    question.match = match;
    const std::string_view raw = question.rawContext;
    question.match.contextOffset = DecodedLength(raw.substr(0, match.contextOffset));
    question.match.contextLength = DecodedLength(raw.substr(match.contextOffset, match.contextLength));
    return Ask(std::move(question));
}

std::optional<uint32_t> FindAndReplaceCallback::SettledAnswer() const {
    if (m_options & (Option::ReplaceAll | Option::Silent)) return Answer::ReplaceAll;
    if (m_skipsRest) return Answer::FindNext;
    return std::nullopt;
}

uint32_t FindAndReplaceCallback::Ask(ConfirmQuestion question) {
    question.fileName = m_fileName;
    question.matchNumber = ++m_matches;
    question.fileNumber = m_fileNumber;
    question.fileCount = m_fileCount;
    const uint32_t answer = m_confirmation.Ask(question);
    if (answer == Answer::ReplaceAll) m_options |= Option::ReplaceAll;
    if (answer == Answer::Cancel) m_isCancelled = true;
    if (answer != Answer::Replace && answer != Answer::ReplaceAll) m_hasLeftMatches = true;
    m_skipsRest = answer == kSkipFile;
    return m_skipsRest ? Answer::FindNext : answer;
}

}  // namespace FileUtils
