#include "sdk/owners.h"

#include <algorithm>
#include <array>

namespace Quorvane::SDK {
namespace {

constexpr uint32_t kLongestPath = 32768;  // units; nearly all paths are far shorter

template <class Read>
std::wstring ReadText(uint32_t capacity, Read&& read) {
    // One unit more than the host is told of: the text ends there whatever the host does.
    std::array<wchar_t, kLargeCapacity + 1> usual;
    capacity = std::min(capacity, kLargeCapacity);
    usual[0] = 0;
    read(usual.data(), capacity);
    usual[capacity] = 0;
    // The closing zero decides, not the length that the host reports. A full buffer may have cut the text, and a host
    // may give nothing of one that does not fit.
    const size_t length = std::char_traits<wchar_t>::length(usual.data());
    if (length > 0 && length < capacity - 1) return std::wstring(usual.data(), length);
    std::wstring text(kLongestPath, L'\0');
    read(text.data(), kLongestPath);
    text.resize(std::char_traits<wchar_t>::length(text.c_str()));
    text.shrink_to_fit();
    return text;
}

}  // namespace

void TellMissing(IHostServices& services, const wchar_t* what) {
    services.Log(kLogLevel, LogKind::Failure, L"[QVUtils] - The host gives no %s", what);
}

Owned<IFileList> GatherSelection(IHostServices& services, uint32_t flags) {
    Owned<IFileList> list(services.CreateFileList());
    if (list)
        services.RunHostCommand(HostCommand::GetSelection, list.get(), flags, 0);
    else
        TellMissing(services, L"list of files");
    return list;
}

std::vector<IFileItem*> ItemsOf(IFileList& list) {
    std::vector<IFileItem*> items;
    const uint32_t count = list.GetCount();
    while (items.size() < count) {
        IFileItem* const item = list.GetItem(static_cast<uint32_t>(items.size()));
        if (!item) break;
        items.push_back(item);
    }
    return items;
}

std::wstring PathOf(IFileItem& item, uint32_t capacity) {
    return ReadText(capacity, [&](wchar_t* buffer, uint32_t size) { item.GetPath(buffer, size); });
}

std::wstring NameOf(IFileItem& item, uint32_t capacity) {
    return ReadText(capacity, [&](wchar_t* buffer, uint32_t size) { item.GetName(buffer, size); });
}

std::vector<std::wstring> PathsOf(IFileList& list) {
    std::vector<std::wstring> paths;
    for (IFileItem* const item : ItemsOf(list)) {
        std::wstring path = PathOf(*item);
        if (!path.empty()) paths.push_back(std::move(path));
    }
    return paths;
}

}  // namespace Quorvane::SDK
