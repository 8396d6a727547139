// standard_wildcard.h - what a wildcard means, told by the standard expressions: the slow reference that our own
// matcher is compared with, in the tests and by the fuzz target. No test framework in here, and nothing of Windows.
#pragma once

#include <cstddef>
#include <regex>
#include <string>
#include <string_view>

#include "fuzz/counted_place.h"

namespace QVFuzz {

struct WildcardResult {
    int error = 0;  // the code of std::regex_error, one more than it so that 0 stands for none
    bool isFound = false;
    size_t start = 0;
    size_t length = 0;
    bool operator==(const WildcardResult&) const = default;
};

/// `search` gives a result; a std::regex_error becomes one.
template <class Search>
WildcardResult ResultOf(Search&& search) {
    try {
        return search();
    } catch (const std::regex_error& failure) {
        return {static_cast<int>(failure.code()) + 1};
    }
}

/// The expression that a wildcard pattern stands for.
template <class CharT>
std::basic_string<CharT> ExpressionOf(const std::basic_string<CharT>& pattern) {
    constexpr std::string_view kEscaped = "\\^.$|()[]+/";
    std::basic_string<CharT> expression;
    for (const CharT unit : pattern) {
        if (unit == CharT('?')) {
            expression += CharT('.');
        } else if (unit == CharT('*')) {
            expression += {CharT('.'), CharT('*')};
        } else {
            if (unit < 0x80 && kEscaped.find(static_cast<char>(unit)) != std::string_view::npos)
                expression += CharT('\\');
            expression += unit;
        }
    }
    return expression;
}

/// @throws TooManySteps after `steps` steps
template <class CharT>
WildcardResult SearchByTheStandard(const std::basic_string<CharT>& pattern, bool ignoreCase,
                                   std::basic_string_view<CharT> text, int steps) {
    return ResultOf([&]() -> WildcardResult {
        auto flags = std::regex_constants::ECMAScript;
        if (ignoreCase) flags |= std::regex_constants::icase;
        const std::basic_regex<CharT> expression(ExpressionOf(pattern), flags);
        using Place = CountedPlace<CharT>;
        std::match_results<Place> match;
        StepLimit limit(steps);
        const Place begin(text.data(), &limit);
        const Place end(text.data() + text.size(), &limit);
        if (!std::regex_search(begin, end, match, expression)) return {};
        return {0, true, static_cast<size_t>(match[0].first.Get() - text.data()),
                static_cast<size_t>(match[0].second.Get() - match[0].first.Get())};
    });
}

}  // namespace QVFuzz
