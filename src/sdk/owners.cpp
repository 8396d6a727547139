#include "sdk/owners.h"

namespace Quorvane::SDK {
namespace {

// The longest path of the system is 32,767 units. Asking once with room for it costs less than asking twice.
constexpr uint32_t kLongestPath = 32768;

template <class Read>
std::wstring ReadText(Read&& read) {
    std::wstring text(kLongestPath, L'\0');
    read(text.data(), kLongestPath);
    // The closing zero decides, not the length that the host reports.
    text.resize(std::char_traits<wchar_t>::length(text.c_str()));
    text.shrink_to_fit();
    return text;
}

}  // namespace

Owned<IFileList> GatherSelection(IHostServices& services, uint32_t flags) {
    Owned<IFileList> list(services.CreateFileList());
    if (list) services.RunHostCommand(HostCommand::GetSelection, list.get(), flags, 0);
    return list;
}

std::wstring PathOf(IFileItem& item) {
    return ReadText([&](wchar_t* buffer, uint32_t capacity) { item.GetPath(buffer, capacity); });
}

std::wstring NameOf(IFileItem& item) {
    return ReadText([&](wchar_t* buffer, uint32_t capacity) { item.GetName(buffer, capacity); });
}

std::vector<std::wstring> PathsOf(IFileList& list) {
    std::vector<std::wstring> paths;
    const uint32_t count = list.GetCount();
    for (uint32_t index = 0; index < count; ++index) {
        IFileItem* const item = list.GetItem(index);
        std::wstring path = item ? PathOf(*item) : std::wstring();
        if (!path.empty()) paths.push_back(std::move(path));
    }
    return paths;
}

}  // namespace Quorvane::SDK
