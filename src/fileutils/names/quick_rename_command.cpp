#include "fileutils/commands.h"

#include "fileutils/names/quick_rename.h"
#include "fileutils/names/rename_items.h"
#include "sdk/owners.h"

namespace FileUtils {

using namespace Quorvane::SDK;

uint32_t RunQuickRename(IHostServices& host, uint32_t id) {
    const Owned<IFileList> list = GatherSelection(host, SelectionFlags::Names);
    if (!list) return 1;
    std::vector<ItemRename> renames;
    for (IFileItem* const item : ItemsOf(*list)) {
        const std::wstring name = NameOf(*item);
        std::wstring newName = QuickRenamed(id, name, IsFolder(*item));
        if (newName != name) renames.push_back({item, std::move(newName)});
    }
    AskAndRename(host, renames);
    return 1;
}

}  // namespace FileUtils
