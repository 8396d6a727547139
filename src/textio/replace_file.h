// replace_file.h - gives a file new content without ever risking what was there. Shared by everything that rewrites
// files: it decides the order of writing, moving aside and removing.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "textio/data_writer.h"

namespace QVUtils {

/// How a target is to be written.
struct ReplaceRequest {
    std::wstring target;
    bool mayOverwrite = false;  // an existing target is replaced, else it is an error (code 80)
    bool keepBackup = false;    // an existing target is moved aside, and stays there
    bool dropBackup = false;    // as keepBackup, but the backup is deleted once the new file is in its place
};

/// A new content for one file. Nothing of the old one is touched before the new one is complete:
///
/// - An existing target is written beside itself. When complete, it gets the old file's attributes and access list, the
///   old file is moved to a free backup name or replaced, and the new one takes its name. When none of the backup names
///   is free, the old file is replaced without a backup. So the source of the content may be the target itself, and may
///   still be open for reading while it is written.
/// - A new target is created under its name, and removed again unless it is completed.
/// - A target that is no ordinary file (a device) is written as it is.
class FileReplacement {
public:
    /// Only takes notice; nothing is opened yet.
    explicit FileReplacement(ReplaceRequest request) : m_request(std::move(request)) {}
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    /// Removes what was written, unless it was committed.
    ~FileReplacement();

    /// Opens the file to write to. @throws QVUtilsException "Unable to open file for writing"
    void Begin();
    bool HasBegun() const noexcept { return m_buffer.has_value(); }
    /// Buffered. Only after Begin.
    DataWriter& GetWriter() { return *m_buffer; }

    /// Puts the new content in the target's place; every other user of the target must be closed by now. Returns 0, or
    /// the Windows error code for which a backup that was to be deleted is still there.
    /// @throws QVUtilsException whatever writing or moving reports; the old file then has its name and content
    uint32_t Commit();

private:
    bool WantsBackup() const { return m_request.keepBackup || m_request.dropBackup; }
    uint32_t TakePlace(const Win32::AttributesAndAccess& present);
    uint32_t MoveOver();

    ReplaceRequest m_request;
    std::wstring m_path;    // what is written, as the system takes it at any length
    bool m_isOurs = false;  // it was created here and is not complete yet
    bool m_isBeside = false;
    FileDataWriter m_file;
    std::optional<BufferedDataWriter> m_buffer;
};

/// Writes a target's content; what it throws makes the replacement fail.
using WriteContent = std::function<void(DataWriter&)>;

/// A whole replacement in one go. Result and failures: those of FileReplacement::Commit, and what `write` throws.
uint32_t ReplaceFileContent(const ReplaceRequest& request, const WriteContent& write);

}  // namespace QVUtils
