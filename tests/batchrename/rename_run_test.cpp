#include "batchrename/run/rename_run.h"

#include <algorithm>
#include <random>

#include "rows.h"
#include "simulated_disk.h"
#include "support/temporary_folder.h"

namespace {

using namespace BatchRename;
using namespace QVTest;

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

/// A world on a disk, with a journal.
class Scene {
public:
    explicit Scene(const World& world) {
        for (size_t at = 0; at < world.disk.size(); ++at) {
            const auto& [location, name] = world.disk[at];
            disk.Add(location, name);
            if (!world.newNames[at].empty()) rows.push_back(Row(location, name, world.newNames[at]));
        }
        before = disk.items;
    }

    std::vector<RowOutcome> Rename(const std::atomic<bool>* isStopped = nullptr) {
        UndoStore store;
        store.SetFolder(JournalFolder());
        return RunRenames(rows, kTime, {disk, disk.Lister(), &store, isStopped}, results);
    }
    /// Restores the newest session, as it is on disk.
    std::vector<RowOutcome> Restore() {
        const auto session = Sessions().at(0);
        return Restore(*session, MakeRestoreRows(*session, disk.Lister()));
    }
    std::vector<RowOutcome> Restore(BatchRenameUndo& session, const RestoreRows& restore) {
        UndoStore store;
        store.SetFolder(JournalFolder());
        CRenameResultCallback restored;
        return RunRestore(session, restore, {disk, disk.Lister(), &store}, restored);
    }
    /// All sessions, as they are on disk.
    std::vector<std::shared_ptr<BatchRenameUndo>> Sessions() const {
        UndoStore store;
        store.SetFolder(JournalFolder());
        return store.Sessions();
    }

    SimulatedDisk disk;
    RenameItems rows;
    std::vector<DiskItem> before;
    CRenameResultCallback results;

private:
    std::wstring JournalFolder() const { return m_folder / L"new\\Undo"; }

    TemporaryFolder m_folder;
};

/// Any names change places, and some go to new ones.
World RandomWorld(std::mt19937& random, int count) {
    World world{"", {}, {}};
    for (int at = 0; at < count; ++at) {
        world.newNames.push_back(L"n" + std::to_wstring(at + (random() % 9 == 0) * 100));
        world.disk.emplace_back(kFolder, L"n" + std::to_wstring(at));
    }
    std::ranges::shuffle(world.newNames, random);
    return world;
}

TEST(RunRestore, BringsAllHomeAfterAnyMishaps) {
    std::mt19937 random(20260301);
    const auto pick = [&](size_t count) { return static_cast<int>(random() % count); };
    for (int number = 0; number < 400; ++number) {
        const World world = number % 4 > 0 ? kWorlds[number % std::size(kWorlds)]
                                           : RandomWorld(random, 2 + pick(number % 200 == 0 ? 60 : 7));
        const int count = static_cast<int>(world.disk.size());
        Scene scene(world);
        // The renaming and each restore but the last may meet held items, die in the middle, or both.
        const int mishaps = pick(5);
        bool isHome = false;
        for (int run = 0; run <= mishaps + 2; ++run) {
            SCOPED_TRACE(world.why + (" " + std::to_string(number)) + ", run " + std::to_string(run));
            const bool isFree = run >= mishaps;
            scene.disk.locked.clear();
            for (int at = 1; at <= count && !isFree; ++at)
                if (pick(4) == 0) scene.disk.locked.insert(at);
            const int crash = scene.disk.stepCount + pick(static_cast<size_t>(count) * 2);
            const bool dies = !isFree && pick(2) == 0;
            scene.disk.crashBefore = dies && pick(2) == 0 ? crash : -1;
            scene.disk.crashAfter = dies && scene.disk.crashBefore < 0 ? crash : -1;
            const std::vector<DiskItem> found = scene.disk.items;
            try {
                if (run == 0)
                    scene.Rename();
                else
                    scene.Restore();
            } catch (const Crash&) {
            }
            if (scene.Sessions().empty()) break;  // every item was to keep its name
            if (!isFree) continue;
            if (run == 0) {
                ASSERT_EQ(scene.results.FailedCount(), 0u);
                continue;
            }
            ASSERT_EQ(scene.disk.items, scene.before);
            ASSERT_TRUE(!isHome || found == scene.before) << "a restore with nothing to do did something";
            isHome = true;
        }
    }
}

TEST(RunRestore, LeavesARecordAloneThatNamesNothingToDo) {
    Scene scene(kWorlds[1]);
    scene.disk.crashBefore = 0;
    EXPECT_THROW(scene.Rename(), Crash);
    scene.disk.crashBefore = -1;
    for (int restore = 0; restore < 3; ++restore) {
        for (const RowOutcome& outcome : scene.Restore()) EXPECT_EQ(outcome.code, Quorvane::SDK::RenameResult::Ignored);
        EXPECT_EQ(scene.disk.items, scene.before);
        EXPECT_FALSE(scene.Sessions().at(0)->haveRestored);
    }
}

TEST(RunRestore, OfSomeRowsKeepsTheOthersForLater) {
    Scene scene(kWorlds[5]);
    scene.Rename();
    for (const bool isWhole : {false, true}) {
        const auto session = scene.Sessions().at(0);
        RestoreRows restore = MakeRestoreRows(*session, scene.disk.Lister());
        if (!isWhole) {  // the two that changed places first
            restore.rows.erase(restore.rows.begin(), restore.rows.end() - 2);
            restore.entries.erase(restore.entries.begin(), restore.entries.end() - 2);
        }
        scene.Restore(*session, restore);
        EXPECT_EQ(scene.Sessions().at(0)->haveRestored, isWhole);
    }
    EXPECT_EQ(scene.disk.items, scene.before);
}

TEST(RunRenames, WritesTheSessionBeforeTheFirstRenameAndTruesItUp) {
    Scene scene(kWorlds[3]);
    size_t entriesAtFirstStep = 0;
    scene.disk.failure = [&](int step) {
        if (step == 0) entriesAtFirstStep = scene.Sessions().at(0)->entries.size();
        return step == 1 ? 5u : 0u;
    };
    const auto outcomes = scene.Rename();
    EXPECT_EQ(entriesAtFirstStep, 3u);
    EXPECT_EQ(outcomes[2].code, 0u);
    EXPECT_EQ(outcomes[1].code, 5u);
    EXPECT_NE(outcomes[0].reason.find(L"waited for \"2\""), std::wstring::npos);
    const auto sessions = scene.Sessions();
    ASSERT_EQ(sessions.size(), 1u);
    ASSERT_EQ(sessions[0]->entries.size(), 1u);
    EXPECT_EQ(sessions[0]->entries[0].newName, L"4");
    EXPECT_FALSE(sessions[0]->isUnfinished);
}

TEST(RunRenames, LeaveNoSessionWhenNothingIsRenamed) {
    Scene scene(kWorlds[0]);
    scene.disk.failure = [](int) { return 5u; };
    scene.Rename();
    EXPECT_TRUE(scene.Sessions().empty());
}

TEST(RunRenames, PutsARingBackWhicheverStepFails) {
    for (int failing = 0; failing < 4; ++failing) {
        Scene scene(kWorlds[2]);
        scene.disk.failure = [=](int step) { return step == failing ? 32u : 0u; };
        scene.Rename();
        EXPECT_EQ(scene.disk.items, scene.before) << failing;
        EXPECT_EQ(scene.results.FailedCount(), 3u);
    }
}

TEST(RunRenames, NamesInTheJournalWhatARingLeftAside) {
    Scene scene(kWorlds[1]);
    scene.disk.failure = [](int step) { return step >= 1 ? 5u : 0u; };
    EXPECT_NE(scene.Rename()[0].reason.find(L"it is now named \"~qvbr"), std::wstring::npos);
    scene.disk.failure = [](int) { return 0u; };
    scene.Restore();
    EXPECT_EQ(scene.disk.items, scene.before);
}

TEST(RunRenames, StopsBetweenRowsButNotInARing) {
    std::atomic<bool> isStopped = false;
    Scene scene({"", {{kFolder, L"a"}, {kFolder, L"b"}, {kFolder, L"c"}}, {L"b", L"a", L"d"}});
    scene.disk.failure = [&](int) {
        isStopped = true;
        return 0u;
    };
    EXPECT_EQ(scene.Rename(&isStopped)[2].code, Quorvane::SDK::RenameResult::Ignored);
    EXPECT_EQ(scene.results.DoneCount(), 2u);
    EXPECT_EQ(scene.disk.items[2].name, L"c");
}

TEST(RunRestore, SaysWhatCannotBeRestored) {
    SimulatedDisk disk;
    // Taken since, back already, and under a location that is the full path.
    for (const wchar_t* name : {L"new1", L"old1", L"old3", L"new4"}) disk.Add(kFolder, name);
    BatchRenameUndo session;
    session.entries = {{kFolder, L"new1", L"old1", {}, {}},
                       {kFolder, L"new2", L"old2", {}, {}},
                       {kFolder, L"new3", L"old3", {}, {}},
                       {kFolder + L"\\old4", L"new4", L"old4", {}, {}}};
    const RestoreRows restore = MakeRestoreRows(session, disk.Lister());
    CRenameResultCallback results;
    const auto outcomes = RunRestore(session, restore, {disk, disk.Lister()}, results);
    EXPECT_EQ(restore.entries, (std::vector<size_t>{3, 2, 1, 0}));
    EXPECT_EQ(outcomes[3].code, 183u);
    EXPECT_EQ(outcomes[2].code, 2u);
    EXPECT_EQ(outcomes[1].code, Quorvane::SDK::RenameResult::Ignored);
    EXPECT_EQ(disk.items[3].name, L"old4");
    EXPECT_FALSE(session.haveRestored);
}

}  // namespace
