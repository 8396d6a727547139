#include "textio/replace_file.h"

#include "textio/target_name.h"
#include "win32/files.h"
#include "win32/handle.h"
#include "win32/path.h"

namespace QVUtils {
namespace {

constexpr char kCannotOpen[] = "Unable to open file for writing";

void ThrowIfFailed(uint32_t error, const char* message) {
    if (error != ERROR_SUCCESS) throw QVUtilsException(error, message);
}

/// Can the target be written at all, and is it a file on a disk? Asked before work is spent on its replacement.
/// @throws QVUtilsException with the code that opening it gives
bool IsOrdinaryFile(const std::wstring& path) {
    const Win32::FileHandle file(CreateFileW(Win32::ExtendedPath(path).c_str(), GENERIC_WRITE,
                                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                             OPEN_EXISTING, 0, nullptr));
    if (!file) throw QVUtilsException(GetLastError(), kCannotOpen);
    return GetFileType(file.Get()) == FILE_TYPE_DISK;
}

/// Creates a file beside `path` and gives its name. What is written never leaves the target's folder: taking a place is
/// safe only within one volume. @throws QVUtilsException what opening reports
std::wstring OpenBeside(const std::wstring& path, FileDataWriter& file) {
    for (uint32_t number = GetTickCount();; ++number) {
        std::wstring name =
            Win32::ExtendedPath(Win32::JoinPath(Win32::FolderOf(path), L"~qv" + std::to_wstring(number) + L".tmp"));
        try {
            file.Open(name, false);
            return name;
        } catch (const QVUtilsException& failure) {
            if (failure.GetErrorCode() != ErrorCode::FileExists) throw;
        }
    }
}

}  // namespace

FileReplacement::~FileReplacement() {
    m_file.Abandon();
    if (m_isOurs) Win32::RemoveFileAt(m_path.c_str());
}

void FileReplacement::Begin() {
    const std::wstring& path = m_request.target;
    const bool exists = Win32::Exists(path);
    if (exists && !m_request.mayOverwrite && !WantsBackup()) throw QVUtilsException(ErrorCode::FileExists, kCannotOpen);
    // A read-only file cannot be opened for writing, but it can be moved aside.
    m_isBeside = exists && (WantsBackup() || IsOrdinaryFile(path));
    if (m_isBeside) {
        m_path = OpenBeside(path, m_file);
        m_isOurs = true;
    } else {
        m_path = Win32::ExtendedPath(path);
        // What was not seen a moment ago may still be there: it must not be emptied.
        m_isOurs = m_file.Open(path, exists && m_request.mayOverwrite);
    }
    m_buffer.emplace(m_file);
}

uint32_t FileReplacement::Commit() {
    m_buffer->Flush();
    const auto present = m_isBeside ? m_file.GetAttributesAndAccess() : Win32::AttributesAndAccess();
    m_file.Close();
    const uint32_t backupError = m_isBeside ? TakePlace(present) : ERROR_SUCCESS;
    m_isOurs = false;
    return backupError;
}

uint32_t FileReplacement::MoveOver() {
    ThrowIfFailed(Win32::MoveFileOver(m_path, m_request.target), "Unable to replace the file");
    return ERROR_SUCCESS;
}

/// Gives the complete file, which has `present`, the target's name.
uint32_t FileReplacement::TakePlace(const Win32::AttributesAndAccess& present) {
    const std::wstring& target = m_request.target;
    ThrowIfFailed(Win32::CopyStreams(target, m_path, Win32::NamedStreamsOf(target)),
                  "Unable to carry over the named streams of the file");
    Win32::CarryOverAttributesAndAccess(target, m_path, present);
    if (!WantsBackup()) return MoveOver();
    // Moving is the question: asking first whether a name is free would cost another walk through the folder, and its
    // answer could be out of date.
    uint32_t moveError = ERROR_SUCCESS;
    const std::wstring backup = FreeBackupName(target, [&](const std::wstring& name) {
        moveError = Win32::MoveFileTo(target, name);
        return moveError == ERROR_ALREADY_EXISTS || moveError == ERROR_FILE_EXISTS;
    });
    if (backup.empty()) return MoveOver();
    ThrowIfFailed(moveError, "Unable to make a backup of the file");
    const uint32_t error = Win32::MoveFileTo(m_path, target);
    if (error != ERROR_SUCCESS) {
        const bool isBack = Win32::MoveFileTo(backup, target) == ERROR_SUCCESS;
        ThrowIfFailed(error, isBack ? "Unable to replace the file"
                                    : "Unable to replace the file (the original is kept in its .bak file)");
    }
    return m_request.keepBackup ? ERROR_SUCCESS : Win32::RemoveFileWhateverItsAttributes(backup);
}

uint32_t ReplaceFileContent(const ReplaceRequest& request, const WriteContent& write) {
    FileReplacement replacement(request);
    replacement.Begin();
    write(replacement.GetWriter());
    return replacement.Commit();
}

}  // namespace QVUtils
