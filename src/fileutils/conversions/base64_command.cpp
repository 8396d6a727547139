#include "fileutils/commands.h"
#include "fileutils/ids.h"
#include "win32/file_name.h"
#include "win32/text.h"

#include <algorithm>
#include <memory>
#include <string>

#include "fileutils/conversions/base64.h"
#include "fileutils/conversions/mime_header.h"
#include "fileutils/file_run.h"
#include "fileutils/fileutils_texts.h"
#include "sdk/owners.h"
#include "sdk/text_format.h"
#include "textio/data_reader.h"
#include "textio/replace_file.h"
#include "textio/told_streams.h"
#include "win32/code_page.h"
#include "win32/files.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;
using QVUtils::QVUtilsException;

// Text is cut into lines by the blocks it was encoded in, so their size is part of the format. Many of them are read
// and written at once.
constexpr uint32_t kEncodeBlock = 3072;
constexpr uint32_t kBlocksAtOnce = 64;
constexpr uint32_t kDecodeBlock = 256 * 1024;

/// Reads until `size` bytes are there or the file ends.
uint32_t ReadFully(QVUtils::DataReader& reader, void* buffer, uint32_t size) {
    uint32_t total = 0;
    for (;;) {
        uint32_t read = 0;
        if (total < size) reader.Read(static_cast<uint8_t*>(buffer) + total, size - total, read);
        total += read;
        if (read == 0) return total;
    }
}

/// The name in the thread's code page, "?" in place of what it cannot hold. Such a name is none when it is read again,
/// so that the decoded file is called after the encoded one and nothing else.
std::string HeaderName(std::wstring_view name) {
    if (const auto whole = Win32::ToCodePage(name, Win32::kThreadCodePage)) return *whole;
    std::string result;
    for (size_t at = 0; at < name.size(); ++at) {
        const auto unit = Win32::ToCodePage(name.substr(at, 1), Win32::kThreadCodePage);
        result += unit ? *unit : "?";
    }
    return result;
}

void Encode(QVUtils::DataReader& source, const std::wstring& sourceName, QVUtils::DataWriter& target) {
    constexpr size_t kEncodedBlock = CBase64::EncodedSize(kEncodeBlock);
    const std::string header = MimeHeader(HeaderName(sourceName));
    QVUtils::WriteAll(target, header.data(), header.size());
    const auto data = std::make_unique_for_overwrite<uint8_t[]>(kEncodeBlock * kBlocksAtOnce);
    const auto lines =
        std::make_unique_for_overwrite<char[]>(Base64Lines::LargestResult(kEncodedBlock) * kBlocksAtOnce);
    char text[kEncodedBlock];
    Base64Lines cutter;
    for (;;) {
        const uint32_t size = ReadFully(source, data.get(), kEncodeBlock * kBlocksAtOnce);
        if (size == 0) return;
        char* out = lines.get();
        for (uint32_t at = 0; at < size; at += kEncodeBlock) {
            const size_t length = CBase64::Encode(data.get() + at, std::min(kEncodeBlock, size - at), text);
            out += cutter.Put(text, length, out);
        }
        QVUtils::WriteAll(target, lines.get(), static_cast<uint64_t>(out - lines.get()));
    }
}

/// Gives the number of characters that are no Base64 text.
/// @throws QVUtilsException also when the text ends in the middle of a byte, and when it is none at all
uint64_t Decode(QVUtils::DataReader& source, QVUtils::DataWriter& target) {
    const auto text = std::make_unique_for_overwrite<char[]>(kDecodeBlock);
    const auto data = std::make_unique_for_overwrite<uint8_t[]>(CBase64::LargestDecoded(kDecodeBlock));
    CBase64 decoder;
    uint32_t size = ReadFully(source, text.get(), kDecodeBlock);
    size_t begin = HeaderSize({text.get(), size});
    uint64_t total = 0;
    for (; size > 0; begin = 0, size = ReadFully(source, text.get(), kDecodeBlock)) {
        const size_t decoded = decoder.Decode(text.get() + begin, size - begin, data.get());
        QVUtils::WriteAll(target, data.get(), decoded);
        total += decoded;
    }
    const size_t last = decoder.Finish(data.get());
    QVUtils::WriteAll(target, data.get(), last);
    if (!decoder.IsWhole()) throw QVUtilsException(ERROR_INVALID_DATA, "The Base64 text is cut off");
    if (total + last == 0 && decoder.HasSkippedMarks())
        throw QVUtilsException(
            ERROR_INVALID_DATA,
            "There is no Base64 text, " + std::to_string(decoder.StrangerCount()) + " characters were ignored");
    return decoder.StrangerCount();
}

/// The name in the file's header, when it has one that can be used; else "".
/// @throws QVUtilsException when the file cannot be read: it must not be decoded under a name that is not its own
std::wstring NameFromHeaderOf(const std::wstring& path) {
    QVUtils::FileDataReader reader(path, Win32::FileSharing::Read);
    char bytes[kNameArea];
    const uint32_t size = ReadFully(reader, bytes, kNameArea);
    std::wstring name = Win32::FromCodePage(NameInHeader({bytes, size}), Win32::kThreadCodePage);
    return Win32::IsFileName(name) ? name : std::wstring();
}

/// ".b64" follows the whole name: a.txt and a.doc must not become one file, and a decoded file without a name in its
/// header gets its own extension back. @throws QVUtilsException
std::wstring TargetOf(const std::wstring& path, bool encodes) {
    if (encodes) return path + L".b64";
    std::wstring name = NameFromHeaderOf(path);
    if (name.empty()) name = Win32::SplitAtLastDot(Win32::FileNameOf(path)).stem;
    return Win32::JoinPath(Win32::FolderOf(path), name);
}

/// The source is open before the target is touched, and nobody writes to either meanwhile: a file that is sent must be
/// whole. What was written of a new target stays when the rest fails: the bytes decoded so far may be all that is left
/// of a damaged file. One that was there before keeps its content then.
/// Gives the number of characters that were ignored. @throws QVUtilsException
uint64_t Convert(bool encodes, const std::wstring& path, const std::wstring& target, bool overwrites,
                 const QVUtils::TellProgress& tell) {
    QVUtils::FileDataReader file(path, Win32::FileSharing::Read);
    QVUtils::Progress progress(tell);
    progress.BeginPart(100);
    QVUtils::ToldDataReader reader(file, file.GetFileSize(), progress);
    uint64_t ignored = 0;
    QVUtils::ReplaceFileContent(
        {.target = target, .mayOverwrite = overwrites, .keepsPart = true, .sharing = Win32::FileSharing::Read},
        [&](QVUtils::DataWriter& writer) {
            if (encodes)
                Encode(reader, std::wstring(Win32::FileNameOf(path)), writer);
            else
                ignored = Decode(reader, writer);
        });
    return ignored;
}

/// @throws QVUtilsException
void ConvertFile(IHostServices& host, IFileOperations& files, bool encodes, const std::wstring& path,
                 const QVUtils::TellProgress& tell) {
    const std::wstring target = TargetOf(path, encodes);
    // Looked at before the target is: a device is there, and so is the folder, which ".b64" without more would mean.
    if (!Win32::IsFileName(Win32::FileNameOf(target)))
        throw QVUtilsException(QVUtils::ErrorCode::InvalidName, "The target cannot be a file name");
    // By whatever name: writing the target would empty the file before it is read.
    if (Win32::EqualIgnoringCase(target, path) || Win32::IsSameFile(path, target))
        throw QVUtilsException(ERROR_INVALID_PARAMETER, "Source and target are the same file");
    // The name may come from a stranger's file, and what it leads to may lie anywhere.
    if (Win32::IsLink(target)) throw QVUtilsException(ERROR_CANT_ACCESS_FILE, "The target is a link");
    // A name that is free must stay so until the file is made: a link that leads nowhere looks like one.
    const bool overwrites = files.Exists(target.c_str());
    if (overwrites) {
        const std::wstring question = FormatText(HostText(host, Text::DecodedFileExists), {target});
        const wchar_t* const caption = HostText(host, encodes ? Text::EncodeBase64 : Text::DecodeBase64);
        if (host.MessageBox(question.c_str(), caption, MB_YESNO | MB_ICONQUESTION) != IDYES) return;
    }
    uint64_t ignored = 0;
    try {
        ignored = Convert(encodes, path, target, overwrites, tell);
    } catch (const QVUtilsException& failure) {
        // What was given up by the user serves nobody.
        if (failure.GetErrorCode() == QVUtils::ErrorCode::Cancelled && !overwrites)
            Win32::RemoveFileWhateverItsAttributes(target);
        TellTarget(host, L"Base64", {path, target, overwrites});
        throw;
    } catch (...) {
        TellTarget(host, L"Base64", {path, target, overwrites});
        throw;
    }
    host.Log(kLogLevel, LogKind::Success, L"[Base64] - %s file : %s (Saved as : %s)", encodes ? L"Encoded" : L"Decoded",
             path.c_str(), target.c_str());
    if (ignored > 0)
        host.Log(kLogLevel, LogKind::Success, L"[Base64] - Note : %s ignored (no Base64 text, or after its end) : %s",
                 ignored == 1 ? L"1 character was" : (std::to_wstring(ignored) + L" characters were").c_str(),
                 path.c_str());
}

}  // namespace

uint32_t RunBase64(IHostServices& host, uint32_t id) {
    const Owned<IFileList> list = GatherSelection(host, SelectionFlags::Files);
    if (!list) return 1;
    const bool encodes = id == CommandId::EncodeBase64;
    ForEachFile(
        host, *list, encodes ? Text::EncodeBase64 : Text::DecodeBase64,
        [&](const std::wstring& path, IFileOperations& files, const QVUtils::TellProgress& tell) {
            ConvertFile(host, files, encodes, path, tell);
        },
        [&](const std::wstring& path, const std::wstring& reason, uint32_t error) {
            host.Log(kLogLevel, LogKind::Failure, L"[Base64] - Failed to %s file : %s ( %s, ErrorCode : %d )",
                     encodes ? L"encode" : L"decode", path.c_str(), reason.empty() ? L"Out of memory" : reason.c_str(),
                     error);
        });
    return 1;
}

}  // namespace FileUtils
