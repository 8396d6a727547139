#include "rename/rename_plan.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "batchrename/run/rename_run.h"
#include "rows.h"
#include "simulated_disk.h"
#include "win32/file_name.h"
#include "win32/text.h"

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
        {"plain", {L"a"}, {{L"a", L"b"}}, {R::None}},
        {"case alone is a change", {L"a"}, {{L"a", L"A"}}, {R::None}},
        {"a swap", {L"a", L"b"}, {{L"a", L"b"}, {L"b", L"A"}}, {R::None, R::None}},
        {"a stranger has it", {L"a", L"B"}, {{L"a", L"b"}}, {R::Taken}},
        {"two want it", {L"a", L"b"}, {{L"a", L"c"}, {L"b", L"C"}}, {R::Duplicate, R::Duplicate}},
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

TEST(PlanRenames, FailsTheRowsOfAFolderThatCannotBeRead) {
    const RenameItems rows = Rows(kFolder, {{L"a", L"b"}});
    const RenamePlan plan = PlanRenames(rows, {{kFolder, {}, 5}});
    EXPECT_EQ(plan.rows[0].reason, RowReason::FolderError);
    EXPECT_EQ(plan.rows[0].code, 5u);
}

TEST(PlanRenames, OrdersChainsFromTheFreeEndAndDeeperItemsFirst) {
    const RenameItems rows = {Row(LR"(C:\)", L"d", L"e"), Row(kFolder, L"01", L"02"), Row(kFolder, L"02", L"03"),
                              Row(kFolder, L"x", L"y"), Row(kFolder + LR"(\s)", L"p", L"q")};
    const RenamePlan plan = PlanRenames(rows, {Listing(LR"(C:\)", {L"d"}), Listing(kFolder, {L"01", L"02", L"x", L"s"}),
                                               Listing(kFolder + LR"(\s)", {L"p"})});
    std::vector<size_t> order;
    for (const RenameStep& step : plan.steps) order.push_back(step.row);
    EXPECT_EQ(order, (std::vector<size_t>{4, 2, 1, 3, 0}));
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

/// The verdicts by their definition, row by row until nothing changes.
std::vector<bool> ReferenceVerdicts(const RenameItems& rows, const std::vector<DiskItem>& disk) {
    std::vector<bool> moves(rows.size());
    std::map<std::wstring, int> wanted;
    std::set<std::wstring> onDisk;
    std::map<std::wstring, size_t> holders;
    for (const DiskItem& item : disk) onDisk.insert(Win32::ToUpperCase(item.name));
    for (size_t row = 0; row < rows.size(); ++row) {
        const bool isFirst = holders.emplace(Win32::ToUpperCase(rows[row]->currentName), row).second;
        const bool isChange = rows[row]->newName != rows[row]->currentName;
        moves[row] = isFirst && isChange && Win32::IsFileName(rows[row]->newName) &&
                     onDisk.contains(Win32::ToUpperCase(rows[row]->currentName));
        if (moves[row] || (isFirst && !isChange)) ++wanted[Win32::ToUpperCase(rows[row]->newName)];
    }
    for (bool isChanged = true; isChanged;) {
        isChanged = false;
        for (size_t row = 0; row < rows.size(); ++row) {
            if (!moves[row]) continue;
            const std::wstring target = Win32::ToUpperCase(rows[row]->newName);
            const auto holder = holders.find(target);
            const bool isBlocked = onDisk.contains(target) && (holder == holders.end() || !moves[holder->second]);
            if (wanted[target] == 1 && !isBlocked) continue;
            moves[row] = false;
            isChanged = true;
        }
    }
    return moves;
}

TEST(RunRenames, LosesNothingInManySmallWorlds) {
    constexpr int kWorlds = 30'000;
    const std::vector<std::wstring> names = {L"a", L"b", L"c", L"d", L"e", L"A", L"B", L"f", L"x?", L"nul"};
    std::mt19937 random(20260101);
    const auto pick = [&](size_t count) { return random() % count; };
    for (int world = 0; world < kWorlds; ++world) {
        SimulatedDisk disk;
        std::set<std::wstring> used;
        for (size_t count = 1 + pick(6); count > 0; --count)
            if (const std::wstring& name = names[pick(7)]; used.insert(Win32::ToUpperCase(name)).second)
                disk.Add(kFolder, name);
        RenameItems rows;
        std::vector<int> contents;
        for (const DiskItem& item : disk.items) {
            if (pick(5) == 0) continue;  // a stranger
            rows.push_back(Row(kFolder, item.name, names[pick(pick(4) == 0 ? names.size() : 8)]));
            contents.push_back(item.content);
        }
        const std::vector<DiskItem> before = disk.items;
        const std::vector<bool> expected = ReferenceVerdicts(rows, before);
        const bool fails = pick(3) == 0;
        if (fails) {
            const int first = static_cast<int>(pick(6));
            const int second = first + 1 + static_cast<int>(pick(3));
            disk.failure = [=](int step) { return step == first || step == second ? 5u : 0u; };
        }
        CRenameResultCallback results;
        const std::vector<RowOutcome> outcomes = RunRenames(rows, {}, {disk, disk.Lister()}, results);

        ASSERT_EQ(results.DoneCount() + results.IgnoredCount() + results.FailedCount(), rows.size());
        ASSERT_EQ(disk.items.size(), before.size());
        std::set<std::wstring> after;
        for (const DiskItem& item : disk.items) ASSERT_TRUE(after.insert(Win32::ToUpperCase(item.name)).second);
        for (const DiskItem& item : before) {
            const auto row = std::ranges::find(contents, item.content);
            const DiskItem* const now = disk.Find(item.content);
            ASSERT_TRUE(now);
            if (row == contents.end()) {
                ASSERT_EQ(now->name, item.name) << "a stranger was renamed in world " << world;
                continue;
            }
            const size_t at = static_cast<size_t>(row - contents.begin());
            const bool isRenamed = outcomes[at].code == 0;
            ASSERT_EQ(outcomes[at].name, now->name) << world;
            ASSERT_TRUE(!isRenamed || now->name == rows[at]->newName) << world;
            // Only where putting a ring back failed as well may an item have a third name, and then the row says so.
            ASSERT_TRUE(isRenamed || now->name == item.name ||
                        (fails && outcomes[at].reason.find(now->name) != std::wstring::npos))
                << world;
            ASSERT_TRUE(fails || isRenamed == expected[at]) << world << " row " << at;
            ASSERT_EQ(rows[at]->state == RowState::Renamed, isRenamed);
        }
    }
}

}  // namespace
