// link_check.h - the names of the links that are to be made for many targets, and the thread that looks whether they
// can be made: it asks the system, which takes as long as its disks and other machines do.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "win32/system_lock.h"

namespace FileUtils {

struct LinkTarget {
    std::wstring path;
    bool isFolder = false;
};

/// The full path of a link. A shortcut gets ".lnk" unless its name ends so.
std::wstring LinkPath(uint32_t type, const std::wstring& folder, const std::wstring& name);

/// A name for each target: the one that was typed, else its own, or "a - link.txt" where that is the target itself.
/// A copy costs what was typed, not what the targets are.
class LinkNames {
public:
    explicit LinkNames(std::vector<LinkTarget> targets);

    const std::vector<LinkTarget>& Targets() const { return m_targets->all; }
    const std::wstring& Folder() const { return m_folder; }
    void SetFolder(const std::wstring& folder);
    void SetName(size_t row, const std::wstring& name) { m_typed[row] = name; }
    std::wstring NameOf(size_t row) const;  // without ".lnk"
    std::wstring LinkOf(uint32_t type, size_t row) const { return LinkPath(type, m_folder, NameOf(row)); }

private:
    struct Known {
        std::vector<LinkTarget> all;
        std::vector<size_t> folderOf;       // for each target, its place in `folders`
        std::vector<std::wstring> folders;  // full paths
    };
    std::shared_ptr<const Known> m_targets;
    std::wstring m_folder;
    std::vector<bool> m_isOwnFolder;  // for each of the targets' folders
    std::map<size_t, std::wstring> m_typed;
};

/// Why a link cannot be made; "" when it can. Called on the thread below.
using LinkCheck = std::function<std::wstring(uint32_t type, const std::wstring& link, const LinkTarget& target)>;

class LinkCheckThread {
public:
    /// `notify` is called on the thread when there is something to take. @throws std::system_error when there is no
    /// thread to be had
    LinkCheckThread(LinkCheck whyNot, std::function<void()> notify);
    /// Ends what the thread is waiting for, and waits for the thread.
    ~LinkCheckThread();
    LinkCheckThread(const LinkCheckThread&) = delete;
    LinkCheckThread& operator=(const LinkCheckThread&) = delete;

    /// Makes every request before this one void.
    void Request(LinkNames names, uint32_t type);
    /// What is wrong with the newest request, "" when nothing is; nothing while that is not known, or when it was
    /// taken.
    std::optional<std::wstring> Take();

private:
    struct Plan {
        LinkNames names;
        uint32_t type;
        uint64_t number;
    };
    /// What was found out about a row. It is not asked again while the link is the same.
    struct Checked {
        uint32_t type = 0;
        std::wstring link;
        std::wstring fault;
    };
    void Run(const std::stop_token& stop);
    std::wstring FaultOf(const Plan& plan);

    LinkCheck m_whyNot;
    std::function<void()> m_notify;
    std::vector<Checked> m_checked;  // the thread's own
    std::wstring m_failure;          // so too; made while there is memory
    std::atomic<uint64_t> m_newest = 0;
    std::atomic<uint32_t> m_threadId = 0;
    Win32::SystemLock m_mutex;
    Win32::SystemCondition m_wake;
    std::optional<Plan> m_plan;            // under the mutex
    std::optional<std::wstring> m_result;  // so too
    std::jthread m_thread;                 // last: it uses everything above
};

}  // namespace FileUtils
