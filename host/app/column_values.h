// column_values.h - the columns that the library's providers of file properties offer, and their values for files.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/contract/file_objects.h"
#include "sdk/plugin_interface.h"

namespace QVHost {

/// The property columns that an extension has defined.
struct PropertyColumns {
    struct Column {
        uint16_t id;
        uint16_t defaultWidth;
        uint16_t valueType;
        uint32_t flags;
        std::wstring key;
        std::wstring displayName;
    };
    std::wstring extensionId;
    std::wstring groupName;
    std::vector<Column> columns;
};

/// As extensions number the kinds of values.
inline constexpr uint16_t kNumberValue = 2;

class ColumnValues {
public:
    struct Column {
        const PropertyColumns::Column* definition;
        Quorvane::SDK::IFileProperties* provider;
    };

    /// Both stay alive as long as values are asked for.
    void AddProvider(const PropertyColumns& columns, Quorvane::SDK::IFileProperties& provider);
    const std::vector<Column>& Columns() const { return m_columns; }
    /// By its key, without regard to case; null when there is none.
    const Column* Find(const std::wstring& key) const;

    /// Nothing when the file has no such value. The item keeps the value: it is not computed again.
    static std::optional<std::wstring> ValueOf(FileItem& item, const Column& column);

private:
    std::vector<Column> m_columns;
};

}  // namespace QVHost
