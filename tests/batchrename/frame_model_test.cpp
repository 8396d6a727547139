// The Batch Rename window without a window: what each event does in each state.
#include <gtest/gtest.h>

#include "batchrename/model/frame_model.h"
#include "batchrename/rows.h"
#include "rename/rename_options.h"

namespace {

using namespace BatchRename;

/// Writes down what the model has done; what is only painted again each time is kept as it is now.
class RecordedFrame final : public IFrameActions {
public:
    RecordedFrame() : model(*this, rule, {}) {}

    void RequestPreview(PreviewRequest asked, int delay) override {
        if (failsRequests) throw std::bad_alloc();
        request = std::move(asked);
        Add("request");
        if (delay > 0) done += " later";
        if (request.order) done += " sorted";
        if (request.session) done += " session";
        if (request.readsFolders) done += " folders";
        if (request.visibleCount > 0) done += " visible";
    }
    void CancelPreview(uint64_t) override { Add("cancel"); }
    void Dispose(std::shared_ptr<const void>) override { ++disposed; }
    bool BeginRun(RunRequest asked, bool isRecorded) override {
        run = std::move(asked);
        Add(hasThreads ? "begin" : "no thread");
        if (isRecorded) done += " recorded";
        return hasThreads;
    }
    void StopRun() override { Add("stop"); }
    void Ask(const std::wstring&) override {
        Add("ask");
        model.OnDialogOpened();
    }
    void EndDialogs() override { Add("end dialogs"); }
    void Close() override { Add("close"); }
    void ShowStatus(const std::wstring& text) override { status = text; }
    void ShowTitle(bool isNowRestoring) override { isRestoring = isNowRestoring; }
    void ShowState(const PanelState& state) override { panel = state; }
    void ShowRows(bool) override {}
    void ShowOutdated(bool isNowOutdated) override { isOutdated = isNowOutdated; }
    void ShowOrder(const RowOrder& shown) override { order = shown; }
    void SelectRows(const std::vector<bool>& isSelected) override { selected = isSelected; }
    RowRange VisibleRows() const override { return {5, 20}; }
    bool CollectRows() override {
        Add("collect");
        return hostAnswers;
    }
    void TakeRows() override { Add("take"); }
    void ReportRenamed(const std::vector<std::wstring>&) override { Add("report"); }

    void Add(const char* action) { done += (done.empty() ? "" : ", ") + std::string(action); }
    std::string Done() { return std::exchange(done, {}); }

    /// What the last request asks for. `failed`: the number of rows that cannot be renamed.
    std::shared_ptr<Preview> Answer(size_t failed = 0) const {
        auto preview = std::make_shared<Preview>();
        preview->generation = request.generation;
        preview->rows = request.rows;
        for (const auto& row : *request.rows) {
            preview->computed.push_back(std::make_shared<BatchRenameItem>(*row));
            preview->computed.back()->newName = row->currentName + L"2";
            RowPlan plan;
            plan.verdict = preview->plans.size() < failed ? RowVerdict::Failed : RowVerdict::Rename;
            preview->plans.push_back(plan);
        }
        return preview;
    }
    std::shared_ptr<RunResult> Result(bool hasBegun = true) const {
        auto result = std::make_shared<RunResult>();
        result->rows = run.rows;
        if (!hasBegun) result->error = L"wrong";
        for (size_t row = 0; hasBegun && row < run.rows.size(); ++row)
            result->outcomes.push_back({0, {}, run.rows[row]->newName});
        return result;
    }

    bool failsRequests = false;
    bool hasThreads = true;
    bool hostAnswers = true;
    std::string done;
    PreviewRequest request;
    RunRequest run;
    size_t disposed = 0;
    std::wstring status;
    PanelState panel;
    bool isRestoring = false;
    bool isOutdated = false;
    RowOrder order;
    std::vector<bool> selected;
    RuleDefinition rule;
    FrameModel model;
};

RowSnapshot Two() {
    return std::make_shared<const RenameItems>(RenameItems{QVTest::Row(L"C:\\d", L"b"), QVTest::Row(L"C:\\d", L"a")});
}
RuleDefinition Expression(const wchar_t* find) {
    RuleDefinition rule;
    rule.options = RenameOption::RegularExpression;
    rule.items = std::make_shared<const SearchAndReplaceItems>(SearchAndReplaceItems{{find, L""}});
    return rule;
}

using enum FrameState;

void Bring(RecordedFrame& frame, FrameState state) {
    FrameModel& model = frame.model;
    model.SetRows(Two());
    if (state == Computing) return;
    if (state == Outdated) {
        const auto failure = frame.Answer();
        failure->error = L"no memory";
        return model.OnPreview(failure);
    }
    if (state == Starting) return model.OnStart(false);
    model.OnPreview(frame.Answer(state == Asking ? 1 : 0));
    if (state == Ready) return;
    model.OnStart(false);
    if (state == Stopping) model.OnClose(false);
    if (state == FrameState::Done) model.OnRunEnd(frame.Result());
}

using States = std::vector<FrameState>;
const States kIdle = {Outdated, Computing, Starting, Ready, Asking, FrameState::Done};
const States kUnrun = {Outdated, Computing, Starting, Ready, Asking};
const States kBusy = {Running, Stopping};
const States kUnasked = {Outdated, Computing, Starting, Ready, Running, Stopping, FrameState::Done};
const States kAll = {Outdated, Computing, Starting, Ready, Asking, Running, Stopping, FrameState::Done};
constexpr FrameState kSame = static_cast<FrameState>(255);
enum Button { Any, Off, Start, Stop };

TEST(FrameModel, AnswersEachEventInEachState) {
    using F = RecordedFrame&;
    const auto rule = [](F f) { f.model.OnRuleChanged(Expression(L"a"), {}); };
    const auto badRule = [](F f) { f.model.OnRuleChanged(Expression(L"("), {}); };
    const auto start = [](F f) { f.model.OnStart(false); };
    const auto secondClick = [](F f) { f.model.OnStart(true); };
    const auto answer = [](bool isYes) {
        return [isYes](F f) {
            if (f.model.State() == Asking) f.model.OnDialogClosed();
            f.model.OnAnswer(isYes);
        };
    };
    const auto header = [](F f) { f.model.OnHeader(RowKey::NewName); };
    const auto remove = [](F f) { f.model.OnRemoveRows({true, false}); };
    const auto removeNothing = [](F f) { f.model.OnRemoveRows({false, false}); };
    const auto move = [](F f) { f.model.OnMoveRows({false, true}, true); };
    const auto rows = [](F f) { f.model.SetRows(Two()); };
    const auto reset = [](F f) { f.model.OnResetRows(); };
    const auto uncheck = [](F f) { f.model.OnCheckRows({true, false}, false); };
    const auto check = [](F f) { f.model.OnCheckRows({true, false}, true); };
    const auto name = [](F f) { f.model.OnNameRows({true, false}, L"mine"); };
    const auto keep = [](F f) { f.model.OnKeepRows({true, false}); };
    const auto problems = [](F f) { f.model.OnHeader(RowKey::Problems); };
    const auto refresh = [](F f) { f.model.OnRefresh(); };
    const auto session = [](F f) { f.model.LoadSession(std::make_shared<BatchRenameUndo>()); };
    const auto close = [](F f) { f.model.OnClose(false); };
    const auto shutdown = [](F f) { f.model.OnClose(true); };
    const auto preview = [](F f) { f.model.OnPreview(f.Answer()); };
    const auto partial = [](F f) {
        const auto part = f.Answer();
        part->plans.clear();
        f.model.OnPreview(part);
    };
    const auto failure = [](F f) {
        const auto failed = f.Answer();
        failed->error = L"wrong";
        f.model.OnPreview(failed);
    };
    const auto stale = [](F f) {
        const auto late = f.Answer();
        --late->generation;
        f.model.OnPreview(late);
    };
    const auto ended = [](F f) { f.model.OnRunEnd(f.Result()); };
    const auto notBegun = [](F f) { f.model.OnRunEnd(f.Result(false)); };
    const auto progress = [](F f) { f.model.OnRunProgress(1); };
    const auto live = [](F f) {
        f.model.OnChoices({.isLive = false});
        f.model.OnChoices({});
    };
    const std::string anew = "cancel, request folders";
    const struct {
        const char* event;
        std::function<void(F)> happen;
        States states;
        std::string actions;
        FrameState next;
        Button button = Any;
        const wchar_t* status = nullptr;
    } cases[] = {
        {"rule", rule, kUnrun, "cancel, request later", Computing, Start, L"Computing the new names..."},
        {"rule", rule, {FrameState::Done}, "cancel, request later folders", Computing, Start},
        {"rule", rule, kBusy, "", kSame, Stop},
        {"bad rule", badRule, kIdle, "", kSame, Off},
        {"bad rule", badRule, kBusy, "", kSame, Stop},
        {"start", start, {Outdated}, "request", Starting, Start},
        {"start", start, {Computing, Starting}, "", Starting},
        {"start", start, {Ready}, "begin recorded", Running, Stop, L"Renaming..."},
        {"start", start, {Asking}, "", Asking},
        {"start", start, kBusy, "stop", kSame, Stop},
        {"start", start, {FrameState::Done}, "", FrameState::Done, Off},
        {"second click", secondClick, kBusy, "", kSame, Stop},
        {"yes", answer(true), {Asking}, "begin recorded", Running, Stop},
        {"yes", answer(true), kUnasked, "", kSame},
        {"no", answer(false), {Asking}, "", Ready, Start},
        {"header", header, {Outdated, Computing, Ready, Asking}, "request sorted", Computing, Start},
        {"header", header, {Starting}, "request sorted", Starting, Start},
        {"header", header, {Running, Stopping, FrameState::Done}, "", kSame},
        {"remove", remove, kIdle, anew, Computing, Start},
        {"remove nothing", removeNothing, kAll, "", kSame},
        {"remove", remove, kBusy, "", kSame},
        {"move", move, kUnrun, anew, Computing, Start},
        {"move", move, {Running, Stopping, FrameState::Done}, "", kSame},
        {"rows", rows, kIdle, anew, Computing, Start, L"Computing the new names..."},
        {"reset", reset, kIdle, "collect, take", kSame, Any, L"Asking for the selected files..."},
        {"uncheck", uncheck, kUnrun, "cancel, request", Computing, Start},
        {"uncheck", uncheck, {FrameState::Done}, "cancel, request folders", Computing, Start},
        {"uncheck", uncheck, kBusy, "", kSame, Stop},
        {"check what is checked", check, kAll, "", kSame},
        {"name", name, kUnrun, "cancel, request", Computing, Start},
        {"name", name, {FrameState::Done}, "cancel, request folders", Computing, Start},
        {"name", name, kBusy, "", kSame, Stop},
        {"keep", keep, kIdle, anew, Computing, Start},
        {"keep", keep, kBusy, "", kSame, Stop},
        {"problems first", problems, kAll, "", kSame},
        {"reset", reset, kBusy, "", kSame, Stop},
        {"refresh", refresh, {Outdated, Computing, Ready, Asking}, "request folders", Computing, Start},
        {"refresh", refresh, {Starting}, "request folders", Starting, Start},
        {"refresh", refresh, {Running, Stopping, FrameState::Done}, "", kSame},
        {"session", session, kIdle, anew + ", request session folders", Computing, Off,
         L"Looking for the files of the session..."},
        {"session", session, kBusy, "", kSame, Stop},
        {"close", close, {Outdated, Computing, Starting, Ready, FrameState::Done}, "close", kSame},
        {"close", close, {Asking}, "", Asking},
        {"close", close, kBusy, "stop", Stopping, Stop, L"Stopping after the current file..."},
        {"shutdown", shutdown, kUnasked, "close", kSame},
        {"shutdown", shutdown, {Asking}, "end dialogs", Asking},
        {"preview", preview, {Computing}, "", Ready, Start, L"2 of 2 items will be renamed"},
        {"preview", preview, {Starting}, "begin recorded", Running, Stop},
        {"part of a preview", partial, {Computing, Starting}, "", kSame, Start},
        {"failed preview", failure, {Computing, Starting}, "", Outdated, Start, L"wrong"},
        {"preview", preview, kBusy, "", kSame, Stop},
        {"late preview", stale, kAll, "", kSame},
        {"progress", progress, kBusy, "", kSame, Stop, L"Renaming: 1 of 2"},
        {"progress", progress, {Ready, FrameState::Done}, "", kSame},
        {"end of the run", ended, {Running}, "report, cancel, take", FrameState::Done, Off},
        {"end of the run", ended, {Stopping}, "report, close", FrameState::Done},
        {"a run that could not begin", notBegun, {Running}, "cancel, take", FrameState::Done, Off, L"wrong"},
        {"a run that could not begin", notBegun, {Stopping}, "close", FrameState::Done},
        {"live again", live, {Outdated, Computing}, "request", Computing, Start},
        {"live again", live, {Starting}, "request", Starting, Start},
        {"live again", live, {Ready, Asking, Running, Stopping, FrameState::Done}, "", kSame},
    };
    for (const auto& c : cases)
        for (const FrameState state : c.states) {
            SCOPED_TRACE(c.event + std::string(" in state ") + std::to_string(static_cast<int>(state)));
            RecordedFrame frame;
            Bring(frame, state);
            ASSERT_EQ(frame.model.State(), state);
            const bool areRowsNeeded = state == Asking || state == Running || state == Stopping;
            EXPECT_EQ(frame.model.CanTakeRows(), !areRowsNeeded);
            frame.done.clear();
            c.happen(frame);
            EXPECT_EQ(frame.Done(), c.actions);
            EXPECT_EQ(frame.model.State(), c.next == kSame ? state : c.next);
            const Button button = frame.panel.isRunning ? Stop : frame.panel.canStart ? Start : Off;
            EXPECT_EQ(button, c.button == Any ? button : c.button);
            EXPECT_EQ(frame.status, c.status ? c.status : frame.status);
        }
}

TEST(FrameModel, ComputesOnlyWhenAskedWhileNotLive) {
    RecordedFrame frame;
    frame.model.OnChoices({.isLive = false, .savesUndo = false});
    Bring(frame, Ready);
    frame.model.OnRuleChanged({}, {});
    EXPECT_EQ(frame.Done(), "cancel, request folders, cancel");
    EXPECT_EQ(frame.model.State(), Outdated);
    EXPECT_EQ(frame.status, L"The new names are not up to date.");
    EXPECT_TRUE(frame.isOutdated && frame.panel.canStart);
    frame.model.OnStart(false);
    frame.model.OnPreview(frame.Answer());
    EXPECT_EQ(frame.Done(), "request, begin") << "not recorded";
    EXPECT_FALSE(frame.isOutdated);
}

TEST(FrameModel, KeepsForTheNextPreviewWhatTheLastDidNotDo) {
    RecordedFrame frame;
    Bring(frame, Computing);
    frame.model.OnHeader(RowKey::Location);
    frame.model.OnRefresh();
    EXPECT_EQ(frame.Done(), "cancel, request folders, request sorted, request sorted folders");
    EXPECT_EQ(frame.order, (RowOrder{RowKey::Location, false}));
    frame.model.OnPreview(frame.Answer());
    frame.model.OnRefresh();
    EXPECT_EQ(frame.Done(), "request folders") << "they are sorted now";
    frame.model.OnMoveRows({false, true}, true);
    EXPECT_EQ(frame.order, RowOrder());
    EXPECT_EQ(frame.selected, (std::vector<bool>{true, false}));

    RecordedFrame afterRun;
    Bring(afterRun, FrameState::Done);
    afterRun.Done();
    afterRun.failsRequests = true;
    EXPECT_THROW(afterRun.model.OnRuleChanged({}, {}), std::bad_alloc);
    afterRun.failsRequests = false;
    afterRun.model.OnStart(false);
    EXPECT_EQ(afterRun.Done(), "cancel, request folders") << "a run has changed what they hold";
    EXPECT_EQ((*afterRun.request.rows)[0]->currentName, L"b2");
}

TEST(FrameModel, RestoresWhateverTheRuleIs) {
    RecordedFrame frame;
    frame.model.OnChoices({.savesUndo = false});
    Bring(frame, Ready);
    frame.model.OnRuleChanged(Expression(L"("), {});
    frame.Done();
    frame.model.OnStart(false);
    EXPECT_EQ(frame.Done(), "");
    frame.model.LoadSession(std::make_shared<BatchRenameUndo>(), {3, 5});
    EXPECT_EQ(frame.request.entries, (std::vector<size_t>{3, 5}));
    EXPECT_TRUE(frame.isRestoring && frame.panel.isRestoring);
    frame.request.rows = Two();
    frame.model.OnPreview(frame.Answer());
    EXPECT_EQ(frame.status, L"2 of 2 items will be restored");
    frame.Done();
    frame.model.OnRemoveRows({true, false});
    frame.model.OnPreview(frame.Answer());
    frame.Done();
    frame.model.OnStart(false);
    EXPECT_EQ(frame.Done(), "begin recorded");
    EXPECT_EQ(frame.run.entries.size(), 1u);
    frame.model.OnRunUnrecorded(5);
    frame.model.OnRunProgress(1);
    EXPECT_EQ(frame.status, L"Restoring: 1 of 1, without undo");
    frame.model.OnRunEnd(frame.Result());
    frame.model.SetRows(Two());
    EXPECT_FALSE(frame.isRestoring || frame.panel.canStart) << "the rule is still wrong";
}

TEST(FrameModel, GoesOnWithTheRestOfARunThatWasStopped) {
    RecordedFrame frame;
    Bring(frame, Running);
    const auto stopped = frame.Result();
    stopped->outcomes[1] = {Quorvane::SDK::RenameResult::Ignored, L"stopped", L"a", true};
    frame.model.OnRunEnd(stopped);
    EXPECT_TRUE(frame.panel.canStart && frame.panel.canGoOn);
    frame.Done();
    frame.model.OnStart(false);
    EXPECT_EQ(frame.Done(), "begin recorded");
    ASSERT_EQ(frame.run.rows.size(), 1u);
    EXPECT_EQ(frame.run.rows[0]->currentName + frame.run.rows[0]->newName, L"aa2");
    frame.model.OnRunProgress(1);
    EXPECT_EQ(frame.status, L"Renaming: 1 of 1");
    frame.model.OnRunEnd(frame.Result());
    EXPECT_FALSE(frame.panel.canStart || frame.panel.canGoOn);
    for (const size_t row : {0, 1}) {
        EXPECT_EQ(frame.model.Rows().OldName(row) + L"2", frame.model.Rows().NewName(row));
        EXPECT_EQ(frame.model.Rows().Mark(row), RowMark::Done);
    }
}

TEST(FrameModel, GivesNamesByHandAndBackAndLeavesTheOthersOutAfterARun) {
    RecordedFrame frame;
    Bring(frame, Ready);
    const auto asked = [&](size_t row) -> const BatchRenameItem& { return *(*frame.request.rows)[row]; };
    frame.model.OnNameRows({false, true}, L"mine");
    EXPECT_EQ(asked(1).ownName, L"mine");
    EXPECT_TRUE(asked(0).ownName.empty() && !asked(0).isLeftOut);
    frame.model.OnNameRows({true, true}, {});
    EXPECT_EQ(asked(1).ownName, L"");
    RecordedFrame done;
    Bring(done, FrameState::Done);
    done.model.OnNameRows({false, true}, L"mine");
    EXPECT_TRUE((*done.request.rows)[0]->isLeftOut && !(*done.request.rows)[1]->isLeftOut);
}

TEST(FrameModel, HasTheVisibleRowsOfManyComputedFirst) {
    RecordedFrame frame;
    const auto many = std::make_shared<const RenameItems>(RenameItems(2000, QVTest::Row(L"C:\\d", L"a")));
    frame.model.SetRows(many);
    frame.model.OnChoices({.showsChangesOnly = true});
    frame.model.SetRows(many);
    EXPECT_EQ(frame.Done(), "cancel, request folders visible, cancel, request folders");
}

TEST(FrameModel, SaysSoWhereThereIsNoThreadNoAnswerAndNothingToDo) {
    RecordedFrame frame;
    Bring(frame, Ready);
    frame.hasThreads = frame.hostAnswers = false;
    frame.model.OnStart(false);
    EXPECT_EQ(frame.model.State(), Ready);
    EXPECT_EQ(frame.status, L"The run could not be started; the system has no thread for it.");
    frame.model.OnResetRows();
    EXPECT_EQ(frame.status, L"The file manager has not answered yet. The list stays as it is until it does.");
    EXPECT_EQ(frame.model.Rows().Rows()->size(), 2u);
    frame.model.SetRows(std::make_shared<const RenameItems>());
    frame.model.OnPreview(frame.Answer());
    EXPECT_EQ(frame.status, L"No files");
    frame.Done();
    frame.model.OnStart(false);
    EXPECT_EQ(frame.Done(), "");
}

}  // namespace
