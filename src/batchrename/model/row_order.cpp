#include "batchrename/model/row_order.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "win32/path.h"
#include "win32/text_order.h"

namespace BatchRename {
namespace {

const std::wstring& TextOfKey(const BatchRenameItem& row, RowKey key) {
    if (key == RowKey::NewName) return row.newName;
    return key == RowKey::Location ? row.location : row.currentName;
}

/// Bytes that compare as the system compares the texts: made once a row instead of once a comparison.
std::string SortKeyOf(const std::wstring& text) {
    if (text.empty()) return {};
    constexpr uint32_t kRules = Win32::LanguageRule::IgnoreCase | Win32::LanguageRule::DigitsAsNumbers;
    const auto length = static_cast<uint32_t>(text.size());
    std::string key(Win32::MakeSortKey(kRules, text.c_str(), length, nullptr, 0), '\0');
    Win32::MakeSortKey(kRules, text.c_str(), length, reinterpret_cast<uint8_t*>(key.data()),
                       static_cast<uint32_t>(key.size()));
    return key;
}

struct KeyedRow {
    std::string key;
    uint32_t row;
};

}  // namespace

RowOrder NextOrder(const RowOrder& current, RowKey clicked) {
    if (current.key != clicked) return {clicked, false};
    return current.isDescending ? RowOrder() : RowOrder{clicked, true};
}

RenameItems SortRows(const RenameItems& rows, const RowOrder& order, const std::function<bool()>& isCancelled) {
    RenameItems sorted = rows;
    if (order.key == RowKey::HostOrder) {
        std::ranges::stable_sort(sorted, {}, [](const auto& row) { return row->hostOrder; });
        return sorted;
    }
    std::vector<KeyedRow> keys;
    keys.reserve(rows.size());
    for (const auto& row : rows) {
        if (isCancelled()) return {};
        keys.push_back({SortKeyOf(TextOfKey(*row, order.key)), static_cast<uint32_t>(keys.size())});
    }
    if (order.isDescending)
        std::ranges::stable_sort(keys, std::greater(), &KeyedRow::key);
    else
        std::ranges::stable_sort(keys, {}, &KeyedRow::key);
    for (size_t at = 0; at < keys.size(); ++at) sorted[at] = rows[keys[at].row];
    return sorted;
}

RenameItems WithoutRows(const RenameItems& rows, const std::vector<bool>& isMarked) {
    RenameItems kept;
    kept.reserve(rows.size());
    for (size_t row = 0; row < rows.size(); ++row)
        if (!isMarked[row]) kept.push_back(rows[row]);
    return kept;
}

RenameItems MoveRows(RenameItems rows, std::vector<bool>& isMarked, bool isUp) {
    const auto swapRows = [&](size_t left, size_t right) {
        std::swap(rows[left], rows[right]);
        const bool wasMarked = isMarked[left];
        isMarked[left] = isMarked[right];
        isMarked[right] = wasMarked;
    };
    if (isUp) {
        for (size_t row = 1; row < rows.size(); ++row)
            if (isMarked[row] && !isMarked[row - 1]) swapRows(row, row - 1);
    } else {
        for (size_t row = rows.size(); row-- > 1;)
            if (isMarked[row - 1] && !isMarked[row]) swapRows(row, row - 1);
    }
    return rows;
}

std::vector<bool> CarriedMarks(const RenameItems& before, const std::vector<bool>& isMarked, const RenameItems& now) {
    std::vector<bool> carried(now.size(), false);
    if (std::ranges::find(isMarked, true) == isMarked.end()) return carried;
    std::unordered_map<const BatchRenameItem*, bool> rows;
    for (size_t row = 0; row < before.size(); ++row) rows.emplace(before[row].get(), isMarked[row]);
    const auto known = [&](const auto& row) { return rows.contains(row.get()); };
    if (std::ranges::any_of(now, known)) {
        for (size_t row = 0; row < now.size(); ++row) carried[row] = known(now[row]) && rows[now[row].get()];
        return carried;
    }
    const auto pathOf = [](const auto& row) { return Win32::JoinPath(row->location, row->currentName); };
    std::unordered_set<std::wstring> paths;
    for (size_t row = 0; row < before.size(); ++row)
        if (isMarked[row]) paths.insert(pathOf(before[row]));
    for (size_t row = 0; row < now.size(); ++row) carried[row] = paths.contains(pathOf(now[row]));
    return carried;
}

}  // namespace BatchRename
