#include "batchrename/model/window_position.h"

#include <algorithm>
#include <iterator>

#include "win32/text.h"

namespace BatchRename {
namespace {

constexpr int kFurthest = 100000;  // pixels; no desktop is larger

/// Moves a stretch into another and cuts what does not fit.
void FitStretch(int& begin, int& end, int from, int to) {
    const int size = std::min(end - begin, to - from);
    begin = std::clamp(begin, from, to - size);
    end = begin + size;
}

}  // namespace

std::wstring FormatWindowPosition(const WindowPosition& position) {
    std::wstring text;
    for (const int number : {position.left, position.top, position.right, position.bottom,
                             static_cast<int>(position.isMaximised), position.panelHeight})
        text += (text.empty() ? L"" : L",") + std::to_wstring(number);
    return text;
}

std::optional<WindowPosition> ParseWindowPosition(std::wstring_view text) {
    int numbers[6] = {};
    for (size_t index = 0; index < std::size(numbers); ++index) {
        const bool isLast = index + 1 == std::size(numbers);
        const size_t end = isLast ? text.size() : text.find(L',');
        if (end == std::wstring_view::npos) return std::nullopt;
        const std::optional<int> number = Win32::WholeNumber<int>(text.substr(0, end));
        if (!number || *number < -kFurthest || *number > kFurthest) return std::nullopt;
        numbers[index] = *number;
        text.remove_prefix(isLast ? end : end + 1);
    }
    if (numbers[2] <= numbers[0] || numbers[3] <= numbers[1]) return std::nullopt;
    return WindowPosition{numbers[0], numbers[1], numbers[2], numbers[3], numbers[4] != 0, std::max(numbers[5], 0)};
}

WindowPosition FitIntoScreen(WindowPosition position, int left, int top, int right, int bottom) {
    FitStretch(position.left, position.right, left, right);
    FitStretch(position.top, position.bottom, top, bottom);
    return position;
}

}  // namespace BatchRename
