// The window as a person uses it, on real files.

#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrenamewindow/rename_window.h"
#include "win32/window_position.h"

namespace {

using namespace QVTest;

TEST(RenameWindow, RenamesShowsAndTakesBack) {
    const Words names = {L"a.txt", L"b.txt", L"c.txt"};
    RenameWindow window(names);
    window.Files().Write(L"taken.txt", "taken.txt");
    window.Open(names);
    EXPECT_FALSE(window.Panel().IsEnabled(IDC_START)) << "nothing changes";

    // F6 goes to the list and back.
    PostMessageW(window.Panel().Control(IDC_NAME_TEMPLATE), WM_KEYDOWN, VK_F6, 1);
    EXPECT_TRUE(window.WaitFor([&] { return window.Panel().Focus() == IDC_ROWS; }));
    PostMessageW(window.List(), WM_KEYDOWN, VK_F6, 1);
    EXPECT_TRUE(window.WaitFor([&] { return window.Panel().Focus() == IDC_NAME_TEMPLATE; }));

    // Typed, previewed, with a name that is there already.
    window.AddPair(L"a", L"taken");
    window.AddPair(L"b", L"x:y");
    ASSERT_TRUE(window.WaitForStatus(L"0 of 3 items will be renamed, 2 problems (F8)"));
    window.Panel().Enter(IDC_NAME_TEMPLATE, L"[N]");
    EXPECT_EQ(window.Column(kNewName), (Words{L"taken.txt", L"x:y.txt", L"c.txt"}));
    EXPECT_EQ(window.Cell(0, kState), L"\"taken.txt\" is there already");
    EXPECT_EQ(window.Cell(2, kState), L"Unchanged");
    window.Panel().Press(IDC_ITEM_REMOVE);

    // The rest goes on, once the question is answered, however often Start is pressed.
    window.Panel().Enter(IDC_NAME_TEMPLATE, L"[N]-[C]");
    window.AddPair(L"b-02", L"taken");
    ASSERT_TRUE(window.WaitForStatus(L"2 of 3 items will be renamed, 1 problem (F8)"))
        << testing::PrintToString(window.Column(kState));
    window.Panel().PressLater(IDC_START);
    window.Panel().PressLater(IDC_START);
    window.Dialog(L"Quorvane - BatchRename").PressAndClose(IDYES);
    ASSERT_TRUE(window.WaitForStatus(L"2 Renamed, 1 Failed"));
    EXPECT_EQ(window.NamesOnDisk(), (Words{L"b.txt", L"c-03.txt", L"taken-01.txt", L"taken.txt"}));
    EXPECT_EQ(window.Files().Read(L"taken-01.txt"), "a.txt");
    EXPECT_EQ(window.Cell(0, kState), L"Renamed");
    EXPECT_EQ(window.Cell(1, kState).substr(0, 8), L"Failed: ");
    EXPECT_FALSE(window.Panel().IsEnabled(IDC_START)) << "until something changes";
    EXPECT_EQ(window.Column(0), names) << "the old names";
    EXPECT_EQ(window.Column(kNewName), (Words{L"taken-01.txt", L"b.txt", L"c-03.txt"}));

    // Back again: one that is chosen, then the rest.
    window.Panel().PressLater(IDC_UNDO);
    const DrivenDialog sessions = window.Dialog(L"Undo BatchRename");
    LVITEMW selected = {};
    selected.state = selected.stateMask = LVIS_SELECTED;
    SendMessageW(sessions.Control(IDC_ENTRIES), LVM_SETITEMSTATE, 1, reinterpret_cast<LPARAM>(&selected));
    sessions.PressAndClose(IDOK);
    ASSERT_TRUE(window.WaitForStatus(L"1 of 1 item will be restored"));
    window.Panel().Press(IDC_START);
    ASSERT_TRUE(window.WaitForStatus(L"1 Restored"));
    window.Panel().PressLater(IDC_UNDO);
    window.Dialog(L"Undo BatchRename").PressAndClose(IDOK);
    ASSERT_TRUE(window.WaitForStatus(L"1 of 2 items will be restored"));
    EXPECT_FALSE(window.Panel().IsEnabled(IDC_NAME_TEMPLATE));
    window.Panel().Press(IDC_START);
    ASSERT_TRUE(window.WaitForStatus(L"1 Restored, 1 Ignored"));
    EXPECT_EQ(window.NamesOnDisk(), (Words{L"a.txt", L"b.txt", L"c.txt", L"taken.txt"}));

    // The host's selection again, and the rule as it was.
    window.Panel().PressLater(IDC_RESET_LIST);
    ASSERT_TRUE(window.WaitForStatus(L"2 of 3 items will be renamed, 1 problem (F8)"));
    EXPECT_EQ(window.Panel().Text(IDC_NAME_TEMPLATE), L"[N]-[C]");
    window.Panel().PressLater(IDC_CLOSE);
    EXPECT_TRUE(window.WaitFor([&] { return !window.Frame(); }));
    window.EndHost();
    for (const char* line : {"[Batch Rename] - Failed : ", "\\b.txt : \"taken.txt\" is there already\n",
                             "[Batch Rename] - Renamed : ", "\\taken-01.txt : was \"a.txt\"\n",
                             "[Batch Rename] - Restored : ", "[Batch Rename] - 2 Renamed, 1 Failed\n",
                             "[Batch Rename] - 1 Restored, 1 Ignored\n"})
        EXPECT_NE(window.Log().find(line), std::string::npos) << line << window.Log();
}

TEST(RenameWindow, GoesOnWithOtherRowsAndRulesAsTheyAreTyped) {
    const Words names = {L"1", L"2", L"3"};
    RenameWindow window(names);
    window.Open(names);
    window.Panel().Check(IDC_REGEX, true);
    EXPECT_FALSE(window.Panel().IsEnabled(IDC_REPLACE_ALL_MATCHES));
    for (const auto& [find, replaceWith] : {std::pair(L"^1$", L"x"), {L"^3$", L"1"}, {L"^2$", L"3"}, {L"^x$", L"2"}})
        window.AddPair(find, replaceWith);
    ASSERT_TRUE(window.WaitForStatus(L"3 of 3 items will be renamed"));
    window.Panel().Press(IDC_START);
    ASSERT_TRUE(window.WaitForStatus(L"3 Renamed"));
    EXPECT_EQ(window.Files().Read(L"2") + window.Files().Read(L"3") + window.Files().Read(L"1"), "123");

    // The rows go on under their new names, of folders as they are now.
    window.Panel().Enter(IDC_NAME_TEMPLATE, L"[N]b");
    ASSERT_TRUE(window.WaitForStatus(L"3 of 3 items will be renamed"));
    EXPECT_EQ(window.Column(kNewName), (Words{L"2b", L"3b", L"1b"}));

    // The command again: the same window and thread, other rows.
    const HWND frame = window.Frame();
    window.RunCommand({L"1", L"3"});
    ASSERT_TRUE(window.WaitForStatus(L"2 of 2 items will be renamed"));
    EXPECT_EQ(window.Frame(), frame);

    // One letter after the other, through every half of an expression.
    window.Panel().PressLater(IDC_ITEM_NEW);
    const DrivenDialog dialog = window.Dialog(L"Search and Replace");
    for (const wchar_t unit : std::wstring(L"(a+)+[$")) {
        SendMessageW(dialog.Control(IDC_ITEM_FIND), WM_CHAR, unit, 1);
        EXPECT_EQ(GetLastActivePopup(window.Frame()), dialog.Window()) << "no message box";
    }
    EXPECT_EQ(dialog.Text(IDC_ITEM_MATCHES).substr(0, 28), L"The expression is not valid:");
    EXPECT_FALSE(dialog.IsEnabled(IDOK));
    dialog.PressAndClose(IDCANCEL);
    // Plain text may be what no expression is; a restore does without the rule.
    window.Panel().Check(IDC_REGEX, false);
    window.AddPair(L"(", L"");
    window.Panel().Check(IDC_REGEX, true);
    ASSERT_TRUE(window.WaitFor([&] { return window.Status().starts_with(L"Expression 5 is not valid:"); }));
    EXPECT_FALSE(window.Panel().IsEnabled(IDC_START));
    window.Panel().PressLater(IDC_UNDO);
    window.Dialog(L"Undo BatchRename").PressAndClose(IDOK);
    ASSERT_TRUE(window.WaitForStatus(L"3 of 3 items will be restored"));
    window.Panel().Press(IDC_START);
    EXPECT_TRUE(window.WaitForStatus(L"3 Restored"));
}

TEST(RenameWindow, FollowsAPairWhileItIsTypedAndSwitched) {
    RenameWindow window({L"a", L"b"});
    window.Open({L"a", L"b"});
    const auto shows = [&](const Words& names) {
        return window.WaitFor([&] { return window.Column(kNewName) == names; });
    };
    window.Panel().PressLater(IDC_ITEM_NEW);
    const DrivenDialog dialog = window.Dialog(L"Search and Replace");
    dialog.Enter(IDC_ITEM_FIND, L"a");
    EXPECT_TRUE(shows({L"", L"b"})) << "the dialog is open";
    dialog.Enter(IDC_ITEM_REPLACE, L"x");
    EXPECT_TRUE(shows({L"x", L"b"}));
    SetForegroundWindow(GetDesktopWindow());
    window.RunCommand({L"a", L"b"});
    EXPECT_TRUE(window.WaitFor([&] { return GetForegroundWindow() == dialog.Window(); })) << "the command again";
    dialog.PressAndClose(IDCANCEL);
    EXPECT_TRUE(shows({L"a", L"b"})) << "taken back";

    // In its place: the find text, then the replacement; Escape takes back what it ends.
    window.AddPair(L"a", L"x");
    const HWND pairs = window.Panel().Control(IDC_ITEMS);
    const auto cell = [&] { return GetDlgItem(window.Panel().Window(), IDC_ITEM_CELL); };
    const auto press = [&](WPARAM key) { PostMessageW(cell(), WM_KEYDOWN, key, 1); };
    const auto edits = [&](const wchar_t* text) {
        return window.WaitFor([&] { return ShownText(cell(), WM_GETTEXT) == text; });
    };
    PostMessageW(pairs, WM_KEYDOWN, VK_F2, 1);
    ASSERT_TRUE(edits(L"a"));
    SendMessageW(cell(), WM_CHAR, L'b', 1);
    EXPECT_TRUE(shows({L"a", L"x"}));
    press(VK_TAB);
    ASSERT_TRUE(edits(L"x"));
    SendMessageW(cell(), WM_CHAR, L'y', 1);
    EXPECT_TRUE(shows({L"a", L"y"}));
    press(VK_ESCAPE);
    EXPECT_TRUE(shows({L"a", L"x"}));
    EXPECT_EQ(cell(), nullptr);
    EXPECT_EQ(CellOf(pairs, 0, 0) + CellOf(pairs, 0, 1), L"bx");

    PostMessageW(pairs, WM_KEYDOWN, VK_SPACE, 1);
    EXPECT_TRUE(shows({L"a", L"b"})) << "switched off";
    PostMessageW(pairs, WM_KEYDOWN, VK_SPACE, 1);
    EXPECT_TRUE(shows({L"a", L"x"}));

    // What is typed counts for Start, also without the preview.
    window.Panel().Press(IDC_LIVE_PREVIEW);
    PostMessageW(pairs, WM_KEYDOWN, VK_F2, 1);
    ASSERT_TRUE(edits(L"b"));
    SendMessageW(cell(), WM_CHAR, L'a', 1);
    PostMessageW(cell(), WM_SYSCHAR, L's', KF_ALTDOWN << 16 | 1);
    EXPECT_TRUE(window.WaitForStatus(L"1 Renamed, 1 Ignored"));
    EXPECT_EQ(window.NamesOnDisk(), (Words{L"b", L"x"}));
}

TEST(RenameWindow, StartsAndClosesByNoLetterWithoutAlt) {
    RenameWindow window({L"a"});
    window.Open({L"a"});
    window.Panel().Enter(IDC_NAME_TEMPLATE, L"[N]2");
    ASSERT_TRUE(window.WaitForStatus(L"1 of 1 item will be renamed"));
    for (const int control : {IDC_LIVE_PREVIEW, IDC_PROFILES, IDC_START, IDC_ROWS})
        for (wchar_t letter = L'a'; letter <= L'z'; ++letter)
            PostMessageW(GetDlgItem(control == IDC_ROWS ? window.Frame() : window.Panel().Window(), control), WM_CHAR,
                         letter, 1);
    // Arrives after all of them: the window is there, the rule as it was, and nothing is renamed yet.
    PostMessageW(window.Panel().Control(IDC_PROFILES), WM_SYSCHAR, L's', KF_ALTDOWN << 16 | 1);
    ASSERT_TRUE(window.WaitForStatus(L"1 Renamed"));
    EXPECT_EQ(window.NamesOnDisk(), Words{L"a2"});
    EXPECT_TRUE(window.Panel().IsChecked(IDC_LIVE_PREVIEW));
}

TEST(RenameWindow, IsLaidOutAnewForAnotherScaleAndBackOnANarrowScreen) {
    RenameWindow window({L"a.txt"});
    window.Open({L"a.txt"});
    ASSERT_TRUE(window.WaitForStatus(L"0 of 1 item will be renamed"));
    const HWND start = window.Panel().Control(IDC_START);
    const auto sizes = [&] {
        LOGFONTW font = {};
        GetObjectW(reinterpret_cast<HFONT>(SendMessageW(window.List(), WM_GETFONT, 0, 0)), sizeof(font), &font);
        RECT button = {};
        GetWindowRect(start, &button);
        return std::vector<LONG>{font.lfHeight, button.right - button.left, button.bottom - button.top};
    };
    const auto pairsAreShared = [&] {
        const HWND pairs = window.Panel().Control(IDC_ITEMS);
        RECT client = {};
        GetClientRect(pairs, &client);
        return ListView_GetColumnWidth(pairs, 0) == client.right / 2;
    };
    const auto before = sizes();
    const auto scale = [&](UINT dots, LONG width, LONG height) {
        const RECT place = {0, 0, width, height};
        SendMessageW(window.Frame(), WM_DPICHANGED, MAKEWPARAM(dots, dots), reinterpret_cast<LPARAM>(&place));
    };
    const UINT dots = Win32::DotsPerInch(window.Frame());
    scale(2 * dots, 2400, 1600);
    std::vector<LONG> doubled = before;
    for (LONG& length : doubled) length *= 2;
    EXPECT_EQ(sizes(), doubled);
    EXPECT_TRUE(window.WaitFor(pairsAreShared));
    scale(dots, 700, 560);
    EXPECT_EQ(sizes(), before);
    EXPECT_TRUE(window.WaitFor(pairsAreShared));
    // Where there is no place for a column of buttons they are a row, and the list keeps some lines.
    RECT panel = {};
    GetWindowRect(window.Panel().Window(), &panel);
    for (const int button : {IDC_START, IDC_UNDO, IDC_PROFILES, IDC_RESET_LIST, IDC_CLOSE, IDC_ITEM_NEW}) {
        RECT rect = {};
        GetWindowRect(window.Panel().Control(button), &rect);
        RECT common = {};
        EXPECT_TRUE(IntersectRect(&common, &rect, &panel) && EqualRect(&common, &rect)) << button;
    }
}

TEST(RenameWindow, KeepsTheSelectionOnItsRows) {
    const Words names = {L"b", L"c", L"a", L"d"};
    RenameWindow window(names);
    window.Open(names);
    const auto selected = [&] {
        Words shown;
        for (LRESULT place = -1;;) {
            place = SendMessageW(window.List(), LVM_GETNEXTITEM, static_cast<WPARAM>(place), LVNI_SELECTED);
            if (place < 0) return shown;
            shown.push_back(window.Cell(static_cast<int>(place), 0));
        }
    };
    const auto press = [&](WPARAM key) { PostMessageW(window.List(), WM_KEYDOWN, key, 1); };
    press(VK_HOME);
    ASSERT_TRUE(window.WaitFor([&] { return selected() == Words{L"b"}; }));
    // Sorted by a click on the first column's header.
    const auto header = reinterpret_cast<HWND>(SendMessageW(window.List(), LVM_GETHEADER, 0, 0));
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP}) SendMessageW(header, message, 0, MAKELPARAM(20, 5));
    EXPECT_TRUE(window.WaitFor([&] { return window.Column(0) == Words{L"a", L"b", L"c", L"d"}; }));
    EXPECT_EQ(selected(), Words{L"b"});
    window.Panel().Enter(IDC_NAME_TEMPLATE, L"[N]2");
    ASSERT_TRUE(window.WaitForStatus(L"4 of 4 items will be renamed"));
    EXPECT_EQ(selected(), Words{L"b"});

    // Read again, as the host has them: by an arrow the selection goes on from its row.
    window.Panel().PressLater(IDC_RESET_LIST);
    ASSERT_TRUE(window.WaitFor([&] { return window.Column(0) == names; }));
    EXPECT_EQ(selected(), Words{L"b"});
    ASSERT_TRUE(window.WaitForStatus(L"4 of 4 items will be renamed"));
    press(VK_DOWN);
    ASSERT_TRUE(window.WaitFor([&] { return selected() == Words{L"c"}; }));
    press(VK_DELETE);
    ASSERT_TRUE(window.WaitForStatus(L"3 of 3 items will be renamed"));
    EXPECT_EQ(window.Column(0), (Words{L"b", L"a", L"d"}));

    // All are selected, then others come: those alone stay so.
    ListView_SetItemState(window.List(), -1, LVIS_SELECTED, LVIS_SELECTED);
    window.RunCommand({L"d", L"b", L"c"});
    ASSERT_TRUE(window.WaitFor([&] { return window.Column(0) == Words{L"d", L"b", L"c"}; }));
    EXPECT_EQ(selected(), (Words{L"d", L"b"}));
    window.RunCommand({L"b", L"a", L"d"});
    ASSERT_TRUE(window.WaitFor([&] { return window.Column(0) == Words{L"b", L"a", L"d"}; }));
    ListView_SetItemState(window.List(), -1, 0, LVIS_SELECTED);
    ListView_SetItemState(window.List(), 1, LVIS_SELECTED, LVIS_SELECTED);
    ASSERT_TRUE(window.WaitForStatus(L"3 of 3 items will be renamed"));

    // What is selected stays so under its new name.
    EXPECT_EQ(selected(), Words{L"a"});
    window.Panel().Press(IDC_START);
    ASSERT_TRUE(window.WaitForStatus(L"3 Renamed"));
    EXPECT_EQ(selected(), Words{L"a"}) << "by its old name";
}

TEST(RenameWindow, LeavesOutWhatIsNotCheckedAndTakesNamesByHand) {
    const Words names = {L"a.txt", L"b.txt", L"c.txt"};
    RenameWindow window(names);
    window.Open(names);
    window.Panel().Enter(IDC_NAME_TEMPLATE, L"[C]");
    ASSERT_TRUE(window.WaitForStatus(L"3 of 3 items will be renamed"));
    const auto press = [&](WPARAM key) { PostMessageW(window.List(), WM_KEYDOWN, key, 1); };
    // Nothing is selected: the row with the focus is meant.
    SendMessageW(window.List(), LVM_SETSELECTIONMARK, 0, 0);
    press(VK_HOME);
    press(VK_SPACE);
    ASSERT_TRUE(window.WaitForStatus(L"2 of 3 items will be renamed, 1 not checked"));
    EXPECT_EQ(window.Column(kNewName), (Words{L"a.txt", L"01.txt", L"02.txt"}));
    EXPECT_EQ(window.Cell(0, kState), L"Not checked");
    EXPECT_EQ(ListView_GetItemState(window.List(), 0, LVIS_STATEIMAGEMASK), INDEXTOSTATEIMAGEMASK(1));

    press(VK_DOWN);
    press(VK_F2);
    HWND field = nullptr;
    ASSERT_TRUE(window.WaitFor([&] { return (field = FindWindowExW(window.List(), nullptr, L"Edit", nullptr)); }));
    EXPECT_EQ(ShownText(field, WM_GETTEXT), L"01.txt");
    SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"02.txt"));
    PostMessageW(field, WM_KEYDOWN, VK_RETURN, 1);
    ASSERT_TRUE(window.WaitForStatus(L"0 of 3 items will be renamed, 1 not checked, 2 problems (F8)"));
    press(VK_F2);
    ASSERT_TRUE(window.WaitFor([&] { return (field = FindWindowExW(window.List(), nullptr, L"Edit", nullptr)); }));
    SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"mine"));
    PostMessageW(field, WM_KEYDOWN, VK_RETURN, 1);
    ASSERT_TRUE(window.WaitForStatus(L"2 of 3 items will be renamed, 1 not checked"));
    EXPECT_EQ(window.Cell(1, kState), L"Will be renamed, by hand");
    window.Panel().Press(IDC_START);
    ASSERT_TRUE(window.WaitForStatus(L"2 Renamed, 1 Ignored"));
    EXPECT_EQ(window.NamesOnDisk(), (Words{L"02.txt", L"a.txt", L"mine"}));
    window.Panel().PressLater(IDC_UNDO);
    window.Dialog(L"Undo BatchRename").PressAndClose(IDOK);
    ASSERT_TRUE(window.WaitForStatus(L"2 of 2 items will be restored"));
    // What is left out of a restore can be restored later.
    press(VK_F2);
    EXPECT_TRUE(window.WaitForStatus(L"The names of a restore come from its session."));
    press(VK_HOME);
    press(VK_SPACE);
    ASSERT_TRUE(window.WaitForStatus(L"1 of 2 items will be restored, 1 not checked"));
    window.Panel().Press(IDC_START);
    ASSERT_TRUE(window.WaitForStatus(L"1 Restored, 1 Ignored"));
    EXPECT_EQ(window.NamesOnDisk(), (Words{L"02.txt", L"a.txt", L"b.txt"}));
    window.Panel().PressLater(IDC_UNDO);
    window.Dialog(L"Undo BatchRename").PressAndClose(IDOK);
    ASSERT_TRUE(window.WaitForStatus(L"1 of 2 items will be restored"));
    window.Panel().Press(IDC_START);
    ASSERT_TRUE(window.WaitForStatus(L"1 Restored, 1 Ignored"));
    EXPECT_EQ(window.NamesOnDisk(), names);
}

TEST(RenameWindow, LoadsTheProfileChosenAmongNamesakes) {
    RenameWindow window({L"a", L"b"},
                        "<BatchRename><profile name=\"twin\"><filename>first</filename></profile>"
                        "<profile name=\"twin\"><filename>second</filename></profile></BatchRename>");
    window.Open({L"a"});
    window.Panel().PressLater(IDC_PROFILES);
    const HWND menu = DialogDriver(window.Thread()).WaitForMenu();
    window.RunCommand({L"a", L"b"});  // its rows wait until the menu is closed
    EXPECT_EQ(window.Column(0), Words{L"a"});
    for (const WPARAM key : {VK_DOWN, VK_DOWN, VK_RETURN}) PostMessageW(menu, WM_KEYDOWN, key, 1);
    EXPECT_TRUE(window.WaitFor([&] { return window.Panel().Text(IDC_NAME_TEMPLATE) == L"second"; }));
    EXPECT_TRUE(window.WaitFor([&] { return window.Column(0) == Words{L"a", L"b"}; }));
}

TEST(RenameWindow, AnswersWhileAHundredThousandRowsArePreviewed) {
    RenameWindow window({L"one.txt"});
    window.Open({L"one.txt"});
    Words rows;
    for (int row = 0; row < 100000; ++row) rows.push_back(L"file " + std::to_wstring(row) + L".txt");
    window.RunCommand(rows);
    ASSERT_TRUE(window.WaitFor([&] { return SendMessageW(window.List(), LVM_GETITEMCOUNT, 0, 0) == 100000; }));
    // A message sent gets its answer only between two others: each answer during the pass is one moment in which the
    // loop was free. One that computed rows itself would answer once.
    window.Panel().Enter(IDC_NAME_TEMPLATE, L"[C1,1,6]-[N]");
    int answers = 0;
    const bool isDone = WaitUntil([&] {
        for (int message = 0; message < 50; ++message) {
            DWORD_PTR result = 0;
            if (SendMessageTimeoutW(window.Frame(), WM_NULL, 0, 0, SMTO_NORMAL, 5000, &result)) ++answers;
        }
        return window.Status().find(L" of 100000 items") != std::wstring::npos;
    });
    EXPECT_TRUE(isDone);
    EXPECT_GE(answers, 100);
    EXPECT_EQ(window.Cell(99999, kNewName), L"100000-file 99999.txt");
    EXPECT_EQ(window.Cell(99999, kState), L"There is no such item any more");
}

}  // namespace
