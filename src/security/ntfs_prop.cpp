#include "security/ntfs_prop.h"

#include <algorithm>
#include <atomic>
#include <optional>
#include <string>

#include "sdk/boundary.h"
#include "sdk/extension_info.h"
#include "sdk/owners.h"
#include "security/acl_info.h"
#include "security/ntfs_tools.h"
#include "security/streams.h"

namespace Security {
namespace {

using namespace Quorvane::SDK;

// As the host numbers them.
constexpr uint16_t kTextValue = 0;
constexpr uint16_t kNumberValue = 2;
constexpr uint32_t kTextColumn = 0x30100;
constexpr uint32_t kNumberColumn = 0x70200;

using Value = std::optional<std::wstring>;

Value OwnerOf(IFileItem& item, const std::wstring& path) {
    std::wstring owner;
    return NTFSTools().GetOwnerName(path, item.IsRemote() > 0, owner) ? Value(owner) : std::nullopt;
}

Value AccessOf(IFileItem&, const std::wstring& path) {
    uint32_t mask = 0;
    CACLInfo(path).GetEffectiveRights(mask);
    return RightsText(mask);
}

Value StreamCountOf(IFileItem&, const std::wstring& path) {
    return std::to_wstring(QueryStreamFigures(path).count);
}

Value StreamSizeOf(IFileItem&, const std::wstring& path) {
    const uint64_t size = QueryStreamFigures(path).allocatedSize;
    return size > 0 ? Value(std::to_wstring(size)) : std::nullopt;
}

struct Column {
    uint16_t id;
    const wchar_t* key;
    uint16_t type;
    uint16_t width;
    uint32_t flags;
    TextId name;
    Value (*compute)(IFileItem& item, const std::wstring& path);
};
constexpr Column kColumns[] = {
    // id                  key          type          width flags        name   value
    {Property::Owner, L"owner", kTextValue, 110, kTextColumn, PropertyText::Owner, OwnerOf},
    {Property::Access, L"access", kTextValue, 100, kTextColumn, PropertyText::Access, AccessOf},
    {Property::StreamCount, L"ADScount", kNumberValue, 60, kNumberColumn, PropertyText::StreamCount, StreamCountOf},
    {Property::StreamSize, L"ADSsize", kNumberValue, 60, kNumberColumn, PropertyText::StreamSize, StreamSizeOf},
};

/// The number by which the host knows this extension, the same for all objects of the process; kNoModule until Init.
constexpr int32_t kNoModule = -1;
std::atomic<int32_t>& TextModule() {
    static std::atomic<int32_t> module = kNoModule;
    return module;
}

/// The value that the host keeps of the item, if it keeps any; an empty one for "known to have none".
std::optional<Value> StoredValue(IFileItem& item, uint16_t module, uint16_t propertyId) {
    StoredPropertyValue stored = {};
    if (!item.GetStoredProperty(module, propertyId, &stored)) return std::nullopt;
    if (stored.status >= 0) return Value();
    // The record's text need not end with a zero.
    const auto* const end = std::find(std::begin(stored.text), std::end(stored.text), L'\0');
    return Value(std::in_place, static_cast<const wchar_t*>(stored.text), end);
}

/// Copies what fits with the closing zero and leaves no half of a surrogate pair at the end.
void CopyWhole(const std::wstring& value, wchar_t* text, uint32_t capacity) {
    size_t length = value.copy(text, capacity - 1);
    if (length < value.size() && length > 0 && IS_HIGH_SURROGATE(text[length - 1])) --length;
    text[length] = 0;
}

}  // namespace

uint32_t NTFSProp::Init(IHostServices* services) {
    return AtBoundary(0u, [&] {
        if (!services) return 0u;
        {
            const AcquiredService<IPropertySet> set(*services, ServiceNumber::PropertySet);
            if (set) {
                set->SetExtension(kNtfsPropId, services->GetText(PropertyText::Group));
                for (const Column& column : kColumns) {
                    const PropertyDefinition definition = {column.id,    column.width, column.type,
                                                           column.flags, column.key,   services->GetText(column.name)};
                    set->AddDefinition(&definition);
                }
            }
        }
        TextModule() = services->GetTextModule(kNtfsPropId);
        return 0u;
    });
}

uint32_t NTFSProp::GetType() {
    return kTypeFlagsProperties;
}

uint32_t NTFSProp::SetHost(IHostServices* services) {
    m_services = services;
    return 1;
}

uint32_t NTFSProp::GetValue(IFileItem* item, wchar_t* text, uint32_t capacity, uint16_t propertyId) {
    return AtBoundary(0u, [&] {
        const int32_t module = TextModule();
        if (!m_services || module == kNoModule || !item || !text || capacity == 0) return 0u;
        std::optional<Value> value = StoredValue(*item, static_cast<uint16_t>(module), propertyId);
        if (!value) {
            const auto* const column = std::ranges::find(kColumns, propertyId, &Column::id);
            if (column != std::end(kColumns)) value = column->compute(*item, PathOf(*item));
        }
        if (!value || !*value) return 0u;
        CopyWhole(**value, text, capacity);
        return 1u;
    });
}

bool NTFSProp::ClearCache() {
    return AtBoundary(false, [] {
        NTFSTools::ClearCaches();
        return false;
    });
}

}  // namespace Security
