// find_replace_form.h - what stands in the fields of the dialog "Find and Replace in file(s)", why it cannot be
// started, and what the line beside the buttons says of it. No window is needed for any of this.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "findreplace/match_count.h"
#include "findreplace/request.h"
#include "ui/controls.h"

namespace FileUtils {

struct FindAndReplaceRequest {
    std::wstring find = {};
    std::wstring replacement = {};
    uint32_t options = 0;             // QVFindAndReplace::Option
    std::wstring targetPattern = {};  // of "Save as"
};

/// For the engine, with the code pages of the thread that uses it.
QVFindAndReplace::Request EngineRequest(uint32_t options, const std::wstring& find, const std::wstring& replacement);

/// "Save as" alone writes to a file of another name.
constexpr bool TakesFileName(uint32_t options) {
    return (options & QVFindAndReplace::Option::SaveAs) != 0;
}

/// Why this request cannot be started over these files (full paths), for people to read; "" when it can.
std::wstring WhyNotStart(const FindAndReplaceRequest& request, std::span<const std::wstring> files);

/// What a request would do to all files, added up.
struct CountSummary {
    uint64_t matches = 0;  // changes that a run would make
    uint32_t filesWithMatches = 0;
    uint32_t notText = 0;
    uint32_t utf8 = 0;         // read in a code page where that makes a difference
    uint32_t eightBit = 0;     // 8-bit text of any kind
    uint32_t loneBreaks = 0;   // of files with matches, as is the next
    uint32_t mixedBreaks = 0;  // all line ends become one kind
    uint32_t failed = 0;
    std::string failure = {};  // of the first that would fail
    bool isWhole = true;       // false: there may be more of everything

    void Add(const QVFindAndReplace::FileCount& count, bool dependsOnEncoding);
};

/// Sentences about parts of a request that it does not use; "" when there is nothing to say.
std::wstring DescribeUnused(const Ui::HostTexts& texts, const FindAndReplaceRequest& request);

/// Sentences about a count over `files` files, the most important first: the numbers, then what may surprise.
std::wstring DescribeCount(const Ui::HostTexts& texts, const FindAndReplaceRequest& request, size_t files,
                           const CountSummary& count);

}  // namespace FileUtils
