// XML documents in their readable and compact forms, through the host's XML service.
#include <gtest/gtest.h>

#include "fileutils/command_runner.h"
#include "support/access_list.h"

namespace {

using namespace QVTest;

constexpr char kDeclaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

/// Without line breaks and what else differs between systems at the document's ends.
std::string Trimmed(std::string text) {
    std::erase(text, '\r');
    while (text.ends_with('\n')) text.pop_back();
    if (text.starts_with(std::string(kDeclaration) + "\n")) text.erase(sizeof(kDeclaration) - 1, 1);
    return text;
}

TEST(XmlConversion, GoesFromOneFormToTheOtherAndBack) {
    const std::string compact =
        std::string(kDeclaration) +
        "<a x=\"1 &lt; 2\"><b>text <i>mixed</i> </b><c> </c><d xml:space=\"preserve\"> <e/> </d><f><g/></f></a>";
    const std::string readable = std::string(kDeclaration) +
                                 "<a x=\"1 &lt; 2\">\n\t<b>text <i>mixed</i> </b>\n\t<c> </c>\n"
                                 "\t<d xml:space=\"preserve\"> <e/> </d>\n\t<f>\n\t\t<g/>\n\t</f>\n</a>";
    const CommandRunner runner;
    const std::wstring path = runner.Write(L"a.xml", compact);
    for (int time = 0; time < 2; ++time) {  // the second time there is nothing left to do
        EXPECT_EQ(runner.Run({L"command", L"30200", path}).status, 0);
        EXPECT_EQ(Trimmed(runner.Read(L"a.xml")), readable);
    }
    EXPECT_EQ(runner.Run({L"command", L"30201", path}).status, 0);
    EXPECT_EQ(Trimmed(runner.Read(L"a.xml")), compact);
}

TEST(XmlConversion, KeepsDeclarationAndEncoding) {
    const std::string declaration = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>";
    const CommandRunner runner;
    const std::wstring latin = runner.Write(L"latin.xml", declaration + "<a> <b>\xE4&#8364;</b> </a>");
    const std::wstring start = L"\uFEFF<?xml version=\"1.0\" encoding=\"UTF-16\"?>";
    const std::wstring wide = runner.Write(L"wide.xml", Utf16(start + L"<a> <b>\u4E2D</b> </a>"));
    const std::string unknown = "<?xml version=\"1.0\" encoding=\"IBM037\"?><a> <b/> </a>";
    const std::wstring other = runner.Write(L"other.xml", unknown);
    runner.Run({L"command", L"30201", latin, wide, other}, {L"ok"});
    EXPECT_EQ(Trimmed(runner.Read(L"latin.xml")), declaration + "\n<a><b>\xE4&#8364;</b></a>");
    const std::string wideBytes = runner.Read(L"wide.xml");
    EXPECT_TRUE(wideBytes.starts_with(Utf16(start + L"\n<a><b>\u4E2D</b></a>"))) << testing::PrintToString(wideBytes);
    EXPECT_EQ(runner.Read(L"other.xml"), unknown);
}

TEST(XmlConversion, LeavesABadDocumentAloneAndSaysWhere) {
    const std::pair<std::string, const char*> cases[] = {
        {"<a>\n  <b></a>\n", "bad.xml, line 2, column "},
        {"<a><b>\xC3\xA4 text", "bad.xml, line 1, column 13: "},
        {"<a>\r\n", "bad.xml, line 2, column 1: "},
        {"<a>\n<b/><?p?>\n<b/>\n\n", "bad.xml, line 5, column 1: "},
        {"", "bad.xml: it holds no XML"},
    };
    for (const auto& [bytes, note] : cases) {
        const CommandRunner runner;
        const std::wstring good = runner.Write(L"good.xml", "<a> <b/> </a>");
        const HostRun run = runner.Run({L"command", L"30201", runner.Write(L"bad.xml", bytes), good});
        EXPECT_TRUE(Holds(run.out, "[Convert XML] - Failed to load file : "));
        EXPECT_TRUE(Holds(run.error, note)) << bytes;
        EXPECT_TRUE(Holds(runner.Read(L"good.xml"), "<a><b/></a>"));
        EXPECT_EQ(runner.Read(L"bad.xml"), bytes);
        EXPECT_EQ(runner.List().size(), 2u);
    }
}

TEST(XmlConversion, KeepsNameAndAccess) {
    const CommandRunner runner;
    const std::wstring path = runner.Write(L"a.xml", "<a> <b/> </a>");
    const auto access = GiveAccessList(path, kNarrowList);
    EXPECT_EQ(runner.Run({L"command", L"30201", runner / L"A.XML"}).status, 0);
    EXPECT_EQ(runner.List(), Names{L"a.xml"});
    EXPECT_TRUE(Holds(runner.Read(L"a.xml"), "<a><b/></a>"));
    EXPECT_EQ(AccessListOf(path), access);
}

TEST(XmlConversion, LeavesNothingBesideAReadOnlyFileInUse) {
    const CommandRunner runner;
    const std::wstring path = runner.Write(L"a.xml", "<a> <b/> </a>");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    {
        const Win32::FileHandle holder(
            CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        runner.Run({L"command", L"30201", path}, {L"ok"});
    }
    EXPECT_EQ(runner.ReadAll(), (Contents{{L"a.xml", "<a> <b/> </a>"}}));
}

TEST(XmlConversion, TakesANameForANameAndNotForAnAddress) {
    const CommandRunner runner;
    const std::wstring path = runner.Write(L"a%41.xml", "<a> <right/> </a>");
    runner.Write(L"aA.xml", "<a> <wrong/> </a>");
    runner.Run({L"command", L"30201", path});
    EXPECT_TRUE(Holds(runner.Read(L"a%41.xml"), "<a><right/></a>"));
    EXPECT_EQ(runner.Read(L"aA.xml"), "<a> <wrong/> </a>");
}

}  // namespace
