#include "rename/rename_rule.h"

#include <gtest/gtest.h>

#include "rows.h"

namespace {

using namespace BatchRename;
using QVTest::Row;

constexpr CalendarTime kTime = {2016, 3, 1, 7, 14, 29, 5, 0};

class Properties final : public IPropertySource {
public:
    bool GetProperty(const BatchRenameItem& row, const std::wstring& name, const std::wstring& format,
                     std::wstring& value) override {
        value = name + L":" + format + L"\r\n" + row.currentName;
        return name != L"unknown";
    }
};

std::shared_ptr<BatchRenameItem> Computed(const RuleDefinition& definition, std::shared_ptr<BatchRenameItem> row) {
    Properties properties;
    RenameRule rule(&properties);
    rule.SetRule(definition, kTime);
    rule.Compute(*row);
    return row;
}

std::wstring Renamed(const RuleDefinition& definition, const std::wstring& name, bool isFolder = false,
                     const std::wstring& location = LR"(C:\music\Album)") {
    const auto row = Row(location, name);
    row->isFolder = isFolder;
    return Computed(definition, row)->newName;
}

RuleDefinition Rule(std::wstring name, std::wstring extension = L"[E]", uint32_t options = 0,
                    SearchAndReplaceItems items = {}) {
    RuleDefinition rule;
    rule.nameTemplate = std::move(name);
    rule.extensionTemplate = std::move(extension);
    rule.options = options;
    rule.items = std::make_shared<const SearchAndReplaceItems>(std::move(items));
    return rule;
}

TEST(RenameRule, ComputesNamesFromTemplates) {
    const std::tuple<const char*, RuleDefinition, const wchar_t*, const wchar_t*> cases[] = {
        {"the default changes nothing", {}, L"a.b.txt", L"a.b.txt"},
        {"nor one with nothing but an extension", {}, L".a", L".a"},
        {"no extension, no dot", Rule(L"x-[N]-y", L""), L"a.txt", L"x-a-y"},
        {"a new extension", Rule(L"[N]", L"bak"), L"a", L"a.bak"},
        {"the folder", Rule(L"[F] [F2-3]"), L"a.txt", L"Album lb.txt"},
        {"the moment of setting", Rule(L"[Y][M2][D2]-[h2][m2][s2] [Y2] [M]"), L"a", L"20160307-142905 16 3"},
        {"a property is cleaned, its line breaks go", Rule(L"[?size,{KB}]", L""), L"a<b", L"size_KBa_b"},
        {"line breaks go", Rule(L"a\r\nb"), L"x.t", L"ab.t"},
    };
    for (const auto& [why, rule, name, newName] : cases) EXPECT_EQ(Renamed(rule, name), newName) << why;
    EXPECT_EQ(Renamed(Rule(L"[C1,1,2147483647]", L""), L"a").size(), 4096u);
    EXPECT_EQ(Renamed(Rule(L"[N]!", L"bak"), L"a.folder", true), L"a.folder!");
    const uint32_t expression = RenameOption::ScopeBoth | RenameOption::RegularExpression;
    EXPECT_EQ(Renamed(Rule(L"[N]", L"[E]", expression, {{L"^", L"x-"}}), L"a.folder", true), L"x-a.folder");
    EXPECT_EQ(Renamed(Rule(L"[F]"), L"a", false, L"C:\\"), L"C");
    EXPECT_EQ(Renamed(Rule(L"[F]"), L"a", false, LR"(\\server\share\)"), L"share");
}

TEST(RenameRule, CountsRowsWithTheRuleAndWithATagOfItsOwn) {
    RenameRule rule;
    RuleDefinition definition = Rule(L"[C] [C5,10,3] [C]", L"");
    const auto compute = [&] {
        const auto row = Row(L"C:", L"x");
        rule.Compute(*row);
        return row->newName;
    };
    rule.SetRule(definition, kTime);
    EXPECT_EQ(compute(), L"01 005 02");
    EXPECT_EQ(compute(), L"03 015 04");
    definition.counter = {-7, 1, 4};
    rule.SetRule(definition, kTime);
    EXPECT_EQ(compute(), L"-007 005 -006");
    definition.counter = {2147483647, 1, 0};
    rule.SetRule(definition, kTime);
    EXPECT_EQ(compute(), L"2147483647 005 -2147483648");
}

TEST(RenameRule, LeavesRowsOfARestoreAlone) {
    const auto row = Row(L"C:", L"a", L"given");
    row->state = RowState::Restore;
    EXPECT_EQ(Computed(Rule(L"x"), row)->newName, L"given");
}

TEST(RenameRule, CountsNamesByHandAndSkipsRowsThatAreLeftOut) {
    RenameRule rule;
    rule.SetRule(Rule(L"[C]", L""), kTime);
    const auto compute = [&](bool isLeftOut, const wchar_t* ownName) {
        const auto row = Row(L"C:", L"x", L"before");
        row->isLeftOut = isLeftOut;
        row->ownName = ownName;
        rule.Compute(*row);
        return row->newName;
    };
    EXPECT_EQ(compute(false, L""), L"01");
    EXPECT_EQ(compute(true, L"mine"), L"x");
    EXPECT_EQ(compute(false, L"mine"), L"mine");
    EXPECT_EQ(compute(false, L""), L"03");
}

TEST(RenameRule, ConvertsCaseByTheLowestBit) {
    using namespace RenameOption;
    const std::tuple<uint32_t, const wchar_t*, const wchar_t*> cases[] = {
        {LowerBoth, L"\u00C4B.TXT", L"\u00C4b.txt"},
        {UpperBoth, L"\u00E4b.txt", L"\u00E4B.TXT"},
        {UpperName, L"ab.txt", L"AB.txt"},
        {LowerExtension, L"AB.TXT", L"AB.txt"},
        {CapitaliseWords, L"\u00E4B cD_eF.g\u00C4.TXT", L"\u00C4b Cd_Ef.G\u00E4.TXT"},
        {Sentence, L"\u00E4B C\u00C4.TXT", L"\u00C4b c\u00C4.TXT"},
        {Sentence, L".TXT", L".TXT"},
        {UpperExtension | LowerName, L"AB.txt", L"ab.txt"},
    };
    for (const auto& [options, name, newName] : cases)
        EXPECT_EQ(Renamed(Rule(L"[N]", L"[E]", options), name), newName) << options;
}

TEST(RenameRule, SearchesAndReplaces) {
    using namespace RenameOption;
    const struct {
        const char* why;
        SearchAndReplaceItems items;
        uint32_t options;
        const wchar_t *name, *newName;
    } cases[] = {
        {"the first one", {{L"a", L"b"}}, ScopeBoth, L"aaa", L"baa"},
        {"a replacement is not searched again", {{L"a", L"aa"}}, ScopeBoth | ReplaceAll, L"aa", L"aaaa"},
        {"in order", {{L"a", L"b"}, {L"b", L"c"}}, ScopeBoth | ReplaceAll, L"ab", L"cc"},
        {"empty ones are skipped", {{L"", L"x"}, {L"a", L"b"}}, ScopeBoth, L"a", L"b"},
        {"in any case", {{L"A", L"b"}}, ScopeBoth, L"xa", L"xb"},
        {"A to Z alone are folded", {{L"\u00C4", L"b"}}, ScopeBoth, L"\u00E4\u00C4", L"\u00E4b"},
        {"both parts", {{L"a", L"b"}}, ScopeBoth, L"a.a", L"b.b"},
        {"the extension", {{L"a", L"b"}}, ScopeExtension, L"a.a", L"a.b"},
        {"signs mean nothing", {{L".*", L"b"}}, ScopeBoth, L"a.*", L"a.*"},
        {"groups", {{L"(\\w)(\\d)", L"$2$1"}}, ScopeName | RegularExpression, L"a1b2", L"1a2b"},
        {"after the case", {{L"a", L"X"}}, ScopeName | LowerName | CaseSensitive, L"A", L"X"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Renamed(Rule(L"[N]", L"[E]", c.options, c.items), c.name), c.newName) << c.why;
}

TEST(RenameRule, KeepsItsStateWhenAnExpressionDoesNotCompile) {
    RenameRule rule;
    rule.SetRule(Rule(L"kept"), kTime);
    EXPECT_THROW(rule.SetRule(Rule(L"x", L"", RenameOption::RegularExpression, {{L"(", L""}}), kTime), RegexFault);
    const auto row = Row(L"C:", L"a");
    rule.Compute(*row);
    EXPECT_EQ(row->newName, L"kept");
}

TEST(RenameRule, FlagsWhatItCannotCompute) {
    using namespace RenameOption;
    const auto searching = [](uint32_t options, SearchAndReplaceItems items) {
        return Rule(L"[N]", L"[E]", ScopeBoth | options, std::move(items));
    };
    const struct {
        const char* why;
        RuleDefinition rule;
        std::wstring name;
        RuleFault fault;
        size_t newLength;
    } cases[] = {
        {"an expression that explodes", searching(RegularExpression, {{L"a", L"aa"}, {L"(a+)+$", L"x"}}),
         std::wstring(40, L'a') + L"b", RuleFault::TooComplex, 81},
        {"a text that grows without end", searching(ReplaceAll, SearchAndReplaceItems(20, {L"a", L"aaaa"})), L"a",
         RuleFault::ResultTooLong, 16384},
        {"an unknown property", Rule(L"[?unknown]"), L"a", RuleFault::UnknownProperty, 9},
    };
    for (const auto& c : cases) {
        const auto row = Computed(c.rule, Row(L"C:", c.name));
        EXPECT_EQ(row->fault, c.fault) << c.why;
        EXPECT_EQ(row->newName.size(), c.newLength) << c.why;
        EXPECT_FALSE(DescribeRuleFault(row->fault).empty());
    }
}

}  // namespace
