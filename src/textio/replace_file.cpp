#include "textio/replace_file.h"

#include "win32/file_name.h"
#include "win32/files.h"
#include "win32/handle.h"
#include "win32/path.h"
#include "win32/text.h"

namespace QVUtils {
namespace {

constexpr char kCannotOpen[] = "Unable to open file for writing";
constexpr char kUnreadable[] = "Unable to read the access rights of the file";
constexpr char kNoBackup[] = "Unable to make a backup of the file";
constexpr char kNotReplaced[] = "Unable to replace the file";
constexpr char kNoRights[] = "Unable to carry over the access rights of the file";
constexpr char kChanged[] = "The file was changed while it was read";

void ThrowIfFailed(uint32_t error, const char* message) {
    if (error != ERROR_SUCCESS) throw QVUtilsException(error, message);
}

/// @throws QVUtilsException when the state cannot be read
Win32::FileState StateOf(void* openFile, const std::wstring& path, const Win32::FileStamp& stamp) {
    Win32::FileState state;
    ThrowIfFailed(Win32::GetState(openFile, path, state), kUnreadable);
    state.stamp = stamp;
    return state;
}

}  // namespace

std::wstring FreeBackupName(const std::wstring& path, const std::function<bool(const std::wstring&)>& exists) {
    constexpr int kLastAttempt = 9999;
    std::wstring name = path + L".bak";
    for (int attempt = 2; exists(name); ++attempt) {
        if (attempt > kLastAttempt) return {};
        const std::wstring digits = std::to_wstring(attempt);
        name = path;
        name.append(L"_(").append(4 - digits.size(), L'0').append(digits).append(L").bak");
    }
    return name;
}

Win32::FileState OriginalOf(const FileDataReader& reader, const std::wstring& path) {
    return StateOf(reader.GetSystemHandle(), path, reader.GetStamp());
}

std::optional<Win32::FileState> OriginalOf(const FileDataReader& reader, const std::wstring& path,
                                           const std::wstring& target) {
    // There are folders that hold two files whose names differ in the case of letters only.
    const bool isSame = path == target || (Win32::EqualIgnoringCase(path, target) && Win32::IsSameFile(path, target));
    return isSame ? std::optional(OriginalOf(reader, path)) : std::nullopt;
}

FileReplacement::~FileReplacement() {
    if (m_isOurs && !m_isBeside && m_request.keepsPart) KeepPart();
    if (m_buffer) m_buffer->Stop();
    if (m_isOurs && m_isBeside) Win32::RemoveWhenClosed(m_file.GetSystemHandle());
    m_file.Abandon();
    if (m_isOurs) Win32::RemoveFileAt(m_path.c_str());
}

void FileReplacement::Begin(std::optional<Win32::FileState> original) {
    const std::wstring& path = m_request.target;
    if (!original && !Win32::IsFileName(Win32::FileNameOf(path)))
        throw QVUtilsException(ErrorCode::InvalidName, "The target cannot be a file name");
    m_isDerived = original.has_value();
    m_isNew = !original && !Win32::Exists(path);
    if (!m_isNew && !m_request.mayOverwrite && !WantsBackup())
        throw QVUtilsException(ErrorCode::FileExists, kCannotOpen);
    m_original = std::move(original);
    if (!m_isNew) LookAtTarget();
    m_isBeside = !m_isNew || m_request.isRecord;
    if (m_isBeside) {
        CreateBeside();
    } else {
        m_path = Win32::ExtendedPath(path);
        // What was not seen a moment ago may still be there: it must not be emptied.
        m_isOurs = m_file.Open(path, false, m_request.sharing);
    }
    m_buffer.emplace(m_file);
}

/// Can the target be written at all, and is it one that a new file can stand for? Asked before work is spent on its
/// replacement. A read-only file cannot be opened for writing, but it can be moved aside.
void FileReplacement::LookAtTarget() {
    if (!m_original || !(WantsBackup() || StaysWhenNotMoved())) {
        const DWORD access = READ_CONTROL | (WantsBackup() ? FILE_READ_ATTRIBUTES : GENERIC_WRITE);
        const Win32::FileHandle file(CreateFileW(Win32::ExtendedPath(m_request.target).c_str(), access,
                                                 Win32::kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
        if (!file) throw QVUtilsException(GetLastError(), kCannotOpen);
        Win32::FileStamp stamp;
        if (!m_original) ThrowIfFailed(Win32::GetStamp(file.Get(), stamp), kUnreadable);
        if (!m_original) m_original = StateOf(file.Get(), m_request.target, stamp);
    }
    // A new file would have one of the names, and writing into this one would risk its content.
    if (m_original->linkCount > 1)
        throw QVUtilsException(ERROR_NOT_SUPPORTED, "The file has several names (hard links)");
}

void FileReplacement::CreateBeside() {
    if (m_isNew) m_original.emplace().path = m_request.target;
    m_path = StaysWhenNotMoved() ? Win32::ExtendedPath(m_request.temporaryPath)
                                 : Win32::TemporaryNameBeside(m_original->path);
    Win32::Successor made = Win32::CreateSuccessor(m_path, *m_original);
    ThrowIfFailed(made.error, kCannotOpen);
    ThrowIfFailed(made.rightsError, kNoRights);
    m_file.Adopt(std::move(made.file));
    m_isOurs = true;
}

void FileReplacement::KeepPart() noexcept {
    m_isOurs = false;
    try {
        m_buffer->Flush();
    } catch (const std::exception&) {
        // What could be written of it is there.
    }
}

uint32_t FileReplacement::Commit() {
    m_buffer->Flush();
    uint32_t error = ERROR_SUCCESS;
    if (!m_isBeside) {
        m_file.Close();
        m_isInPlace = true;
    } else if (m_isNew) {
        FlushToDisk();
        // Another program may have given the name to a file of its own since Begin.
        error = MoveToTarget(m_request.mayOverwrite);
    } else {
        error = ReplaceTarget();
    }
    m_isOurs = false;
    m_file.Abandon();  // its content is on disk
    return error;
}

void FileReplacement::FlushToDisk() {
    ThrowIfFailed(Win32::FlushFile(m_file.GetSystemHandle()), "Failed to write data to file");
}

uint32_t FileReplacement::ReplaceTarget() {
    const std::vector<std::wstring> streams = Win32::NamedStreamsOf(m_original->path);
    if (!m_request.isRecord && Win32::NeedsSystemToReplace(*m_original, streams))
        if (const auto result = ReplaceBySystem()) return *result;
    ThrowIfFailed(Win32::CopyStreams(m_original->path, m_path, streams),
                  "Unable to carry over the named streams of the file");
    Win32::CarryOverAttributes(*m_original, m_file.GetSystemHandle());
    FlushToDisk();
    if (const uint32_t error = HoldTarget()) return NotMoved(error, WantsBackup() ? kNoBackup : kNotReplaced);
    return ReplaceByHand();
}

/// The last look before the target is replaced. Windows error code for which it cannot be replaced now, 0 when it can.
/// @throws QVUtilsException when another program has saved or replaced it
uint32_t FileReplacement::HoldTarget() {
    // A file that is not to be changed is moved only for a request that asked for a backup.
    if (!WantsBackup() && (m_original->attributes & FILE_ATTRIBUTE_READONLY)) return ERROR_ACCESS_DENIED;
    const uint32_t error = Win32::HoldUnchanged(*m_original, m_held);
    if (error == ERROR_FILE_INVALID) throw QVUtilsException(ErrorCode::ReadFault, kChanged);
    return error;
}

/// Commit's result; nothing when the system refuses, and both files are as they were.
std::optional<uint32_t> FileReplacement::ReplaceBySystem() {
    FlushToDisk();
    if (HoldTarget() != ERROR_SUCCESS) return std::nullopt;
    // The system overwrites the backup's name: a file of ours keeps it from others.
    FileDataWriter placeholder;
    uint32_t placeError = ERROR_SUCCESS;
    const std::wstring backup = FreeBackupName(m_original->path, [&](const std::wstring& name) {
        try {
            placeholder.Open(name, false);
        } catch (const QVUtilsException& failure) {
            placeError = failure.GetErrorCode();
            return placeError == ErrorCode::FileExists;
        }
        placeError = ERROR_SUCCESS;
        return false;
    });
    if (placeError) return std::nullopt;
    placeholder.Abandon();
    m_held.reset();
    m_file.Close();
    const uint32_t error = Win32::ReplaceBySystem(*m_original, m_path, backup);
    if (error != ERROR_SUCCESS && Win32::CheckMoved(backup, *m_original) == ERROR_SUCCESS) return MoveIn(backup);
    if (error != ERROR_SUCCESS) {
        Win32::RemoveFile(backup);
        m_file.Adopt(Win32::OpenSuccessor(m_path));
        return std::nullopt;
    }
    m_isOurs = false;
    if (!Win32::GiveRights(m_original->path, *m_original))
        BringBack(backup, ERROR_INVALID_SECURITY_DESCR, kNoRights, Win32::MoveFileOver);
    return FinishWith(backup);
}

/// Gives the complete file the target's name.
uint32_t FileReplacement::ReplaceByHand() {
    if (m_request.isRecord || !(m_isDerived || WantsBackup())) return MoveToTarget(true);
    // Moving is the question: asking first whether a name is free would cost another walk through the folder, and its
    // answer could be out of date.
    uint32_t error = ERROR_SUCCESS;
    const std::wstring backup = FreeBackupName(m_original->path, [&](const std::wstring& name) {
        const bool fits = Win32::FileNameOf(name).size() <= Win32::kLongestName;
        error = fits ? Win32::MoveFileTo(m_original->path, name) : ERROR_FILENAME_EXCED_RANGE;
        return error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS;
    });
    // Of a backup that is to be deleted anyway the name alone must not end the work.
    const bool isNameless = backup.empty() || (error == ERROR_FILENAME_EXCED_RANGE && !m_request.keepBackup);
    if (isNameless) return MoveToTarget(true);
    return error ? NotMoved(error, WantsBackup() ? kNoBackup : kNotReplaced) : MoveIn(backup);
}

uint32_t FileReplacement::MoveToTarget(bool mayReplace) {
    m_held.reset();  // a file that is open is not replaced
    const uint32_t error = Win32::MoveFileThrough(m_path, m_original->path, mayReplace);
    if (error) return NotMoved(error, kNotReplaced);
    m_isOurs = false;
    m_isInPlace = true;
    return ERROR_SUCCESS;
}

/// The target has been moved to `backup`, and its name is free.
uint32_t FileReplacement::MoveIn(const std::wstring& backup) {
    const uint32_t error = Win32::MoveFileThrough(m_path, m_original->path, false);
    if (error == ERROR_SUCCESS) return FinishWith(backup);
    if (StaysWhenNotMoved() && Win32::MoveFileTo(backup, m_original->path) == ERROR_SUCCESS) return error;
    BringBack(backup, error, kNotReplaced, Win32::MoveFileTo);
}

/// Gives the error back where the new content stays as it is.
/// @throws QVUtilsException else
uint32_t FileReplacement::NotMoved(uint32_t error, const char* message) const {
    if (!StaysWhenNotMoved()) ThrowIfFailed(error, message);
    return error;
}

/// @throws QVUtilsException
void FileReplacement::BringBack(const std::wstring& backup, uint32_t error, const char* message,
                                decltype(&Win32::MoveFileTo) move) {
    m_held.reset();
    const bool isBack = move(backup, m_original->path) == ERROR_SUCCESS;
    throw QVUtilsException(error,
                           isBack ? message : "Unable to replace the file (the original is kept in its .bak file)");
}

/// The new content has the target's name, which had `backup` before.
uint32_t FileReplacement::FinishWith(const std::wstring& backup) {
    m_isOurs = false;
    m_isInPlace = true;
    m_held.reset();
    m_file.Abandon();  // a file that is open is not replaced
    // A program that saves as it is done here may have given the name to its own file since the last look.
    const uint32_t doubt = Win32::CheckMoved(backup, *m_original);
    if (doubt == ERROR_FILE_INVALID) BringBack(backup, ErrorCode::ReadFault, kChanged, Win32::MoveFileOver);
    if (m_request.keepBackup) return ERROR_SUCCESS;
    return doubt ? doubt : Win32::RemoveFileWhateverItsAttributes(backup);
}

uint32_t ReplaceFileContent(const ReplaceRequest& request, const WriteContent& write,
                            std::optional<Win32::FileState> original) {
    FileReplacement replacement(request);
    replacement.Begin(std::move(original));
    write(replacement.GetWriter());
    return replacement.Commit();
}

uint32_t ReplaceRecord(const std::wstring& target, std::string_view bytes, bool mayOverwrite,
                       std::optional<Win32::FileState> original) {
    try {
        Win32::RemoveLeftovers(std::wstring(Win32::FolderOf(target)));
        return ReplaceFileContent(
            {.target = target, .mayOverwrite = mayOverwrite, .isRecord = true},
            [&](DataWriter& writer) { WriteAll(writer, bytes.data(), bytes.size()); }, std::move(original));
    } catch (const QVUtilsException& failure) {
        const uint32_t error = failure.GetErrorCode();
        return error == ErrorCode::FileExists ? ERROR_ALREADY_EXISTS : error;
    }
}

}  // namespace QVUtils
