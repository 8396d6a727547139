#include <stdexcept>
#include <system_error>

#include <gtest/gtest.h>

#include "fileutils/fileutils_resource.h"
#include "support/dialog_driver.h"
#include "ui/activation_context.h"
#include "ui/controls.h"
#include "ui/dialog.h"

#include <commctrl.h>

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
    Sample sample;
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
    const auto doubled = measures(2);
    // As the system does it: it tells of the new scale, and makes window and controls larger.
    SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(2 * dots, 2 * dots), reinterpret_cast<LPARAM>(&whole));
    Resize(window, 2 * (whole.right - whole.left), 2 * (whole.bottom - whole.top));
    EXPECT_EQ(measures(1), doubled);
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

TEST(Controls, AllLineBreaksBecomeThoseOfEdits) {
    EXPECT_EQ(Ui::WithEditBreaks(L"a\nb\rc\r\nd\r\r\n"), L"a\r\nb\r\nc\r\nd\r\n\r\n");
}

}  // namespace
