// What the system is asked for when a link is made: each call is replaced by one that writes down what it gets.
#include "fileutils/links/link_creation.h"

#include <cstring>

#include <shlobj.h>

#include <gtest/gtest.h>

#include "support/replaced_imports.h"
#include "support/temporary_folder.h"
#include "win32/com.h"
#include "win32/handle.h"

namespace {

using namespace FileUtils;
using QVTest::ReplacedImport;
using QVTest::TemporaryFolder;
using Calls = std::vector<std::wstring>;

Calls g_calls;
BOOL g_answer = TRUE;

BOOL Answer() {
    if (!g_answer) SetLastError(1314);
    return g_answer;
}

BOOL WINAPI HardLink(LPCWSTR link, LPCWSTR target, LPSECURITY_ATTRIBUTES security) {
    g_calls.push_back(std::wstring(L"hard ") + link + L" " + target + (security ? L" secured" : L""));
    return Answer();
}

BOOLEAN WINAPI SymbolicLink(LPCWSTR link, LPCWSTR target, DWORD flags) {
    g_calls.push_back(std::wstring(L"symbolic ") + link + L" " + target + L" " + std::to_wstring(flags));
    return static_cast<BOOLEAN>(Answer());
}

decltype(&GetProcAddress) g_find = nullptr;
FARPROC WINAPI Find(HMODULE module, LPCSTR name) {
    const bool isMeant = std::strcmp(name, "CreateSymbolicLinkW") == 0;
    return isMeant ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&SymbolicLink)) : g_find(module, name);
}

HANDLE WINAPI Open(LPCWSTR path, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES, DWORD creation, DWORD flags,
                   HANDLE) {
    wchar_t text[128] = {};
    swprintf(text, std::size(text), L" %lx %lx %lx %lx", access, sharing, creation, flags);
    g_calls.push_back(std::wstring(L"open ") + path + text);
    return CreateEventW(nullptr, FALSE, FALSE, nullptr);
}

BOOL WINAPI Control(HANDLE, DWORD code, LPVOID in, DWORD inSize, LPVOID, DWORD outSize, LPDWORD, LPOVERLAPPED) {
    wchar_t text[128] = {};
    swprintf(text, std::size(text), L"control %lx %lu %lu %02x", code, inSize, outSize, *static_cast<uint8_t*>(in));
    g_calls.push_back(text);
    return Answer();
}

ReplacedImport Replace(const char* name, auto* function) {
    return {GetModuleHandleW(nullptr), name, reinterpret_cast<void*>(function)};
}

TEST(LinkCalls, HaveTheseArguments) {
    const LinkSystem& system = ThisSystem();
    const ReparseBuffer buffer = {std::vector<uint8_t>(kReparseBufferSize, 0xA5), 40};
    const ReplacedImport replaced[] = {Replace("CreateHardLinkW", HardLink), Replace("GetProcAddress", Find),
                                       Replace("CreateFileW", Open), Replace("DeviceIoControl", Control)};
    g_find = reinterpret_cast<decltype(g_find)>(replaced[1].Original());
    for (const BOOL answer : {TRUE, FALSE}) {
        const uint32_t error = answer ? 0 : 1314;
        g_answer = answer;
        g_calls.clear();
        EXPECT_EQ(system.makeHardLink(L"C:\\link", L"C:\\target"), error);
        EXPECT_EQ(system.makeSymbolicLink(L"C:\\link", L"..\\target", 1), error);
        EXPECT_EQ(system.setReparsePoint(L"C:\\folder", buffer), error);
        EXPECT_EQ(g_calls, (Calls{L"hard C:\\link C:\\target", L"symbolic C:\\link ..\\target 1",
                                  L"open C:\\folder c0000000 7 3 2200000", L"control 900a4 40 0 a5"}));
    }
}

TEST(LinkCalls, SaveTheseFieldsOfAShortcut) {
    const TemporaryFolder folder;
    const std::wstring target = folder.Write(L"target", "x");
    const std::wstring link = folder / L"link.lnk";
    ASSERT_EQ(ThisSystem().saveShortcut(link, target, folder.Path(), L"words"), 0u);
    const Win32::ComApartment apartment;
    const auto shortcut = Win32::MakeComObject<IShellLinkW>(CLSID_ShellLink, IID_IShellLinkW);
    const auto file = Win32::InterfaceOf<IPersistFile>(shortcut, IID_IPersistFile);
    ASSERT_TRUE(file);
    ASSERT_EQ(file->Load(link.c_str(), STGM_READ), S_OK);
    wchar_t text[3][MAX_PATH] = {};
    shortcut->GetPath(text[0], MAX_PATH, nullptr, SLGP_RAWPATH);
    shortcut->GetWorkingDirectory(text[1], MAX_PATH);
    shortcut->GetDescription(text[2], MAX_PATH);
    EXPECT_EQ((Calls{text[0], text[1], text[2]}), (Calls{target, folder.Path(), L"words"}));
}

}  // namespace
