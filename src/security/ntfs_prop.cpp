#include "security/ntfs_prop.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <optional>
#include <string>

#include "sdk/boundary.h"
#include "sdk/extension_info.h"
#include "sdk/owners.h"
#include "security/ntfs_tools.h"
#include "security/privilege.h"
#include "security/security_system.h"
#include "win32/handle.h"
#include "win32/path.h"

namespace Security {
namespace {

constexpr ULONG kFileStreamInformation = 22;  // of FILE_INFORMATION_CLASS: the records of stream_records.h
constexpr size_t kBlockSize = 65536;  // bytes; on the stack, so that threads need neither a lock nor an allocation

}  // namespace

StreamFigures QueryStreamFigures(const std::wstring& path, const SecuritySystem& system) {
    const std::wstring name = Win32::ExtendedPath(path);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return {};
    const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    std::optional<ScopedPrivilege> backup;
    // Whether it is held or not, the folder is tried.
    if (isFolder) backup.emplace(SE_BACKUP_NAME);
    // No access rights are asked for: the streams' names and sizes count as attributes.
    const Win32::FileHandle file(CreateFileW(name.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                             OPEN_EXISTING, isFolder ? FILE_FLAG_BACKUP_SEMANTICS : 0, nullptr));
    if (!file) return {};
    alignas(uint64_t) std::array<uint8_t, kBlockSize> block = {};
    std::array<void*, 2> status = {};
    // The result says nothing that the block does not: a failed query leaves it alone, a long list is cut.
    system.queryInformationFile(file.Get(), status.data(), block.data(), kBlockSize, kFileStreamInformation);
    return FiguresOfStreams(block);
}

namespace {

constexpr uint32_t kReading = FILE_READ_DATA | FILE_READ_ATTRIBUTES;
constexpr uint32_t kWriting = FILE_WRITE_DATA | FILE_APPEND_DATA | FILE_WRITE_EA | FILE_WRITE_ATTRIBUTES;
constexpr uint32_t kExecuting = FILE_READ_DATA | FILE_EXECUTE;
static_assert(kReading == 0x81 && kWriting == 0x116 && kExecuting == 0x21);

}  // namespace

uint32_t CACLInfo::GetEffectiveRights(uint32_t& mask) const {
    mask = 0;
    FileDescriptor descriptor;
    if (!descriptor.Read(m_system, m_path, DACL_SECURITY_INFORMATION)) return kNoRights;
    BOOL isPresent = FALSE;
    BOOL isDefault = FALSE;
    PACL list = nullptr;
    if (!GetSecurityDescriptorDacl(descriptor.Get(), &isPresent, &list, &isDefault) || !isPresent || !list)
        return kNoRights;
    wchar_t user[] = L"CURRENT_USER";
    TRUSTEE_W trustee = {};
    BuildTrusteeWithNameW(&trustee, user);
    // Its result says no more than the mask: where it fails, the mask stays 0 and nothing is allowed.
    ACCESS_MASK allowed = 0;
    m_system.getEffectiveRights(list, &trustee, &allowed);
    mask = allowed;
    return ERROR_SUCCESS;
}

std::wstring RightsText(uint32_t mask) {
    const auto letter = [&](uint32_t needed, wchar_t name) { return (mask & needed) == needed ? name : L' '; };
    return {letter(kReading, L'R'), letter(kWriting, L'W'), letter(kExecuting, L'X')};
}

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
                set->SetExtension(kNtfsPropId, HostText(*services, PropertyText::Group));
                for (const Column& column : kColumns) {
                    const PropertyDefinition definition = {column.id,   column.width,
                                                           column.type, column.flags,
                                                           column.key,  HostText(*services, column.name)};
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
            if (column != std::end(kColumns)) value = column->compute(*item, PathOf(*item, kLargeCapacity));
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
