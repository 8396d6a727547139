// exception_reserve.cpp - what the library does when it is loaded, so that it can report that memory has run out even
// when none at all is left, and what it gives back of the runtime's when it is unloaded.
#include "win32/windows.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>

namespace {

/// The next allocation is refused: that is the only way to the reserve.
std::atomic<bool> g_refusesNext = false;

}  // namespace

// The linker leads every malloc of the library, the runtime's own included, through here (--wrap).
// NOLINTBEGIN(clang-diagnostic-reserved-identifier): the linker gives the names.
extern "C" void* __real_malloc(size_t size);
extern "C" void* __wrap_malloc(size_t size) {
    if (g_refusesNext.load(std::memory_order_relaxed) && g_refusesNext.exchange(false)) [[unlikely]]
        return nullptr;
    return __real_malloc(size);
}
// NOLINTEND(clang-diagnostic-reserved-identifier)

namespace {

/// The C++ runtime keeps a reserve for exceptions. Its lock is made with the first use, by an allocation: without
/// memory that allocation fails, which is thrown, which needs the reserve, and so on until the stack is gone. So the
/// reserve is used once while there is memory. So is the lock of function-local statics, which the runtime makes with
/// the first of them, without looking whether it got the memory.
void PrepareExceptionReserve() noexcept {
    try {
        g_refusesNext = true;
        throw 0;
    } catch (int) {
        g_refusesNext = false;
    }
    [[maybe_unused]] static const bool isLockMade = g_refusesNext.exchange(false);
}

}  // namespace

// The runtime takes a place for values of threads and keeps it: a process has 1,088 of them, and a host that had loaded
// and unloaded the library so often would be ended by the runtime. The linker leads the one call for it through here.
// NOLINTBEGIN(clang-diagnostic-reserved-identifier, bugprone-reserved-identifier): the linker's and the runtime's
// names.
extern "C" {
using TakePlace = DWORD WINAPI();
extern TakePlace* const __real___imp_TlsAlloc;
extern TakePlace* const __wrap___imp_TlsAlloc;
}

namespace {

DWORD g_place = TLS_OUT_OF_INDEXES;

DWORD WINAPI KeepPlace() {
    return g_place = __real___imp_TlsAlloc();
}

/// The first constructor of all: so this comes after the last destructor, when the runtime is not used any more.
[[gnu::constructor(101)]] void GiveBackPlaceAtEnd() {
    std::atexit([] { TlsFree(g_place); });
}

}  // namespace

TakePlace* const __wrap___imp_TlsAlloc = KeepPlace;

namespace __gnu_cxx {
void __freeres() noexcept;
}  // namespace __gnu_cxx
// NOLINTEND(clang-diagnostic-reserved-identifier, bugprone-reserved-identifier)

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID endOfProcess) {
    if (reason == DLL_PROCESS_ATTACH) PrepareExceptionReserve();
    // The reserve takes 71 KB, which a host that unloads the library would lose each time.
    if (reason == DLL_PROCESS_DETACH && !endOfProcess) __gnu_cxx::__freeres();
    return TRUE;
}
