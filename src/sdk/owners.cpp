#include "sdk/owners.h"

#include <array>

namespace Quorvane::SDK {
namespace {

// The longest path of the system is 32,767 units; nearly all are far shorter.
constexpr uint32_t kLongestPath = 32768;
constexpr uint32_t kUsualPath = 1024;

template <class Read>
std::wstring ReadText(Read&& read) {
    std::array<wchar_t, kUsualPath> usual;
    usual[0] = 0;
    read(usual.data(), kUsualPath);
    usual.back() = 0;
    // The closing zero decides, not the length that the host reports. A full buffer may have cut the text.
    const size_t length = std::char_traits<wchar_t>::length(usual.data());
    if (length < kUsualPath - 1) return std::wstring(usual.data(), length);
    std::wstring text(kLongestPath, L'\0');
    read(text.data(), kLongestPath);
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
