// exports.cpp - the extensions that the library carries, by index, and its only door: three undecorated functions.

#include <algorithm>
#include <iterator>
#include <string_view>

#include "batchrename/qv_batch_rename.h"
#include "fileutils/cqvutils.h"
#include "fileutils/ids.h"
#include "sdk/extension_info.h"
#include "sdk/plugin_interface.h"
#include "security/ntfs_prop.h"

using namespace Quorvane::SDK;

namespace {

constexpr std::wstring_view kAuthor = L"The QVUtils maintainers";
constexpr std::wstring_view kHomePage = L"https://qvutils.example/";
constexpr size_t kDescriptionUnits = 160;  // written; the field is larger

struct CatalogueRow {
    std::wstring_view name;
    std::wstring_view shortName;
    std::string_view version;
    std::string_view id;
    std::wstring_view description;
    uint32_t typeFlags;
    uint32_t orderHint;
    bool providesProperties;
};

constexpr CatalogueRow kCatalogue[] = {
    {L"File Utils", L"QVUtils", "1.3.0.0", FileUtils::kExtensionId,
     L"File Utilities like XML conversion, Base64 conversion, File security tools, Link Tools, Quick rename commands, "
     L"...",
     kTypeFlagsCommands, 700, false},
    {L"NTFS Properties", L"NTFSProp", "1.0.0.0", Security::kNtfsPropId, L"Show NTFS/File Security Properties",
     kTypeFlagsProperties, 300, true},
    {L"Batch Rename", L"QVBatchRename", "1.0.0.0", BatchRename::kExtensionId,
     L"BatchRename can rename multiple files using rules and filters", kTypeFlagsCommands, 710, false},
};

/// Copies at most `count` units into the field and fills up the rest of them with zeros; beyond them the field stays.
template <class CharT, size_t Size>
void Fill(CharT (&field)[Size], std::basic_string_view<CharT> text, size_t count = Size) {
    const size_t copied = text.copy(field, count);
    std::fill(field + copied, field + count, CharT(0));
}

template <class Extension>
void DeleteIfItIs(IPluginInterface* object) {
    delete dynamic_cast<Extension*>(object);
}

}  // namespace

extern "C" {

/// Fills `record` with the description of extension `index`; bytes without a field keep their values. False, with the
/// record untouched, for an unknown index or a null record.
bool GetExtensionInfo(uint32_t index, ExtensionInfo* record) {
    if (!record || index >= std::size(kCatalogue)) return false;
    const CatalogueRow& row = kCatalogue[index];
    Fill(record->Name, row.name);
    Fill(record->Author, kAuthor);
    Fill(record->HomePage, kHomePage);
    Fill(record->Description, row.description, kDescriptionUnits);
    Fill(record->ShortName, row.shortName);
    Fill(record->Version, row.version);
    Fill(record->ExtensionId, row.id);
    record->TypeFlags = row.typeFlags;
    record->SdkVersion = kSdkVersion;
    record->OrderHint = row.orderHint;
    if (row.providesProperties) {
        Fill(record->PropertyText1, std::wstring_view());
        Fill(record->PropertyText2, std::wstring_view());
        record->PropertyValue = 0;
    }
    return true;
}

/// A new extension object, null for an unknown index. Running out of memory is thrown on to the caller.
IPluginInterface* Create(uint32_t index) {
    switch (index) {
        case 0: return new FileUtils::CQVUtils;
        // Another interface, handed out under the common name: the host knows by the index what it really is.
        case 1: return reinterpret_cast<IPluginInterface*>(static_cast<IFileProperties*>(new Security::NTFSProp));
        case 2: return new BatchRename::QVBatchRename;
        default: return nullptr;
    }
}

/// Ends an object from Create. False for a null object or an unknown index. An object of another class than the index
/// says is left alone, and the answer is true all the same - except for index 1, whose object is not checked.
// compatibility: 36
bool Delete(IPluginInterface* object, uint32_t index) {
    if (!object) return false;
    switch (index) {
        case 0: DeleteIfItIs<FileUtils::CQVUtils>(object); return true;
        case 1: delete static_cast<Security::NTFSProp*>(reinterpret_cast<IFileProperties*>(object)); return true;
        case 2: DeleteIfItIs<BatchRename::QVBatchRename>(object); return true;
        default: return false;
    }
}

}  // extern "C"
