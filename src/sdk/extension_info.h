// extension_info.h - the record that describes one extension of the library. The host allocates it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Quorvane::SDK {

/// Binary contract: offsets and sizes in bytes, little-endian. UTF-16 fields are filled up with zero units and end with
/// one; ASCII fields likewise with zero bytes.
struct ExtensionInfo {
    wchar_t Name[100];
    wchar_t Author[100];
    wchar_t HomePage[100];
    wchar_t Description[250];
    wchar_t ShortName[100];
    char Version[10];
    char ExtensionId[34];  // 32 hexadecimal digits
    uint32_t TypeFlags;
    uint32_t SdkVersion;
    uint32_t OrderHint;
    uint8_t Reserved1[20];
    wchar_t PropertyText1[512];  // this field and those below: only by providers of file properties
    wchar_t PropertyText2[512];
    uint8_t Reserved2[2048];
    uint64_t PropertyValue;
};

static_assert(sizeof(wchar_t) == 2);
static_assert(offsetof(ExtensionInfo, Name) == 0);
static_assert(offsetof(ExtensionInfo, Author) == 200);
static_assert(offsetof(ExtensionInfo, HomePage) == 400);
static_assert(offsetof(ExtensionInfo, Description) == 600);
static_assert(offsetof(ExtensionInfo, ShortName) == 1100);
static_assert(offsetof(ExtensionInfo, Version) == 1300);
static_assert(offsetof(ExtensionInfo, ExtensionId) == 1310);
static_assert(offsetof(ExtensionInfo, TypeFlags) == 1344);
static_assert(offsetof(ExtensionInfo, SdkVersion) == 1348);
static_assert(offsetof(ExtensionInfo, OrderHint) == 1352);
static_assert(offsetof(ExtensionInfo, PropertyText1) == 1376);
static_assert(offsetof(ExtensionInfo, PropertyText2) == 2400);
static_assert(offsetof(ExtensionInfo, PropertyValue) == 5472);
static_assert(sizeof(ExtensionInfo) == 5480);

/// `TypeFlags` of the library's extensions. The host gives the bits their meaning; kTypeCommands is also what
/// `IPluginInterface::GetType` answers.
inline constexpr uint32_t kTypeCommands = 0x2000;
inline constexpr uint32_t kTypeFlagsCommands = 0x2100;
inline constexpr uint32_t kTypeFlagsProperties = 0x202800;
inline constexpr uint32_t kSdkVersion = 1560000;

// The three exports, as the host looks them up. `Create` and `Delete` speak of every extension as IPluginInterface.
class IPluginInterface;
using GetExtensionInfoFunction = bool (*)(uint32_t index, ExtensionInfo* record);
using CreateFunction = IPluginInterface* (*)(uint32_t index);
using DeleteFunction = bool (*)(IPluginInterface* object, uint32_t index);

}  // namespace Quorvane::SDK
