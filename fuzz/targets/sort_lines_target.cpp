// Sorting: any lines by any key in every order, against the order made the obvious way.
#include "fuzz/input.h"
#include "fuzz/plain_order.h"

namespace QVFuzz {
namespace {

template <class CharT>
void Sort(std::string_view text, uint8_t rule, uint8_t order) {
    Lines<CharT> lines;
    std::basic_string<CharT> line;
    std::basic_string<CharT> units = Widened<CharT>(text);
    // The mark of UTF-16 is no part of the text, and a second one would become it when the lines are written again.
    if (sizeof(CharT) > 1) units.erase(0, units.find_first_not_of(static_cast<CharT>(0xFEFF)));
    for (const CharT unit : units) {
        if (unit != CharT('\n') && unit != CharT('\r'))
            line += unit;
        else
            lines.push_back(std::exchange(line, {}));
    }
    const KeyRule<CharT> key = KeyRules<CharT>()[rule % 5];
    SortRequest request;
    request.options = kOrders[order % 8 % std::size(kOrders)] | (order & 8 ? Option::Reverse : 0);
    const std::string format = "%d.%m.%y";
    const std::basic_string<CharT> dateFormat(format.begin(), format.end());
    auto data = Load(lines);
    CutKeys(data, key);
    QVFuzz::Sort(data, request, dateFormat);
    Require(Texts(data) == SortedPlainly(lines, request, key, dateFormat), "the order is the plain one");
}

}  // namespace

void RunSortLines(Bytes bytes) {
    if (bytes.size() > 4096) return;
    Input input(bytes);
    const uint8_t rule = input.Byte();
    const uint8_t order = input.Byte();
    const std::string_view text = input.Rest();
    Sort<char>(text, rule, order);
    Sort<wchar_t>(text, rule, order);
}

}  // namespace QVFuzz
