#include "win32/folder.h"

#include <algorithm>
#include <functional>
#include <map>

#include "support/replaced_imports.h"
#include "support/temporary_folder.h"

namespace {

// More than one call delivers; a pattern that fits every name takes the other way through the system.
TEST(Folder, ListsTheSameEntriesAtOnceAndByAPattern) {
    const QVTest::TemporaryFolder folder;
    std::vector<std::wstring> written;
    for (int number = 0; number < 400; ++number) {
        written.push_back(std::wstring(150, L'n') + L"\xE4" + std::to_wstring(number) + L".txt");
        folder.Write(written.back(), std::string(number % 5, 'x'));
    }
    std::ranges::sort(written);
    std::vector<Win32::FolderEntry> entries;
    ASSERT_EQ(Win32::ListFolder(folder.Path(), L"*", entries), 0u);
    for (const wchar_t* pattern : {L"*", L"*.txt"}) {
        std::vector<std::wstring> names;
        ASSERT_EQ(Win32::ListFolder(folder.Path(), pattern, names), 0u);
        std::ranges::sort(names);
        EXPECT_EQ(names, written);
    }
    ASSERT_EQ(entries.size(), 400u);
    uint64_t bytes = 0;
    for (const Win32::FolderEntry& entry : entries) {
        bytes += entry.size;
        EXPECT_GT(entry.written, 0u);
        EXPECT_NE(entry.attributes, 0u);
    }
    EXPECT_EQ(bytes, 800u);
}

TEST(Folder, SaysWhyItCannotBeListed) {
    const QVTest::TemporaryFolder folder;
    std::vector<std::wstring> names = {L"from before"};
    EXPECT_EQ(Win32::ListFolder(folder / L"missing", L"*", names), 3u);
    EXPECT_TRUE(names.empty());
    EXPECT_NE(Win32::ListFolder(folder.Write(L"file", "x"), L"*", names), 0u);
    EXPECT_EQ(Win32::ListFolder(folder.Path(), L"*.none", names), 0u);
    EXPECT_TRUE(names.empty());
}

// A server that does not count how often a number was given may give that of a deleted file to a folder.
TEST(Folder, FindsAnItemUnlessAnotherOneHasItsNumber) {
    const QVTest::TemporaryFolder folder;
    folder.Write(L"file", "x");
    CreateDirectoryW((folder / L"inner").c_str(), nullptr);
    std::map<std::wstring, Win32::ItemIdentity, std::less<>> items;
    Win32::ListFolder(folder.Path(),
                      [&](std::wstring_view name, const Win32::ItemIdentity& item) { items.emplace(name, item); });
    const Win32::ItemIdentity file = items.at(L"file");
    const Win32::ItemIdentity inner = items.at(L"inner");
    ASSERT_TRUE(file && inner);
    const auto found = [&](const Win32::ItemIdentity& item) { return Win32::FindItem(folder.Path(), item); };
    EXPECT_EQ(found(inner), folder / L"inner");
    EXPECT_EQ(found({inner.volume, inner.index, 1, 1}), L"") << "it was a file";
    if (file.index >> 48 != 0) GTEST_SKIP() << "the numbers of this disk are counted";
    EXPECT_EQ(found({file.volume, file.index, 1, file.accessed}), folder / L"file");
    EXPECT_EQ(found({file.volume, file.index, file.written, 1}), folder / L"file");
    EXPECT_EQ(found({file.volume, file.index, 1, 1}), L"");
    EXPECT_EQ(found({file.volume, file.index, 0, 0}), L"") << "it was a folder";
}

DWORD g_openFlags = 0;
HANDLE WINAPI NoteFlags(HANDLE, FILE_ID_DESCRIPTOR*, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD flags) {
    g_openFlags = flags;
    return INVALID_HANDLE_VALUE;
}

TEST(Folder, FindsALinkAndNotWhatItLeadsTo) {
    const QVTest::TemporaryFolder folder;
    const QVTest::ReplacedImport noted(GetModuleHandleW(nullptr), "OpenFileById", reinterpret_cast<void*>(NoteFlags));
    Win32::ItemIdentity item;
    Win32::ListFolder(folder.Path().substr(0, 3),
                      [&](std::wstring_view, const Win32::ItemIdentity& any) { item = any; });
    Win32::FindItem(folder.Path(), item);
    EXPECT_NE(g_openFlags & FILE_FLAG_OPEN_REPARSE_POINT, 0u);
}

}  // namespace
