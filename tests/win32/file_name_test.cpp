#include "win32/file_name.h"
#include "win32/target_name.h"

#include <gtest/gtest.h>

namespace {

using namespace Win32;

TEST(CheckFileName, FindsWhatCannotBeAName) {
    const struct {
        std::wstring name;
        NameFault fault;
        size_t position;
    } cases[] = {
        {L" a.txt", NameFault::None, 0},
        {L"\xD83D\xDE00", NameFault::None, 0},
        {L"", NameFault::Empty, 0},
        {L"a\\b?", NameFault::InvalidCharacter, 1},
        {L"C:a", NameFault::InvalidCharacter, 1},
        {std::wstring(L"a\0b", 3), NameFault::InvalidCharacter, 1},
        {L"a\tb", NameFault::InvalidCharacter, 1},
        {L"a\xD83D", NameFault::LoneSurrogate, 1},
        {L"\xDE00\xD83D", NameFault::LoneSurrogate, 0},
        {L"PRN.txt", NameFault::Reserved, 0},
        {L"COM1", NameFault::Reserved, 0},
        {L"LPT\u00B3.log", NameFault::Reserved, 0},
        {L"nul .a.b", NameFault::Reserved, 0},
        {L"conin$", NameFault::Reserved, 0},
        {L"CONTENT", NameFault::None, 0},
        {L"COM0", NameFault::Reserved, 0},
        {L"COM10", NameFault::None, 0},
        {L"..", NameFault::TrailingDotOrBlank, 1},
        {L"a.", NameFault::TrailingDotOrBlank, 1},
        {L"a ", NameFault::TrailingDotOrBlank, 1},
        {std::wstring(255, L'a'), NameFault::None, 0},
        {std::wstring(256, L'a'), NameFault::TooLong, 255},
    };
    for (const auto& c : cases) {
        const NameCheck check = CheckFileName(c.name);
        EXPECT_EQ(check.fault, c.fault) << c.name;
        EXPECT_EQ(check.position, c.position) << c.name;
        EXPECT_EQ(DescribeNameFault(c.name, check).empty(), c.fault == NameFault::None) << c.name;
    }
    EXPECT_EQ(DescribeNameFault(L"\x07", CheckFileName(L"\x07")), L"the character U+0007 cannot be in a name");
}

TEST(ExpandTargetName, PutsNameAndExtensionInPlaceOfTheStars) {
    const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*> cases[] = {
        {L"*.*", L"a.b.txt", L"a.b.txt"},       {L"*_new.*", L"a.b.txt", L"a.b_new.txt"},
        {L"*.bak", L"a.txt", L"a.bak"},         {L"out.*", L"a.txt", L"out.txt"},
        {L"*_copy", L"a.txt", L"a.txt_copy"},   {L"*", L"a.txt", L"a.txt"},
        {L"*.*", L"Makefile", L"Makefile"},     {L"*.out", L"Makefile", L"Makefile.out"},
        {L"*.*", L".profile", L".profile"},     {L"*-*.*", L"a.txt", L"a-a.txt"},
        {L"fixed.txt", L"a.txt", L"fixed.txt"}, {L"", L"a.txt", L""},
    };
    for (const auto& [pattern, source, expected] : cases)
        EXPECT_EQ(ExpandTargetName(pattern, source), expected) << testing::PrintToString(std::wstring(pattern));
}

}  // namespace
