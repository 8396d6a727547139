#include <array>
#include <thread>

#include "batchrename/run/undo_store.h"
#include "rename/undo_session.h"
#include "rows.h"
#include "support/replaced_imports.h"
#include "support/temporary_folder.h"
#include "win32/handle.h"

namespace {

using namespace BatchRename;
using namespace QVTest;

constexpr CalendarTime kSessionTime = {2016, 3, 1, 7, 14, 29, 5, 0};
constexpr wchar_t kText[] =
    L"[INFO]\r\nDate : 1457360945\r\nItems : 2\r\nHaveRestored : 0\r\n\r\n[FILES]\r\n"
    L"C:\\d|old 1|new 1\r\nC:\\d|\xD83D\xDE00|b\r\n";

BatchRenameUndo Sample() {
    BatchRenameUndo session;
    session.time = kSessionTime;
    session.entries = {{L"C:\\d", L"new 1", L"old 1", {}, {}}, {L"C:\\d", L"b", L"\xD83D\xDE00", {}, {}}};
    return session;
}

TEST(UndoSession, IsWrittenLineByLineAndReadBack) {
    EXPECT_EQ(FormatSession(Sample()), kText);
    BatchRenameUndo session;
    ParseSession(kText, session);
    EXPECT_EQ(FormatSession(session), kText);
    EXPECT_EQ(FileNameOf(session), L"BatchRenameUndoData-2016-03-07-142905.dat");
}

TEST(UndoSession, IsReadInSpiteOfDamage) {
    const struct {
        const char* why;
        std::wstring text;
        size_t entries;
        bool haveRestored;
    } cases[] = {
        {"lines end with LF", L"[INFO]\nHaveRestored : 2\n[FILES]\na|b|c\n", 1, true},
        {"the last line has no end", L"[FILES]\r\na|b|c", 1, false},
        {"too few and too many fields", L"[FILES]\na|b\na|b|c|d\na|b|c\n", 1, false},
        {"a date beyond all dates", L"[INFO]\nDate : 9223372036854775807\n", 0, false},
        {"progress of no entry", L"[FILES]\na|b|c\n# unfinished\n#> 7|x\n#> |x\n#> 99999999999|x\n#=\n", 1, false},
    };
    for (const auto& c : cases) {
        BatchRenameUndo session;
        ParseSession(c.text, session);
        EXPECT_EQ(session.entries.size(), c.entries) << c.why;
        EXPECT_EQ(session.haveRestored, c.haveRestored) << c.why;
        EXPECT_EQ(session.time.year, 1970) << c.why;
    }
}

TEST(UndoSession, KnowsHowFarAnUnfinishedRunCame) {
    BatchRenameUndo session = Sample();
    session.isUnfinished = true;
    const std::wstring start = FormatSession(session);
    const std::wstring text = start + FormatStep(0, L"~qvbr00000000") + FormatStep(1, L"b") + FormatFailedStep(1) +
                              FormatStep(0, L"old 1") + L"#> 1|cut of";
    ParseSession(text, session);
    EXPECT_TRUE(session.isUnfinished);
    EXPECT_EQ(session.entries[0].reached, L"~qvbr00000000");
    EXPECT_EQ(session.entries[0].begun, L"old 1");
    EXPECT_EQ(session.entries[1].reached, L"");
    EXPECT_EQ(session.entries[1].begun, L"");
}

TEST(UndoSession, KeepsEachItemsLinesWithItsEntryWhateverIsLost) {
    BatchRenameUndo whole;
    whole.isUnfinished = true;
    for (const wchar_t* name : {L"a", L"b", L"c", L"d"})
        whole.entries.push_back({L"C:\\d", std::wstring(name) + L"2", name, name, {}, {7, name[0] * 3u, name[0], 1}});
    whole.entries[3].begun = L"x";
    const std::wstring text = FormatSession(whole);
    const size_t files = text.find(L"C:\\d");
    // Each character of the entries lost, and each that joins two lines or makes one more.
    for (size_t at = files; at < text.find(L"#&"); ++at)
        for (const std::wstring_view put : {L"", L"|", L"\r\n"}) {
            BatchRenameUndo read;
            ParseSession(text.substr(0, at) + std::wstring(put) + text.substr(at + 1), read);
            EXPECT_GE(read.entries.size(), 2u);
            for (const UndoEntry& entry : read.entries) {
                const auto same = std::ranges::find(whole.entries, entry.newName, &UndoEntry::newName);
                const bool isSame = same != whole.entries.end() && same->oldName == entry.oldName;
                EXPECT_TRUE(!entry.identity || (isSame && IsSameItem(entry.identity, same->identity))) << at;
                const bool isWhole = isSame && entry.location == same->location;
                EXPECT_TRUE(!isWhole || (entry.reached == same->reached && entry.begun == same->begun)) << at;
            }
        }
}

TEST(UndoSession, IsDecodedWithAndWithoutAMark) {
    std::string bigEndian = "\xFE\xFF";
    for (const char unit : std::string("[X]")) bigEndian += std::string(1, '\0') + unit;
    for (const std::string& bytes :
         {Utf16(L"[X]"), "\xFF\xFE" + Utf16(L"[X]"), bigEndian, std::string("\xEF\xBB\xBF[X]"), Utf16(L"[X]") + "y"})
        EXPECT_EQ(DecodeSession(bytes), L"[X]");
}

TEST(UndoStore, ListsTheNewestFirstAndDeletesWhatItCan) {
    const TemporaryFolder folder;
    UndoStore store;
    store.SetFolder(folder / L"none");
    EXPECT_TRUE(store.Sessions().empty());
    folder.Write(L"a.dat", Utf16(kText));
    folder.Write(L"b.dat", Utf16(L"[INFO]\nDate : 1457360946\n"));
    folder.Write(L"damaged.dat", "\x01");
    folder.Write(L"other.txt", "");
    CreateDirectoryW((folder / L"folder.dat").c_str(), nullptr);
    store.SetFolder(folder.Path());
    ASSERT_EQ(store.Sessions().size(), 3u);
    RemoveDirectoryW((folder / L"folder.dat").c_str());
    EXPECT_EQ(store.Sessions()[0]->fileName, L"b.dat");
    EXPECT_EQ(store.Sessions()[2]->fileName, L"damaged.dat");
    EXPECT_FALSE(store.Delete(std::make_shared<BatchRenameUndo>()));
    EXPECT_TRUE(store.Delete(store.Sessions()[0]));
    {
        const Win32::FileHandle held(CreateFileW((folder / L"a.dat").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                 OPEN_EXISTING, 0, nullptr));
        EXPECT_FALSE(store.Delete(store.Sessions()[0]));
    }
    EXPECT_EQ(store.Sessions().size(), 2u);
    EXPECT_EQ(folder.List(), (std::vector<std::wstring>{L"a.dat", L"damaged.dat", L"other.txt"}));
}

TEST(UndoStore, FindsTheNewestByItsNameAlone) {
    const TemporaryFolder folder;
    for (const wchar_t* time : {L"2015-12-31-235959", L"2024-02-29-000001", L"2016-03-07-142904"})
        folder.Write(L"BatchRenameUndoData-" + std::wstring(time) + L".dat", "");
    folder.Write(L"BatchRenameUndoData-2024-2-29-235959.dat", Utf16(kText));  // named by another: its time is in it
    UndoStore store;
    store.SetFolder(folder.Path());
    std::vector<std::wstring> asked;
    EXPECT_FALSE(store.FindNewest([&](const BatchRenameUndo& session) {
        asked.push_back(session.fileName.substr(20));
        return false;
    }));
    EXPECT_EQ(asked, (std::vector<std::wstring>{L"2024-02-29-000001.dat", L"2024-2-29-235959.dat",
                                                L"2016-03-07-142904.dat", L"2015-12-31-235959.dat"}));
    const auto newest = store.FindNewest([](const BatchRenameUndo&) { return true; });
    ASSERT_TRUE(newest);
    EXPECT_TRUE(store.Delete(newest));
    EXPECT_EQ(store.Sessions().size(), 3u);
}

TEST(UndoStore, PutsARunAfterTheNewestWhereTheClockWasSetBack) {
    const TemporaryFolder folder;
    for (const wchar_t* time : {L"2016-03-07-142900", L"2016-03-07-152900", L"2016-03-09-000000"})
        folder.Write(L"BatchRenameUndoData-" + std::wstring(time) + L".dat", "");
    UndoStore store;
    store.SetFolder(folder.Path());
    const auto session = std::make_shared<BatchRenameUndo>(Sample());
    EXPECT_TRUE(store.Begin(session));
    EXPECT_EQ(session->fileName, L"BatchRenameUndoData-2016-03-07-152901.dat");
}

int g_flushes = 0;
BOOL WINAPI CountFlush(HANDLE) {
    ++g_flushes;
    return TRUE;
}

TEST(UndoStore, FlushesEachLineOfAStepForThoseWhoWantIt) {
    const ReplacedImport counted(GetModuleHandleW(nullptr), "FlushFileBuffers", reinterpret_cast<void*>(CountFlush));
    for (const bool isDurable : {false, true}) {
        const TemporaryFolder folder;
        UndoStore store;
        store.SetFolder(folder.Path());
        store.SetDurable(isDurable);
        UndoProgress progress = store.Begin(std::make_shared<BatchRenameUndo>(Sample()));
        g_flushes = 0;
        EXPECT_TRUE(progress.Step(0, L"x") && progress.FailedStep(0));
        EXPECT_EQ(g_flushes, isDurable ? 2 : 0);
    }
}

TEST(UndoStore, GivesEachRunAFileOfItsOwn) {
    const TemporaryFolder folder;
    folder.Write(L"BatchRenameUndoData-2016-03-07-142905.dat.new", "another's");
    std::array<std::shared_ptr<BatchRenameUndo>, 8> sessions;
    {
        std::vector<std::jthread> threads;
        for (auto& session : sessions)
            threads.emplace_back([&] {
                UndoStore store;
                store.SetFolder(folder.Path());
                session = std::make_shared<BatchRenameUndo>(Sample());
                store.Begin(session).Step(0, session->fileName);
                EXPECT_EQ(store.LastError(), 0u);
            });
    }
    for (const auto& session : sessions) {
        BatchRenameUndo written;
        ParseSession(DecodeSession(folder.Read(session->fileName)), written);
        EXPECT_EQ(written.entries.at(0).begun, session->fileName);
        EXPECT_EQ(written.time.second, session->time.second);
    }
    EXPECT_EQ(folder.List().size(), sessions.size() + 1) << "no file left beside them";
    EXPECT_EQ(folder.Read(L"BatchRenameUndoData-2016-03-07-142905.dat.new"), "another's");
}

}  // namespace
