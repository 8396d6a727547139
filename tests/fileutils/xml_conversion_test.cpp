// XML documents in their readable and compact forms, through the host's XML service.

#include "fileutils/command_runner.h"
#include "host/xml/xml_text.h"
#include "sdk/owners.h"
#include "support/services_of_host.h"
#include "support/temporary_folder.h"

namespace {

using namespace QVTest;
namespace SDK = Quorvane::SDK;

/// `text` in UTF-16 with the high byte first.
std::string Utf16BigEndian(std::wstring_view text) {
    std::string bytes = Utf16(text);
    for (size_t at = 0; at + 1 < bytes.size(); at += 2) std::swap(bytes[at], bytes[at + 1]);
    return bytes;
}

TEST(XmlConversion, ChangesNothingButBlanks) {
    const std::wstring wide = L"<?xml version='1.0' encoding='UTF-16'?><a><b>\u4E2D\xD83D\xDE00</b> </a>\r\n";
    const std::wstring wideCompact = L"<?xml version='1.0' encoding='UTF-16'?><a><b>\u4E2D\xD83D\xDE00</b></a>\r\n";
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"a tab and a line break in the declaration",
         "<?xml\tversion=\"1.0\"\nencoding = 'iso-8859-1' ?><a> <b>\xE4&#8364;</b></a>",
         "<?xml\tversion=\"1.0\"\nencoding = 'iso-8859-1' ?><a><b>\xE4&#8364;</b></a>"},
        {"a code page, CR LF", "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\r\n<a>\r\n <b>\x80\r\n</b></a>\r\n",
         "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\r\n<a><b>\x80\r\n</b></a>\r\n"},
        {"a UTF-8 mark", "\xEF\xBB\xBF<a> <b>\xC3\xA4</b></a>", "\xEF\xBB\xBF<a><b>\xC3\xA4</b></a>"},
        {"UTF-16 without a mark", Utf16(wide), Utf16(wideCompact)},
        {"the other way round", Utf16BigEndian(wide), Utf16BigEndian(wideCompact)},
        {"a prefix that nothing declares", "<a> <p:b p:c='1'/> </a>", "<a><p:b p:c='1'/></a>"},
        {"a document type", "<!DOCTYPE a [<!ENTITY % p \"<!ENTITY x '>'>\"> %p; ]>\n<a> <b>&x;&#10;</b> </a>",
         "<!DOCTYPE a [<!ENTITY % p \"<!ENTITY x '>'>\"> %p; ]>\n<a><b>&x;&#10;</b></a>"},
    };
    for (const auto& [why, before, after] : cases) {
        const CommandRunner runner;
        const HostRun run = runner.Run({L"command", L"30201", runner.Write(L"a.xml", before)});
        EXPECT_EQ(runner.Read(L"a.xml"), after) << why << run.Said();
        EXPECT_TRUE(run.Said().starts_with("[Convert XML] - Converted file : ")) << why << run.Said();
    }
}

TEST(XmlService, KeepsEncodingAndLineBreaksOfAChangedDocument) {
    ServicesOfHost host(QV_HOST_PROGRAM);
    const TemporaryFolder folder;
    const std::string head = "<?xml\tversion=\"1.0\" encoding=\"iso-8859-1\"?>\r\n";
    const std::wstring path = folder.Write(L"a.xml", head + "<a>\xE4\r\n</a>");
    const SDK::Owned<SDK::IXmlService> service(host.Services().GetXmlService(path.c_str(), 0));
    const SDK::Owned<SDK::IXmlDocument> document(service->Load(path.c_str(), 0));
    ASSERT_TRUE(document);
    SDK::IXmlElement* const root = document->GetRoot();
    EXPECT_TRUE(root->SetAttribute(L"b", L"\xFC"));
    EXPECT_TRUE(service->Save(document.get(), path.c_str(), 0, nullptr));
    const std::string after = folder.Read(L"a.xml");
    EXPECT_TRUE(after.starts_with(head + "<a b=\"\xFC\">\xE4\r\n</a>")) << after;
    EXPECT_TRUE(root->SetText(L"\u20AC"));
    EXPECT_FALSE(service->Save(document.get(), path.c_str(), 0, nullptr)) << "a character that the encoding lacks";
    EXPECT_TRUE(Holds(host.Notes(), "[xml] "));
    EXPECT_EQ(folder.ReadAll(), (Contents{{L"a.xml", after}}));
}

TEST(XmlLayout, LeavesWhatIsTextAsItIs) {
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"line breaks are those of the text", "<?d?>\r\n<a><b/></a>", "<?d?>\r\n<a><b/></a>",
         "<?d?>\r\n<a>\r\n\t<b/>\r\n</a>"},
        {"what stands around the root", "<?d?><!-- c --><a/><!-- e -->\n", "<?d?><!-- c --><a/><!-- e -->\n",
         "<?d?>\n<!-- c -->\n<a/>\n<!-- e -->\n"},
        {"a comment is no text", "<a> <!-- - --> <b/></a>", "<a><!-- - --><b/></a>", "<a>\n\t<!-- - -->\n\t<b/>\n</a>"},
        {"words", "<p> <b>x</b> <i>y</i> </p>", "<p> <b>x</b> <i>y</i> </p>", "<p> <b>x</b> <i>y</i> </p>"},
        {"a reference is text", "<a> <b/>&#32;</a>", "<a> <b/>&#32;</a>", "<a> <b/>&#32;</a>"},
        {"no elements", "<a> <?p?> </a>", "<a> <?p?> </a>", "<a> <?p?> </a>"},
        {"lines of words", "<a><b>x</b>\n<c>x</c></a>", "<a><b>x</b><c>x</c></a>", "<a>\n\t<b>x</b>\n\t<c>x</c>\n</a>"},
        {"blanks that are asked for", "<a> <b c='>' xml:space = 'preserve'> <d/></b></a>",
         "<a><b c='>' xml:space = 'preserve'> <d/></b></a>", "<a>\n\t<b c='>' xml:space = 'preserve'> <d/></b>\n</a>"},
        {"by a document type", "<!DOCTYPE a [<!ATTLIST a xml:space CDATA 'preserve'>]><a> <b/></a>",
         "<!DOCTYPE a [<!ATTLIST a xml:space CDATA 'preserve'>]><a> <b/></a>",
         "<!DOCTYPE a [<!ATTLIST a xml:space CDATA 'preserve'>]>\n<a> <b/></a>"},
    };
    for (const auto& [why, text, compact, readable] : cases) {
        EXPECT_EQ(QVHost::CompactXml(text), compact) << why;
        EXPECT_EQ(QVHost::ReadableXml(text), readable) << why;
    }
    for (const char* none : {"<a>", "</a>", "<a></a></a>", "<a b='>", "<!-- ->", "<![CDATA[]>", "<?a>", "<!D '>", "x"})
        EXPECT_FALSE(QVHost::CompactXml(none)) << none;
}

TEST(XmlFault, IsTheFirstOneWithItsPlace) {
    const auto many = [](const char* text, int count) {
        std::string result;
        while (count-- > 0) result += text;
        return result;
    };
    const std::tuple<const char*, std::string, size_t> cases[] = {
        {"no UTF-8", "<a>\xC0\xAF</a>", 3},
        {"half a pair", "<a>\xED\xA0\x80</a>", 3},
        {"cut at the end", "<a/>\xE4\xB8", 4},
        {"a control character", std::string("<a>\0</a>", 8), 3},
        {"by its number", "<a b='&#x1F;'/>", 6},
        {"an entity that is not declared", "<a>&b;</a>", 3},
        {"no entity", "<a>a & b;</a>", 5},
        {"an attribute twice", "<a><b c='' d='' c=''/></a>", 3},
        {"no blank before it", "<a b=''c=''/>", 7},
        {"no value", "<a b/>", 4},
        {"no quotes", "<a b=c/>", 5},
        {"a tag in a value", "<a b='<'/>", 6},
        {"the end of a section", "<a>]]></a>", 3},
        {"two lines in a comment", "<!-- -- --><a/>", 5},
        {"a comment that does not end", "<a/><!-- -", 4},
        {"a section outside", "<![CDATA[]]><a/>", 0},
        {"text after the root", "<a/> x", 5},
        {"a second root", "<a/><a/>", 4},
        {"no root", "<!-- -->", 8},
        {"an element that does not end", "<a><b/>\n", 8},
        {"a document type inside", "<a><!DOCTYPE a></a>", 3},
        {"a late declaration", " <?xml version='1.0'?><a/>", 1},
        {"too deep", many("<a>", 251) + many("</a>", 251), 750},
        {"too many attributes", "<a" + many(" b=''", 501) + "/>", 0},
    };
    for (const auto& [why, text, offset] : cases) {
        const auto fault = QVHost::FindXmlFault(text);
        ASSERT_TRUE(fault) << why;
        EXPECT_EQ(fault->offset, offset) << why << ": " << fault->reason;
    }
    for (const char* good : {"<?xml version='1.0'?><!DOCTYPE a><a>&b;&#65;&amp;</a>", "<\xC3\xA4 b:c = \"'\" />",
                             "<a><![CDATA[]]>&lt;]]&gt;<?p <?></a > <!-- - -->\n"})
        EXPECT_FALSE(QVHost::FindXmlFault(good)) << good;
}

TEST(XmlConversion, ExpandsNoEntityAndFetchesNothing) {
    std::string entities = "<!ENTITY a 'aaaaaaaaaa'>";
    for (char name = 'b'; name <= 'z'; ++name) {
        entities += std::string("<!ENTITY ") + name + " '";
        for (int time = 0; time < 10; ++time) entities += std::string("&") + static_cast<char>(name - 1) + ";";
        entities += "'>";
    }
    const std::string type = "<!DOCTYPE a SYSTEM 'http://127.0.0.1:9/none.dtd' [" + entities +
                             "<!ENTITY file SYSTEM 'file:///etc/passwd'>]>";
    const CommandRunner runner;
    const std::wstring path = runner.Write(L"a.xml", type + "<a> <b c='&z;'>&z;&file;</b> </a>");
    EXPECT_EQ(runner.Run({L"command", L"30201", path}).status, 0);
    EXPECT_EQ(runner.Read(L"a.xml"), type + "<a><b c='&z;'>&z;&file;</b></a>");
    ServicesOfHost host(QV_HOST_PROGRAM);
    const SDK::Owned<SDK::IXmlService> service(host.Services().GetXmlService(path.c_str(), 0));
    const SDK::Owned<SDK::IXmlDocument> document(service->Load(path.c_str(), 0));
    ASSERT_TRUE(document);
    EXPECT_TRUE(document->GetRoot()->SetAttribute(L"d", L"1"));
    EXPECT_FALSE(service->Save(document.get(), path.c_str(), 0, nullptr)) << "it would come without its entities";
}

TEST(XmlConversion, LeavesABadDocumentAloneAndSaysWhere) {
    const std::pair<std::string, const char*> cases[] = {
        {"<a>\n  <b></a>\n", "bad.xml, line 2, column 6: "},
        {"", "bad.xml, line 1, column 1: it holds no XML"},
        {"<?xml version=\"1.0\" encoding=\"us-ascii\"?>\r\n<a>\r<b>\xE4</b></a>", "bad.xml, line 3, column 4: "},
        {Utf16(L"\uFEFF<a>\n\u4E2D\xD800</a>"), "bad.xml, line 2, column 2: "},
        {"<?xml version=\"1.0\" encoding=\"IBM037\"?><a> <b/> </a>", "[xml] "},
        {Utf16(L"<a> <b/> </a>") + ' ', "[xml] "},
        {"<a p:x='1' q:x='2' xmlns:p='u' xmlns:q='u'/>", "bad.xml, "},
    };
    for (const auto& [bytes, note] : cases) {
        const CommandRunner runner;
        const std::wstring good = runner.Write(L"a%41.xml", "<a><b/></a>");  // a name and no address
        runner.Write(L"aA.xml", "<a/>");
        const HostRun run = runner.Run({L"command", L"30200", runner.Write(L"bad.xml", bytes), good});
        EXPECT_TRUE(Holds(run.out, "[Convert XML] - Failed to load file : "));
        EXPECT_TRUE(Holds(run.error, note)) << bytes;
        EXPECT_EQ(runner.ReadAll(),
                  (Contents{{L"a%41.xml", "<a>\n\t<b/>\n</a>"}, {L"aA.xml", "<a/>"}, {L"bad.xml", bytes}}));
    }
}

}  // namespace
