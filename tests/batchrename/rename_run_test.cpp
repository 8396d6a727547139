#include "batchrename/run/rename_run.h"

#include <set>

#include "rows.h"
#include "simulated_disk.h"

namespace {

using namespace BatchRename;
using namespace QVTest;

const std::wstring kFolder = LR"(C:\d)";
constexpr CalendarTime kTime = {2016, 3, 1, 7, 14, 29, 5, 0};

/// Items of one disk and the names that they are to get.
struct World {
    const char* why;
    std::vector<std::pair<std::wstring, std::wstring>> disk;  // location, name
    std::vector<std::wstring> newNames;                       // of each
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

/// One session, as the text of its file.
class MemoryJournal final : public IUndoJournal {
public:
    std::wstring text;  // "": there is no session
    uint32_t error = 0;

    std::shared_ptr<BatchRenameUndo> Read() const {
        auto session = std::make_shared<BatchRenameUndo>();
        ParseSession(text, *session);
        return session;
    }
    UndoProgress Begin(const std::shared_ptr<BatchRenameUndo>& session) override {
        session->isUnfinished = true;
        return BeginRestore(*session);
    }
    UndoProgress BeginRestore(BatchRenameUndo& session) override {
        if (Write(session) != 0) return {};
        return UndoProgress([this](std::wstring_view line) { return error == 0 && !(text += line).empty(); });
    }
    uint32_t Write(BatchRenameUndo& session) override {
        if (error == 0) text = FormatSession(session);
        return error;
    }
    bool Delete(const std::shared_ptr<BatchRenameUndo>&) override {
        text.clear();
        return true;
    }
    uint32_t LastError() const override { return error; }
};

/// A world on a disk, with a journal.
class Scene {
public:
    explicit Scene(const World& world, Numbers numbers = Numbers::Counted) {
        disk.numbers = numbers;
        for (size_t at = 0; at < world.disk.size(); ++at) {
            const auto& [location, name] = world.disk[at];
            disk.Add(location, name);
            rows.push_back(Row(location, name, world.newNames[at]));
        }
        before = disk.items;
    }

    std::vector<RowOutcome> Rename(const std::atomic<bool>* isStopped = nullptr) {
        return RunRenames(rows, kTime, {disk, disk.Lister(), &journal, isStopped}, results);
    }
    std::vector<RowOutcome> Restore() {
        const auto session = journal.Read();
        return Restore(*session, MakeRestoreRows(*session, disk.Lister(), disk.Finder()));
    }
    std::vector<RowOutcome> Restore(BatchRenameUndo& session, const RestoreRows& restore) {
        CRenameResultCallback restored;
        return RunRestore(session, restore, {disk, disk.Lister(), &journal}, restored);
    }

    SimulatedDisk disk;
    RenameItems rows;
    std::vector<DiskItem> before;
    MemoryJournal journal;
    CRenameResultCallback results;
};

/// All that can happen in four runs, of which the first renames and the others restore, each free, with an item that
/// somebody holds, or killed: before or after a step, or while it announces one. States that were seen are not entered
/// again.
class EveryHistory {
public:
    EveryHistory(const World& world, Numbers numbers) : m_world(world), m_start(world, numbers) {}

    void Explore() {
        std::set<std::pair<std::wstring, std::wstring>> seen;
        std::vector<State> states = {{m_start.disk.items, L"", ""}};
        const int depths = m_world.disk.size() > 4 ? 2 : 4;  // a world of five has a thousand states after three
        for (int depth = 0; depth < depths; ++depth) {
            std::vector<State> next;
            for (const State& state : states)
                ForEachEvent(state, depth == 0, [&](State reached) {
                    if (seen.emplace(TextOf(reached.items), reached.journal).second) next.push_back(std::move(reached));
                });
            for (const State& state : next) CheckThatAllComesHome(state);
            states = std::move(next);
        }
    }

private:
    struct State {
        std::vector<DiskItem> items;
        std::wstring journal;
        std::string history;
    };

    static std::wstring TextOf(const std::vector<DiskItem>& items) {
        std::wstring text;
        for (const DiskItem& item : items) text += item.location + L'\\' + item.name + L'\n';
        return text;
    }

    /// False when it was killed.
    static bool Run(Scene& scene, bool isRename) {
        try {
            if (isRename)
                scene.Rename();
            else
                scene.Restore();
            return true;
        } catch (const Crash&) {
            return false;
        }
    }

    template <class Take>
    void ForEachEvent(const State& from, bool isRename, Take&& take) {
        const int items = static_cast<int>(from.items.size());
        for (int locked = 0; locked <= items; ++locked) {
            bool isOver = false;
            for (int kill = -1; !isOver; ++kill) {
                Scene scene(m_world, m_start.disk.numbers);
                scene.disk.items = from.items;
                scene.journal.text = from.journal;
                if (locked > 0) scene.disk.locked = {locked};
                // Three moments of each step; -1: it is not killed.
                const int moment = kill % 3;
                if (kill >= 0) (moment == 2 ? scene.disk.crashAfter : scene.disk.crashBefore) = kill / 3;
                isOver = Run(scene, isRename) && kill >= 0;
                if (!isOver && kill >= 0 && moment == 0) scene.journal.text.pop_back();
                take({scene.disk.items, scene.journal.text,
                      from.history + " held " + std::to_string(locked) + " killed " + std::to_string(kill) + ";"});
            }
        }
    }

    void CheckThatAllComesHome(const State& state) const {
        if (state.journal.empty()) return;  // nothing was renamed
        Scene scene(m_world, m_start.disk.numbers);
        scene.disk.items = state.items;
        scene.journal.text = state.journal;
        scene.Restore();
        const int steps = scene.disk.stepCount;
        ASSERT_EQ(scene.disk.items, m_start.before) << m_world.why << ":" << state.history;
        ASSERT_TRUE(scene.journal.Read()->haveRestored) << m_world.why << ":" << state.history;
        scene.Restore();
        ASSERT_EQ(scene.disk.stepCount, steps) << m_world.why << ": once more" << state.history;
    }

    const World& m_world;
    Scene m_start;
};

TEST(RunRestore, BringsAllHomeAfterEveryHistoryOfFourMishaps) {
    for (const Numbers numbers : {Numbers::None, Numbers::NotCounted, Numbers::Counted})
        for (const World& world : kWorlds) EveryHistory(world, numbers).Explore();
}

TEST(RunRenames, WritesTheSessionBeforeTheFirstRenameAndTruesItUp) {
    Scene scene(kWorlds[3]);
    size_t entriesAtFirstStep = 0;
    scene.disk.failure = [&](int step) {
        if (step == 0) entriesAtFirstStep = scene.journal.Read()->entries.size();
        return step == 1 ? 5u : 0u;
    };
    const auto outcomes = scene.Rename();
    EXPECT_EQ(entriesAtFirstStep, 3u);
    EXPECT_EQ(outcomes[2].code, 0u);
    EXPECT_EQ(outcomes[1].code, 5u);
    EXPECT_NE(outcomes[0].reason.find(L"waited for \"2\""), std::wstring::npos);
    const auto session = scene.journal.Read();
    ASSERT_EQ(session->entries.size(), 1u);
    EXPECT_EQ(session->entries[0].newName, L"4");
    EXPECT_EQ(session->entries[0].identity.index & 0xFFFF, 3u);
    EXPECT_FALSE(session->isUnfinished);
}

TEST(RunRenames, RenameNothingFurtherThatCannotBeRecorded) {
    for (const bool needsRecord : {true, false}) {
        Scene scene(kWorlds[5]);
        scene.disk.failure = [&](int step) {
            if (step == 1) scene.journal.error = 112;
            return 0u;
        };
        RunEnvironment environment = {scene.disk, scene.disk.Lister(), &scene.journal};
        environment.needsRecord = needsRecord;
        RunRenames(scene.rows, kTime, environment, scene.results);
        EXPECT_EQ(scene.results.DoneCount(), needsRecord ? 0u : 5u);
        const std::vector<DiskItem> renamed = scene.disk.items;
        scene.Restore();
        EXPECT_EQ(scene.disk.items, renamed) << "a restore always needs its record";
        scene.journal.error = 0;
        scene.Restore();
        EXPECT_EQ(scene.disk.items, scene.before) << needsRecord;
    }
    // A run that goes on without any record says so first.
    Scene scene(kWorlds[0]);
    scene.journal.error = 5;
    RunEnvironment environment = {scene.disk, scene.disk.Lister(), &scene.journal};
    environment.onUnrecorded = [&](uint32_t code) { EXPECT_TRUE(code == 5 && scene.disk.stepCount == 0); };
    RunRenames(scene.rows, kTime, environment, scene.results);
    EXPECT_EQ(scene.results.DoneCount(), 1u);
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

TEST(RunRestore, FollowsNoFolderWhoseNumberMayBeAnothersByNow) {
    SimulatedDisk disk;
    disk.Add(kFolder, L"other");
    BatchRenameUndo session;
    for (const Numbers numbers : {Numbers::NotCounted, Numbers::Counted}) {
        disk.numbers = numbers;
        session.entries = {{kFolder, L"new", L"old", {}, {}, disk.Lister()(kFolder).items[0]}};
        const RestoreRows restore = MakeRestoreRows(session, disk.Lister(), disk.Finder());
        EXPECT_EQ(restore.rows[0]->currentName, numbers == Numbers::Counted ? L"other" : L"new");
    }
}

TEST(RunRestore, FollowsAFolderAboveThousands) {
    SimulatedDisk disk;
    disk.Add(kFolder, L"t");
    BatchRenameUndo session;
    std::wstring below;
    for (int depth = 0; depth < 16000; ++depth) below += L"\\x";
    session.entries = {{kFolder, L"t", L"s", {}, {}}, {kFolder + L"\\s" + below, L"new", L"old", {}, {}}};
    EXPECT_EQ(MakeRestoreRows(session, disk.Lister()).rows[0]->location, kFolder + L"\\t" + below);
}

TEST(RunRestore, FindsItemsUnderALocationThatIsTheirPath) {
    SimulatedDisk disk;
    for (const wchar_t* name : {L"new1", L"new2"}) disk.Add(kFolder, name);
    BatchRenameUndo session;
    session.entries = {{kFolder + L"\\old1", L"new1", L"old1", {}, {}},
                       {kFolder + L"\\new2", L"new2", L"old2", {}, {}}};
    CRenameResultCallback results;
    RunRestore(session, MakeRestoreRows(session, disk.Lister()), {disk, disk.Lister()}, results);
    EXPECT_EQ(disk.items, (std::vector<DiskItem>{{kFolder, L"old1", 1}, {kFolder, L"old2", 2}}));
    EXPECT_TRUE(session.haveRestored);
}

}  // namespace
