#include "fileutils/names/rename_items.h"

#include <algorithm>
#include <memory>

#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_texts.h"
#include "sdk/owners.h"
#include "sdk/text_format.h"
#include "win32/file_name.h"
#include "win32/windows.h"

namespace FileUtils {

using namespace Quorvane::SDK;

std::wstring TakeOutImpossibleNames(IHostServices& host, std::vector<ItemRename>& renames) {
    const auto isPossible = [](const ItemRename& rename) { return Win32::IsFileName(rename.newName); };
    const auto first = std::stable_partition(renames.begin(), renames.end(), isPossible);
    if (first == renames.end()) return {};
    const std::wstring fault = Win32::DescribeNameFault(first->newName, Win32::CheckFileName(first->newName));
    const Words say([&](TextId id) { return HostText(host, id); });
    std::wstring told = say(Text::NameImpossible, {first->newName, Reason(fault, say)});
    const auto count = renames.end() - first;
    if (count > 1) told += say(Text::MoreImpossible, {count});
    renames.erase(first, renames.end());
    return told;
}

void AskAndRename(IHostServices& host, std::vector<ItemRename> renames) {
    const std::wstring told = TakeOutImpossibleNames(host, renames);
    if (renames.empty()) {
        if (!told.empty()) host.MessageBox(told.c_str(), HostText(host, Text::RenameTitle), MB_ICONWARNING);
        return;
    }
    std::wstring question = FormatText(HostText(host, Text::RenameQuestion), {static_cast<uint64_t>(renames.size())});
    if (!told.empty()) question += L"\n\n" + told;
    if (host.MessageBox(question.c_str(), HostText(host, Text::RenameTitle), MB_OKCANCEL | MB_ICONQUESTION) == IDCANCEL)
        return;
    RenameInOneBatch(host, renames);
}

void RenameInOneBatch(IHostServices& host, const std::vector<ItemRename>& renames) {
    if (renames.empty()) return;
    const AcquiredService<IFileOperations> files(host, ServiceNumber::FileOperations);
    if (!files) return TellMissing(host, L"file operations");
    const auto end = [&](IRenameBatch* batch) { GiveBack([&] { files->EndRenameBatch(batch); }); };
    const std::unique_ptr<IRenameBatch, decltype(end)> batch(files->CreateRenameBatch(), end);
    if (!batch) return TellMissing(host, L"batch of renames");
    for (const ItemRename& rename : renames) batch->AddRename(rename.item, rename.newName.c_str(), 0);
    files->CommitRenameBatch(batch.get(), 0);
}

}  // namespace FileUtils
