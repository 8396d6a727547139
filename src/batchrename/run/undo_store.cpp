#include "batchrename/run/undo_store.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include "batchrename/rule_context.h"
#include "textio/replace_file.h"
#include "win32/files.h"
#include "win32/folder.h"
#include "win32/handle.h"
#include "win32/path.h"
#include "win32/text.h"
#include "win32/windows.h"

namespace BatchRename {
namespace {

constexpr uint64_t kLargestFile = 256 * 1024 * 1024;  // bytes; a session of a million long paths is below

std::string_view BytesOf(std::wstring_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

bool ReadAll(const std::wstring& path, std::string& bytes) {
    const Win32::FileHandle file(CreateFileW(Win32::ExtendedPath(path).c_str(), GENERIC_READ, Win32::kShareAll, nullptr,
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

void UndoStore::SetFolder(const std::wstring& folder) {
    m_folder = Win32::JoinPath(folder, L"");
    m_sessions.clear();
    m_isListed = false;
}

std::shared_ptr<BatchRenameUndo> UndoStore::Read(const std::wstring& fileName) const {
    auto session = std::make_shared<BatchRenameUndo>();
    session->fileName = fileName;
    std::string bytes;
    // One that cannot be read at all is there too, without entries: the user should see it.
    if (ReadAll(m_folder + fileName, bytes)) ParseSession(DecodeSession(bytes), *session);
    return session;
}

const std::vector<std::shared_ptr<BatchRenameUndo>>& UndoStore::Sessions() {
    if (m_isListed) return m_sessions;
    m_sessions.clear();
    for (const Listed& listed : ListFolder())
        m_sessions.push_back(listed.session ? listed.session : Read(listed.fileName));
    m_isListed = true;
    return m_sessions;
}

std::vector<UndoStore::Listed> UndoStore::ListFolder() const {
    std::vector<Win32::FolderEntry> entries;
    Win32::ListFolder(m_folder, L"*.dat", entries);
    std::vector<Listed> all;
    for (Win32::FolderEntry& entry : entries) {
        if ((entry.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
        Listed listed;
        std::wstring& name = entry.name;
        if (const std::optional<CalendarTime> time = TimeOfFileName(name)) {
            listed.seconds = SecondsOf(*time);
        } else {
            listed.session = Read(name);
            listed.seconds = SecondsOf(listed.session->time);
        }
        listed.fileName = std::move(name);
        all.push_back(std::move(listed));
    }
    std::ranges::sort(all, std::greater(), [](const Listed& one) { return std::tie(one.seconds, one.fileName); });
    return all;
}

std::shared_ptr<BatchRenameUndo> UndoStore::FindNewest(const std::function<bool(const BatchRenameUndo&)>& isWanted) {
    if (m_isListed) {
        const auto found = std::ranges::find_if(m_sessions, [&](const auto& session) { return isWanted(*session); });
        return found == m_sessions.end() ? nullptr : *found;
    }
    for (const Listed& listed : ListFolder()) {
        const auto session = listed.session ? listed.session : Read(listed.fileName);
        if (isWanted(*session)) return m_sessions.emplace_back(session);
    }
    return nullptr;
}

std::shared_ptr<BatchRenameUndo> UndoStore::Find(const std::wstring& name) {
    if (name.find_first_of(L"\\/*?") != std::wstring::npos) return nullptr;
    constexpr std::wstring_view kEnding = L".dat";
    for (const std::wstring& fileName : {name, name + std::wstring(kEnding)}) {
        std::vector<std::wstring> found;  // in the letters of the folder
        if (fileName.size() > kEnding.size() && Win32::EqualIgnoringCase(fileName.substr(fileName.size() - 4), kEnding))
            Win32::ListFolder(m_folder, fileName, found);
        if (found.size() == 1) return m_sessions.emplace_back(Read(found.front()));
    }
    return nullptr;
}

std::wstring UndoStore::PathOf(BatchRenameUndo& session) {
    return Win32::JoinPath(m_folder, FileNameOf(session));
}

/// A session is there whole or not at all.
uint32_t UndoStore::WriteFileOf(BatchRenameUndo& session, bool mayReplace) {
    // A host without a configuration folder: what has no folder would land in whichever is the current one.
    if (m_folder.empty()) return ERROR_PATH_NOT_FOUND;
    Win32::MakeFolders(m_folder);
    const std::wstring text = FormatSession(session);
    return QVUtils::ReplaceRecord(PathOf(session), BytesOf(text), mayReplace);
}

UndoProgress UndoStore::OpenAtEnd(BatchRenameUndo& session) {
    // Shared, since a function object must be possible to copy.
    const auto file = std::make_shared<Win32::FileHandle>(CreateFileW(Win32::ExtendedPath(PathOf(session)).c_str(),
                                                                      FILE_APPEND_DATA, FILE_SHARE_READ, nullptr,
                                                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    m_lastError = *file ? ERROR_SUCCESS : GetLastError();
    if (!*file) return {};
    return UndoProgress([this, file](std::wstring_view line) {
        const std::string_view bytes = BytesOf(line);
        DWORD written = 0;
        const bool isWritten =
            WriteFile(file->Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
            (!m_isDurable || FlushFileBuffers(file->Get()));
        if (isWritten && written == bytes.size()) return true;
        m_lastError = isWritten ? ERROR_DISK_FULL : GetLastError();
        return false;
    });
}

/// The clock may have been set back, as it is each autumn or on a journey. The session comes after the newest all the
/// same: what was done last is undone first. One further ahead is from a clock that was wrong, and does not count.
void UndoStore::PutAfterTheNewest(BatchRenameUndo& session) const {
    constexpr int64_t kLargestStep = 26 * 60 * 60;  // seconds between the time zones that are furthest apart
    std::vector<std::wstring> names;
    Win32::ListFolder(m_folder, L"*.dat", names);
    const std::wstring own = FileNameOf(session);
    const int64_t latest = SecondsOf(session.time) + kLargestStep;
    int64_t newest = 0;
    for (const std::wstring& name : names) {
        // Names of this kind are in the order of their times; hardly any is taken apart.
        const std::optional<CalendarTime> time = name > own ? TimeOfFileName(name) : std::nullopt;
        const int64_t seconds = time ? SecondsOf(*time) : 0;
        if (seconds <= latest) newest = std::max(newest, seconds);
    }
    if (newest == 0) return;
    session.time = TimeOfSeconds(newest + 1);
    session.fileName.clear();
}

UndoProgress UndoStore::Begin(const std::shared_ptr<BatchRenameUndo>& session) {
    session->isUnfinished = true;
    PutAfterTheNewest(*session);
    while ((m_lastError = WriteFileOf(*session, false)) == ERROR_ALREADY_EXISTS) {
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
    m_lastError = Write(session);
    return m_lastError == ERROR_SUCCESS ? OpenAtEnd(session) : UndoProgress();
}

uint32_t UndoStore::Write(BatchRenameUndo& session) {
    return WriteFileOf(session, true);
}

bool UndoStore::Delete(const std::shared_ptr<BatchRenameUndo>& session) {
    const auto found = std::ranges::find(m_sessions, session);
    if (found == m_sessions.end()) return false;
    m_lastError = Win32::RemoveFile(PathOf(*session));
    if (m_lastError != ERROR_SUCCESS) return false;
    m_sessions.erase(found);
    return true;
}

}  // namespace BatchRename
