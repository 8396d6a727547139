// threads_main.cpp - what many threads of a host use at once and has no window, under the thread sanitizer: the caches
// of accounts and shares, emptied in between, and the counting of rename results.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "batchrename/run/rename_results.h"
#include "security/account_names.h"
#include "win32/module.h"

namespace Win32 {
Module LoadSystemModule(const wchar_t*) {
    return {};
}
}  // namespace Win32

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 20000;
constexpr uint32_t kRefused = 5;  // access denied

BOOL LookUpSid(const wchar_t*, PSID sid, wchar_t* name, DWORD* nameSize, wchar_t* domain, DWORD* domainSize,
               SID_NAME_USE*) {
    const bool fits = name && *nameSize >= 3 && *domainSize >= 2;
    *nameSize = 3;
    *domainSize = 2;
    if (!fits) return 0;
    name[0] = L'n';
    name[1] = static_cast<wchar_t>(L'0' + *static_cast<const char*>(sid));
    name[2] = 0;
    domain[0] = L'D';
    domain[1] = 0;
    return 1;
}

DWORD AskForShare(const wchar_t* path, DWORD, void* buffer, DWORD* size) {
    struct Name {
        const wchar_t* text;
    };
    static const wchar_t* const shares[] = {L"\\\\server\\even", L"\\\\server\\odd"};
    if (*size < sizeof(Name)) return ERROR_MORE_DATA;
    static_cast<Name*>(buffer)->text = shares[path[0] % 2];
    return 0;
}

void Fail(const char* what) {
    std::fprintf(stderr, "not so: %s\n", what);
    std::exit(1);
}

}  // namespace

int main() {
    Security::SecuritySystem system = {};
    system.lookupAccountSid = LookUpSid;
    system.getUniversalName = AskForShare;
    Security::AccountNames accounts;
    Security::UniversalNames shares;
    BatchRename::CRenameResultCallback results;  // read by others while a run reports to it
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            for (int round = 0; round < kRounds; ++round) {
                char sid[8] = {static_cast<char>((round + thread) % 10)};
                std::wstring name;
                if (!accounts.Find(L"", sid, system, name) || name != L"D\\n" + std::to_wstring((round + thread) % 10))
                    Fail("an account has its own name");
                const std::wstring drive = {static_cast<wchar_t>(L'a' + round % 26), L':'};
                if (!shares.Find(drive, system, name) || !name.starts_with(L"\\\\server\\"))
                    Fail("a drive has its share");
                results.OnRenameStarting(0);
                results.OnRenameResult(0, static_cast<uint32_t>(round % 3 == 0   ? Quorvane::SDK::RenameResult::Renamed
                                                                : round % 3 == 1 ? Quorvane::SDK::RenameResult::Ignored
                                                                                 : kRefused));
                if (results.DoneCount() + results.IgnoredCount() + results.FailedCount() == 0) Fail("a row counts");
                if (round % 500 == thread) accounts.Clear(), shares.Clear();
            }
        });
    for (std::thread& thread : threads) thread.join();
    if (results.DoneCount() + results.IgnoredCount() + results.FailedCount() != kThreads * kRounds)
        Fail("each row counts once");
    std::printf("%d threads, %d rounds each: nothing found\n", kThreads, kRounds);
}
