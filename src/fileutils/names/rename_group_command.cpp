#include "fileutils/commands.h"

#include <algorithm>
#include <optional>

#include "fileutils/fileutils_texts.h"
#include "fileutils/names/rename_items.h"
#include "sdk/owners.h"
#include "win32/path.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

constexpr uint32_t kNameCapacity = 1024;  // units; the host's input dialog gets no more

std::wstring StemOf(IFileItem& item) {
    return std::wstring(Win32::SplitAtLastDot(NameOf(item)).stem);
}

/// The files of the list that are called `stem`, in its order.
std::vector<IFileItem*> FilesCalled(IFileList& list, const std::wstring& stem) {
    std::vector<IFileItem*> files;
    for (IFileItem* const item : ItemsOf(list))
        if (!IsFolder(*item) && StemOf(*item) == stem) files.push_back(item);
    return files;
}

/// The name entered, `stem` being proposed; nothing when the dialog was cancelled or nothing is left of the text.
std::optional<std::wstring> AskForStem(IHostServices& host, const std::wstring& stem) {
    std::wstring buffer(kNameCapacity, L'\0');
    stem.copy(buffer.data(), kNameCapacity - 1);
    if (!host.ShowInputDialog(Text::NewGroupName, buffer.data(), kNameCapacity)) return std::nullopt;
    buffer.back() = L'\0';
    buffer.resize(std::char_traits<wchar_t>::length(buffer.c_str()));
    if (buffer.empty()) return std::nullopt;
    return buffer;
}

}  // namespace

uint32_t RunRenameGroup(IHostServices& host, uint32_t) {
    const Owned<IFileList> list(host.CreateFileList());
    if (!list) TellMissing(host, L"list of files");
    if (!list || host.RunHostCommand(HostCommand::HasFocusedItem, list.get(), 0, 0) == 0) return 1;
    host.RunHostCommand(HostCommand::GroupItems, list.get(), 0, 0);
    IFileItem* const focused = list->GetItem(0);
    if (!focused) return 1;
    const std::wstring stem = StemOf(*focused);
    const std::vector<IFileItem*> files = FilesCalled(*list, stem);
    if (files.empty()) return 1;
    const std::optional<std::wstring> newStem = AskForStem(host, stem);
    if (!newStem || *newStem == stem) return 1;
    std::vector<ItemRename> renames;
    for (IFileItem* const file : files) {
        const std::wstring name = NameOf(*file);
        renames.push_back({file, *newStem + name.substr(stem.size())});
    }
    if (const std::wstring told = TakeOutImpossibleNames(host, renames); !told.empty())
        host.MessageBox(told.c_str(), HostText(host, Text::RenameTitle), MB_ICONWARNING);
    RenameInOneBatch(host, renames);
    return 1;
}

}  // namespace FileUtils
