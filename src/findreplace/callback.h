// callback.h - how the engine and the work on one file talk to what runs them.
#pragma once

#include <cstdint>

#include "findreplace/request.h"
#include "textio/encoding.h"

namespace QVFindAndReplace {

/// A match: lines count from 0 in the line table, columns in characters (bytes or UTF-16 units) in the line as it
/// stands; the end is after the match.
struct Match {
    uint32_t startLine = 0;
    uint32_t startColumn = 0;
    uint32_t endLine = 0;
    uint32_t endColumn = 0;
    // Where the match stands in the context text that goes with it, in characters.
    uint32_t contextOffset = 0;
    uint32_t contextLength = 0;
};

/// What to do with a match. Any other number means FindNext.
namespace Answer {
inline constexpr uint32_t Replace = 0;
inline constexpr uint32_t ReplaceAll = 1;
inline constexpr uint32_t ReplaceToo = 2;
inline constexpr uint32_t FindNext = 3;
inline constexpr uint32_t Cancel = 5;
}  // namespace Answer

/// Replacement length of a text that ends at its zero.
inline constexpr uint32_t kZeroTerminated = 0xFFFFFFFF;

/// All on the thread that runs the command. Texts are valid during the call only.
class IFindAndReplaceCallback {
public:
    virtual void SetCurrentFile(const wchar_t* fileName) = 0;  // may be null
    virtual void EndOfFile() = 0;
    virtual void ReportErrorW(const wchar_t* text, uint32_t code) = 0;  // text may be null
    virtual void ReportErrorA(const char* text, uint32_t code) = 0;     // text may be null
    /// An Answer. `context` ends with a zero and holds the match with the lines around it.
    virtual uint32_t ConfirmW(const WideChar* context, QVUtils::EncodingKind kind, const Match& match,
                              const WideChar* replacement, uint32_t replacementLength) = 0;
    virtual uint32_t ConfirmA(const char* context, QVUtils::EncodingKind kind, const Match& match,
                              const char* replacement, uint32_t replacementLength) = 0;
    virtual bool IsCancelled() = 0;

protected:
    ~IFindAndReplaceCallback() = default;
};

}  // namespace QVFindAndReplace
