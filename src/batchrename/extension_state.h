// extension_state.h - what the extension object and its GUI thread share. Each holds it: should the thread not end in
// time, it still finds everything it uses.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "batchrename/gated_host.h"
#include "batchrename/model/preview.h"
#include "batchrename/profiles.h"
#include "batchrename/rule_context.h"
#include "sdk/owners.h"
#include "win32/handle.h"
#include "win32/system_lock.h"

namespace BatchRename {

class BatchRenameMainFrame;

/// The rows that the host handed over last. Written by the host's thread, taken by the GUI thread.
class RowMailbox {
public:
    void Put(RowSnapshot rows);
    /// Null when they were taken before.
    RowSnapshot Take();

private:
    std::mutex m_lock;
    RowSnapshot m_rows;
};

/// The host's service that is told which folders have changed. The host's thread gives it back first of all when it
/// shuts down; the GUI thread uses it only while it is there, and gives it back itself when it is in it at that moment.
class HostCallback {
public:
    void Acquire(Quorvane::SDK::IHostServices& services);
    /// Never waits for a refresh that is under way.
    void Release();
    void RefreshFolders(const std::vector<std::wstring>& folders);

private:
    using Service = Quorvane::SDK::AcquiredService<Quorvane::SDK::IFolderRefresh>;
    std::shared_ptr<Service> Get();

    Win32::SystemLock m_lock;  // the system's, since it needs no memory at the end
    std::shared_ptr<Service> m_service;
};

struct ExtensionState {
    GatedHost host;  // first: what follows gives back services through it
    HostCallback hostCallback;
    RowMailbox rows;
    ProfileStore profiles;                     // loaded by the host's thread, afterwards the GUI thread's
    std::mutex contextLock;                    // of the next one, until the GUI thread has a window
    std::shared_ptr<RuleContext> ruleContext;  // made by the first who needs it
    std::atomic<DWORD> guiThread = 0;          // its id, from its first instruction to its last; 0 while there is none
    std::atomic<HWND> window = nullptr;        // null while there is none
    std::atomic<bool> isClosing = false;
    Win32::KernelHandle closing{CreateEventW(nullptr, TRUE, FALSE, nullptr)};     // set with isClosing
    Win32::KernelHandle collected{CreateEventW(nullptr, FALSE, FALSE, nullptr)};  // the selection was collected again

    /// Makes the rule context when there is none: with the journal in the host's configuration folder.
    RuleContext& Context();
};

}  // namespace BatchRename
