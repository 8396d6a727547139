#include "textio/replace_file.h"

#include "textio/target_name.h"
#include "win32/files.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVUtils {
namespace {

void ThrowIfFailed(uint32_t error, const char* message) {
    if (error != ERROR_SUCCESS) throw QVUtilsException(error, message);
}

/// Writes a whole file; an incomplete one is removed before the failure goes on. One that cannot be opened is not ours
/// to remove.
void WriteWholeFile(const std::wstring& path, bool overwrite, const WriteContent& write) {
    FileDataWriter file;
    file.Open(path, overwrite);
    try {
        BufferedDataWriter buffer(file);
        write(buffer);
        buffer.Flush();
        file.Close();
    } catch (...) {
        file.Abandon();
        Win32::RemoveFile(path);
        throw;
    }
}

/// A name beside `path` that no file has. Temporary files never leave the target's folder: moving over is safe only
/// within one volume.
std::wstring TemporaryNameBeside(const std::wstring& path) {
    for (uint32_t number = GetTickCount();; ++number) {
        std::wstring name = Win32::JoinPath(Win32::FolderOf(path), L"~qv" + std::to_wstring(number) + L".tmp");
        if (!Win32::Exists(name)) return name;
    }
}

void WriteBesideAndMoveOver(const std::wstring& target, const WriteContent& write) {
    const std::wstring temporary = TemporaryNameBeside(target);
    WriteWholeFile(temporary, false, write);
    Win32::CarryOverAttributesAndAccess(target, temporary);
    const uint32_t error = Win32::MoveFileOver(temporary, target);
    if (error != ERROR_SUCCESS) Win32::RemoveFileWhateverItsAttributes(temporary);
    ThrowIfFailed(error, "Unable to replace the file");
}

/// Writes `target`, whose former content lies at `backup` by now. On failure it is put back, or the text of the failure
/// tells where it is.
void WriteWithBackupAt(const std::wstring& backup, const ReplaceRequest& request, const WriteContent& write) {
    const auto putBack = [&] {
        return request.restoreOnFailure && Win32::MoveFileTo(backup, request.target) == ERROR_SUCCESS;
    };
    try {
        WriteWholeFile(request.target, false, write);
    } catch (const QVUtilsException& failure) {
        if (putBack()) throw;
        throw QVUtilsException(failure.GetErrorCode(),
                               std::string(failure.what()) + " (the original is kept in its .bak file)");
    } catch (...) {
        putBack();
        throw;
    }
}

}  // namespace

uint32_t ReplaceFileContent(const ReplaceRequest& request, const WriteContent& write) {
    const bool wantsBackup = request.keepBackup || request.dropBackup;
    if (wantsBackup && Win32::Exists(request.target)) {
        const std::wstring backup = FreeBackupName(request.target, Win32::Exists);
        if (!backup.empty()) {
            ThrowIfFailed(Win32::MoveFileTo(request.target, backup), "Unable to make a backup of the file");
            WriteWithBackupAt(backup, request, write);
            Win32::CarryOverAttributesAndAccess(backup, request.target);
            return request.keepBackup ? ERROR_SUCCESS : Win32::RemoveFileWhateverItsAttributes(backup);
        }
    }
    const bool mayOverwrite = request.mayOverwrite || wantsBackup;
    if (mayOverwrite && Win32::IsSameFile(request.source, request.target))
        WriteBesideAndMoveOver(request.target, write);
    else
        WriteWholeFile(request.target, mayOverwrite, write);
    return ERROR_SUCCESS;
}

}  // namespace QVUtils
