// A record is on disk before it has its name: the two calls, in their order.
#include <gtest/gtest.h>

#include "support/replaced_imports.h"
#include "support/temporary_folder.h"
#include "textio/replace_file.h"

namespace {

std::string g_calls;
decltype(&FlushFileBuffers) g_flush = nullptr;
decltype(&MoveFileExW) g_move = nullptr;

BOOL WINAPI Flush(HANDLE file) {
    g_calls += "flush ";
    return g_flush(file);
}
BOOL WINAPI Move(LPCWSTR from, LPCWSTR to, DWORD flags) {
    g_calls += "move ";
    return g_move(from, to, flags);
}

TEST(ReplaceRecord, IsFlushedBeforeItTakesItsName) {
    const QVTest::TemporaryFolder folder;
    const HMODULE here = GetModuleHandleW(nullptr);
    const QVTest::ReplacedImport flush(here, "FlushFileBuffers", reinterpret_cast<void*>(&Flush));
    const QVTest::ReplacedImport move(here, "MoveFileExW", reinterpret_cast<void*>(&Move));
    g_flush = reinterpret_cast<decltype(g_flush)>(flush.Original());
    g_move = reinterpret_cast<decltype(g_move)>(move.Original());
    for (const char* text : {"new", "another"}) {
        g_calls.clear();
        EXPECT_EQ(QVUtils::ReplaceRecord(folder / L"a", text, true), 0u);
        EXPECT_EQ(g_calls, "flush move ");
        EXPECT_EQ(folder.Read(L"a"), text);
    }
}

}  // namespace
