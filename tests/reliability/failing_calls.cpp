#include "reliability/failing_calls.h"

#include <set>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <aclapi.h>

namespace QVTest {
namespace {

/// What the replaced functions know. They are plain functions, so there is one.
struct State {
    bool isArmed = false;
    std::wstring folder;
    uint32_t number = 0;
    uint32_t error = 0;
    bool isLasting = false;
    uint32_t count = 0;
    uint32_t listenedNumber = 0;
    std::function<void()> listener = {};
    std::vector<std::string> calls = {};
    std::string failed;
    std::set<HANDLE> handles;
};
State& Now() {
    static State state;
    return state;
}

/// Only calls about the files of a test count.
bool IsWatched(const wchar_t* path) {
    return path && std::wstring_view(path).find(Now().folder) != std::wstring_view::npos;
}
bool IsWatched(HANDLE handle) {
    return Now().handles.contains(handle);
}

/// Counts a call; true when it is to fail.
template <class First>
bool FailsNow(const char* name, First first) {
    State& now = Now();
    if (!now.isArmed || !IsWatched(first)) return false;
    if (now.listener && now.count == now.listenedNumber) {
        now.isArmed = false;  // what the listener does is nobody's call
        std::exchange(now.listener, nullptr)();
        now.isArmed = true;
    }
    now.calls.emplace_back(name);
    if (now.count++ == now.number)
        now.failed = name;
    else if (!now.isLasting || now.failed != name)
        return false;
    return true;
}

enum class Kind { True, Handle, Attributes, Code, Close, Write };

/// A function of the system with its replacement. `Kind` says how its failure looks.
template <Kind kind, auto* function>
struct ReplacedCall;
template <Kind kind, class Result, class First, class... Rest, Result(WINAPI* function)(First, Rest...)>
struct ReplacedCall<kind, function> {
    static inline const char* name = "";
    static inline Result(WINAPI* real)(First, Rest...) = nullptr;

    static Result WINAPI Replacement(First first, Rest... rest) {
        const bool fails = FailsNow(name, first);
        const uint32_t error = Now().error;
        if constexpr (kind == Kind::Write) {
            if (fails && error == 0) return WriteHalf(first, rest...);
        }
        if constexpr (kind == Kind::Close) {
            const bool isClosed = real(first);
            Now().handles.erase(first);
            if (!fails || error == 0) return isClosed;
        } else if (!fails || error == 0) {
            const Result result = real(first, rest...);
            if constexpr (kind == Kind::Handle) {
                const DWORD last = GetLastError();
                if (Now().isArmed && result != INVALID_HANDLE_VALUE && IsWatched(first) &&
                    std::string_view(name) == "CreateFileW")
                    Now().handles.insert(result);
                SetLastError(last);
            }
            return result;
        }
        SetLastError(error);
        if constexpr (kind == Kind::Handle) return INVALID_HANDLE_VALUE;
        if constexpr (kind == Kind::Attributes) return INVALID_FILE_ATTRIBUTES;
        if constexpr (kind == Kind::Code) return error;
        return Result{};
    }

private:
    static BOOL WriteHalf(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED operation) {
        return real(file, data, (size + 1) / 2, written, operation);
    }
};

struct Row {
    const char* name;
    void* replacement;
};

/// `name` is looked up anew: `function` itself leads through this program's imports, which are replaced.
template <Kind kind, auto* function>
Row RowOf(const char* name) {
    using Replaced = ReplacedCall<kind, function>;
    Replaced::name = name;
    for (const wchar_t* library : {L"kernel32.dll", L"advapi32.dll"}) {
        const auto address = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name));
        if (address) Replaced::real = reinterpret_cast<decltype(Replaced::real)>(address);
    }
    return {name, reinterpret_cast<void*>(&Replaced::Replacement)};
}

#define QV_CALL(kind, function) RowOf<Kind::kind, &function>(#function)
std::vector<Row> WatchedCalls() {
    return {
        QV_CALL(Handle, CreateFileW),
        QV_CALL(True, ReadFile),
        QV_CALL(Write, WriteFile),
        QV_CALL(Close, CloseHandle),
        QV_CALL(True, FlushFileBuffers),
        QV_CALL(True, GetFileSizeEx),
        QV_CALL(True, GetFileInformationByHandle),
        QV_CALL(True, GetFileInformationByHandleEx),
        QV_CALL(True, MoveFileExW),
        QV_CALL(True, ReplaceFileW),
        QV_CALL(True, DeleteFileW),
        QV_CALL(True, SetFileAttributesW),
        QV_CALL(Attributes, GetFileAttributesW),
        QV_CALL(True, CreateDirectoryW),
        QV_CALL(True, CreateHardLinkW),
        QV_CALL(Handle, FindFirstFileExW),
        QV_CALL(Handle, FindFirstStreamW),
        QV_CALL(True, SetFileInformationByHandle),
        QV_CALL(True, GetKernelObjectSecurity),
        QV_CALL(True, SetKernelObjectSecurity),
        QV_CALL(Code, GetNamedSecurityInfoW),
        QV_CALL(Code, SetNamedSecurityInfoW),
    };
}
#undef QV_CALL

}  // namespace

FailingCalls::FailingCalls(std::initializer_list<HMODULE> modules) {
    for (const Row& row : WatchedCalls())
        for (const HMODULE module : modules) m_imports.emplace_back(module, row.name, row.replacement);
}

FailingCalls::~FailingCalls() {
    Disarm();
}

void FailingCalls::Arm(const std::wstring& folder, uint32_t number, uint32_t error, bool isLasting) {
    Now() = {.isArmed = true,
             .folder = folder,
             .number = number,
             .error = error,
             .isLasting = isLasting,
             .failed = {},
             .handles = {}};
}

void FailingCalls::OnCall(uint32_t number, std::function<void()> listener) {
    Now().listenedNumber = number;
    Now().listener = std::move(listener);
}

void FailingCalls::Disarm() {
    Now().isArmed = false;
}

uint32_t FailingCalls::Count() const {
    return Now().count;
}
std::vector<std::string> FailingCalls::Calls() const {
    return Now().calls;
}
std::string FailingCalls::FailedCall() const {
    return Now().failed;
}
size_t FailingCalls::OpenHandles() const {
    return Now().handles.size();
}

}  // namespace QVTest
