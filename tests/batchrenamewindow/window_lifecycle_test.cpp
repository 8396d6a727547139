// The extension's life: the window is open, or in whatever it may be in, when the host shuts down and unloads.
#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrenamewindow/rename_window.h"

namespace {

using namespace QVTest;

TEST(RenameWindow, EndsWithItsHostWhateverItIsAt) {
    const struct {
        const char* moment;
        std::function<void(RenameWindow&)> bring;
    } cases[] = {
        {"a dialog is open, and a box over it",
         [](RenameWindow& window) {
             window.Panel().Enter(IDC_NAME_TEMPLATE, L"[N]2");
             window.WaitForStatus(L"2 of 2 items will be renamed");
             window.Panel().Press(IDC_START);
             window.WaitForStatus(L"2 Renamed");
             window.Panel().PressLater(IDC_UNDO);
             window.Dialog(L"Undo BatchRename").PressLater(IDC_DELETE);
             WaitUntil([&] { return GetLastActivePopup(window.Dialog(L"Undo BatchRename").Window()) != nullptr; });
         }},
        {"a menu is open",
         [](RenameWindow& window) {
             window.Panel().PressLater(IDC_NAME_TAGS);
             DialogDriver(window.Thread()).WaitForMenu();
         }},
        {"it was closed, and opens again",
         [](RenameWindow& window) {
             PostMessageW(window.Frame(), WM_CLOSE, 0, 0);
             EXPECT_TRUE(window.WaitFor([&] { return !window.Frame(); }));
             window.RunCommand({L"a"});
         }},
    };
    for (const auto& c : cases) {
        RenameWindow window({L"a", L"b"});
        window.Open({L"a", L"b"});
        const DWORD threadId = window.Thread();
        const Win32::KernelHandle thread(OpenThread(SYNCHRONIZE, FALSE, threadId));
        c.bring(window);
        window.EndHost();
        EXPECT_EQ(WaitForSingleObject(thread.Get(), 0), WAIT_OBJECT_0) << c.moment << ": the thread has ended";
        EXPECT_FALSE(window.Frame()) << c.moment;
        EXPECT_EQ(GetModuleHandleW(L"QVUtils.dll"), nullptr) << c.moment << ": nothing holds the library";
    }
}

}  // namespace
