#include "win32/files.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

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
