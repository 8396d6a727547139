// confirm_replace.h - the question about one match, and what answers it.
#pragma once

#include <string>

#include "findreplace/callback.h"
#include "sdk/host_services.h"

namespace FileUtils {

/// What the user is asked. Texts of 8-bit documents come decoded from the thread's code page, and as the bytes they
/// are, so that they can be shown as UTF-8 as well.
struct ConfirmQuestion {
    std::wstring fileName;
    std::wstring context;  // the match with the lines around it, joined by CR LF
    std::wstring replacement;
    QVUtils::EncodingKind kind = QVUtils::EncodingKind::Utf16;
    QVFindAndReplace::Match match;  // its place in the context counts units of `context`
    std::string rawContext;         // empty for UTF-16
    std::string rawReplacement;
    uint32_t rawOffset = 0;  // the match's place in `rawContext`, in bytes
    uint32_t rawLength = 0;
    uint32_t matchNumber = 1;  // of the matches asked about in this file
    uint32_t fileNumber = 1;   // of the run's
    uint32_t fileCount = 1;
};

/// An answer besides those of Answer, which the engine does not know: the rest of this file stays as it is.
inline constexpr uint32_t kSkipFile = 4;

/// Answers with one of Answer, or kSkipFile.
class IConfirmReplace {
public:
    virtual uint32_t Ask(const ConfirmQuestion& question) = 0;
    /// Another window is to open, or there are no more questions. A further question is answered all the same.
    virtual void Close() {}
    /// True when the user does not want to wait for the next question, but cancels.
    virtual bool IsCancelled() { return false; }

protected:
    ~IConfirmReplace() = default;
};

/// Asks through the host's choice dialog.
class ConfirmByChoice final : public IConfirmReplace {
public:
    explicit ConfirmByChoice(Quorvane::SDK::IHostServices& host) : m_host(host) {}

    /// Cancel when the host shows no choice dialog or the user closes it.
    uint32_t Ask(const ConfirmQuestion& question) override;

private:
    Quorvane::SDK::IHostServices& m_host;
};

}  // namespace FileUtils
