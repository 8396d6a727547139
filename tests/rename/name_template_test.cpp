#include "rename/name_template.h"

#include <gtest/gtest.h>

namespace {

using namespace BatchRename;

TEST(SplitTemplate, CutsAtSingleBrackets) {
    // Bracketed pieces are shown between < and >.
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"", L""},         {L"a[N]b", L"a|<[N]>b|"}, {L"[[N]]", L"[N]|"},        {L"[[N]", L"<[N]>"},
        {L"[N]]", L"[N]|"}, {L"[[[N]", L"[|<[N]>"},   {L"a[b[N]", L"a|[b|<[N]>"}, {L"xN]", L"<xN]>"},
        {L"]a]", L"<]a]>"}, {L"[]", L"<[]>"}};
    for (const auto& [text, pieces] : cases) {
        std::wstring shown;
        for (const TemplatePiece& piece : SplitTemplate(text))
            shown += piece.isBracketed ? L"<" + piece.text + L">" : piece.text + L"|";
        EXPECT_EQ(shown, pieces);
    }
}

TEST(CompileTemplate, ReadsTagsAndTheirParameters) {
    const struct {
        const wchar_t* text;
        TokenKind kind;
        int32_t start, end, length;
    } cases[] = {
        {L"[n]", TokenKind::Name, 0, 0, 0},
        {L"[f,2]", TokenKind::Folder, 2, 0, 0},
        {L"[C]", TokenKind::Counter, 0, 0, 0},
        {L"[C5,10,3]", TokenKind::Counter, 5, 10, 3},
        {L"[C-5 x10]", TokenKind::Counter, 5, 10, 0},
        {L"[M2]", TokenKind::Month, 0, 0, 2},
        {L"[?size,2,3]", TokenKind::Property, 2, 0, 3},
        {L"[?modified,{yy-MM},2]", TokenKind::Property, 1, 0, 2},
        {L"Photo]", TokenKind::Hour, 0, 0, 0},
        {L"[y]", TokenKind::Literal, 0, 0, 0},
        {L"[]", TokenKind::Literal, 0, 0, 0},
    };
    for (const auto& c : cases) {
        const std::vector<Token> tokens = CompileTemplate(c.text, true);
        ASSERT_EQ(tokens.size(), 1u) << c.text;
        const Token& token = tokens.front();
        EXPECT_EQ(token.kind, c.kind) << c.text;
        EXPECT_EQ((std::vector{token.start, token.end, token.length}), (std::vector{c.start, c.end, c.length}))
            << c.text;
        EXPECT_TRUE(c.kind != TokenKind::Literal || token.text == c.text);
    }
}

TEST(CompileTemplate, KeepsAPropertysNameAndFormatOnlyWhenSomebodyCanBeAsked) {
    const Token token = CompileTemplate(L"[?modified,{yyyy, MM},1,4]", true).front();
    EXPECT_EQ(token.text, L"modified");
    EXPECT_EQ(token.extraText, L"yyyy, MM");
    EXPECT_EQ(CompileTemplate(L"[?a{" + std::wstring(100, L'y') + L"}]", true).front().extraText.size(), 80u);
    EXPECT_EQ(CompileTemplate(L"[?a{yy]", true).front().extraText, L"yy");
    EXPECT_EQ(CompileTemplate(L"[?size,2]", false).front().text, L"");
}

TEST(SelectPart, CountsFromEitherEnd) {
    const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*> cases[] = {
        {L"[N]", L"abcd", L"abcd"},       {L"[Nabc]", L"abcd", L"abcd"}, {L"[N3]", L"ab", L"ab"},
        {L"[N3]", L"abcd", L"abc"},       {L"[N5,2]", L"abc", L""},      {L"[N-2]", L"abcd", L"cd"},
        {L"[N2-3]", L"abcd", L"bc"},      {L"[N3-2]", L"abcd", L"c"},    {L"[N2--3]", L"abcd", L"b"},
        {L"[N2-9]", L"abcd", L"bcd"},     {L"[N,2]", L"abcd", L"bcd"},   {L"[N2,2]", L"abcd", L"bc"},
        {L"[N3,-2]", L"abcd", L"ab"},     {L"[N9,-2]", L"abcd", L""},    {L"[N-9]", L"abcd", L"abcd"},
        {L"[N0-2]", L"abcd", L"abcd"},    {L"[N1-2]", L"", L""},         {L"[N9999999999]", L"ab", L"ab"},
        {L"[N-9999999999]", L"ab", L"ab"}};
    for (const auto& [tag, source, part] : cases)
        EXPECT_EQ(SelectPart(source, CompileTemplate(tag, false).front()), part) << tag;
}

}  // namespace
