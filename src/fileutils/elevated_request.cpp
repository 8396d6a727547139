#include "fileutils/elevated_request.h"

#include <algorithm>
#include <initializer_list>
#include <optional>

#include "win32/file_name.h"
#include "win32/text.h"
#include "win32/windows.h"

namespace FileUtils {
namespace {

constexpr std::wstring_view kLongPrefix = LR"(\\?\)";
constexpr std::wstring_view kLongShare = LR"(UNC\)";

bool IsSeparator(wchar_t unit) {
    return unit == L'\\' || unit == L'/';
}

bool IsOneOf(std::wstring_view name, std::initializer_list<std::wstring_view> upperCaseNames) {
    return std::ranges::any_of(upperCaseNames, [&](std::wstring_view each) {
        return std::ranges::equal(name, each, {}, Win32::UpperAscii<wchar_t>);
    });
}

/// Takes the next name and the separator after it.
std::wstring_view TakeName(std::wstring_view& path) {
    const auto end = std::ranges::find_if(path, IsSeparator);
    const std::wstring_view name(path.begin(), end);
    path.remove_prefix(std::min(path.size(), name.size() + 1));
    return name;
}

struct ShareName {
    std::wstring_view server;
    std::wstring_view share;
};

/// The system drops dots and blanks at the end of a name.
std::wstring_view WithoutEnd(std::wstring_view name) {
    return name.substr(0, name.find_last_not_of(L". ") + 1);
}

/// Takes server and share of a path that names them, without what the system drops; both are "" for another path.
ShareName TakeShare(std::wstring_view& path) {
    const size_t longStart = kLongPrefix.size() + kLongShare.size();
    if (path.starts_with(kLongPrefix) && IsOneOf(path.substr(0, longStart).substr(kLongPrefix.size()), {kLongShare}))
        path.remove_prefix(longStart);
    else if (path.size() > 2 && IsSeparator(path[0]) && IsSeparator(path[1]))
        path.remove_prefix(2);
    else
        return {};
    const std::wstring_view server = WithoutEnd(TakeName(path));
    return {server, WithoutEnd(TakeName(path))};
}

/// What follows `C:\`, `\\server\share\` and the like; nothing for a path that begins with none of them.
std::optional<std::wstring_view> RestAfterRoot(std::wstring_view path) {
    std::wstring_view drive = path;
    if (drive.starts_with(kLongPrefix)) drive.remove_prefix(kLongPrefix.size());
    const bool hasDrive = drive.size() > 2 && Win32::UpperAscii(drive[0]) >= L'A' &&
                          Win32::UpperAscii(drive[0]) <= L'Z' && drive[1] == L':';
    if (hasDrive && IsSeparator(drive[2])) return drive.substr(3);
    const ShareName name = TakeShare(path);
    const bool isMachine = !name.server.empty() && name.server != L"?";
    const bool isShare = !name.share.empty() && !IsOneOf(name.share, {L"PIPE", L"MAILSLOT", L"IPC$"});
    const bool hasColon = name.server.find(L':') != name.server.npos || name.share.find(L':') != name.share.npos;
    return isMachine && isShare && !hasColon ? std::optional(path) : std::nullopt;
}

}  // namespace

bool IsFullFilePath(std::wstring_view path) {
    std::optional<std::wstring_view> found = RestAfterRoot(path);
    if (!found || found->find(L':') != found->npos) return false;
    // With the prefix every name is just a name.
    if (path.starts_with(kLongPrefix)) return true;
    std::wstring_view last;
    while (!found->empty())
        if (const std::wstring_view name = TakeName(*found); !name.empty()) last = name;
    if (last.empty()) return true;
    // Other faults do not make a device of it: half a surrogate pair, say, stands in names that the disk has.
    const Win32::NameFault fault = Win32::CheckFileName(last).fault;
    return fault != Win32::NameFault::Reserved && fault != Win32::NameFault::InvalidCharacter;
}

bool IsRemoteRegistryKey(std::wstring_view path) {
    return IsOneOf(TakeShare(path).share, {L"CLASSES_ROOT", L"CURRENT_USER", L"MACHINE", L"USERS"});
}

bool IsSymbolicLinkTarget(std::wstring_view path) {
    if (IsFullFilePath(path)) return true;
    const bool isRooted = !path.empty() && IsSeparator(path[0]);
    const bool isOfSystem = isRooted && path.size() > 1 && (IsSeparator(path[1]) || path[1] == L'?');
    return !path.empty() && !isOfSystem && path.find(L':') == path.npos;
}

namespace {

using namespace Quorvane::SDK;

constexpr size_t kLongestText = 32767;  // units

struct CloseChannel {
    void operator()(IElevatedChannel* channel) const noexcept {
        GiveBack([&] { channel->Close(); });
    }
};

}  // namespace

std::optional<uint32_t> SendOver(IElevatedChannel& channel, uint32_t requestId, const WriteFields& write) {
    if (!channel.Connect()) return std::nullopt;
    const Owned<IRequestWriter> writer(channel.CreateWriter());
    // Behind the writer, which is to outlive the connection.
    const std::unique_ptr<IElevatedChannel, CloseChannel> connection(&channel);
    if (!writer) return ERROR_ACCESS_DENIED;
    write(*writer);
    const void* const data = writer->GetData();
    return data ? channel.Send(requestId, data, writer->GetSize()) : uint32_t{ERROR_ACCESS_DENIED};
}

std::optional<uint32_t> SendElevated(IHostServices& host, uint32_t requestId, const std::wstring& path,
                                     const WriteFields& write) {
    const AcquiredService<IElevatedChannel> channel(host, ServiceNumber::ElevatedChannel, path.c_str());
    return channel ? SendOver(*channel.Get(), requestId, write) : std::nullopt;
}

uint32_t RequestFields::Number() {
    uint32_t number = 0;
    m_isGood = m_isGood && m_reader.ReadNumber(&number);
    return m_isGood ? number : 0;
}

std::wstring RequestFields::Text() {
    const wchar_t* text = nullptr;
    m_isGood = m_isGood && m_reader.ReadString(&text) && text;
    if (!m_isGood) return {};
    std::wstring copy = text;
    m_isGood = !copy.empty() && copy.size() <= kLongestText;
    return m_isGood ? copy : std::wstring();
}

std::wstring RequestFields::FilePath() {
    std::wstring path = Text();
    if (!IsFullFilePath(path)) Refuse();
    return path;
}

std::vector<std::wstring> RequestFields::FilePaths() {
    const uint32_t count = Number();
    if (count > m_size) Refuse();  // every path takes bytes
    std::vector<std::wstring> paths;
    while (m_isGood && paths.size() < count) paths.push_back(FilePath());
    return paths;
}

}  // namespace FileUtils
