#include "batchrename/run/undo_store.h"

#include <algorithm>
#include <string_view>

#include "batchrename/rule_context.h"
#include "textio/replace_file.h"
#include "win32/files.h"
#include "win32/folder.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace BatchRename {
namespace {

constexpr uint64_t kLargestFile = 256 * 1024 * 1024;  // bytes; a session of a million long paths is below

std::string_view BytesOf(std::wstring_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

bool ReadAll(const std::wstring& path, std::string& bytes) {
    const Win32::FileHandle file(CreateFileW(Win32::ExtendedPath(path).c_str(), GENERIC_READ,
                                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                             OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    LARGE_INTEGER size = {};
    if (!file || !GetFileSizeEx(file.Get(), &size) || static_cast<uint64_t>(size.QuadPart) > kLargestFile) return false;
    bytes.resize(static_cast<size_t>(size.QuadPart));
    DWORD read = 0;
    if (!ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) return false;
    bytes.resize(read);
    return true;
}

}  // namespace

void UndoProgress::Step(size_t entry, std::wstring_view name) {
    if (m_file) Append(FormatStep(entry, name));
}

void UndoProgress::FailedStep(size_t entry) {
    if (m_file) Append(FormatFailedStep(entry));
}

/// A line that cannot be written is not worth stopping a run for: what is in the file already stays true, and the
/// session is written anew at the end.
void UndoProgress::Append(const std::wstring& line) {
    const std::string_view bytes = BytesOf(line);
    DWORD written = 0;
    WriteFile(m_file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

void UndoStore::SetFolder(const std::wstring& folder) {
    m_folder = Win32::JoinPath(folder, L"");
    m_sessions.clear();
    std::vector<std::wstring> names;
    Win32::ListFolder(m_folder, L"*.dat", names);
    for (const std::wstring& name : names) {
        auto session = std::make_shared<BatchRenameUndo>();
        session->fileName = name;
        std::string bytes;
        // One that cannot be read at all is listed too, without entries: the user should see that it is there.
        if (ReadAll(m_folder + name, bytes)) ParseSession(DecodeSession(bytes), *session);
        m_sessions.push_back(std::move(session));
    }
    std::ranges::stable_sort(m_sessions, [](const auto& left, const auto& right) {
        const int64_t leftTime = SecondsOf(left->time);
        const int64_t rightTime = SecondsOf(right->time);
        return leftTime != rightTime ? leftTime > rightTime : left->fileName > right->fileName;
    });
}

std::wstring UndoStore::PathOf(BatchRenameUndo& session) {
    return Win32::JoinPath(m_folder, FileNameOf(session));
}

/// A session is there whole or not at all.
uint32_t UndoStore::WriteFileOf(BatchRenameUndo& session, bool mayReplace) {
    // A host without a configuration folder: what has no folder would land in whichever is the current one.
    if (m_folder.empty()) return m_lastError = ERROR_PATH_NOT_FOUND;
    Win32::MakeFolders(m_folder);
    const std::wstring text = FormatSession(session);
    return m_lastError = QVUtils::ReplaceRecord(PathOf(session), BytesOf(text), mayReplace);
}

UndoProgress UndoStore::OpenAtEnd(BatchRenameUndo& session) {
    Win32::FileHandle file(CreateFileW(Win32::ExtendedPath(PathOf(session)).c_str(), FILE_APPEND_DATA, FILE_SHARE_READ,
                                       nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    m_lastError = file ? ERROR_SUCCESS : GetLastError();
    return UndoProgress(std::move(file));
}

UndoProgress UndoStore::Begin(const std::shared_ptr<BatchRenameUndo>& session) {
    session->isUnfinished = true;
    while (WriteFileOf(*session, false) == ERROR_ALREADY_EXISTS) {
        // Another run of this second has the name. The session's own time counts on, because the clock may have been
        // set back.
        session->time = TimeOfSeconds(SecondsOf(session->time) + 1);
        session->fileName.clear();
        const CalendarTime now = LocalTimeNow();
        if (SecondsOf(session->time) > SecondsOf(now)) Sleep(static_cast<DWORD>(1000 - now.millisecond));
    }
    if (m_lastError != ERROR_SUCCESS) return {};
    UndoProgress progress = OpenAtEnd(*session);
    if (!progress) {
        // What cannot be kept true must not stay as a record of something planned.
        Win32::RemoveFile(PathOf(*session));
        return {};
    }
    m_sessions.insert(m_sessions.begin(), session);
    return progress;
}

UndoProgress UndoStore::BeginRestore(BatchRenameUndo& session) {
    if (Write(session) != ERROR_SUCCESS) return {};
    return OpenAtEnd(session);
}

uint32_t UndoStore::Write(BatchRenameUndo& session) {
    return WriteFileOf(session, true);
}

bool UndoStore::Delete(const std::shared_ptr<BatchRenameUndo>& session) {
    const auto found = std::ranges::find(m_sessions, session);
    if (found == m_sessions.end() || !DeleteFileOf(*session)) return false;
    m_sessions.erase(found);
    return true;
}

bool UndoStore::DeleteFileOf(BatchRenameUndo& session) {
    m_lastError = Win32::RemoveFile(PathOf(session));
    return m_lastError == ERROR_SUCCESS;
}

}  // namespace BatchRename
