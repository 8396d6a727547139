#include "batchrename/model/window_position.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

namespace BatchRename {
namespace {

constexpr long kFurthest = 100000;  // pixels; no desktop is larger

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
    const std::wstring copy(text);
    const wchar_t* at = copy.c_str();
    int numbers[6] = {};
    for (size_t index = 0; index < std::size(numbers); ++index) {
        wchar_t* end = nullptr;
        const long number = std::wcstol(at, &end, 10);
        const bool isLast = index + 1 == std::size(numbers);
        if (end == at || number < -kFurthest || number > kFurthest || *end != (isLast ? L'\0' : L','))
            return std::nullopt;
        numbers[index] = static_cast<int>(number);
        at = end + 1;
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
