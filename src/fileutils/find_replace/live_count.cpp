#include "fileutils/find_replace/live_count.h"

#include <atomic>
#include <chrono>

#include "fileutils/find_replace/find_replace_preview.h"
#include "win32/handle.h"
#include "win32/system_lock.h"

namespace FileUtils {
namespace {

constexpr uint64_t kMostBytes = uint64_t{64} * 1024 * 1024;
constexpr std::chrono::seconds kMostTime{3};

}  // namespace

struct LiveCount::Shared {
    Shared(std::vector<std::wstring> paths, HWND dialog, UINT number)
        : files(std::move(paths)), window(dialog), message(number) {}

    /// The thread, until the dialog is gone.
    void Work();
    /// False when there will be none.
    bool WaitForRequest(FindAndReplaceRequest& request);
    CountSummary Count(const FindAndReplaceRequest& request) const;
    void Hand(CountSummary summary);

    const std::vector<std::wstring> files;
    const HWND window;
    const UINT message;
    const LCID locale = GetThreadLocale();  // its code page is the one that files are read in
    std::atomic<bool> isCancelled = false;
    Win32::SystemLock lock;
    Win32::SystemCondition wake;
    // Under the lock:
    bool isClosed = false;
    std::optional<FindAndReplaceRequest> wanted;
    std::optional<CountSummary> summary;
};

bool LiveCount::Shared::WaitForRequest(FindAndReplaceRequest& request) {
    std::unique_lock guard(lock);
    wake.WaitUntil(guard, [&] { return isClosed || wanted; });
    if (isClosed) return false;
    request = std::move(*wanted);
    wanted.reset();
    isCancelled = false;
    return true;
}

CountSummary LiveCount::Shared::Count(const FindAndReplaceRequest& request) const {
    auto engineRequest = EngineRequest(request.options, request.find, request.replacement);
    const bool dependsOnEncoding = DependsOnEncoding(engineRequest);
    const auto end = std::chrono::steady_clock::now() + kMostTime;
    uint64_t left = kMostBytes;
    CountSummary summed;
    const auto isOver = [&] { return isCancelled || std::chrono::steady_clock::now() > end; };
    for (const std::wstring& file : files) {
        if (isOver() || left == 0) {
            summed.isWhole = false;
            break;
        }
        const auto count = QVFindAndReplace::CountMatches(
            file, engineRequest, {.bytes = left, .goesOn = [&](uint32_t) { return !isOver(); }});
        left -= count.bytes;
        summed.Add(count, dependsOnEncoding);
    }
    return summed;
}

void LiveCount::Shared::Hand(CountSummary counted) {
    const std::unique_lock guard(lock);
    if (isClosed || isCancelled || wanted) return;
    summary = std::move(counted);
    PostMessageW(window, message, 0, 0);
}

void LiveCount::Shared::Work() {
    SetThreadLocale(locale);
    for (FindAndReplaceRequest request; WaitForRequest(request);) Hand(Count(request));
}

namespace {

/// What a thread is started with.
template <class Shared>
struct StartOfThread {
    std::shared_ptr<Shared> shared;
    HMODULE module = nullptr;

    static DWORD WINAPI Run(void* parameter) noexcept {
        HMODULE module = nullptr;
        {
            const std::unique_ptr<StartOfThread> start(static_cast<StartOfThread*>(parameter));
            module = start->module;
            try {
                start->shared->Work();
            } catch (...) {
                // Memory has run out: there is no count.
            }
        }
        // Nothing of ours is on the stack any more.
        FreeLibraryAndExitThread(module, 0);
    }
};

}  // namespace

LiveCount::LiveCount(std::vector<std::wstring> files, HWND window, UINT message)
    : m_shared(std::make_shared<Shared>(std::move(files), window, message)) {}

LiveCount::~LiveCount() {
    const std::unique_lock guard(m_shared->lock);
    m_shared->isCancelled = true;
    m_shared->isClosed = true;
    m_shared->wake.WakeAll();
}

void LiveCount::Begin(FindAndReplaceRequest request) {
    Cancel();
    {
        const std::unique_lock guard(m_shared->lock);
        m_shared->wanted = std::move(request);
        m_shared->wake.WakeAll();
    }
    if (std::exchange(m_isStarted, true)) return;
    using Start = StartOfThread<Shared>;
    auto start = std::make_unique<Start>(Start{m_shared});
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&Start::Run),
                            &start->module))
        return;
    if (const Win32::KernelHandle thread(CreateThread(nullptr, 0, Start::Run, start.get(), 0, nullptr)); thread)
        static_cast<void>(start.release());  // the thread's
    else
        FreeLibrary(start->module);
}

void LiveCount::Cancel() {
    const std::unique_lock guard(m_shared->lock);
    m_shared->isCancelled = true;
    m_shared->wanted.reset();
    m_shared->summary.reset();
}

std::optional<CountSummary> LiveCount::Take() {
    const std::unique_lock guard(m_shared->lock);
    return std::exchange(m_shared->summary, std::nullopt);
}

}  // namespace FileUtils
