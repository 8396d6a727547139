#include "fileutils/commands.h"

#include "fileutils/names/rename_items.h"
#include "fileutils/names/replace_dlg.h"
#include "fileutils/names/replace_in_names.h"
#include "sdk/owners.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

/// What the preview needs of an item, read once: it is computed at every key.
struct NamedItem {
    IFileItem* item;
    std::wstring name;
    bool isFolder;
};

std::vector<NamedItem> NamedItemsOf(IFileList& list) {
    std::vector<NamedItem> items;
    for (IFileItem* const item : ItemsOf(list)) items.push_back({item, NameOf(*item), IsFolder(*item)});
    return items;
}

}  // namespace

uint32_t RunReplaceInNames(IHostServices& host, uint32_t) {
    const Owned<IFileList> list = GatherSelection(host, SelectionFlags::Names);
    if (!list || list->GetCount() == 0) return 1;
    const std::vector<NamedItem> items = NamedItemsOf(*list);
    CReplaceDlg dialog([&](const NameReplacement& request) {
        std::vector<NameChange> changes;
        for (const NamedItem& item : items) {
            std::wstring name = WithTextReplaced(request, item.name, item.isFolder);
            if (name != item.name) changes.push_back({item.name, std::move(name)});
        }
        return changes;
    });
    const std::optional<NameReplacement> request = dialog.Show(host.GetMainWindow());
    if (!request) return 1;
    std::vector<ItemRename> renames;
    for (const NamedItem& item : items) {
        std::wstring name = WithTextReplaced(*request, item.name, item.isFolder);
        if (name != item.name) renames.push_back({item.item, std::move(name)});
    }
    RenameInOneBatch(host, renames);
    return 1;
}

}  // namespace FileUtils
