// What the system is asked for by the small operations on files: each call is replaced by one that writes down what it
// gets.
#include <gtest/gtest.h>

#include "support/replaced_imports.h"
#include "support/temporary_folder.h"
#include "win32/files.h"

namespace {

using Calls = std::vector<std::string>;

Calls g_calls;

void Note(std::string call, std::initializer_list<uint64_t> numbers = {}) {
    for (const uint64_t number : numbers) {
        char text[32] = {};
        snprintf(text, sizeof(text), " %llx", static_cast<unsigned long long>(number));
        call += text;
    }
    g_calls.push_back(call);
}

BOOL WINAPI Move(LPCWSTR, LPCWSTR, DWORD flags) {
    Note("move", {flags});
    return TRUE;
}

int g_stream = 0;
HANDLE WINAPI FirstStream(LPCWSTR, STREAM_INFO_LEVELS level, LPVOID data, DWORD flags) {
    Note("streams", {static_cast<uint64_t>(level), flags});
    g_stream = 0;
    wcscpy(static_cast<WIN32_FIND_STREAM_DATA*>(data)->cStreamName, L"::$DATA");
    return FindFirstFileW(L"Z:\\*", std::make_unique<WIN32_FIND_DATAW>().get());
}
BOOL WINAPI NextStream(HANDLE, LPVOID data) {
    const wchar_t* const names[] = {L":a:$DATA", L":b c:$DATA"};
    if (g_stream == 2) return FALSE;
    wcscpy(static_cast<WIN32_FIND_STREAM_DATA*>(data)->cStreamName, names[g_stream++]);
    return TRUE;
}

QVTest::ReplacedImport Replace(const char* name, auto* function) {
    return {GetModuleHandleW(nullptr), name, reinterpret_cast<void*>(function)};
}

TEST(FileCalls, MoveWithoutAndWithReplacing) {
    const auto move = Replace("MoveFileExW", Move);
    g_calls.clear();
    Win32::MoveFileTo(L"a", L"b");
    Win32::MoveFileOver(L"a", L"b");
    EXPECT_EQ(g_calls, (Calls{"move 0", "move 1"}));
}

TEST(FileCalls, ListNamedStreamsWithoutTheContent) {
    const auto first = Replace("FindFirstStreamW", FirstStream);
    const auto next = Replace("FindNextStreamW", NextStream);
    g_calls.clear();
    EXPECT_EQ(Win32::NamedStreamsOf(L"a"), (std::vector<std::wstring>{L":a:$DATA", L":b c:$DATA"}));
    EXPECT_EQ(g_calls, Calls{"streams 0 0"});
}

TEST(FileCalls, RemoveAReadOnlyFileWhenAskedTo) {
    const QVTest::TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a", "x");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(Win32::RemoveFile(path), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Win32::RemoveFileWhateverItsAttributes(path), 0u);
    EXPECT_FALSE(Win32::Exists(path));
}

}  // namespace
