// The window while the system has no thread for it, or no memory: it stays, says so, and works again afterwards.
#include <utility>

#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrename/window/main_frame.h"
#include "batchrenamewindow/rename_window.h"
#include "reliability/failing_memory.h"
#include "support/dialog_driver.h"
#include "support/replaced_imports.h"

namespace {

using namespace QVTest;

const Words kNames = {L"a", L"b"};
constexpr wchar_t kUndo[] = L"Undo BatchRename";

HMODULE Library() {
    return GetModuleHandleW(L"QVUtils.dll");
}

HANDLE WINAPI NoThread(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void*, DWORD, DWORD*) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}
uintptr_t NoThreadOfTheRuntime(void*, unsigned, unsigned (*)(void*), void*, unsigned, unsigned*) {
    errno = EAGAIN;
    return 0;
}

[[noreturn]] void WINAPI EndLate(HMODULE module, DWORD code) {
    Sleep(200);
    FreeLibraryAndExitThread(module, code);
}

TEST(RenameWindowWithoutThreads, SaysSoAndOpensLater) {
    RenameWindow window(kNames);
    {
        // A thread that has said so and takes its time to end is waited for.
        const ReplacedImport slowEnd(Library(), "FreeLibraryAndExitThread", reinterpret_cast<void*>(EndLate));
        ASSERT_NE(slowEnd.Original(), nullptr);
        // The window's own thread, then the one for its previews.
        for (const auto& [call, function] : {std::pair("CreateThread", reinterpret_cast<void*>(NoThread)),
                                             {"_beginthreadex", reinterpret_cast<void*>(NoThreadOfTheRuntime)}}) {
            const ReplacedImport replaced(Library(), call, function);
            ASSERT_NE(replaced.Original(), nullptr);
            window.Host().loggedFailures = 0;
            window.RunCommand(kNames);
            ASSERT_TRUE(window.WaitFor([&] { return window.Host().loggedFailures > 0; }));
        }
        window.Open(kNames);
    }
    window.Panel().Enter(IDC_NAME_TEMPLATE, L"[N]2");
    ASSERT_TRUE(window.WaitForStatus(L"2 of 2 items will be renamed"));
    {
        const ReplacedImport replaced(Library(), "_beginthreadex", reinterpret_cast<void*>(NoThreadOfTheRuntime));
        window.Panel().Press(IDC_START);
        EXPECT_EQ(window.Status(), L"The run could not be started; the system has no thread for it.");
        EXPECT_EQ(window.NamesOnDisk(), kNames);
    }
    window.Panel().Press(IDC_START);
    EXPECT_TRUE(window.WaitForStatus(L"2 Renamed"));
    window.EndHost();
    const std::string words = "[Batch Rename] - The window cannot be opened";
    EXPECT_LT(window.Log().find(words), window.Log().rfind(words)) << window.Log();
    EXPECT_EQ(Library(), nullptr) << "nothing holds the library";
}

/// Whatever fails, the window stays and does the next thing.
TEST(RenameWindowWithoutMemory, StaysAndWorksAgain) {
    RenameWindow window(kNames);
    window.Open(kNames);
    FailingMemory memory(Library());
    const auto worksAgain = [&] {
        // What opens late goes as well.
        const HWND box = FindOwnWindow(L"#32770", kUndo);
        if (box && PostMessageW(box, WM_CLOSE, 0, 0)) return false;
        window.Panel().Enter(IDC_NAME_TEMPLATE, L"[N]");
        return window.Panel().IsEnabled(IDC_NAME_TEMPLATE) &&
               WaitUntil([&] { return window.Status() == L"0 of 2 items will be renamed"; });
    };
    const struct {
        const char* what;
        std::function<void()> act;
        std::function<bool()> isDone;
    } cases[] = {
        {"a preview",
         [&] {
             window.Panel().Enter(IDC_NAME_TEMPLATE, L"[N]-[C]");
             PostMessageW(window.Panel().Control(IDC_NAME_TEMPLATE), WM_KEYDOWN, VK_F5, 1);
         },
         [&] { return window.Column(kNewName).back().ends_with(L"-02"); }},
        {"a dialog", [&] { window.Panel().PressLater(IDC_UNDO); }, [] { return FindOwnWindow(L"#32770", kUndo); }},
    };
    for (const auto& c : cases) {
        size_t failures = 0;
        memory.Walk([&](const FailingMemory::Begin& begin) {
            SCOPED_TRACE(c.what);
            begin();
            c.act();
            ASSERT_TRUE(WaitUntil([&] { return memory.HasFailed() || (memory.Count() > 0 && c.isDone()); }));
            failures += memory.HasFailed();
            memory.Disarm();
            ASSERT_TRUE(window.Frame()) << "the window has gone";
            ASSERT_TRUE(window.WaitFor(worksAgain)) << window.Status();
        });
        EXPECT_GT(failures, 1u) << c.what << " had all the memory it wanted";
    }
}

FailingMemory::Begin g_begin;
WNDPROC g_frameProcedure;
LRESULT CALLBACK HearOfTheEndWithoutMemory(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == BatchRename::FrameMessage::RunEnded) std::exchange(g_begin, [] {})();
    const LRESULT result = CallWindowProcW(g_frameProcedure, window, message, wParam, lParam);
    if (message == BatchRename::FrameMessage::RunEnded) FailingMemory::Disarm();
    return result;
}

/// When the window hears of the end, of all moments: it tells of it as soon as there is memory.
TEST(RenameWindowWithoutMemory, ShowsTheEndOfARun) {
    RenameWindow window(kNames);
    window.Open(kNames);
    FailingMemory memory(Library());
    g_frameProcedure = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window.Frame(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(HearOfTheEndWithoutMemory)));
    std::wstring rule = L"[N]";
    for (const size_t number : {0, 1, 3, 15}) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        g_begin = [&memory, number] { memory.Arm(number, true); };
        window.Panel().Enter(IDC_NAME_TEMPLATE, rule += L"2");
        ASSERT_TRUE(window.WaitForStatus(L"2 of 2 items will be renamed"));
        window.Panel().Press(IDC_START);
        ASSERT_TRUE(window.WaitForStatus(L"2 Renamed")) << window.Status();
        ASSERT_TRUE(memory.HasFailed() && window.Panel().IsEnabled(IDC_NAME_TEMPLATE));
    }
}

/// Nothing is renamed by halves: each file is there with its content, and the window tells of the end.
TEST(RenameWindowWithoutMemory, RenamesWhollyOrNot) {
    if (FailingMemory::kLocksNeedMemory) GTEST_SKIP() << "the debug containers' locks would end the process";
    for (const size_t number : {0, 9, 63, 255}) {
        SCOPED_TRACE("allocation " + std::to_string(number));
        RenameWindow window(kNames);
        window.Open(kNames);
        window.Panel().Enter(IDC_NAME_TEMPLATE, L"[N]2");
        ASSERT_TRUE(window.WaitForStatus(L"2 of 2 items will be renamed"));
        // Held, so that what was replaced in it can be put back.
        const Win32::Module held(LoadLibraryW(L"QVUtils.dll"));  // the loaded one, whatever its folder
        FailingMemory memory(Library());
        memory.Arm(number, true);
        window.Panel().Press(IDC_START);
        EXPECT_TRUE(window.WaitFor([&] { return memory.HasFailed() || window.Status() == L"2 Renamed"; }));
        window.EndHost();  // ends a run after its row, still without memory
        std::string contents;
        for (const std::wstring& name : window.NamesOnDisk()) contents += window.Files().Read(name);
        EXPECT_EQ(contents, "ab");
    }
}

}  // namespace
