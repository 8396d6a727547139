// find_and_replace_callback.h - reports a run's errors to the host and its questions to the user.
#pragma once

#include <optional>
#include <string>

#include "fileutils/find_replace/confirm_replace.h"
#include "findreplace/request.h"
#include "sdk/host_services.h"

namespace FileUtils {

class FindAndReplaceCallback final : public QVFindAndReplace::IFindAndReplaceCallback {
public:
    /// `options`: the run's option word as it stands. The host and the confirmation must outlive the object.
    /// `fileNumber` of `fileCount` is the file that it is made for.
    FindAndReplaceCallback(Quorvane::SDK::IHostServices& host, uint32_t options, IConfirmReplace& confirmation,
                           uint32_t fileNumber, uint32_t fileCount)
        : m_host(host),
          m_options(options),
          m_confirmation(confirmation),
          m_fileNumber(fileNumber),
          m_fileCount(fileCount) {}

    /// The option word: with QVFindAndReplace::Option::ReplaceAll once the user wants no more questions.
    uint32_t GetOptions() const noexcept { return m_options; }
    /// Of the last error reported; else 0.
    uint32_t GetLastErrorCode() const noexcept { return m_lastErrorCode; }
    /// True once the user has left a match as it is, or cancelled.
    bool HasLeftMatches() const noexcept { return m_hasLeftMatches; }

    void SetCurrentFile(const wchar_t* fileName) override { m_fileName = fileName ? fileName : L""; }
    void EndOfFile() override {}
    /// Logs the error and, unless the run is silent, shows it.
    void ReportErrorW(const wchar_t* text, uint32_t code) override;
    void ReportErrorA(const char* text, uint32_t code) override;
    uint32_t ConfirmW(const wchar_t* context, QVUtils::EncodingKind kind, const QVFindAndReplace::Match& match,
                      const wchar_t* replacement, uint32_t replacementLength) override;
    uint32_t ConfirmA(const char* context, QVUtils::EncodingKind kind, const QVFindAndReplace::Match& match,
                      const char* replacement, uint32_t replacementLength) override;
    bool IsCancelled() override { return m_isCancelled; }

private:
    /// The answer that holds for every match of the file; nothing while each is asked about.
    std::optional<uint32_t> SettledAnswer() const;
    uint32_t Ask(ConfirmQuestion question);

    Quorvane::SDK::IHostServices& m_host;
    uint32_t m_options;
    IConfirmReplace& m_confirmation;
    const uint32_t m_fileNumber;
    const uint32_t m_fileCount;
    uint32_t m_matches = 0;  // asked about
    bool m_skipsRest = false;
    std::wstring m_fileName;
    bool m_isCancelled = false;
    bool m_hasLeftMatches = false;
    uint32_t m_lastErrorCode = 0;
};

}  // namespace FileUtils
