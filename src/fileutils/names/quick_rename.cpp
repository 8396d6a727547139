#include "fileutils/names/quick_rename.h"

#include <algorithm>

#include "fileutils/commands.h"
#include "fileutils/ids.h"
#include "fileutils/names/rename_items.h"
#include "sdk/owners.h"
#include "win32/text.h"

namespace FileUtils {
namespace {

struct Replacement {
    uint32_t id;
    wchar_t from;
    wchar_t to;
};
constexpr Replacement kReplacements[] = {
    {CommandId::UnderscoreToBlank, L'_', L' '}, {CommandId::UnderscoreToDot, L'_', L'.'},
    {CommandId::BlankToUnderscore, L' ', L'_'}, {CommandId::BlankToDot, L' ', L'.'},
    {CommandId::DotToUnderscore, L'.', L'_'},   {CommandId::DotToBlank, L'.', L' '},
};

std::wstring UpperCaseAToZ(std::wstring name) {
    std::ranges::transform(name, name.begin(), Win32::UpperAscii<wchar_t>);
    return name;
}

/// Where a file's extension begins, its dot included; the end for a folder and for a name without a dot.
size_t ExtensionOf(std::wstring_view name, bool isFolder) {
    return isFolder ? name.size() : std::min(name.rfind(L'.'), name.size());
}

std::wstring WithCapitalWords(std::wstring_view name, bool isFolder) {
    const std::wstring upper = Win32::ToUpperCase(name);
    std::wstring result = Win32::ToLowerCase(name);
    const size_t extension = ExtensionOf(name, isFolder);
    bool beginsWord = true;
    for (size_t at = 0; at < result.size(); ++at) {
        if (beginsWord) result[at] = upper[at];
        beginsWord = name[at] == L' ' || name[at] == L'_' || (name[at] == L'.' && at != extension);
    }
    return result;
}

}  // namespace

std::wstring QuickRenamed(uint32_t id, std::wstring_view name, bool isFolder) {
    std::wstring result(name);
    switch (id) {
        case CommandId::UpperCaseNames: return UpperCaseAToZ(std::move(result));
        case CommandId::LowerCaseNames: return Win32::ToLowerCase(name);
        case CommandId::CapitaliseNames: return WithCapitalWords(name, isFolder);
        default: break;
    }
    const auto row = std::ranges::find(kReplacements, id, &Replacement::id);
    if (row != std::end(kReplacements)) {
        const auto end = result.begin() + static_cast<std::ptrdiff_t>(ExtensionOf(name, isFolder));
        std::replace(result.begin(), end, row->from, row->to);
    }
    return result;
}

using namespace Quorvane::SDK;

uint32_t RunQuickRename(IHostServices& host, uint32_t id) {
    const Owned<IFileList> list = GatherSelection(host, SelectionFlags::Names);
    if (!list) return 1;
    std::vector<ItemRename> renames;
    const uint32_t capacity = id < CommandId::UnderscoreToBlank ? kUsualCapacity : kLargeCapacity;
    for (IFileItem* const item : ItemsOf(*list)) {
        const std::wstring name = NameOf(*item, capacity);
        std::wstring newName = QuickRenamed(id, name, IsFolder(*item));
        if (newName != name) renames.push_back({item, std::move(newName)});
    }
    AskAndRename(host, std::move(renames));
    return 1;
}

}  // namespace FileUtils
