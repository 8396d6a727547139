#include "fileutils/elevated_request.h"

#include "fileutils/elevated_path.h"
#include "win32/windows.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

constexpr size_t kLongestText = 32767;  // units

struct CloseChannel {
    void operator()(IElevatedChannel* channel) const noexcept { channel->Close(); }
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
