#include <stdexcept>
#include <system_error>

#include <gtest/gtest.h>

#include "fileutils/fileutils_resource.h"
#include "support/dialog_driver.h"
#include "support/replaced_imports.h"
#include "support/temporary_folder.h"
#include "ui/activation_context.h"
#include "ui/controls.h"
#include "ui/dialog.h"
#include "ui/guide.h"
#include "ui/system_ink.h"
#include "win32/folder.h"
#include "win32/module.h"
#include "win32/path.h"
#include "win32/window_position.h"

#include <commctrl.h>
#include <shellapi.h>

namespace {

/// Shows it until somebody presses `button`; gives what it ended with.
template <class Dialog>
INT_PTR ShowAndPress(Dialog& dialog, int button) {
    INT_PTR result = 0;
    QVTest::WhileShown(
        L"Confirm Replace", [&](const QVTest::DrivenDialog& shown) { shown.PressAndClose(button); },
        [&] { result = dialog.ShowModal(nullptr); });
    return result;
}

/// Any dialog serves: this one has buttons and fields, and here they mean nothing.
class Sample final : public Ui::Dialog {
public:
    explicit Sample(WORD resourceId = IDD_CONFIRM_REPLACE) : Dialog(resourceId) {}
    explicit Sample(const DLGTEMPLATE* layout) : Dialog(layout) {}
    ~Sample() = default;

    using Dialog::ShowModal;
    using Dialog::ShowModeless;
    using Dialog::UseHost;

    bool throwsInInit = false;
    std::vector<Ui::Anchor> anchors;
    std::exception_ptr failure;
    std::vector<int> pressed;

private:
    bool OnInit() override {
        if (throwsInInit) throw std::runtime_error("in init");
        if (!anchors.empty()) MakeResizable(anchors);
        return true;
    }
    bool OnCommand(int id, int notification) override {
        if (notification == BN_CLICKED) pressed.push_back(id);
        if (id == IDC_SWITCH_UTF8) throw std::runtime_error("in command");
        if (id == IDOK) End(42);
        return id == IDOK;
    }
    void OnFailure(const std::exception_ptr& thrown) noexcept override { failure = thrown; }
};

TEST(Dialog, HasButtonsPressedByLettersWithAltAlone) {
    Sample sample;
    QVTest::WhileShown(
        L"Confirm Replace",
        [](const QVTest::DrivenDialog& shown) {
            for (const wchar_t letter : std::wstring(L"afrs"))
                PostMessageW(shown.Control(IDC_ANSWER_FIND_NEXT), WM_CHAR, letter, 1);
            PostMessageW(shown.Control(IDC_ANSWER_FIND_NEXT), WM_SYSCHAR, L'r', KF_ALTDOWN << 16 | 1);
            shown.WaitUntilClosed();
        },
        [&] { EXPECT_EQ(sample.ShowModal(nullptr), 42); });
    EXPECT_EQ(sample.pressed, std::vector<int>{IDOK});
}

TEST(Dialog, ReturnsWhatItEndsWith) {
    Sample fromResource;
    Sample fromMemory(Ui::DialogResource(IDD_CONFIRM_REPLACE));
    for (Sample* const sample : {&fromResource, &fromMemory}) {
        EXPECT_EQ(ShowAndPress(*sample, IDOK), 42);
        EXPECT_EQ(ShowAndPress(*sample, IDCANCEL), IDCANCEL);
        EXPECT_EQ(sample->GetWindow(), nullptr);
    }
}

TEST(Dialog, CarriesExceptionsAroundTheSystem) {
    Sample sample;
    EXPECT_THROW(ShowAndPress(sample, IDC_SWITCH_UTF8), std::runtime_error);
    sample.throwsInInit = true;
    EXPECT_THROW(sample.ShowModal(nullptr), std::runtime_error);
    EXPECT_THROW(sample.ShowModeless(nullptr), std::runtime_error);
    EXPECT_EQ(sample.GetWindow(), nullptr);
    EXPECT_THROW(Sample(WORD{9999}).ShowModal(nullptr), std::system_error);
}

TEST(Dialog, WithoutAModalLoopHandsTheExceptionOn) {
    Sample sample;
    sample.ShowModeless(nullptr);
    ASSERT_TRUE(sample.GetWindow());
    SendDlgItemMessageW(sample.GetWindow(), IDC_SWITCH_UTF8, BM_CLICK, 0, 0);
    EXPECT_EQ(sample.GetWindow(), nullptr);
    ASSERT_TRUE(sample.failure);
    EXPECT_THROW(std::rethrow_exception(sample.failure), std::runtime_error);
    HWND window = nullptr;
    {
        Sample left;
        left.ShowModeless(nullptr);
        window = left.GetWindow();
        ASSERT_TRUE(IsWindow(window));
    }
    EXPECT_FALSE(IsWindow(window)) << "a dialog takes its window with it";
}

RECT RectOf(HWND window) {
    RECT rect = {};
    GetWindowRect(window, &rect);
    return rect;
}

/// Of a control, within its dialog.
RECT RectIn(HWND dialog, int control) {
    RECT rect = RectOf(GetDlgItem(dialog, control));
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

void Resize(HWND window, LONG width, LONG height) {
    SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
}

TEST(Resizing, MovesEachEdgeByItsShare) {
    Sample sample;
    sample.anchors = {{IDC_MATCH_CONTEXT, 0, 0, 100, 50}, {IDOK, 100, 100, 100, 100}};
    sample.ShowModeless(nullptr);
    const HWND window = sample.GetWindow();
    RECT context = RectIn(window, IDC_MATCH_CONTEXT);
    RECT button = RectIn(window, IDOK);
    const RECT whole = RectOf(window);
    const LONG width = whole.right - whole.left;
    const LONG height = whole.bottom - whole.top;
    Resize(window, width + 100, height + 60);
    context.right += 100;
    context.bottom += 30;
    OffsetRect(&button, 100, 60);
    for (const auto& [control, expected] : {std::pair(IDC_MATCH_CONTEXT, context), {IDOK, button}}) {
        const RECT now = RectIn(window, control);
        EXPECT_TRUE(EqualRect(&now, &expected)) << control;
    }
    MINMAXINFO limits = {};
    SendMessageW(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
    EXPECT_TRUE(limits.ptMinTrackSize.x == width && limits.ptMinTrackSize.y == height);
}

TEST(Resizing, CountsAnewOnAScreenOfAnotherScale) {
    Sample sample(IDD_CHANGE_ACCESS);  // twice as large it fits on the screen
    sample.anchors = {{IDOK, 100, 100, 100, 100}};
    sample.ShowModeless(nullptr);
    const HWND window = sample.GetWindow();
    const HDC context = GetDC(window);
    const int dots = GetDeviceCaps(context, LOGPIXELSX);
    ReleaseDC(window, context);
    const RECT whole = RectOf(window);
    // To the right and below the button, and its size.
    const auto measures = [&](LONG scale) {
        RECT client = {};
        GetClientRect(window, &client);
        const RECT button = RectIn(window, IDOK);
        return std::vector<LONG>{scale * (client.right - button.right), scale * (client.bottom - button.bottom),
                                 scale * (button.right - button.left), scale * (button.bottom - button.top)};
    };
    const auto once = measures(1);
    const auto doubled = measures(2);
    const auto heightOfFont = [&] {
        LOGFONTW font = {};
        GetObjectW(reinterpret_cast<HFONT>(SendMessageW(GetDlgItem(window, IDOK), WM_GETFONT, 0, 0)), sizeof(font),
                   &font);
        return font.lfHeight;
    };
    const LONG before = heightOfFont();
    // As the system does it: it tells of the new scale, and of a place for a window so much larger.
    RECT client = {};
    GetClientRect(window, &client);
    RECT larger = {whole.left, whole.top, whole.right + client.right, whole.bottom + client.bottom};
    SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(2 * dots, 2 * dots), reinterpret_cast<LPARAM>(&larger));
    EXPECT_EQ(measures(1), doubled);
    EXPECT_EQ(heightOfFont(), 2 * before);

    larger.right = larger.left + 8 * (whole.right - whole.left);
    SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(8 * dots, 8 * dots), reinterpret_cast<LPARAM>(&larger));
    RECT common = {};
    const RECT shrunk = RectOf(window);
    const RECT screen = Win32::WorkAreaNear(shrunk);
    EXPECT_TRUE(IntersectRect(&common, &shrunk, &screen) && EqualRect(&common, &shrunk)) << "no button off the screen";
    EXPECT_LT(-heightOfFont(), -8 * before) << "it is made smaller before it scrolls";
    const RECT tiny = {0, 0, 1, 1};  // what follows the size of a dialog that was shrunk may be too small
    SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(dots, dots), reinterpret_cast<LPARAM>(&tiny));
    EXPECT_EQ(measures(1), once);
    EXPECT_EQ(heightOfFont(), before);
}

TEST(Resizing, ScrollsWhereTheWindowIsTooSmallAndHasTheFocusInSight) {
    EXPECT_EQ(Ui::BarsFor({100, 100}, {100, 100}, {16, 16}), Ui::Bars());
    EXPECT_EQ(Ui::BarsFor({100, 100}, {90, 101}, {16, 16}), (Ui::Bars{true, true}))
        << "one bar takes the other's space";
    EXPECT_EQ(Ui::BarsFor({100, 100}, {84, 101}, {16, 16}), (Ui::Bars{false, true}));
    const auto make = [](const wchar_t* windowClass, DWORD style, RECT rect, HWND parent) {
        return CreateWindowExW(0, windowClass, L"", style, rect.left, rect.top, rect.right - rect.left,
                               rect.bottom - rect.top, parent, nullptr, nullptr, nullptr);
    };
    const HWND window = make(L"STATIC", WS_POPUP, {0, 0, 300, 200}, nullptr);
    const HWND low = make(L"BUTTON", WS_CHILD, {10, 170, 60, 190}, window);
    const HWND right = make(L"BUTTON", WS_CHILD, {240, 10, 290, 30}, window);
    SetWindowLongPtrW(right, GWLP_ID, IDOK);
    const auto place = [&](HWND control) {
        RECT rect = RectOf(control);
        MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&rect), 2);
        return std::pair(rect.left, rect.top);
    };
    Ui::Resizing sizes;
    const int column[] = {IDOK};
    sizes.Start(window, {}, column);
    Resize(window, 200, 150);
    sizes.Arrange();
    EXPECT_LT(place(right).first, 20) << "the column is a row at the top now";
    EXPECT_GT(place(low).second, 170);
    sizes.Reveal(low);
    EXPECT_LT(place(low).second, 150 - 20);
    sizes.Reveal(right);
    EXPECT_GE(place(right).second, 0);
    Resize(window, 300, 200);
    sizes.Arrange();
    EXPECT_EQ(place(low), std::pair(10L, 170L));
    EXPECT_EQ(place(right), std::pair(240L, 10L));
    DestroyWindow(window);
}

/// Keeps one text.
class OneSetting final : public Quorvane::SDK::ISettings {
public:
    std::wstring value;
    bool GetString(uint32_t, const wchar_t*, const wchar_t*, wchar_t* buffer, uint32_t capacity) override {
        Ui::FillItemText(buffer, static_cast<int>(capacity), value);
        return !value.empty();
    }
    bool GetNumber(uint32_t, const wchar_t*, const wchar_t*, uint32_t*) override { return false; }
    bool SetString(uint32_t, const wchar_t*, const wchar_t*, const wchar_t* text) override {
        value = text;
        return true;
    }
    bool SetNumber(uint32_t, const wchar_t*, const wchar_t*, uint32_t) override { return false; }
};

TEST(Dialog, HasTheSizeAgainThatTheUserGaveIt) {
    OneSetting settings;
    const Ui::DialogPage page = {IDD_CONFIRM_REPLACE, L"Sample", L"topic", {}};
    const auto sizeAfter = [&](LONG more) {
        Sample sample;
        sample.UseHost({[](Quorvane::SDK::TextId) { return L""; }, &settings, &page});
        sample.ShowModeless(nullptr);
        const RECT rect = RectOf(sample.GetWindow());
        const SIZE size = {rect.right - rect.left, rect.bottom - rect.top};
        if (more > 0) Resize(sample.GetWindow(), size.cx + more, size.cy + more);
        SendMessageW(sample.GetWindow(), WM_COMMAND, IDCANCEL, 0);
        return std::pair(size.cx, size.cy);
    };
    const auto natural = sizeAfter(0);
    EXPECT_EQ(settings.value, L"") << "nobody has chosen a size";
    sizeAfter(60);
    EXPECT_EQ(sizeAfter(0), std::pair(natural.first + 60, natural.second + 60));
    for (const wchar_t* text : {L"1,1", L"nonsense", L"99999,", L""}) {
        settings.value = text;
        EXPECT_EQ(sizeAfter(0), natural) << text;
    }
}

TEST(SystemInk, KnowsWhatCanBeRead) {
    EXPECT_NEAR(Ui::ContrastOf(RGB(0, 0, 0), RGB(255, 255, 255)), 21, 0.01);
    EXPECT_NEAR(Ui::ContrastOf(RGB(119, 119, 119), RGB(255, 255, 255)), 4.48, 0.01)
        << "the usual example of too little";
    const int kinds[] = {COLOR_HOTLIGHT, COLOR_WINDOW};
    const COLORREF before[] = {GetSysColor(COLOR_HOTLIGHT), GetSysColor(COLOR_WINDOW)};
    for (const auto& [link, expected] : {std::pair(RGB(0, 0, 200), RGB(0, 0, 200)), {RGB(200, 200, 200), 0}}) {
        const COLORREF colours[] = {link, RGB(255, 255, 255)};
        SetSysColors(2, kinds, colours);
        EXPECT_EQ(Ui::AccentInk(), expected == 0 ? GetSysColor(COLOR_WINDOWTEXT) : expected);
    }
    SetSysColors(2, kinds, before);
}

TEST(Dialog, GivesItsListsTheGroundOfTheColoursNow) {
    Sample sample(IDD_CREATE_LINKS);
    sample.ShowModeless(nullptr);
    const int kinds[] = {COLOR_WINDOW};
    const COLORREF before[] = {GetSysColor(COLOR_WINDOW)};
    const COLORREF dark[] = {RGB(30, 30, 30)};
    SetSysColors(1, kinds, dark);
    SendMessageW(sample.GetWindow(), WM_SYSCOLORCHANGE, 0, 0);
    EXPECT_EQ(SendDlgItemMessageW(sample.GetWindow(), IDC_LINK_TARGETS, LVM_GETBKCOLOR, 0, 0), RGB(30, 30, 30));
    SetSysColors(1, kinds, before);
}

TEST(Guide, IsThePackedPageElseTheTextInTheCheckout) {
    const Ui::GuidePlace packed = Ui::PlaceOfGuide(LR"(C:\QVUtils)", L"sort-lines");
    EXPECT_EQ(packed.page, LR"(C:\QVUtils\docs\help\sort-lines.html)");
    EXPECT_EQ(packed.text, L"") << "nothing above the folder is looked at";
    EXPECT_EQ(Ui::PlaceOfGuide(LR"(C:\qv\build\release\bin)", L"x").text, LR"(C:\qv\docs\user-guide.md)");
}

std::vector<std::wstring> g_opened;
decltype(&GetProcAddress) g_getProcAddress = nullptr;
BOOL WINAPI RecordOpened(SHELLEXECUTEINFOW* request) {
    g_opened = {request->lpVerb, request->lpFile, request->lpParameters ? request->lpParameters : L""};
    return TRUE;
}
/// The shell's library is loaded when it is needed, and its functions are found by name.
FARPROC WINAPI FindWithoutShell(HMODULE module, const char* name) {
    const bool isOpening = std::string_view(name) == "ShellExecuteExW";
    return isOpening ? reinterpret_cast<FARPROC>(RecordOpened) : g_getProcAddress(module, name);
}

TEST(Guide, IsOpenedByABrowserWherePackedAndElseAsText) {
    const QVTest::ReplacedImport replaced(GetModuleHandleW(nullptr), "GetProcAddress",
                                          reinterpret_cast<void*>(FindWithoutShell));
    g_getProcAddress = reinterpret_cast<decltype(g_getProcAddress)>(replaced.Original());
    ASSERT_NE(g_getProcAddress, nullptr);
    const QVTest::TemporaryFolder root;
    const auto write = [&](const std::wstring& folder, const wchar_t* file) {
        Win32::MakeFolders(root / folder);
        return root.Write(folder + L"\\" + file, "");
    };
    const std::wstring text = write(L"docs", L"user-guide.md");
    Win32::MakeFolders(root / L"build\\release\\bin");
    Ui::OpenGuide(nullptr, Ui::PlaceOfGuide(root / L"build\\release\\bin", L"sort-lines"), {});
    const std::wstring notepad = Win32::JoinPath(Win32::SystemFolder(), L"notepad.exe");
    EXPECT_EQ(g_opened, (std::vector<std::wstring>{L"open", notepad, L"\"" + text + L"\""}));
    const std::wstring page = write(L"docs\\help", L"sort-lines.html");
    Ui::OpenGuide(nullptr, Ui::PlaceOfGuide(root.Path(), L"sort-lines"), {});
    EXPECT_EQ(g_opened, (std::vector<std::wstring>{L"open", page, L""}));
}

TEST(ActivationContext, GivesOurWindowsTheNewerControls) {
    const auto hasNewerEdit = [] {
        const HWND window =
            CreateWindowExW(0, L"EDIT", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
        // Only the controls of version 6 know this message.
        const LRESULT isSet = SendMessageW(window, EM_SETCUEBANNER, TRUE, reinterpret_cast<LPARAM>(L"cue"));
        DestroyWindow(window);
        return isSet != 0;
    };
    EXPECT_FALSE(hasNewerEdit());
    {
        const Ui::ActivationContext context;
        EXPECT_TRUE(hasNewerEdit());
    }
    EXPECT_FALSE(hasNewerEdit());
}

TEST(Controls, SelectTheWholeTextByKeyInFieldsAlone) {
    Sample sample;
    sample.ShowModeless(nullptr);
    const HWND field = GetDlgItem(sample.GetWindow(), IDC_MATCH_CONTEXT);
    SetWindowTextW(field, L"a\r\nb");
    const auto selects = [](HWND control, WPARAM character) {
        MSG message = {};
        message.hwnd = control;
        message.message = WM_CHAR;
        message.wParam = character;
        return Ui::SelectAllByKey(message);
    };
    EXPECT_TRUE(selects(field, 1));
    EXPECT_EQ(SendMessageW(field, EM_GETSEL, 0, 0), MAKELONG(0, 4));
    EXPECT_FALSE(selects(field, L'a'));
    EXPECT_FALSE(selects(GetDlgItem(sample.GetWindow(), IDOK), 1));
}

TEST(Controls, AllLineBreaksBecomeThoseOfEdits) {
    EXPECT_EQ(Ui::WithEditBreaks(L"a\nb\rc\r\nd\r\r\n"), L"a\r\nb\r\nc\r\nd\r\n\r\n");
}

}  // namespace
