// replace_file.h - the one place that gives a file new content, without ever risking what was there. Everything that
// takes a file's place asks it: it decides the order of writing, moving aside and removing.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "textio/data_reader.h"
#include "textio/data_writer.h"
#include "win32/successor.h"

namespace QVUtils {

/// The first of `path`.bak, `path`_(0002).bak ... `path`_(9999).bak for which `exists` says no; empty when all exist.
std::wstring FreeBackupName(const std::wstring& path, const std::function<bool(const std::wstring&)>& exists);

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
    Win32::FileSharing sharing = Win32::FileSharing::ReadAndWrite;  // of a new target while it is written
    /// For the programs' own records: a new target gets its name only when it is complete, and a record that is there
    /// is replaced in one step, so that a program that reads it meanwhile finds the old one or the new one.
    bool isRecord = false;
};

/// The file at `path`, which `reader` has open, as it was when it was opened: what comes of its content may take its
/// place only while it is still so.
/// @throws QVUtilsException "Unable to read the access rights of the file"
Win32::FileState OriginalOf(const FileDataReader& reader, const std::wstring& path);
/// The same when `target` is that path, in whatever letters that mean the same file; else nothing.
std::optional<Win32::FileState> OriginalOf(const FileDataReader& reader, const std::wstring& path,
                                           const std::wstring& target);

/// A new content for one file. The source of the content may be the target itself, and may still be open for reading
/// while it is written. What an existing target can rely on:
///
/// 1. Rights never widen. The new content is written beside the target, for nobody else to read or write, into a file
///    that has the target's access list from its first byte, and its owner and group where the system lets this user
///    give them. Without the same list nothing is replaced. A backup is the original itself.
/// 2. Nobody's save is lost. A target whose number, size, write time or change time is another than when it was opened
///    stays as it is, and from that look until it has been moved nobody can open it for writing. A file that was
///    given its name between the look and the move is put back. (A record is replaced in one step instead, and let go
///    of for that.)
/// 3. Durable. The new content is on disk before the target is touched, and has its name on disk before a backup is
///    deleted. A target's content is under its own name or its backup's at any time.
/// 4. The file stays what it is: name as it stands on disk, attributes, creation time, compression, encryption,
/// streams.
///    What the system alone carries over it is asked to (ReplaceFileW); where the file system refuses that, it is done
///    here, as far as it can be. What a link leads to is replaced in its own folder, and the link stays. A file of
///    several names (hard links) stays as it is: a new one would have one of them.
/// 5. Patience. A target that another program holds is tried again for a quarter of a second.
/// 6. Nothing of ours stays: temporary files have random names, are never made over another file, go on every way out,
///    and when this process is killed, with the next run in that folder (RemoveLeftovers).
/// 7. What cannot be a file's name - a device, a stream - is refused before anything is written.
///
/// When all names for backups are taken, the target is replaced without one; also when the target's name leaves too few
/// characters for a backup's, unless the backup is to stay (code 206). A new target is created under its name (a record
/// beside it), and removed again unless it is completed or its part is to stay.
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
    /// @throws QVUtilsException "Unable to open file for writing", "Unable to read the access rights of the file", "The
    /// target cannot be a file name", "The file has several names (hard links)"
    void Begin(std::optional<Win32::FileState> original = std::nullopt);
    bool HasBegun() const noexcept { return m_buffer.has_value(); }
    /// Buffered, and a large content is written on a thread of its own: what fails may show later, at the latest in
    /// Commit. Only after Begin.
    DataWriter& GetWriter() { return *m_buffer; }

    /// Puts the new content in the target's place; every other user of the target must be closed by now. Returns 0, or
    /// the Windows error code for which something stays beside the target: a backup that was to be deleted, or, when
    /// IsInPlace is false, the complete content under `temporaryPath`.
    /// @throws QVUtilsException whatever writing or moving reports; the old file then has its name and content
    uint32_t Commit();
    bool IsInPlace() const noexcept { return m_isInPlace; }

private:
    bool WantsBackup() const { return m_request.keepBackup || m_request.dropBackup; }
    bool StaysWhenNotMoved() const { return !m_request.temporaryPath.empty(); }
    void LookAtTarget();
    void CreateBeside();
    void KeepPart() noexcept;
    void FlushToDisk();
    uint32_t ReplaceTarget();
    uint32_t HoldTarget();
    std::optional<uint32_t> ReplaceBySystem();
    uint32_t ReplaceByHand();
    uint32_t MoveToTarget(bool mayReplace);
    uint32_t MoveIn(const std::wstring& backup);
    uint32_t NotMoved(uint32_t error, const char* message) const;
    [[noreturn]] void BringBack(const std::wstring& backup, uint32_t error, const char* message,
                                decltype(&Win32::MoveFileTo) move);
    uint32_t FinishWith(const std::wstring& backup);

    ReplaceRequest m_request;
    std::wstring m_path;    // what is written, as the system takes it at any length
    bool m_isOurs = false;  // it was created here and is not complete yet
    bool m_isBeside = false;
    bool m_isNew = false;      // there is no target yet
    bool m_isDerived = false;  // the new content is made from the target's
    bool m_isInPlace = false;
    std::optional<Win32::FileState> m_original;  // of a target beside which is written
    Win32::HeldFile m_held;                      // the target, from the last look at it on
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
/// `original` as for FileReplacement::Begin. Leftovers in the record's folder go.
uint32_t ReplaceRecord(const std::wstring& target, std::string_view bytes, bool mayOverwrite,
                       std::optional<Win32::FileState> original = std::nullopt);

}  // namespace QVUtils
