#include "fileutils/names/rename_items.h"

#include "fileutils/fileutils_texts.h"
#include "sdk/owners.h"
#include "sdk/text_format.h"
#include "win32/windows.h"

namespace FileUtils {

using namespace Quorvane::SDK;

void AskAndRename(IHostServices& host, const std::vector<ItemRename>& renames) {
    if (renames.empty()) return;
    const std::wstring question =
        FormatText(HostText(host, Text::RenameQuestion), {static_cast<uint64_t>(renames.size())});
    if (host.MessageBox(question.c_str(), HostText(host, Text::RenameTitle), MB_OKCANCEL | MB_ICONQUESTION) == IDCANCEL)
        return;
    RenameInOneBatch(host, renames);
}

void RenameInOneBatch(IHostServices& host, const std::vector<ItemRename>& renames) {
    if (renames.empty()) return;
    const AcquiredService<IFileOperations> files(host, ServiceNumber::FileOperations);
    if (!files) return;
    const auto end = [&](IRenameBatch* batch) { files->EndRenameBatch(batch); };
    const std::unique_ptr<IRenameBatch, decltype(end)> batch(files->CreateRenameBatch(), end);
    if (!batch) return;
    for (const ItemRename& rename : renames) batch->AddRename(rename.item, rename.newName.c_str(), 0);
    files->CommitRenameBatch(batch.get(), 0);
}

}  // namespace FileUtils
