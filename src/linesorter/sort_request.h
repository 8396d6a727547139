// sort_request.h - what one run of the line sorter is asked to do. Filled by the dialog and by the custom command.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "linesorter/sort_options.h"
#include "textio/qvutils_exception.h"

namespace QVLineSorter {

/// A failure of the sorter itself; same two fields as the one it stands on, so that one catch serves both.
class QVLineSorterException : public QVUtils::QVUtilsException {
public:
    using QVUtilsException::QVUtilsException;
};

struct SortRequest {
    uint32_t keepTop = 0;          // lines at the start of the file that stay where they are
    uint32_t keepBottom = 0;       // lines at its end
    uint32_t lineOffset = 0;       // characters before the key, counted from 0; people enter it counted from 1
    uint32_t substringLength = 0;  // characters; 0 for none. Also the longest text that a number key is read from
    wchar_t separator = 0;         // the item separator or the end character; 0 for none
    std::wstring dateFormat;       // for date keys; empty leaves every key at 0 and the order as it is
    uint32_t options = 0;          // SortOption bits
    uint32_t itemNumber = 0;       // counted from 1; 0 gives an empty key
    std::wstring saveAsName;       // pattern of the target's name with SaveAs; empty means "*.*", the file itself

    bool Has(uint32_t option) const noexcept { return (options & option) != 0; }
};

/// The longest date format in characters. It was once kept in 128 bytes with a closing zero, and settings still are.
inline constexpr size_t kLongestDateFormat = 127;
/// The longest text in characters that a number key is read from.
inline constexpr uint32_t kLongestNumberText = 63;

enum class RequestField { SubstringLength, DateFormat };

/// Why a request cannot be carried out. The reason is written to stand behind the field's name.
struct RequestFault {
    RequestField field;
    std::wstring reason;
};

/// The first fault of a request, or nothing. To be asked before the first file is touched.
std::optional<RequestFault> CheckRequest(const SortRequest& request);

/// The separator that a person typed: one character, or \t for a tab, which neither a script nor an edit field takes as
/// it is. Nothing for a text of another length and for half a surrogate pair.
std::optional<wchar_t> SeparatorFromText(std::wstring_view text);
/// The reverse; "" for 0.
std::wstring TextFromSeparator(wchar_t separator);

}  // namespace QVLineSorter
