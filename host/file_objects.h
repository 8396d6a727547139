// file_objects.h - files and lists of files as the host hands them out. Paths are absolute and of any length.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/shelf.h"
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
    /// After a rename: the item stands for the same file.
    void SetPath(std::wstring path) { m_path = std::move(path); }

    uint32_t GetName(wchar_t* buffer, uint32_t capacity) override;
    uint32_t GetLocation(wchar_t* buffer, uint32_t capacity) override;
    uint32_t GetPath(wchar_t* buffer, uint32_t capacity) override;
    uint32_t GetAttributes() override;
    bool GetStoredProperty(uint16_t module, uint16_t propertyId, Quorvane::SDK::StoredPropertyValue* value) override;
    int32_t IsRemote() override;
    void Release() override;
    uint32_t QueryProperty(uint16_t propertyId, uint32_t one, Quorvane::SDK::StoredPropertyValue* value) override;
    void RefreshProperty(uint32_t one) override;

private:
    FileObjects& m_objects;
    std::wstring m_path;
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
