// sort_request_fields.h - all of a request to sort lines, to be compared at once.
#pragma once

#include <tuple>

#include "linesorter/sort_request.h"

namespace QVTest {

inline auto FieldsOf(const QVLineSorter::SortRequest& request) {
    return std::tie(request.keepTop, request.keepBottom, request.lineOffset, request.substringLength, request.separator,
                    request.dateFormat, request.options, request.itemNumber, request.saveAsName);
}

}  // namespace QVTest
