#include "host/app/column_values.h"

#include <algorithm>
#include <array>

#include "host/app/host_text.h"

namespace QVHost {
namespace {

constexpr uint32_t kValueCapacity = 4096;  // units

}  // namespace

void ColumnValues::AddProvider(const PropertyColumns& columns, Quorvane::SDK::IFileProperties& provider) {
    for (const PropertyColumns::Column& column : columns.columns) m_columns.push_back({&column, &provider});
}

const ColumnValues::Column* ColumnValues::Find(const std::wstring& key) const {
    const auto found = std::ranges::find_if(
        m_columns, [&](const Column& column) { return EqualIgnoringCase(column.definition->key, key); });
    return found == m_columns.end() ? nullptr : &*found;
}

std::optional<std::wstring> ColumnValues::ValueOf(FileItem& item, const Column& column) {
    std::array<wchar_t, kValueCapacity> text = {};
    if (column.provider->GetValue(&item, text.data(), kValueCapacity, column.definition->id) == 0) return std::nullopt;
    std::wstring value = TextOfField(text.data(), text.size());
    item.StoreProperty(column.definition->id, value);
    return value;
}

}  // namespace QVHost
