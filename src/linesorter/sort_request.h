// sort_request.h - what one run of the line sorter is asked to do. Filled by the dialog and by the custom command.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "textio/qvutils_exception.h"

namespace QVLineSorter {

/// A failure of the sorter itself; with the same two fields, so that one catch serves both.
class QVLineSorterException : public QVUtils::QVUtilsException {
public:
    using QVUtilsException::QVUtilsException;
};

/// The option bits of one sort. The same word travels in the request and is stored in the settings.
namespace SortOption {

// What of a line is its key. Without any of them it is the line from the line offset on.
inline constexpr uint32_t EntireLine = 0x00000001;  // as without any, and number and date keys stay 0
inline constexpr uint32_t Substring = 0x00000002;
inline constexpr uint32_t Item = 0x00000004;

// How keys are read. Exactly one of them is set.
inline constexpr uint32_t AsText = 0x00000010;
inline constexpr uint32_t AsNumber = 0x00000100;
inline constexpr uint32_t AsDate = 0x00000200;

// How they are ordered.
inline constexpr uint32_t LanguageOrder = 0x00000800;
inline constexpr uint32_t Reverse = 0x00001000;
inline constexpr uint32_t IgnoreCase = 0x00002000;        // read by ordinal order only
inline constexpr uint32_t NaturalNumbers = 0x00008000;    // read by language order only
inline constexpr uint32_t RemoveDuplicates = 0x00020000;  // stored for the dialog, whose box is disabled; no effect
inline constexpr uint32_t RemoveBlankLines = 0x00040000;
inline constexpr uint32_t NoCompareStringEx = 0x00080000;  // 16-bit text: always the older comparison of the system

// Where the key begins and ends.
inline constexpr uint32_t SkipLeadingSpaces = 0x00100000;
inline constexpr uint32_t EndAtWhiteSpace = 0x00200000;
inline constexpr uint32_t EndAtCharacter = 0x00400000;

// What becomes of the file.
inline constexpr uint32_t SaveAs = 0x01000000;
inline constexpr uint32_t KeepBackup = 0x02000000;
inline constexpr uint32_t DeleteBackup = 0x04000000;
inline constexpr uint32_t Overwrite = 0x08000000;
inline constexpr uint32_t Silent = 0x10000000;

}  // namespace SortOption

struct SortRequest {
    uint32_t keepTop = 0;          // lines at the start of the file that stay where they are
    uint32_t keepBottom = 0;       // lines at its end
    uint32_t lineOffset = 0;       // characters before the key, counted from 0; users enter it counted from 1
    uint32_t substringLength = 0;  // characters; 0 for none. Also the longest text that a number key is read from
    wchar_t separator = 0;         // the item separator or the end character; 0 for none
    std::wstring dateFormat;       // for date keys; empty leaves every key at 0 and the order as it is
    uint32_t options = 0;          // SortOption bits
    uint32_t itemNumber = 0;       // counted from 1; 0 gives an empty key
    std::wstring saveAsName;       // pattern of the target's name with SaveAs; empty means "*.*", the file itself

    bool Has(uint32_t option) const noexcept { return (options & option) != 0; }
    bool operator==(const SortRequest&) const = default;
};

/// The longest date format in characters: settings keep 128 units with the closing zero.
inline constexpr size_t kLongestDateFormat = 127;
/// The longest text in characters that a number key is read from.
inline constexpr uint32_t kLongestNumberText = 63;

enum class RequestField { SubstringLength, DateFormat };

/// Why a request cannot be carried out. The reason is written to follow the field's name.
struct RequestFault {
    RequestField field;
    std::wstring reason;
};

/// The first fault of a request, or nothing. To be asked before the first file is touched.
std::optional<RequestFault> CheckRequest(const SortRequest& request);

/// The separator that a user typed: one character, or \t for a tab, which neither a script nor an edit field takes as
/// it is. Nothing for a text of another length and for half a surrogate pair.
std::optional<wchar_t> SeparatorFromText(std::wstring_view text);
/// The reverse; "" for 0.
std::wstring TextFromSeparator(wchar_t separator);

}  // namespace QVLineSorter
