// panel_test.cpp - the panel: its parts as functions, and one story through the real window.
#include <algorithm>
#include <set>

#include "host/panel/folder_rows.h"
#include "host/panel/panel_menu.h"
#include "host/panel/run_report.h"
#include "host_runner.h"
#include "sdk/file_list.h"
#include "support/dialog_driver.h"

#include <shlobj.h>

namespace {

using namespace QVHost;
using QVTest::WaitUntil;
using Names = std::vector<std::wstring>;

TEST(FolderRows, LeadUpToTheDrivesAndNoFurther) {
    EXPECT_EQ(FolderAbove(LR"(C:\a\b)"), LR"(C:\a)");
    EXPECT_EQ(FolderAbove(LR"(C:\)"), L"");
    EXPECT_EQ(FolderAbove(LR"(\\server\share\a)"), LR"(\\server\share)");
    EXPECT_EQ(FolderAbove(LR"(\\server\share)"), LR"(\\server\share)");
}

TEST(FolderRows, KeepFoldersAboveAndReadNumbersInNames) {
    const QVTest::TemporaryFolder folder;
    for (const wchar_t* name : {L"page 10.txt", L"page 2.txt"}) folder.Write(name, "");
    folder.Write(L"Big.txt", "bbb");
    CreateDirectoryW((folder / L"zoo").c_str(), nullptr);
    std::vector<FolderRow> rows;
    ASSERT_EQ(ReadFolder(folder.Path(), rows), 0u);
    const auto names = [&](RowOrder order, bool isDescending) {
        SortRows(rows, order, isDescending);
        Names result;
        for (const FolderRow& row : rows) result.push_back(row.entry.name);
        return result;
    };
    EXPECT_EQ(names(RowOrder::Name, true), (Names{L"zoo", L"page 10.txt", L"page 2.txt", L"Big.txt"}));
    EXPECT_EQ(names(RowOrder::Size, false), (Names{L"zoo", L"page 2.txt", L"page 10.txt", L"Big.txt"}));
    EXPECT_EQ(FindByBeginning(rows, L"PAGE", 2), 2);
    EXPECT_EQ(FindByBeginning(rows, L"z", 2), 0) << "the search goes on at the top";
    EXPECT_EQ(FindByBeginning(rows, L"q", 0), -1);
    EXPECT_EQ(ReadFolder(folder / L"Big.txt", rows), uint32_t{ERROR_DIRECTORY});
    EXPECT_EQ(rows.size(), 4u) << "a failure leaves the rows alone";
}

TEST(PanelMenu, OffersWhatFitsTheSelection) {
    constexpr SelectionKind kFolder = {0, 1};
    constexpr SelectionKind kBoth = {1, 1};
    const struct {
        uint32_t command;
        bool fitsFolder, fitsBoth;
    } cases[] = {
        {6161, false, false}, {30000, true, true}, {30151, false, true}, {30300, true, true}, {31000, true, true}};
    for (const auto& c : cases) {
        EXPECT_EQ(Fits(c.command, kFolder), c.fitsFolder) << c.command;
        EXPECT_EQ(Fits(c.command, kBoth), c.fitsBoth) << c.command;
        EXPECT_FALSE(Fits(c.command, {})) << c.command;
    }
}

TEST(RunReport, CountsByTheFilesWhatACommandDid) {
    const auto row = [](const wchar_t* name, uint64_t size, DWORD attributes = 0) {
        return FolderRow{{name, attributes, size, size}};
    };
    RunReport report;
    report.Begin({row(L"same", 1), row(L"changed", 2), row(L"Old", 3), row(L"gone", 4),
                  row(L"sub", 5, FILE_ATTRIBUTE_DIRECTORY)});
    report.Rename(LR"(C:\d\old)", LR"(C:\d\new)");
    report.Line(L"[Find and Replace] - 7 changes made to file : changed", Tone::Success);
    report.Line(L"reason", Tone::Failure);
    report.Mark(Quorvane::SDK::MarkKind::Skipped);
    const RunCounts counts = report.End({row(L"same", 1), row(L"changed", 3), row(L"new", 3), row(L"changed.bak", 2),
                                         row(L"sub", 6, FILE_ATTRIBUTE_DIRECTORY)});
    EXPECT_EQ(counts,
              (RunCounts{.changed = 1, .added = 1, .gone = 1, .renamed = 1, .failed = 1, .skipped = 1, .replaced = 7}));

    report.Begin({row(L"same", 1)});
    for (const wchar_t* line : {LR"([Security] - Before : O:BA : C:\d\same)", LR"([Security] - New owner : C:\d\same)",
                                LR"(Link Created (Shortcut) Link : "C:\e\same.lnk" Link Target : "C:\d\same")"})
        report.Line(line, Tone::Success);
    EXPECT_EQ(report.End({row(L"same", 1)}), (RunCounts{.told = 2})) << "as the log has it";
}

TEST(RunReport, FindsTheFileThatALineNames) {
    const std::set<std::wstring> there = {LR"(C:\d)", LR"(C:\d\a b.txt)", LR"(C:\d\new.txt)", LR"(\\s\f\x)"};
    const auto exists = [&](const std::wstring& path) { return there.contains(path); };
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {LR"([x] - 2 changes made to file : C:\d\a b.txt)", LR"(C:\d\a b.txt)"},
        {LR"(Sorted lines in file : C:\d\a b.txt (Saved as : C:\d\new.txt))", LR"(C:\d\a b.txt)"},
        {LR"([renamed] C:\d\old.txt -> new.txt)", LR"(C:\d\new.txt)"},
        {LR"(Failed : \\s\f\x: reason)", LR"(\\s\f\x)"},
        {LR"(gone: C:\d\gone.txt)", LR"(C:\d)"},
        {LR"(C:\nowhere\x)", L""},
        {L"Sort: ended", L""},
    };
    for (const auto& [line, path] : cases) EXPECT_EQ(PathIn(line, exists), path) << line;
}

TEST(PanelMenu, WritesShortcutsAsPeopleDo) {
    EXPECT_EQ(ShortcutText(0x0049004A), L"Ctrl+J");
    EXPECT_EQ(ShortcutText(0x004D004A), L"Ctrl+Shift+J");
    EXPECT_EQ(ShortcutText(Quorvane::SDK::kNoShortcut), L"");
}

TEST(PanelMenu, GivesEachEntryALetterOfItsOwn) {
    Names texts = {L"Line ends", L"Line breaks", L"Tabs", L"&Sort", L"Split text", L"L"};
    GiveAccessKeys(texts, {L"T"});
    EXPECT_EQ(texts, (Names{L"&Line ends", L"Line &breaks", L"T&abs", L"&Sort", L"S&plit text", L"L"}));
}

/// The panel of this process, as a person sees it.
class SeenPanel {
public:
    SeenPanel() {
        const bool isThere = WaitUntil([&] {
            m_frame = QVTest::FindOwnWindow(L"QVHostPanel");
            return IsWindowVisible(m_frame) != FALSE;
        });
        EXPECT_TRUE(isThere);
        for (HWND at = nullptr; (at = FindWindowExW(m_frame, at, WC_LISTVIEWW, nullptr)) != nullptr;)
            m_lists.push_back(at);
        EXPECT_EQ(m_lists.size(), 2u);
    }
    SeenPanel(const SeenPanel&) = delete;
    SeenPanel& operator=(const SeenPanel&) = delete;
    ~SeenPanel() { PostMessageW(m_frame, WM_CLOSE, 0, 0); }

    Names Column(int column) const { return QVTest::ColumnOf(m_lists.front(), column); }
    Names Log() const { return QVTest::ColumnOf(m_lists.back(), 0); }
    std::wstring Title() const { return QVTest::ShownText(m_frame, WM_GETTEXT); }
    std::wstring Address() const { return QVTest::ShownText(AddressField(), WM_GETTEXT); }
    std::wstring Status() const {
        return QVTest::ShownText(FindWindowExW(m_frame, nullptr, STATUSCLASSNAMEW, nullptr), SB_GETTEXTW, 0);
    }
    void Select(const Names& names) const {
        const Names rows = Column(0);
        for (int row = 0; row < static_cast<int>(rows.size()); ++row)
            ListView_SetItemState(m_lists.front(), row,
                                  std::ranges::count(names, rows[static_cast<size_t>(row)]) > 0 ? LVIS_SELECTED : 0,
                                  LVIS_SELECTED);
    }
    Names Selected() const {
        Names names;
        const Names rows = Column(0);
        for (int row = -1; (row = ListView_GetNextItem(m_lists.front(), row, LVNI_SELECTED)) >= 0;)
            names.push_back(rows[static_cast<size_t>(row)]);
        return names;
    }
    /// Chooses the first entry of the menu bar's last menu, going down first entries.
    void ChooseFirstOfLastMenu() const {
        HMENU menu = GetSubMenu(GetMenu(m_frame), GetMenuItemCount(GetMenu(m_frame)) - 1);
        while (HMENU sub = GetSubMenu(menu, 0)) menu = sub;
        SendMessageW(m_frame, WM_COMMAND, GetMenuItemID(menu, 0), 0);
    }
    void Command(WORD command) const { SendMessageW(m_frame, WM_COMMAND, command, 0); }
    /// Types a folder above the list, in the place of what is there, and presses Enter.
    void Go(const std::wstring& folder) const {
        Command(PanelCommand::Address);
        SendMessageW(AddressField(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(folder.c_str()));
        Command(IDOK);
    }
    void Type(wchar_t letter) const { SendMessageW(m_lists.front(), WM_CHAR, letter, 1); }
    int FocusedRow() const { return ListView_GetNextItem(m_lists.front(), -1, LVNI_FOCUSED); }
    void Drop(const Names& paths) const {
        std::wstring list;
        for (const std::wstring& path : paths) list += path + L'\0';
        const HGLOBAL memory = GlobalAlloc(GPTR, sizeof(DROPFILES) + (list.size() + 1) * sizeof(wchar_t));
        auto* const head = static_cast<DROPFILES*>(memory);  // fixed memory is its own address
        *head = {.pFiles = sizeof(DROPFILES), .pt = {}, .fNC = FALSE, .fWide = TRUE};
        list.copy(reinterpret_cast<wchar_t*>(head + 1), list.size());
        SendMessageW(m_frame, WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
    }

private:
    HWND AddressField() const { return FindWindowExW(m_frame, nullptr, L"Edit", nullptr); }

    HWND m_frame = nullptr;
    std::vector<HWND> m_lists;
};

TEST(Panel, ShowsAFolderRunsACommandAndMarksWhatBecameOfTheFiles) {
    const QVTest::HostRunner host;
    const QVTest::TemporaryFolder folder;
    for (const wchar_t* name : {L"bad.txt", L"good.txt", L"other.txt"}) folder.Write(name, "12345");
    CreateDirectoryW((folder / L"sub").c_str(), nullptr);
    QVTest::HostRun run;
    QVTest::WhileDriving(
        [&](QVTest::DialogDriver&) {
            const SeenPanel panel;
            EXPECT_EQ(panel.Title(), folder.Path() + L" - 1w");
            EXPECT_EQ(panel.Column(0), (Names{L"sub", L"bad.txt", L"good.txt", L"other.txt"}));
            EXPECT_EQ(panel.Selected(), (Names{L"bad.txt", L"good.txt"})) << "as the command line says";
            EXPECT_TRUE(WaitUntil([&] { return panel.Log() == Names{L"33w"}; })) << "and what lies elsewhere is told";
            EXPECT_TRUE(WaitUntil([&] { return panel.Status() == L"20w"; })) << "something is selected";

            panel.ChooseFirstOfLastMenu();
            EXPECT_TRUE(WaitUntil([&] { return panel.Log().size() == 4; }));
            EXPECT_EQ(panel.Log().back(), L"43w") << "what was done is summed up";
            EXPECT_TRUE(panel.Log()[1].starts_with(L"bad.txt in " + folder.Path())) << "the selection, in order";
            EXPECT_EQ(panel.Column(3), (Names{L"", L"16w", L"15w", L""})) << "failed and done are marked";

            folder.Write(L"added.txt", "");
            panel.Command(PanelCommand::Refresh);
            EXPECT_EQ(panel.Column(0).size(), 5u);
            EXPECT_EQ(panel.Selected(), (Names{L"bad.txt", L"good.txt"})) << "in another place, still selected";
            EXPECT_EQ(panel.Column(3)[2], L"16w") << "marks stay until the next command";

            panel.Command(PanelCommand::Up);
            EXPECT_NE(panel.Title(), folder.Path() + L" - 1w");
            panel.Command(PanelCommand::Back);
            EXPECT_EQ(panel.Title(), folder.Path() + L" - 1w");
            panel.Go(L"sub");
            EXPECT_EQ(panel.Title(), (folder / L"sub") + L" - 1w") << "a name alone is one in this folder";
            panel.Command(PanelCommand::Back);
            panel.Go(L"absent");
            EXPECT_EQ(panel.Title(), folder.Path() + L" - 1w");
            EXPECT_EQ(panel.Address(), L"absent") << "it can be mended";
            panel.Command(IDCANCEL);
            EXPECT_EQ(panel.Address(), folder.Path());
            panel.Type(L'o');
            EXPECT_EQ(panel.FocusedRow(), 4) << "letters go to the name";

            panel.Drop({folder / L"sub"});
            EXPECT_EQ(panel.Title(), (folder / L"sub") + L" - 1w") << "a single folder is opened";
            panel.Command(PanelCommand::Back);
            panel.Drop({folder / L"other.txt", folder / L"sub"});
            EXPECT_EQ(panel.Selected(), (Names{L"sub", L"other.txt"}));
            panel.ChooseFirstOfLastMenu();
            EXPECT_EQ(panel.Column(3), (Names{L"15w", L"", L"", L"", L"15w"})) << "the marks before are gone";
            panel.Select({});
            panel.ChooseFirstOfLastMenu();
            EXPECT_TRUE(WaitUntil([&] { return panel.Log().back() == L"32w"; })) << "nothing is selected";
            folder.Write(L"rename me.txt", "");
            panel.Command(PanelCommand::Refresh);
            panel.Select({L"rename me.txt", L"sub"});
            panel.ChooseFirstOfLastMenu();
            EXPECT_EQ(panel.Selected(), (Names{L"sub", L"another name.txt"})) << "the selection goes with the file";
        },
        [&] {
            run = host.Run({L"panel", folder / L"good.txt", folder / L"bad.txt", host.Folder().Path()});
        });
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_NE(run.out.find("other.txt in "), std::string::npos) << "log lines go to the console too";
    EXPECT_NE(host.Folder().Read(L"config\\settings.json").find("AtEnd"), std::string::npos)
        << "what an extension sets as it is shut down is kept";
}

}  // namespace
