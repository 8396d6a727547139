#include "win32/window_position.h"

#include <gtest/gtest.h>

namespace {

using namespace Win32;

TEST(WindowPosition, IsReadBackAndNothingElseIs) {
    const WindowPosition position = {-5, 10, 900, 700, true, 210};
    EXPECT_EQ(ParseWindowPosition(FormatWindowPosition(position)), position);
    for (const wchar_t* text : {L"", L"1,2,3,4,0,0,", L"9,9,3,12,0,0", L"a,b,c,d,e,f", L"1,2,999999999,4,0,0"})
        EXPECT_EQ(ParseWindowPosition(text), std::nullopt) << text;
}

TEST(WindowPosition, IsBroughtOntoTheScreen) {
    const RECT screen = {0, 0, 1280, 1024};
    const RECT outside = FitInto({2000, -50, 2400, 250}, screen);
    EXPECT_TRUE(EqualRect(&outside, std::array{RECT{880, 0, 1280, 300}}.data()));
    const RECT larger = FitInto({-10, -10, 2000, 2000}, screen);
    EXPECT_TRUE(EqualRect(&larger, &screen));
}

TEST(WindowPosition, CountsLengthsAtAnotherScaleAndBack) {
    for (const int length : {0, 1, 7, 100, -33, 1999})
        for (const UINT dots : {96U, 120U, 144U, 192U})
            EXPECT_EQ(Rescaled(Rescaled(length, 96, dots), dots, 96), length);
    EXPECT_EQ(Rescaled(100, 96, 192), 200);
    EXPECT_EQ(Rescaled(-3, 192, 96), -2) << "halves go away from zero, on both sides alike";
}

TEST(WindowPosition, OfAWindowIsWhereItGoes) {
    const HWND window =
        CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    const WindowPosition position = {20, 30, 420, 330, false, 111};
    const int panel = PlaceWindow(window, position);
    EXPECT_EQ(PositionOf(window, panel), position);
    EXPECT_EQ(panel, Rescaled(111, 96, DotsPerInch(window)));
    DestroyWindow(window);
}

}  // namespace
