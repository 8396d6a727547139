#include "fileutils/links/link_check.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "fileutils/links/link_creation.h"
#include "sdk/boundary.h"
#include "win32/handle.h"
#include "win32/path.h"
#include "win32/text.h"

namespace FileUtils {
namespace {

constexpr std::wstring_view kShortcutExtension = L".lnk";

/// Equal for two spellings of one folder.
std::wstring KeyOf(std::wstring_view folder) {
    return Win32::ToUpperCase(Win32::WithoutSeparator(Win32::FullPath(std::wstring(folder))));
}

}  // namespace

std::wstring LinkPath(uint32_t type, const std::wstring& folder, const std::wstring& name) {
    std::wstring path = Win32::JoinPath(folder, name);
    const size_t stem = path.size() - std::min(path.size(), kShortcutExtension.size());
    const bool endsSo = Win32::EqualIgnoringCase(std::wstring_view(path).substr(stem), kShortcutExtension);
    if (type == LinkType::Shortcut && !name.empty() && !endsSo) path += kShortcutExtension;
    return path;
}

LinkNames::LinkNames(std::vector<LinkTarget> targets) {
    Known known;
    known.all = std::move(targets);
    std::unordered_map<std::wstring_view, size_t> places;
    for (const LinkTarget& target : known.all) {
        const std::wstring_view folder = Win32::FolderOf(target.path);
        const auto [place, isNew] = places.emplace(folder, known.folders.size());
        if (isNew) known.folders.push_back(KeyOf(folder));
        known.folderOf.push_back(place->second);
    }
    m_isOwnFolder.resize(known.folders.size());
    m_targets = std::make_shared<const Known>(std::move(known));
}

void LinkNames::SetFolder(const std::wstring& folder) {
    m_folder = folder;
    const std::wstring key = folder.empty() ? std::wstring() : KeyOf(folder);
    for (size_t at = 0; at < m_isOwnFolder.size(); ++at) m_isOwnFolder[at] = m_targets->folders[at] == key;
}

std::wstring LinkNames::NameOf(size_t row) const {
    if (const auto typed = m_typed.find(row); typed != m_typed.end()) return typed->second;
    const LinkTarget& target = Targets()[row];
    const std::wstring_view name = Win32::FileNameOf(target.path);
    if (!m_isOwnFolder[m_targets->folderOf[row]]) return std::wstring(name);
    const Win32::NameParts parts = target.isFolder ? Win32::NameParts{name, {}, false} : Win32::SplitAtLastDot(name);
    std::wstring proposed = std::wstring(parts.stem) + L" - link";
    if (parts.hasDot) proposed += L'.' + std::wstring(parts.extension);
    return proposed;
}

LinkCheckThread::LinkCheckThread(LinkCheck whyNot, std::function<void()> notify)
    : m_whyNot(std::move(whyNot)), m_notify(std::move(notify)), m_thread([this](const std::stop_token& stop) {
          Quorvane::SDK::ReserveExceptionRecord();
          m_threadId = GetCurrentThreadId();
          Run(stop);
      }) {}

LinkCheckThread::~LinkCheckThread() {
    m_newest = UINT64_MAX;
    {
        const std::lock_guard lock(m_mutex);
        m_thread.request_stop();
    }
    m_wake.WakeOne();
    // It may be waiting for a machine that does not answer.
    if (const Win32::KernelHandle thread(OpenThread(THREAD_TERMINATE, FALSE, m_threadId)); thread)
        CancelSynchronousIo(thread.Get());
}

void LinkCheckThread::Request(LinkNames names, uint32_t type) {
    {
        const std::lock_guard lock(m_mutex);
        m_result.reset();
        m_plan = Plan{std::move(names), type, ++m_newest};
    }
    m_wake.WakeOne();
}

std::optional<std::wstring> LinkCheckThread::Take() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_result, std::nullopt);
}

std::wstring LinkCheckThread::FaultOf(const Plan& plan) {
    m_failure = L"There is too little memory to look at all links.";
    const std::vector<LinkTarget>& targets = plan.names.Targets();
    m_checked.resize(targets.size());
    std::unordered_set<std::wstring> taken;
    for (size_t row = 0; row < targets.size() && plan.number == m_newest; ++row) {
        const std::wstring name = plan.names.NameOf(row);
        if (name.empty()) return L"A link has no name: " + targets[row].path;
        std::wstring link = plan.names.LinkOf(plan.type, row);
        // All lie in one folder, and what only means the same name ("a.", "b\..\a") is refused as a name.
        if (!taken.insert(Win32::ToUpperCase(link)).second) return L"Two links have the same name: " + name;
        Checked& checked = m_checked[row];
        if (checked.type != plan.type || checked.link != link) {
            std::wstring fault = m_whyNot(plan.type, link, targets[row]);
            checked = {plan.type, std::move(link), std::move(fault)};
        }
        if (!checked.fault.empty()) return checked.fault;
    }
    return {};
}

void LinkCheckThread::Run(const std::stop_token& stop) {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.WaitUntil(lock, [&] { return stop.stop_requested() || m_plan.has_value(); });
        if (stop.stop_requested()) return;
        const Plan plan = *std::exchange(m_plan, std::nullopt);
        lock.unlock();
        std::wstring fault;
        try {
            fault = FaultOf(plan);
        } catch (...) {
            fault = std::move(m_failure);
        }
        lock.lock();
        if (plan.number != m_newest) continue;
        m_result = std::move(fault);
        m_notify();
    }
}

}  // namespace FileUtils
