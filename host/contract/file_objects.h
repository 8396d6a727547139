// file_objects.h - files and lists of files as the host hands them out. Paths are absolute and of any length.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/contract/shelf.h"
#include "sdk/file_list.h"

namespace QVHost {

class FileObjects;

class FileItem final : public Quorvane::SDK::IFileItem {
public:
    FileItem(FileObjects& objects, std::wstring path) : m_objects(objects), m_path(std::move(path)) {}
    ~FileItem();
    FileItem(const FileItem&) = delete;
    FileItem& operator=(const FileItem&) = delete;

    const std::wstring& Path() const { return m_path; }
    /// From now on the item knows this value of the property. All providers' ids share one table: the library has one.
    void StoreProperty(uint16_t propertyId, std::wstring value);
    /// After a rename: the item stands for the same file.
    void SetPath(std::wstring path) { m_path = std::move(path); }

    uint32_t GetName(wchar_t* buffer, uint32_t capacity) override;
    uint32_t GetLocation(wchar_t* buffer, uint32_t capacity) override;
    uint32_t GetPath(wchar_t* buffer, uint32_t capacity) override;
    uint32_t GetAttributes() override;
    bool GetStoredProperty(uint16_t module, uint16_t propertyId, Quorvane::SDK::StoredPropertyValue* value) override;
    /// A share, or a drive that is mapped to one.
    int32_t IsRemote() override;
    void Release() override;
    /// 1 and the value when the item knows one.
    uint32_t QueryProperty(uint16_t propertyId, uint32_t one, Quorvane::SDK::StoredPropertyValue* value) override;
    /// Forgets the value that was queried last, so that it is computed anew.
    void RefreshProperty(uint32_t one) override;

private:
    bool FindStored(uint16_t propertyId, Quorvane::SDK::StoredPropertyValue* value);

    FileObjects& m_objects;
    std::wstring m_path;
    std::mutex m_storedMutex;  // values may be asked for on any thread
    std::unordered_map<uint16_t, std::wstring> m_stored;
    uint16_t m_lastQueried = 0;
};

class FileList final : public Quorvane::SDK::IFileList {
public:
    explicit FileList(FileObjects& objects) : m_objects(objects) {}

    void Add(std::shared_ptr<FileItem> item) { m_items.push_back(std::move(item)); }
    const std::vector<std::shared_ptr<FileItem>>& Items() const { return m_items; }

    bool AddItem(Quorvane::SDK::IFileItem* item) override;
    uint32_t GetCount() override;
    Quorvane::SDK::IFileItem* GetItem(uint32_t index) override;
    void Release() override;

private:
    FileObjects& m_objects;
    std::vector<std::shared_ptr<FileItem>> m_items;
};

/// Makes and keeps items and lists, and knows which of the pointers that come back are its own. Outlives them all.
class FileObjects {
public:
    std::shared_ptr<FileItem> MakeItem(std::wstring path);
    /// Null for a pointer that is no living item of this host.
    std::shared_ptr<FileItem> FindItem(const void* item);
    /// Keeps the item alive until its Release.
    FileItem* HandOut(std::shared_ptr<FileItem> item) { return m_handedOut.Keep(std::move(item)); }

    FileList* MakeList() { return m_lists.Keep(std::make_shared<FileList>(*this)); }
    std::shared_ptr<FileList> FindList(const void* list) { return m_lists.Find(list); }

private:
    friend FileItem;
    friend FileList;
    void Forget(const FileItem* item);

    std::mutex m_mutex;
    std::unordered_map<const void*, std::weak_ptr<FileItem>> m_items;
    Shelf<FileItem> m_handedOut;
    Shelf<FileList> m_lists;
};

}  // namespace QVHost
