#include "batchrename/gui_thread.h"

#include <algorithm>

#include "batchrename/qv_batch_rename.h"
#include "sdk/boundary.h"
#include "ui/activation_context.h"
#include "win32/com.h"

namespace BatchRename {

void MessageLoop::Run() {
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        // Guarded like a window's procedure: what a key or a message asked for may fail, the loop goes on.
        const bool isEaten = Quorvane::SDK::AtBoundary(true, [&] {
            return std::ranges::any_of(m_filters,
                                       [&](IMessageFilter* filter) { return filter->OnThreadMessage(message); });
        });
        if (isEaten) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void MessageLoopTable::Add(DWORD thread, MessageLoop& loop) {
    const std::lock_guard lock(m_lock);
    m_loops[thread] = &loop;
}

void MessageLoopTable::Remove(DWORD thread) {
    const std::lock_guard lock(m_lock);
    m_loops.erase(thread);
}

MessageLoopTable& ModuleMessageLoops() {
    static MessageLoopTable table;
    return table;
}

namespace {

// Milliseconds for the host to collect the selection again while the window waits; what comes later is taken too.
constexpr DWORD kCollectPatience = 1000;

/// The thread's side of things: everything in it is made, used and ended on the GUI thread.
class GuiSide final : public IMessageFilter, private IFrameHost {
public:
    explicit GuiSide(std::shared_ptr<ExtensionState> state) : m_state(std::move(state)) {
        m_state->guiThread = GetCurrentThreadId();
    }
    ~GuiSide() {
        // Also when the window could not be made: a window or a loop that has ended must not be found.
        m_state->window = nullptr;
        m_state->guiThread = 0;  // the system may give the number to another
        ModuleMessageLoops().Remove(GetCurrentThreadId());
    }
    GuiSide(const GuiSide&) = delete;
    GuiSide& operator=(const GuiSide&) = delete;

    void Run() {
        SwitchToThread();  // the starter gets on with its pause first
        MSG message = {};
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);  // from here on a quit message finds a queue
        ModuleMessageLoops().Add(GetCurrentThreadId(), m_loop);
        m_loop.AddFilter(*this);
        ShowFrame();
    }

    bool OnThreadMessage(MSG& message) override {
        // Timers of the thread and of the frame end here: this window uses none, and a host's own hooks must not bring
        // any. Those of the controls are the system's: buttons fade by them.
        // compatibility: 31
        if (message.message == WM_TIMER && (!message.hwnd || message.hwnd == m_frame->GetWindow())) return true;
        if (!message.hwnd && message.message == kOwnerMessage) {
            TakeRows();
            return true;
        }
        return m_frame->PreTranslate(message);
    }

private:
    void ShowFrame() {
        const Ui::ActivationContext controls;
        RuleContext& context = m_state->Context();
        m_frame = std::make_unique<BatchRenameMainFrame>(FrameEnvironment{.services = &m_state->host,
                                                                          .context = context,
                                                                          .profiles = m_state->profiles,
                                                                          .isClosing = m_state->isClosing,
                                                                          .host = *this});
        // A shutdown that came before the queue was there sent its quit message to nobody.
        if (!m_state->isClosing) {
            m_frame->Create();
            m_state->window = m_frame->GetWindow();
            TakeRows();
            m_loop.Run();
        }
        m_state->window = nullptr;
        m_frame.reset();
    }

    void TakeRows() override {
        if (!m_frame->GetWindow() || !m_frame->CanTakeRows()) return;
        if (RowSnapshot rows = m_state->rows.Take()) m_frame->SetRows(std::move(rows));
    }

    /// Has the host's thread collect the selection, since the host's objects are that thread's.
    bool CollectRows() override {
        ResetEvent(m_state->collected.Get());
        const auto event = reinterpret_cast<uintptr_t>(m_state->collected.Get());
        if (m_state->host.RunHostCommand(kCollectCommand, nullptr, 0, event) == 0) return false;
        // Sent messages are let in while this waits: the host's thread may be sending one right now.
        const HANDLE events[] = {m_state->collected.Get(), m_state->closing.Get()};
        const ULONGLONG end = GetTickCount64() + kCollectPatience;
        for (ULONGLONG now = GetTickCount64(); now < end; now = GetTickCount64()) {
            const DWORD woken =
                MsgWaitForMultipleObjects(2, events, FALSE, static_cast<DWORD>(end - now), QS_SENDMESSAGE);
            if (woken != WAIT_OBJECT_0 + 2) return woken == WAIT_OBJECT_0;
            MSG message = {};
            PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
        }
        return false;
    }

    void ReportRenamed(const std::vector<std::wstring>& folders) override {
        m_state->hostCallback.RefreshFolders(folders);
    }

    std::shared_ptr<ExtensionState> m_state;
    Win32::ComApartment m_apartment;  // for the host's XML service and the system's dialogs; outlives the window
    MessageLoop m_loop;
    std::unique_ptr<BatchRenameMainFrame> m_frame;
};

void LogNoWindow(Quorvane::SDK::IHostServices& services) noexcept {
    using namespace Quorvane::SDK;
    // Guarded, since a host that throws may be why.
    AtBoundary(false, [&] {
        services.Log(kLogLevel, LogKind::Failure, L"[Batch Rename] - The window cannot be opened");
        return true;
    });
}

struct StartOfThread {
    std::shared_ptr<ExtensionState> state;
    HMODULE module = nullptr;
};

DWORD WINAPI RunGuiThread(void* parameter) {
    Quorvane::SDK::ReserveExceptionRecord();
    HMODULE module = nullptr;
    {
        const std::unique_ptr<StartOfThread> start(static_cast<StartOfThread*>(parameter));
        module = start->module;
        try {
            GuiSide(start->state).Run();
        } catch (...) {
            // The window could not be made, or memory has run out. The host goes on without it.
            LogNoWindow(start->state->host);
        }
    }
    // Nothing of ours is on the stack any more.
    FreeLibraryAndExitThread(module, 0);
}

}  // namespace

BatchRenameGUIThread::BatchRenameGUIThread(std::shared_ptr<ExtensionState> state) {
    auto start = std::make_unique<StartOfThread>();
    start->state = std::move(state);
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&RunGuiThread),
                            &start->module))
        return;
    m_thread.Reset(CreateThread(nullptr, 0, RunGuiThread, start.get(), 0, &m_id));
    if (m_thread)
        static_cast<void>(start.release());  // the thread's
    else {
        FreeLibrary(start->module);
        LogNoWindow(start->state->host);
    }
}

bool BatchRenameGUIThread::Wait(DWORD milliseconds) const {
    return !m_thread || WaitForSingleObject(m_thread.Get(), milliseconds) == WAIT_OBJECT_0;
}

}  // namespace BatchRename
