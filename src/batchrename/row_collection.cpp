#include "batchrename/row_collection.h"

#include "sdk/owners.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace BatchRename {

using namespace Quorvane::SDK;

namespace {

constexpr uint32_t kLongestPath = 32768;  // units, with the closing zero

}  // namespace

RowSnapshot CollectRows(IHostServices& services) {
    RenameItems rows;
    if (const Owned<IFileList> list = GatherSelection(services, SelectionFlags::Names)) {
        const std::vector<IFileItem*> items = ItemsOf(*list);
        rows.reserve(items.size());
        std::wstring buffer(kLongestPath, L'\0');  // one for all: there may be a hundred thousand
        for (IFileItem* const item : items) {
            auto row = std::make_shared<BatchRenameItem>();
            buffer[0] = L'\0';
            item->GetName(buffer.data(), kLongestPath);
            row->currentName = buffer.c_str();
            buffer[0] = L'\0';
            item->GetLocation(buffer.data(), kLongestPath);
            row->location = Win32::WithoutSeparator(buffer.c_str());
            const uint32_t attributes = item->GetAttributes();
            row->isFolder = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            row->hostOrder = static_cast<uint32_t>(rows.size());
            if (!row->currentName.empty()) rows.push_back(std::move(row));
        }
    }
    return std::make_shared<const RenameItems>(std::move(rows));
}

}  // namespace BatchRename
