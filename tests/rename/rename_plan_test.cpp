#include "rename/rename_plan.h"

#include <random>

#include <gtest/gtest.h>

#include "rows.h"
#include "support/small_texts.h"

namespace {

using namespace BatchRename;
using namespace QVTest;
using Pairs = std::vector<std::pair<std::wstring, std::wstring>>;

const std::wstring kFolder = LR"(C:\d)";

FolderNames Listing(const std::wstring& folder, const std::vector<std::wstring>& names) {
    FolderNames listing = {folder, {}, 0};
    for (const std::wstring& name : names) listing.names.Add(name);
    return listing;
}

TEST(PlanRenames, GivesEachRowOneVerdictWithItsReason) {
    using R = RowReason;
    const struct {
        const char* why;
        std::vector<std::wstring> disk;
        Pairs rows;
        std::vector<RowReason> reasons;  // None: to be renamed
    } cases[] = {
        {"a row keeps it", {L"a", L"b"}, {{L"a", L"b"}, {L"b", L"b"}}, {R::Duplicate, R::Unchanged}},
        {"a row that fails has it, and so on",
         {L"a", L"b", L"c"},
         {{L"a", L"b"}, {L"b", L"c"}, {L"c", L""}},
         {R::HeldByARow, R::HeldByARow, R::BadName}},
        {"gone", {L"b"}, {{L"a", L"c"}, {L"b", L"a"}}, {R::Gone, R::None}},
        {"twice in the list", {L"a"}, {{L"a", L"b"}, {L"A", L"c"}}, {R::None, R::ListedTwice}},
    };
    for (const auto& c : cases) {
        const RenameItems rows = Rows(kFolder, c.rows);
        const RenamePlan plan = PlanRenames(rows, {Listing(L"c:\\D", c.disk)});
        for (size_t row = 0; row < rows.size(); ++row) {
            EXPECT_EQ(plan.rows[row].reason, c.reasons[row]) << c.why << " row " << row;
            EXPECT_EQ(DescribeRowPlan(*rows[row], plan.rows[row]).empty(), c.reasons[row] == R::None) << c.why;
        }
    }
}

TEST(PlanRenames, GivesBackANameThatNobodyMayChoose) {
    const RenameItems rows = Rows(kFolder, {{L"a", L"\xD83D"}});
    EXPECT_EQ(PlanRenames(rows, {Listing(kFolder, {L"a"})}).rows[0].reason, RowReason::BadName);
    rows[0]->state = RowState::Restore;
    EXPECT_EQ(PlanRenames(rows, {Listing(kFolder, {L"a"})}).rows[0].reason, RowReason::None);
}

TEST(PlanRenames, GivesAnItemNeitherOfTwoOldNames) {
    const RenameItems rows = Rows(kFolder, {{L"b1", L"a10"}, {L"b1", L"a1"}});
    for (const auto& row : rows) row->state = RowState::Restore;
    const RenamePlan plan = PlanRenames(rows, {Listing(kFolder, {L"b1"})});
    for (const RowPlan& row : plan.rows) EXPECT_EQ(row.reason, RowReason::ListedTwice);
}

TEST(PlanRenames, TellsItemsApartWhoseNamesDifferInCaseAlone) {
    FolderNames listing = Listing(kFolder, {L"b", L"B", L"a", L"A"});
    listing.items = {{1, 1}, {1, 2}, {1, 3}, {1, 4}};
    const RenamePlan plan = PlanRenames(Rows(kFolder, {{L"a", L"x"}, {L"B", L"y"}}), {listing});
    EXPECT_EQ(plan.identities[0].index, 3u);
    EXPECT_EQ(plan.identities[1].index, 2u);
}

TEST(PlanRenames, RenamesWhatIsInAFolderBeforeItHoweverThePathsAreSpelled) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {{LR"(\\?\C:\d)", LR"(C:\d\s)"},
                                                               {LR"(\\?\UNC\a\b)", LR"(\\a\b\s)"}};
    for (const auto& [above, inner] : cases) {
        const RenameItems rows = {Row(above, L"s", L"t"), Row(inner, L"x", L"y")};
        EXPECT_EQ(PlanRenames(rows, {Listing(above, {L"s"}), Listing(inner, {L"x"})}).steps.at(0).row, 1u) << above;
    }
}

TEST(PlanRenames, FailsTheRowsOfAFolderThatCannotBeRead) {
    const RenameItems rows = Rows(kFolder, {{L"a", L"b"}});
    const RenamePlan plan = PlanRenames(rows, {{kFolder, {}, 5}});
    EXPECT_EQ(plan.rows[0].reason, RowReason::FolderError);
    EXPECT_EQ(plan.rows[0].code, 5u);
}

TEST(PlanRenames, BreaksARingWithATemporaryNameThatIsFree) {
    const RenameItems rows = Rows(kFolder, {{L"a", L"b"}, {L"b", L"c"}, {L"c", L"a"}});
    const std::wstring first = TemporaryNameFor(kFolder, L"a", 0);
    EXPECT_EQ(first.size(), 13u);
    const RenamePlan plan = PlanRenames(rows, {Listing(kFolder, {L"a", L"b", L"c", first})});
    ASSERT_EQ(plan.groups.size(), 1u);
    EXPECT_EQ(plan.temporaryNames.at(plan.groups[0].ring), TemporaryNameFor(kFolder, L"a", 1));
    EXPECT_EQ(plan.steps.size(), 4u);
}

// The target knows the verdicts by their definition, and carries the steps out.
TEST(PlanRenames, IsRightAndLosesNothingInManySmallWorlds) {
    const std::vector<std::string> names = {"a", "b", "c", "d", "e", "A", "B", "f", "x?", "nul"};
    std::mt19937 random(20260101);
    const auto pick = [&](size_t count) { return static_cast<int>(random() % count); };
    for (int world = 0; world < 30'000; ++world) {
        const int strangers = pick(3);
        std::string bytes;
        for (int at = 0; at < strangers; ++at) bytes += names[random() % 7] + '\x1E';
        for (int row = pick(7); row >= 0; --row) {
            bytes += static_cast<char>(pick(20) == 0 ? pick(4) : 2);  // now and then gone, or in the other folder
            bytes += names[random() % 7] + '\x1E' + names[random() % (pick(4) == 0 ? names.size() : 8)] + '\x1E';
        }
        RunTarget(QVFuzz::RunRenamePlan, {strangers}, bytes);
    }
}

}  // namespace
