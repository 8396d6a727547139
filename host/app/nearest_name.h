// nearest_name.h - which known name somebody probably meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace QVHost {

/// The number of single characters to insert, remove or change, upper and lower case being equal, to get from one text
/// to the other.
size_t EditDistance(std::wstring_view left, std::wstring_view right);

/// The known name nearest to `name`, the first of several; "" when none is near (more than a third of it, and more
/// than two characters, would have to change).
std::wstring NearestName(std::wstring_view name, const std::vector<std::wstring>& known);

/// ", did you mean NAME?", or "" without a near name.
std::wstring DidYouMean(std::wstring_view name, const std::vector<std::wstring>& known);

}  // namespace QVHost
