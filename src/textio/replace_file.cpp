#include "textio/replace_file.h"

#include "textio/target_name.h"
#include "win32/files.h"
#include "win32/handle.h"
#include "win32/path.h"
#include "win32/text.h"

namespace QVUtils {
namespace {

constexpr char kCannotOpen[] = "Unable to open file for writing";
constexpr char kNoBackup[] = "Unable to make a backup of the file";
constexpr char kNotReplaced[] = "Unable to replace the file";

void ThrowIfFailed(uint32_t error, const char* message) {
    if (error != ERROR_SUCCESS) throw QVUtilsException(error, message);
}

/// @throws QVUtilsException when the state cannot be read
Win32::FileState StateOf(void* openFile, const std::wstring& path) {
    Win32::FileState state;
    ThrowIfFailed(Win32::GetState(openFile, path, state), "Unable to read the access rights of the file");
    return state;
}

/// The last look before a file is replaced. Windows error code for which it cannot be replaced now, 0 when it can.
/// @throws QVUtilsException when another program has saved or replaced it
uint32_t LookAgain(const Win32::FileState& original) {
    const uint32_t error = Win32::CheckUnchanged(original);
    if (error == ERROR_FILE_INVALID)
        throw QVUtilsException(ErrorCode::ReadFault, "The file was changed while it was read");
    return error;
}

}  // namespace

Win32::FileState OriginalOf(const FileDataReader& reader, const std::wstring& path) {
    Win32::FileState state = StateOf(reader.GetSystemHandle(), path);
    state.stamp = reader.GetStamp();
    return state;
}

std::optional<Win32::FileState> OriginalOf(const FileDataReader& reader, const std::wstring& path,
                                           const std::wstring& target) {
    if (!Win32::EqualIgnoringCase(path, target)) return std::nullopt;
    return OriginalOf(reader, path);
}

FileReplacement::~FileReplacement() {
    if (m_isOurs && !m_isBeside && m_request.keepsPart) KeepPart();
    if (m_isOurs && m_isBeside) Win32::RemoveWhenClosed(m_file.GetSystemHandle());
    m_file.Abandon();
    if (m_isOurs) Win32::RemoveFileAt(m_path.c_str());
}

void FileReplacement::Begin(std::optional<Win32::FileState> original) {
    const std::wstring& path = m_request.target;
    const bool exists = original || Win32::Exists(path);
    if (exists && !m_request.mayOverwrite && !WantsBackup()) throw QVUtilsException(ErrorCode::FileExists, kCannotOpen);
    m_original = std::move(original);
    m_isNew = !exists;
    m_isBeside = exists ? LookAtTarget() : m_request.isRecord;
    if (m_isBeside) {
        if (m_isNew) m_original.emplace().path = path;
        m_path = StaysWhenNotMoved() ? Win32::ExtendedPath(m_request.temporaryPath)
                                     : Win32::TemporaryNameBeside(m_original->path);
        m_file.Adopt(Win32::CreateSuccessor(m_path, *m_original));
        m_isOurs = true;
    } else {
        m_path = Win32::ExtendedPath(path);
        // What was not seen a moment ago may still be there: it must not be emptied.
        m_isOurs = m_file.Open(path, exists && m_request.mayOverwrite, m_request.sharing);
    }
    m_buffer.emplace(m_file);
}

/// Can the target be written at all, and is it a file on a disk? Asked before work is spent on its replacement. A
/// read-only file cannot be opened for writing, but it can be moved aside.
bool FileReplacement::LookAtTarget() {
    if (m_original && (WantsBackup() || StaysWhenNotMoved())) return true;
    const DWORD access = READ_CONTROL | (WantsBackup() ? FILE_READ_ATTRIBUTES : GENERIC_WRITE);
    const Win32::FileHandle file(CreateFileW(Win32::ExtendedPath(m_request.target).c_str(), access,
                                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                             OPEN_EXISTING, 0, nullptr));
    if (!file) throw QVUtilsException(GetLastError(), kCannotOpen);
    if (GetFileType(file.Get()) != FILE_TYPE_DISK) return false;
    if (!m_original) m_original = StateOf(file.Get(), m_request.target);
    return true;
}

void FileReplacement::KeepPart() noexcept {
    m_isOurs = false;
    try {
        m_buffer->Flush();
    } catch (const QVUtilsException&) {
        // What could be written of it is there.
    }
}

uint32_t FileReplacement::Commit() {
    m_buffer->Flush();
    if (m_isBeside && m_request.isRecord && !FlushFileBuffers(m_file.GetSystemHandle()))
        throw QVUtilsException(GetLastError(), "Failed to write data to file");
    const uint32_t refusal = m_isBeside && !m_isNew ? Complete() : ERROR_SUCCESS;
    m_file.Close();
    const uint32_t error = m_isBeside && refusal == ERROR_SUCCESS ? TakePlace() : refusal;
    m_isOurs = false;
    return error;
}

/// Gives the new file what it takes over from the target, and looks at that once more. As long as the new file is open
/// it can be removed, whatever its access list says. Gives the error for which it is to stay where it is.
uint32_t FileReplacement::Complete() {
    ThrowIfFailed(Win32::CopyStreams(m_original->path, m_path, Win32::NamedStreamsOf(m_original->path)),
                  "Unable to carry over the named streams of the file");
    Win32::CarryOverAttributes(*m_original, m_file.GetSystemHandle());
    const uint32_t error = LookAgain(*m_original);
    if (!StaysWhenNotMoved()) ThrowIfFailed(error, WantsBackup() ? kNoBackup : kNotReplaced);
    return error;
}

uint32_t FileReplacement::MoveToTarget() {
    // Another program may have given the name to a file of its own since Begin.
    const bool mayReplace = !m_isNew || m_request.mayOverwrite;
    const uint32_t error =
        mayReplace ? Win32::MoveFileOver(m_path, m_original->path) : Win32::MoveFileTo(m_path, m_original->path);
    if (!StaysWhenNotMoved()) ThrowIfFailed(error, kNotReplaced);
    return error;
}

/// Gives the complete file the target's name.
uint32_t FileReplacement::TakePlace() {
    const std::wstring& target = m_original->path;
    if (m_isNew || !WantsBackup()) return MoveToTarget();
    // Moving is the question: asking first whether a name is free would cost another walk through the folder, and its
    // answer could be out of date.
    uint32_t moveError = ERROR_SUCCESS;
    const std::wstring backup = FreeBackupName(target, [&](const std::wstring& name) {
        moveError = Win32::MoveFileTo(target, name);
        return moveError == ERROR_ALREADY_EXISTS || moveError == ERROR_FILE_EXISTS;
    });
    if (backup.empty()) return MoveToTarget();
    ThrowIfFailed(moveError, kNoBackup);
    const uint32_t error = Win32::MoveFileTo(m_path, target);
    if (error != ERROR_SUCCESS) {
        const bool isBack = Win32::MoveFileTo(backup, target) == ERROR_SUCCESS;
        ThrowIfFailed(error,
                      isBack ? kNotReplaced : "Unable to replace the file (the original is kept in its .bak file)");
    }
    return m_request.keepBackup ? ERROR_SUCCESS : Win32::RemoveFileWhateverItsAttributes(backup);
}

uint32_t ReplaceFileContent(const ReplaceRequest& request, const WriteContent& write,
                            std::optional<Win32::FileState> original) {
    FileReplacement replacement(request);
    replacement.Begin(std::move(original));
    write(replacement.GetWriter());
    return replacement.Commit();
}

uint32_t ReplaceRecord(const std::wstring& target, std::string_view bytes, bool mayOverwrite) {
    try {
        return ReplaceFileContent({.target = target, .mayOverwrite = mayOverwrite, .isRecord = true},
                                  [&](DataWriter& writer) { WriteAll(writer, bytes.data(), bytes.size()); });
    } catch (const QVUtilsException& failure) {
        const uint32_t error = failure.GetErrorCode();
        return error == ErrorCode::FileExists ? ERROR_ALREADY_EXISTS : error;
    }
}

}  // namespace QVUtils
