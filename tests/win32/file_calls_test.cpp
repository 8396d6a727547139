// What the system is asked for by the small operations on files: each call is replaced by one that writes down what it
// gets.
#include <gtest/gtest.h>

#include "support/replaced_imports.h"
#include "support/temporary_folder.h"
#include "win32/files.h"
#include "win32/handle.h"

#include <sddl.h>

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

SECURITY_DESCRIPTOR_CONTROL ControlOf(PSECURITY_DESCRIPTOR descriptor) {
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    GetSecurityDescriptorControl(descriptor, &control, &revision);
    return control & (SE_DACL_PROTECTED | SE_DACL_AUTO_INHERITED | SE_DACL_AUTO_INHERIT_REQ);
}

BOOL WINAPI Move(LPCWSTR, LPCWSTR, DWORD flags) {
    Note("move", {flags});
    return TRUE;
}

HANDLE WINAPI Open(LPCWSTR, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES security, DWORD creation, DWORD flags,
                   HANDLE) {
    Note("open", {access, sharing, creation, flags, security ? ControlOf(security->lpSecurityDescriptor) : 0u});
    return CreateEventW(nullptr, FALSE, FALSE, nullptr);
}

BOOL WINAPI GetSecurity(HANDLE, SECURITY_INFORMATION parts, PSECURITY_DESCRIPTOR, DWORD, LPDWORD) {
    Note("get", {parts});
    return FALSE;
}

BOOL WINAPI SetSecurity(HANDLE, SECURITY_INFORMATION parts, PSECURITY_DESCRIPTOR descriptor) {
    Note("set", {parts, ControlOf(descriptor)});
    return TRUE;
}

BOOL WINAPI SetInformation(HANDLE, FILE_INFO_BY_HANDLE_CLASS informationClass, LPVOID, DWORD size) {
    Note("information", {static_cast<uint64_t>(informationClass), size});
    return TRUE;
}

BOOL WINAPI Remove(LPCWSTR) {
    Note("remove");
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

TEST(FileCalls, MakeASuccessorThatIsPrivateFromTheStart) {
    const QVTest::ReplacedImport replaced[] = {
        Replace("CreateFileW", Open), Replace("GetKernelObjectSecurity", GetSecurity), Replace("DeleteFileW", Remove),
        Replace("SetFileInformationByHandle", SetInformation), Replace("SetKernelObjectSecurity", SetSecurity)};
    const std::tuple<const char*, const wchar_t*, const char*> cases[] = {
        {"a list of its own", L"D:(A;;GA;;;SY)", "set 4 0"},
        {"one from its folder", L"D:AI(A;ID;GA;;;SY)", "set 4 500"},
        {"one cut off from its folder", L"D:P(A;;GA;;;SY)", "set 4 1000"},
    };
    for (const auto& [why, text, given] : cases) {
        PSECURITY_DESCRIPTOR raw = nullptr;
        ULONG size = 0;
        ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text, SDDL_REVISION_1, &raw, &size));
        const Win32::LocalMemory descriptor(raw);
        Win32::FileState original;
        original.accessList.assign(static_cast<std::byte*>(raw), static_cast<std::byte*>(raw) + size);
        const std::string inherited = ControlOf(raw) & SE_DACL_AUTO_INHERITED ? "1400" : "1000";
        g_calls.clear();
        const Win32::KernelHandle file(Win32::CreateSuccessor(L"a", original));
        EXPECT_TRUE(file);
        EXPECT_EQ(g_calls, (Calls{"open 40070000 1 1 0 0", "get 4", "information 4 1", "remove",
                                  "open 40070000 1 1 0 " + inherited, "get 4", given}))
            << why;
    }
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
