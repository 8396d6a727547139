// rename_items.h - items of the panel with the names they are to get, handed to the host in one batch.
#pragma once

#include <string>
#include <vector>

#include "sdk/host_services.h"

namespace FileUtils {

/// An item and its new name. The item lives as long as the list it came from.
struct ItemRename {
    Quorvane::SDK::IFileItem* item;
    std::wstring newName;
};

inline bool IsFolder(Quorvane::SDK::IFileItem& item) {
    constexpr uint32_t kDirectory = 0x10;
    return (item.GetAttributes() & kDirectory) != 0;
}

/// Takes out the renames to what cannot be a name, and tells of them in a sentence for people; "" when there is none.
std::wstring TakeOutImpossibleNames(Quorvane::SDK::IHostServices& host, std::vector<ItemRename>& renames);

/// Asks whether so many names are to change, and has the host change them; names that cannot be are left out and told
/// of. Asks nothing when there is none. What the host refuses, it reports itself.
void AskAndRename(Quorvane::SDK::IHostServices& host, std::vector<ItemRename> renames);

/// Renames as they are, without a question.
void RenameInOneBatch(Quorvane::SDK::IHostServices& host, const std::vector<ItemRename>& renames);

}  // namespace FileUtils
