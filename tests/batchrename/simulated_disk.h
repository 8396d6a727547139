// simulated_disk.h - a disk in memory with a host that renames on it, for tests that need thousands of folders,
// failures at a given step, or a crash between two.
#pragma once

#include <algorithm>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "rename/rename_plan.h"
#include "rename/restore_rows.h"
#include "sdk/services.h"
#include "win32/text.h"

namespace QVTest {

/// What the simulated process dies of.
struct Crash {};

struct DiskItem {
    std::wstring location;
    std::wstring name;
    int content = 0;

    bool operator==(const DiskItem&) const = default;
};

/// Of a disk's items; those that are not counted may be given again.
enum class Numbers { None, NotCounted, Counted };

class SimulatedDisk final : public Quorvane::SDK::IFileOperations {
public:
    std::vector<DiskItem> items;
    int stepCount = 0;
    std::function<uint32_t(int step)> failure = [](int) { return 0u; };  // error of the step with this number
    std::set<int> locked;                                                // contents of items that somebody holds
    Numbers numbers = Numbers::Counted;
    int crashBefore = -1;  // announced, not done
    int crashAfter = -1;   // done, not reported

    void Add(const std::wstring& location, const std::wstring& name) {
        items.push_back({location, name, static_cast<int>(items.size()) + 1});
    }
    /// With the contents as the items' numbers, or without any.
    BatchRename::ListFolder Lister() {
        return [this](const std::wstring& folder) {
            BatchRename::FolderNames names;
            names.folder = folder;
            names.error = 3;  // a folder without items is none
            for (const DiskItem& item : items) {
                if (!Win32::EqualIgnoringCase(item.location, folder)) continue;
                names.error = 0;
                names.names.Add(item.name);
                if (numbers != Numbers::None) names.items.push_back({1, NumberOf(item)});
            }
            return names;
        };
    }
    BatchRename::FindItem Finder() const {
        return [this](const BatchRename::ItemIdentity& identity, const std::wstring&) {
            const auto item =
                std::ranges::find(items, identity.index, [this](const DiskItem& one) { return NumberOf(one); });
            return item != items.end() ? item->location + L"\\" + item->name : std::wstring();
        };
    }

    uint32_t RenameRows(const Quorvane::SDK::RenameRowInfo* rows, uint32_t count,
                        Quorvane::SDK::IRenameResultCallback* callback) override {
        for (uint32_t at = 0; at < count; ++at) {
            if (!callback->OnRenameStarting(rows[at].row)) return at;
            if (stepCount == crashBefore) throw Crash();
            const uint32_t injected = failure(stepCount);
            const uint32_t error = injected ? injected : Rename(rows[at].path, rows[at].newName);
            if (stepCount++ == crashAfter) throw Crash();
            if (!callback->OnRenameResult(rows[at].row, error)) return at + 1;
        }
        return count;
    }

    bool Exists(const wchar_t*) override { return false; }
    Quorvane::SDK::IFileItem* CreateFileItem(const wchar_t*, uint32_t) override { return nullptr; }
    bool SetFileList(Quorvane::SDK::IFileList*) override { return false; }
    Quorvane::SDK::IRenameBatch* CreateRenameBatch() override { return nullptr; }
    void EndRenameBatch(Quorvane::SDK::IRenameBatch*) override {}
    uint32_t CommitRenameBatch(Quorvane::SDK::IRenameBatch*, uint32_t) override { return 0; }
    bool GetPropertyName(uint32_t, wchar_t*, uint32_t) override { return false; }
    bool GetPropertyText(const wchar_t*, const wchar_t*, const wchar_t*, wchar_t*, uint32_t) override { return false; }

private:
    uint64_t NumberOf(const DiskItem& item) const {
        return (numbers == Numbers::Counted ? uint64_t{1} << 48 : 0) + static_cast<uint64_t>(item.content);
    }

    uint32_t Rename(const std::wstring& path, const std::wstring& newName) {
        DiskItem* found = nullptr;
        for (DiskItem& item : items)
            if (Win32::EqualIgnoringCase(item.location + L"\\" + item.name, path)) found = &item;
        if (!found) return 2;
        if (locked.contains(found->content)) return 32;
        for (const DiskItem& item : items)
            if (&item != found && Win32::EqualIgnoringCase(item.location, found->location) &&
                Win32::EqualIgnoringCase(item.name, newName))
                return 183;
        const std::wstring before = found->location + L"\\" + found->name;
        found->name = newName;
        const std::wstring after = found->location + L"\\" + newName;
        for (DiskItem& item : items) {
            const bool isInside = item.location == before || item.location.starts_with(before + L"\\");
            if (isInside) item.location = after + item.location.substr(before.size());
        }
        return 0;
    }
};

}  // namespace QVTest
