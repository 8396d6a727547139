#include <set>

#include <gtest/gtest.h>

#include "textio/target_name.h"

using namespace QVUtils;

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

TEST(FreeBackupName, CountsFromTwoToItsLastNumber) {
    std::set<std::wstring> taken;
    const auto exists = [&](const std::wstring& name) { return taken.count(name) > 0; };
    EXPECT_EQ(FreeBackupName(L"p.txt", exists), L"p.txt.bak");
    taken.insert(L"p.txt.bak");
    EXPECT_EQ(FreeBackupName(L"p.txt", exists), L"p.txt_(0002).bak");
    for (int i = 2; i < 9999; ++i) {
        wchar_t name[32];
        swprintf(name, 32, L"p.txt_(%04d).bak", i);
        taken.insert(name);
    }
    EXPECT_EQ(FreeBackupName(L"p.txt", exists), L"p.txt_(9999).bak");
    taken.insert(L"p.txt_(9999).bak");
    EXPECT_EQ(FreeBackupName(L"p.txt", exists), L"");
}
