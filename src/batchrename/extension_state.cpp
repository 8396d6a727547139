#include "batchrename/extension_state.h"

#include <utility>

#include "sdk/boundary.h"
#include "win32/path.h"

namespace BatchRename {

using namespace Quorvane::SDK;

namespace {

constexpr uint32_t kFolderCapacity = 4096;  // units
constexpr wchar_t kUndoFolder[] = L"Undo";

}  // namespace

void RowMailbox::Put(RowSnapshot rows) {
    const std::lock_guard lock(m_lock);
    m_rows = std::move(rows);
}

RowSnapshot RowMailbox::Take() {
    const std::lock_guard lock(m_lock);
    return std::exchange(m_rows, nullptr);
}

void HostCallback::Acquire(IHostServices& services) {
    const std::lock_guard lock(m_lock);
    if (!m_service) m_service = std::make_shared<Service>(services, ServiceNumber::FolderRefresh);
}

std::shared_ptr<HostCallback::Service> HostCallback::Get() {
    const std::lock_guard lock(m_lock);
    return m_service;
}

void HostCallback::Release() {
    std::shared_ptr<Service> service;
    const std::lock_guard lock(m_lock);
    service.swap(m_service);
}

void HostCallback::RefreshFolders(const std::vector<std::wstring>& folders) {
    // Not under the lock: the host may need its own thread for a refresh, and that thread may be the one in Release.
    for (const std::wstring& folder : folders)
        if (const std::shared_ptr<Service> service = Get(); service && *service)
            // Guarded, since the end of a run must be shown whatever the host does with the news of it.
            AtBoundary(false, [&] {
                (*service)->RefreshFolder(folder.c_str());
                return true;
            });
}

RuleContext& ExtensionState::Context() {
    const std::lock_guard lock(contextLock);
    if (ruleContext) return *ruleContext;
    auto context = std::make_shared<RuleContext>();
    std::wstring folder(kFolderCapacity, L'\0');
    host.GetConfigurationFolder(folder.data(), kFolderCapacity);
    folder.resize(std::char_traits<wchar_t>::length(folder.c_str()));
    if (!folder.empty()) context->undo.SetFolder(Win32::JoinPath(folder, kUndoFolder));
    ruleContext = std::move(context);
    return *ruleContext;
}

}  // namespace BatchRename
