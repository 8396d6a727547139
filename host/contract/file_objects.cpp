#include "host/contract/file_objects.h"

#include "host/app/host_text.h"
#include "host/contract/host_boundary.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

/// The folder of a path as a person writes it: `C:\folder`, but `C:\`.
std::wstring_view LocationOf(std::wstring_view path) {
    return Win32::WithoutSeparator(Win32::FolderOf(path));
}

}  // namespace

FileItem::~FileItem() {
    m_objects.Forget(this);
}

uint32_t FileItem::GetName(wchar_t* buffer, uint32_t capacity) {
    return CopyText(Win32::FileNameOf(m_path), buffer, capacity);
}

uint32_t FileItem::GetLocation(wchar_t* buffer, uint32_t capacity) {
    return CopyText(LocationOf(m_path), buffer, capacity);
}

uint32_t FileItem::GetPath(wchar_t* buffer, uint32_t capacity) {
    return CopyText(m_path, buffer, capacity);
}

uint32_t FileItem::GetAttributes() {
    return Guarded(INVALID_FILE_ATTRIBUTES, [&] { return GetFileAttributesW(Win32::ExtendedPath(m_path).c_str()); });
}

void FileItem::StoreProperty(uint16_t propertyId, std::wstring value) {
    const std::lock_guard lock(m_storedMutex);
    m_stored.insert_or_assign(propertyId, std::move(value));
}

bool FileItem::FindStored(uint16_t propertyId, Quorvane::SDK::StoredPropertyValue* value) {
    const std::lock_guard lock(m_storedMutex);
    m_lastQueried = propertyId;
    const auto stored = m_stored.find(propertyId);
    // A longer one does not fit into the record; that is computed again each time.
    if (!value || stored == m_stored.end() || stored->second.size() >= std::size(value->text)) return false;
    value->status = -1;
    CopyText(stored->second, value->text, static_cast<uint32_t>(std::size(value->text)));
    return true;
}

bool FileItem::GetStoredProperty(uint16_t, uint16_t propertyId, Quorvane::SDK::StoredPropertyValue* value) {
    return Guarded(false, [&] { return FindStored(propertyId, value); });
}

int32_t FileItem::IsRemote() {
    if (m_path.starts_with(LR"(\\)")) return m_path.starts_with(LR"(\\?\)") ? 0 : 1;
    return GetDriveTypeW(m_path.substr(0, 3).c_str()) == DRIVE_REMOTE ? 1 : 0;
}

void FileItem::Release() {
    GuardedCall([&] { m_objects.m_handedOut.Remove(this); });
}

uint32_t FileItem::QueryProperty(uint16_t propertyId, uint32_t, Quorvane::SDK::StoredPropertyValue* value) {
    return Guarded(0u, [&] { return FindStored(propertyId, value) ? 1u : 0u; });
}

void FileItem::RefreshProperty(uint32_t) {
    GuardedCall([&] {
        const std::lock_guard lock(m_storedMutex);
        m_stored.erase(m_lastQueried);
    });
}

bool FileList::AddItem(Quorvane::SDK::IFileItem* item) {
    return Guarded(false, [&] {
        std::shared_ptr<FileItem> known = m_objects.FindItem(item);
        if (!known) return false;
        Add(std::move(known));
        return true;
    });
}

uint32_t FileList::GetCount() {
    return static_cast<uint32_t>(m_items.size());
}

Quorvane::SDK::IFileItem* FileList::GetItem(uint32_t index) {
    return index < m_items.size() ? m_items[index].get() : nullptr;
}

void FileList::Release() {
    GuardedCall([&] { m_objects.m_lists.Remove(this); });
}

std::shared_ptr<FileItem> FileObjects::MakeItem(std::wstring path) {
    auto item = std::make_shared<FileItem>(*this, std::move(path));
    const std::lock_guard lock(m_mutex);
    m_items[item.get()] = item;
    return item;
}

std::shared_ptr<FileItem> FileObjects::FindItem(const void* item) {
    const std::lock_guard lock(m_mutex);
    const auto entry = m_items.find(item);
    return entry == m_items.end() ? nullptr : entry->second.lock();
}

void FileObjects::Forget(const FileItem* item) {
    const std::lock_guard lock(m_mutex);
    m_items.erase(item);
}

}  // namespace QVHost
