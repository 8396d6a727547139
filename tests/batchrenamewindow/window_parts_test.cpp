// The parts of the window that need none.
#include <gtest/gtest.h>

#include "batchrename/model/name_fit.h"
#include "batchrename/model/name_sample.h"
#include "batchrename/model/row_list.h"
#include "batchrename/model/row_order.h"
#include "batchrename/rows.h"
#include "batchrename/window/name_painter.h"
#include "batchrename/window/row_columns.h"
#include "rename/rename_options.h"

namespace {

using namespace BatchRename;

using Names = std::vector<std::wstring>;

RenameItems Rows(const Names& names) {
    RenameItems rows;
    for (const std::wstring& name : names) {
        rows.push_back(QVTest::Row(L"C:\\d", name));
        rows.back()->hostOrder = static_cast<uint32_t>(rows.size());
    }
    return rows;
}

Names NamesOf(const RenameItems& rows) {
    Names names;
    for (const auto& row : rows) names.push_back(row->currentName);
    return names;
}

TEST(FittedName, ShowsTheChangeAndAnEllipsisWhereverTextIsLeftOut) {
    // Ten pixels a unit, and as many an ellipsis. [ ] stand around the changed part.
    const auto shown = [](const std::wstring& before, const std::wstring& name, int width) {
        std::vector<int> edges;
        for (size_t unit = 0; unit < name.size(); ++unit) edges.push_back(static_cast<int>(unit + 1) * 10);
        auto [text, changed] = FitName(name, FindChangedPart(before, name), edges, width, 10);
        return text.insert(changed.end, L"]").insert(changed.begin, L"[");
    };
    const struct {
        const char* why;
        const wchar_t *before, *name;
        int width;
        const wchar_t* expected;
    } cases[] = {
        {"equal", L"abc", L"abc", 30, L"abc[]"},
        {"a letter doubled", L"aa", L"aaa", 30, L"aa[a]"},
        {"a pair whose second half changes", L"\xD83D\xDE00", L"\xD83D\xDE01", 20, L"[\xD83D\xDE01]"},
        {"all fits", L"abc.txt", L"abc-new.txt", 110, L"abc[-new].txt"},
        {"the end is left out", L"abc.txt", L"abc-new.txt", 100, L"abc[-new].t\u2026"},
        {"nothing but the change", L"abcdef.txt", L"new-abcdef.txt", 50, L"[new-]\u2026"},
        {"the beginning is left out", L"abcdefgh.txt", L"abcdefgh-new.txt", 90, L"\u2026[-new].txt"},
        {"both ends are", L"abcdefghijkl.txt", L"abcdef-new-ghijkl.txt", 90, L"\u2026f[-new-]g\u2026"},
        {"too much has changed", L"ab-x", L"ab-new name-x", 60, L"\u2026[new ]\u2026"},
        {"another name altogether", L"x", L"abcdef", 40, L"[abc]\u2026"},
        {"something was taken out", L"abcdefXghi", L"abcdefghi", 60, L"\u2026ef[]ghi"},
        {"no space at all", L"abc", L"abc2", 5, L"[]\u2026"},
        {"no half of a pair", L"a", L"a\xD83D\xDE00x", 30, L"a[]\u2026"},
    };
    for (const auto& c : cases) EXPECT_EQ(shown(c.before, c.name, c.width), c.expected) << c.why;
    EXPECT_EQ(HiddenBlanks(L"  a b .txt\u00A0"), (std::vector<size_t>{0, 1, 5, 10}));
    EXPECT_EQ(HiddenBlanks(L" "), std::vector<size_t>{0});
    EXPECT_EQ(HiddenBlanks(L" a b"), std::vector<size_t>{0});
}

TEST(RowColumns, ShareWhatStatusAndLocationLeave) {
    using Widths = std::array<int, kColumnCount>;
    ColumnWishes wishes;
    wishes.status = 100;
    wishes.location = 80;
    wishes.smallestName = 50;
    EXPECT_EQ(FitColumns(1000, wishes), (Widths{410, 410, 100, 80}));
    wishes.status = 900;
    EXPECT_EQ(FitColumns(1000, wishes), (Widths{270, 270, 380, 80})) << "no status leaves the names without space";
    wishes.fixed[2] = 500;
    wishes.fixed[0] = 100;
    EXPECT_EQ(FitColumns(1000, wishes), (Widths{100, 320, 500, 80})) << "by hand";
    EXPECT_EQ(FitColumns(100, wishes), (Widths{100, 50, 500, 22}));
}

TEST(RowOrder, IsNaturalStableAndComesBack) {
    const RenameItems rows = Rows({L"b10", L"a", L"b2", L"A"});
    const auto never = [] { return false; };
    EXPECT_EQ(NamesOf(SortRows(rows, {RowKey::CurrentName, false}, never)), (Names{L"a", L"A", L"b2", L"b10"}));
    const RenameItems down = SortRows(rows, {RowKey::CurrentName, true}, never);
    EXPECT_EQ(NamesOf(down), (Names{L"b10", L"b2", L"a", L"A"}));
    EXPECT_EQ(SortRows(down, {}, never), rows);
    const RowOrder order = NextOrder({}, RowKey::Location);
    EXPECT_EQ(order, (RowOrder{RowKey::Location, false}));
    EXPECT_EQ(NextOrder(NextOrder(order, RowKey::Location), RowKey::Location), RowOrder());
}

TEST(RowOrder, MovesAndRemovesMarkedRows) {
    std::vector<bool> marks = {true, false, true, true};
    EXPECT_EQ(NamesOf(MoveRows(Rows({L"0", L"1", L"2", L"3"}), marks, true)), (Names{L"0", L"2", L"3", L"1"}));
    EXPECT_EQ(marks, (std::vector<bool>{true, true, true, false}));
    EXPECT_EQ(NamesOf(MoveRows(Rows({L"0", L"2", L"3", L"1"}), marks, false)), (Names{L"1", L"0", L"2", L"3"}));
    EXPECT_EQ(NamesOf(WithoutRows(Rows({L"0", L"1"}), {true, false})), Names{L"1"});
}

TEST(RowMarks, StayWithTheirRowsAndWithThePathsOfNewOnes) {
    const RenameItems rows = Rows({L"a", L"b", L"b", L"c"});
    const std::vector<bool> second = {false, true, false, false};
    const struct {
        const char* why;
        RenameItems now;
        std::vector<bool> expected;
    } cases[] = {
        {"another order", {rows[3], rows[2], rows[1], rows[0]}, {false, false, true, false}},
        {"the marked one is gone, its twin is another row", {rows[0], rows[2]}, {false, false}},
        {"made anew", Rows({L"x", L"b", L"a"}), {false, true, false}},
        {"others altogether", Rows({L"x", L"y", L"z", L"0"}), {false, false, false, false}},
        {"none", {}, {}},
    };
    for (const auto& c : cases) EXPECT_EQ(CarriedMarks(rows, second, c.now), c.expected) << c.why;
}

TEST(RowList, ShowsProblemsFirstWithoutTouchingTheOrder) {
    const auto preview = std::make_shared<Preview>();
    const auto rows = std::make_shared<const RenameItems>(Rows({L"same", L"new", L"bad", L"new too"}));
    preview->rows = rows;
    preview->computed = *rows;
    for (const RowVerdict verdict : {RowVerdict::Ignored, RowVerdict::Rename, RowVerdict::Failed, RowVerdict::Rename})
        preview->plans.push_back({verdict, RowReason::None, 0});
    RowList list;
    list.SetRows(rows);
    list.ShowProblemsFirst(true);
    EXPECT_EQ(list.Places(), std::nullopt) << "nothing is known yet";
    list.SetPreview(preview);
    EXPECT_EQ(list.Places(), (std::vector<uint32_t>{2, 1, 3, 0}));
    list.ShowChangesOnly(true);
    EXPECT_EQ(list.Places(), (std::vector<uint32_t>{2, 1, 3}));
    list.ShowProblemsFirst(false);
    EXPECT_EQ(list.Places(), (std::vector<uint32_t>{1, 2, 3}));
    EXPECT_EQ(list.Rows(), rows);
}

TEST(Problems, AreGoneThroughInBothDirections) {
    const std::vector<RowMark> marks = {RowMark::Problem, RowMark::None, RowMark::Problem, RowMark::Change};
    constexpr size_t kNowhere = SIZE_MAX;
    EXPECT_EQ(NextProblem(marks, 0, false), 2u);
    EXPECT_EQ(NextProblem(marks, 0, true), 2u);
    EXPECT_EQ(NextProblem(marks, kNowhere, false), 0u);
    EXPECT_EQ(NextProblem(marks, kNowhere, true), 2u);
    EXPECT_EQ(NextProblem({RowMark::None}, 0, false), std::nullopt);
    EXPECT_EQ(NextProblem({}, kNowhere, true), std::nullopt);
}

TEST(ItemTrial, CountsTheNamesThatAPairFindsInWhatTheRuleMakesOfThem) {
    const RenameItems rows = Rows({L"a1.txt", L"b.txt", L"a2"});
    const auto trial = [&](const SearchAndReplaceItems& items, uint32_t options) {
        RuleDefinition rule;
        rule.items = std::make_shared<const SearchAndReplaceItems>(items);
        rule.options = options | RenameOption::ScopeName;
        return TextOfTrial(TryItem(rule, items.size() - 1, rows, [] { return false; }), 3);
    };
    constexpr uint32_t kRegex = RenameOption::RegularExpression;
    EXPECT_EQ(trial({{L"a(\\d)", L"$1"}}, kRegex), L"2 of 3 names match\na1.txt\n1.txt");
    EXPECT_EQ(trial({{L"a", L"a"}}, 0), L"2 of 3 names match\na1.txt\na1.txt") << "what stays the same is found too";
    EXPECT_EQ(trial({{L"b", L"x"}, {L"x", L""}}, 0), L"1 of 3 names matches\nb.txt\n.txt")
        << "the pairs before it count";
    EXPECT_EQ(trial({{L"b", L"x", false}, {L"x", L"", false}}, 0), L"0 of 3 names match") << "those that are on";
    EXPECT_EQ(trial({{L"A", L"x"}}, RenameOption::UpperName | RenameOption::CaseSensitive).substr(0, 6), L"2 of 3");
    EXPECT_EQ(trial({{L"(", L""}, {L"b", L""}}, kRegex).substr(0, 6), L"1 of 3") << "its own fault counts, no other";
    EXPECT_EQ(trial({{L"(", L""}}, kRegex).substr(0, 28), L"The expression is not valid:");
}

TEST(RowsAfterARun, FollowAFolderThatWasRenamedAboveThem) {
    RenameItems rows = Rows({L"sub", L"x.txt"});
    rows[0]->isFolder = true;
    rows[1]->location = L"C:\\d\\SUB\\deep";
    const RenameItems after = RowsAfterRun(rows, {{0, {}, L"sub2"}, {0, {}, L"y.txt"}});
    EXPECT_EQ(after[1]->location, L"C:\\d\\sub2\\deep");
    EXPECT_EQ(after[1]->currentName, L"y.txt");
}

}  // namespace
