#include "win32/successor.h"

#include "support/replaced_imports.h"
#include "support/temporary_folder.h"
#include "win32/handle.h"

namespace {

// What stands in for the system's pause and move.
Win32::FileHandle g_holder;
int g_pauses = 0;

void WINAPI LetGo(DWORD) {
    ++g_pauses;
    g_holder.Reset();
}

BOOL WINAPI RefuseMove(const wchar_t*, const wchar_t*, DWORD) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

HANDLE WINAPI RefuseOpen(const wchar_t*, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) {
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
}

DWORD WINAPI RefuseAttributes(const wchar_t*) {
    SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_FILE_ATTRIBUTES;
}

std::vector<DWORD> g_moves;  // their flags
BOOL WINAPI NoteMove(const wchar_t*, const wchar_t*, DWORD flags) {
    g_moves.push_back(flags);
    return TRUE;
}

std::vector<std::wstring> g_streams;
HANDLE WINAPI FirstStream(const wchar_t*, STREAM_INFO_LEVELS level, void* data, DWORD flags) {
    EXPECT_EQ(level + flags, 0u);
    g_streams = {L":b c:$DATA", L":a:$DATA"};
    wcscpy(static_cast<WIN32_FIND_STREAM_DATA*>(data)->cStreamName, L"::$DATA");
    return FindFirstFileW(L"Z:\\*", std::make_unique<WIN32_FIND_DATAW>().get());
}
BOOL WINAPI NextStream(HANDLE, void* data) {
    if (g_streams.empty()) return FALSE;
    wcscpy(static_cast<WIN32_FIND_STREAM_DATA*>(data)->cStreamName, g_streams.back().c_str());
    g_streams.pop_back();
    return TRUE;
}

QVTest::ReplacedImport Replace(const char* name, auto* function) {
    return {GetModuleHandleW(nullptr), name, reinterpret_cast<void*>(function)};
}

}  // namespace

// The test platform keeps what is written to "name:stream" in an ordinary file of that name, so the copying can be
// seen; it lists no streams, so their names are given here.
TEST(Files, CopyEveryNamedStreamOrSayWhichErrorStoppedThem) {
    const QVTest::TemporaryFolder folder;
    const std::string large(200'000, 'z');
    folder.Write(L"old.txt", "content");
    folder.Write(L"new.txt", "changed");
    folder.Write(L"old.txt:zone:$DATA", "[ZoneTransfer]");
    folder.Write(L"old.txt:large:$DATA", large);

    EXPECT_EQ(Win32::CopyStreams(folder / L"old.txt", folder / L"new.txt", {L":zone:$DATA", L":large:$DATA"}), 0u);
    EXPECT_EQ(folder.Read(L"new.txt:zone:$DATA"), "[ZoneTransfer]");
    EXPECT_EQ(folder.Read(L"new.txt:large:$DATA"), large);
    EXPECT_EQ(folder.Read(L"new.txt"), "changed");
    EXPECT_EQ(Win32::CopyStreams(folder / L"old.txt", folder / L"new.txt", {L":gone:$DATA"}), 2u);
}

TEST(Files, NamedStreamsAreListedWithoutTheContent) {
    const auto first = Replace("FindFirstStreamW", FirstStream);
    const auto next = Replace("FindNextStreamW", NextStream);
    EXPECT_EQ(Win32::NamedStreamsOf(L"a"), (std::vector<std::wstring>{L":a:$DATA", L":b c:$DATA"}));
}

TEST(Files, AMoveReplacesOnlyWhenAskedAndCopiesNothing) {
    const auto move = Replace("MoveFileExW", NoteMove);
    Win32::MoveFileTo(L"a", L"b");
    Win32::MoveFileOver(L"a", L"b");
    for (const bool mayReplace : {false, true}) Win32::MoveFileThrough(L"a", L"b", mayReplace);
    EXPECT_EQ(g_moves, (std::vector<DWORD>{0, 1, 8, 9}));
}

TEST(Files, AHeldFileIsReplacedAsSoonAsItIsFree) {
    const std::tuple<const char*, DWORD, bool> cases[] = {
        {"for nobody else", 0, false},
        {"for readers", FILE_SHARE_READ, false},
        {"for everybody, as scanners do", Win32::kShareAll, false},
        {"already deleted", Win32::kShareAll, true},
    };
    const auto pause = Replace("Sleep", LetGo);
    for (const auto& [why, sharing, isDeleted] : cases) {
        const QVTest::TemporaryFolder folder;
        const std::wstring from = folder.Write(L"new", "new");
        const std::wstring to = folder.Write(L"old", "old");
        g_pauses = 0;
        g_holder.Reset(CreateFileW(to.c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(g_holder);
        ASSERT_TRUE(!isDeleted || DeleteFileW(to.c_str()));
        EXPECT_EQ(Win32::MoveFileOver(from, to), 0u) << why;
        EXPECT_EQ(g_pauses, 1) << why;
        EXPECT_EQ(folder.ReadAll(), (QVTest::Contents{{L"old", "new"}})) << why;
    }
}

TEST(Files, AHeldFileIsLookedAtAgainAsSoonAsItIsFree) {
    const auto pause = Replace("Sleep", LetGo);
    const QVTest::TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a", "old");
    const Win32::FileState state = QVTest::StateOf(path);
    Win32::HeldFile held;
    g_pauses = 0;
    g_holder.Reset(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(Win32::HoldUnchanged(state, held), 0u);
    EXPECT_EQ(g_pauses, 1);
}

TEST(Files, AWantOfRightsIsReportedAtOnceAndAPendingDeletionWaitedFor) {
    const QVTest::TemporaryFolder folder;
    const std::wstring from = folder.Write(L"new", "new");
    const std::wstring to = folder.Write(L"old", "old");
    const auto pause = Replace("Sleep", LetGo);
    const auto move = Replace("MoveFileExW", RefuseMove);
    g_pauses = 0;
    EXPECT_EQ(Win32::MoveFileOver(from, to), ERROR_ACCESS_DENIED);
    SetFileAttributesW(to.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(Win32::MoveFileOver(from, to), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Win32::RemoveFile(to), ERROR_ACCESS_DENIED);
    const auto open = Replace("CreateFileW", RefuseOpen);
    EXPECT_EQ(Win32::MoveFileOver(from, to), ERROR_ACCESS_DENIED);
    EXPECT_EQ(g_pauses, 0);
    // Nothing at all is given out of a file that is deleted, but still open somewhere.
    const auto attributes = Replace("GetFileAttributesW", RefuseAttributes);
    EXPECT_EQ(Win32::MoveFileOver(from, to), ERROR_ACCESS_DENIED);
    EXPECT_GT(g_pauses, 0);
}
