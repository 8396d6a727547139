#include "win32/code_page.h"

#include <gtest/gtest.h>

#include "win32/windows.h"

namespace {

// The system refuses for UTF-8 what it wants for other code pages, under whatever number the code page is asked for.
TEST(CodePage, TheThreadsMayBeUtf8) {
    const LCID before = GetThreadLocale();
    SetThreadLocale(0x0439);  // Hindi
    EXPECT_EQ(Win32::ToCodePage(L"\x0915\x00E9", Win32::kThreadCodePage), "\xE0\xA4\x95\xC3\xA9");
    EXPECT_EQ(Win32::ToCodePage(L"\xD800", Win32::kThreadCodePage), std::nullopt);
    SetThreadLocale(before);
}

}  // namespace
