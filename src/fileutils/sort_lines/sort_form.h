// sort_form.h - what stands in the fields of the dialog "Sort Lines", what of it can be used, and what it asks for. No
// window is needed for any of this.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "linesorter/sort_request.h"
#include "sdk/host_objects.h"

namespace FileUtils {

/// The fields as a person sees them: numbers and separators are still texts.
struct SortForm {
    uint32_t options = 0;  // QVLineSorter::SortOption, each bit as its box, button or list entry shows it
    std::wstring keepTop;
    std::wstring keepBottom;
    std::wstring linePosition;  // counted from 1
    std::wstring substringLength;
    std::wstring endCharacter;
    std::wstring itemSeparator;
    std::wstring itemNumber;
    std::wstring dateFormat;
    std::wstring saveAsName;
};

/// The form that shows a request. Where its options name no key, no method or no target, that is the entire line, text
/// and a backup that is kept.
SortForm FormOf(const QVLineSorter::SortRequest& request);

/// Which fields can be used with these options.
struct SortEnabling {
    bool fileName = false;
    bool substring = false;  // length, end character, end at white space
    bool item = false;       // separator and number
    bool dateFormat = false;
    bool ignoreCase = false;
    bool naturalNumbers = false;
    bool operator==(const SortEnabling&) const = default;
};
SortEnabling EnabledFor(uint32_t options);

/// A form turned into a request.
struct SortReading {
    QVLineSorter::SortRequest request;  // only of use without a fault
    std::wstring fault;                 // why it cannot be run, for people to read
    std::wstring hint;                  // what it would do that nobody expects; it can be run all the same
};

/// `before`: the request that the form was made from. What the chosen key and method do not use keeps its old value, so
/// that it is there again the next time. `files`: full paths of those to sort, which all need targets of their own.
SortReading RequestOf(const SortForm& form, const QVLineSorter::SortRequest& before,
                      std::span<const std::wstring> files = {});

/// Loads what the store has; a key that is missing leaves its field alone. What cannot be a separator loads as none,
/// and a date format is cut at 127 characters. The "Save as" name is not kept. A null store loads and saves nothing.
void LoadSortLinesSettings(Quorvane::SDK::ISettings* store, QVLineSorter::SortRequest& request);
void SaveSortLinesSettings(Quorvane::SDK::ISettings* store, const QVLineSorter::SortRequest& request);

}  // namespace FileUtils
