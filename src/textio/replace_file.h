// replace_file.h - gives a file new content without ever risking what was there. Shared by everything that rewrites
// files: it decides the order of writing, moving aside and removing.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "textio/data_reader.h"
#include "textio/data_writer.h"
#include "win32/files.h"

namespace QVUtils {

/// How a target is to be written.
struct ReplaceRequest {
    std::wstring target;
    bool mayOverwrite = false;  // an existing target is replaced, else it is an error (code 80)
    bool keepBackup = false;    // an existing target is moved aside, and stays there
    bool dropBackup = false;    // as keepBackup, but the backup is deleted once the new file is in its place
    /// Path of the new content until it takes an existing target's place, and after that when it cannot: a complete
    /// content then stays there. It must be free, and goes with no backup. Empty: a name that nobody can guess, and
    /// nothing stays.
    std::wstring temporaryPath = {};
    bool keepsPart = false;  // a new target that cannot be completed stays with what was written of it
    FileSharing sharing = FileSharing::ReadAndWrite;  // of a new target while it is written
    /// For the programs' own records: a new target gets its name only when it is complete, and the bytes of any target
    /// are on disk before.
    bool isRecord = false;
};

/// The file at `path`, which `reader` has open, as it was when it was opened: what comes of its content may take its
/// place only while it is still so.
/// @throws QVUtilsException "Unable to read the access rights of the file"
Win32::FileState OriginalOf(const FileDataReader& reader, const std::wstring& path);
/// The same when `target` is that path, in whatever letters; else nothing.
std::optional<Win32::FileState> OriginalOf(const FileDataReader& reader, const std::wstring& path,
                                           const std::wstring& target);

/// A new content for one file. Nothing of the old one is touched before the new one is complete:
///
/// - An existing target is written beside itself, under a name that nobody can guess and with the old file's access
///   list from the start. When complete, it gets the old file's streams and attributes, the old file is moved to a free
///   backup name or replaced, and the new one takes its name as it stands on disk. When none of the backup names is
///   free, the old file is replaced without a backup. So the source of the content may be the target itself, and may
///   still be open for reading while it is written.
/// - A target that another program has saved or replaced meanwhile stays as that program left it.
/// - A new target is created under its name (a record beside it), and removed again unless it is completed or its part
/// is
///   to stay.
/// - A target that is no ordinary file (a device) is written as it is.
class FileReplacement {
public:
    /// Only takes notice; nothing is opened yet.
    explicit FileReplacement(ReplaceRequest request) : m_request(std::move(request)) {}
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    /// Removes what was written, unless it was committed or is to stay.
    ~FileReplacement();

    /// Opens the file to write to. `original` is the target as it was read, when the content is made from it; without,
    /// an existing target is as it is now.
    /// @throws QVUtilsException "Unable to open file for writing", "Unable to read the access rights of the file"
    void Begin(std::optional<Win32::FileState> original = std::nullopt);
    bool HasBegun() const noexcept { return m_buffer.has_value(); }
    /// Buffered. Only after Begin.
    DataWriter& GetWriter() { return *m_buffer; }

    /// Puts the new content in the target's place; every other user of the target must be closed by now. Returns 0, or
    /// the Windows error code for which something stays beside the target: a backup that was to be deleted, or the
    /// complete content under `temporaryPath`.
    /// @throws QVUtilsException whatever writing or moving reports; the old file then has its name and content
    uint32_t Commit();

private:
    bool WantsBackup() const { return m_request.keepBackup || m_request.dropBackup; }
    bool StaysWhenNotMoved() const { return !m_request.temporaryPath.empty(); }
    bool LookAtTarget();
    void KeepPart() noexcept;
    uint32_t Complete();
    uint32_t TakePlace();
    uint32_t MoveToTarget();

    ReplaceRequest m_request;
    std::wstring m_path;    // what is written, as the system takes it at any length
    bool m_isOurs = false;  // it was created here and is not complete yet
    bool m_isBeside = false;
    bool m_isNew = false;                        // there is no target yet
    std::optional<Win32::FileState> m_original;  // of a target beside which is written
    FileDataWriter m_file;
    std::optional<BufferedDataWriter> m_buffer;
};

/// Writes a target's content; what it throws makes the replacement fail.
using WriteContent = std::function<void(DataWriter&)>;

/// A whole replacement in one go; `original` as for FileReplacement::Begin. Result and failures: those of
/// FileReplacement::Commit, and what `write` throws.
uint32_t ReplaceFileContent(const ReplaceRequest& request, const WriteContent& write,
                            std::optional<Win32::FileState> original = std::nullopt);

/// Writes a record that is in memory. Windows error code, 0 for success; a target that may not be overwritten is 183.
uint32_t ReplaceRecord(const std::wstring& target, std::string_view bytes, bool mayOverwrite);

}  // namespace QVUtils
