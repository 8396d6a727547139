#include "batchrename/rename_run.h"

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "rows.h"
#include "simulated_disk.h"
#include "support/temporary_folder.h"

namespace {

using namespace BatchRename;
using namespace QVTest;
using Pairs = std::vector<std::pair<std::wstring, std::wstring>>;

const std::wstring kFolder = LR"(C:\d)";
constexpr CalendarTime kTime = {2016, 3, 1, 7, 14, 29, 5, 0};

/// Items of one disk and the names that they are to get.
struct World {
    const char* why;
    std::vector<std::pair<std::wstring, std::wstring>> disk;  // location, name
    std::vector<std::wstring> newNames;                       // of each; "": a stranger
};

const World kWorlds[] = {
    {"one", {{kFolder, L"a"}}, {L"b"}},
    {"a swap", {{kFolder, L"a"}, {kFolder, L"b"}}, {L"b", L"a"}},
    {"a ring of three", {{kFolder, L"a"}, {kFolder, L"b"}, {kFolder, L"c"}}, {L"b", L"c", L"a"}},
    {"a shift", {{kFolder, L"1"}, {kFolder, L"2"}, {kFolder, L"3"}}, {L"2", L"3", L"4"}},
    {"a shift down", {{kFolder, L"2"}, {kFolder, L"3"}, {kFolder, L"4"}}, {L"1", L"2", L"3"}},
    {"case alone", {{kFolder, L"a"}, {kFolder, L"b"}}, {L"A", L"B"}},
    {"two swaps and a plain one",
     {{kFolder, L"a"}, {kFolder, L"b"}, {kFolder, L"c"}, {kFolder, L"d"}, {kFolder, L"e"}},
     {L"b", L"a", L"d", L"c", L"f"}},
    {"a folder and its content",
     {{LR"(C:\d)", L"s"}, {LR"(C:\d\s)", L"x"}, {LR"(C:\d\s)", L"y"}, {LR"(C:\d\s)", L"t"}, {LR"(C:\d\s\t)", L"p"}},
     {L"S2", L"y", L"x", L"T2", L"q"}},
    {"a folder and its namesake in it", {{LR"(C:\d)", L"s"}, {LR"(C:\d\s)", L"s"}}, {L"t", L"u"}},
    {"two folders that change places",
     {{LR"(C:\d)", L"s"}, {LR"(C:\d)", L"t"}, {LR"(C:\d\s)", L"x"}, {LR"(C:\d\t)", L"x"}},
     {L"t", L"s", L"x1", L"x2"}},
};

void Fill(const World& world, SimulatedDisk& disk, RenameItems& rows) {
    for (size_t at = 0; at < world.disk.size(); ++at) {
        disk.Add(world.disk[at].first, world.disk[at].second);
        if (!world.newNames[at].empty())
            rows.push_back(Row(world.disk[at].first, world.disk[at].second, world.newNames[at]));
    }
}

std::vector<RowOutcome> Restore(UndoStore& store, SimulatedDisk& disk, uint32_t* failedCount = nullptr) {
    BatchRenameUndo& session = *store.Sessions().at(0);
    const RestoreRows restore = MakeRestoreRows(session, disk.Lister());
    CRenameResultCallback results;
    const auto outcomes = RunRestore(session, restore, {disk, disk.Lister(), &store}, results);
    if (failedCount) *failedCount = results.FailedCount();
    return outcomes;
}

TEST(RunRestore, GivesEveryNameBackAndThenHasNothingToDo) {
    for (const World& world : kWorlds) {
        const TemporaryFolder folder;
        UndoStore store;
        store.SetFolder(folder / L"Undo");
        SimulatedDisk disk;
        RenameItems rows;
        Fill(world, disk, rows);
        const std::vector<DiskItem> before = disk.items;
        CRenameResultCallback results;
        RunRenames(rows, kTime, {disk, disk.Lister(), &store}, results);
        EXPECT_EQ(results.DoneCount(), rows.size()) << world.why;
        EXPECT_NE(disk.items, before) << world.why;

        UndoStore reread;
        reread.SetFolder(folder / L"Undo");
        ASSERT_EQ(reread.Sessions().size(), 1u);
        EXPECT_FALSE(reread.Sessions()[0]->isUnfinished);
        Restore(reread, disk);
        EXPECT_EQ(disk.items, before) << world.why;
        EXPECT_TRUE(reread.Sessions()[0]->haveRestored);
        reread.SetFolder(folder / L"Undo");
        EXPECT_TRUE(reread.Sessions()[0]->haveRestored);
        for (const RowOutcome& outcome : Restore(reread, disk))
            EXPECT_EQ(outcome.code, Quorvane::SDK::RenameResult::Ignored) << world.why;
        EXPECT_EQ(disk.items, before) << world.why;
    }
}

/// Runs, dies at a step, and restores from what is on disk; dies once more while restoring.
TEST(RunRestore, GivesEveryNameBackAfterACrashAtAnyStep) {
    for (const World& world : kWorlds) {
        bool isOver = false;
        for (int crash = 0; !isOver; ++crash) {
            for (const int secondCrash : {-1, 0, 2}) {
                const TemporaryFolder folder;
                UndoStore store;
                store.SetFolder(folder.Path());
                SimulatedDisk disk;
                RenameItems rows;
                Fill(world, disk, rows);
                const std::vector<DiskItem> before = disk.items;
                (crash % 2 == 0 ? disk.crashBefore : disk.crashAfter) = crash / 2;
                CRenameResultCallback results;
                try {
                    RunRenames(rows, kTime, {disk, disk.Lister(), &store}, results);
                    isOver = true;
                } catch (const Crash&) {
                }
                disk.crashBefore = -1;
                disk.crashAfter = secondCrash < 0 ? -1 : disk.stepCount + secondCrash;
                UndoStore reread;
                reread.SetFolder(folder.Path());
                ASSERT_EQ(reread.Sessions().size(), 1u);
                try {
                    Restore(reread, disk);
                } catch (const Crash&) {
                    disk.crashAfter = -1;
                    reread.SetFolder(folder.Path());
                    Restore(reread, disk);
                }
                ASSERT_EQ(disk.items, before) << world.why << ", crash " << crash << ", second " << secondCrash;
            }
        }
    }
}

TEST(RunRenames, WritesTheSessionBeforeTheFirstRenameAndTruesItUp) {
    const TemporaryFolder folder;
    UndoStore store;
    store.SetFolder(folder / L"new\\Undo");
    SimulatedDisk disk;
    RenameItems rows;
    Fill(kWorlds[3], disk, rows);
    size_t sessionsAtFirstStep = 0;
    disk.failure = [&](int step) {
        if (step == 0) {
            UndoStore during;
            during.SetFolder(folder / L"new\\Undo");
            if (during.Sessions().size() == 1) sessionsAtFirstStep = during.Sessions()[0]->entries.size();
        }
        return step == 1 ? 5u : 0u;
    };
    CRenameResultCallback results;
    const auto outcomes = RunRenames(rows, kTime, {disk, disk.Lister(), &store}, results);
    EXPECT_EQ(sessionsAtFirstStep, 3u);
    EXPECT_EQ(outcomes[2].code, 0u);
    EXPECT_EQ(outcomes[1].code, 5u);
    EXPECT_NE(outcomes[0].reason.find(L"waited for \"2\""), std::wstring::npos);
    EXPECT_EQ(RunStatusText(results, false), L"1 Renamed, 2 Failed");
    store.SetFolder(folder / L"new\\Undo");
    ASSERT_EQ(store.Sessions().size(), 1u);
    ASSERT_EQ(store.Sessions()[0]->entries.size(), 1u);
    EXPECT_EQ(store.Sessions()[0]->entries[0].newName, L"4");

    // Nothing renamed, no session.
    disk.failure = [](int) { return 5u; };
    RenameItems again = Rows(kFolder, {{L"4", L"5"}});
    CRenameResultCallback none;
    RunRenames(again, {2017, 1, 0, 1, 0, 0, 0, 0}, {disk, disk.Lister(), &store}, none);
    EXPECT_EQ(store.Sessions().size(), 1u);
    EXPECT_EQ(TemporaryFolder().List().size(), 0u);
}

TEST(RunRenames, PutsARingBackWhicheverStepFails) {
    for (int failing = 0; failing < 4; ++failing) {
        SimulatedDisk disk;
        RenameItems rows;
        Fill(kWorlds[2], disk, rows);
        const std::vector<DiskItem> before = disk.items;
        disk.failure = [=](int step) { return step == failing ? 32u : 0u; };
        CRenameResultCallback results;
        RunRenames(rows, kTime, {disk, disk.Lister()}, results);
        EXPECT_EQ(disk.items, before) << failing;
        EXPECT_EQ(results.FailedCount(), 3u);
    }
}

TEST(RunRenames, NamesInTheJournalWhatARingLeftAside) {
    const TemporaryFolder folder;
    UndoStore store;
    store.SetFolder(folder.Path());
    SimulatedDisk disk;
    RenameItems rows;
    Fill(kWorlds[1], disk, rows);
    const std::vector<DiskItem> before = disk.items;
    disk.failure = [](int step) { return step >= 1 ? 5u : 0u; };
    CRenameResultCallback results;
    const auto outcomes = RunRenames(rows, kTime, {disk, disk.Lister(), &store}, results);
    EXPECT_NE(outcomes[0].reason.find(L"it is now named \"~qvbr"), std::wstring::npos);
    disk.failure = [](int) { return 0u; };
    Restore(store, disk);
    EXPECT_EQ(disk.items, before);
}

TEST(RunRenames, StopsBetweenRowsButNotInARing) {
    std::atomic<bool> isStopped = false;
    SimulatedDisk disk;
    RenameItems rows;
    Fill({"", {{kFolder, L"a"}, {kFolder, L"b"}, {kFolder, L"c"}}, {L"b", L"a", L"d"}}, disk, rows);
    disk.failure = [&](int) {
        isStopped = true;
        return 0u;
    };
    CRenameResultCallback results;
    const auto outcomes = RunRenames(rows, kTime, {disk, disk.Lister(), nullptr, &isStopped}, results);
    EXPECT_EQ(results.DoneCount(), 2u);
    EXPECT_EQ(outcomes[2].code, Quorvane::SDK::RenameResult::Ignored);
    EXPECT_EQ(disk.items[2].name, L"c");
}

TEST(RunRestore, SaysWhatCannotBeRestored) {
    SimulatedDisk disk;
    disk.Add(kFolder, L"new1");
    disk.Add(kFolder, L"old1");  // taken since
    disk.Add(kFolder, L"old3");  // back already
    BatchRenameUndo session;
    session.entries = {{kFolder, L"new1", L"old1", {}, {}},
                       {kFolder, L"new2", L"old2", {}, {}},
                       {kFolder, L"new3", L"old3", {}, {}},
                       {kFolder + L"\\new4", L"new4", L"old4", {}, {}}};
    const RestoreRows restore = MakeRestoreRows(session, disk.Lister());
    CRenameResultCallback results;
    const auto outcomes = RunRestore(session, restore, {disk, disk.Lister()}, results);
    EXPECT_EQ(restore.entries, (std::vector<size_t>{3, 2, 1, 0}));
    EXPECT_EQ(outcomes[3].code, 183u);
    EXPECT_EQ(outcomes[2].code, 2u);
    EXPECT_EQ(outcomes[1].code, Quorvane::SDK::RenameResult::Ignored);
    EXPECT_FALSE(session.haveRestored);
}

TEST(RunRestore, UnderstandsALocationThatIsTheFullPath) {
    SimulatedDisk disk;
    disk.Add(kFolder, L"new");
    BatchRenameUndo session;
    session.entries = {{kFolder + L"\\old", L"new", L"old", {}, {}}};
    CRenameResultCallback results;
    RunRestore(session, MakeRestoreRows(session, disk.Lister()), {disk, disk.Lister()}, results);
    EXPECT_EQ(disk.items[0].name, L"old");
}

}  // namespace
